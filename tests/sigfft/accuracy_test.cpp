// Accuracy beside FFTW's.
#include <cmath>
#include <gtest/gtest.h>

#include "engines.h"
#include "reference.h"
#include "sample_lengths.h"

namespace qkr::tests {
namespace {

template <class T>
class Accuracy : public testing::Test {};
template <class T>
class LongAccuracy : public testing::Test {};
using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(Accuracy, Precisions);
TYPED_TEST_SUITE(LongAccuracy, Precisions);

template <class T>
constexpr double epsilon = sizeof(T) == 8 ? 0x1p-53 : 0x1p-24;

// Errors over as many signals as make up 2^12 points, since those of one short transform are a matter of
// luck. Forward and inverse share one exact transform: the inverse is the forward one read backward.
template <class T>
void expect_accurate(const Functions<T> &f, size_t n) {
  const Plan<T> plan(f, interleaved, n), real_plan(f, real, n);
  const int signals = n < 4096 ? (int)(4096 / n) : 1;
  double of_fftw = 0, ours[4] = {};
  for (int i = 0; i < signals; ++i) {
    const auto x = signal<T>(2 * n, (unsigned)i);
    const auto exact = exact_transform(LongNumbers(x.begin(), x.end()), true);
    of_fftw += relative_error(fftw_transform(x, true), exact);
    std::vector<T> y(2 * n), reals(n), spectrum(spectrum_size(ccs, n)), back(n);
    ASSERT_EQ(f.complex[true](x.data(), y.data(), plan, nullptr), zprStsNoErr);
    ours[0] += relative_error(y, exact);
    LongNumbers exact_inverse(2 * n);
    for (size_t k = 0; k < n; ++k)
      for (size_t part : {0, 1}) exact_inverse[2 * k + part] = exact[2 * ((n - k) % n) + part];
    ASSERT_EQ(f.complex[false](x.data(), y.data(), plan, nullptr), zprStsNoErr);
    ours[1] += relative_error(y, exact_inverse);

    const auto exact_spectrum = real_spectrum(exact);
    for (size_t k = 0; k < n; ++k) reals[k] = x[2 * k];
    ASSERT_EQ(f.real[true][ccs](reals.data(), spectrum.data(), real_plan, nullptr), zprStsNoErr);
    ours[2] += relative_error(spectrum, exact_spectrum);
    const auto rounded = in_format<T>(exact_spectrum, ccs, n);
    ASSERT_EQ(f.real[false][ccs](rounded.data(), back.data(), real_plan, nullptr), zprStsNoErr);
    LongNumbers scaled(reals.begin(), reals.end());
    for (auto &value : scaled) value *= n;
    ours[3] += relative_error(back, scaled);
  }
  const double unit = signals * epsilon<T>, luck = f.takes_any_length() ? 0.7 : 0;
  const struct {
    const char *name;
    double more;  // than FFTW's, in units
  } rows[] = {
      {"forward", luck}, {"inverse", luck}, {"real forward", 0.6 + luck}, {"real inverse", 1.6 + luck}};
  for (int i = 0; i < 4; ++i)
    EXPECT_LE(ours[i], (f.takes_any_length() ? 1.3 : 1.2) * of_fftw + rows[i].more * unit)
        << f.name << ", " << n << " points, " << rows[i].name;
}

TYPED_TEST(Accuracy, IsThatOfFftw) {
  for (const auto &f : sets_for_powers_of_two<TypeParam>())
    for (int order = 0; order <= 18; ++order) expect_accurate(f, size_t{1} << order);
  for (const size_t n : sample_lengths) expect_accurate(functions<TypeParam>[any_length], n);
}
TYPED_TEST(LongAccuracy, IsThatOfFftw) {
  for (size_t n = 1; n <= 2100; ++n) expect_accurate(functions<TypeParam>[any_length], n);
  for (const size_t n : {2187, 3125, 5005, 7500, 9409, 10007, 16807, 22201, 22500, 65537, 65625, 100000,
                         100003, 131071, 196608, 4 * 25013, 2 * 3 * 16411, 1000000})
    expect_accurate(functions<TypeParam>[any_length], n);
}

// At lengths for which an exact transform takes too long, beside FFTW's in double precision.
TYPED_TEST(LongAccuracy, OfTheLongestIsNearFftw) {
  using T = TypeParam;
  for (int order = 19; order <= 24; ++order) {
    const size_t n = size_t{1} << order;
    const auto x = signal<T>(2 * n);
    const auto of_fftw = fftw_transform(std::vector<double>(x.begin(), x.end()), true);
    const LongNumbers expected(of_fftw.begin(), of_fftw.end());
    for (const auto &f : sets_for_powers_of_two<T>()) {
      std::vector<T> y(2 * n);
      ASSERT_EQ(f.complex[true](x.data(), y.data(), Plan<T>(f, interleaved, n), nullptr), zprStsNoErr);
      EXPECT_LE(relative_error(y, expected), 2 * std::sqrt(order) * epsilon<T>)
          << f.name << ", order " << order;
    }
  }
}

}  // namespace
}  // namespace qkr::tests
