// Hyperbolic cosine, sine and tangent of one element, with their special values.
#include "vecmath/complex/scalar/internal.h"

using namespace qkr;

namespace {

constexpr int overflows_from = 0x40A;       // exponent field: |x| >= 2048
constexpr int tangent_is_one_from = 0x408;  // |x| >= 512

double overflowed() { return squared_at_run_time(largest<double>); }

// sin y, and y itself where it is subnormal.
long double sine_or_itself(double y) { return is_subnormal(y) ? y : _vxmsinl_scalar(y); }

vxm64fc hyperbolic_cosine(double x, double y) {
  if (is_zero(y)) {
    const bool minus = !is_nan(x) && is_negative(x);
    return {(double)_vxmcoshl_scalar(x), minus ? -y : y};
  }
  if (is_finite(y)) {
    if (is_zero(x)) {
      raise_inexact();
      return rounded(_vxmcosl_scalar(y), x * sine_or_itself(y));
    }
    if (is_nan(x)) return {x * x, x * x};
    if (is_infinite(x)) {
      if (__builtin_fabs(y) < 1) return {x * x, x * y};
      const auto [sine, cosine] = sine_and_cosine(y);
      return rounded(x * x * cosine, x * sine);
    }
    if (exponent_field(x) >= overflows_from) {
      const double s = overflowed();
      return rounded(s * _vxmcosl_scalar(y), (s * x) * sine_or_itself(y));
    }
    const auto [sine, cosine] = sine_and_cosine(y);
    const auto [sinh, cosh] = hyperbolic_sine_and_cosine(x);
    return rounded(cosh * cosine, sinh * sine);
  }
  if (is_zero(x)) {
    const double zero = is_infinite(y) && is_negative(x) != is_negative(y) ? -0.0 : 0.0;
    return {(double)_vxmcosl_scalar(y), zero};
  }
  return rounded(is_finite(x) ? _vxmcosl_scalar(y) : _vxmcoshl_scalar(x), _vxmsinl_scalar(y));
}

vxm64fc hyperbolic_sine(double x, double y) {
  if (is_zero(y)) return {(double)_vxmsinhl_scalar(x), y};
  if (is_finite(y)) {
    if (is_zero(x)) {
      raise_inexact();
      return rounded(x * _vxmcosl_scalar(y), sine_or_itself(y));
    }
    if (is_nan(x)) return {x * x, x * x};
    if (is_infinite(x)) {
      if (__builtin_fabs(y) < 1) return {x, x * x * y};
      const auto [sine, cosine] = sine_and_cosine(y);
      return rounded(x * cosine, x * x * sine);
    }
    if (exponent_field(x) >= overflows_from) {
      const double s = overflowed();
      return rounded(s * _vxmcosl_scalar(y) * x, s * sine_or_itself(y));
    }
    const auto [sine, cosine] = sine_and_cosine(y);
    const auto [sinh, cosh] = hyperbolic_sine_and_cosine(x);
    return rounded(sinh * cosine, cosh * sine);
  }
  const long double nan = _vxmsinl_scalar(y);
  return rounded(_vxm_internal_isnzfinite(x) ? x * nan : _vxmsinhl_scalar(x), nan);
}

// A zero with the sign of sin y cos y, the limit of the tangent's imaginary part.
double signed_by_double_angle(double y) {
  const auto [sine, cosine] = sine_and_cosine(y);
  return signed_zero((double)(sine * cosine));
}

vxm64fc tangent_of_infinity(double x, double y) {
  const double one = is_negative(x) ? -1 : 1;
  if (is_nan(y)) return {one, 0};
  const bool by_sign = is_infinite(y) || __builtin_fabs(y) < 1;
  return {one, by_sign ? signed_zero(y) : signed_by_double_angle(y)};
}

vxm64fc tangent_of_large(double x, double y) {
  const double one = at_run_time(is_negative(x) ? -1.0 : 1.0) - smallest_normal<double>;
  if (is_zero(y)) return {one, y};
  at_run_time(squared_at_run_time(smallest_normal<double>));
  return {one, is_subnormal(y) ? signed_zero(y) : signed_by_double_angle(y)};
}

vxm64fc hyperbolic_tangent(double x, double y) {
  if (is_nan(x)) {
    if (is_zero(y)) return {x * x, y};
    return {x * x, is_nan(y) ? y * y : x * x};
  }
  if (is_infinite(x)) return tangent_of_infinity(x, y);
  if (is_nan(y)) return {y * y, y * y};
  if (is_infinite(y)) {
    const double nan = (double)_vxmtanl_scalar(y);
    return {nan, nan};
  }
  if (is_zero(x)) return {x, is_zero(y) ? y : (double)_vxmtanl_scalar(y)};
  if (exponent_field(x) >= tangent_is_one_from) return tangent_of_large(x, y);
  if (is_zero(y)) return {(double)_vxmtanhl_scalar(x), y};
  const auto [sine, cosine] = sine_and_cosine(y);
  const auto [sinh, cosh] = hyperbolic_sine_and_cosine(x);
  const long double D = sinh * sinh + cosine * cosine;
  return rounded(sinh * cosh / D, sine * cosine / D);
}

}  // namespace

extern "C" {

vxm64fc _vxmccosh_scalar(double x, double y) {
  const vxm64fc z = hyperbolic_cosine(x, y);
  test_for_underflow(z.im);
  return z;
}
vxm64fc _vxmcsinh_scalar(double x, double y) { return tested(hyperbolic_sine(x, y)); }
vxm64fc _vxmctanh_scalar(double x, double y) { return tested(hyperbolic_tangent(x, y)); }

}  // extern "C"
