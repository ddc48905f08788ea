// Fourier transforms of qkr.hpp: the bits of the C functions, sizes, life, threads.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <qkr/qkr.hpp>
#include <random>
#include <thread>
#include <vector>

namespace {

constexpr auto bad_size = qkr::status(qkr::room::sigfft, zprStsSizeErr);
constexpr auto invalid = qkr::status(qkr::room::dft, DFTX_INVALID_ARGUMENT);

template <class T>
std::vector<T> numbers(size_t n) {
  std::mt19937 engine(static_cast<unsigned>(n));
  std::normal_distribution<double> normal;
  std::vector<T> x(n);
  for (T &element : x) {
    if constexpr (qkr::complex_number<T>)
      element = T(typename T::value_type(normal(engine)), typename T::value_type(normal(engine)));
    else element = T(normal(engine));
  }
  return x;
}
template <class T>
bool same(const std::vector<T> &a, const std::vector<T> &b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

// Signal to spectrum and back by the C functions.
#define C_TRANSFORMS(T, letter, suffix)                                                                  \
  void by_c(size_t n, const std::vector<T> &x, std::vector<std::complex<T>> &X, std::vector<T> &back) {  \
    zprsDFTSpec_R_##suffix *plan;                                                                        \
    ASSERT_EQ(w6_zprsDFTInitAlloc_R_##suffix(&plan, int32_t(n), QKR_DIVIDE_INVERSE, 0), zprStsNoErr);    \
    w6_zprsDFTFwd_RToCCS_##suffix(x.data(), reinterpret_cast<T *>(X.data()), plan, nullptr);             \
    w6_zprsDFTInv_CCSToR_##suffix(reinterpret_cast<T *>(X.data()), back.data(), plan, nullptr);          \
    w6_zprsDFTFree_R_##suffix(plan);                                                                     \
  }                                                                                                      \
  void by_c(size_t n, const std::vector<std::complex<T>> &x, std::vector<std::complex<T>> &X,            \
            std::vector<std::complex<T>> &back) {                                                        \
    using Number = zpr##suffix##c;                                                                       \
    zprsDFTSpec_C_##suffix##c *plan;                                                                     \
    ASSERT_EQ(w6_zprsDFTInitAlloc_C_##suffix##c(&plan, int32_t(n), QKR_DIVIDE_INVERSE, 0), zprStsNoErr); \
    w6_zprsDFTFwd_CToC_##suffix##c(reinterpret_cast<const Number *>(x.data()),                           \
                                   reinterpret_cast<Number *>(X.data()), plan, nullptr);                 \
    w6_zprsDFTInv_CToC_##suffix##c(reinterpret_cast<Number *>(X.data()),                                 \
                                   reinterpret_cast<Number *>(back.data()), plan, nullptr);              \
    w6_zprsDFTFree_C_##suffix##c(plan);                                                                  \
  }
C_TRANSFORMS(double, z, 64f)
C_TRANSFORMS(float, c, 32f)

template <class T>
class CxxFft : public testing::Test {};
using Elements = testing::Types<double, float, std::complex<double>, std::complex<float>>;
TYPED_TEST_SUITE(CxxFft, Elements);

TYPED_TEST(CxxFft, BitsOfTheCFunctions) {
  using T = TypeParam;
  using C = std::conditional_t<qkr::complex_number<T>, T, std::complex<T>>;
  for (const size_t n : {1, 2, 7, 60, 64, 101, 202, 1000, 4096}) {
    SCOPED_TRACE(n);
    const std::vector<T> x = numbers<T>(n);
    const size_t spectrum = qkr::complex_number<T> ? n : n / 2 + 1;
    std::vector<T> back(n), expected_back(n);
    std::vector<C> X(spectrum), expected(spectrum);
    by_c(n, x, expected, expected_back);
    qkr::fft<T> f{n};
    f.forward(x, X);
    EXPECT_TRUE(same(X, expected));
    f.inverse(X, back);
    EXPECT_TRUE(same(back, expected_back));
    // Work memory of the caller's, through a const object.
    const qkr::fft<T> &shared = f;
    std::vector<uint8_t> work(f.work_size());
    std::fill(X.begin(), X.end(), C());
    shared.forward(x, X, work);
    EXPECT_TRUE(same(X, expected));
    EXPECT_TRUE(shared.try_inverse(X, back, work).ok());
    EXPECT_TRUE(same(back, expected_back));
    if (f.work_size()) {
      EXPECT_EQ(shared.try_forward(x, X, std::span(work).first(work.size() - 1)), bad_size);
    }
    EXPECT_EQ(f.try_forward(x, std::span(X).first(spectrum - 1)), bad_size);
    EXPECT_EQ(f.try_forward(std::span(x).first(n - 1), X), bad_size);
    EXPECT_EQ(f.try_inverse(std::span(X).first(spectrum - 1), back), bad_size);
    EXPECT_THROW(f.forward(std::span(x).first(n - 1), X), qkr::error);
  }
}

TEST(CxxFftKinds, PackedSplitAndUnordered) {
  constexpr size_t n = 6000;
  const std::vector<double> x = numbers<double>(n);
  const std::vector<std::complex<double>> z = numbers<std::complex<double>>(n);
  std::vector<std::complex<double>> half(n / 2 + 1), X(n), back(n);
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
    for (size_t i = 0; i < n; ++i) ASSERT_NEAR(recovered[i], x[i], 1e-12);
    EXPECT_EQ(real.try_forward_packed(x, wide, format), bad_size);
  }
  real.forward_packed(x, wide, qkr::packing::ccs);
  EXPECT_EQ(std::memcmp(wide.data(), half.data(), wide.size() * sizeof(double)), 0);

  qkr::fft<std::complex<double>> complex{n, qkr::divide::both};
  complex.forward(z, X);
  qkr::fft<qkr::split<double>> split{n, qkr::divide::both};
  std::vector<double> re(n), im(n);
  for (size_t i = 0; i < n; ++i) re[i] = z[i].real(), im[i] = z[i].imag();
  split.forward(re, im, re, im);
  for (size_t i = 0; i < n; ++i) ASSERT_EQ(X[i], std::complex(re[i], im[i]));
  split.inverse(re, im, re, im);
  complex.inverse(X, back);
  for (size_t i = 0; i < n; ++i) ASSERT_EQ(back[i], std::complex(re[i], im[i]));
  EXPECT_EQ(split.try_forward(re, im, re, std::span(im).first(2)), bad_size);

  qkr::fft<qkr::unordered<double>> unordered{n, qkr::divide::both};
  std::vector<std::complex<double>> scrambled(n);
  unordered.forward(z, scrambled);
  EXPECT_FALSE(same(scrambled, X));
  unordered.inverse(scrambled, back);
  for (size_t i = 0; i < n; ++i) ASSERT_LT(std::abs(back[i] - z[i]), 1e-12);
}

TEST(CxxFftKinds, LifeAndRefusals) {
  std::vector<double> x = numbers<double>(8);
  std::vector<std::complex<double>> X(5), Y(5);
  qkr::fft<double> first{8}, second = std::move(first);
  EXPECT_EQ(first.try_forward(x, X).code(), zprStsNullPtrErr);
  EXPECT_EQ(first.size(), 0u);
  first = std::move(second);
  first.forward(x, X);
  EXPECT_EQ(first.try_reset(0), bad_size);
  EXPECT_EQ(first.try_reset(size_t{1} << 31), bad_size);
  EXPECT_EQ(first.try_reset(8, qkr::divide(3)).code(), zprStsFftFlagErr);
  first.forward(x, Y);  // still the plan before
  EXPECT_TRUE(same(X, Y));
  EXPECT_THROW(qkr::fft<float>(0), qkr::error);
  static_assert(!std::is_copy_constructible_v<qkr::fft<double>>);
}

TEST(CxxDft, BitsOfTheCFunctions) {
  const int32_t precision = DFTX_DOUBLE, domain = DFTX_COMPLEX, dimension = 2, lengths[] = {12, 10},
                scale_of = DFTX_BACKWARD_SCALE;
  const double scale = 1.0 / 120;
  std::vector<std::complex<double>> z = numbers<std::complex<double>>(120), w = z;
  DftDescriptor *descriptor;
  qkr_dft_def_create_descriptor_highd(&descriptor, &precision, &domain, &dimension, lengths);
  qkr_dft_def_set_value_dblval(&descriptor, &scale_of, &scale);
  ASSERT_EQ(qkr_dft_def_commit_descriptor_external(&descriptor), DFTX_NO_ERROR);
  const qkr::dft<std::complex<double>> ours{{12, 10}, {.backward_scale = scale}};
  qkr_dft_def_compute_forward_z(&descriptor, z.data());
  ours.forward(w);
  EXPECT_TRUE(same(z, w));
  qkr_dft_def_compute_backward_z(&descriptor, z.data());
  ours.backward(w);
  EXPECT_TRUE(same(z, w));
  qkr_dft_def_free_descriptor_external(&descriptor);
  EXPECT_EQ(ours.try_forward(std::span(w).first(119)), invalid);
}

// X[k] of real signals beside fft, through every layout, in one and two dimensions.
TEST(CxxDft, RealSignals) {
  for (const size_t n : {30, 31}) {
    SCOPED_TRACE(n);
    const std::vector<float> x = numbers<float>(3 * n);
    std::vector<float> back(3 * n);
    const size_t half = n / 2 + 1;
    std::vector<std::complex<float>> expected(half), X(3 * half);
    qkr::fft<float> line{n};
    const qkr::dft<float> batch{n, {.backward_scale = 1.0 / double(n), .transforms = 3}};
    EXPECT_EQ(batch.signal_size(), 3 * n);
    EXPECT_EQ(batch.spectrum_size(), 3 * half);
    batch.forward(x, X);
    for (size_t t = 0; t < 3; ++t) {
      line.forward(std::span(x).subspan(t * n, n), expected);
      for (size_t k = 0; k < half; ++k) ASSERT_LT(std::abs(X[t * half + k] - expected[k]), 1e-5f);
    }
    batch.backward(X, back);
    for (size_t i = 0; i < 3 * n; ++i) ASSERT_NEAR(back[i], x[i], 1e-5f);
    EXPECT_EQ(batch.try_forward(x, std::span(X).first(3 * half - 1)), invalid);
    EXPECT_EQ(batch.try_forward(std::span(x).first(3 * n - 1), X), invalid);
    EXPECT_EQ(batch.try_forward(x, std::span(back)), invalid);  // not packed
  }
  for (const auto stored : {qkr::spectrum::ccs, qkr::spectrum::pack, qkr::spectrum::perm})
    for (const qkr::shape &lengths : {qkr::shape(12), qkr::shape(13), qkr::shape(12, 10), qkr::shape(7, 5)})
      for (const size_t transforms : {1, 2}) {
        SCOPED_TRACE(testing::Message()
                     << int(stored) << ' ' << lengths[0] << ' ' << lengths.size() << ' ' << transforms);
        size_t n = 1;
        for (size_t d = 0; d < lengths.size(); ++d) n *= size_t(lengths[d]);
        const qkr::dft<double> f{
            lengths, {.backward_scale = 1.0 / double(n), .transforms = transforms, .stored = stored}};
        const std::vector<double> x = numbers<double>(transforms * n);
        ASSERT_EQ(f.signal_size(), x.size());
        // Nothing is written behind what spectrum_size() counts.
        std::vector<double> packed(f.spectrum_size() + 1, 77), back(x.size());
        f.forward(x, packed);
        EXPECT_EQ(packed.back(), 77);
        const auto last_row = packed.end() - (lengths.size() == 2 ? lengths[0] + 3 : 3);
        EXPECT_LT(std::count(last_row, packed.end(), 77), packed.end() - last_row);
        f.backward(packed, back);
        for (size_t i = 0; i < x.size(); ++i) ASSERT_NEAR(back[i], x[i], 1e-12);
        EXPECT_EQ(f.try_forward(x, std::span(packed).first(f.spectrum_size() - 1)), invalid);
      }
}

// The columns of an array are a batch with stride m and distance 1.
TEST(CxxDft, StridesLifeAndThreads) {
  constexpr size_t n = 8, m = 5;
  const std::vector<std::complex<double>> a = numbers<std::complex<double>>(n * m);
  std::vector<std::complex<double>> data = a, column(n), expected(n);
  const qkr::dft<std::complex<double>> columns{
      n, {.transforms = m, .input_distance = 1, .input_strides = {m}, .thread_limit = 2}};
  EXPECT_EQ(columns.signal_size(), n * m);
  columns.forward(data);
  const auto compute = [&] {
    std::vector<std::complex<double>> own(n * m);
    for (int round = 0; round < 20'000; ++round) EXPECT_TRUE(columns.try_forward(own).ok());
  };
  std::thread other(compute);
  compute();
  other.join();
  qkr::fft<std::complex<double>> line{n};
  for (size_t j = 0; j < m; ++j) {
    for (size_t i = 0; i < n; ++i) column[i] = a[i * m + j];
    line.forward(column, expected);
    for (size_t i = 0; i < n; ++i) ASSERT_LT(std::abs(data[i * m + j] - expected[i]), 1e-13);
  }
  qkr::dft<double> first{{4, 8, 15}}, second = std::move(first);
  std::vector<double> x(480);
  std::vector<std::complex<double>> X(3 * 8 * 15);
  EXPECT_EQ(first.try_forward(x, X).code(), DFTX_BAD_DESCRIPTOR);
  EXPECT_TRUE(second.try_forward(x, X).ok());
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
  EXPECT_THROW((qkr::dft<float>{{0, 3}}), qkr::error);
}

}  // namespace
