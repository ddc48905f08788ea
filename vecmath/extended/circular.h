// Sine and cosine in two doubles: x = N pi/256 + r, table of both at the nodes, short polynomials between (P.
// T. P. Tang, Proc. 10th IEEE Symposium on Computer Arithmetic (1991) 232). Relative error below 2^-67, near
// the zeros too.
#pragma once

#include "vecmath/extended/exponential.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class V>
struct Circular {
  DoubleDouble<V> sin, cos;
};

constexpr double circular_limit = 4096;

// Of |x| < circular_limit.
template <class V>
QKR_INLINE Circular<V> circular_pair(DoubleDouble<V> x) {
  constexpr double steps = 81.48733086305042;  // 256 / pi
  // pi/256 in parts of 32 bits, so that their products with N are exact, and the rest.
  constexpr double P1 = 0x1.921fb544p-7, P2 = 0x1.0b4611a6p-41, P3 = 0x1.3198a2ep-76,
                   P4 = 0x1.b839a252049c1p-111;
  const V t = x.hi * steps + shifter, N = t - shifter;
  const auto a = two_sum(exact_mad(N, -P1, x.hi), N * -P2), b = two_sum(a.hi, N * -P3),
             c = two_sum(b.hi, x.lo);
  const auto r = fast_sum(c.hi, ((a.lo + b.lo) + c.lo) - N * P4);

  // sin r = z + s, cos r = 1 + c_hi + c_lo
  const V z = r.hi;
  auto z2 = two_product(z, z);
  z2.lo = z2.lo + 2.0 * (z * r.lo);
  const V u = z2.hi;
  const V s = r.lo + (z * u) * (-1.0 / 6 + u * (1.0 / 120 + u * (-1.0 / 5040 + u * (1.0 / 362880))));
  const V c_hi = -0.5 * u, c_lo = (u * u) * (1.0 / 24 + u * (-1.0 / 720 + u * (1.0 / 40320))) - 0.5 * z2.lo;

  V S, S_lo, C, C_lo;
  look_up(extended::sines, bits(t) & 511ul, S, S_lo, C, C_lo);
  // A (1 + c) + B (z + s)
  const auto combine = [&](V A, V A_lo, V B, V B_lo) QKR_LAMBDA {
    const auto p = two_product(B, z), q = two_product(A, c_hi);
    const auto first = two_sum(A, p.hi), second = two_sum(first.hi, q.hi);
    const V rest =
        ((first.lo + second.lo) + (p.lo + q.lo)) + ((A_lo + (B * s + B_lo * z)) + (A * c_lo + A_lo * c_hi));
    return fast_sum(second.hi, rest);
  };
  return {combine(S, S_lo, C, C_lo), combine(C, C_lo, -S, -S_lo)};
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
