// Accuracy beside FFTW's, and what a Fourier transform does to an impulse, a sum and a shift at lengths for
// which an exact transform takes too long.
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

// exp(-2 pi i turns / n), for whole turns.
struct Root {
  double re, im;
};
Root root(uint64_t turns, uint64_t n) {
  const long double angle = 2 * 3.14159265358979323846264338327950288L * (turns % n) / n;
  return {(double)cosl(angle), (double)-sinl(angle)};
}

// The transform of a shifted signal plus a multiple of another, beside what the two transforms say it is.
TYPED_TEST(LongAccuracy, IsLinearAndTurnsShifts) {
  using T = TypeParam;
  for (int order = 3; order <= 24; ++order)
    for (const auto &f : sets_for_powers_of_two<T>()) {
      const uint64_t n = uint64_t{1} << order, shift = 5;
      const Plan<T> plan(f, interleaved, n);
      const auto a = signal<T>(2 * n, 1), b = signal<T>(2 * n, 2);
      std::vector<T> sum(2 * n), fa(2 * n), fb(2 * n), fsum(2 * n);
      for (uint64_t i = 0; i < 2 * n; ++i) sum[i] = a[(i + 2 * n - 2 * shift) % (2 * n)] + T(0.5) * b[i];
      f.complex[true](a.data(), fa.data(), plan, nullptr);
      f.complex[true](b.data(), fb.data(), plan, nullptr);
      f.complex[true](sum.data(), fsum.data(), plan, nullptr);
      double error = 0, norm = 0;
      for (uint64_t k = 0; k < n; k += 61) {
        const Root w = root(shift * k, n);
        const double re = fa[2 * k] * w.re - fa[2 * k + 1] * w.im + 0.5 * fb[2 * k];
        const double im = fa[2 * k] * w.im + fa[2 * k + 1] * w.re + 0.5 * fb[2 * k + 1];
        error += std::pow(fsum[2 * k] - re, 2) + std::pow(fsum[2 * k + 1] - im, 2);
        norm += re * re + im * im;
      }
      EXPECT_LE(std::sqrt(error / norm), 5 * std::sqrt(order) * epsilon<T>) << f.name << ", order " << order;
    }
}

}  // namespace
}  // namespace qkr::tests
