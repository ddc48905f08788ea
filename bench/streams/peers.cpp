#include "streams/peers.h"

#include <Random123/philox.h>
#include <boost/random/mersenne_twister.hpp>
#include <cstring>
#include <gsl/gsl_qrng.h>
#include <gsl/gsl_rng.h>
#include <random>
#include <type_traits>

#include "streams/blocks.h"
#include "streams/steps.h"

namespace qkr::bench::QKR_SIMD_LEVEL {
namespace {

// The engine works in a local copy: only then can a compiler keep it in registers.
template <class T, class Engine>
void draw(int n, T *out) {
  static Engine engine;
  Engine local = engine;
  for (int i = 0; i < n; ++i) {
    if constexpr (std::is_same_v<T, uint32_t> && requires { local.put(out); }) {
      local.put(out + 4 * i);
    } else if constexpr (std::is_same_v<T, uint32_t> && sizeof(local()) == 8) {
      const uint64_t word = local();
      memcpy(out + 2 * i, &word, sizeof word);
    } else if constexpr (std::is_same_v<T, uint32_t>) {
      out[i] = static_cast<uint32_t>(local());
    } else if constexpr (requires { Engine::scale; }) {
      out[i] = static_cast<T>(local() * Engine::scale);
    } else {
      out[i] = static_cast<T>(local() * (1.0 / (static_cast<double>(Engine::max()) + 1)));
    }
  }
  engine = local;
}

struct Philox {
  r123::Philox4x32 f;
  r123::Philox4x32::ctr_type counter = {}, block = {};
  r123::Philox4x32::key_type key = {{7, 8}};
  unsigned used = 4;
  static constexpr double scale = 0x1p-32;
  uint32_t operator()() {
    if (used == 4) {
      block = f(counter, key);
      counter.incr();
      used = 0;
    }
    return block[used++];
  }
};

using Minimal = std::linear_congruential_engine<uint32_t, 1132489760, 0, 2147483647>;

template <class T, const gsl_rng_type *const *type>
void draw_gsl(int n, T *out) {
  static gsl_rng *generator = gsl_rng_alloc(*type);
  for (int i = 0; i < n; ++i) {
    if constexpr (std::is_same_v<T, uint32_t>) out[i] = static_cast<uint32_t>(gsl_rng_get(generator));
    else out[i] = static_cast<T>(gsl_rng_uniform(generator));
  }
}

template <const gsl_qrng_type *const *type, int dimensions>
void draw_gsl_points(int n, double *out) {
  static gsl_qrng *generator = gsl_qrng_alloc(*type, dimensions);
  double last[dimensions];
  int i = 0;
  for (; i + dimensions <= n; i += dimensions) gsl_qrng_get(generator, out + i);
  if (i < n)
    gsl_qrng_get(generator, last), memcpy(out + i, last, sizeof(double) * static_cast<size_t>(n - i));
}

template <class T>
constexpr Peer<T> peers_of_type[] = {{"MCG31M1", "step", draw<T, Mcg31Step>},
                                     {"MCG31M1", "std", draw<T, Minimal>},
                                     {"R250", "step", draw<T, R250Step>},
                                     {"R250", "gsl", draw_gsl<T, &gsl_rng_r250>},
                                     {"MRG32K3A", "step", draw<T, Mrg32Step>},
                                     {"MRG32K3A", "gsl", draw_gsl<T, &gsl_rng_cmrg>},
                                     {"MCG59", "step", draw<T, Mcg59Step>},
                                     {"WH", "step", draw<T, WichmannHillStep>},
                                     {"Sobol1", "step", draw<T, DigitalStep<1>>},
                                     {"Sobol3", "step", draw<T, DigitalStep<3>>},
                                     {"Sobol10", "step", draw<T, DigitalStep<10>>},
                                     {"Sobol40", "step", draw<T, DigitalStep<40>>},
                                     {"Niederr100", "step", draw<T, DigitalStep<100>>},
                                     {"MT19937", "step", draw<T, Mt19937Step>},
                                     {"MT19937", "std", draw<T, std::mt19937>},
                                     {"MT19937", "boost", draw<T, boost::random::mt19937>},
                                     {"MT19937", "gsl", draw_gsl<T, &gsl_rng_mt19937>},
                                     {"MT19937", "philox", draw<T, Philox>},
                                     {"MT19937", "ranlxs", draw_gsl<T, &gsl_rng_ranlxs0>},
                                     {"MT19937", "xoshiro", draw_xoshiro<T>},
                                     {"MT2203", "step", draw<T, Mt2203Step>},
                                     {"Philox", "random123", draw<T, Philox>},
                                     {nullptr, nullptr, nullptr}};

constexpr Peer<uint32_t> only_words[] = {{"MT19937", "sfmt", draw_blocks<Sfmt>}, {nullptr, nullptr, nullptr}};
constexpr Peer<double> only_in_double[] = {{"MT19937", "std64", draw<double, std::mt19937_64>},
                                           {"MT19937", "dsfmt", draw_blocks<Dsfmt>},
                                           {"Sobol1", "gsl", draw_gsl_points<&gsl_qrng_sobol, 1>},
                                           {"Sobol3", "gsl", draw_gsl_points<&gsl_qrng_sobol, 3>},
                                           {"Sobol10", "gsl", draw_gsl_points<&gsl_qrng_sobol, 10>},
                                           {"Sobol40", "gsl", draw_gsl_points<&gsl_qrng_sobol, 40>},
                                           {nullptr, nullptr, nullptr}};

}  // namespace

const Peers peers = {peers_of_type<uint32_t>, peers_of_type<double>, peers_of_type<float>, only_words,
                     only_in_double};

}  // namespace qkr::bench::QKR_SIMD_LEVEL
