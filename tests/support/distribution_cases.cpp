#define BOOST_MATH_PROMOTE_DOUBLE_POLICY false
#include "tests/support/distribution_cases.h"

#include <algorithm>
#include <boost/math/distributions.hpp>
#include <charconv>
#include <cmath>
#include <cstring>
#include <deque>
#include <limits>
#include <memory>
#include <stdexcept>

#include "tests/support/vector_functions.h"

namespace qkr::tests {
namespace {

namespace math = boost::math;

// Of `factor` times a number that follows d, plus `displacement`.
template <class Distribution>
Law continuous(Distribution d, double displacement = 0, double factor = 1) {
  std::pair<double, double> support = math::support(d);
  if (support.first == std::numeric_limits<double>::min()) support.first = 0;  // says Boost of (0, infinity)
  const double ends[] = {support.first * factor + displacement, support.second * factor + displacement};
  const auto below = [=](double x) {
    const double y = (x - displacement) / factor;
    if (y <= support.first || y >= support.second) return (y <= support.first) == (factor > 0) ? 0.0 : 1.0;
    return factor > 0 ? math::cdf(d, y) : math::cdf(math::complement(d, y));
  };
  const auto quantile = [=](double p, double q) {
    if (factor < 0) std::swap(p, q);
    return (p < q ? math::quantile(d, p) : math::quantile(math::complement(d, q))) * factor + displacement;
  };
  return {below, quantile, std::min(ends[0], ends[1]), std::max(ends[0], ends[1])};
}

// Whole numbers from `lowest` to `highest`.
template <class Below>
Law whole(Below below, double lowest, double highest) {
  const auto quantile = [=](double p, double) {
    double low = lowest, high = highest;
    while (low < high) {
      const double middle = std::floor((low + high) / 2);
      if (below(middle + 1) >= p) high = middle;
      else low = middle + 1;
    }
    return low;
  };
  return {[=](double x) { return x <= lowest   ? 0.0
                                 : x > highest ? 1.0
                                               : below(x); }, quantile, lowest,
          highest, true};
}

// Gamma of 10^15 is as good as normal: its skewness is 2 / sqrt(alpha).
Law gamma(double alpha, double displacement, double factor) {
  if (alpha > 1e12) return continuous(math::normal(alpha, std::sqrt(alpha)), displacement, factor);
  return continuous(math::gamma_distribution(alpha, factor), displacement);
}

// Beta of shapes from 10^6 on, for which Boost.Math takes long. Of equal ones it is nearly normal, with an
// excess of -6 / (2 p + 3); with p below 4, it is nearly Gamma's, with relative errors of p / q.
Law beta(double p, double q, double displacement, double factor) {
  if (q < 1e6) return continuous(math::beta_distribution(p, q), displacement, factor);
  if (p == q) return continuous(math::normal(0.5, 0.5 / std::sqrt(2 * p + 1)), displacement, factor);
  Law law = continuous(math::gamma_distribution(p, 1 / (q + (p - 1) / 2)), displacement, factor);
  law.highest = displacement + factor;
  return law;
}

Law whole_uniform(double a, double b) {
  return whole([=](double x) { return (x - a) / (b - a); }, a, b - 1);
}

// A uniform number is below p if it is less than the float f from p on: if, before rounding, it was nearer to
// the float below f.
Law bernoulli(double p) {
  float f = static_cast<float>(p);
  if (f < p) f = std::nextafter(f, 2.0f);
  const double success = p > 0 ? (double(std::nextafter(f, -1.0f)) + f) / 2 : 0;
  return whole([=](double) { return 1 - success; }, 0, 1);
}

Law geometric(double p) {
  return whole([=](double x) { return -std::expm1(x * std::log1p(-p)); }, 0, INT32_MAX);
}

Law single(double number) {
  return whole([](double) { return 0.0; }, number, number);
}

// Masses from the mode on both ways, with ratio(k) that of k + 1 to that of k.
template <class Ratio>
Law by_ratios(double mode, double lowest, double highest, Ratio ratio) {
  constexpr long double negligible = 1e-22L;
  std::deque<long double> mass = {1};
  double first = mode;
  for (double k = mode; k < highest && mass.back() > negligible; ++k) mass.push_back(mass.back() * ratio(k));
  for (; first > lowest && mass.front() > negligible; --first)
    mass.push_front(mass.front() / ratio(first - 1));
  long double total = 0, sum = 0;
  for (const long double p : mass) total += p;
  const auto below = std::make_shared<std::vector<double>>();
  for (const long double p : mass) {
    below->push_back(double(sum / total));
    sum += p;
  }
  below->push_back(1);
  const double last = static_cast<double>(mass.size());
  return whole([=](double x) { return (*below)[size_t(std::clamp(x - first, 0.0, last))]; }, lowest, highest);
}

Law binomial(double n, double p) {
  if (n == 0 || p == 0) return single(0);
  if (p == 1) return single(n);
  return by_ratios(std::floor((n + 1) * p), 0, n,
                   [=](long double k) { return (n - k) * p / ((k + 1) * (1 - (long double)p)); });
}

Law hypergeometric(double l, double s, double m) {
  const double lowest = std::max(0.0, s + m - l), highest = std::min(s, m);
  if (lowest == highest) return single(lowest);
  return by_ratios(std::floor((s + 1) * (m + 1) / (l + 2)), lowest, highest,
                   [=](long double k) { return (s - k) * (m - k) / ((k + 1) * (l - s - m + k + 1)); });
}

Law negative_binomial(double a, double p) {
  if (a == 0 || p == 1) return single(0);
  const long double q = 1 - (long double)p;
  return by_ratios(std::max(0.0, double(std::floor((a - 1) * q / p))), 0, INT32_MAX,
                   [=](long double k) { return q * (a + k) / (k + 1); });
}

Law poisson(double mean) {
  if (mean == 0) return single(0);
  return by_ratios(std::floor(mean), 0, INT32_MAX, [=](long double k) { return mean / (k + 1); });
}

template <class T>
struct Family {
  const char *name;
  int32_t (*draw)(int32_t method, StreamState *stream, int32_t n, T *out, const double *p);
  Law (*law)(const double *p);
};

// A row for entry D in the precision of T, called with the rest of the arguments.
#define ROW(D, entry, law, ...)                                                                            \
  {                                                                                                        \
#D, [](int32_t method, StreamState * stream, int32_t n, T * out,                                       \
           [[maybe_unused]] const double                                                                   \
               *p) { return entry(method, stream, n, __VA_ARGS__); }, []([[maybe_unused]] const double *p) \
                                                                           -> Law { return law; }          \
  }
#define REAL(D, law, ...) ROW(D, (either<T>(_vxsdRng##D, _vxssRng##D)), law, out, __VA_ARGS__)
#define WHOLE(D, law, ...) ROW(D, _vxsiRng##D, law, __VA_ARGS__)

template <class T>
const std::vector<Family<T>> &families() {
  static const std::vector<Family<T>> all = {
      REAL(Uniform, continuous(math::uniform(p[0], p[1])), p[0], p[1]),
      REAL(Exponential, continuous(math::exponential(1 / p[1]), p[0]), p[0], p[1]),
      REAL(Laplace, continuous(math::laplace(p[0], p[1])), p[0], p[1]),
      REAL(Weibull, continuous(math::weibull(p[0], p[2]), p[1]), p[0], p[1], p[2]),
      REAL(Cauchy, continuous(math::cauchy(p[0], p[1])), p[0], p[1]),
      REAL(Rayleigh, continuous(math::rayleigh(p[1] / std::sqrt(2.0)), p[0]), p[0], p[1]),
      REAL(Lognormal, continuous(math::lognormal(p[0], p[1]), p[2], p[3]), p[0], p[1], p[2], p[3]),
      REAL(Gumbel, continuous(math::extreme_value(-p[0], p[1]), 0, -1), p[0], p[1]),
      REAL(Gaussian, continuous(math::normal(p[0], p[1])), p[0], p[1]),
      REAL(Gamma, gamma(p[0], p[1], p[2]), p[0], p[1], p[2]),
      REAL(Beta, beta(p[0], p[1], p[2], p[3]), p[0], p[1], p[2], p[3])};
  return all;
}

template <>
const std::vector<Family<int32_t>> &families() {
  using T = int32_t;
  static const std::vector<Family<int32_t>> all = {
      WHOLE(Uniform, whole_uniform(p[0], p[1]), out, int32_t(p[0]), int32_t(p[1])),
      WHOLE(UniformBits, whole_uniform(-0x1p31, 0x1p31), reinterpret_cast<uint32_t *>(out)),
      WHOLE(Bernoulli, bernoulli(p[0]), out, p[0]),
      WHOLE(Geometric, geometric(p[0]), out, p[0]),
      WHOLE(Binomial, binomial(p[0], p[1]), out, int32_t(p[0]), p[1]),
      WHOLE(Hypergeometric, hypergeometric(p[0], p[1], p[2]), out, int32_t(p[0]), int32_t(p[1]),
            int32_t(p[2])),
      WHOLE(Negbinomial, negative_binomial(p[0], p[1]), out, p[0], p[1]),
      WHOLE(Poisson, poisson(p[0]), out, p[0]),
      WHOLE(PoissonV, poisson(p[0]), out, std::vector(size_t(n), p[0]).data())};
  return all;
}

template <class T>
const Family<T> &family_of(const Case &a_case) {
  for (const Family<T> &family : families<T>())
    if (strcmp(family.name, a_case.family) == 0) return family;
  throw std::logic_error(a_case.family);
}

// Cases of one family, a list of parameters each.
using Parameters = std::initializer_list<std::vector<double>>;
struct Cases {
  std::vector<Case> rows;
  void add(const char *family, Parameters parameters, int32_t method = 0, bool has_law = true) {
    for (const std::vector<double> &each : parameters) rows.push_back({family, each, method, has_law});
  }
};

template <class T>
std::vector<Case> all_cases() {
  Cases all;
  all.add("Uniform", {{-1, 3}});
  all.add("Uniform", {{-1, 3}}, VXS_METHOD_ACCURATE);
  all.add("Exponential", {{0, 1}, {3, 2}});
  all.add("Laplace", {{1, 2}});
  all.add("Weibull", {{0.75, 1, 2}, {1, 0, 2}, {5, 0, 2}});
  all.add("Cauchy", {{1, 2}});
  all.add("Rayleigh", {{1, 2}});
  all.add("Lognormal", {{1, 0.5, 3, 2}});
  all.add("Gumbel", {{-3, 2}});
  all.add("Gaussian", {{1, 2}}, 0);
  all.add("Gaussian", {{1, 2}}, 1);
  const double largest = sizeof(T) == 8 ? 1e15 : 1e7, next_to_border = std::nextafter(T(0.6), T(0));
  all.add("Gamma", {{0.3, 1, 2}, {3, 1, 2}});
  for (const double alpha : {0.05, 0.3, 0.59, next_to_border, 0.6, 0.61, 0.9, 0.999})
    all.add("Gamma", {{alpha, 0, 2}});
  for (const double alpha : {1.0, 1.001, 1.5, 2.5, 30.0, 1000.0, 1e6, largest})
    all.add("Gamma", {{alpha, 0, 2}});
  const double shapes[][2] = {{0.1, 0.2},  {0.5, 0.5},   {0.5, 0.74}, {0.5, 0.75}, {0.95, 0.15},
                              {0.95, 0.2}, {0.9, 0.9},   {0.25, 3},   {0.9, 9},    {3, 0.25},
                              {9, 0.9},    {1.01, 1.01}, {1.01, 8},   {2, 3},      {40, 3},
                              {1, 1},      {1, 0.4},     {1, 5},      {0.4, 1},    {5, 1}};
  for (const auto &[p, q] : shapes) all.add("Beta", {{p, q, 0, 2}});
  all.add("Beta", {{0.5, 0.5, 1, 2}, {0.95, 0.2, 1, 2}, {0.25, 3, 1, 2}, {2, 3, 1, 2}}, VXS_METHOD_ACCURATE);
  for (const double q : {1e6, largest})
    for (const double p : {q, 0.02, 0.5, 1.0, 3.0}) all.add("Beta", {{p, q, 0, 2}});
  for (Case &each : all.rows)
    for (double &parameter : each.parameters) parameter = T(parameter);
  return all.rows;
}

// Both sides of each border between methods, and what is degenerate.
template <>
std::vector<Case> all_cases<int32_t>() {
  constexpr double largest = INT32_MAX;
  Cases all;
  all.add("Uniform", {{-3, 4}, {6, 7}, {-1000, 1000}, {INT32_MIN, INT32_MAX}});
  all.add("UniformBits", {{}});
  all.add("Bernoulli", {{0}, {0.001}, {0.3}, {0.5}, {0.999}, {1}});
  all.add("Geometric", {{0x1p-30}, {0x1p-54}}, 0, false);
  all.add("Geometric", {{0.001}, {0.3}, {0.5}, {0.9}, {0.999}});
  all.add("Binomial", {{0, 0.3}, {10, 0}, {10, 1}, {1, 0.3}, {40, 0.5}, {59, 0.5}, {60, 0.5}, {61, 0.5}});
  all.add("Binomial", {{99, 0.3}, {100, 0.3}, {100, 0.7}, {1000, 0.0299}, {1000, 0.03}, {1e4, 0.4}});
  all.add("Binomial", {{1e6, 0.999}, {largest, 1e-8}, {largest, 0.25}});
  all.add("Hypergeometric", {{0, 0, 0}, {10, 0, 5}, {10, 10, 4}, {10, 4, 10}, {2, 1, 1}});
  all.add("Hypergeometric", {{20, 5, 7}, {20, 15, 7}, {20, 5, 14}, {20, 15, 14}});
  all.add("Hypergeometric", {{1000, 100, 395}, {1000, 100, 399}, {1000, 200, 210}, {1000, 800, 300}});
  all.add("Hypergeometric", {{1000, 800, 900}, {1000, 300, 900}, {5000, 2000, 2400}, {1e6, 1e5, 3e5}});
  all.add("Hypergeometric", {{largest, 1e9, 1e9}, {largest, 4e7, 1000}});
  all.add("Negbinomial", {{0, 0.3}, {3, 1}, {1, 0.3}, {0.1, 0.5}, {0.3, 0.001}, {1.5, 0.01}, {40, 0.4}});
  all.add("Negbinomial", {{100, 0.4976}, {100, 0.4974}, {2, 0.0099}, {2, 0.01}, {30.5, 1e-3}});
  all.add("Negbinomial", {{1e6, 0.5}, {1e9, 0.999999}, {1e12, 0.9999999}});
  for (const double mean : {0.0, 1e-6, 0.3, 5.0, 26.999, 27.0, 30.0, 99.9, 100.0, 200.5, 1e4, 1e6, 1e9})
    for (int32_t method = 0; method < 2; ++method) all.add("Poisson", {{mean}}, method);
  all.add("PoissonV", {{0.001}});
  // The errors of their laws are too large for those counts: see Poisson's own tests.
  for (double mean = 0.0625; mean < 3e5; mean *= 1.9) all.add("PoissonV", {{mean}}, 0, false);
  return all.rows;
}

}  // namespace

template <class T>
const std::vector<Case> &cases() {
  static const std::vector<Case> all = all_cases<T>();
  return all;
}

template <class T>
int32_t draw(const Case &a_case, StreamState *stream, int32_t n, T *out) {
  return family_of<T>(a_case).draw(a_case.method, stream, n, out, a_case.parameters.data());
}

template <class T>
std::string name_of(const Case &a_case) {
  std::string name = a_case.family, separator = "(";
  for (const double p : a_case.parameters) {
    char text[32];
    if (std::is_same_v<T, float>) *std::to_chars(text, text + 31, static_cast<float>(p)).ptr = 0;
    else *std::to_chars(text, text + 31, p).ptr = 0;
    name += separator + text;
    separator = ", ";
  }
  if (!a_case.parameters.empty()) name += ")";
  if (a_case.method == VXS_METHOD_ACCURATE) name += " accurate";
  else if (a_case.method) name += " method " + std::to_string(a_case.method);
  return name;
}

template <class T>
Law law_of(const Case &a_case) {
  return family_of<T>(a_case).law(a_case.parameters.data());
}

#define INSTANTIATE(T)                                              \
  template const std::vector<Case> &cases<T>();                     \
  template int32_t draw(const Case &, StreamState *, int32_t, T *); \
  template std::string name_of<T>(const Case &);                    \
  template Law law_of<T>(const Case &);
INSTANTIATE(double)
INSTANTIATE(float)
INSTANTIATE(int32_t)

}  // namespace qkr::tests
