// The C++ interface beside the C functions that it calls, on the same arrays: what a call costs more.
//
//   bench_cxx [--quick] [--filter REGEX] [--benchmark_out=FILE.json ...]
//
// A benchmark is named FUNCTION/LEVEL/SIZE/CONTENDER, for instance exp_double/avx512/10/C; `qkr` is the C++
// form, and C is what it is to equal.
#include <functional>
#include <memory>
#include <qkr/qkr.hpp>
#include <vector>

#include "run.h"

namespace qkr::bench {
namespace {

constexpr const char *level_names[] = {"sse2", "avx2", "avx512"};

// The two forms run on one set of arrays.
struct Pair {
  std::function<void()> cxx, c;
};
struct Row {
  const char *name;
  Pair (*make)(size_t n);
};

template <class T, class Cxx, class C>
Pair of_arrays(size_t n, Cxx cxx, C c) {
  auto x = std::make_shared<std::vector<T>>(n, T(0.7)), y = std::make_shared<std::vector<T>>(n);
  return {[=] { cxx(*x, *y); }, [=] { c(static_cast<int32_t>(x->size()), x->data(), y->data()); }};
}

template <class Cxx, class C>
Pair of_stream(size_t n, Cxx cxx, C c) {
  auto s = std::make_shared<stream>(mt19937, 777);
  auto out = std::make_shared<std::vector<double>>(n);
  return {[=] { cxx(*s, *out); }, [=] { c(s->handle(), static_cast<int32_t>(out->size()), out->data()); }};
}

Pair of_fft(size_t n) {
  auto f = std::make_shared<fft<double>>(n);
  auto x = std::make_shared<std::vector<double>>(n, 0.7);
  auto X = std::make_shared<std::vector<std::complex<double>>>(n / 2 + 1);
  auto work = std::make_shared<aligned_array<std::uint8_t>>(f->work_size());
  return {[=] { f->forward(*x, *X); },
          [=] {
            w6_zprsDFTFwd_RToCCS_64f(x->data(), reinterpret_cast<double *>(X->data()), f->handle(),
                                     work->data());
          }};
}

Pair of_dft(size_t n) {
  auto d = std::make_shared<dft<std::complex<double>>>(shape(n), dft_options{.forward_scale = 0.5});
  auto z = std::make_shared<std::vector<std::complex<double>>>(n);
  return {[=] { d->forward(*z); },
          [=, handle = d->forward_handle()]() mutable { qkr_dft_def_compute_forward_z(&handle, z->data()); }};
}

Pair of_convolution(size_t n) {
  auto x = std::make_shared<std::vector<double>>(n, 0.7), h = std::make_shared<std::vector<double>>(8, 0.1),
       y = std::make_shared<std::vector<double>>(n + 7);
  return {[=] { convolve(*x, *h, *y); },
          [=] { zprsConv_64f(x->data(), static_cast<int32_t>(x->size()), h->data(), 8, y->data()); }};
}

const Row rows[] = {
    {"exp_double",
     [](size_t n) {
       return of_arrays<double>(
           n, [](auto &x, auto &y) { exp(x, y); }, _vxmdExp_HA);
     }},
    {"floor_float",
     [](size_t n) {
       return of_arrays<float>(
           n, [](auto &x, auto &y) { floor(x, y); }, _vxmsFloor);
     }},
    {"normal",
     [](size_t n) {
       return of_stream(
           n, [](stream &s, auto &out) { s.normal(out, 0, 1); },
           [](StreamState *s, int32_t count, double *out) {
             _vxsdRngGaussian(QKR_GAUSSIAN_PAIRS, s, count, out, 0, 1);
           });
     }},
    {"uniform",
     [](size_t n) {
       return of_stream(
           n, [](stream &s, auto &out) { s.uniform(out); },
           [](StreamState *s, int32_t count, double *out) { _vxsdRngUniform(0, s, count, out, 0, 1); });
     }},
    {"fft_real", of_fft},
    {"dft_complex", of_dft},
    {"convolve", of_convolution}};

void add(bool quick, const std::regex &filter) {
  const std::string level = level_names[qkr_level()];
  for (const Row &row : rows)
    for (const size_t n :
         quick ? std::vector<size_t>{10, 1000} : std::vector<size_t>{1, 10, 100, 1000, 10000}) {
      const Pair pair = row.make(n);
      for (const bool ours : {true, false}) {
        const std::string name = row.name + ("/" + level + "/" + std::to_string(n)) + (ours ? "/qkr" : "/C");
        if (!std::regex_search(name, filter)) continue;
        benchmark::RegisterBenchmark(
            name.c_str(), [call = ours ? pair.cxx : pair.c, ours, n](benchmark::State &state) {
              for (auto _ : state) call();
              state.counters["elements"] = static_cast<double>(n);
              if (ours) state.counters["aim"] = n < 1000 ? 1.15 : 1.02;  // checks of sizes: a few ns a call
              else state.counters["reference"] = 1;
            });
      }
    }
}

}  // namespace
}  // namespace qkr::bench

int main(int argc, char **argv) { return qkr::bench::run(argc, argv, qkr::bench::add); }
