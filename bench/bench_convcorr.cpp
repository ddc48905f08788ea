// Convolution tasks beside the plain loop at -O3 and overlap-add written on FFTW, on the same arrays in one
// process.
//
//   bench_convcorr [--quick] [--filter REGEX] [--benchmark_out=FILE.json ...]
//
// A benchmark is named FORM/LEVEL/N/CONTENDER, for instance dDirect2D7/avx512/512/qkr: an image of 512 x
// 512 and a kernel of 7 x 7, in double precision, the whole result. The ratio is that to the fastest of the
// loops, of FFTW, whose plans are made in each call as ours are, and of SciPy's functions; `fftw_kept` has
// its plans and memory made before. The method that the user guide advises at a size has an aim, the other
// has none.
#include <memory>
#include <qkr/convcorr.h>
#include <random>
#include <string>
#include <vector>

#include "convcorr/fftw_grid.h"
#include "convcorr/plain_loops.h"
#include "run.h"
#include "simd/level.h"

namespace qkr::bench {
namespace {

constexpr const char *level_names[] = {"sse2", "avx2", "avx512"};
const LoopsOfLevel *const plain_loops[] = {&plain_loops_sse2, &plain_loops_avx2, &plain_loops_avx512};

struct Size {
  int dims;
  int32_t n, kernel;
  bool direct, transform;  // worth measuring
  bool advised_direct;
};
constexpr Size sizes[] = {
    {1, 64, 8, true, true, false},        {1, 1000, 31, true, true, false},
    {1, 1000, 100, true, true, false},    {1, 1000, 1000, true, true, false},
    {1, 10000, 300, true, true, false},   {1, 100000, 100, true, true, false},
    {1, 100000, 1000, true, true, false}, {1, 1000000, 10000, false, true, false},
    {2, 512, 3, true, true, true},        {2, 512, 7, true, true, true},
    {2, 512, 15, true, true, false},      {2, 512, 31, true, true, false},
    {2, 512, 127, false, true, false},    {2, 2048, 3, true, true, true},
    {2, 2048, 7, true, true, true},       {2, 2048, 31, true, true, false},
    {2, 2048, 127, false, true, false},   {3, 128, 5, true, true, false},
};

template <class T>
struct Case {
  LoopShape shape;
  std::vector<int32_t> nx, nh, nz;
  std::vector<T> x, h, z;
  explicit Case(const Size &size) {
    size_t count[3] = {1, 1, 1};
    for (int d = 0; d < 3; ++d) {
      shape.x[d] = d < size.dims ? size.n : 1;
      shape.h[d] = d < size.dims ? size.kernel : 1;
      if (d >= size.dims) continue;
      nx.push_back(size.n), nh.push_back(size.kernel), nz.push_back(size.n + size.kernel - 1);
      count[0] *= (size_t)nx[d], count[1] *= (size_t)nh[d], count[2] *= (size_t)nz[d];
    }
    x.resize(count[0]), h.resize(count[1]), z.resize(count[2]);
    std::mt19937 generator(1);
    for (auto *v : {&x, &h})
      for (T &number : *v) number = (T)std::uniform_real_distribution<double>(-1, 1)(generator);
  }
  template <class Convolve>
  void run(benchmark::State &state, Convolve convolve) {
    for (auto _ : state) {
      convolve();
      benchmark::ClobberMemory();
    }
    state.counters["elements"] = (double)z.size();
  }
};

template <class T>
void add(const Size &size, bool direct, const std::regex &wanted) {
  const std::string name = std::string(sizeof(T) == 8 ? "d" : "s") + (direct ? "Direct" : "Fft") +
                           std::to_string(size.dims) + 'D' + std::to_string(size.kernel);
  const bool advised = size.advised_direct == direct;
  // Arrays are made when the first benchmark of a case runs.
  const auto made = std::make_shared<std::unique_ptr<Case<T>>>();
  const auto arrays = [made, size]() -> Case<T> & {
    if (!*made) *made = std::make_unique<Case<T>>(size);
    return **made;
  };
  const auto add_one = [&](const std::string &level, const char *contender, auto run) {
    const std::string whole = name + '/' + level + '/' + std::to_string(size.n) + '/' + contender;
    if (std::regex_search(whole, wanted)) benchmark::RegisterBenchmark(whole.c_str(), run);
  };
  for (int l = 0; l <= (int)supported_level(); ++l) {
    add_one(level_names[l], "qkr", [=](benchmark::State &state) {
      force_level((Level)l);
      Case<T> &a = arrays();
      ConvCorrTask *task;
      __vxsNewTask(&task, VXS_CC_CONVOLUTION, 0, direct ? VXS_CC_DIRECT : VXS_CC_FFT, 0,
                   sizeof(T) == 8 ? VXS_CC_DOUBLE : VXS_CC_SINGLE, size.dims, a.nx.data(), a.nh.data(),
                   a.nz.data());
      a.run(state, [&] {
        if (__vxsExec(task, a.x.data(), nullptr, a.h.data(), nullptr, a.z.data(), nullptr))
          state.SkipWithError("failed");
      });
      __vxsDeleteTask(&task);
      if (advised) state.counters["aim"] = (Level)l == Level::avx512 ? 1 : 1.1;
    });
    const PlainLoops<T> &loops = plain_loops[l]->get(T());
    const auto add_loop = [&](const char *contender, PlainLoop<T> loop) {
      if (direct)
        add_one(level_names[l], contender, [=](benchmark::State &state) {
          Case<T> &a = arrays();
          a.run(state, [&] { loop(a.shape, a.x.data(), a.h.data(), a.z.data()); });
          state.counters["reference"] = 1;
        });
    };
    add_loop("loop_by_results", loops.by_results);
    add_loop("loop_by_terms", loops.by_terms);
  }
  add_one("any", "fftw", [=](benchmark::State &state) {
    Case<T> &a = arrays();
    a.run(state, [&] { FftwGrid<T>(a.shape).convolve(a.x.data(), a.h.data(), a.z.data()); });
    state.counters["reference"] = 1;
  });
  add_one("any", "fftw_kept", [=](benchmark::State &state) {
    Case<T> &a = arrays();
    FftwGrid<T> fftw(a.shape);
    a.run(state, [&] { fftw.convolve(a.x.data(), a.h.data(), a.z.data()); });
  });
}

template <class T>
void add_all(bool quick, const std::regex &wanted) {
  for (const Size &size : sizes) {
    if (quick && size.n * size.kernel > 20000) continue;
    if (size.direct) add<T>(size, true, wanted);
    if (size.transform) add<T>(size, false, wanted);
  }
}

}  // namespace
}  // namespace qkr::bench

int main(int argc, char **argv) {
  using namespace qkr::bench;
  return run(argc, argv, [](bool quick, const std::regex &wanted) {
    add_all<double>(quick, wanted);
    add_all<float>(quick, wanted);
  });
}
