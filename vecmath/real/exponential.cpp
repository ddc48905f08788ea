// e^x by table and short polynomial (P. T. P. Tang, ACM TOMS 15 (1989) 144): x = N ln2/64 + r, so that
// e^x = 2^(N >> 6) * 2^((N & 63)/64) * e^r; in single precision with 128 table rows.
#include "vecmath/real/exponential.h"

#include "vecmath/frame/contract.h"
#include "vecmath/frame/numbers.h"

extern "C" {
void _vxmdSpecSc(ptrdiff_t i, qkr::Arrays<double> v);
void _ScalarExp(ptrdiff_t i, qkr::Arrays<float> v);
}

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
  QKR_INLINE static void scalar(ptrdiff_t i, Arrays<double> v) { _vxmdSpecSc(i, v); }
};

struct ExpSingle : UnaryKernel<float, QKR_SIMD_BYTES == 64 ? 2 : 4> {
  static constexpr float inverse_step = 184.6649627685547f;
  static constexpr float shifter = 11534336.0f;            // 1.375 * 2^23
  static constexpr float step_high = 0.0054168701171875f;  // N * hi is exact
  static constexpr float step_low = -1.6577690757912933e-06f;
  static constexpr float A2 = 0.5f;
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

  QKR_INLINE static void scalar(ptrdiff_t i, Arrays<float> v) { _ScalarExp(i, v); }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
using namespace qkr;

extern "C" void _vxmdSpecSc(ptrdiff_t i, Arrays<double> v) {
  using Exp = sse2::ExpDouble;
  constexpr uint64_t zero_from = 0xC0874910D52D3052;        // -745.1332191019412
  constexpr uint64_t subnormal_from = 0xC086232BDD7ABCD1;   // -708.396418532264
  constexpr uint64_t overflow_from = 0x40862E42FEFA39F0;    // 709.7827128933841
  constexpr uint64_t top_binade_from = 0x40862E37E7D8BA72;  // 709.7772976810359: N >> 6 reaches 1024
  const double x = v.a[i];
  const uint64_t pattern = sse2::bits(x);
  const bool negative = pattern >> 63;
  double &r = v.r[i];
  if (magnitude(pattern) >= infinity_pattern_double) {
    r = magnitude(pattern) > infinity_pattern_double ? sse2::real(~(uint64_t)0) : negative ? 0.0 : x;
    return;
  }
  int32_t status = 0;
  if (negative && pattern >= zero_from) {
    r = 0.0, status = 4;
  } else if (!negative && pattern >= overflow_from) {
    r = infinity_double, status = 3;
  } else {
    const auto [t, m] = Exp::reduce(x, 0.0);
    if (negative && pattern >= subnormal_from)  // only the last product rounds into the subnormal range
      r = m * Exp::scale(t, 1022) * 0x1p-1022, status = 4;
    else if (!negative && pattern >= top_binade_from) r = m * 0x1p1023 * 2.0;
    else r = m * Exp::scale(t, 0);
  }
  if (status) sse2::report(status, i, v, "_vxmdExp_HA");
}

// 2^k * 2^f in double precision, rounded once: results in the subnormal range.
static float small_exponential(float x) {
  constexpr double log2_e = 0x1.71547652b82fep0, shifter = 6755399441055744.0;
  constexpr double A0 = 1.0000000005541663, A1 = 0.6931472057372665, A2 = 0.24022646890634758,
                   A3 = 0.05550328776967639, A4 = 0.009618488957047724, A5 = 0.0013399931218481776,
                   A6 = 0.00015345812020122585;
  const double u = x * log2_e, t = u + shifter, k = t - shifter, f = u - k, f2 = f * f;
  const double p = A0 + f * (A1 + f2 * (A3 + f2 * A5)) + f2 * (A2 + f2 * (A4 + f2 * A6));
  return (float)(p * sse2::real((uint64_t)(1023 + (int64_t)k) << 52));
}

extern "C" void _ScalarExp(ptrdiff_t i, Arrays<float> v) {
  using Exp = sse2::ExpSingle;
  constexpr uint32_t overflow_from = 0x42B17218;  // 88.72283935546875
  constexpr uint32_t zero_from = 0xC2CE8ED1;      // -103.27893829345703
  const float x = v.a[i];
  const uint32_t pattern = sse2::bits(x);
  const bool negative = pattern >> 31;
  float &r = v.r[i];
  if (magnitude(pattern) >= infinity_pattern_single) {
    r = magnitude(pattern) > infinity_pattern_single ? x + x : negative ? 0.0f : x;
    return;
  }
  int32_t status = 0;
  if (magnitude(pattern) < sse2::bits(Exp::fast_limit)) {
    r = Exp::core(x);
  } else if (!negative && pattern >= overflow_from) {
    const float huge = at_run_time(0x1p127f);
    r = huge * huge, status = 3;
  } else if (!negative) {
    const auto [t, m] = Exp::reduce(x);
    const uint32_t scale = ((sse2::bits(t) >> 7) + 0x7F) << 23;
    r = scale > 0x7F000000 ? m * 0x1p127f * 2.0f : m * sse2::real(scale);
  } else if (pattern >= zero_from) {
    const float tiny = at_run_time(0x1p-126f);
    r = tiny * tiny, status = 4;
  } else {
    r = small_exponential(x), status = 4;
  }
  if (status) sse2::report(status, i, v, "_vxmsExp_HA");
}
#endif

QKR_CONTRACT(_vxmdExp_HA, 0.53, -0x1.6c69c98ccaf31p+0);
QKR_CONTRACT(_vxmsExp_HA, 0.574, 0x1.30c77p+6);

QKR_UNARY(_vxmdExp_HA, double, ExpDouble)
QKR_UNARY(_vxmsExp_HA, float, ExpSingle)
QKR_UNARY_FORWARD(_vxmdExp_HA, _vxmdExp_50, double)
QKR_UNARY_FORWARD(_vxmsExp_HA, _vxmsExp_21, float)
