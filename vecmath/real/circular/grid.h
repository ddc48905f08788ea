// The grid of 64 steps a turn, and the reduction of an argument to it.
#pragma once

#include "simd/simd.h"
#include "vecmath/real/circular/cores.h"
#include "vecmath/real/circular/quarter_turns.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Steps a turn, and a step in three parts: up to 2^17 the count of steps times each of the first two is
// exact.
struct Grid64 {
  static constexpr unsigned rows = 64;
  static constexpr double steps_per_radian = 10.185916357881302;  // 32 / pi
  static constexpr double P1 = 0.09817477042088285, P2 = 3.798187816439979e-12, P3 = 1.2639164054974691e-22;
};

// x = N steps + r - excess; the low bits of t hold N + offset. The excess of a zero of either sign is +0.
template <class V>
struct Reduced {
  V t, r, excess;
};
template <class Grid, class V>
QKR_INLINE Reduced<V> reduce(V x, double offset) {
  const double shifter = 6755399441055744.0 + offset;
  const V t = x * Grid::steps_per_radian + shifter, N = t - shifter;
  const V u = exact_mad(N, -Grid::P1, x), r = exact_mad(N, -Grid::P2, u);
  return {t, r, exact_mad(N, Grid::P2, r - u) + N * Grid::P3};
}

// The same up to 2^30, from `limit` on by way of a reduction modulo pi/2, whose count goes into t.
template <class V>
QKR_INLINE Reduced<V> reduce_wider(V x, double limit, double offset) {
  const auto turns = quarter_turns(x);
  const auto large = absolute<double>(x) >= limit;
  Reduced<V> s = reduce<Grid64>(select(large, turns.hi, x), offset);
  s.t = real(bits(s.t) + bits(zero_unless(large, real(turns.count << 4))));
  s.excess = s.excess - zero_unless(large, turns.lo);
  return s;
}

#if QKR_BASELINE
// Any finite x, those from `limit` on by way of a reduction modulo pi/2; the offset brings in the quadrant.
QKR_INLINE Reduced<double> reduce_any(double x, double limit) {
  if (__builtin_fabs(x) < limit) return reduce<Grid64>(x, 0);
  double sum[2];
  const int32_t quadrant = _vxmreduce_pio2d(x, sum);
  Reduced<double> s = reduce<Grid64>(sum[0], 16.0 * quadrant);
  s.excess -= sum[1];
  return s;
}

// |x| < 2^-252: x, or what is next to it toward zero in that rounding mode, with the flags that belong to it.
QKR_INLINE bool tiny(double x) { return __builtin_fabs(x) < 0x1p-252; }
QKR_INLINE double itself_if_tiny(double x) { return x == 0 ? x : (x * 0x1p55 - x) * 0x1p-55; }
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
