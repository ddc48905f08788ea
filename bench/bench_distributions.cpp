// Random distributions beside those of other libraries, all from a Mersenne twister.
//
//   bench_distributions [--quick] [--filter REGEX] [--benchmark_out=FILE.json ...]
//
// A benchmark is named DISTRIBUTION.FORM/LEVEL/N/CONTENDER, for instance Gaussian1.f64/avx2/1000/gsl. The
// peers are compiled for every processor, and stand beside each level of ours. bench/report.py makes tables
// and plots of the file.
#include <benchmark/benchmark.h>
#include <boost/random.hpp>
#include <functional>
#include <gsl/gsl_randist.h>
#include <qkr/distributions.h>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "run.h"
#include "simd/level.h"

namespace qkr::bench {
namespace {

constexpr const char *level_names[] = {"sse2", "avx2", "avx512"};
constexpr uint32_t mt19937 = 0x800000;

StreamState *stream() {
  static StreamState *const made = [] {
    StreamState *s = nullptr;
    const uint32_t seed = 7;
    if (__vxsNewStreamEx(&s, mt19937, 1, &seed) != VXS_STATUS_OK) std::abort();
    return s;
  }();
  return made;
}

std::mt19937_64 standard;
boost::random::mt19937 boosts;
gsl_rng *const gsl = gsl_rng_alloc(gsl_rng_mt19937);

template <class T>
using Fill = std::function<void(int n, T *out)>;

// Calls of a function of one number.
template <class T, class Next>
Fill<T> one_by_one(Next next) {
  return [next](int n, T *out) mutable {
    for (int i = 0; i < n; ++i) out[i] = static_cast<T>(next());
  };
}
template <class T, class Distribution>
Fill<T> of_standard(Distribution d) {
  return one_by_one<T>([d]() mutable { return d(standard); });
}
template <class T, class Distribution>
Fill<T> of_boost(Distribution d) {
  return one_by_one<T>([d]() mutable { return d(boosts); });
}

template <class T>
void add(const std::string &name, const std::vector<std::pair<const char *, Fill<T>>> &contenders, bool quick,
         const std::regex &filter) {
  static std::vector<T> out(1000000);
  for (int level = 0; level <= static_cast<int>(supported_level()); ++level)
    for (const int n : quick ? std::vector{1000} : std::vector{1, 10, 1000, 1000000})
      for (const auto &[contender, fill] : contenders) {
        const std::string full = name + '/' + level_names[level] + '/' + std::to_string(n) + '/' + contender;
        if (!std::regex_search(full, filter)) continue;
        benchmark::RegisterBenchmark(full.c_str(), [=, fill = fill](benchmark::State &state) {
          force_level(static_cast<Level>(level));
          for (auto _ : state) {
            fill(n, out.data());
            benchmark::ClobberMemory();
          }
          state.counters["elements"] = n;
          if (std::string(contender) == "qkr") state.counters["aim"] = 1;
        });
      }
}

#define QKR(D, method, ...)                                                             \
  {                                                                                     \
    "qkr", [](int n, T *out) {                                                          \
      if constexpr (sizeof(T) == 8) _vxsdRng##D(method, stream(), n, out, __VA_ARGS__); \
      else _vxssRng##D(method, stream(), n, out, __VA_ARGS__);                          \
    }                                                                                   \
  }
#define STD(D, ...) \
  { "std", of_standard<T>(std::D##_distribution<T>(__VA_ARGS__)) }
#define BOOST(D, ...) \
  { "boost", of_boost<T>(boost::random::D##_distribution<T>(__VA_ARGS__)) }
#define GSL(D, ...)                                                    \
  {                                                                    \
    "gsl", one_by_one<T>([] { return gsl_ran_##D(gsl, __VA_ARGS__); }) \
  }

template <class T>
void add_reals(bool quick, const std::regex &filter) {
  const auto row = [&](const char *name, const std::vector<std::pair<const char *, Fill<T>>> &contenders) {
    add<T>(std::string(name) + (sizeof(T) == 8 ? ".f64" : ".f32"), contenders, quick, filter);
  };
  row("Uniform",
      {QKR(Uniform, 0, 0, 1), STD(uniform_real, 0, 1), BOOST(uniform_real, 0, 1), GSL(flat, 0, 1)});
  row("Exponential",
      {QKR(Exponential, 0, 0, 1), STD(exponential, 1), BOOST(exponential, 1), GSL(exponential, 1)});
  row("Laplace", {QKR(Laplace, 0, 0, 1), BOOST(laplace, 0, 1), GSL(laplace, 1)});
  row("Weibull", {QKR(Weibull, 0, 2, 0, 1), STD(weibull, 2, 1), BOOST(weibull, 2, 1), GSL(weibull, 1, 2)});
  row("Cauchy", {QKR(Cauchy, 0, 0, 1), STD(cauchy, 0, 1), BOOST(cauchy, 0, 1), GSL(cauchy, 1)});
  row("Rayleigh", {QKR(Rayleigh, 0, 0, 1), GSL(rayleigh, 1)});
  row("Gumbel",
      {QKR(Gumbel, 0, 0, 1), STD(extreme_value, 0, 1), BOOST(extreme_value, 0, 1), GSL(gumbel1, 1, 1)});
  row("Lognormal",
      {QKR(Lognormal, 0, 0, 1, 0, 1), STD(lognormal, 0, 1), BOOST(lognormal, 0, 1), GSL(lognormal, 0, 1)});
  row("Gaussian0",
      {QKR(Gaussian, 0, 0, 1), STD(normal, 0, 1), BOOST(normal, 0, 1), GSL(gaussian_ziggurat, 1)});
  row("Gaussian1",
      {QKR(Gaussian, 1, 0, 1), STD(normal, 0, 1), BOOST(normal, 0, 1), GSL(gaussian_ziggurat, 1)});
  row("Gamma_0.3",
      {QKR(Gamma, 0, T(0.3), 0, 1), STD(gamma, T(0.3), 1), BOOST(gamma, T(0.3), 1), GSL(gamma, 0.3, 1)});
  row("Gamma_0.8",
      {QKR(Gamma, 0, T(0.8), 0, 1), STD(gamma, T(0.8), 1), BOOST(gamma, T(0.8), 1), GSL(gamma, 0.8, 1)});
  row("Gamma_3", {QKR(Gamma, 0, 3, 0, 1), STD(gamma, 3, 1), BOOST(gamma, 3, 1), GSL(gamma, 3, 1)});
  row("Beta_0.2_0.3", {QKR(Beta, 0, T(0.2), T(0.3), 0, 1), BOOST(beta, T(0.2), T(0.3)), GSL(beta, 0.2, 0.3)});
  row("Beta_0.8_0.7", {QKR(Beta, 0, T(0.8), T(0.7), 0, 1), BOOST(beta, T(0.8), T(0.7)), GSL(beta, 0.8, 0.7)});
  row("Beta_0.5_3", {QKR(Beta, 0, T(0.5), 3, 0, 1), BOOST(beta, T(0.5), 3), GSL(beta, 0.5, 3)});
  row("Beta_2_3", {QKR(Beta, 0, 2, 3, 0, 1), BOOST(beta, 2, 3), GSL(beta, 2, 3)});
}

void add_all(bool quick, const std::regex &filter) {
  using T = int32_t;
#define QKR_INTEGERS(D, ...)                                                    \
  {                                                                             \
    "qkr", [](int n, T *out) { _vxsiRng##D(0, stream(), n, out, __VA_ARGS__); } \
  }
  add_reals<double>(quick, filter);
  add_reals<float>(quick, filter);
  add<T>("Uniform.i32",
         {QKR_INTEGERS(Uniform, 0, 1000),
          {"std", of_standard<T>(std::uniform_int_distribution<T>(0, 999))},
          {"boost", of_boost<T>(boost::random::uniform_int_distribution<T>(0, 999))},
          {"gsl", one_by_one<T>([] { return gsl_rng_uniform_int(gsl, 1000); })}},
         quick, filter);
  add<T>("Bernoulli.i32",
         {QKR_INTEGERS(Bernoulli, 0.3),
          {"std", of_standard<T>(std::bernoulli_distribution(0.3))},
          {"boost", of_boost<T>(boost::random::bernoulli_distribution<double>(0.3))},
          GSL(bernoulli, 0.3)},
         quick, filter);
  add<T>("Geometric.i32",
         {QKR_INTEGERS(Geometric, 0.3),
          {"std", of_standard<T>(std::geometric_distribution<T>(0.3))},
          {"boost", of_boost<T>(boost::random::geometric_distribution<T, double>(0.3))},
          GSL(geometric, 0.3)},
         quick, filter);
}

}  // namespace
}  // namespace qkr::bench

int main(int argc, char **argv) { return qkr::bench::run(argc, argv, qkr::bench::add_all); }
