// The logarithm of one element. Near the unit circle x^2 + y^2 - 1 is formed from exact squares.
#include "vecmath/complex/scalar/internal.h"

using namespace qkr;

namespace {

// x^2, which has the square of a double, and what it is more than that.
struct Square {
  long double head, tail;
};
Square exact_square(long double x) {
  constexpr long double splitter = 8589934593.0L;  // 2^33 + 1
  const long double t = splitter * x, hi = t - (t - x), lo = x - hi, head = x * x;
  return {head, ((hi * hi - head) + 2 * hi * lo) + lo * lo};
}

// ln |z| of finite parts.
long double logarithm_of_modulus(double x, double y) {
  constexpr long double near_circle = 0.03L;
  const double p = __builtin_fabs(x), q = __builtin_fabs(y);
  const long double a = p < q ? q : p, b = p < q ? p : q, s = a * a + b * b;
  if (_vxmfabsl_scalar(s - 1) > near_circle) return 0.5L * _vxmlogl_scalar(s);
  const Square A = exact_square(a), B = exact_square(b);
  const long double h = A.head + B.head, v = h - A.head, e = (A.head - (h - v)) + (B.head - v);
  return 0.5L * _vxmlog1pl_scalar((h - 1) + ((A.tail + B.tail) + e));
}

// Of a NaN beside anything.
vxm64fc logarithm_of_nan(double x, double y) {
  if (!is_nan(x)) return is_infinite(x) ? vxm64fc{x * x, y * y} : vxm64fc{y * y, y * y};
  return {is_infinite(y) ? y * y : y * x, x * x};
}

vxm64fc logarithm(double x, double y, long double factor) {
  if (is_nan(x) || is_nan(y)) return logarithm_of_nan(x, y);
  const long double angle = _vxmatan2l_scalar(y, x);
  if (is_infinite(x) || is_infinite(y)) return {infinity<double>, (double)(factor * angle)};
  return rounded(factor * logarithm_of_modulus(x, y), factor * angle);
}

}  // namespace

extern "C" {

vxm64fc _vxmclog_scalar(double x, double y) { return tested(logarithm(x, y, 1)); }

vxm64fc _vxmclog10_scalar(double x, double y) {
  constexpr long double log10_e = 0.434294481903251827651128918916605082L;
  return tested(logarithm(x, y, log10_e));
}

vxm32fc _vxm_clogf_scalar(float x, float y) {
  const vxm64fc z = _vxmclog_scalar(x, y);
  return {(float)z.re, (float)z.im};
}

}  // extern "C"
