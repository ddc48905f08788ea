// The functions that are measured: one row each. Peers are found by the C name of the function, which the
// rows give, in whatever library of peers has it.
#pragma once

#include <cmath>
#include <qkr/vecmath.h>
#include <type_traits>

#include "vecmath/loops.h"

namespace qkr::bench {

// Where inputs are drawn from.
struct Range {
  double low = 0, high = 0;
  bool logarithmic = false;
};
constexpr Range uniform(double low, double high) { return {low, high, false}; }
constexpr Range log_uniform(double low, double high) { return {low, high, true}; }

enum class Integers { none, mask, index };

// The rest of a row. What is said for double holds for single, unless it has a range of its own.
struct Inputs {
  Range a, a_single = {}, b = {}, b_single = {};
  const char *first = nullptr, *second = nullptr;  // C names of the parts of a function of two results
  long double (*exact)(long double, long double) = nullptr;  // where C has no such function
  Integers integers = Integers::none;
};

struct Function {
  const char *name, *c_name;
  bool approximates;
  Shape shape;
  Loop<double> ours_d;
  Loop<float> ours_s;
  Inputs inputs;
};

template <class T, auto f>
void ours(const Task<T> &t) {
  using F = decltype(f);
  if constexpr (std::is_invocable_v<F, int32_t, const T *, T *>) f(t.n, t.a, t.r);
  else if constexpr (std::is_invocable_v<F, int32_t, const T *, const T *, T *>) f(t.n, t.a, t.b, t.r);
  else if constexpr (std::is_invocable_v<F, int32_t, const T *, T *, T *>) f(t.n, t.a, t.r, t.q);
  else if constexpr (std::is_invocable_v<F, int32_t, const T *, int32_t, T *>) f(t.n, t.a, stride, t.r);
  else if constexpr (std::is_invocable_v<F, int32_t, const T *, T *, int32_t>) f(t.n, t.a, t.r, stride);
  else if constexpr (std::is_invocable_v<F, int32_t, const T *, const int32_t *, T *>)
    f(t.n, t.a, t.integers, t.r);
  else f(t.n, t.a, t.r, t.integers);
}

constexpr Shape shape_of(void (*)(int32_t, const double *, double *)) { return Shape::unary; }
constexpr Shape shape_of(void (*)(int32_t, const double *, const double *, double *)) {
  return Shape::binary;
}
constexpr Shape shape_of(void (*)(int32_t, const double *, double *, double *)) { return Shape::two_results; }
template <class F>
constexpr Shape shape_of(F *) {
  return Shape::move;
}

template <auto ours_d, auto ours_s>
constexpr Function row(const char *name, const char *c_name, bool approximates, Inputs inputs) {
  return {name, c_name, approximates, shape_of(ours_d), ours<double, ours_d>, ours<float, ours_s>, inputs};
}
#define APPROXIMATE(name, c_name, ...) \
  row<_vxmd##name##_HA, _vxms##name##_HA>(#name, c_name, true, {__VA_ARGS__})
#define EXACT(name, c_name, ...) row<_vxmd##name, _vxms##name>(#name, c_name, false, {__VA_ARGS__})

// Single-precision Sqrt falls into subnormal intermediate values, and so becomes slow, at the ends of the
// range.
constexpr Range magnitudes = log_uniform(1e-300, 1e300), magnitudes_single = log_uniform(1e-30, 1e30);
constexpr Range ordinary = log_uniform(1e-9, 1e9);

constexpr long double quotient(long double x, long double y) { return x / y; }
constexpr long double reciprocal(long double x, long double) { return 1 / x; }

const Function functions[] = {
    APPROXIMATE(Exp, "exp", .a = uniform(-700, 700), .a_single = uniform(-80, 80)),
    APPROXIMATE(Ln, "log", .a = magnitudes, .a_single = magnitudes_single),
    APPROXIMATE(Log10, "log10", .a = magnitudes, .a_single = magnitudes_single),
    APPROXIMATE(Sqrt, "sqrt", .a = magnitudes, .a_single = magnitudes_single),
    APPROXIMATE(Atan, "atan", .a = uniform(-10, 10)),
    APPROXIMATE(Atan2, "atan2", .a = uniform(-10, 10), .b = uniform(-10, 10)),
    APPROXIMATE(Asin, "asin", .a = uniform(-1, 1)),
    APPROXIMATE(Acos, "acos", .a = uniform(-1, 1)),
    APPROXIMATE(Acosh, "acosh", .a = log_uniform(1, 1e9)),
    APPROXIMATE(Asinh, "asinh", .a = uniform(-10, 10)),
    APPROXIMATE(Atanh, "atanh", .a = uniform(-1, 1)),
    APPROXIMATE(Div, "quotient", .a = ordinary, .b = ordinary, .exact = quotient),
    APPROXIMATE(Inv, "reciprocal", .a = magnitudes, .a_single = magnitudes_single, .exact = reciprocal),
};

#undef APPROXIMATE
#undef EXACT

// Those that are also measured at every n from 1 to 32.
constexpr const char *at_small_n[] = {"dExp", "sLn"};

}  // namespace qkr::bench
