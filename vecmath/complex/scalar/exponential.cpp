// e^(x + iy) of one element: e^x cos y + i e^x sin y, with its special values.
#include "vecmath/complex/scalar/internal.h"

using namespace qkr;

namespace {

constexpr int overflows_from = 0x40A;  // exponent field: |x| >= 2048

vxm64fc exponential_of_huge(double x, double y) {
  // By the sign of x; rounded to double: +inf with overflow, or +0 with underflow.
  static constexpr long double big_small[] = {0x1p16383L, 0x1p-16382L};
  const double b = (double)sse2::at_run_time(big_small[is_negative(x)]);
  const auto [sine, cosine] = sine_and_cosine(y);
  return rounded(b * b * cosine, b * b * (is_subnormal(y) ? y : sine));
}

vxm64fc exponential(double x, double y) {
  if (is_zero(y)) return {(double)_vxmexpl_scalar(x), y};
  if (is_finite(y)) {
    if (is_zero(x)) {
      const auto [sine, cosine] = sine_and_cosine(y);
      return rounded(cosine, sine);
    }
    if (is_finite(x) && exponent_field(x) >= overflows_from) return exponential_of_huge(x, y);
    const long double e = _vxmexpl_scalar(x);
    const auto [sine, cosine] = sine_and_cosine(y);
    return rounded(e * cosine, e * (is_infinite(x) && is_subnormal(y) ? y : sine));
  }
  if (is_nan(x)) return {x * x, y * x * x};
  if (_vxm_internal_isninf(x)) return {0, is_nan(y) ? 0 : signed_zero(y)};
  const double nan = (double)_vxmsinl_scalar(y);
  return {is_infinite(x) ? x : nan, nan};
}

}  // namespace

extern "C" {

vxm64fc _vxmcexp_scalar(double x, double y) { return tested(exponential(x, y)); }

vxm32fc _vxm_cexpf_scalar(float x, float y) {
  const vxm64fc z = _vxmcexp_scalar(x, y);
  return {(float)z.re, (float)z.im};
}

}  // extern "C"
