// Random distributions beside those of other libraries, each from the generators that make it fast.
//
//   bench_distributions [--quick] [--filter REGEX] [--benchmark_out=FILE.json ...]
//
// A benchmark is named DISTRIBUTION.FORM.GENERATOR/LEVEL/N/CONTENDER, for instance
// Gaussian1.f64.MT19937/avx2/1000/qkr; the generator is ours. The peers are compiled for every processor, and
// stand beside each level of ours with generators of their own: CONTENDER is library-generator, and LEVEL
// any. bench/report.py makes tables and plots of the file.
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

struct Generator {
  const char *name;
  uint32_t id;

  StreamState *stream() const {
    StreamState *made = nullptr;
    const uint32_t seed = 7;
    if (__vxsNewStreamEx(&made, id, 1, &seed) != VXS_STATUS_OK) std::abort();
    return made;
  }
};
constexpr Generator generators[] = {{"MT19937", 0x800000}, {"MCG59", 0x400000}};

template <class T>
using Ours = std::function<void(StreamState *stream, int n, T *out)>;
template <class T>
using Fill = std::function<void(int n, T *out)>;
template <class T>
using Contenders = std::vector<std::pair<const char *, Fill<T>>>;

// Calls of a function of one number.
template <class T, class Next>
Fill<T> one_by_one(Next next) {
  return [next](int n, T *out) mutable {
    for (int i = 0; i < n; ++i) out[i] = static_cast<T>(next());
  };
}
template <class T, class Distribution, class Engine>
Fill<T> drawn(Distribution d, Engine engine) {
  return one_by_one<T>([d, engine]() mutable { return d(engine); });
}
template <class T, class Distribution>
Contenders<T> of_standard(Distribution d) {
  return {{"std-mt19937", drawn<T>(d, std::mt19937())}, {"std-mt19937_64", drawn<T>(d, std::mt19937_64())}};
}
template <class T, class Distribution>
Contenders<T> of_boost(Distribution d) {
  return {{"boost-mt19937", drawn<T>(d, boost::random::mt19937())},
          {"boost-mt19937_64", drawn<T>(d, boost::random::mt19937_64())},
          {"boost-taus88", drawn<T>(d, boost::random::taus88())},
          {"boost-rand48", drawn<T>(d, boost::random::rand48())}};
}
template <class T, class Draw>
Contenders<T> of_gsl(Draw draw) {
  const auto with = [=](const gsl_rng_type *type) {
    return one_by_one<T>([draw, engine = gsl_rng_alloc(type)] { return draw(engine); });
  };
  return {{"gsl-mt19937", with(gsl_rng_mt19937)}, {"gsl-gfsr4", with(gsl_rng_gfsr4)}};
}

// A distribution made anew for each number, and one for each call.
template <class Engine, class Draw>
Contenders<int32_t> of_means(const char *name, Draw draw, const std::vector<double> &means) {
  return {{name, [=, engine = Engine(), &means](int n, int32_t *out) mutable {
             for (int i = 0; i < n; ++i) out[i] = draw(engine, means[size_t(i)]);
           }}};
}
#define NEW_STD(D, ...)                                                        \
  Contenders<T> {                                                              \
    {                                                                          \
      "std-mt19937", [engine = std::mt19937(), k = 0](int n, T *out) mutable { \
        const double shift = 1e-9 * (k = (k + 1) % 1000);                      \
        std::D##_distribution<T> d(__VA_ARGS__);                               \
        for (int i = 0; i < n; ++i) out[i] = d(engine);                        \
      }                                                                        \
    }                                                                          \
  }

struct Choice {
  bool quick;
  const std::regex &filter;

  std::vector<int> sizes() const { return quick ? std::vector{1000} : std::vector{1, 10, 1000, 1000000}; }

  template <class T>
  void add(const std::string &name, Level level, int n, const char *contender, Fill<T> fill) const {
    static std::vector<T> out(1000000);
    if (!std::regex_search(name, filter)) return;
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
      force_level(level);
      for (auto _ : state) {
        fill(n, out.data());
        benchmark::ClobberMemory();
      }
      state.counters["elements"] = n;
      if (std::string(contender) == "qkr") state.counters["aim"] = 1;
    });
  }

  template <class T, class... Peers>
  void row(const std::string &name, const Ours<T> &ours, const Peers &...peers) const {
    for (const Generator &generator : generators)
      for (const int n : sizes()) {
        const std::string function = name + '.' + generator.name + '/', size = '/' + std::to_string(n) + '/';
        const Level widest = supported_level();
        for (int level = 0; level <= static_cast<int>(widest); ++level)
          add<T>(function + level_names[level] + size + "qkr", static_cast<Level>(level), n, "qkr",
                 [ours, stream = generator.stream()](int m, T *out) { ours(stream, m, out); });
        const auto add_all = [&](const Contenders<T> &library) {
          for (const auto &[contender, fill] : library)
            add<T>(function + "any" + size + contender, widest, n, contender, fill);
        };
        (add_all(peers), ...);
      }
  }
};

#define QKR(D, method, ...)                                                         \
  [](StreamState *stream, int n, T *out) {                                          \
    if constexpr (sizeof(T) == 8) _vxsdRng##D(method, stream, n, out, __VA_ARGS__); \
    else _vxssRng##D(method, stream, n, out, __VA_ARGS__);                          \
  }
#define STD(D, ...) of_standard<T>(std::D##_distribution<T>(__VA_ARGS__))
#define BOOST(D, ...) of_boost<T>(boost::random::D##_distribution<T>(__VA_ARGS__))
#define GSL(D, ...) of_gsl<T>([](gsl_rng *engine) { return gsl_ran_##D(engine, __VA_ARGS__); })

template <class T>
void add_reals(const Choice &choice) {
  const auto row = [&](const char *name, const auto &...contenders) {
    choice.row<T>(std::string(name) + (sizeof(T) == 8 ? ".f64" : ".f32"), contenders...);
  };
  row("Uniform", QKR(Uniform, 0, 0, 1), STD(uniform_real, 0, 1), BOOST(uniform_real, 0, 1), GSL(flat, 0, 1));
  row("Exponential", QKR(Exponential, 0, 0, 1), STD(exponential, 1), BOOST(exponential, 1),
      GSL(exponential, 1));
  row("Laplace", QKR(Laplace, 0, 0, 1), BOOST(laplace, 0, 1), GSL(laplace, 1));
  row("Weibull", QKR(Weibull, 0, 2, 0, 1), STD(weibull, 2, 1), BOOST(weibull, 2, 1), GSL(weibull, 1, 2));
  row("Cauchy", QKR(Cauchy, 0, 0, 1), STD(cauchy, 0, 1), BOOST(cauchy, 0, 1), GSL(cauchy, 1));
  row("Rayleigh", QKR(Rayleigh, 0, 0, 1), GSL(rayleigh, 1));
  row("Gumbel", QKR(Gumbel, 0, 0, 1), STD(extreme_value, 0, 1), BOOST(extreme_value, 0, 1),
      GSL(gumbel1, 1, 1));
  row("Lognormal", QKR(Lognormal, 0, 0, 1, 0, 1), STD(lognormal, 0, 1), BOOST(lognormal, 0, 1),
      GSL(lognormal, 0, 1));
  row("Gaussian0", QKR(Gaussian, 0, 0, 1), STD(normal, 0, 1), BOOST(normal, 0, 1), GSL(gaussian_ziggurat, 1));
  row("Gaussian1", QKR(Gaussian, 1, 0, 1), STD(normal, 0, 1), BOOST(normal, 0, 1), GSL(gaussian_ziggurat, 1));
  row("Gamma_0.3", QKR(Gamma, 0, T(0.3), 0, 1), STD(gamma, T(0.3), 1), BOOST(gamma, T(0.3), 1),
      GSL(gamma, 0.3, 1));
  row("Gamma_0.8", QKR(Gamma, 0, T(0.8), 0, 1), STD(gamma, T(0.8), 1), BOOST(gamma, T(0.8), 1),
      GSL(gamma, 0.8, 1));
  row("Gamma_3", QKR(Gamma, 0, 3, 0, 1), STD(gamma, 3, 1), BOOST(gamma, 3, 1), GSL(gamma, 3, 1));
  row("Beta_0.2_0.3", QKR(Beta, 0, T(0.2), T(0.3), 0, 1), BOOST(beta, T(0.2), T(0.3)), GSL(beta, 0.2, 0.3));
  row("Beta_0.8_0.7", QKR(Beta, 0, T(0.8), T(0.7), 0, 1), BOOST(beta, T(0.8), T(0.7)), GSL(beta, 0.8, 0.7));
  row("Beta_0.5_3", QKR(Beta, 0, T(0.5), 3, 0, 1), BOOST(beta, T(0.5), 3), GSL(beta, 0.5, 3));
  row("Beta_2_3", QKR(Beta, 0, 2, 3, 0, 1), BOOST(beta, 2, 3), GSL(beta, 2, 3));
}

void add_all(bool quick, const std::regex &filter) {
  const Choice choice = {quick, filter};
  add_reals<double>(choice);
  add_reals<float>(choice);
  using T = int32_t;
#define QKR_INTEGERS(D, ...) \
  [](StreamState *stream, int n, T *out) { _vxsiRng##D(0, stream, n, out, __VA_ARGS__); }
  choice.row<T>("Uniform.i32", QKR_INTEGERS(Uniform, 0, 1000), STD(uniform_int, 0, 999),
                BOOST(uniform_int, 0, 999),
                of_gsl<T>([](gsl_rng *engine) { return gsl_rng_uniform_int(engine, 1000); }));
  choice.row<T>("Bernoulli.i32", QKR_INTEGERS(Bernoulli, 0.3),
                of_standard<T>(std::bernoulli_distribution(0.3)),
                of_boost<T>(boost::random::bernoulli_distribution<double>(0.3)), GSL(bernoulli, 0.3));
  choice.row<T>("Geometric.i32", QKR_INTEGERS(Geometric, 0.3), STD(geometric, 0.3),
                of_boost<T>(boost::random::geometric_distribution<T, double>(0.3)), GSL(geometric, 0.3));

  // With one set of parameters, whose set-up is kept, and with others for each call, which std:: and Boost
  // also have to set up.
#define GSL_WHOLE(draw, ...) of_gsl<T>([](gsl_rng *engine) { return T(gsl_ran_##draw(engine, __VA_ARGS__)); })
#define QKR_NEW(D, ...)                                 \
  [k = 0](StreamState *stream, int n, T *out) mutable { \
    const double shift = 1e-9 * (k = (k + 1) % 1000);   \
    _vxsiRng##D(0, stream, n, out, __VA_ARGS__);        \
  }
  const auto row = [&](const char *name, const auto &...contenders) { choice.row<T>(name, contenders...); };
  row("Binomial_50_0.3.i32", QKR_INTEGERS(Binomial, 50, 0.3), STD(binomial, 50, 0.3),
      of_boost<T>(boost::random::binomial_distribution<T>(50, 0.3)), GSL_WHOLE(binomial, 0.3, 50));
  row("Binomial_1000_0.4.i32", QKR_INTEGERS(Binomial, 1000, 0.4), STD(binomial, 1000, 0.4),
      of_boost<T>(boost::random::binomial_distribution<T>(1000, 0.4)), GSL_WHOLE(binomial, 0.4, 1000));
  row("Binomial_1000_0.4_new.i32", QKR_NEW(Binomial, 1000, 0.4 + shift), NEW_STD(binomial, 1000, 0.4 + shift),
      GSL_WHOLE(binomial, 0.4, 1000));
  row("Hypergeometric_small.i32", QKR_INTEGERS(Hypergeometric, 1000, 100, 200),
      GSL_WHOLE(hypergeometric, 200, 800, 100));
  row("Hypergeometric_large.i32", QKR_INTEGERS(Hypergeometric, 10000, 1000, 4000),
      GSL_WHOLE(hypergeometric, 4000, 6000, 1000));
  row("Negbinomial_5_0.3.i32", QKR_INTEGERS(Negbinomial, 5, 0.3), STD(negative_binomial, 5, 0.3),
      of_boost<T>(boost::random::negative_binomial_distribution<T>(5, 0.3)),
      GSL_WHOLE(negative_binomial, 0.3, 5));
  row("Negbinomial_200_0.3.i32", QKR_INTEGERS(Negbinomial, 200, 0.3), STD(negative_binomial, 200, 0.3),
      of_boost<T>(boost::random::negative_binomial_distribution<T>(200, 0.3)),
      GSL_WHOLE(negative_binomial, 0.3, 200));
  row("Poisson_5.i32", QKR_INTEGERS(Poisson, 5), STD(poisson, 5),
      of_boost<T>(boost::random::poisson_distribution<T>(5)), GSL_WHOLE(poisson, 5));
  row("Poisson_500.i32", QKR_INTEGERS(Poisson, 500), STD(poisson, 500),
      of_boost<T>(boost::random::poisson_distribution<T>(500)), GSL_WHOLE(poisson, 500));
  row("Poisson_500_new.i32", QKR_NEW(Poisson, 500 + shift), NEW_STD(poisson, 500 + shift),
      GSL_WHOLE(poisson, 500));
  row(
      "Poisson1_500.i32", [](StreamState *stream, int n, T *out) { _vxsiRngPoisson(1, stream, n, out, 500); },
      STD(poisson, 500), of_boost<T>(boost::random::poisson_distribution<T>(500)), GSL_WHOLE(poisson, 500));
  static const std::vector<double> means = [] {
    std::vector<double> all(1000000);
    for (size_t i = 0; i < all.size(); ++i) all[i] = 0.5 + double((i * 2654435761u) % 1000);
    return all;
  }();
  row(
      "PoissonV.i32",
      [](StreamState *stream, int n, T *out) { _vxsiRngPoissonV(0, stream, n, out, means.data()); },
      of_means<std::mt19937>(
          "std-mt19937", [](auto &engine, double mean) { return std::poisson_distribution<T>(mean)(engine); },
          means),
      of_means<boost::random::taus88>(
          "boost-taus88",
          [](auto &engine, double mean) { return boost::random::poisson_distribution<T>(mean)(engine); },
          means));
}

}  // namespace
}  // namespace qkr::bench

int main(int argc, char **argv) { return qkr::bench::run(argc, argv, qkr::bench::add_all); }
