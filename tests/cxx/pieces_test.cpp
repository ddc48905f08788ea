// Arrays longer than one call of the C interface takes, here 64 elements: the results of one whole call.
#include <gtest/gtest.h>
#include <numeric>
#include <qkr/qkr.hpp>
#include <vector>

namespace {

static_assert(qkr::detail::longest_piece == 64);
constexpr size_t sizes[] = {63, 64, 65, 128, 1000};

std::vector<double> ramp(size_t n) {
  std::vector<double> x(n);
  std::iota(x.begin(), x.end(), 1.0);
  return x;
}

TEST(CxxPieces, VectorFunctions) {
  for (const size_t n : sizes) {
    const std::vector<double> x = ramp(n);
    std::vector<double> y(n), z(n), expected(n), expected2(n);
    qkr::log(x, y);
    _vxmdLn_HA(int32_t(n), x.data(), expected.data());
    EXPECT_EQ(y, expected);
    qkr::pow(y, x, y);
    _vxmdPow_HA(int32_t(n), expected.data(), x.data(), expected.data());
    EXPECT_EQ(y, expected);
    qkr::sincos(x, y, z);
    _vxmdSinCos_HA(int32_t(n), x.data(), expected.data(), expected2.data());
    EXPECT_EQ(y, expected);
    EXPECT_EQ(z, expected2);
    std::vector<std::complex<double>> w(n);
    for (size_t i = 0; i < n; ++i) w[i] = {x[i], 1};
    qkr::sqrt(w, w);
    for (size_t i = 0; i < n; ++i) {
      std::vector<std::complex<double>> one = {{x[i], 1}};
      qkr::sqrt(one, one);
      ASSERT_EQ(w[i], one[0]);
    }
  }
}

TEST(CxxPieces, Draws) {
  const std::vector<double> mean = {1, 2, 3}, deviation = {1, 2, 3};
  for (const size_t n : sizes) {
    SCOPED_TRACE(n);
    qkr::stream ours{qkr::mt19937, 7}, other = ours.clone();
    const auto count = int32_t(n);
    std::vector<double> x(n), expected(n), vectors(3 * n), expected_vectors(3 * n);
    ours.normal(x, 1, 2);
    _vxsdRngGaussian(1, other.handle(), count, expected.data(), 1, 2);
    EXPECT_EQ(x, expected);
    ours.normal_vectors(vectors, mean, deviation, qkr::storage::diagonal);
    _vxsdRngGaussianMV(1, other.handle(), count, expected_vectors.data(), 3, 2, mean.data(),
                       deviation.data());
    EXPECT_EQ(vectors, expected_vectors);
    std::vector<int32_t> k(n), expected_k(n);
    const std::vector<double> means = ramp(n);
    ours.poisson(k, means);
    _vxsiRngPoissonV(0, other.handle(), count, expected_k.data(), means.data());
    EXPECT_EQ(k, expected_k);
    ours.uniform_53(x);
    qkr_uniform_53(other.handle(), count, expected.data(), 0, 1);
    EXPECT_EQ(x, expected);
    EXPECT_EQ(ours(), other());
    qkr::stream large{qkr::wh(5), 3}, large_other = large.clone();
    std::vector<uint32_t> words(4 * n), expected_words(4 * n);
    large.bits(words);
    _vxsiRngUniformBits(0, large_other.handle(), count, expected_words.data());
    EXPECT_EQ(words, expected_words);
  }
  // The status of the piece that fails, of an array that is then unfinished.
  static double buffer[4];
  static int left;
  left = 20;
  const auto update = [](StreamState *, int32_t *, double *out, int32_t *, int32_t *free, int32_t *position) {
    for (int32_t i = 0; i < *free; ++i) out[(*position + i) % 4] = 0.5;
    return left-- > 0 ? *free : 0;
  };
  qkr::stream s = qkr::stream::abstract_of(std::span(buffer), 0.0, 1.0, AbstractUpdateD(update));
  std::vector<double> x(1000);
  EXPECT_EQ(s.try_uniform(x).code(), VXS_STATUS_NO_NUMBERS);
}

TEST(CxxPieces, ArraysOfElements) {
  for (const size_t n : sizes) {
    SCOPED_TRACE(n);
    const std::vector<double> x = ramp(2 * n);
    std::vector<double> y(n), z(2 * n), dense(n);
    qkr::pack(x, 2, y);
    for (size_t i = 0; i < n; ++i) ASSERT_EQ(y[i], double(2 * i + 1));
    qkr::unpack(y, z, 2);
    std::vector<int32_t> mask(2 * n), index(n);
    for (size_t i = 0; i < n; ++i) mask[2 * i] = 1, index[i] = int32_t(2 * i);
    qkr::pack_where(x, mask, dense);
    EXPECT_EQ(dense, y);
    std::vector<double> spread(2 * n);
    qkr::unpack_where(y, spread, mask);
    EXPECT_EQ(spread, z);
    qkr::pack(x, index, dense);
    EXPECT_EQ(dense, y);
    std::vector<int32_t> whole(n);
    qkr::convert(y, whole);
    for (size_t i = 0; i < n; ++i) ASSERT_EQ(whole[i], int32_t(2 * i + 1));
  }
}

}  // namespace
