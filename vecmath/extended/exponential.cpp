// The exponential and the hyperbolic functions of one extended number: the kernel in two doubles, and what
// lies beyond its range.
#include "vecmath/extended/exponential.h"

#include <qkr/vecmath_extended.h>

#include "vecmath/extended/format.h"

using namespace qkr::sse2;

namespace {

constexpr long double overflow_from = 11356.6L, zero_from = -11400.0L;  // a little beyond the format's range
constexpr long double almost_linear = 0x1p-36L;                         // sinh x and tanh x are x up to there
constexpr long double huge = 40;                                        // e^-x is nothing beside e^x

long double hyperbolic_of_huge(long double magnitude) {
  if (magnitude > 11360) return overflow(false);
  const auto e = exponential(split(magnitude));
  return times_power_of_two(join(e.mantissa), ((int32_t)e.n >> 6) - 1);
}

}  // namespace

extern "C" {

long double _vxmexpl_scalar(long double x) {
  if (!is_finite(x)) return x == -__builtin_infl() ? 0 : x + x;
  if (x > overflow_from) return overflow(false);
  if (x < zero_from) return underflow();
  const auto e = exponential(split(x));
  return times_power_of_two(join(e.mantissa), (int32_t)e.n >> 6);
}

void _vxmsinhcoshl_scalar(long double x, long double *sine, long double *cosine) {
  *sine = _vxmsinhl_scalar(x);
  *cosine = _vxmcoshl_scalar(x);
}

long double _vxmsinhl_scalar(long double x) {
  const long double magnitude = __builtin_fabsl(x);
  if (!is_finite(x)) return x + x;
  if (magnitude < almost_linear) return x == 0 ? x : inexact(x);
  const long double result =
      magnitude < huge ? join(hyperbolic_pair(split(magnitude)).sinh) : hyperbolic_of_huge(magnitude);
  return __builtin_copysignl(result, x);
}

long double _vxmcoshl_scalar(long double x) {
  const long double magnitude = __builtin_fabsl(x);
  if (!is_finite(x)) return magnitude + magnitude;
  if (magnitude < almost_linear) return x == 0 ? 1 : inexact(1);
  return magnitude < huge ? join(hyperbolic_pair(split(magnitude)).cosh) : hyperbolic_of_huge(magnitude);
}

long double _vxmtanhl_scalar(long double x) {
  const long double magnitude = __builtin_fabsl(x);
  if (x != x) return x + x;
  if (magnitude < almost_linear) return x == 0 ? x : inexact(x);
  if (magnitude > huge) return __builtin_copysignl(is_finite(x) ? inexact(1) : 1, x);
  const auto [sine, cosine] = hyperbolic_pair(split(magnitude));
  return __builtin_copysignl(join(sine / cosine), x);
}

}  // extern "C"
