// Accuracy beside FFTW's, and what a Fourier transform does to an impulse, a sum and a shift at lengths for
// which an exact transform takes too long.
#include <cmath>
#include <gtest/gtest.h>

#include "engines.h"
#include "reference.h"

namespace qkr::tests {
namespace {

template <class T>
class Accuracy : public testing::Test {};
template <class T>
class LongSelfTest : public testing::Test {};
using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(Accuracy, Precisions);
TYPED_TEST_SUITE(LongSelfTest, Precisions);

template <class T>
constexpr double epsilon = sizeof(T) == 8 ? 0x1p-53 : 0x1p-24;

// Over as many signals as make up 2^12 points, since the errors of one short transform are a matter of luck.
// Largest seen: 1.03 times FFTW's error.
TYPED_TEST(Accuracy, ComplexIsThatOfFftw) {
  using T = TypeParam;
  double worst_ratio = 0;
  for (int order = 1; order <= 18; ++order)
    for (const bool forward : {false, true}) {
      const int signals = order < 12 ? 1 << (12 - order) : 1;
      double of_fftw = 0, ours[2] = {};
      for (int i = 0; i < signals; ++i) {
        const auto x = signal<T>(size_t{2} << order, i);
        const auto exact = exact_transform(LongNumbers(x.begin(), x.end()), forward);
        of_fftw += relative_error(fftw_transform(x, forward), exact);
        for (int set = 0; set < 2; ++set) {
          const auto &f = functions<T>[set];
          std::vector<T> y(x.size());
          ASSERT_EQ(f.complex[forward](x.data(), y.data(), Plan<T>(f, interleaved, order), nullptr),
                    zprStsNoErr);
          ours[set] += relative_error(y, exact);
        }
      }
      EXPECT_LE(ours[0], 1.2 * of_fftw) << "w6, order " << order << ", forward " << forward;
      EXPECT_LE(ours[1], 1.2 * of_fftw) << "plain, order " << order << ", forward " << forward;
      worst_ratio = std::max({worst_ratio, ours[0] / of_fftw, ours[1] / of_fftw});
    }
  this->RecordProperty("worst_ratio", std::to_string(worst_ratio));
}

// As the complex transform of the signal with imaginary parts of 0; and the signal back from its exact
// spectrum.
TYPED_TEST(Accuracy, RealIsThatOfComplex) {
  using T = TypeParam;
  for (int order = 0; order <= 18; ++order) {
    const size_t n = size_t{1} << order;
    const auto x = signal<T>(n, order);
    LongNumbers z(2 * n);
    for (size_t i = 0; i < n; ++i) z[2 * i] = x[i];
    const auto exact = exact_transform(z, true);
    LongNumbers exact_ccs(exact.begin(), exact.begin() + std::min(spectrum_size(ccs, n), exact.size()));
    const double bound =
        1.2 * relative_error(fftw_transform(std::vector<T>(z.begin(), z.end()), true), exact) +
        0.6 * epsilon<T>;
    for (const auto &f : functions<T>) {
      const Plan<T> plan(f, real, order);
      std::vector<T> spectrum(spectrum_size(ccs, n)), back(n);
      ASSERT_EQ(f.real[true][ccs](x.data(), spectrum.data(), plan, nullptr), zprStsNoErr);
      EXPECT_LE(relative_error(spectrum, exact_ccs), bound) << f.name << ", order " << order;
      const std::vector<T> rounded(exact_ccs.begin(), exact_ccs.end());
      ASSERT_EQ(f.real[false][ccs](rounded.data(), back.data(), plan, nullptr), zprStsNoErr);
      LongNumbers scaled(x.begin(), x.end());
      for (auto &value : scaled) value *= n;
      EXPECT_LE(relative_error(back, scaled), bound + epsilon<T>) << f.name << ", order " << order;
    }
  }
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
TYPED_TEST(LongSelfTest, IsLinearAndTurnsShifts) {
  using T = TypeParam;
  for (int order = 3; order <= 24; ++order)
    for (const auto &f : functions<T>) {
      const uint64_t n = uint64_t{1} << order, shift = 5;
      const Plan<T> plan(f, interleaved, order);
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
