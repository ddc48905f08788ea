// What single distributions promise beyond their values.
#include <algorithm>
#include <cmath>
#include <limits>
#include <qkr/distributions.h>
#include <qkr/streams_generators.h>

#include "tests/distributions/recorded_stream.h"
#include "tests/support/distribution_cases.h"
#include "tests/support/guarded.h"

namespace {

using namespace qkr::tests;
using Doubles = std::vector<double>;

TEST(Gaussian, HoldsTheSecondHalfOfAPairOver) {
  const Stream stream = recorded_stream();
  double pair[2], first, second, other;
  _vxsdRngGaussian(1, stream.get(), 1, &first, 0, 1);
  EXPECT_EQ(recording.next, 2u);
  const double *pending = static_cast<double *>(__vxsSearchChunk(stream.get(), 2));
  ASSERT_NE(pending, nullptr);
  EXPECT_TRUE(std::equal(pending, pending + 2, recording.numbers.begin()));
  _vxsdRngGaussian(0, stream.get(), 1, &other, 0, 1);  // leaves the pair alone
  EXPECT_EQ(recording.next, 4u);
  _vxsdRngGaussian(1, stream.get(), 1, &second, 5, 2);
  EXPECT_EQ(recording.next, 4u);
  EXPECT_TRUE(pending[0] == -1 && pending[1] == -1);
  // Where nothing is asked for, what is held over is given out all the same.
  _vxsdRngGaussian(1, stream.get(), 1, &other, 0, 1);
  double out[3] = {7, 7, 7};
  EXPECT_EQ(_vxsdRngGaussian(1, stream.get(), 0, out + 1, 0, 1), VXS_STATUS_OK);
  EXPECT_TRUE(out[0] == 7 && out[1] != 7 && out[2] == 7);
  EXPECT_TRUE(recording.next == 8 && pending[0] == recording.numbers[6]);
  _vxsdRngGaussian(1, recorded_stream().get(), 2, pair, 0, 1);
  EXPECT_EQ(first, pair[0]);
  EXPECT_EQ(second, pair[1] * 2 + 5);
}

TEST(Methods, MustBeKnown) {
  const Doubles untouched(4, 7), mean = {0, 0}, factor = {1, 1};
  Doubles x = untouched;
  for (const int32_t method : {2, -1, 3, int(VXS_METHOD_ACCURATE), INT32_MIN, INT32_MAX}) {
    const Stream stream = recorded_stream();
    std::vector<float> single(4, 7);
    EXPECT_EQ(_vxsdRngGaussian(method, stream.get(), 4, x.data(), 0, 1), VXS_STATUS_BAD_METHOD);
    EXPECT_EQ(_vxssRngGaussian(method, stream.get(), 4, single.data(), 0, 1), VXS_STATUS_BAD_METHOD);
    for (int32_t d = 1; d <= 2; ++d)
      EXPECT_EQ(_vxsdRngGaussianMV(method, stream.get(), 2, x.data(), d, 2, mean.data(), factor.data()),
                VXS_STATUS_BAD_METHOD);
    EXPECT_EQ(single, std::vector<float>(4, 7));
    EXPECT_EQ(recording.next, 0u);
  }
  EXPECT_EQ(x, untouched);
}

// Shapes with which the plain formulas overflow, underflow or never accept: numbers come, and have the mean
// of the law.
template <class T>
void expect_beta(double p, double q) {
  constexpr int32_t n = 4000;
  std::vector<T> x(n);
  const Stream stream = new_stream(0x800000, {11});
  ASSERT_EQ(draw(Case{"Beta", {p, q, 0, 1}}, stream.get(), n, x.data()), VXS_STATUS_OK);
  const long double P = T(p), Q = T(q), mean = P / (P + Q);
  const long double deviation = std::sqrt(mean * (Q / (P + Q)) / (P + Q + 1) / n);
  long double sum = 0;
  for (const T number : x) {
    ASSERT_TRUE(number >= 0 && number <= 1) << number << " of " << p << ", " << q;
    sum += number;
  }
  EXPECT_NEAR(double(sum / n), double(mean),
              double(6 * deviation + 4 * std::numeric_limits<T>::epsilon() * mean + 1e-6L / n))
      << p << ", " << q << ", precision " << sizeof(T);
}

TEST(Beta, EndsForAllShapes) {
  const double shapes[][2] = {{1e154, 1e154}, {1.7e308, 1.7e308}, {1.5, 1.7e308},   {1.7e308, 1.5},
                              {1e-9, 1e-9},   {1e-9, 2e-9},       {5e-324, 5e-324}, {1e-320, 0.04},
                              {1e-300, 0.99}, {1e-10, 0.99},      {0.99, 1e-10},    {1e-10, 1e300},
                              {0.5, 1.7e308}, {1.7e308, 0.5},     {1e-3, 0.97},     {0.9999, 1e200}};
  for (const auto &[p, q] : shapes) expect_beta<double>(p, q);
  const double singles[][2] = {{2e19, 2e19},   {3e38, 3e38}, {1.5, 3e38}, {3e38, 1.5}, {1e-3, 1e-3},
                               {1e-30, 1e-30}, {1e-5, 0.99}, {0.5, 3e38}, {3e38, 0.5}, {0.1, 0.05}};
  for (const auto &[p, q] : singles) expect_beta<float>(p, q);
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
  const double above = std::nextafter(1.0, 2), nan = std::numeric_limits<double>::quiet_NaN();
  Doubles numbers = {-0.25, 0.0, 0.5, 1.0, above, nan}, free(6), bounded(6);
  std::swap(recording.numbers, numbers);
  _vxsdRngUniform(0, stream.get(), 6, free.data(), 0, 1);
  _vxsdRngUniform(VXS_METHOD_ACCURATE, stream.get(), 6, bounded.data(), 0, 1);
  std::swap(recording.numbers, numbers);
  EXPECT_TRUE(free[0] == -0.25 && free[4] == above);
  EXPECT_EQ(bounded, (Doubles{0, 0, 0.5, 1, 1, 0}));
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

int32_t init_nothing(int32_t, StreamState *, int32_t, const void *) { return VXS_STATUS_OK; }
template <class T>
int32_t leave_as_they_are(StreamState *, int32_t, T *, T, T) {
  return VXS_STATUS_OK;
}
int32_t no_words(StreamState *, int32_t, uint32_t *) { return VXS_STATUS_OK; }

// Requests of 2^31 - 1 numbers from a generator of a user, who writes nothing: into an array whose pages are
// all the same few.
TEST(LongRequests, AreAsLongAsTheirTypeAllows) {
  const Repeated array(size_t(INT32_MAX) * 4);
  ASSERT_NE(array.data(), nullptr);
  const BrngRecord record = {
      24, 1, 1, 4, 32, init_nothing, leave_as_they_are<float>, leave_as_they_are<double>, no_words};
  const Stream stream = new_stream(static_cast<uint32_t>(__vxsRegisterBrng(&record)), {1});
  int32_t *const wholes = reinterpret_cast<int32_t *>(array.data());
  EXPECT_EQ(_vxsiRngUniform(0, stream.get(), INT32_MAX, wholes, 0, 10), VXS_STATUS_OK);
  EXPECT_EQ(_vxsiRngBernoulli(0, stream.get(), INT32_MAX, wholes, 1), VXS_STATUS_OK);
  EXPECT_EQ(wholes[INT32_MAX - 1], 1);
}

// n * d is 2^32 or 2^31, which 32 bits turn into nothing.
TEST(GaussianMV, CountsItsNumbersInFull) {
  double x[2];
  const double mean[1] = {}, t[1] = {1};
  for (const auto &[n, d] : {std::pair{65536, 65536}, {65536, 32768}}) {
    const Stream stream = recorded_stream();
    recording.until_failure = 1;
    EXPECT_EQ(_vxsdRngGaussianMV(0, stream.get(), n, x, d, 3, mean, t), recorded_failure);
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
