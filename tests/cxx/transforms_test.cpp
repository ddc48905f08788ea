// Fourier transforms of qkr.hpp: spectra beside their definition, layouts, sizes, life, threads.
#include <algorithm>
#include <gtest/gtest.h>
#include <numbers>
#include <numeric>
#include <thread>

#include "tests/cxx/numbers.h"

namespace {

using qkr::tests::numbers;
using qkr::tests::same;
using Complex = std::complex<double>;
constexpr auto bad_size = qkr::status(qkr::room::sigfft, zprStsSizeErr);
constexpr auto invalid = qkr::status(qkr::room::dft, DFTX_INVALID_ARGUMENT);

template <class T>
std::vector<Complex> spectrum_of(const std::vector<T> &x) {
  const double turn = -2 * std::numbers::pi / double(x.size());
  std::vector<Complex> X(x.size());
  for (size_t k = 0; k < x.size(); ++k)
    for (size_t i = 0; i < x.size(); ++i)
      X[k] += Complex(x[i]) * std::polar(1.0, turn * double(i * k % x.size()));
  return X;
}
// As far as `found` goes.
template <class Found, class Expected>
void expect_near(const Found &found, const Expected &expected) {
  const double bound = std::is_same_v<decltype(std::abs(found[0])), float> ? 1e-3 : 1e-10;
  for (size_t i = 0; i < found.size(); ++i)
    ASSERT_LT(std::abs(Complex(found[i]) - Complex(expected[i])), bound) << i;
}

template <class T>
class CxxFft : public testing::Test {};
using Elements = testing::Types<double, float, std::complex<double>, std::complex<float>>;
TYPED_TEST_SUITE(CxxFft, Elements);

TYPED_TEST(CxxFft, SpectraAndSizes) {
  using T = TypeParam;
  using C = std::conditional_t<qkr::complex_number<T>, T, std::complex<T>>;
  for (const size_t n : {1, 2, 7, 64, 101, 1000}) {
    SCOPED_TRACE(n);
    const std::vector<T> x = numbers<T>(n);
    std::vector<T> back(n), again(n);
    std::vector<C> X(qkr::complex_number<T> ? n : n / 2 + 1), Y(X.size());
    qkr::fft<T> f{n};
    f.forward(x, X);
    expect_near(X, spectrum_of(x));
    f.inverse(X, back);
    expect_near(back, x);
    // Work memory of the caller's, through a const object.
    const qkr::fft<T> &shared = f;
    std::vector<uint8_t> work(f.work_size());
    shared.forward(x, Y, work);
    EXPECT_TRUE(same(Y, X));
    shared.inverse(Y, again, work);
    EXPECT_TRUE(same(again, back));
    if (f.work_size()) {
      EXPECT_EQ(shared.try_forward(x, X, std::span(work).first(work.size() - 1)), bad_size);
    }
    EXPECT_EQ(f.try_forward(x, std::span(X).first(X.size() - 1)), bad_size);
    EXPECT_EQ(f.try_forward(std::span(x).first(n - 1), X), bad_size);
    EXPECT_EQ(f.try_inverse(std::span(X).first(X.size() - 1), back), bad_size);
    EXPECT_THROW(f.forward(std::span(x).first(n - 1), X), qkr::error);
  }
}

TEST(CxxFftKinds, PackedSplitAndUnordered) {
  constexpr size_t n = 600;
  const std::vector<double> x = numbers<double>(n);
  std::vector<Complex> half(n / 2 + 1), X(n), back(n);
  std::vector<double> packed(n), recovered(n), wide(n + 2);
  qkr::fft<double> real{n};
  real.forward(x, half);
  for (const auto &[format, first, middle] :
       {std::tuple{qkr::packing::perm, 2, 1}, {qkr::packing::pack, 1, int(n) - 1}}) {
    real.forward_packed(x, packed, format);
    EXPECT_EQ(packed[0], half[0].real());
    EXPECT_EQ(packed[size_t(first)], half[1].real());
    EXPECT_EQ(packed[size_t(middle)], half[n / 2].real());
    real.inverse_packed(packed, recovered, format);
    expect_near(recovered, x);
    EXPECT_EQ(real.try_forward_packed(x, wide, format), bad_size);
  }
  real.forward_packed(x, wide, qkr::packing::ccs);
  EXPECT_EQ(std::memcmp(wide.data(), half.data(), wide.size() * sizeof(double)), 0);

  std::vector<Complex> z = numbers<Complex>(n);
  qkr::fft<Complex>{n, qkr::divide::both}.forward(z, X);
  qkr::fft<qkr::split<double>> split{n, qkr::divide::both};
  std::vector<double> re(n), im(n);
  for (size_t i = 0; i < n; ++i) re[i] = z[i].real(), im[i] = z[i].imag();
  split.forward(re, im, re, im);
  for (size_t i = 0; i < n; ++i) ASSERT_EQ(X[i], Complex(re[i], im[i]));
  split.inverse(re, im, re, im);
  for (size_t i = 0; i < n; ++i) ASSERT_LT(std::abs(z[i] - Complex(re[i], im[i])), 1e-12);
  EXPECT_EQ(split.try_forward(re, im, re, std::span(im).first(2)), bad_size);

  qkr::fft<qkr::unordered<double>> unordered{n, qkr::divide::both};
  unordered.forward(z, back);
  EXPECT_TRUE(std::is_permutation(back.begin(), back.end(), X.begin(),
                                  [](Complex a, Complex b) { return std::abs(a - b) < 1e-10; }));
  unordered.inverse(back, back);
  expect_near(back, z);
}

TEST(CxxFftKinds, LifeAndRefusals) {
  const std::vector<double> x = numbers<double>(7);
  std::vector<Complex> X(4), Y(4);
  qkr::fft<double> first{7}, second = std::move(first);
  EXPECT_EQ(first.try_forward(x, X).code(), zprStsNullPtrErr);
  EXPECT_EQ(first.size(), 0u);
  first = std::move(second);
  first.forward(x, X);
  EXPECT_EQ(first.try_reset(0), bad_size);
  EXPECT_EQ(first.try_reset(size_t{1} << 31), bad_size);
  EXPECT_EQ(first.try_reset(8, qkr::divide(3)).code(), zprStsFftFlagErr);
  first.forward(x, Y);  // still the plan before
  EXPECT_TRUE(same(X, Y));
}

// The spectrum of a product of functions of one variable is that of theirs.
TEST(CxxDft, ScalesOfTwoDimensions) {
  const std::vector<Complex> a = numbers<Complex>(12, 1), b = numbers<Complex>(10, 2);
  std::vector<Complex> z(120), w, product, A = spectrum_of(a), B = spectrum_of(b);
  for (size_t i = 0; i < 120; ++i) {
    z[i] = a[i % 12] * b[i / 12];
    product.push_back(0.5 * A[i % 12] * B[i / 12]);
  }
  const qkr::dft<Complex> ours{{12, 10}, {.forward_scale = 0.5, .backward_scale = 2.0 / 120}};
  ours.forward(w = z);
  expect_near(w, product);
  ours.backward(w);
  expect_near(w, z);
  EXPECT_EQ(ours.try_forward(std::span(w).first(119)), invalid);
}

// There and back, with nothing written behind what spectrum_size() counts.
template <class Number>
void expect_round_trips(qkr::spectrum stored) {
  for (const qkr::shape &lengths : {qkr::shape(12), qkr::shape(13), qkr::shape(12, 10), qkr::shape(7, 5)})
    for (const size_t transforms : {1, 2}) {
      SCOPED_TRACE(testing::Message()
                   << int(stored) << ' ' << lengths[0] << ' ' << lengths.size() << ' ' << transforms);
      const size_t n = size_t(lengths[0] * (lengths.size() == 2 ? lengths[1] : 1));
      const qkr::dft<double> f{
          lengths, {.backward_scale = 1.0 / double(n), .transforms = transforms, .stored = stored}};
      const std::vector<double> x = numbers<double>(transforms * n);
      ASSERT_EQ(f.signal_size(), x.size());
      std::vector<Number> X(f.spectrum_size() + 1, 77);
      std::vector<double> back(x.size());
      f.forward(x, X);
      EXPECT_EQ(X.back(), 77.0);
      const auto last_row = X.end() - (lengths.size() == 2 ? lengths[0] + 3 : 3);
      EXPECT_LT(std::count(last_row, X.end(), 77.0), X.end() - last_row);
      EXPECT_LT(std::abs(X[0] - std::accumulate(x.begin(), x.begin() + long(n), 0.0)), 1e-11);
      f.backward(X, back);
      expect_near(back, x);
      EXPECT_EQ(f.try_forward(x, std::span(X).first(f.spectrum_size() - 1)), invalid);
      EXPECT_EQ(f.try_forward(std::span(x).first(x.size() - 1), X), invalid);
      EXPECT_EQ(
          f.try_forward(x, std::span<std::conditional_t<std::is_same_v<Number, double>, Complex, double>>()),
          invalid);  // of the other type
    }
}

TEST(CxxDft, RealSignals) {
  expect_round_trips<Complex>(qkr::spectrum::half);
  for (const auto stored : {qkr::spectrum::ccs, qkr::spectrum::pack, qkr::spectrum::perm})
    expect_round_trips<double>(stored);
  const std::vector<float> x = numbers<float>(3 * 31);
  std::vector<std::complex<float>> X(3 * 16);
  qkr::dft<float>(31, {.transforms = 3}).forward(x, X);
  for (size_t t = 0; t < 3; ++t)
    expect_near(std::span(X).subspan(16 * t, 16), spectrum_of(std::vector(&x[31 * t], &x[31 * t] + 31)));
}

// The columns of an array are a batch with stride m and distance 1.
TEST(CxxDft, StridesLifeAndThreads) {
  constexpr size_t n = 8, m = 5;
  const std::vector<Complex> a = numbers<Complex>(n * m);
  std::vector<Complex> data = a, column(n), found(n);
  const qkr::dft<Complex> columns{
      n, {.transforms = m, .input_distance = 1, .input_strides = {m}, .thread_limit = 2}};
  EXPECT_EQ(columns.signal_size(), n * m);
  columns.forward(data);
  for (size_t j = 0; j < m; ++j) {
    for (size_t i = 0; i < n; ++i) column[i] = a[i * m + j], found[i] = data[i * m + j];
    expect_near(found, spectrum_of(column));
  }
  const auto compute = [&] {
    std::vector<Complex> own(n * m);
    for (int round = 0; round < 20'000; ++round) EXPECT_TRUE(columns.try_forward(own).ok());
  };
  std::thread other(compute);
  compute();
  other.join();

  qkr::dft<double> first{{4, 8, 15}}, second = std::move(first);
  std::vector<double> x(480);
  std::vector<Complex> X(3 * 8 * 15);
  EXPECT_EQ(first.try_forward(x, X).code(), DFTX_BAD_DESCRIPTOR);
  for (const qkr::status answer :
       {second.try_reset({4, -1}), second.try_reset({4, 4}, {.input_strides = {1}}),
        second.try_reset({4, 4}, {.input_strides = {0, 4}}), second.try_reset(qkr::shape()),
        second.try_reset(size_t{1} << 32)})
    EXPECT_EQ(answer, invalid);
  constexpr auto perm = qkr::spectrum::perm;
  for (const qkr::status answer :
       {second.try_reset({2, 2, 2, 2}), second.try_reset({4, 4, 4}, {.stored = perm}),
        second.try_reset({4, 4}, {.output_strides = {1, 8}, .stored = perm})})
    EXPECT_EQ(answer.code(), DFTX_UNIMPLEMENTED);
  EXPECT_TRUE(second.try_forward(x, X).ok());  // the descriptor before
}

}  // namespace
