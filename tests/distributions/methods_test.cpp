// What single distributions promise beyond their values.
#include <algorithm>
#include <cmath>
#include <limits>
#include <qkr/distributions.h>
#include <qkr/streams_generators.h>

#include "tests/distributions/recorded_stream.h"
#include "tests/support/distribution_cases.h"

namespace {

using namespace qkr::tests;
using Doubles = std::vector<double>;

TEST(Gaussian, HoldsTheSecondHalfOfAPairOver) {
  const Stream stream = recorded_stream();
  double pair[2], single[2];
  _vxsdRngGaussian(1, stream.get(), 1, single, 0, 1);
  EXPECT_EQ(recording.next, 2u);
  const double *pending = static_cast<double *>(__vxsSearchChunk(stream.get(), 2));
  ASSERT_NE(pending, nullptr);
  EXPECT_EQ(pending[0], recording.numbers[0]);
  EXPECT_EQ(pending[1], recording.numbers[1]);
  double other;
  _vxsdRngGaussian(0, stream.get(), 1, &other, 0, 1);  // leaves the pair alone
  EXPECT_EQ(recording.next, 4u);
  _vxsdRngGaussian(1, stream.get(), 1, single + 1, 5, 2);
  EXPECT_EQ(recording.next, 4u);
  EXPECT_EQ(pending[0], -1);
  EXPECT_EQ(pending[1], -1);
  _vxsdRngGaussian(1, recorded_stream().get(), 2, pair, 0, 1);
  EXPECT_EQ(single[0], pair[0]);
  EXPECT_EQ(single[1], pair[1] * 2 + 5);
}

TEST(Gaussian, WithNothingAskedForStillGivesThePendingHalf) {
  const Stream stream = recorded_stream();
  double out[2] = {7, 7};
  _vxsdRngGaussian(1, stream.get(), 1, out, 0, 1);
  out[0] = 7;
  EXPECT_EQ(_vxsdRngGaussian(1, stream.get(), 0, out, 0, 1), VXS_STATUS_OK);
  EXPECT_NE(out[0], 7);
  EXPECT_EQ(out[1], 7);
  EXPECT_EQ(recording.next, 4u);
  EXPECT_EQ(static_cast<double *>(__vxsSearchChunk(stream.get(), 2))[0], recording.numbers[2]);
}

TEST(Gamma, HoldsACandidateOver) {
  const Stream stream = recorded_stream();
  double x;
  _vxsdRngGamma(0, stream.get(), 1, &x, 3, 0, 1);
  double *pending = static_cast<double *>(__vxsSearchChunk(stream.get(), 7));
  ASSERT_NE(pending, nullptr);
  EXPECT_EQ(recording.next, 4u);
  EXPECT_EQ(pending[0], recording.numbers[3]);
  pending[0] = -0.5;  // as good as none
  _vxsdRngGamma(0, stream.get(), 1, &x, 3, 0, 1);
  EXPECT_EQ(recording.next, 8u);
}

TEST(Uniform, StaysInsideItsBoundsInTheAccurateForm) {
  const Stream stream = recorded_stream();
  Doubles &numbers = recording.numbers;
  const Doubles saved = numbers;
  const double above = std::nextafter(1.0, 2), nan = std::numeric_limits<double>::quiet_NaN();
  numbers = {-0.25, 0.0, 0.5, 1.0, above, nan};
  Doubles free(6), bounded(6);
  _vxsdRngUniform(0, stream.get(), 6, free.data(), 0, 1);
  _vxsdRngUniform(VXS_METHOD_ACCURATE, stream.get(), 6, bounded.data(), 0, 1);
  EXPECT_EQ(free[0], -0.25);
  EXPECT_EQ(free[4], above);
  EXPECT_EQ(bounded, (Doubles{0, 0, 0.5, 1, 1, 0}));
  numbers = saved;
}

TEST(Exponential, OfZeroIsTheFloorOfTheLogarithm) {
  const Stream stream = recorded_stream();
  const Doubles saved = recording.numbers;
  recording.numbers = {0.0};
  double x;
  float single;
  int32_t whole;
  _vxsdRngExponential(0, stream.get(), 1, &x, 1, 2);
  EXPECT_EQ(x, 1 + 2 * 744.4400719213812);
  _vxssRngExponential(0, stream.get(), 1, &single, 0, 1);
  EXPECT_EQ(single, 103.2789306640625f);
  _vxsiRngGeometric(0, stream.get(), 1, &whole, 0.5);
  EXPECT_EQ(whole, 149);  // the floor stands for ln 2^-149
  recording.numbers = saved;
}

TEST(Uniform, BitsAreTheGeneratorsWords) {
  for (const uint32_t id : {0x400000u, 0x500000u, 0x800000u, 276u}) {
    const Stream ours = new_stream(id, {5}), its = new_stream(id, {5});
    const std::vector<uint32_t> expected = draw_words(its, 33);
    std::vector<uint32_t> words(expected.size());
    EXPECT_EQ(_vxsiRngUniformBits(0, ours.get(), 33, words.data()), VXS_STATUS_OK);
    EXPECT_EQ(words, expected);
  }
}

TEST(Lognormal, IgnoresTheMethod) {
  Doubles a(9), b(9);
  _vxsdRngLognormal(0, recorded_stream().get(), 9, a.data(), 0, 1, 0, 1);
  _vxsdRngLognormal(1, recorded_stream().get(), 9, b.data(), 0, 1, 0, 1);
  EXPECT_EQ(a, b);
}

TEST(Laplace, AsksForTheRestEvenIfThereIsNone) {
  Doubles x(1024);
  for (const auto &[n, draws] : {std::pair{0, 1}, {1, 1}, {1023, 1}, {1024, 2}}) {
    const Stream stream = recorded_stream();
    recording.until_failure = 100;
    _vxsdRngLaplace(0, stream.get(), n, x.data(), 0, 1);
    EXPECT_EQ(100 - recording.until_failure, draws) << n;
  }
}

template <class T, class Draw, class DrawVectors>
void expect_vectors(Draw gaussian, DrawVectors vectors, int32_t d, int32_t storage, int32_t method) {
  const Factor factor = {d, storage == 2};
  const std::vector<T> mean = factor.means<T>(), t = factor.stored<T>(storage);
  const int32_t n = 5 + 1100 / d;
  std::vector<T> z(n * d), x(n * d);
  gaussian(method, recorded_stream().get(), n * d, z.data(), 0, 1);
  const Stream stream = recorded_stream();
  for (const auto &[first, count] : {std::pair{0, 3}, {3, n - 3}})
    EXPECT_EQ(vectors(method, stream.get(), count, &x[first * d], d, storage, mean.data(), t.data()),
              VXS_STATUS_OK);
  const bool untouched = storage == 3 && d > 1;
  for (int32_t k = 0; k < n * d; ++k) {
    const int32_t j = k % d;
    double sum = factor.mean(j), magnitude = std::abs(sum);
    for (int32_t i = 0; i <= j; ++i) {
      const double term = factor.element(j, i) * z[k - j + i];
      sum += term;
      magnitude += std::abs(term);
    }
    ASSERT_NEAR(x[k], untouched ? z[k] : sum, magnitude * (4 + d) * std::numeric_limits<T>::epsilon())
        << "size " << d << ", storage " << storage << " [" << k << "]";
  }
}

TEST(GaussianMV, IsMeanPlusFactorTimesNormal) {
  for (int32_t d = 1; d <= 32; ++d)
    for (int32_t storage = 0; storage < 4; ++storage) {
      expect_vectors<double>(_vxsdRngGaussian, _vxsdRngGaussianMV, d, storage, 1);
      expect_vectors<float>(_vxssRngGaussian, _vxssRngGaussianMV, d, storage, d % 2);
    }
}

}  // namespace
