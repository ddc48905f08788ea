// Inverse cosine and inverse hyperbolic sine of one element (T. E. Hull, T. F. Fairgrieve and P. T. P. Tang,
// ACM TOMS 23 (1997) 299): extended exponents make their scaling unnecessary. Inverse hyperbolic tangent (W.
// Kahan, Branch cuts for complex elementary functions, 1987). Special values are those of C99, Annex G.
#include "vecmath/complex/scalar/internal.h"

using namespace qkr;

namespace {

constexpr long double pi = 3.14159265358979323846264338327950288L;

// For x, y >= 0: arcsin z = arctan(x/adjacent) + i logarithm, arccos z = arctan(adjacent/x) - i logarithm.
struct Triangle {
  long double adjacent, logarithm;
};
Triangle triangle(long double x, long double y) {
  const long double y2 = y * y;
  const long double R = __builtin_sqrtl((x + 1) * (x + 1) + y2), S = __builtin_sqrtl((x - 1) * (x - 1) + y2);
  const long double A = 0.5L * (R + S);
  // All that would cancel is written as sums: with x < 1, y2/(S + (1 - x)) is S - (1 - x).
  const long double right = y2 / (R + (x + 1)), beside = S + __builtin_fabsl(x - 1);
  const long double left = y2 == 0 && beside == 0 ? 0 : y2 / beside;
  const long double above_one = 0.5L * (right + (x < 1 ? left : beside));  // A - 1
  const long double above_x = 0.5L * (right + (x <= 1 ? beside : left));   // A - x
  constexpr long double far = 1.5L;
  return {__builtin_sqrtl((A + x) * above_x),
          A > far ? _vxmlogl_scalar(A + __builtin_sqrtl((A - 1) * (A + 1)))
                  : _vxmlog1pl_scalar(above_one + __builtin_sqrtl(above_one * (A + 1)))};
}

vxm64fc inverse_cosine(double x, double y) {
  if (is_nan(x)) return {x * x, is_infinite(y) ? flip(y) : x * x};
  if (is_nan(y)) {
    if (is_infinite(x)) return {y * y, infinity<double>};
    return {is_zero(x) ? (double)(pi / 2) : y * y, y * y};
  }
  const double sign = is_negative(y) ? 1 : -1;  // of the imaginary part
  if (is_infinite(x) || is_infinite(y))
    return {(double)_vxmatan2l_scalar(__builtin_fabs(y), x), sign * infinity<double>};
  const auto [adjacent, logarithm] = triangle(__builtin_fabs(x), __builtin_fabs(y));
  const long double acute = _vxmatan2l_scalar(adjacent, __builtin_fabs(x));
  return rounded(x < 0 ? pi - acute : acute, sign * logarithm);
}

vxm64fc inverse_hyperbolic_sine(double x, double y) {
  if (is_nan(x)) {
    if (is_zero(y)) return {x * x, y};
    return {is_infinite(y) ? infinity<double> : x * x, x * x};
  }
  if (is_nan(y)) return {is_infinite(x) ? x : y * y, y * y};
  if (is_infinite(x) || is_infinite(y))
    return {__builtin_copysign(infinity<double>, x), (double)_vxmatan2l_scalar(y, __builtin_fabs(x))};
  const auto [adjacent, logarithm] = triangle(__builtin_fabs(y), __builtin_fabs(x));
  return {__builtin_copysign((double)logarithm, x), (double)_vxmatan2l_scalar(y, adjacent)};
}

vxm64fc inverse_hyperbolic_tangent(double x, double y) {
  const double quarter_turn = __builtin_copysign((double)(pi / 2), y);
  if (is_nan(x)) {
    if (is_infinite(y)) return {0, quarter_turn};
    return {x * x, x * x};
  }
  if (is_nan(y)) return {is_infinite(x) || is_zero(x) ? signed_zero(x) : y * y, y * y};
  if (is_infinite(x) || is_infinite(y)) return {signed_zero(x), quarter_turn};
  const long double a = __builtin_fabs(x), b = y, distance = (1 - a) * (1 - a) + b * b;
  const long double re = a == 0 ? 0 : 0.25L * _vxmlog1pl_scalar(4 * a / sse2::at_run_time(distance));
  const long double im = 0.5L * _vxmatan2l_scalar(2 * b, (1 - a) * (1 + a) - b * b);
  return {__builtin_copysign((double)re, x), (double)im};
}

}  // namespace

extern "C" {

vxm64fc _vxmcacos_scalar(double x, double y) { return tested(inverse_cosine(x, y)); }
vxm64fc _vxmcasinh_scalar(double x, double y) { return tested(inverse_hyperbolic_sine(x, y)); }
vxm64fc _vxmcatanh_scalar(double x, double y) { return tested(inverse_hyperbolic_tangent(x, y)); }

}  // extern "C"
