// e^(x + iy) = e^x cos y + i e^x sin y. In single precision the parts are doubles (P. T. P. Tang, ACM TOMS 15
// (1989) 144 for e^x; table of sine and cosine at multiples of pi/32 and Taylor polynomials).
#include "vecmath/complex/function.h"
#include "vecmath/extended/circular.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct Exp {
  static constexpr int width = 2;
  static constexpr bool raises_events = true;
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    const auto e = exponential(DoubleDouble<V>{x, V{}});
    const auto c = circular_pair(DoubleDouble<V>{y, V{}});
    const V scale = scale_of(e.n);
    return {(e.mantissa * c.cos).hi * scale, (e.mantissa * c.sin).hi * scale};
  }
  QKR_INLINE static Flags special(f64 x, f64 y, f64 re, f64 im) {
    return beyond(x, 700.0) | outside(absolute<double>(y), 0x1p-200, circular_limit) |
           not_positive_normal(absolute<double>(re)) | not_positive_normal(absolute<double>(im));
  }
  static vxm64fc scalar(double x, double y) { return _vxmcexp_scalar(x, y); }
};

struct ExpSingle {
  static constexpr int width = 2;
  static constexpr bool raises_events = false;
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    const V factor = exponential_in_double(x);
    constexpr double steps = 10.185916357881302;  // 32 / pi
    constexpr double P1 = 0.09817477042088285, P2 = 3.798187816439979e-12, P3 = 1.2639164054974691e-22;
    const V t = y * steps + shifter, N = t - shifter, r = ((y - N * P1) - N * P2) - N * P3, z = r * r;
    V S, S_lo, C, C_lo;
    look_up(extended::sines, (bits(t) & 63ul) << 3, S, S_lo, C, C_lo);
    const V s = r + r * z * (-1.0 / 6 + z * (1.0 / 120)), c = z * (-0.5 + z * (1.0 / 24 - z * (1.0 / 720)));
    return {factor * (C + (C * c - S * s)), factor * (S + (S * c + C * s))};
  }
  QKR_INLINE static Flags special(f64 x, f64 y, f64, f64) {
    constexpr double limit = 512;
    return beyond(x, limit) | outside(absolute<double>(y), 0x1p-149, limit);
  }
  static vxm64fc scalar(double x, double y) { return _vxmcexp_scalar(x, y); }

 private:
  template <class V>
  QKR_INLINE static V exponential_in_double(V x) {
    constexpr double steps = 92.33248261689366;  // 64 / ln 2
    constexpr double P1 = 0.010830424696223417, P2 = 2.572804622327669e-14;
    const V t = x * steps + shifter, N = t - shifter, r = (x - N * P1) - N * P2;
    V T, T_lo;
    look_up(extended::powers, bits(t) & 63ul, T, T_lo);
    return (T + T * (r + r * r * (0.5 + r * (1.0 / 6)))) * scale_of(bits(t));
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_COMPLEX_FUNCTION(_vxmzExp_HA, _vxmzExp_50, vxm64fc, 0.501, -0x1.1af6c14471182p+2, 0x1.9e5574c67a502p+223,
                     Exp, Plain)
QKR_COMPLEX_FUNCTION(_vxmcExp_HA, _vxmcExp_21, vxm32fc, 0.501, 0x1.2ba404p+6, 0x1.893fcep-33, ExpSingle,
                     Plain)
