// The formulas of sine and cosine in single precision: reduction modulo pi or pi/2 and minimax polynomials,
// in double precision inside and rounded once. |x| <= 10000.
#pragma once

#include "vecmath/frame/groups.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr float single_shifter = 12582912.0f;       // 1.5 * 2^23: adding it rounds to an integer
constexpr float inverse_pi = 0.31830987334251404f;  // 1 / pi
constexpr float inverse_half_pi = 0.6366197466850281f;

// x + n a - n b, where n a is exact.
template <class D>
QKR_INLINE D reduce(D x, D n, double a, double b) {
  return exact_mad(n, a, x) - n * b;
}

// sin(r) for |r| <= pi/2, within 2^-25 of it.
template <class D>
QKR_INLINE D half_turn_sine(D r) {
  constexpr double A1 = 0x1.000000089705fp0, A3 = -0x1.55554ae8ba1bdp-3, A5 = 0x1.110ee64cd0933p-7,
                   A7 = -0x1.9f75e2c166f94p-13, A9 = 0x1.5e0a329a17541p-19;
  const D z = r * r;
  return r * (A1 + z * (A3 + z * (A5 + z * (A7 + z * A9))));
}

// The sine of x (shift 0) or of x + pi/2 (shift 1/2 of a half turn).
template <class V>
QKR_INLINE V sine_of_single(V x, V counted, double shift) {
  constexpr double minus_pi_high = -3.1415926535846666, minus_pi_low = 5.126688303189038e-12;
  const V t = counted * inverse_pi + single_shifter, N = t - single_shifter;
  const V p = narrow(half_turn_sine(reduce(widen(x), widen(N) - shift, minus_pi_high, minus_pi_low)));
  return real(bits(p) ^ (bits(t) << 31));
}

constexpr double quarter_turn_hi = -1.5707963267923333, quarter_turn_lo = 2.563344151594519e-12;

template <class V>
QKR_INLINE Pair<V> sine_and_cosine_of_single(V x) {
  // Sine and cosine for |r| <= pi/4, within 2^-28 and 2^-33 of the results.
  constexpr double A1 = -0.16666654612881793, A2 = 0.008332160761521766, A3 = -0.00019515283190447318;
  constexpr double B0 = -0.5, B1 = 0.04166664568297557, B2 = -0.0013887316254360454,
                   B3 = 2.443315705834904e-05;
  const V t = x * inverse_half_pi + single_shifter, N = t - single_shifter;
  const auto r = reduce(widen(x), widen(N), quarter_turn_hi, quarter_turn_lo);
  const auto z = r * r;
  const auto s = bits(narrow(r * (1.0 + z * (A1 + z * (A2 + z * A3)))));
  const auto c = bits(narrow(1.0 + z * (B0 + z * (B1 + z * (B2 + z * B3)))));
  const auto quadrant = bits(t), swap = (s ^ c) & (0u - (quadrant & 1u));
  return {real((s ^ swap) ^ ((quadrant & 2u) << 30)),
          real((c ^ swap) ^ (((quadrant ^ (quadrant >> 1)) & 1u) << 31))};
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
