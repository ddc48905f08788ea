// ln x in two doubles by table and short polynomial: x = 2^e m, c m = 1 + r with c from the table (P. T. P.
// Tang, ACM TOMS 16 (1990) 378). Relative error below 2^-66.
#pragma once

#include "vecmath/extended/double_double.h"
#include "vecmath/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// base + ln(1 + r); where r is the deviation from 1 itself, base is 0.
template <class V>
struct ReducedLogarithm {
  DoubleDouble<V> r;
  V base_hi, base_lo;
};

// ln 2, the first part a multiple of 2^-40.
constexpr double ln2_hi = 0x1.62e42fefa4p-1, ln2_lo = -0x1.8432a1b0e2634p-43;
constexpr double near_one = 0x1p-8;  // deviations below it need no table, nor bear its rounding

// For a positive normal x.
template <class V>
QKR_INLINE ReducedLogarithm<V> reduce_logarithm(DoubleDouble<V> x) {
  const auto pattern = bits(x.hi), row = (pattern >> 44) & 255ul;
  V c, L, L_lo, unused;
  look_up(extended::logarithms, row, c, L, L_lo, unused);
  const auto raised = ((row + 150ul) & 256ul) << 44;  // from row 106 on the exponent is one more
  const auto power = (pattern & 0x7FF0000000000000ul) + raised;
  const V e = exponent(pattern + raised);
  const V m = real(pattern - power + 0x3FF0000000000000ul), m_lo = x.lo * real(0x7FE0000000000000ul - power);
  const auto product = two_product(c, m);
  return {two_sum(product.hi - 1.0, product.lo + c * m_lo), e * ln2_hi + L, L_lo + e * ln2_lo};
}

// Only r and r^2/2 stand in two doubles.
template <class V>
QKR_INLINE DoubleDouble<V> finish_logarithm(ReducedLogarithm<V> x) {
  const V z = x.r.hi;
  auto z2 = two_product(z, z);
  z2.lo = z2.lo + 2.0 * (z * x.r.lo);
  const V u = z2.hi;
  const V tail = (z * u) * ((1.0 / 3 - z * 0.25) +
                            u * ((0.2 - z * (1.0 / 6)) + u * ((1.0 / 7 - z * 0.125) + u * (1.0 / 9))));
  const auto first = two_sum(x.base_hi, z), second = two_sum(first.hi, -0.5 * u);
  return fast_sum(second.hi, ((first.lo + second.lo) + (x.r.lo - 0.5 * z2.lo)) + (tail + x.base_lo));
}

template <class V>
QKR_INLINE DoubleDouble<V> logarithm(DoubleDouble<V> x) {
  return finish_logarithm(reduce_logarithm(x));
}

// ln x, where x - 1 is known better than x tells.
template <class V>
QKR_INLINE DoubleDouble<V> logarithm(DoubleDouble<V> x, DoubleDouble<V> less_one) {
  const auto reduced = reduce_logarithm(x);
  const auto far = absolute<double>(less_one.hi) >= near_one;
  return finish_logarithm<V>({select_pair(far, reduced.r, less_one), zero_unless(far, reduced.base_hi),
                              zero_unless(far, reduced.base_lo)});
}

// ln(1 + x) for x > -1.
template <class V>
QKR_INLINE DoubleDouble<V> logarithm_of_one_more(DoubleDouble<V> x) {
  const auto sum = two_sum(all<V>(1.0), x.hi);
  return logarithm(fast_sum(sum.hi, sum.lo + x.lo), x);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
