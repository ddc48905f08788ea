// The tables of the vector functions, which their generators make again elsewhere: the short factors that
// make a kernel's products exact, and the accuracy of every pair against long double.
#include "vecmath/tables/tables.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>

namespace {

using namespace qkr;

constexpr long double kShortLog10e = 0.43359375L;
const long double kLn2 = std::log(2.0L);
const long double kLog10Of2 = std::log10(2.0L);

// Whether x is a whole multiple of 2^exponent.
bool is_multiple(double x, int exponent) {
  const double scaled = std::ldexp(x, -exponent);
  return scaled == std::trunc(scaled);
}

TEST(Tables, PowersOfTwo) {
  for (int j = 0; j < 64; ++j) {
    const auto [hi, lo] = exp_double::powers[j];
    const long double error = hi + static_cast<long double>(lo) - std::exp2(j / 64.0L);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(hi) & 0x7FFF, 0u) << j;
    EXPECT_LE(std::fabs(error), 0x1p-62L) << j;
  }
  for (int j = 0; j < 128; ++j) {
    const auto [hi, lo] = exp_single::powers[j];
    const long double error = hi * (1 + static_cast<long double>(lo)) - std::exp2(j / 128.0L);
    EXPECT_LE(std::fabs(error), 0x1p-48L) << j;
    EXPECT_EQ(exp_single::powers_columns[0][j], hi);
    EXPECT_EQ(exp_single::powers_columns[1][j], lo);
  }
}

// One row for each logarithm. A kernel multiplies r (scaled by C in Log10) by a mantissa of y_bits bits, and
// adds the product less C to n * log2_hi + T.hi; all of that must fit the format's bits.
struct LogarithmTable {
  const char *name;
  int size, first_raised;  // rows 0 to size; from first_raised on T is less by log 2
  int format_bits, y_bits;
  int r_unit, hi_unit,
      head_bits;  // r and T.hi are multiples of 2^r_unit and 2^hi_unit; |result| < 2^head_bits
  long double c;
  double log2_hi;
  long double log2;
  long double (*log)(long double);
  double z_bound, t_bound;  // of |z| / C over a row's interval; of the pair T
  std::function<double(int)> r, hi, lo;
};

const LogarithmTable kLogarithms[] = {
    {"Ln double", 512, 256, 53, 21, -23, -35, 10, 1, 0x1.62e42fefa38p-1, kLn2, std::log, 0x1.01p-10, 0x1p-63,
     [](int k) { return ln_double::rows[k][0]; }, [](int k) { return ln_double::rows[k][2]; },
     [](int k) { return ln_double::rows[k][3]; }},
    {"Log10 double", 512, 1000, 53, 22, -23, -43, 9, kShortLog10e, 0x1.34413509f78p-2, kLog10Of2, std::log10,
     0x1.01p-10, 0x1p-64, [](int k) { return log10_double::rows[k][0]; },
     [](int k) { return log10_double::rows[k][2]; }, [](int k) { return log10_double::rows[k][3]; }},
    {"Ln single", 64, 1000, 24, 10, -8, -14, 7, 1, 0.693115234375, kLn2, std::log, 0x1.8p-7, 0x1p-38,
     [](int k) { return ln_single::rows[k][2]; }, [](int k) { return ln_single::rows[k][0]; },
     [](int k) { return ln_single::rows[k][1]; }},
    {"Log10 single", 128, 64, 24, 9, -9, -18, 6, kShortLog10e, 0.3125, kLog10Of2, std::log10, 0x1.9p-7,
     0x1p-36, [](int k) { return log10_single::rows[k][0]; }, [](int k) { return log10_single::rows[k][2]; },
     [](int k) { return log10_single::rows[k][3]; }},
};

TEST(Tables, Logarithms) {
  for (const LogarithmTable &t : kLogarithms) {
    SCOPED_TRACE(t.name);
    // The head's last bit comes from yh * r, from T.hi or from log2_hi.
    const int product_unit = 1 - t.y_bits + t.r_unit;
    EXPECT_LE(t.y_bits - t.r_unit, t.format_bits);
    EXPECT_LE(t.head_bits - std::min(product_unit, t.hi_unit), t.format_bits);
    EXPECT_TRUE(is_multiple(t.log2_hi, std::min(product_unit, t.hi_unit)));

    for (int k = 0; k <= t.size; ++k) {
      SCOPED_TRACE(k);
      EXPECT_TRUE(is_multiple(t.r(k), t.r_unit));
      EXPECT_TRUE(is_multiple(t.hi(k), t.hi_unit));

      const long double r = t.r(k) / t.c;
      const long double expected = -t.log(r) - (k >= t.first_raised ? t.log2 : 0);
      EXPECT_NEAR(static_cast<double>(static_cast<long double>(t.hi(k)) + t.lo(k) - expected), 0, t.t_bound);

      for (double end : {k - 0.5, k + 0.5}) {
        const long double y = 1 + std::clamp(end, 0.0, double(t.size)) / t.size;
        EXPECT_LE(std::fabs(static_cast<double>(y * r - 1)), t.z_bound);
      }
      // A tail of zero tells a kernel that r is 1 or 1/2 exactly, and nothing of T is lost.
      const bool jumps = t.first_raised <= t.size;
      const double tail_at_half = jumps ? 0.0 : t.lo(t.size);
      if (t.lo(k) == 0 || t.lo(k) == tail_at_half) {
        EXPECT_TRUE(t.r(k) == t.r(0) || t.r(k) == t.r(t.size));
      }
    }
  }
}

TEST(Tables, Log10SingleDeviationIsExact) {
  for (int k = 0; k <= 128; ++k)
    for (int step = -64; step <= 63; ++step) {
      const float y = 1 + k / 128.0f + step * 0x1p-14f + 0x1p-23f;
      if (y < 1 || y >= 2) continue;
      const double z = double(y) * log10_single::rows[k][0] - 0.43359375;
      EXPECT_EQ(z, static_cast<float>(z)) << k << ' ' << step;
    }
}

// Largest relative error of the quadratics, at 16 points of each part.
template <typename Exact>
long double quadratic_error(const double *a2, const double *a1, const double *a0, int parts, Exact exact) {
  long double worst = 0;
  for (int i = 0; i <= 16 * parts; ++i)
    for (int k : {i / 16, (i - 1) / 16}) {  // the end of one part is the beginning of the next
      if (k >= parts) continue;
      const long double m = 1 + i / (16.0L * parts);
      worst = std::max(worst, std::fabs(((a2[k] * m + a1[k]) * m + a0[k]) / exact(m) - 1));
    }
  return worst;
}

TEST(Tables, SquareRoots) {
  namespace d = sqrt_double;
  namespace s = sqrt_single;
  EXPECT_LT(quadratic_error(d::A2, d::A1, d::A0, 128, [](auto m) { return 1 / std::sqrt(m); }), 5.7e-9L);
  EXPECT_LT(quadratic_error(s::A2, s::A1, s::A0, 64, [](auto m) { return std::sqrt(m); }), 7.3e-9L);
  EXPECT_EQ(d::A2[0] + d::A1[0] + d::A0[0], 1.0);
}

}  // namespace
