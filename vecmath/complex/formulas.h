// What several complex functions have in common, in two doubles, for one element or for vectors.
#pragma once

#include "vecmath/extended/arc_tangent.h"
#include "vecmath/extended/logarithm.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// x and y by magnitude.
template <class V>
struct Ordered {
  V larger, smaller;
};
template <class V>
QKR_INLINE Ordered<V> by_magnitude(V x, V y) {
  const V a = absolute<double>(x), b = absolute<double>(y);
  return {select(a < b, b, a), select(a < b, a, b)};
}

// |z|^2, and |z|^2 - 1, whose terms cancel near the unit circle: no bit of the squares is lost before. The
// difference of the heads from 1 rounds too, where the larger part is below 1/2.
template <class V>
struct Modulus {
  DoubleDouble<V> squared, less_one;
};
template <class V>
QKR_INLINE Modulus<V> modulus(Ordered<V> z) {
  const auto A = two_product(z.larger, z.larger), B = two_product(z.smaller, z.smaller);
  const auto heads = fast_sum(A.hi, B.hi);
  const auto first = two_sum(A.hi, all<V>(-1.0)), second = two_sum(first.hi, B.hi),
             tails = two_sum(A.lo, B.lo);
  const auto sum = two_sum(second.hi, tails.hi);
  return {fast_sum(heads.hi, heads.lo + (A.lo + B.lo)),
          fast_sum(sum.hi, sum.lo + ((second.lo + first.lo) + tails.lo))};
}

template <class V>
QKR_INLINE DoubleDouble<V> logarithm_of_modulus(V x, V y) {
  const auto m = modulus(by_magnitude(x, y));
  return scaled(logarithm(m.squared, m.less_one), 0.5);
}

template <class V>
QKR_INLINE DoubleDouble<V> exact(V x) {
  return {x, V{}};
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
