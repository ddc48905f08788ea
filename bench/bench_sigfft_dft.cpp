// Transforms of any length beside FFTW (measured and estimated plans), on the same arrays in one process; and
// the making of a plan beside FFTW's estimate.
//
//   bench_sigfft_dft [--quick] [--filter REGEX] [--benchmark_out=FILE.json ...]
//
// A benchmark is named FORM/LEVEL/N/CONTENDER, for instance dAnyComplex/avx2/1000/fftw_estimate. FFTW with
// measured plans is the reference of our aim, for the making of plans FFTW's estimate.
#include <algorithm>
#include <cmath>
#include <vector>

#include "run.h"
#include "sigfft/contenders.h"
#include "simd/level.h"
#include "tests/sigfft/engines.h"

namespace qkr::bench {
namespace {

using tests::Kind;

struct AnyForm {
  const char *name;
  Kind kind;
  Form peer;
};
constexpr AnyForm forms[] = {
    {"AnyComplex", tests::interleaved, {"", tests::interleaved, false}},
    {"AnySplit", tests::split, {"", tests::split, false}},
    {"AnyReal", tests::real, {"", tests::real, false}},
    {"AnyOutOfOrder", tests::out_of_order, {"", tests::interleaved, false}},
};

// What the aims differ by.
enum Class { short_length, even, odd, direct, chirp };
struct Length {
  int32_t n;
  Class kind;
  bool quick = false;
};
constexpr Length lengths[] = {
    {3, short_length, true},
    {5, short_length},
    {6, short_length},
    {7, short_length},
    {9, short_length},
    {10, short_length},
    {12, short_length, true},
    {15, short_length},
    {20, short_length},
    {24, short_length},
    {60, short_length, true},
    {105, odd},
    {243, odd},
    {300, even, true},
    {625, odd, true},
    {1000, even, true},
    {1155, odd},
    {1536, even},
    {2009, odd},
    {3000, even},
    {5005, odd, true},
    {7500, even},
    {10000, even, true},
    {22500, even},
    {65625, odd},
    {100000, even, true},
    {196608, even},
    {1000000, even},
    {11, direct},
    {13, direct},
    {31, direct, true},
    {97, direct},
    {149, direct, true},
    {151, chirp, true},
    {257, chirp},
    {1009, chirp, true},
    {10007, chirp, true},
    {100003, chirp},
};
constexpr int32_t largest = 1000000;
constexpr const char *level_names[] = {"sse2", "avx2", "avx512"};

// Largest ratio of times that is wanted, by class, for AVX2 and AVX-512.
double aim(Class kind, Level level) {
  constexpr double aims[][2] = {{1.2, 1.2}, {1.15, 0.85}, {0.9, 0.65}, {0.95, 0.9}, {1.15, 0.8}};
  return level == Level::sse2 ? INFINITY : aims[kind][level == Level::avx512];
}

template <class T>
Arrays<T> arrays(int32_t n) {
  return two_arrays<T, 2 * largest + 2>(2 * (size_t)n + 2);
}

// Unnormalised, with a work buffer of its own; real ones to CCS format, which is FFTW's.
template <class T>
Transform ours(Kind kind, int32_t n, Arrays<T> a) {
  const auto &f = functions<T>[tests::any_length];
  const auto plan = std::make_shared<tests::Plan<T>>(f, kind, (size_t)n);
  const std::shared_ptr<uint8_t> work(w6_zprsMalloc_8u(plan->work_bytes() + 64), w6_zprsFree);
  const auto with = [=](auto call) -> Transform { return [=] { call((const void *)*plan, work.get()); }; };
  if (kind == tests::split)
    return with([=, run = f.split[1]](auto p, auto w) { run(a.src, a.src + n, a.dst, a.dst + n, p, w); });
  const auto run = kind == tests::real           ? f.real[1][tests::ccs]
                   : kind == tests::out_of_order ? f.out_of_order[1]
                                                 : f.complex[1];
  return with([=](auto p, auto w) { run(a.src, a.dst, p, w); });
}

template <class T, class Make>
auto run_kept(int32_t n, Make make) {
  return [=, kept = std::make_shared<Transform>()](benchmark::State &state) {
    if (!*kept) *kept = make(arrays<T>(n));
    arrays<T>(n);  // measuring leaves numbers behind
    for (auto _ : state) {
      (*kept)();
      benchmark::ClobberMemory();
    }
    state.counters["elements"] = n;
  };
}

template <class Run>
void add(const std::string &name, int32_t n, const std::regex &filter, Run run_benchmark) {
  if (!std::regex_search(name, filter)) return;
  auto *benchmark = benchmark::RegisterBenchmark(name.c_str(), run_benchmark);
  if (n > 100000) benchmark->Repetitions(5);
}

template <class T>
void add_transforms(const AnyForm &form, const Length &length, const std::regex &filter) {
  const int32_t n = length.n;
  const std::string name = (sizeof(T) == 8 ? "d" : "s") + std::string(form.name);
  const std::string size = '/' + std::to_string(n) + '/';
  const auto run = run_kept<T>(n, [=, &form](Arrays<T> a) { return ours(form.kind, n, a); });
  for (int l = 0; l <= (int)supported_level(); ++l)
    add(name + '/' + level_names[l] + size + "qkr", n, filter, [=](benchmark::State &state) {
      force_level((Level)l);
      run(state);
      const double wanted = aim(length.kind, (Level)l);
      if (std::isfinite(wanted)) state.counters["aim"] = wanted;
    });
  const auto add_peer = [&](const char *peer, unsigned effort) {
    const auto made = run_kept<T>(n, [=, &form](Arrays<T> a) { return fftw(form.peer, n, a, effort); });
    add(name + "/any" + size + peer, n, filter, [=](benchmark::State &state) {
      made(state);
      if (effort == FFTW_MEASURE) state.counters["reference"] = 1;
    });
  };
  add_peer("fftw_measure", FFTW_MEASURE);
  add_peer("fftw_estimate", FFTW_ESTIMATE);
}

// From nothing: FFTW forgets what it has planned before.
template <class T>
void add_plan(const AnyForm &form, const Length &length, const std::regex &filter) {
  const int32_t n = length.n;
  const std::string name = (sizeof(T) == 8 ? "d" : "s") + std::string(form.name) + "Plan/";
  const std::string size = '/' + std::to_string(n) + '/';
  add(name + level_names[(int)supported_level()] + size + "qkr", n, filter, [=](benchmark::State &state) {
    force_level(supported_level());
    for (auto _ : state) tests::Plan<T>(functions<T>[tests::any_length], form.kind, (size_t)n);
    state.counters["aim"] = 1;
  });
  add(name + "any" + size + "fftw_estimate", n, filter, [=, &form](benchmark::State &state) {
    const Arrays<T> a = arrays<T>(n);
    for (auto _ : state) {
      forget_plans<T>();
      fftw(form.peer, n, a, FFTW_ESTIMATE);
    }
    state.counters["reference"] = 1;
  });
}

}  // namespace
}  // namespace qkr::bench

int main(int argc, char **argv) {
  using namespace qkr::bench;
  return run(argc, argv, [](bool quick, const std::regex &filter) {
    const auto each_length = [&](auto add) {
      for (const Length &length : lengths)
        if (!quick || length.quick) add(length);
    };
    for (const AnyForm &form : forms)
      each_length([&](const Length &length) {
        add_transforms<double>(form, length, filter);
        add_transforms<float>(form, length, filter);
      });
    for (const AnyForm *form : {&forms[0], &forms[2]})
      each_length([&](const Length &length) {
        add_plan<double>(*form, length, filter);
        add_plan<float>(*form, length, filter);
      });
  });
}
