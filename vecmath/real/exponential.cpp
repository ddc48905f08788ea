// e^x by table and short polynomial (P. T. P. Tang, ACM TOMS 15 (1989) 144): x = N ln2/64 + r, so that
// e^x = 2^(N >> 6) * 2^((N & 63)/64) * e^r; in single precision with 128 table rows.
#include "vecmath/real/exponential.h"

#include "vecmath/frame/numbers.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct ExpDouble : UnaryKernel<double, 4>, ExpSteps {
  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, fast_limit);
  }
  template <class V>
  QKR_INLINE static V core(V x) {
    return scaled(reduce(x, 0.0));
  }
  static Outcome<double> scalar(double x) {
    constexpr double zero_from = -0x1.74910d52d3052p9;       // -745.1332191019412
    constexpr double subnormal_from = -0x1.6232bdd7abcd1p9;  // -708.396418532264
    constexpr double overflow_from = 0x1.62e42fefa39fp9;     // 709.7827128933841
    constexpr double top_binade_from = 0x1.62e37e7d8ba72p9;  // 709.7772976810359: N >> 6 reaches 1024
    if (x != x) return {real(~(uint64_t)0)};
    if (__builtin_fabs(x) == infinity<double>) return {x < 0 ? 0.0 : x};
    if (x <= zero_from) return {0.0, VXM_STATUS_UNDERFLOW};
    if (x >= overflow_from) return {infinity<double>, VXM_STATUS_OVERFLOW};
    const auto [t, m] = reduce(x, 0.0);
    if (x <= subnormal_from)  // only the last product rounds into the subnormal range
      return {m * scale(t, 1022) * 0x1p-1022, VXM_STATUS_UNDERFLOW};
    if (x >= top_binade_from) return {m * 0x1p1023 * 2.0};
    return {m * scale(t, 0)};
  }
};

// 2^k * 2^f in double precision, rounded once: results in the subnormal range.
float small_exponential(float x) {
  constexpr double log2_e = 0x1.71547652b82fep0, shifter = 6755399441055744.0;
  // 2^f for |f| <= 1/2, within 2^-29 of it.
  constexpr double A0 = 1.0000000005541663, A1 = 0.6931472057372665, A2 = 0.24022646890634758,
                   A3 = 0.05550328776967639, A4 = 0.009618488957047724, A5 = 0.0013399931218481776,
                   A6 = 0.00015345812020122585;
  const double u = x * log2_e, t = u + shifter, k = t - shifter, f = u - k, f2 = f * f;
  const double p = A0 + f * (A1 + f2 * (A3 + f2 * A5)) + f2 * (A2 + f2 * (A4 + f2 * A6));
  return (float)(p * real((uint64_t)(1023 + (int64_t)k) << 52));
}

// Overflows or underflows, with the event.
float square_at_run_time(float x) {
  x = at_run_time(x);
  return x * x;
}

struct ExpSingle : UnaryKernel<float, QKR_SIMD_BYTES == 64 ? 2 : 4> {
  static constexpr float inverse_step = 184.6649627685547f;
  static constexpr float shifter = 11534336.0f;            // 1.375 * 2^23
  static constexpr float step_high = 0.0054168701171875f;  // N * hi is exact
  static constexpr float step_low = -1.6577690757912933e-06f;
  static constexpr float A2 = 0.5f;  // e^r - 1 = r + A2 r^2 for |r| <= ln2/256, within 2^-28
  static constexpr RowsAndColumns<128, 2, 128> table = {exp_single::powers, exp_single::powers_columns};
  static constexpr float fast_limit = 87.3365478515625f;  // the word 0x42AEAC50

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, fast_limit);
  }

  template <class V>
  QKR_INLINE static Pair<V> reduce(V x) {
    const V t = x * inverse_step + shifter, n = t - shifter;
    const V r = exact_mad(n, -step_high, x) - n * step_low;
    V hi, lo;
    look_up(table, bits(t) & 127u, hi, lo);
    return {t, ((r + lo) + A2 * (r * r)) * hi + hi};
  }

  template <class V>
  QKR_INLINE static V core(V x) {
    const Pair<V> e = reduce(x);
    return real(bits(e.second) + ((bits(e.first) >> 7) << 23));
  }

  static Outcome<float> scalar(float x) {
    constexpr float overflow_from = 88.72283935546875f, zero_from = -103.27893829345703f;
    if (x != x) return {x + x};
    if (__builtin_fabsf(x) == infinity<float>) return {x < 0 ? 0.0f : x};
    if (x >= overflow_from) return {square_at_run_time(0x1p127f), VXM_STATUS_OVERFLOW};
    if (x <= zero_from) return {square_at_run_time(0x1p-126f), VXM_STATUS_UNDERFLOW};
    if (x < 0) return {small_exponential(x), VXM_STATUS_UNDERFLOW};
    const auto [t, m] = reduce(x);
    const uint32_t scale = ((bits(t) >> 7) + 0x7F) << 23;
    return {scale > 0x7F000000 ? m * 0x1p127f * 2.0f : m * real(scale)};
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_FUNCTION(_vxmdExp_HA, _vxmdExp_50, double, 0.54, 0x1.f2a5086f737e3p+4, ExpDouble)
QKR_FUNCTION(_vxmsExp_HA, _vxmsExp_21, float, 0.574, 0x1.30c77p+6, ExpSingle)
