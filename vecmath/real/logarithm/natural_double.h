// The formulas of the logarithms of logarithm.cpp: by table and short polynomial (P. T. P. Tang, ACM TOMS 16
// (1990) 378): x = 2^n y, r about 1/y from the table, log x = n log 2 - log r + log(1 + (r y - 1)). y is
// split so that its head times r is exact.
#pragma once

#include "vecmath/frame/groups.h"
#include "vecmath/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The layout of the number format: fraction field, one, and the table index in the fraction of y.
struct DoubleFormat {
  using Element = double;
  static constexpr uint64_t fraction = 0x000FFFFFFFFFFFFF, one = 0x3FF0000000000000;
  static constexpr int group_width = QKR_BASELINE ? 2 : 4;
  static constexpr int index_shift = 43;  // the upper nine bits, rounded
  static constexpr uint64_t half_row = 0x0000040000000000;
};

// A logarithm: how n is extracted, the table, log 2 = hi + lo, C (the table's first
// column holds r * C), the polynomial, and for subnormal inputs the scaling and its logarithm.
struct NaturalDouble : DoubleFormat {
  static constexpr auto table = ln_double::rows;
  static constexpr uint64_t next_binade =
      0x0008040000000000;  // from 1.499 on n is one more, with the table's jump
  static constexpr uint64_t head_mask = 0x7FFFFFFF00000000;
  static constexpr double log2_hi = 0x1.62e42fefa3800p-1, log2_lo = 5.497923018708371e-14;
  static constexpr double C = 1.0;
  static constexpr double subnormal_scale = 0x1p-970, subnormal_log = 36.04365338911715;
  // ln(1 + z) - z for |z| <= 2^-10, within 2^-56 of the logarithm.
  static constexpr double P1 = -0.49999999999995254, P2 = 0.3333333333332741;
  static constexpr double P3 = -0.2500001988694339, P4 = 0.2000001934420511;
  template <class V>
  QKR_INLINE static V polynomial(V z) {
    return (z * z) * (P1 + z * (P2 + z * (P3 + z * P4)));
  }
};

// The logarithm as head + tail, for positive normal x.
template <class Log, class V>
QKR_INLINE Pair<V> logarithm_sum(V x) {
  using T = typename Log::Element;
  const V y = real((bits(x) & Log::fraction) | Log::one);
  const V n = exponent(bits(x) + Log::next_binade);
  const auto k = ((bits(y) + Log::half_row) >> Log::index_shift) - (Log::one >> Log::index_shift);
  V r, again, t_hi, t_lo;
  look_up(Log::table, k, r, again, t_hi, t_lo);
  const V y_hi = real(bits(y) & Log::head_mask), y_lo = y - y_hi;
  const V a = exact_mad(y_hi, r, -Log::C), b = y_lo * r, z = b + a;
  const V s = a + exact_mad(n, Log::log2_hi, t_hi);
  const V c = n * Log::log2_lo + t_lo;
  // c is 0 around x = 1 only: there b belongs to the head, which keeps all its bits.
  return {s + zero_unless(c == T(0), b), (Log::polynomial(z) + c) + zero_unless(c != T(0), b)};
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
