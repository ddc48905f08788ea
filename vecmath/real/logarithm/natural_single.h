// The formulas of the natural logarithm in single precision, by the method of natural_double.h with a
// table of 65 rows and a cubic. The table has no jump; around x = 1 the low product joins the head instead.
#pragma once

#include "vecmath/frame/groups.h"
#include "vecmath/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct NaturalSingle {
  static constexpr float ln2_high = 0.693115234375f, ln2_low = 3.194618329871446e-05f;  // n * hi is exact
  // ln(1 + z) - z for |z| <= 2^-7, within 2^-30 of the logarithm.
  static constexpr float P[3] = {-0.5f, 0.3333333432674408f, -0.25f};
  static constexpr uint32_t fraction_mask = 0x7FFFFF, one = 0x3F800000, head_mask = 0x7FFFC000;
  static constexpr RowsAndColumns<65, 4, 80> table = {ln_single::rows, ln_single::columns};
  static constexpr uint32_t near_one_first = 0x3F7E0001, near_one_last = 0x3F81FFFF;

  template <class V, class N>
  QKR_INLINE static V logarithm(V x, N adj_n) {
    const V y = real((bits(x) & fraction_mask) | one);
    V t_hi, t_lo, r, unused;
    look_up(table, ((bits(y) + 0x10000u) >> 17) - (one >> 17), t_hi, t_lo, r, unused);
    const V y_hi = real(bits(y) & head_mask), y_lo = y - y_hi;
    const V a = exact_mad(y_hi, r, -1.0f), b = y_lo * r, z = b + a;
    const V q = (z * z) * (P[0] + z * (P[1] + z * P[2]));
    const V n = exponent(bits(x)) + adj_n;
    const V head = exact_mad(n, ln2_high, t_hi + a), tail = n * ln2_low + t_lo;
    const V b_head = zero_unless(within(bits(x), near_one_first, near_one_last), b);
    return ((q + tail) + (b - b_head)) + (head + b_head);
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
