// z^w = e^(w ln z), with the logarithm in two doubles to the end: its error is one of the result's angle, and
// relative to the result's modulus.
#include "vecmath/complex/formulas.h"
#include "vecmath/complex/function.h"
#include "vecmath/extended/circular.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct Pow {
  static constexpr int width = 2;
  static constexpr bool raises_events = true;
  static constexpr double exponential_limit = 700;
  static constexpr double smallest_angle = 0x1p-900;  // below it products are no longer exact

  // A NaN where w ln z is beyond the kernels' ranges.
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y, V u, V v) {
    const auto re = logarithm_of_modulus(x, y), im = angle(exact(y), exact(x));
    const auto p = times(re, u) - times(im, v), q = times(im, u) + times(re, v);
    const auto e = exponential(p);
    const auto c = circular_pair(q);
    const V nan = all<V>(__builtin_nan(""));
    const V turn = absolute<double>(q.hi);
    const V within = select(turn < circular_limit, select(turn < smallest_angle, nan, V{}), nan);
    const V scale = select(absolute<double>(p.hi) < exponential_limit, scale_of(e.n), nan) + within;
    return {(e.mantissa * c.cos).hi * scale, (e.mantissa * c.sin).hi * scale};
  }
  QKR_INLINE static Flags special(f64 x, f64 y, f64 re, f64 im) {
    constexpr double limit = 0x1p400;
    return outside(absolute<double>(x), 1 / limit, limit) | outside(absolute<double>(y), 1 / limit, limit) |
           not_positive_normal(absolute<double>(re)) | not_positive_normal(absolute<double>(im));
  }
  static vxm64fc scalar(double x, double y, double u, double v) { return _vxmcpow_scalar(x, y, u, v); }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_COMPLEX_FUNCTION_OF_TWO(_vxmzPow_HA, _vxmzPow_50, vxm64fc, 0.501, -0x1.517f3184c2303p-462,
                            0x1.0e59575ae4c32p-546, Pow)
QKR_COMPLEX_FUNCTION_OF_TWO(_vxmcPow_HA, _vxmcPow_21, vxm32fc, 0.501, -0x1.8201fap+0, 0x1.eadcf8p+0, Pow)
QKR_COMPLEX_FUNCTION_OF_NUMBER(_vxmzPowx_HA, _vxmzPowx_50, vxm64fc, 0.501, -0x1.517f3184c2303p-462,
                               0x1.0e59575ae4c32p-546, Pow)
QKR_COMPLEX_FUNCTION_OF_NUMBER(_vxmcPowx_HA, _vxmcPowx_21, vxm32fc, 0.501, -0x1.8201fap+0, 0x1.eadcf8p+0, Pow)
