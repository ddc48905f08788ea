// The formulas of sine and cosine in double: table of the sine and its slope at nodes of a regular grid,
// short polynomials between them (S. Gal and B. Bachelis, ACM TOMS 17 (1991) 26, with a regular grid).
#pragma once

#include "vecmath/frame/groups.h"
#include "vecmath/real/circular/grid.h"
#include "vecmath/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Up to here reduce() needs no reduction before it, where the bits of single elements count.
constexpr double no_reduction = 0x1p17;

// Taylor's series: four terms for |r| <= pi/64, within 2^-65; three for |r| <= pi/128, within 2^-58.
constexpr double S1 = -0.16666666666666666, S2 = 0.008333333333333333;
constexpr double S3 = -0.0001984126984126984, S4 = 2.7557319223985893e-06;
constexpr double C1 = -0.5, C2 = 0.041666666666666664, C3 = -0.001388888888888889, C4 = 2.48015873015873e-05;

// The grids with their tables, and where the two polynomials end.
struct OneResult : Grid64 {
  static constexpr auto table = circular::sine_rows;
  template <class V>
  QKR_INLINE static V sine_polynomial(V z) {
    return z * (S1 + z * (S2 + z * (S3 + z * S4)));
  }
  template <class V>
  QKR_INLINE static V cosine_polynomial(V z) {
    return z * (C1 + z * (C2 + z * (C3 + z * C4)));
  }
};
struct TwoResults {
  static constexpr auto table = circular::fine_sine_rows;
  static constexpr unsigned rows = 128;
  static constexpr double steps_per_radian = 20.371832715762604;  // 64 / pi
  static constexpr double P1 = 0.049087385210441425, P2 = 1.8990939082199894e-12, P3 = 6.319582027487346e-23;
  template <class V>
  QKR_INLINE static V sine_polynomial(V z) {
    return z * (S1 + z * (S2 + z * S3));
  }
  template <class V>
  QKR_INLINE static V cosine_polynomial(V z) {
    return z * (C1 + z * (C2 + z * C3));
  }
};

// A row of a table.
template <class V>
struct Node {
  V T0, T1, T2, T3;
};

// The sine at a node plus r - excess, |r| at most half a step.
template <class Grid, class V>
QKR_INLINE V sine_near_node(Node<V> node, V r, V excess) {
  const auto [T0, T1, T2, T3] = node;
  const V D = T0 + T3, w = T2 - excess * (D - T1 * r), z = r * r;
  const V ps = Grid::sine_polynomial(z), pc = Grid::cosine_polynomial(z);
  const V rT0 = r * T0;
  const V h1 = exact_mad(T3, r, T1), h2 = h1 + rT0;
  const V e1 = exact_mad(T3, r, T1 - h1), e2 = (h1 - h2) + rT0;
  return ((((e1 + w) + e2) + ps * r * D) + pc * T1) + h2;
}

// The sine or cosine by row j, modulo the rows of the table.
template <class Grid, class V, class Index>
QKR_INLINE V sine_by_row(Index j, Reduced<V> x) {
  Node<V> n;
  look_up(Grid::table, j & (uint64_t)(Grid::rows - 1), n.T0, n.T1, n.T2, n.T3);
  return sine_near_node<Grid>(n, x.r, x.excess);
}

#if QKR_SIMD_BYTES == 64
// The same by columns in registers, which hold half a turn: the sine up to its sign.
template <class Grid, class V, class Index, class Columns>
QKR_INLINE V sine_by_columns(Columns columns, Index j, Reduced<V> x) {
  Node<V> n;
  pick<32>(columns, j, n.T0, n.T1, n.T2, n.T3);
  return sine_near_node<Grid>(n, x.r, x.excess);
}
// -v where the bit of j is set.
template <class V, class Index>
QKR_INLINE V turn_sign(V v, Index j, int bit) {
  return real(bits(v) ^ ((j << (63 - bit)) & 0x8000000000000000u));
}
#endif

// The sine by the grid of 64 steps; at the widest level by a table of half a turn.
template <class V>
QKR_INLINE V sine_at(Reduced<V> s) {
  const auto j = bits(s.t);
#if QKR_SIMD_BYTES == 64
  if constexpr (sizeof(V) > sizeof(double)) {
    return turn_sign(sine_by_columns<OneResult>(circular::sine_columns, j, s), j, 5);
  } else
#endif
    return sine_by_row<OneResult>(j, s);
}
template <class V>
QKR_INLINE Pair<V> sine_and_cosine_at(Reduced<V> s) {
  const V sine = sine_at(s);
  s.t = real(bits(s.t) + 16u);
  return {sine, sine_at(s)};
}

// The sine (quarter 0) or the cosine (quarter 1), which is the sine a quarter turn on. |x| < 90112, where the
// count of grid steps times each of the first two parts of a step is exact.
template <int quarter, class V>
QKR_INLINE V sine_or_cosine(V x) {
  return sine_at(reduce<OneResult>(x, quarter * 16));
}

// Both, in the same range.
template <class V>
QKR_INLINE Pair<V> sine_and_cosine(V x) {
#if QKR_SIMD_BYTES == 64
  if constexpr (sizeof(V) > sizeof(double)) {
    // For the angle less the nearest multiple of pi/2, which then says what becomes of them.
    const Reduced<V> s = reduce<TwoResults>(x, 16);
    const auto j = bits(s.t);
    const V sine = sine_by_columns<TwoResults>(circular::fine_sine_columns, j, s);
    const V cosine = sine_by_columns<TwoResults>(circular::fine_cosine_columns, j, s);
    const auto odd = (j & 32u) != 0u;
    return {turn_sign(select(odd, cosine, sine), j, 6), turn_sign(select(odd, sine, cosine), j + 32u, 6)};
  } else
#endif
  {
    const Reduced<V> s = reduce<TwoResults>(x, 0);
    const auto j = bits(s.t);
    return {sine_by_row<TwoResults>(j, s), sine_by_row<TwoResults>(j + 32u, s)};
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
