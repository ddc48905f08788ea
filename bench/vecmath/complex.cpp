// std::complex and C's functions are the same code in glibc; they are called one element at a time, as there
// is no library of them for arrays. Accuracy of a part is judged by the C library's functions in long
// double.
#include "vecmath/complex.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <dlfcn.h>
#include <functional>
#include <limits>
#include <memory>
#include <qkr/vecmath.h>
#include <random>
#include <string>
#include <vector>

#include "simd/level.h"

namespace qkr::bench {
namespace {

// What a complex number of C is for a part's type.
template <class T>
struct CNumber;
template <>
struct CNumber<float> {
  using type = __complex__ float;
};
template <>
struct CNumber<double> {
  using type = __complex__ double;
};
template <>
struct CNumber<long double> {
  using type = __complex__ long double;
};
template <class T>
using C = typename CNumber<T>::type;
template <class T>
C<T> c_number(T re, T im) {
  C<T> z;
  __real__ z = re, __imag__ z = im;
  return z;
}

template <class E>
using PartOf = decltype(E::re);

struct ComplexRow {
  const char *name, *c_name;
  void (*z)(int32_t, const vxm64fc *, vxm64fc *);
  void (*c)(int32_t, const vxm32fc *, vxm32fc *);
  double width, height;  // inputs are uniform over a rectangle around 0 of twice these
};
#define ROW(name, c_name, ...) \
  { #name, c_name, _vxmz##name##_HA, _vxmc##name##_HA, __VA_ARGS__ }
const ComplexRow rows[] = {
    ROW(Exp, "cexp", 80, 100),  ROW(Ln, "clog", 10, 10),    ROW(Log10, "clog10", 10, 10),
    ROW(Sqrt, "csqrt", 10, 10), ROW(Cosh, "ccosh", 20, 20), ROW(Sinh, "csinh", 20, 20),
    ROW(Tanh, "ctanh", 20, 20), ROW(Cos, "ccos", 20, 20),   ROW(Sin, "csin", 20, 20),
    ROW(Tan, "ctan", 20, 20),   ROW(Acos, "cacos", 3, 3),   ROW(Acosh, "cacosh", 3, 3),
    ROW(Asin, "casin", 3, 3),   ROW(Asinh, "casinh", 3, 3), ROW(Atan, "catan", 3, 3),
    ROW(Atanh, "catanh", 3, 3),
};
#undef ROW

template <class E>
struct Arrays {
  std::vector<E> a, b, r;
  Arrays(int n, double width, double height) : a(n), b(n), r(n) {
    std::mt19937_64 engine(1);
    const auto draw = [&](double reach) {
      return static_cast<PartOf<E>>(std::uniform_real_distribution<double>(-reach, reach)(engine));
    };
    for (int i = 0; i < n; ++i) a[i] = {draw(width), draw(height)}, b[i] = {draw(3), draw(3)};
  }
};

template <class E>
using Run = std::function<void(Arrays<E> &)>;

const void *symbol(const std::string &name) { return dlsym(RTLD_DEFAULT, name.c_str()); }

// Results by the C function of parts of type T.
template <class T, class E, class Store>
void by_c(const void *f, bool of_two, const Arrays<E> &v, Store store) {
  const auto unary = (C<T>(*)(C<T>))f;
  const auto binary = (C<T>(*)(C<T>, C<T>))f;
  for (size_t i = 0; i < v.a.size(); ++i) {
    const C<T> z = c_number<T>(v.a[i].re, v.a[i].im);
    store(i, of_two ? binary(z, c_number<T>(v.b[i].re, v.b[i].im)) : unary(z));
  }
}

template <class T>
double error_in_ulp(T computed, long double exact) {
  using Limits = std::numeric_limits<T>;
  if (exact == 0 || !std::isfinite(exact)) return computed == exact ? 0 : INFINITY;
  const int exponent = std::max(std::ilogb(exact), Limits::min_exponent - 1);
  const double error = std::fabs(std::ldexp(computed - exact, Limits::digits - 1 - exponent));
  return std::isnan(error) ? INFINITY : error;
}

template <class E>
void add(const std::string &name, const std::string &c_name, const Run<E> &ours, double width, double height,
         const std::vector<int> &sizes, const std::regex &filter) {
  using T = PartOf<E>;
  const bool of_two = c_name == "cpow";
  const void *const theirs = symbol(c_name + (sizeof(T) == 8 ? "" : "f")), *const exact =
                                                                               symbol(c_name + "l");
  const auto add_one = [&](const std::string &level_name, Level level, const char *contender,
                           const Run<E> &run, double aim) {
    double error = -1;
    for (const int n : sizes) {
      const std::string full_name = name + '/' + level_name + '/' + std::to_string(n) + '/' + contender;
      if (!std::regex_search(full_name, filter)) continue;
      force_level(level);
      if (error < 0) {
        Arrays<E> sample(4096, width, height);
        run(sample);
        by_c<long double>(exact, of_two, sample, [&](size_t i, C<long double> w) {
          error = std::max(
              {error, error_in_ulp(sample.r[i].re, __real__ w), error_in_ulp(sample.r[i].im, __imag__ w)});
        });
      }
      const auto arrays = std::make_shared<Arrays<E>>(n, width, height);
      benchmark::RegisterBenchmark(full_name.c_str(), [=](benchmark::State &state) {
        force_level(level);
        for (auto _ : state) {
          run(*arrays);
          benchmark::ClobberMemory();
        }
        state.counters["elements"] = n;
        state.counters["ulp"] = error;
        if (aim > 0) state.counters["aim"] = aim;
      });
    }
  };
  constexpr const char *names[] = {"sse2", "avx2", "avx512"};
  constexpr double aims[] = {1.0, 0.5, 0.25};
  for (int l = 0; l <= static_cast<int>(supported_level()); ++l)
    add_one(names[l], static_cast<Level>(l), "qkr", ours, aims[l]);
  if (theirs)
    add_one(
        "any", Level::sse2, "libm",
        [=](Arrays<E> &v) {
          by_c<T>(theirs, of_two, v, [&](size_t i, C<T> w) { v.r[i] = {__real__ w, __imag__ w}; });
        },
        0);
}

int32_t length(const auto &v) { return static_cast<int32_t>(v.a.size()); }

}  // namespace

void add_complex_benchmarks(bool quick, const std::regex &filter) {
  const std::vector<int> sizes = quick ? std::vector{1024} : std::vector{8, 64, 1024, 100000};
  for (const ComplexRow &row : rows) {
    add<vxm64fc>(
        std::string("z") + row.name, row.c_name,
        [f = row.z](Arrays<vxm64fc> &v) { f(length(v), v.a.data(), v.r.data()); }, row.width, row.height,
        sizes, filter);
    add<vxm32fc>(
        std::string("c") + row.name, row.c_name,
        [f = row.c](Arrays<vxm32fc> &v) { f(length(v), v.a.data(), v.r.data()); }, row.width, row.height,
        sizes, filter);
  }
  add<vxm64fc>(
      "zPow", "cpow", [](Arrays<vxm64fc> &v) { _vxmzPow_HA(length(v), v.a.data(), v.b.data(), v.r.data()); },
      3, 3, sizes, filter);
  add<vxm32fc>(
      "cPow", "cpow", [](Arrays<vxm32fc> &v) { _vxmcPow_HA(length(v), v.a.data(), v.b.data(), v.r.data()); },
      3, 3, sizes, filter);
}

}  // namespace qkr::bench
