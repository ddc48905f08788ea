// Numbers in two doubles: an unevaluated sum hi + lo with |lo| at most half a unit of hi, so about 106 bits.
// V is a double, a vector, or vectors side by side: the extended kernels and the complex functions stand on
// the same formulas. (T. J. Dekker, Numerische Mathematik 18 (1971) 224; D. E. Knuth, The Art of Computer
// Programming 2, 4.2.2; M. Joldes, J.-M. Muller and V. Popescu, ACM TOMS 44 (2017) 15.)
//
// All of it needs round to nearest, and doubles that are neither flushed nor held in longer registers.
#pragma once

#include "vecmath/frame/sign.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class V>
struct DoubleDouble {
  V hi, lo;
};

// A number of the kind V that has the same value in all lanes.
template <class V>
QKR_INLINE V all(double x) {
  return x - V{};
}

// a + b and what its rounding lost; the second where |a| >= |b| or a is zero.
template <class V>
QKR_INLINE DoubleDouble<V> two_sum(V a, V b) {
  const V sum = a + b, t = sum - a;
  return {sum, (a - (sum - t)) + (b - t)};
}
template <class V>
QKR_INLINE DoubleDouble<V> fast_sum(V a, V b) {
  const V sum = a + b;
  return {sum, b - (sum - a)};
}
template <class V>
QKR_INLINE DoubleDouble<V> two_product(V a, V b) {
  const V product = a * b;
  return {product, product_error(a, b, product)};
}

template <class V>
QKR_INLINE DoubleDouble<V> operator-(DoubleDouble<V> a) {
  return {-a.hi, -a.lo};
}
template <class V>
QKR_INLINE DoubleDouble<V> operator+(DoubleDouble<V> a, DoubleDouble<V> b) {
  const auto hi = two_sum(a.hi, b.hi), lo = two_sum(a.lo, b.lo);
  const auto sum = fast_sum(hi.hi, hi.lo + lo.hi);
  return fast_sum(sum.hi, sum.lo + lo.lo);
}
template <class V>
QKR_INLINE DoubleDouble<V> operator-(DoubleDouble<V> a, DoubleDouble<V> b) {
  return a + -b;
}
template <class V>
QKR_INLINE DoubleDouble<V> operator*(DoubleDouble<V> a, DoubleDouble<V> b) {
  const auto product = two_product(a.hi, b.hi);
  return fast_sum(product.hi, product.lo + (a.hi * b.lo + a.lo * b.hi));
}
template <class V>
QKR_INLINE DoubleDouble<V> times(DoubleDouble<V> a, V b) {
  const auto product = two_product(a.hi, b);
  return fast_sum(product.hi, product.lo + a.lo * b);
}
template <class V>
QKR_INLINE DoubleDouble<V> operator/(DoubleDouble<V> a, DoubleDouble<V> b) {
  const V reciprocal = 1.0 / b.hi, quotient = a.hi * reciprocal;
  const auto product = two_product(quotient, b.hi);
  const V rest = ((a.hi - product.hi) - product.lo) + (a.lo - quotient * b.lo);
  return fast_sum(quotient, rest * reciprocal);
}
template <class V>
QKR_INLINE DoubleDouble<V> square(DoubleDouble<V> a) {
  const auto product = two_product(a.hi, a.hi);
  return fast_sum(product.hi, product.lo + 2.0 * (a.hi * a.lo));
}
template <class V>
QKR_INLINE DoubleDouble<V> square_root(DoubleDouble<V> a) {
  const V root = square_root(a.hi);
  const auto product = two_product(root, root);
  return fast_sum(root, (((a.hi - product.hi) - product.lo) + a.lo) * (0.5 / root));
}

// By a power of two.
template <class V, class S>
QKR_INLINE DoubleDouble<V> scaled(DoubleDouble<V> a, S power) {
  return {a.hi * power, a.lo * power};
}
template <class V, class Sign>
QKR_INLINE DoubleDouble<V> flip_sign(DoubleDouble<V> a, Sign sign) {
  return {flip_sign(a.hi, sign), flip_sign(a.lo, sign)};
}
template <class V, class Mask>
QKR_INLINE DoubleDouble<V> select_pair(Mask mask, DoubleDouble<V> yes, DoubleDouble<V> no) {
  return {select(mask, yes.hi, no.hi), select(mask, yes.lo, no.lo)};
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
