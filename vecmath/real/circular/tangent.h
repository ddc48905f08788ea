// The tangent by a table of short polynomials, at the nodes of a regular grid, for the tangent less its
// pole, and the pole's term -1/s in two parts, s being the distance from it. (Tables on a regular grid: P.
// T. P. Tang, Proc. 10th IEEE Symposium on Computer Arithmetic (1991) 232.)
#pragma once

#include "vecmath/real/circular/grid.h"
#include "vecmath/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// From here on with a reduction before.
constexpr double tangent_limit = 12800.0;  // 0x40C90000

// The upper 26 bits, so that a product of two such numbers is exact.
template <class V>
QKR_INLINE V head(V x) {
  return real(bits(x) & ~0x7FFFFFFul);
}

// Row j of the table for |r| at most half a step. All addends of the sum are -0 where r is -0 in row 0.
template <class V>
QKR_INLINE V tangent(Reduced<V> x) {
  const auto j = bits(x.t) & 31ul;
  V T, T_lo, slope, D, A2, A3, A4, A5, A6, A7, A8, A9;
#if QKR_SIMD_BYTES == 64
  pick<32>(circular::tangent_columns, j, T, T_lo, slope, D, A2, A3, A4, A5, A6, A7, A8, A9);
#else
  look_up(circular::tangent_rows, j, T, T_lo, slope, D);
  look_up(circular::tangent_rows + 32, j, A2, A3, A4, A5);
  look_up(circular::tangent_rows + 64, j, A6, A7, A8, A9);
#endif

  // s = r - excess + steps * pi/32 is the distance from the pole; s_head has 26 bits of it, s_tail the rest.
  const V row = real(j | 0x4330000000000000ul) - 0x1p52, steps = row - 16.0, r = x.r;
  const V s_head = head(exact_mad(steps, Grid64::P1, r) - x.excess);
  const V s_tail = (r - exact_mad(steps, -Grid64::P1, s_head)) + (steps * Grid64::P2 - x.excess);
  // 1/s = y (1 - f + f^2) with f = s y - 1 below 2^-24; row 0 has no pole.
  const V y = zero_unless(row != 0.0, head(1.0 / s_head));
  const V f = exact_mad(s_head, y, -1.0) + y * s_tail, y_tail = y * (f - f * f);

  const V z = r * r;
  const V Q = ((A2 + A3 * r) + z * (A4 + A5 * r)) + (z * z) * ((A6 + A7 * r) + z * (A8 + A9 * r));
  const V B = D + r * Q;  // with slope: about the derivative

  // T - y and then slope * r make the head of the sum; their additions gain and lose a little.
  const V h0 = T - y, gain = (h0 + y) - T;
  const V h1 = exact_mad(slope, r, h0), loss = exact_mad(slope, r, h0 - h1);
  return h1 + ((((T_lo - gain) - ((slope + B) * x.excess - loss)) + y_tail) + r * B);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
