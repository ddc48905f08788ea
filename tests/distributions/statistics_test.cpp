// All distributions beside the distribution functions of Boost.Math, with shapes on both sides of each border
// between methods: the test of Kolmogorov and Smirnov, mean and variance for real numbers, chi-square for
// integers. A real number stands for all that round to it: near a displacement there may be many.
//
// The seeds are fixed, so a test passes always or never. With a seed drawn at random a perfect library would
// fail each of the about 200 comparisons with probability 1e-7, and any of them with 2e-5.
#include <algorithm>
#include <array>
#include <boost/math/distributions.hpp>
#include <cmath>
#include <functional>
#include <map>
#include <qkr/distributions.h>

#include "tests/streams/stream.h"

namespace {

using namespace qkr::tests;
namespace math = boost::math;

constexpr double smallest_probability = 1e-7;
constexpr uint32_t mt19937 = 0x800000;

Stream stream_of(uint32_t seed) { return new_stream(mt19937, {seed}); }

// Asymptotic: n is large.
double kolmogorov_upper_tail(double distance, size_t n) {
  const double x = distance * (std::sqrt(static_cast<double>(n)) + 0.12);
  double sum = 0;
  for (int k = 1; k <= 50; ++k) sum += (k % 2 ? 2 : -2) * std::exp(-2.0 * k * k * x * x);
  return std::min(1.0, sum);
}

void expect_normal(double deviation, const std::string &what) {
  EXPECT_GT(2 * math::cdf(math::complement(math::normal(), std::abs(deviation))), smallest_probability)
      << what;
}

// What a real distribution is compared with. NaN where there is no moment.
struct Law {
  std::function<double(double x)> cdf;
  double mean, variance, excess_kurtosis;
};
constexpr double undefined = std::numeric_limits<double>::quiet_NaN();

// Of `factor` times a number of this law, plus `displacement`.
template <class Distribution>
Law law(Distribution d, double displacement = 0, double factor = 1) {
  return {[=](double x) {
            const double y = (x - displacement) / factor;
            const auto [low, high] = math::support(d);
            if (factor < 0) return y >= high ? 0.0 : y <= low ? 1.0 : math::cdf(math::complement(d, y));
            return y <= low ? 0.0 : y >= high ? 1.0 : math::cdf(d, y);
          },
          math::mean(d) * factor + displacement, math::variance(d) * factor * factor,
          math::kurtosis_excess(d)};
}

template <class T>
struct RealRow {
  std::string name;
  std::function<int32_t(StreamState *stream, int32_t n, T *out)> draw;
  Law law;
};

template <class T>
void expect_law(const RealRow<T> &row, uint32_t seed) {
  std::vector<T> x(20000);
  ASSERT_EQ(row.draw(stream_of(seed).get(), static_cast<int32_t>(x.size()), x.data()), VXS_STATUS_OK);
  std::sort(x.begin(), x.end());
  const double n = static_cast<double>(x.size());
  double distance = 0, mean = 0, variance = 0;
  for (size_t i = 0; i < x.size(); ++i) {
    const double deviation = x[i] - row.law.mean, rank = static_cast<double>(i);
    const double rounding = 4 * std::numeric_limits<T>::epsilon() * (1 + std::abs(x[i]));
    distance = std::max(
        {distance, row.law.cdf(x[i] - rounding) - rank / n, (rank + 1) / n - row.law.cdf(x[i] + rounding)});
    mean += deviation / n;
    variance += deviation * deviation / n;
  }
  EXPECT_GT(kolmogorov_upper_tail(distance, x.size()), smallest_probability) << row.name << " " << distance;
  if (std::isnan(row.law.mean)) return;
  expect_normal(mean / std::sqrt(row.law.variance / n), row.name + ": mean");
  if (row.law.excess_kurtosis < 20)  // the sum is near enough to normal
    expect_normal((variance / row.law.variance - 1) / std::sqrt((row.law.excess_kurtosis + 2) / n),
                  row.name + ": variance");
}

// row("Gamma", 0, law, parameters...)
#define ROW(D, method, law, ...)                                                                   \
  RealRow<T> {                                                                                     \
#D " " #__VA_ARGS__, [=](StreamState *stream, int32_t n, T *out) {                               \
      if constexpr (sizeof(T) == 8) return _vxsdRng##D(method, stream, n, out, __VA_ARGS__);         \
      else return _vxssRng##D(method, stream, n, out, __VA_ARGS__);                                  \
    }, law \
  }

template <class T>
std::vector<RealRow<T>> real_rows() {
  const Law cauchy = {[](double x) { return math::cdf(math::cauchy(1, 2), x); }, undefined, undefined,
                      undefined};
  std::vector<RealRow<T>> rows = {
      ROW(Uniform, 0, law(math::uniform(-1, 3)), -1, 3),
      ROW(Exponential, 0, law(math::exponential(0.5), 3), 3, 2),
      ROW(Laplace, 0, law(math::laplace(1, 2)), 1, 2),
      ROW(Cauchy, 0, cauchy, 1, 2),
      ROW(Rayleigh, 0, law(math::rayleigh(std::sqrt(2.0)), 1), 1, 2),
      ROW(Weibull, 0, law(math::weibull(0.8, 2), 1), T(0.8), 1, 2),
      ROW(Weibull, 0, law(math::weibull(1, 2), 1), 1, 1, 2),
      ROW(Weibull, 0, law(math::weibull(5, 2), 1), 5, 1, 2),
      ROW(Gumbel, 0, law(math::extreme_value(-3, 2), 0, -1), 3, 2),
      ROW(Lognormal, 0, law(math::lognormal(1, 0.5), 3, 2), 1, 0.5, 3, 2),
      ROW(Gaussian, 0, law(math::normal(1, 2)), 1, 2),
      ROW(Gaussian, 1, law(math::normal(1, 2)), 1, 2),
  };
  for (const double alpha : {0.1, 0.3, 0.59, 0.6, 0.61, 0.9, 0.999, 1.0, 1.001, 1.5, 3.0, 30.0, 1000.0}) {
    rows.push_back(ROW(Gamma, 0, law(math::gamma_distribution(alpha, 2.0), 1), T(alpha), 1, 2));
    rows.back().name += " with alpha " + std::to_string(alpha);
  }
  const std::array<double, 2> all_shapes[] = {
      {0.1, 0.2}, {0.5, 0.5}, {0.5, 0.74}, {0.5, 0.75}, {0.95, 0.15}, {0.95, 0.2}, {0.9, 0.9},
      {0.3, 1.2}, {0.9, 9},   {1.2, 0.3},  {9, 0.9},    {1.01, 1.01}, {1.5, 4},    {40, 3},
      {1, 1},     {1, 0.4},   {1, 5},      {0.4, 1},    {5, 1}};
  for (const std::array<double, 2> &shapes : all_shapes)
    for (const int32_t method : {0, int32_t{VXS_METHOD_ACCURATE}}) {
      const double p = shapes[0], q = shapes[1];
      rows.push_back(ROW(Beta, method, law(math::beta_distribution(p, q), 1, 2), T(p), T(q), 1, 2));
      rows.back().name += " with p " + std::to_string(p) + ", q " + std::to_string(q);
    }
  return rows;
}

TEST(Statistics, DoublesFollowTheirLaws) {
  uint32_t seed = 1000;
  for (const RealRow<double> &row : real_rows<double>()) expect_law(row, ++seed);
}

TEST(Statistics, FloatsFollowTheirLaws) {
  uint32_t seed = 2000;
  for (const RealRow<float> &row : real_rows<float>()) expect_law(row, ++seed);
}

// Values whose expected count is below 10 are taken together.
void expect_frequencies(const std::string &name, const std::vector<int32_t> &numbers,
                        const std::function<double(int32_t k)> &probability) {
  std::map<int32_t, double> counts;
  for (const int32_t k : numbers) counts[k] += 1;
  const double n = static_cast<double>(numbers.size());
  double statistic = 0, rest_probability = 1, rest_count = n;
  int classes = 0;
  for (const auto &[k, count] : counts) {
    const double expected = n * probability(k);
    ASSERT_GT(expected, 0) << name << ": " << k;
    if (expected < 10) continue;
    statistic += (count - expected) * (count - expected) / expected;
    rest_probability -= expected / n;
    rest_count -= count;
    ++classes;
  }
  const double expected = n * rest_probability;
  if (expected > 5) {
    statistic += (rest_count - expected) * (rest_count - expected) / expected;
    ++classes;
  } else {
    EXPECT_LT(rest_count, 40) << name;
  }
  if (classes < 2) return;
  const double upper_tail = math::cdf(math::complement(math::chi_squared(classes - 1), statistic));
  EXPECT_GT(upper_tail, smallest_probability) << name;
}

TEST(Statistics, IntegersFollowTheirLaws) {
  std::vector<int32_t> numbers(100000);
  const int32_t n = static_cast<int32_t>(numbers.size());
  for (const double p : {0.0, 1e-4, 0.3, 0.5, 0.999, 1.0}) {
    ASSERT_EQ(_vxsiRngBernoulli(0, stream_of(3001).get(), n, numbers.data(), p), VXS_STATUS_OK);
    expect_frequencies("Bernoulli " + std::to_string(p), numbers, [=](int32_t k) { return k ? p : 1 - p; });
  }
  for (const double p : {0.01, 0.3, 0.5, 0.9, 0.999}) {
    ASSERT_EQ(_vxsiRngGeometric(0, stream_of(3002).get(), n, numbers.data(), p), VXS_STATUS_OK);
    expect_frequencies("Geometric " + std::to_string(p), numbers,
                       [=](int32_t k) { return math::pdf(math::geometric(p), k); });
  }
  const std::array<int32_t, 2> ends[] = {{0, 2}, {-5, 6}, {-1000, 1000}, {INT32_MAX - 3, INT32_MAX}, {7, 8}};
  for (const auto &[a, b] : ends)
    for (const int32_t count : {n, 2049, 1}) {
      numbers.resize(static_cast<size_t>(count));
      ASSERT_EQ(_vxsiRngUniform(0, stream_of(3003).get(), count, numbers.data(), a, b), VXS_STATUS_OK);
      const double width = double(b) - a;
      const int32_t low = a, high = b;
      expect_frequencies("Uniform " + std::to_string(a), numbers,
                         [=](int32_t k) { return k >= low && k < high ? 1 / width : 0; });
      numbers.resize(static_cast<size_t>(n));
    }
}

// (x - mean)' of a covariance T T': the variances and covariances of the elements.
TEST(Statistics, VectorsHaveTheirCovariance) {
  constexpr int32_t n = 50000, d = 3;
  const double mean[d] = {1, -2, 0.5}, full[] = {2, 0, 0, 1, 0.5, 0, -1, 3, 0.25};
  std::vector<double> x(n * d);
  ASSERT_EQ(_vxsdRngGaussianMV(1, stream_of(4000).get(), n, x.data(), d, 0, mean, full), VXS_STATUS_OK);
  const auto covariance = [&](int i, int j) {
    double sum = 0;
    for (int k = 0; k < d; ++k) sum += full[i * d + k] * full[j * d + k];
    return sum;
  };
  for (int i = 0; i < d; ++i)
    for (int j = 0; j <= i; ++j) {
      double sum = 0;
      for (int32_t v = 0; v < n; ++v) sum += (x[v * d + i] - mean[i]) * (x[v * d + j] - mean[j]);
      const double deviation =
          std::sqrt((covariance(i, i) * covariance(j, j) + covariance(i, j) * covariance(i, j)) / n);
      expect_normal((sum / n - covariance(i, j)) / deviation, "covariance " + std::to_string(3 * i + j));
    }
}

}  // namespace
