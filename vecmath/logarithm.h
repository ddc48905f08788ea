// The natural logarithm by table, shared by Ln and by what is built on it; see logarithm.cpp for the method.
#pragma once

#include "simd/simd.h"
#include "vecmath/scalar.h"
#include "vecmath/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The layout of the number format: fraction field, one, and the table index in the fraction of y.
struct DoubleFormat {
  using Element = double;
  static constexpr uint64_t fraction = 0x000FFFFFFFFFFFFF, one = 0x3FF0000000000000;
  static constexpr uint64_t infinity = infinity_pattern_double, dbInd = 0xFFF8000000000000;
  static constexpr int index_shift = 43;  // the upper nine bits, rounded
  static constexpr uint64_t half_row = 0x0000040000000000;
};

// A logarithm: how n is extracted, the table, log 2 = hi + lo, C (the table's first column holds r * C), the
// polynomial, and for subnormal inputs the scaling and its logarithm.
struct NaturalDouble : DoubleFormat {
  static constexpr auto table = ln_double::BT_Tbl;
  static constexpr uint64_t next_binade =
      0x0008040000000000;  // from 1.499 on n is one more, with the table's jump
  static constexpr uint64_t dbYHiMask = 0x7FFFFFFF00000000;
  static constexpr double log2_hi = 0x1.62e42fefa3800p-1, log2_lo = 5.497923018708371e-14;
  static constexpr double C = 1.0;
  static constexpr double subnormal_scale = 0x1p52, subnormal_log = 36.04365338911715;
  static constexpr double dbP1 = -0.49999999999995254, dbP2 = 0.3333333333332741;
  static constexpr double dbP3 = -0.2500001988694339, dbP4 = 0.2000001934420511;
  template <class V>
  QKR_INLINE static V polynomial(V z) {
    return (z * z) * (dbP1 + z * (dbP2 + z * (dbP3 + z * dbP4)));
  }
};

// With x = 2^n y, y = y_hi + y_lo, r about 1/y, and z = a + y_lo r = r y - 1, the natural logarithm is
// s + c + log(1 + z) - a, where s is exact.
template <class V>
struct LogTerms {
  V a, r, y_lo, s, c;
};

template <class Log, class V>
QKR_INLINE LogTerms<V> log_terms(V x) {
  const V y = real((bits(x) & Log::fraction) | Log::one);
  const V n = exponent(bits(x) + Log::next_binade);
  const auto k = ((bits(y) + Log::half_row) >> Log::index_shift) - (Log::one >> Log::index_shift);
  V r, again, t_hi, t_lo;
  look_up(Log::table, k, r, again, t_hi, t_lo);
  const V y_hi = real(bits(y) & Log::dbYHiMask), y_lo = y - y_hi;
  const V a = exact_mad(y_hi, r, -Log::C);
  return {a, r, y_lo, a + exact_mad(n, Log::log2_hi, t_hi), n * Log::log2_lo + t_lo};
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
