// Reduction modulo pi/2 below 2^30, of a number or of a vector: x less whole quarter turns, pi/4 being
// taken in parts (W. J. Cody and W. Waite, Software Manual for the Elementary Functions, 1980).
#pragma once

#include "simd/simd.h"
#include "vecmath/frame/sign.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// An unevaluated sum; what additions to hi lose is gathered in lo.
template <class V>
struct GatheredSum {
  V hi, lo;
  QKR_INLINE void add(V term) {
    const V sum = hi + term, old = sum - term;
    lo = lo + ((hi - old) + (term - (sum - old)));
    hi = sum;
  }
};

// The nearest integer, of two the upper one; single elements may come in another rounding mode.
template <class V>
QKR_INLINE V nearest_count(V x) {
  const V even = (x + 0x1p52) - 0x1p52;
  return even + zero_unless(x - even == 0.5, 1.0);
}
QKR_INLINE double nearest_count(double x) { return ((int32_t)(x + x) + 1) >> 1; }

constexpr double quarter_turns_limit = 0x1p30;

// x = count pi/2 + hi + lo, hi at most about pi/4; of count the last two bits tell.
template <class V>
struct QuarterTurns {
  V hi, lo;
  decltype(bits(V())) count;
};
template <class V>
QKR_INLINE QuarterTurns<V> quarter_turns(V x) {
  constexpr double two_over_pi = 0x1.45f306dc9c883p-1;
  // Up to 2^30 the count of eighths times each part of pi/4 is exact: parts of 27, 28, 27 bits for counts
  // of up to 24 bits, of 20, 21, 20, 20 bits beyond.
  constexpr double few_parts[] = {0.7853981629014015, 4.960467904491228e-10, -6.088525906594782e-19,
                                  1.7607799325916e-27, 0};
  constexpr double many_parts[] = {0.7853975296020508, 6.337954800983425e-07, -8.256991011063031e-14,
                                   -6.675151087907452e-20, 8.223128468162129e-27};
  const V magnitude = absolute<double>(x), turns = magnitude * two_over_pi;
  const V n = nearest_count(turns), eighths = n + n;
  const auto few = magnitude < 0x1p23;
  GatheredSum<V> rest = {magnitude, V{}};
  for (int k = 0; k < 5; ++k) rest.add(-(eighths * select(few, few_parts[k], many_parts[k])));
  const V hi = flip_sign(rest.hi, x), lo = flip_sign(rest.lo, x), sum = hi + lo;
  const auto count = bits(n + 0x1p52), negative = 0u - (bits(x) >> 63);
  return {sum, (hi - sum) + lo, (count ^ negative) - negative};
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
