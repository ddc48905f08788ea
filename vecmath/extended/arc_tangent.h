// Angles in two doubles: arctan(b/a) = arctan c + arctan((b - c a)/(a + c b)), with c the nearest multiple of
// 1/256 and its arc tangent from a table (S. Gal, Lecture Notes in Computer Science 235 (1986) 1). Relative
// error below 2^-67.
#pragma once

#include "vecmath/extended/exponential.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr double pi_hi = 0x1.921fb54442d18p+1, pi_lo = 0x1.1a62633145c07p-53;

// Of 0 <= b <= a.
template <class V>
QKR_INLINE DoubleDouble<V> angle_below_diagonal(DoubleDouble<V> b, DoubleDouble<V> a) {
  const V t = b.hi / a.hi * 256.0 + shifter, c = (t - shifter) * (1.0 / 256);
  const auto ca = two_product(c, a.hi), cb = two_product(c, b.hi);
  const auto rise = two_sum(b.hi - ca.hi, (b.lo - ca.lo) - c * a.lo);  // the first difference is exact
  auto run = fast_sum(a.hi, cb.hi);
  run.lo = run.lo + (cb.lo + (a.lo + c * b.lo));
  const auto slope = rise / run;

  const V z = slope.hi, u = z * z;
  const V tail = (z * u) * (-1.0 / 3 + u * (0.2 - u * (1.0 / 7)));
  V T, T_lo;
  look_up(extended::arc_tangents, bits(t) & 511ul, T, T_lo);
  const auto head = fast_sum(T, z);
  return fast_sum(head.hi, head.lo + (slope.lo + tail + T_lo));
}

// How the angle of the point (x, y) follows from that below the diagonal: counted from the axis of x on the
// right or on the left, or from that of y one way or the other. Zeros count with their signs.
template <class V>
struct Octant {
  V half_turns, sign;  // of the part to be added; for y >= 0
};
template <class V>
QKR_INLINE Octant<V> octant(V y, V x) {
  const V on_left = with_sign_of<double>(x, all<V>(1.0));
  const auto steep = absolute<double>(x) < absolute<double>(y);
  return {select(steep, all<V>(0.5), zero_unless(on_left < 0.0, all<V>(1.0))),
          flip_sign(x, zero_unless(steep, all<V>(-0.0)))};
}

// The angle of the point (x, y), not the origin.
template <class V>
QKR_INLINE DoubleDouble<V> angle(DoubleDouble<V> y, DoubleDouble<V> x) {
  const auto a = flip_sign(x, x.hi), b = flip_sign(y, y.hi);
  const auto part = angle_below_diagonal(select_pair(a.hi < b.hi, a, b), select_pair(a.hi < b.hi, b, a));
  const auto [half_turns, sign] = octant(y.hi, x.hi);
  const auto turned = flip_sign(part, sign);
  const auto sum = two_sum(half_turns * pi_hi, turned.hi);
  return flip_sign(fast_sum(sum.hi, sum.lo + (turned.lo + half_turns * pi_lo)), y.hi);
}
template <class V>
QKR_INLINE DoubleDouble<V> angle(V y, V x) {
  return angle(DoubleDouble<V>{y, V{}}, DoubleDouble<V>{x, V{}});
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
