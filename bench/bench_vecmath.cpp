// Vector math beside SLEEF, libmvec, libm and plain loops, on the same arrays in one process.
//
//   bench_vecmath [--quick] [--filter REGEX] [--benchmark_out=FILE.json ...]
//
// A benchmark is named FUNCTION/LEVEL/N/CONTENDER, for instance dExp/avx2/1024/sleef; bench/report.py makes
// tables and plots of the file.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <limits>
#include <memory>
#include <regex>

#include "run.h"
#include "vecmath/complex.h"
#include "vecmath/contenders.h"

namespace qkr::bench {
namespace {

template <class T>
Task<T> task(const Function &function, const Sample<T> &sample, const Contender<T> &contender, int n) {
  fill(array<T>(0), sample.a, n * stride);
  fill(array<T>(1), sample.b, n);
  return {n,           array<T>(0), array<T>(1),
          array<T>(2), array<T>(3), integers(function.inputs.integers, n),
          contender.f, contender.g};
}

// All of the sample at once; what a function leaves alone in its result stays zero.
template <class T>
Task<T> run_on_sample(const Function &function, const Sample<T> &sample, const Contender<T> &contender) {
  const Task<T> t = task(function, sample, contender, sample_size);
  std::fill_n(t.r, sample_size * stride, T());
  contender.run(t);
  return t;
}

template <class T>
double error_in_ulp(T result, long double exact) {
  if (exact == 0 || !std::isfinite(exact)) return result == exact ? 0 : INFINITY;
  using Limits = std::numeric_limits<T>;
  const int exponent = std::max(std::ilogb(exact), Limits::min_exponent - 1);
  const double error = std::fabs(std::ldexp(result - exact, Limits::digits - 1 - exponent));
  return std::isnan(error) ? INFINITY : error;
}

// The results that a function must have, in long double where C has such a function or the row gives one;
// else the function is exact and a plain loop says what it does.
template <class T>
struct Reference {
  std::vector<long double> r, q;
};
template <class T>
Reference<T> reference(const Function &function, const Sample<T> &sample) {
  using Long = long double;
  const Inputs &in = function.inputs;
  Reference<T> exact{std::vector<Long>(sample_size), std::vector<Long>(sample_size)};
  const bool two = function.shape == Shape::two_results;
  const void *f = symbol((two && in.first ? in.first : function.c_name) + std::string("l"));
  const void *g = two && in.second ? symbol(in.second + std::string("l")) : nullptr;
  if (in.exact || (f && (g || !two))) {
    for (int i = 0; i < sample_size; ++i) {
      const Long x = sample.a[i], y = sample.b[i];
      if (in.exact) exact.r[i] = in.exact(x, y);
      else if (function.shape == Shape::binary) exact.r[i] = ((Long(*)(Long, Long))f)(x, y);
      else exact.r[i] = ((Long(*)(Long))f)(x);
      if (g) exact.q[i] = ((Long(*)(Long))g)(x);
    }
  } else {
    const Loop<T> loop = plain_loop<T>(function, Level::sse2);
    if (!loop) std::fprintf(stderr, "%s: nothing says what is exact\n", function.name), std::exit(1);
    const Task<T> t = run_on_sample(function, sample, {"loop", loop});
    std::copy_n(t.r, sample_size, exact.r.begin());
    if (two) std::copy_n(t.q, sample_size, exact.q.begin());
  }
  return exact;
}

// What accuracy is judged on: a part of the sample and what the results must be.
template <class T>
struct Part {
  Sample<T> sample;
  Reference<T> exact;
};

template <class T>
double largest_error(const Function &function, const std::vector<Part<T>> &parts,
                     const Contender<T> &contender) {
  double worst = 0;
  for (const auto &[sample, exact] : parts) {
    const Task<T> t = run_on_sample(function, sample, contender);
    for (int i = 0; i < sample_size; ++i) {
      worst = std::max(worst, error_in_ulp(t.r[i], exact.r[i]));
      if (function.shape == Shape::two_results) worst = std::max(worst, error_in_ulp(t.q[i], exact.q[i]));
    }
  }
  return worst;
}

// Ours is to be no slower than the fastest peer of its accuracy, with some room where vectors are narrow and
// ours spends more steps on the same bits at every width, as for an exact function beside a plain loop.
double aim(const Function &function, Level level) {
  if (!function.approximates) return 1.2;
  return level == Level::avx512 ? 1.0 : 1.1;
}

template <class T>
void add_benchmarks(const Function &function, const std::vector<int> &sizes, const std::regex &filter,
                    int part_count) {
  const auto sample = std::make_shared<Sample<T>>(function.inputs);
  std::vector<Part<T>> parts;
  const std::string name = (is_double<T> ? "d" : "s") + std::string(function.name);
  const bool small = std::count(std::begin(at_small_n), std::end(at_small_n), name) && sizes.size() > 2;

  for (int l = 0; l <= static_cast<int>(supported_level()); ++l) {
    const Level level = static_cast<Level>(l);
    force_level(level);
    for (const Contender<T> &contender : contenders<T>(function, level)) {
      std::vector<int> lengths = sizes;
      for (int n = 1; small && n <= 8; ++n)
        if (!std::count(sizes.begin(), sizes.end(), n)) lengths.push_back(n);
      const std::string level_name = contender.name == function.inputs.library ? "any" : level_names[l].ours;
      double error = -1;
      for (const int n : lengths) {
        const std::string full_name =
            name + '/' + level_name + '/' + std::to_string(n) + '/' + contender.name;
        if (!std::regex_search(full_name, filter)) continue;
        while ((int)parts.size() < part_count) {
          Sample<T> part(function.inputs, (int)parts.size());
          parts.push_back({part, reference(function, part)});
        }
        if (error < 0) error = largest_error(function, parts, contender);
        benchmark::RegisterBenchmark(full_name.c_str(), [=, &function](benchmark::State &state) {
          force_level(level);
          const Task<T> t = task(function, *sample, contender, n);
          for (auto _ : state) {
            contender.run(t);
            benchmark::ClobberMemory();
          }
          state.counters["elements"] = n;
          state.counters["ulp"] = error;
          if (contender.name == "qkr") state.counters["aim"] = aim(function, level);
        });
      }
    }
  }
}

void add_all(bool quick, const std::regex &filter) {
  const std::vector<int> sizes = quick ? std::vector{64, 1024} : std::vector{8, 64, 1024, largest_n};
  for (const Function &function : functions) {
    // Peers that are little above 1 ulp show it only now and then: in a million inputs, or close to hard
    // ones.
    const int part_count = !function.approximates ? 1 : quick ? 2 : 32;
    add_benchmarks<double>(function, sizes, filter, part_count);
    add_benchmarks<float>(function, sizes, filter, part_count);
  }
  add_complex_benchmarks(quick, filter);
}

}  // namespace
}  // namespace qkr::bench

int main(int argc, char **argv) { return qkr::bench::run(argc, argv, qkr::bench::add_all); }
