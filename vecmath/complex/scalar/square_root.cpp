// The square root of one element, by |z| in extended precision, whose range needs no scaling.
#include "vecmath/complex/scalar/internal.h"

using namespace qkr;

static vxm64fc square_root(double x, double y) {
  const double root_of_infinity = infinity<double>;
  if (is_infinite(y)) return {root_of_infinity, y};
  if (is_nan(y) && is_infinite(x)) {
    if (is_negative(x)) return {y * y, root_of_infinity};
    return {x, y * y};
  }
  if (is_nan(x) || is_nan(y)) return {x * y, x * y};
  if (is_infinite(x)) {
    if (is_negative(x)) return {0, __builtin_copysign(root_of_infinity, y)};
    return {x, signed_zero(y)};
  }
  if (is_zero(x)) {
    const auto root = (double)_vxmsqrtl_scalar(0.5L * __builtin_fabsl(y));
    return {root, __builtin_copysign(root, y)};
  }
  if (is_zero(y)) {
    if (x < 0) return {0, __builtin_copysign((double)_vxmsqrtl_scalar(-x), y)};
    return {(double)_vxmsqrtl_scalar(x), y};
  }
  return _vxm_internal_csqrt(x, y);
}

extern "C" {

vxm64fc _vxm_internal_csqrt(double real, double imaginary) {
  const long double x = real, y = imaginary, m = _vxmsqrtl_scalar(x * x + y * y);
  vxm64fc root;
  if (x > 0) {
    const long double t = _vxmsqrtl_scalar(0.5L * x + 0.5L * m);
    root = rounded(t, 0.5L * y / t);
  } else {
    const long double t = _vxmsqrtl_scalar(0.5L * m - 0.5L * x);
    root = rounded(_vxmfabsl_scalar(0.5L * y / t), t);
  }
  return {root.re, __builtin_copysign(root.im, imaginary)};
}

vxm64fc _vxmcsqrt_scalar(double x, double y) { return tested(square_root(x, y)); }

vxm32fc _vxm_csqrtf_scalar(float x, float y) {
  const vxm64fc z = _vxmcsqrt_scalar(x, y);
  return {(float)z.re, (float)z.im};
}

}  // extern "C"
