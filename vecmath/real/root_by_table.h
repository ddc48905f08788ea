// The square root of one number by table, for scalar functions of this room and of those above.
#pragma once

#include "simd/vectors.h"
#include "vecmath/tables/tables.h"

namespace qkr {

// 1 / sqrt(x) by a quadratic of the mantissa, then one step of Newton's method and the product with x. Real
// is double, or x87 extended; x is a positive normal number, others get what the steps make of them.
template <class Real>
inline Real root_by_table(double x) {
  constexpr double root_by_parity[2] = {1.4142135623730951, 1.0};  // by the parity of the exponent field
  const uint64_t pattern = sse2::bits(x);
  const uint32_t high = (uint32_t)(pattern >> 32), k = high >> 13 & 127, parity = high >> 20 & 1;
  const uint64_t mantissa = (pattern & 0x000FFFFFFFFFFFFFu) | 0x3FF0000000000000u;
  const uint64_t half_power = (uint64_t)(0x5FE00000 - (high >> 1 & 0x7FF00000)) << 32;
  const Real m = sse2::real(mantissa), power = sse2::real(half_power);
  const Real y = ((sqrt_double::A2[k] * m + sqrt_double::A1[k]) * m + sqrt_double::A0[k]) * power *
                 root_by_parity[parity];
  return ((Real)1.5 + ((Real)-0.5 * x) * y * y) * y * x;
}

}  // namespace qkr
