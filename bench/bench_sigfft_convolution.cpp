// Convolution beside the plain loop at -O3 and overlap-add written on FFTW, on the same arrays in one
// process.
//
//   bench_sigfft_convolution [--quick] [--filter REGEX] [--benchmark_out=FILE.json ...]
//
// A benchmark is named FORM/LEVEL/N/CONTENDER, for instance sFilter16/avx512/4096/qkr: N samples by a filter
// of 16. In Equal both sequences have N samples, Plan is what Equal spends on making its plan, taken apart.
// Ours makes a plan in each call, and so does `fftw`, our reference where transforms are at work; `fftw_kept`
// has plans and memory made before. Of direct sums the reference is the loop that -O3 makes for every
// processor; `loop` is made for the level.
#include <memory>
#include <qkr/sigfft.h>
#include <random>
#include <vector>

#include "run.h"
#include "sigfft_convolution/fftw.h"
#include "sigfft_convolution/plain_loop.h"
#include "simd/level.h"

namespace qkr::bench {
namespace {

constexpr const char *level_names[] = {"sse2", "avx2", "avx512"};
const PlainLoops *const plain_loops[] = {&plain_loops_sse2, &plain_loops_avx2, &plain_loops_avx512};

zprStatus ours(const float *x, size_t a, const float *h, size_t b, float *dst) {
  return zprsConv_32f(x, (int32_t)a, h, (int32_t)b, dst);
}
zprStatus ours(const double *x, size_t a, const double *h, size_t b, double *dst) {
  return zprsConv_64f(x, (int32_t)a, h, (int32_t)b, dst);
}

void make_plan(float, int order) {
  zprsFFTSpec_R_32f *plan;
  zprsFFTInitAlloc_R_32f(&plan, order, 2, 0);
  zprsFFTFree_R_32f(plan);
}
void make_plan(double, int order) {
  zprsFFTSpec_R_64f *plan;
  zprsFFTInitAlloc_R_64f(&plan, order, 2, 0);
  zprsFFTFree_R_64f(plan);
}

template <class T>
struct Case {
  std::vector<T> x, h, dst;
  Case(size_t a, size_t b) : x(a), h(b), dst(a + b - 1) {
    std::mt19937 generator(1);
    for (auto *v : {&x, &h})
      for (T &number : *v) number = (T)std::uniform_real_distribution<double>(-1, 1)(generator);
  }
  template <class Convolve>
  void run(benchmark::State &state, Convolve convolve) {
    for (auto _ : state) {
      convolve(x.data(), x.size(), h.data(), h.size(), dst.data());
      benchmark::ClobberMemory();
    }
    state.counters["elements"] = (double)dst.size();
  }
};

// Of a call that convolves a samples with b; `filter` 0 stands for as many.
template <class T>
void add(size_t a, size_t filter, const std::regex &wanted) {
  const size_t b = filter ? filter : a;
  const bool direct = a + b - 1 < 150 || b < 32;
  const std::string form = filter ? "Filter" + std::to_string(filter) : "Equal";
  const std::string name = (sizeof(T) == 8 ? "d" : "s") + form, size = '/' + std::to_string(a) + '/';
  const auto arrays = std::make_shared<Case<T>>(a, b);
  const auto add_one = [&](std::string level, const char *contender, auto run) {
    const std::string whole = name + '/' + level + size + contender;
    if (std::regex_search(whole, wanted)) benchmark::RegisterBenchmark(whole.c_str(), run);
  };
  for (int l = 0; l <= (int)supported_level(); ++l) {
    add_one(level_names[l], "qkr", [=](benchmark::State &state) {
      force_level((Level)l);
      arrays->run(state, [](auto... arguments) { ours(arguments...); });
      if ((Level)l != Level::avx512) return;
      if (direct && sizeof(T) == 4) state.counters["aim"] = 0.25;
      if (!direct) state.counters["aim"] = 1;
    });
    if (direct)
      add_one(level_names[l], "loop",
              [=](benchmark::State &state) { arrays->run(state, plain_loops[l]->get(T())); });
  }
  if (direct)
    add_one("any", "loop_O3", [=](benchmark::State &state) {
      arrays->run(state, plain_loops_sse2.get(T()));
      state.counters["reference"] = 1;
    });
  add_one("any", "fftw", [=](benchmark::State &state) {
    arrays->run(state, [](const T *x, size_t n, const T *h, size_t m, T *dst) {
      Fftw<T> fftw(fftw_length(n, m));
      fftw_convolve(fftw, x, n, h, m, dst);
    });
    if (!direct) state.counters["reference"] = 1;
  });
  add_one("any", "fftw_kept", [=](benchmark::State &state) {
    Fftw<T> fftw(fftw_length(a, b));
    arrays->run(state, [&](auto... arguments) { fftw_convolve(fftw, arguments...); });
  });
}

// The plan of sEqual and dEqual at N samples; its reference is the whole call, its aim a third.
template <class T>
void add_plan(size_t n, const std::regex &wanted) {
  const std::string name = sizeof(T) == 8 ? "dPlan" : "sPlan", size = '/' + std::to_string(n) + '/';
  int order = 2;
  while (size_t{1} << order < 2 * n - 1) ++order;
  const auto arrays = std::make_shared<Case<T>>(n, n);
  const std::string level = level_names[(int)supported_level()];
  if (std::regex_search(name + '/' + level + size + "qkr", wanted))
    benchmark::RegisterBenchmark((name + '/' + level + size + "qkr").c_str(), [=](benchmark::State &state) {
      force_level(supported_level());
      arrays->run(state, [=](auto...) { make_plan(T(), order); });
      state.counters["aim"] = 1.0 / 3;
    });
  if (std::regex_search(name + '/' + level + size + "whole_call", wanted))
    benchmark::RegisterBenchmark((name + '/' + level + size + "whole_call").c_str(),
                                 [=](benchmark::State &state) {
                                   force_level(supported_level());
                                   arrays->run(state, [](auto... arguments) { ours(arguments...); });
                                   state.counters["reference"] = 1;
                                 });
}

template <class T>
void add_all(bool quick, const std::regex &wanted) {
  const size_t step = quick ? 16 : 4, last = quick ? 1 << 14 : 1 << 18;
  for (size_t n = 16; n <= last; n *= step) {
    for (const size_t filter : {8, 31, 64, 500})
      if (filter <= n) add<T>(n, filter, wanted);
    add<T>(n, 0, wanted);
  }
  for (const size_t n : {75, 128, 512, 1000, 2048, 4096, 10000, 30000, 100000, 250000}) {
    if (quick && n > 10000) break;
    if (n % 4) add<T>(n, 0, wanted);
    if (n > 75) add_plan<T>(n, wanted);
  }
}

}  // namespace
}  // namespace qkr::bench

int main(int argc, char **argv) {
  using namespace qkr::bench;
  return run(argc, argv, [](bool quick, const std::regex &wanted) {
    add_all<float>(quick, wanted);
    add_all<double>(quick, wanted);
  });
}
