// Random streams beside other libraries' generators, and beside their own definitions one step at a time.
//
//   bench_streams [--quick] [--filter REGEX] [--benchmark_out=FILE.json ...]
//
// A benchmark is named GENERATOR.FORM/LEVEL/N/CONTENDER, for instance MT19937.f64/avx2/1000/boost; "step" is
// the generator's definition as a plain loop, compiled for the level. Forms are u32 (MCG59: u64, WH: 4u32),
// f64 and f32, and `new`, the making and deleting of a stream. bench/report.py makes tables and plots of the
// file.
#include <array>
#include <benchmark/benchmark.h>
#include <boost/random/mersenne_twister.hpp>
#include <cstring>
#include <functional>
#include <gsl/gsl_qrng.h>
#include <gsl/gsl_rng.h>
#include <memory>
#include <qkr/streams_generators.h>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "run.h"
#include "simd/level.h"
#include "streams/peers.h"

namespace qkr::bench {
namespace {

constexpr const char *level_names[] = {"sse2", "avx2", "avx512"};
const Peers *const peers_of_level[] = {&sse2::peers, &avx2::peers, &avx512::peers};

// Twice the speed of the best that takes one step at a time, three times, six times.
constexpr double aims[] = {1.0 / 2, 1.0 / 3, 1.0 / 6};
constexpr int from_aim = 1000;  // shorter blocks are only to be no slower

struct Generator {
  const char *name;
  uint32_t id;
  uint32_t dimensions;  // the seed
  const char *word_form = "u32";
};
const Generator generators[] = {{"MCG31M1", 0x100000, 1},
                                {"R250", 0x200000, 1},
                                {"MRG32K3A", 0x300000, 1},
                                {"MCG59", 0x400000, 1, "u64"},
                                {"WH", 0x500000, 1, "4u32"},
                                {"Sobol1", 0x600000, 1},
                                {"Sobol3", 0x600000, 3},
                                {"Sobol10", 0x600000, 10},
                                {"Sobol40", 0x600000, 40},
                                {"Niederr100", 0x700000, 100},
                                {"MT19937", 0x800000, 1},
                                {"MT2203", 0x900000, 1},
                                {"Philox", static_cast<uint32_t>(qkr_philox()), 1}};

using Stream = std::unique_ptr<StreamState, void (*)(StreamState *)>;
Stream new_stream(const Generator &generator) {
  StreamState *stream = nullptr;
  if (__vxsNewStreamEx(&stream, generator.id, 1, &generator.dimensions) != VXS_STATUS_OK) std::abort();
  return {stream, [](StreamState *s) { __vxsDeleteStream(&s); }};
}

template <class T>
struct Form;
template <>
struct Form<uint32_t> {
  static auto entry(const BrngRecord &g) {
    return [=](StreamState *s, int n, uint32_t *out) { g.iBrng(s, n, out); };
  }
};
template <>
struct Form<double> {
  static auto entry(const BrngRecord &g) {
    return [=](StreamState *s, int n, double *out) { g.dBrng(s, n, out, 0, 1); };
  }
};
template <>
struct Form<float> {
  static auto entry(const BrngRecord &g) {
    return [=](StreamState *s, int n, float *out) { g.sBrng(s, n, out, 0, 1); };
  }
};

struct Ours {
  double aim = 0;
  size_t bytes = 0;  // of a number
};

void measure(const std::string &name, int n, Ours ours, int level, std::function<void()> run) {
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
    force_level(static_cast<Level>(level));
    for (auto _ : state) {
      run();
      benchmark::ClobberMemory();
    }
    state.counters["elements"] = n;
    if (ours.aim > 0) state.counters["aim"] = ours.aim;
    if (ours.bytes > 0) state.counters["bytes"] = static_cast<double>(ours.bytes);
  });
}

template <class T>
void add_form(const Generator &generator, const char *form, const std::vector<int> &sizes,
              const std::regex &filter) {
  static std::vector<T> out(4 * 1000000 + 16);
  BrngRecord record;
  __vxsGetBrngProperties(static_cast<int32_t>(generator.id), &record);
  for (int level = 0; level <= static_cast<int>(supported_level()); ++level) {
    for (const int n : sizes) {
      const std::string prefix =
          std::string(generator.name) + '.' + form + '/' + level_names[level] + '/' + std::to_string(n) + '/';
      if (!std::regex_search(prefix, filter)) continue;
      const std::shared_ptr<StreamState> stream = new_stream(generator);
      const auto entry = Form<T>::entry(record);
      const size_t bytes = std::is_same_v<T, uint32_t> ? static_cast<size_t>(record.WordSize) : sizeof(T);
      measure(prefix + "qkr", n, {n >= from_aim ? aims[level] : 1.0, bytes}, level,
              [=] { entry(stream.get(), n, out.data()); });
      const auto add_peers = [&](const Peer<T> *peers) {
        for (const Peer<T> *peer = peers; peer->name; ++peer)
          if (strcmp(peer->generator, generator.name) == 0)
            measure(prefix + peer->name, n, {}, level, [=] { peer->draw(n, out.data()); });
      };
      const Peers &peers = *peers_of_level[level];
      if constexpr (std::is_same_v<T, uint32_t>) add_peers(peers.words), add_peers(peers.more_words);
      if constexpr (std::is_same_v<T, float>) add_peers(peers.singles);
      if constexpr (std::is_same_v<T, double>) add_peers(peers.doubles), add_peers(peers.more_doubles);
    }
  }
}

void add_creation(const Generator &generator, const std::regex &filter) {
  const std::string prefix = std::string(generator.name) + ".new/sse2/1/";
  if (!std::regex_search(prefix, filter)) return;
  measure(prefix + "qkr", 1, {}, 0, [&generator] { new_stream(generator); });
  if (strcmp(generator.name, "MT19937") == 0) {
    measure(prefix + "std", 1, {}, 0, [] { benchmark::DoNotOptimize(std::mt19937(7)); });
    measure(prefix + "boost", 1, {}, 0, [] { benchmark::DoNotOptimize(boost::random::mt19937(7)); });
    measure(prefix + "gsl", 1, {}, 0, [] { gsl_rng_free(gsl_rng_alloc(gsl_rng_mt19937)); });
  } else if (strcmp(generator.name, "R250") == 0) {
    measure(prefix + "gsl", 1, {}, 0, [] { gsl_rng_free(gsl_rng_alloc(gsl_rng_r250)); });
  } else if (generator.id == 0x600000) {
    measure(prefix + "gsl", 1, {}, 0,
            [=] { gsl_qrng_free(gsl_qrng_alloc(gsl_qrng_sobol, generator.dimensions)); });
  }
}

void add_all(bool quick, const std::regex &filter) {
  const std::vector<int> blocks = quick ? std::vector{1000} : std::vector{1000, 1000000};
  const std::vector<int> with_short =
      quick ? blocks : std::vector{1, 2, 4, 8, 16, 32, 64, 128, 256, 1000, 1000000};
  for (const Generator &generator : generators) {
    add_form<uint32_t>(generator, generator.word_form, blocks, filter);
    add_form<double>(generator, "f64", with_short, filter);
    add_form<float>(generator, "f32", blocks, filter);
    add_creation(generator, filter);
  }
}

}  // namespace
}  // namespace qkr::bench

int main(int argc, char **argv) { return qkr::bench::run(argc, argv, qkr::bench::add_all); }
