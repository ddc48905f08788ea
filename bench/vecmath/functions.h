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
  bool logarithmic = false, whole = false;
};
constexpr Range uniform(double low, double high) { return {low, high, false}; }
constexpr Range whole_numbers(double low, double high) { return {low, high, false, true}; }
constexpr Range log_uniform(double low, double high) { return {low, high, true}; }

enum class Integers { none, mask, index };

// The rest of a row. What is said for double holds for single, unless it has a range of its own.
struct Inputs {
  Range a, a_single = {}, b = {}, b_single = {};
  const char *first = nullptr, *second = nullptr;  // C names of the parts of a function of two results
  long double (*exact)(long double, long double) = nullptr;  // where C has no such function
  Integers integers = Integers::none;
  double hard = 0;               // accuracy is also judged around this input
  bool above_hard = false;       // or only above it, where the domain ends there
  const char *library = "libm";  // that has the function for one number
};

struct Function {
  const char *name, *c_name;
  bool approximates;
  Shape shape;
  Loop<double> ours_d;
  Loop<float> ours_s;
  Inputs inputs;
};

// The forms of vector functions.
template <class T>
struct Forms {
  using N = int32_t;
  using Unary = void (*)(N, const T *, T *);
  using Binary = void (*)(N, const T *, const T *, T *);
  using WithScalar = void (*)(N, const T *, T, T *);
  using TwoResults = void (*)(N, const T *, T *, T *);
  using PackStride = void (*)(N, const T *, N, T *);
  using UnpackStride = void (*)(N, const T *, T *, N);
  using Pack = void (*)(N, const T *, const N *, T *);
  using Unpack = void (*)(N, const T *, T *, const N *);
};

template <class T, auto f>
void ours(const Task<T> &t) {
  using F = decltype(f);
  using Form = Forms<T>;
  if constexpr (std::is_same_v<F, typename Form::Unary>) f(t.n, t.a, t.r);
  else if constexpr (std::is_same_v<F, typename Form::Binary>) f(t.n, t.a, t.b, t.r);
  else if constexpr (std::is_same_v<F, typename Form::WithScalar>) f(t.n, t.a, t.b[0], t.r);
  else if constexpr (std::is_same_v<F, typename Form::TwoResults>) f(t.n, t.a, t.r, t.q);
  else if constexpr (std::is_same_v<F, typename Form::PackStride>) f(t.n, t.a, stride, t.r);
  else if constexpr (std::is_same_v<F, typename Form::UnpackStride>) f(t.n, t.a, t.r, stride);
  else if constexpr (std::is_same_v<F, typename Form::Pack>) f(t.n, t.a, t.integers, t.r);
  else f(t.n, t.a, t.r, t.integers);
}

// To the peers a scalar is a vector of equal elements.
template <class F>
constexpr Shape shape_of(F) {
  using Form = Forms<double>;
  if (std::is_same_v<F, Form::Unary>) return Shape::unary;
  if (std::is_same_v<F, Form::Binary> || std::is_same_v<F, Form::WithScalar>) return Shape::binary;
  return std::is_same_v<F, Form::TwoResults> ? Shape::two_results : Shape::move;
}

template <auto ours_d, auto ours_s>
constexpr Function row(const char *name, const char *c_name, bool approximates, Inputs inputs) {
  return {name, c_name, approximates, shape_of(ours_d), ours<double, ours_d>, ours<float, ours_s>, inputs};
}
#define APPROXIMATE(name, c_name, ...) \
  row<_vxmd##name##_HA, _vxms##name##_HA>(#name, c_name, true, {__VA_ARGS__})
// Other inputs to the same function, of which `what` tells.
#define APPROXIMATE_OF(what, name, c_name, ...) \
  row<_vxmd##name##_HA, _vxms##name##_HA>(#name what, c_name, true, {__VA_ARGS__})
#define EXACT(name, c_name, ...) row<_vxmd##name, _vxms##name>(#name, c_name, false, {__VA_ARGS__})

// Of any magnitude, a little way from the ends of the range.
constexpr Range magnitudes = log_uniform(1e-300, 1e300), magnitudes_single = log_uniform(1e-30, 1e30);
constexpr Range ordinary = log_uniform(1e-9, 1e9);

// What C has no function for.
using Long = long double;
constexpr Long quotient(Long x, Long y) { return x / y; }
constexpr Long reciprocal(Long x, Long) { return 1 / x; }
inline Long invsqrt(Long x, Long) { return 1 / std::sqrt(x); }
inline Long invcbrt(Long x, Long) { return 1 / std::cbrt(x); }

const Function functions[] = {
    APPROXIMATE(Exp, "exp", .a = uniform(-700, 700), .a_single = uniform(-80, 80)),
    APPROXIMATE(Ln, "log", .a = magnitudes, .a_single = magnitudes_single, .hard = 1),
    APPROXIMATE(Log10, "log10", .a = magnitudes, .a_single = magnitudes_single, .hard = 1),
    APPROXIMATE(Sin, "sin", .a = uniform(-10, 10), .hard = 3.141592653589793),
    APPROXIMATE(Cos, "cos", .a = uniform(-10, 10), .hard = 1.5707963267948966),
    APPROXIMATE(SinCos, "sincos", .a = uniform(-10, 10), .first = "sin", .second = "cos"),
    APPROXIMATE(Tan, "tan", .a = uniform(-10, 10), .hard = 1.5707963267948966),
    APPROXIMATE(Pow, "pow", .a = log_uniform(1e-3, 1e3), .b = uniform(-20, 20), .b_single = uniform(-10, 10),
                .hard = 1),
    APPROXIMATE(Powx, "pow", .a = log_uniform(1e-3, 1e3), .b = uniform(1.7, 1.7)),
    APPROXIMATE(Hypot, "hypot", .a = ordinary, .b = ordinary),
    APPROXIMATE(Sqrt, "sqrt", .a = magnitudes, .a_single = magnitudes_single),
    APPROXIMATE(InvSqrt, "invsqrt", .a = magnitudes, .a_single = magnitudes_single, .exact = invsqrt),
    APPROXIMATE(Cbrt, "cbrt", .a = magnitudes, .a_single = magnitudes_single),
    APPROXIMATE(InvCbrt, "invcbrt", .a = magnitudes, .a_single = magnitudes_single, .exact = invcbrt),
    APPROXIMATE(Cosh, "cosh", .a = uniform(-700, 700), .a_single = uniform(-80, 80)),
    APPROXIMATE(Sinh, "sinh", .a = uniform(-700, 700), .a_single = uniform(-80, 80)),
    APPROXIMATE(Tanh, "tanh", .a = uniform(-8, 8)),
    APPROXIMATE(Erf, "erf", .a = uniform(-5, 5)),
    APPROXIMATE(ErfInv, "erf_inv", .a = uniform(-1, 1), .library = "boost"),
    APPROXIMATE(Erfc, "erfc", .a = uniform(-5, 20), .a_single = uniform(-5, 8)),
    APPROXIMATE(Atan, "atan", .a = uniform(-10, 10)),
    APPROXIMATE(Atan2, "atan2", .a = uniform(-10, 10), .b = uniform(-10, 10)),
    APPROXIMATE(Asin, "asin", .a = uniform(-1, 1)),
    APPROXIMATE(Acos, "acos", .a = uniform(-1, 1)),
    APPROXIMATE(Acosh, "acosh", .a = log_uniform(1, 1e9), .hard = 1, .above_hard = true),
    APPROXIMATE(Asinh, "asinh", .a = uniform(-10, 10), .hard = 0.02),
    APPROXIMATE(Atanh, "atanh", .a = uniform(-1, 1)),
    APPROXIMATE(Div, "quotient", .a = ordinary, .b = ordinary, .exact = quotient),
    APPROXIMATE(Inv, "reciprocal", .a = magnitudes, .a_single = magnitudes_single, .exact = reciprocal),
    APPROXIMATE_OF("Negative", Pow, "pow", .a = uniform(-20, -0.01), .b = whole_numbers(-5, 5)),
    APPROXIMATE_OF("Large", Sin, "sin", .a = uniform(1e5, 1e6)),
    APPROXIMATE_OF("Large", Cos, "cos", .a = uniform(1e5, 1e6)),
    APPROXIMATE_OF("Large", Tan, "tan", .a = uniform(1e5, 1e6)),
    APPROXIMATE_OF("Zeros", Cbrt, "cbrt", .a = uniform(0, 0)),
    APPROXIMATE_OF("Zeros", Hypot, "hypot", .a = uniform(0, 0), .b = uniform(0, 0)),
    APPROXIMATE_OF("Zeros", Atan2, "atan2", .a = uniform(0, 0), .b = uniform(0, 0)),
    APPROXIMATE_OF("Zeros", Ln, "log", .a = uniform(0, 0)),
    EXACT(Ceil, "ceil", .a = uniform(-1e4, 1e4)),
    EXACT(Floor, "floor", .a = uniform(-1e4, 1e4)),
    EXACT(Round, "round", .a = uniform(-1e4, 1e4)),
    EXACT(Trunc, "trunc", .a = uniform(-1e4, 1e4)),
    EXACT(Rint, "rint", .a = uniform(-1e4, 1e4)),
    EXACT(NearbyInt, "nearbyint", .a = uniform(-1e4, 1e4)),
    EXACT(Modf, "modf", .a = uniform(-1e4, 1e4)),
    EXACT(PackI, "PackI", .a = uniform(-1, 1)),
    EXACT(PackM, "PackM", .a = uniform(-1, 1), .integers = Integers::mask),
    EXACT(PackV, "PackV", .a = uniform(-1, 1), .integers = Integers::index),
    EXACT(UnpackI, "UnpackI", .a = uniform(-1, 1)),
    EXACT(UnpackM, "UnpackM", .a = uniform(-1, 1), .integers = Integers::mask),
    EXACT(UnpackV, "UnpackV", .a = uniform(-1, 1), .integers = Integers::index),
};

#undef APPROXIMATE
#undef APPROXIMATE_OF
#undef EXACT

// Those that are also measured at every n from 1 to 8.
constexpr const char *at_small_n[] = {"dExp", "sExp", "dLn", "sLn", "dSin", "sSin", "dSqrt", "sSqrt"};

}  // namespace qkr::bench
