// Power-of-two transforms beside FFTW (measured and estimated plans) and KissFFT, on the same arrays in one
// process.
//
//   bench_sigfft [--quick] [--filter REGEX] [--benchmark_out=FILE.json ...]
//
// A benchmark is named FORM/LEVEL/N/CONTENDER, for instance dComplex/avx2/1024/fftw_estimate. FFTW with
// measured plans is the reference of our aim.
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "run.h"
#include "sigfft/contenders.h"
#include "simd/level.h"

namespace qkr::bench {
namespace {

constexpr Form forms[] = {{"Complex", Data::complex_numbers, false},
                          {"ComplexInPlace", Data::complex_numbers, true},
                          {"Parts", Data::parts, false},
                          {"Real", Data::real_numbers, false},
                          {"RealInPlace", Data::real_numbers, true}};
constexpr const char *level_names[] = {"sse2", "avx2", "avx512"};

// Zeros throughout: the time does not depend on the numbers, and in place they would grow from call to call.
template <class T>
Arrays<T> arrays(const Form &form, int order) {
  static std::vector<T> memory[2];
  constexpr size_t alignment = 64;
  const size_t count = (size_t{2} << order) + 2;
  T *start[2];
  for (int i = 0; i < 2; ++i) {
    if (memory[i].size() < count + alignment) memory[i].resize(count + alignment);
    start[i] = (T *)(((size_t)memory[i].data() + alignment - 1) & ~(alignment - 1));
    std::fill_n(start[i], count, T());
  }
  return {start[0], start[form.in_place ? 0 : 1]};
}

// Made at the first repetition, and again only when the arrays have moved: FFTW takes long to measure.
template <class T, class Make>
auto run_kept(const Form &form, int order, Make make) {
  struct Kept {
    Arrays<T> arrays = {};
    Transform transform;
  };
  return [=, kept = std::make_shared<Kept>(), &form](benchmark::State &state) {
    const Arrays<T> a = arrays<T>(form, order);
    if (!kept->transform || a.src != kept->arrays.src || a.dst != kept->arrays.dst) {
      kept->transform = make(a);
      kept->arrays = a;
      arrays<T>(form, order);  // measuring leaves numbers behind
    }
    for (auto _ : state) {
      kept->transform();
      benchmark::ClobberMemory();
    }
    state.counters["elements"] = double(size_t{1} << order);
  };
}

double aim(bool is_double, Level level, int order) {
  if (level == Level::avx2) return 1.1;
  const bool aimed_at = is_double ? order >= 5 && order <= 22 : order >= 7;
  return level == Level::avx512 && aimed_at ? 0.8 : INFINITY;
}

template <class Run>
void add(const std::string &name, const std::regex &filter, Run run_benchmark) {
  if (std::regex_search(name, filter)) benchmark::RegisterBenchmark(name.c_str(), run_benchmark);
}

template <class T>
void add_benchmarks(const Form &form, int order, const std::regex &filter) {
  constexpr bool is_double = sizeof(T) == 8;
  const std::string name = (is_double ? "d" : "s") + std::string(form.name);
  const std::string size = '/' + std::to_string(size_t{1} << order) + '/';
  for (int l = 0; l <= (int)supported_level(); ++l)
    add(name + '/' + level_names[l] + size + "qkr", filter,
        [=, run = run_kept<T>(form, order, [=, &form](Arrays<T> a) { return ours(form, order, a); })](
            benchmark::State &state) {
          force_level((Level)l);
          run(state);
          if (std::isfinite(aim(is_double, (Level)l, order)))
            state.counters["aim"] = aim(is_double, (Level)l, order);
        });
  const auto add_peer = [&](const char *peer, bool reference, auto make) {
    add(name + "/any" + size + peer, filter,
        [=, run = run_kept<T>(form, order, make)](benchmark::State &state) {
          run(state);
          if (reference) state.counters["reference"] = 1;
        });
  };
  add_peer("fftw_measure", true, [=, &form](Arrays<T> a) { return fftw(form, order, a, FFTW_MEASURE); });
  add_peer("fftw_estimate", false, [=, &form](Arrays<T> a) { return fftw(form, order, a, FFTW_ESTIMATE); });
  if (kissfft(form, order, Arrays<T>{}))
    add_peer("kissfft", false, [=, &form](Arrays<T> a) { return kissfft(form, order, a); });
}

}  // namespace
}  // namespace qkr::bench

int main(int argc, char **argv) {
  using namespace qkr::bench;
  return run(argc, argv, [](bool quick, const std::regex &filter) {
    const int first = quick ? 4 : 3, last = quick ? 16 : 24, step = quick ? 3 : 1;
    for (const Form &form : forms)
      for (int order = first; order <= last; order += step) {
        add_benchmarks<double>(form, order, filter);
        add_benchmarks<float>(form, order, filter);
      }
  });
}
