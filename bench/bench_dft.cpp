// Transforms by descriptors beside FFTW (measured plans, with as many threads), on the same arrays in one
// process: batches, columns, planes and grids. And what a call costs over the engine's own.
//
//   bench_dft [--quick] [--filter REGEX] [--benchmark_out=FILE.json ...]
//
// A benchmark is named FORM/LEVEL/POINTS/CONTENDER, for instance dComplex2D/avx2/1048576/fftw_measure: d or s
// for the precision; Batch64 for contiguous transforms of 64 points, Columns64 for interleaved ones, 2D or
// 3D; and Team for those on two threads. Complex transforms run in place, real ones from one array to
// another.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fftw3.h>
#include <functional>
#include <memory>
#include <qkr/qkr.h>
#include <vector>

#include "run.h"
#include "service/internal.h"
#include "simd/level.h"

namespace qkr::bench {
namespace {

constexpr const char *level_names[] = {"sse2", "avx2", "avx512"};

struct Shape {
  std::vector<int32_t> lengths;  // neighbouring elements first
  int32_t count = 1;
  bool interleaved = false, real = false, quick = true;

  int64_t points() const {
    int64_t points = count;
    for (const int32_t n : lengths) points *= n;
    return points;
  }
  // For bench/dft/peers.py: as an array in C has them, with the batch.
  std::string label() const {
    std::vector<int32_t> all(lengths.rbegin(), lengths.rend());
    if (lengths.size() == 1) all.insert(interleaved ? all.end() : all.begin(), count);
    std::string label = "lengths ";
    for (const int32_t &n : all) label += (&n == &all[0] ? "" : "x") + std::to_string(n);
    return label;
  }
  std::string name() const {
    std::string name = real ? "Real" : "Complex";
    if (lengths.size() > 1) return name + std::to_string(lengths.size()) + 'D';
    return name + (interleaved ? "Columns" : "Batch") + std::to_string(lengths[0]);
  }
};

using Transform = std::function<void()>;

template <class T>
struct Library;
template <>
struct Library<double> {
  static constexpr int32_t precision = DFTX_DOUBLE;
  static constexpr auto complex = qkr_dft_def_compute_forward_z;
  static constexpr auto real = qkr_dft_def_compute_forward_dz_out;
  using Plan = std::remove_pointer_t<fftw_plan>;
  static constexpr auto plan_complex = fftw_plan_many_dft;
  static constexpr auto plan_real = fftw_plan_many_dft_r2c;
  static constexpr auto execute = fftw_execute, destroy = fftw_destroy_plan;
  static constexpr auto threads = fftw_plan_with_nthreads;
  using Complex = fftw_complex;
};
template <>
struct Library<float> {
  static constexpr int32_t precision = DFTX_SINGLE;
  static constexpr auto complex = qkr_dft_def_compute_forward_c;
  static constexpr auto real = qkr_dft_def_compute_forward_sc_out;
  using Plan = std::remove_pointer_t<fftwf_plan>;
  static constexpr auto plan_complex = fftwf_plan_many_dft;
  static constexpr auto plan_real = fftwf_plan_many_dft_r2c;
  static constexpr auto execute = fftwf_execute, destroy = fftwf_destroy_plan;
  static constexpr auto threads = fftwf_plan_with_nthreads;
  using Complex = fftwf_complex;
};

template <class T>
struct Arrays {
  T *input, *output;
};
// Zeros throughout: the time does not depend on the numbers, and in place they would grow from call to call.
// One block each for all shapes, as large as the largest needs.
template <class T>
Arrays<T> arrays(const Shape &shape) {
  static std::vector<T> memory[2];
  const size_t size = 2 * (shape.points() + shape.points() / shape.lengths[0] * 2) + 64;
  T *start[2];
  for (int i = 0; i < 2; ++i) {
    if (memory[i].size() < size) memory[i].resize(size_t{1} << 26);
    start[i] = (T *)(((size_t)memory[i].data() + 63) & ~size_t{63});
    std::fill_n(start[i], size - 64, T());
  }
  return {start[0], start[shape.real ? 1 : 0]};
}

// Strides of the half spectrum as FFTW has them: without gaps.
int32_t half(const Shape &shape) { return shape.lengths[0] / 2 + 1; }

template <class T>
Transform ours(const Shape &shape, int threads) {
  serial_decision = threads == 1;
  DftDescriptor *handle = nullptr;
  const int32_t domain = shape.real ? DFTX_REAL : DFTX_COMPLEX, dimension = (int32_t)shape.lengths.size();
  qkr_dft_def_create_descriptor_highd(&handle, &Library<T>::precision, &domain, &dimension,
                                      shape.lengths.data());
  const auto set = [&](int32_t parameter, int32_t value) {
    qkr_dft_def_set_value_intval(&handle, &parameter, &value);
  };
  set(DFTX_NUMBER_OF_TRANSFORMS, shape.count);
  std::vector<int32_t> input, output;
  int32_t in = shape.interleaved ? shape.count : 1, out = in;
  for (const int32_t &n : shape.lengths) {
    input.push_back(in), output.push_back(out);
    in *= n, out *= &n == &shape.lengths[0] && shape.real ? half(shape) : n;
  }
  qkr_dft_set_strides(&handle, input.data(), output.data());
  set(DFTX_INPUT_DISTANCE, shape.interleaved ? 1 : in);
  set(DFTX_OUTPUT_DISTANCE, shape.interleaved ? 1 : out);
  if (shape.real)
    set(DFTX_CONJUGATE_EVEN_STORAGE, DFTX_COMPLEX_COMPLEX), set(DFTX_PLACEMENT, DFTX_NOT_INPLACE);
  if (qkr_dft_def_commit_descriptor_external(&handle)) abort();
  const std::shared_ptr<DftDescriptor> kept(
      handle, [](DftDescriptor *d) { qkr_dft_def_free_descriptor_external(&d); });
  const Arrays<T> a = arrays<T>(shape);
  return [=, real = shape.real] {
    DftDescriptor *d = kept.get();
    if (real) Library<T>::real(&d, a.input, a.output);
    else Library<T>::complex(&d, a.input);
  };
}

template <class T>
Transform fftw(const Shape &shape, int threads) {
  using L = Library<T>;
  L::threads(threads);
  std::vector<int> n(shape.lengths.rbegin(), shape.lengths.rend());
  const Arrays<T> a = arrays<T>(shape);
  const int step = shape.interleaved ? shape.count : 1, points = (int)(shape.points() / shape.count);
  const auto complex = (typename L::Complex *)a.input;
  typename L::Plan *plan;
  if (shape.real)
    plan = L::plan_real((int)n.size(), n.data(), shape.count, a.input, nullptr, step,
                        shape.interleaved ? 1 : points, (typename L::Complex *)a.output, nullptr, step,
                        shape.interleaved ? 1 : points / shape.lengths[0] * half(shape), FFTW_MEASURE);
  else
    plan = L::plan_complex((int)n.size(), n.data(), shape.count, complex, nullptr, step,
                           shape.interleaved ? 1 : points, complex, nullptr, step,
                           shape.interleaved ? 1 : points, FFTW_FORWARD, FFTW_MEASURE);
  const std::shared_ptr<typename L::Plan> kept(plan, L::destroy);
  return [=] { L::execute(kept.get()); };
}

// Made at the first repetition and kept: FFTW takes long to measure.
template <class T, class Make>
auto run_kept(const Shape &shape, int threads, Make make) {
  return [=, kept = std::make_shared<Transform>()](benchmark::State &state) {
    if (!*kept) *kept = make(shape, threads);
    serial_decision = threads == 1;
    arrays<T>(shape);  // measuring leaves numbers behind
    (*kept)();
    for (auto _ : state) {
      (*kept)();
      benchmark::ClobberMemory();
    }
    state.counters["elements"] = (double)shape.points();
    state.counters["wall"] = 1;
    state.SetLabel(shape.label());
  };
}

double aim(const Shape &shape, Level level) {
  if (level == Level::sse2) return INFINITY;
  if (shape.lengths.size() == 1)
    return shape.interleaved && shape.lengths[0] >= 16 && level == Level::avx512 ? 1.0 : INFINITY;
  if (shape.real) return level == Level::avx512 ? 0.9 : 1.1;
  return level == Level::avx512 ? 0.85 : 1.0;
}

template <class Run>
void add(const std::string &name, int64_t points, const std::regex &filter, Run run_benchmark) {
  if (!std::regex_search(name, filter)) return;
  auto *benchmark = benchmark::RegisterBenchmark(name.c_str(), run_benchmark);
  if (points > 1 << 17) benchmark->Repetitions(points > 1 << 20 ? 3 : 7);
}

template <class T>
void add_shape(const Shape &shape, int threads, const std::regex &filter) {
  const std::string name = (sizeof(T) == 8 ? "d" : "s") + shape.name() + (threads > 1 ? "Team" : "");
  const std::string size = '/' + std::to_string(shape.points()) + '/';
  for (int l = 0; l <= (int)supported_level(); ++l)
    add(name + '/' + level_names[l] + size + "qkr", shape.points(), filter,
        [=, run = run_kept<T>(shape, threads, ours<T>)](benchmark::State &state) {
          force_level((Level)l);  // before commit, which takes the code of the level
          run(state);
          if (std::isfinite(aim(shape, (Level)l))) state.counters["aim"] = aim(shape, (Level)l);
        });
  add(name + "/any" + size + "fftw_measure", shape.points(), filter,
      [run = run_kept<T>(shape, threads, fftw<T>)](benchmark::State &state) {
        run(state);
        state.counters["reference"] = 1;
      });
}

// A call for one short line, beside the engine's, both with all that they need at hand.
void add_call(int order, const std::regex &filter) {
  const Shape shape = {{1 << order}};
  const std::string size = '/' + std::to_string(shape.points()) + '/';
  const std::string level = level_names[(int)supported_level()];
  add("dComplexCall/" + level + size + "qkr", 1, filter, [=](benchmark::State &state) {
    force_level(supported_level());
    const Transform transform = ours<double>(shape, 1);
    for (auto _ : state) transform();
  });
  add("dComplexCall/any" + size + "engine", 1, filter, [=](benchmark::State &state) {
    force_level(supported_level());
    zprsFFTSpec_C_64fc *plan = nullptr;
    w6_zprsFFTInitAlloc_C_64fc(&plan, order, 8, 0);
    int32_t bytes = 0;
    w6_zprsFFTGetBufSize_C_64fc(plan, &bytes);
    std::vector<uint8_t> work(bytes + 1);
    const auto data = (zpr64fc *)arrays<double>(shape).input;
    const Transform transform = [=, work = work.data()] { w6_zprsFFTFwd_CToC_64fc(data, data, plan, work); };
    for (auto _ : state) transform();
    w6_zprsFFTFree_C_64fc(plan);
    state.counters["reference"] = 1;
  });
}

std::vector<Shape> shapes() {
  std::vector<Shape> all;
  for (const int32_t n : {64, 128, 256, 512, 1024, 2048, 4096})
    for (const bool real : {false, true}) all.push_back({{n, n}, 1, false, real, n == 256 || n == 1024});
  for (const bool real : {false, true}) {
    all.push_back({{1000, 1000}, 1, false, real, true});
    all.push_back({{1920, 1080}, 1, false, real, false});
    all.push_back({{243, 625}, 1, false, real, false});
    for (const int32_t n : {32, 64, 128, 256}) all.push_back({{n, n, n}, 1, false, real, n == 64});
    all.push_back({{100, 100, 100}, 1, false, real, false});
    for (const int32_t n : {8, 16, 64, 256, 1000, 1024, 4096})
      for (const int32_t count : {10, 1000, 100000})
        if (int64_t{n} * count <= 1 << 22) {
          all.push_back({{n}, count, false, real, count == 1000});
          all.push_back({{n}, count, true, real, count == 1000});
        }
  }
  return all;
}

}  // namespace
}  // namespace qkr::bench

int main(int argc, char **argv) {
  using namespace qkr::bench;
  fftw_init_threads();
  fftwf_init_threads();
  return run(argc, argv, [](bool quick, const std::regex &filter) {
    for (const Shape &shape : shapes())
      for (const int threads : {1, 2}) {
        if (quick && !shape.quick) continue;
        add_shape<double>(shape, threads, filter);
        add_shape<float>(shape, threads, filter);
      }
    for (int order = 1; order <= 6; ++order) add_call(order, filter);
  });
}
