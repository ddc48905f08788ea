// The angle of a point with extended coordinates; square root and absolute value, which the processor has.
#include "vecmath/extended/arc_tangent.h"

#include <qkr/vecmath_extended.h>

#include "vecmath/extended/format.h"

using namespace qkr::sse2;

namespace {

// Multiples of pi/4, rounded once.
long double quarter_turns(int count) { return (long double)(count * (pi_hi / 4)) + count * (pi_lo / 4); }

// Of an origin or a point with an infinite coordinate.
long double angle_of_special(bool x_is_infinite, bool y_is_infinite, bool left, bool y_is_zero) {
  if (y_is_zero || !y_is_infinite) return left ? inexact(quarter_turns(4)) : 0;
  return inexact(quarter_turns(!x_is_infinite ? 2 : left ? 3 : 1));
}

// Of a point in the plane's upper half, not on the axis of x.
long double upper_angle(long double y, long double x) {
  constexpr int far_apart = 90;  // exponents: the smaller coordinate hardly turns the direction
  if (x == 0) return inexact(quarter_turns(2));
  const auto [y_m, y_exponent] = normalized(y);
  const auto [x_m, x_exponent] = normalized(x);
  const int difference = y_exponent - x_exponent;
  if (difference > far_apart) return inexact(quarter_turns(2));
  if (difference < -far_apart) return x < 0 ? inexact(quarter_turns(4)) : y / x;
  return join(angle(split(times_power_of_two(y_m, difference)), split(x_m)));
}

}  // namespace

extern "C" {

long double _vxmatan2l_scalar(long double y, long double x) {
  if (x != x || y != y) return x + y;
  const long double magnitude = __builtin_fabsl(y);
  const bool special = y == 0 || !is_finite(x) || !is_finite(y);
  const long double result = special ? angle_of_special(!is_finite(x), !is_finite(y), is_negative(x), y == 0)
                                     : upper_angle(magnitude, x);
  return __builtin_copysignl(result, y);
}

long double _vxmsqrtl_scalar(long double x) { return __builtin_sqrtl(x); }
long double _vxmfabsl_scalar(long double x) { return __builtin_fabsl(x); }

}  // extern "C"
