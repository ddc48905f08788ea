// Transforms of any length: accuracy beside FFTW's, the same bits in all forms and at every vector width,
// normalisation, formats, bounds of the arrays, one plan in two threads, the out-of-order product.
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <thread>

#include "any_length_engines.h"
#include "reference.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

template <class T>
class AnyLength : public testing::Test {};
template <class T>
class LongAnyLength : public testing::Test {};
using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(AnyLength, Precisions);
TYPED_TEST_SUITE(LongAnyLength, Precisions);

template <class T>
constexpr double epsilon = sizeof(T) == 8 ? 0x1p-53 : 0x1p-24;

// All routes and borders between them: fixed code, direct sums, each factor alone and beside others, odd and
// even, one stage and several, long stages, chirps just below and above a power of two.
constexpr int32_t sample[] = {
    1,   2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,   13,   14,   15,   16,   18,   20,   21,  22,
    24,  25,  26,  27,  28,  30,  33,  34,  35,  39,  45,  49,   55,   60,   63,   64,   77,   91,   97,  100,
    105, 119, 121, 143, 149, 151, 169, 173, 179, 181, 187, 210,  243,  256,  257,  289,  298,  300,  302, 358,
    362, 500, 501, 502, 503, 512, 514, 625, 750, 847, 999, 1000, 1001, 1009, 1025, 1155, 1326, 1536, 2009};

std::vector<int32_t> sample_lengths() { return {std::begin(sample), std::end(sample)}; }

// The spectrum of the real parts, from that of complex numbers, and the numbers that a format holds.
LongNumbers real_spectrum(const LongNumbers &exact) {
  const size_t n = exact.size() / 2;
  LongNumbers spectrum;
  for (size_t k = 0; k <= n / 2; ++k) {
    const size_t mirror = (n - k) % n;
    spectrum.push_back((exact[2 * k] + exact[2 * mirror]) / 2);
    spectrum.push_back((exact[2 * k + 1] - exact[2 * mirror + 1]) / 2);
  }
  return spectrum;
}
template <class T>
std::vector<T> in_format(const LongNumbers &spectrum, Format format, size_t n) {
  std::vector<T> y(spectrum.begin(), spectrum.end());
  if (format == ccs) return y;
  y.erase(y.begin() + 1);
  if (n % 2) return y;
  y.pop_back();  // the imaginary part of the last
  if (format == perm) y.insert(y.begin() + 1, y.back()), y.pop_back();
  return y;
}

// Forward and inverse share one exact transform: the inverse is the forward one read backward. Unlucky short
// signals are allowed for by a part of the unit roundoff.
template <class T>
void expect_accurate(int32_t length) {
  const auto n = (size_t)length;
  const auto x = signal<T>(2 * n, length);
  const auto exact = exact_transform(LongNumbers(x.begin(), x.end()), true);
  const double luck = length < 16 ? 1.5 : 0.7;
  const double bound = 1.3 * relative_error(fftw_transform(x, true), exact) + luck * epsilon<T>;
  std::vector<T> y(2 * n);
  const auto &f = any_length<T>;
  const AnyPlan<T> plan(any_interleaved, length);
  ASSERT_EQ(f.complex[true](x.data(), y.data(), plan, nullptr), zprStsNoErr);
  EXPECT_LE(relative_error(y, exact), bound) << length;
  LongNumbers exact_inverse(2 * n);
  for (size_t k = 0; k < n; ++k)
    for (size_t part = 0; part < 2; ++part) exact_inverse[2 * k + part] = exact[2 * ((n - k) % n) + part];
  ASSERT_EQ(f.complex[false](x.data(), y.data(), plan, nullptr), zprStsNoErr);
  EXPECT_LE(relative_error(y, exact_inverse), bound) << length << " inverse";

  const AnyPlan<T> real_plan(any_real, length);
  const auto spectrum = real_spectrum(exact);
  std::vector<T> reals(n), back(n);
  for (size_t i = 0; i < n; ++i) reals[i] = x[2 * i];
  std::vector<T> of_reals(any_spectrum_size(ccs, n));
  ASSERT_EQ(f.real[true][ccs](reals.data(), of_reals.data(), real_plan, nullptr), zprStsNoErr);
  EXPECT_LE(relative_error(of_reals, spectrum), bound + 0.6 * epsilon<T>) << length << " real";
  LongNumbers scaled(reals.begin(), reals.end());
  for (auto &value : scaled) value *= length;
  const auto rounded = in_format<T>(spectrum, ccs, n);
  ASSERT_EQ(f.real[false][ccs](rounded.data(), back.data(), real_plan, nullptr), zprStsNoErr);
  EXPECT_LE(relative_error(back, scaled), bound + 1.6 * epsilon<T>) << length << " real inverse";
}

TYPED_TEST(AnyLength, IsAccurate) {
  for (const int32_t length : sample) expect_accurate<TypeParam>(length);
}
TYPED_TEST(LongAnyLength, IsAccurate) {
  for (int32_t length = 1; length <= 2100; ++length) expect_accurate<TypeParam>(length);
  for (const int32_t length : {2187, 3125, 5005, 7500, 9409, 10007, 16807, 22201, 22500, 65537, 65625, 100000,
                               100003, 131071, 196608, 4 * 25013, 2 * 3 * 16411, 1000000})
    expect_accurate<TypeParam>(length);
}

template <class T>
std::vector<uint8_t> any_work(const AnyPlan<T> &plan) {
  return std::vector<uint8_t>(plan.work_bytes() + 1);
}

// Every form of every transform, at all levels; `offset` and the work buffer are of no influence.
template <class T>
void expect_same_bits(int32_t length) {
  const auto &f = any_length<T>;
  const auto n = (size_t)length;
  const auto x = signal<T>(2 * n, length);
  const auto same = [](const T *a, const std::vector<T> &b, const char *what) {
    EXPECT_EQ(std::memcmp(a, b.data(), b.size() * sizeof(T)), 0) << what;
  };
  for (const bool forward : {false, true}) {
    const AnyPlan<T> plan(any_interleaved, length, 4), split_plan(any_split, length, 4);
    const AnyPlan<T> out_plan(any_out_of_order, length, 4), real_plan(any_real, length, 4);
    auto work = any_work(plan), split_work = any_work(split_plan), real_work = any_work(real_plan);
    std::vector<T> expected, expected_out, expected_real[formats];
    for_each_level([&](const char *level) {
      SCOPED_TRACE(testing::Message() << length << " forward " << forward << ' ' << level);
      std::vector<T> src(2 * n + 1), dst(2 * n + 3);
      std::copy(x.begin(), x.end(), src.begin() + 1);
      ASSERT_EQ(f.complex[forward](src.data() + 1, dst.data() + 3, plan, work.data() + 1), zprStsNoErr);
      if (expected.empty()) expected.assign(dst.begin() + 3, dst.end());
      same(dst.data() + 3, expected, "interleaved");
      ASSERT_EQ(f.complex[forward](src.data() + 1, src.data() + 1, plan, nullptr), zprStsNoErr);
      same(src.data() + 1, expected, "in place");
      auto parts = apart(x), out = apart(std::vector<T>(2 * n));
      ASSERT_EQ(f.split[forward](parts.re.data(), parts.im.data(), out.re.data(), out.im.data(), split_plan,
                                 split_work.data() + 1),
                zprStsNoErr);
      same(together(out).data(), expected, "split");
      ASSERT_EQ(f.split[forward](parts.re.data(), parts.im.data(), parts.re.data(), parts.im.data(),
                                 split_plan, nullptr),
                zprStsNoErr);
      same(together(parts).data(), expected, "split in place");

      std::vector<T> product(2 * n);
      ASSERT_EQ(f.out_of_order[forward](x.data(), product.data(), out_plan, nullptr), zprStsNoErr);
      if (expected_out.empty()) expected_out = product;
      same(product.data(), expected_out, "out of order");
      product = x;
      ASSERT_EQ(f.out_of_order[forward](product.data(), product.data(), out_plan, nullptr), zprStsNoErr);
      same(product.data(), expected_out, "out of order in place");

      for (const Format format : {perm, pack, ccs}) {
        const size_t spectrum = any_spectrum_size(format, n), in = forward ? n : spectrum,
                     result = forward ? spectrum : n;
        std::vector<T> data = signal<T>(in, length), y(result + 1);
        ASSERT_EQ(f.real[forward][format](data.data(), y.data() + 1, real_plan, real_work.data() + 1),
                  zprStsNoErr);
        if (expected_real[format].empty()) expected_real[format].assign(y.begin() + 1, y.end());
        same(y.data() + 1, expected_real[format], "real");
        data.resize(std::max(in, result));
        ASSERT_EQ(f.real[forward][format](data.data(), data.data(), real_plan, nullptr), zprStsNoErr);
        same(data.data(), expected_real[format], "real in place");
      }
    });
  }
}

TYPED_TEST(AnyLength, HasTheSameBitsInAllForms) {
  for (const int32_t length : sample) expect_same_bits<TypeParam>(length);
  for (const int32_t length : {5005, 5040, 6000}) expect_same_bits<TypeParam>(length);
}
TYPED_TEST(LongAnyLength, HasTheSameBitsInAllForms) {
  for (int32_t length = 1; length <= 2100; ++length) expect_same_bits<TypeParam>(length);
  for (const int32_t length : {10007, 22500, 65625, 100000, 100003, 196608})
    expect_same_bits<TypeParam>(length);
}

// The three formats hold the same spectrum, CCS zeros where it says so, which the inverse does not read.
TYPED_TEST(AnyLength, FormatsHoldTheSameSpectrum) {
  using T = TypeParam;
  const auto &f = any_length<T>;
  for (const int32_t length : {1, 2, 3, 4, 5, 6, 7, 15, 16, 30, 181, 302}) {
    const auto n = (size_t)length;
    const auto x = signal<T>(n, length);
    const AnyPlan<T> plan(any_real, length);
    std::vector<T> of_ccs(any_spectrum_size(ccs, n), T(9)), back(n), back_of_ccs(n);
    f.real[true][ccs](x.data(), of_ccs.data(), plan, nullptr);
    EXPECT_EQ(of_ccs[1], T(0)) << length;
    EXPECT_TRUE(n % 2 || of_ccs[n + 1] == 0) << length;
    const LongNumbers numbers(of_ccs.begin(), of_ccs.end());
    of_ccs[1] = T(5);
    if (n % 2 == 0) of_ccs[n + 1] = T(5);
    f.real[false][ccs](of_ccs.data(), back_of_ccs.data(), plan, nullptr);
    for (const Format format : {perm, pack}) {
      std::vector<T> y(n + 1, T(-7));
      f.real[true][format](x.data(), y.data(), plan, nullptr);
      EXPECT_EQ(y.back(), T(-7)) << "written beyond the spectrum";
      y.pop_back();
      EXPECT_EQ(y, in_format<T>(numbers, format, n)) << length << ' ' << format;
      f.real[false][format](y.data(), back.data(), plan, nullptr);
      EXPECT_EQ(back, back_of_ccs) << length << ' ' << format;
    }
  }
}

struct Normalisation {
  int flag;
  double forward_exponent, inverse_exponent;  // of the length, as a divisor
};
constexpr Normalisation normalisations[] = {{1, 1, 0}, {2, 0, 1}, {4, 0.5, 0.5}, {8, 0, 0}};

TYPED_TEST(AnyLength, NormalisationIsThatOfTheFlag) {
  using T = TypeParam;
  const auto &f = any_length<T>;
  const double tolerance = 64 * epsilon<T>;
  for (const int32_t length : {1, 2, 3, 4, 5, 8, 15, 30, 151, 181, 302, 5005})
    for (const Normalisation &norm : normalisations)
      for (const bool forward : {false, true}) {
        const auto n = (size_t)length;
        const double divisor = std::pow(length, forward ? norm.forward_exponent : norm.inverse_exponent);
        const auto x = signal<T>(2 * n + 2, length);
        const auto run = [&](AnyKind kind, int flag) {
          const AnyPlan<T> plan(kind, length, flag);
          std::vector<T> y(2 * n);
          const zprStatus status =
              kind == any_split
                  ? f.split[forward](x.data(), x.data() + n, y.data(), y.data() + n, plan, nullptr)
              : kind == any_real         ? f.real[forward][perm](x.data(), y.data(), plan, nullptr)
              : kind == any_out_of_order ? f.out_of_order[forward](x.data(), y.data(), plan, nullptr)
                                         : f.complex[forward](x.data(), y.data(), plan, nullptr);
          EXPECT_EQ(status, zprStsNoErr);
          return y;
        };
        for (int kind = 0; kind < any_kinds; ++kind) {
          const auto plain = run((AnyKind)kind, 8);
          LongNumbers expected(plain.begin(), plain.end());
          for (auto &value : expected) value /= divisor;
          EXPECT_LE(relative_error(run((AnyKind)kind, norm.flag), expected), tolerance)
              << any_kind_names[kind] << ' ' << length << " flag " << norm.flag << " forward " << forward;
        }
      }
}

// No array and no work buffer is touched beyond its ends.
TYPED_TEST(AnyLength, StaysWithinItsArrays) {
  using T = TypeParam;
  const auto &f = any_length<T>;
  std::vector<int32_t> lengths = sample_lengths();
  lengths.insert(lengths.end(), {5005, 6000});
  for (const int32_t length : lengths)
    for (const Edge edge : {Edge::end, Edge::start}) {
      const auto n = (size_t)length;
      const AnyPlan<T> plan(any_interleaved, length), split_plan(any_split, length);
      const AnyPlan<T> real_plan(any_real, length), out_plan(any_out_of_order, length);
      Guarded<uint8_t> work(plan.work_bytes(), edge), split_work(split_plan.work_bytes(), edge),
          real_work(real_plan.work_bytes(), edge), out_work(out_plan.work_bytes(), edge);
      Guarded<T> src(2 * n, edge), dst(2 * n, edge);
      Guarded<T> re(n, edge), im(n, edge), to_re(n, edge), to_im(n, edge);
      for_each_level([&](const char *level) {
        SCOPED_TRACE(testing::Message() << length << ' ' << level);
        for (const bool forward : {false, true}) {
          src.data()[0] = re.data()[0] = 1;
          EXPECT_EQ(f.complex[forward](src.data(), dst.data(), plan, work.data()), zprStsNoErr);
          EXPECT_EQ(f.complex[forward](dst.data(), dst.data(), plan, work.data()), zprStsNoErr);
          EXPECT_EQ(f.out_of_order[forward](src.data(), dst.data(), out_plan, out_work.data()), zprStsNoErr);
          EXPECT_EQ(f.split[forward](re.data(), im.data(), to_re.data(), to_im.data(), split_plan,
                                     split_work.data()),
                    zprStsNoErr);
          for (const Format format : {perm, pack, ccs}) {
            Guarded<T> spectrum(any_spectrum_size(format, n), edge);
            const T *const from = forward ? re.data() : spectrum.data();
            T *const to = forward ? spectrum.data() : to_re.data();
            EXPECT_EQ(f.real[forward][format](from, to, real_plan, real_work.data()), zprStsNoErr);
          }
        }
      });
    }
}

// What the out-of-order plans promise: a cyclic convolution, and the way back.
TYPED_TEST(AnyLength, OutOfOrderProductsAreConvolutions) {
  using T = TypeParam;
  const auto &f = any_length<T>;
  for (const int32_t length : {4, 15, 64, 151, 5000, 5002, 5005, 5184, 6000, 7429, 22500}) {
    const auto n = (size_t)length;
    const AnyPlan<T> natural(any_interleaved, length, 2), plan(any_out_of_order, length, 2);
    const auto a = signal<T>(2 * n, 1), b = signal<T>(2 * n, 2);
    const auto convolution = [&](const auto &transform, const void *with) {
      std::vector<T> fa(2 * n), fb(2 * n);
      EXPECT_EQ(transform[true](a.data(), fa.data(), with, nullptr), zprStsNoErr);
      EXPECT_EQ(transform[true](b.data(), fb.data(), with, nullptr), zprStsNoErr);
      for (size_t k = 0; k < n; ++k) {
        const T re = fa[2 * k] * fb[2 * k] - fa[2 * k + 1] * fb[2 * k + 1];
        const T im = fa[2 * k] * fb[2 * k + 1] + fa[2 * k + 1] * fb[2 * k];
        fa[2 * k] = re, fa[2 * k + 1] = im;
      }
      EXPECT_EQ(transform[false](fa.data(), fa.data(), with, nullptr), zprStsNoErr);
      return fa;
    };
    const auto expected = convolution(f.complex, natural), products = convolution(f.out_of_order, plan);
    EXPECT_LE(relative_error(products, LongNumbers(expected.begin(), expected.end())), 16 * epsilon<T>)
        << length;
    std::vector<T> y(2 * n), z(2 * n);
    f.out_of_order[true](a.data(), y.data(), plan, nullptr);
    f.complex[true](a.data(), z.data(), natural, nullptr);
    EXPECT_EQ(y == z, length < 5001) << length;
  }
}

TYPED_TEST(AnyLength, OnePlanServesTwoThreads) {
  using T = TypeParam;
  const auto &f = any_length<T>;
  for (const int32_t length : {15, 149, 151, 5005}) {
    const auto x = signal<T>(2 * length, length);
    const AnyPlan<T> plan(any_interleaved, length), real_plan(any_real, length);
    const auto run = [&](std::vector<T> *y, std::vector<T> *spectrum) {
      y->resize(2 * length), spectrum->resize(any_spectrum_size(ccs, length));
      for (int i = 0; i < 20; ++i) {
        f.complex[true](x.data(), y->data(), plan, nullptr);
        f.real[true][ccs](x.data(), spectrum->data(), real_plan, nullptr);
      }
    };
    std::vector<T> y[2], spectrum[2];
    std::thread other(run, &y[0], &spectrum[0]);
    run(&y[1], &spectrum[1]);
    other.join();
    EXPECT_EQ(y[0], y[1]);
    EXPECT_EQ(spectrum[0], spectrum[1]);
  }
}

}  // namespace
}  // namespace qkr::tests
