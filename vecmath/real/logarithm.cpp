// Natural logarithm in double, common logarithm in double and single: one kernel over the formulas of
// logarithm/natural_double.h; logarithm_single.cpp has the fourth.
#include "vecmath/frame/function.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/logarithm/natural_double.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct SingleFormat {
  using Element = float;
  static constexpr uint32_t fraction = 0x007FFFFF, one = 0x3F800000;
  static constexpr int group_width = QKR_SIMD_BYTES == 32 ? 4 : 2;
  static constexpr int index_shift = 16;  // the upper seven bits, rounded
  static constexpr uint32_t half_row = 0x00008000;
};

struct CommonDouble : DoubleFormat {
  static constexpr auto table = log10_double::rows;
  static constexpr uint64_t next_binade = 0;
  static constexpr uint64_t head_mask = 0x7FFFFFFF80000000;
  static constexpr double log2_hi = 0.30102999566395283, log2_lo = 2.8363394551044964e-14;
  static constexpr double C = 0.43359375;
  static constexpr double subnormal_scale = 0x1p-970, subnormal_log = 15.653559774527022;
  // log10(1 + z/C) - z for |z/C| <= 2^-10, within 2^-56 of the logarithm.
  static constexpr double P0 = 0.0016161024074997105, P1 = -1.1550167667400704, P2 = 1.7758816353479039;
  static constexpr double P3 = -3.0717977023883023, P4 = 5.667606256268926;
  template <class V>
  QKR_INLINE static V polynomial(V z) {
    return z * (P0 + z * (P1 + z * (P2 + z * (P3 + z * P4))));
  }
};
struct CommonSingle : SingleFormat {
  static constexpr RowsAndColumns<129, 4, 144> table = {log10_single::rows, log10_single::columns};
  static constexpr uint32_t next_binade = 0x00408000;
  static constexpr uint32_t head_mask = 0xFFFF8000;
  static constexpr float log2_hi = 0.3125f, log2_lo = -0.011470003984868526f;
  static constexpr float C = 0.43359375f;
  static constexpr float subnormal_scale = 0x1p-103f, subnormal_log = 6.923689842224121f;
  // log10(1 + z/C) - z for |z/C| <= 2^-8, within 2^-34 of the logarithm.
  static constexpr float P0 = 0.00161610241048038f, P1 = -1.1550167798995972f;
  static constexpr float P2 = 1.7758978605270386f, P3 = -3.0718326568603516f;
  template <class V>
  QKR_INLINE static V polynomial(V z) {
    return z * (P0 + z * (P1 + z * (P2 + z * P3)));
  }
};

template <class Log>
struct Logarithm : UnaryKernel<typename Log::Element, Log::group_width> {
  using T = typename Log::Element;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return not_positive_normal(x);
  }

  template <class V>
  QKR_INLINE static V core(V x) {
    const Pair<V> log = logarithm_sum<Log>(x);
    return log.second + log.first;
  }

  static Outcome<T> scalar(T x) {
    if (x != x) {
      at_run_time(x * at_run_time((T)1));  // a signalling NaN stays in the result but raises its exception
      return {x};
    }
    if (x == 0) return {-infinity<T>, VXM_STATUS_SING};
    if (x < 0) return {indefinite<T>(), VXM_STATUS_ERRDOM};
    if (x == infinity<T>) return {x};
    // Its fraction as a number below 1, times 2^52 (float 2^23) again: operations on a subnormal number are
    // slow.
    const auto log = logarithm_sum<Log>((real(bits(x) | Log::one) - T(1)) * Log::subnormal_scale);
    return {(log.second - Log::subnormal_log) + log.first};
  }
};

using LnDouble = Logarithm<NaturalDouble>;
using Log10Double = Logarithm<CommonDouble>;
using Log10Single = Logarithm<CommonSingle>;

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_FUNCTION(_vxmdLn_HA, _vxmdLn_50, double, 0.60, 0x1.003ffeed01983p+0, LnDouble)
QKR_FUNCTION(_vxmdLog10_HA, _vxmdLog10_50, double, 0.60, 0x1.ffdb60b21b953p-1, Log10Double)
QKR_FUNCTION(_vxmsLog10_HA, _vxmsLog10_21, float, 0.75, 0x1.01d8bep+0, Log10Single)
