// Power-of-two transforms beside FFTW (measured and estimated plans) and KissFFT, on the same arrays in one
// process; and the making of a plan beside FFTW's estimate.
//
//   bench_sigfft [--quick] [--filter REGEX] [--benchmark_out=FILE.json ...]
//
// A benchmark is named FORM/LEVEL/N/CONTENDER, for instance dComplex/avx2/1024/fftw_estimate. FFTW with
// measured plans is the reference of our aim, for the making of plans FFTW's estimate.
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "run.h"
#include "sigfft/contenders.h"
#include "simd/level.h"

namespace qkr::bench {
namespace {

constexpr Form forms[] = {
    {"Complex", tests::interleaved, false}, {"ComplexInPlace", tests::interleaved, true},
    {"Split", tests::split, false},         {"Real", tests::real, false},
    {"RealInPlace", tests::real, true},     {"PlainSetComplex", tests::interleaved, false, 1}};
constexpr int plan_kinds[] = {0, 3};  // of the forms
constexpr int largest_order = 24;
constexpr const char *level_names[] = {"sse2", "avx2", "avx512"};

// Zeros throughout: the time does not depend on the numbers, and in place they would grow from call to call.
// As much memory as may be needed, at once: plans of FFTW belong to their arrays.
template <class T>
Arrays<T> arrays(const Form &form, int order) {
  auto a = two_arrays<T, (size_t{2} << largest_order) + 2>((size_t{2} << order) + 2);
  if (form.in_place) a.dst = a.src;
  return a;
}

// Made at the first repetition and kept, since FFTW takes long to measure; but not plans that fill the
// memory, of which FFTW remembers what it has measured.
template <class T, class Make>
auto run_kept(const Form &form, int order, Make make) {
  return [=, kept = std::make_shared<Transform>(), &form](benchmark::State &state) {
    if (!*kept) *kept = make(arrays<T>(form, order));
    arrays<T>(form, order);  // measuring leaves numbers behind
    for (auto _ : state) {
      (*kept)();
      benchmark::ClobberMemory();
    }
    if (order > 20) *kept = nullptr;
    state.counters["elements"] = double(size_t{1} << order);
  };
}

double aim(bool is_double, Level level, int order) {
  if (level == Level::avx2) return 1.1;
  const bool aimed_at = is_double ? order >= 5 && order <= 22 : order >= 7;
  return level == Level::avx512 && aimed_at ? 0.8 : INFINITY;
}

template <class Run>
void add(const std::string &name, int order, const std::regex &filter, Run run_benchmark) {
  if (!std::regex_search(name, filter)) return;
  auto *benchmark = benchmark::RegisterBenchmark(name.c_str(), run_benchmark);
  if (order > 17) benchmark->Repetitions(order > 20 ? 2 : 5);
}

template <class T>
void add_transforms(const Form &form, int order, const std::regex &filter) {
  constexpr bool is_double = sizeof(T) == 8;
  const std::string name = (is_double ? "d" : "s") + std::string(form.name);
  const std::string size = '/' + std::to_string(size_t{1} << order) + '/';
  const auto run = run_kept<T>(form, order, [=, &form](Arrays<T> a) { return ours(form, order, a); });
  for (int l = 0; l <= (int)supported_level(); ++l)
    add(name + '/' + level_names[l] + size + "qkr", order, filter, [=](benchmark::State &state) {
      force_level((Level)l);
      run(state);
      if (form.set == 0 && std::isfinite(aim(is_double, (Level)l, order)))
        state.counters["aim"] = aim(is_double, (Level)l, order);
    });
  const auto add_peer = [&](const char *peer, bool reference, auto make) {
    add(name + "/any" + size + peer, order, filter,
        [=, run = run_kept<T>(form, order, make)](benchmark::State &state) {
          run(state);
          if (reference) state.counters["reference"] = 1;
        });
  };
  add_peer("fftw_measure", true, [=, &form](Arrays<T> a) { return fftw(form, 1 << order, a, FFTW_MEASURE); });
  add_peer("fftw_estimate", false,
           [=, &form](Arrays<T> a) { return fftw(form, 1 << order, a, FFTW_ESTIMATE); });
  if (order <= 16 && kissfft(form, order, Arrays<T>{}))
    add_peer("kissfft", false, [=, &form](Arrays<T> a) { return kissfft(form, order, a); });
}

// From nothing: FFTW forgets what it has planned before.
template <class T>
void add_plan(const Form &form, int order, const std::regex &filter) {
  const std::string name = (sizeof(T) == 8 ? "d" : "s") + std::string(form.name) + "Plan/";
  const std::string size = '/' + std::to_string(size_t{1} << order) + '/';
  add(name + level_names[(int)supported_level()] + size + "qkr", order, filter, [=](benchmark::State &state) {
    force_level(supported_level());
    for (auto _ : state) tests::Plan<T>(functions<T>[0], form.kind, size_t{1} << order);
    state.counters["aim"] = 2;
  });
  add(name + "any" + size + "fftw_estimate", order, filter, [=, &form](benchmark::State &state) {
    const Arrays<T> a = arrays<T>(form, order);
    for (auto _ : state) {
      forget_plans<T>();
      fftw(form, 1 << order, a, FFTW_ESTIMATE);
    }
    state.counters["reference"] = 1;
  });
}

}  // namespace
}  // namespace qkr::bench

int main(int argc, char **argv) {
  using namespace qkr::bench;
  return run(argc, argv, [](bool quick, const std::regex &filter) {
    const int first = quick ? 4 : 3, last = quick ? 16 : largest_order, step = quick ? 3 : 1;
    const auto each_order = [&](auto add) {
      for (int order = first; order <= last; order += step) add(order);
    };
    for (const Form &form : forms)
      each_order([&](int order) {
        add_transforms<double>(form, order, filter);
        add_transforms<float>(form, order, filter);
      });
    for (const int kind : plan_kinds)
      each_order([&](int order) {
        add_plan<double>(forms[kind], order, filter);
        add_plan<float>(forms[kind], order, filter);
      });
  });
}
