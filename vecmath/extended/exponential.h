// e^x in two doubles by table and short polynomial: x = N ln2/64 + r with |r| <= ln2/128 (P. T. P. Tang, ACM
// TOMS 15 (1989) 144). Relative error below 2^-68.
#pragma once

#include "vecmath/extended/double_double.h"
#include "vecmath/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr double shifter = 0x1.8p52;  // its sum with a small number has the nearest integer in the low bits

// e^x = 2^(n >> 6) mantissa, with the mantissa from about 1 to 2; n has meaningless high bits.
template <class V>
struct Exponential {
  DoubleDouble<V> mantissa;
  decltype(bits(V())) n;
};

template <class V>
QKR_INLINE Exponential<V> exponential(DoubleDouble<V> x) {
  constexpr double steps = 92.33248261689366;  // 64 / ln 2
  // ln2/64 in parts of 32 bits, so that their products with N are exact, and the rest.
  constexpr double P1 = 0x1.62e42ffp-7, P2 = -0x1.718432a2p-41, P3 = 0x1.3c7673007e5edp-75;
  const V t = x.hi * steps + shifter, N = t - shifter;
  auto r = two_sum(exact_mad(N, -P1, x.hi), N * -P2);
  r = fast_sum(r.hi, r.lo + (x.lo - N * P3));

  // e^r - 1 = r + r^2/2 + ..., only the first two terms in two doubles.
  const V z = r.hi;
  const auto z2 = two_product(z, z);
  const V tail = (z * z2.hi) * ((1.0 / 6 + z * (1.0 / 24)) +
                                z2.hi * ((1.0 / 120 + z * (1.0 / 720)) + z2.hi * (1.0 / 5040)));
  auto s = fast_sum(z, 0.5 * z2.hi);
  s.lo = s.lo + ((r.lo + (0.5 * z2.lo + z * r.lo)) + tail);

  V T, T_lo;
  look_up(extended::powers, bits(t) & 63ul, T, T_lo);
  const auto product = two_product(T, s.hi);
  const auto head = fast_sum(T, product.hi);
  const V rest = product.lo + (T * s.lo + (T_lo * s.hi + T_lo));
  return {fast_sum(head.hi, head.lo + rest), bits(t)};
}

// 2^(n >> 6), if that is a normal number.
template <class Bits>
QKR_INLINE auto scale_of(Bits n) {
  return real(((n << 46) & 0xFFF0000000000000ul) + 0x3FF0000000000000ul);
}

template <class V>
struct Hyperbolic {
  DoubleDouble<V> sinh, cosh;
};

// Of 2^-400 <= x < 700: from e^x and its reciprocal; a small sine loses too many bits so and has a series.
template <class V>
QKR_INLINE Hyperbolic<V> hyperbolic_pair(DoubleDouble<V> x) {
  constexpr double small = 0.125;
  const auto e = exponential(x);
  const auto half = scaled(e.mantissa, 0.5 * scale_of(e.n));
  const auto reciprocal = DoubleDouble<V>{all<V>(0.25), V{}} / half;

  // x + x x^2 (1/6 + x^2/120 + ...)
  const auto z = square(x);
  const V tail =
      (z.hi * z.hi) *
      (1.0 / 120 +
       z.hi * (1.0 / 5040 + z.hi * (1.0 / 362880 + z.hi * (1.0 / 39916800 + z.hi * (1.0 / 6227020800)))));
  const auto cubic = z * DoubleDouble<V>{all<V>(0x1.5555555555555p-3), all<V>(0x1.5555555555555p-57)};
  const auto correction = x * fast_sum(cubic.hi, cubic.lo + tail);
  const auto series = fast_sum(x.hi, correction.hi);
  const auto by_series = fast_sum(series.hi, series.lo + (correction.lo + x.lo));
  return {select_pair(x.hi < small, by_series, half - reciprocal), half + reciprocal};
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
