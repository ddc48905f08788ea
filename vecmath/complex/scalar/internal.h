// What the scalar routines share. Their arithmetic is extended, and each result is rounded to double once.
#pragma once

#include <qkr/vecmath_complex.h>
#include <qkr/vecmath_extended.h>

#include "vecmath/extended/format.h"
#include "vecmath/frame/numbers.h"

namespace qkr {

inline bool is_nan(double x) { return _vxm_internal_isnan(x); }
inline bool is_infinite(double x) { return _vxm_internal_isinf(x); }
inline bool is_zero(double x) { return _vxm_internal_iszero(x); }
inline bool is_finite(double x) { return !is_nan(x) && !is_infinite(x); }
inline bool is_negative(double x) { return sse2::bits(x) >> 63; }
inline int exponent_field(double x) { return (int)(sse2::bits(x) >> 52) & 0x7FF; }
inline bool is_subnormal(double x) { return exponent_field(x) == 0 && !is_zero(x); }

// A zero, or another magnitude, with the sign of y.
inline double signed_zero(double y) { return __builtin_copysign(0.0, y); }

// x with its sign inverted; a NaN stays as it is.
inline double flip(double x) { return is_nan(x) ? x : -x; }

struct SineAndCosine {
  long double sin, cos;
};
inline SineAndCosine sine_and_cosine(long double y) {
  SineAndCosine both;
  _vxmsincosl_scalar(y, &both.sin, &both.cos);
  return both;
}
struct HyperbolicPair {
  long double sinh, cosh;
};
inline HyperbolicPair hyperbolic_sine_and_cosine(long double x) {
  HyperbolicPair both;
  _vxmsinhcoshl_scalar(x, &both.sinh, &both.cosh);
  return both;
}

inline vxm64fc rounded(long double re, long double im) { return {(double)re, (double)im}; }

// x^2 for an x whose square overflows or vanishes, with the event.
inline double squared_at_run_time(double x) {
  x = at_run_time(x);
  return x * x;
}

// The closing test: underflow is raised where a result is subnormal.
inline void test_for_underflow(double result) {
  if (is_subnormal(result)) at_run_time(squared_at_run_time(smallest_normal<double>));
}
inline vxm64fc tested(vxm64fc z) {
  test_for_underflow(z.re);
  test_for_underflow(z.im);
  return z;
}

// The event of an inexact result.
inline void raise_inexact() { at_run_time(at_run_time(1.0) - smallest_normal<double>); }

}  // namespace qkr
