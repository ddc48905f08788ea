// ln |z| + i arg z, and to base 10. Near the unit circle |z|^2 - 1 is formed without loss (T. E. Hull, T. F.
// Fairgrieve and P. T. P. Tang, ACM TOMS 20 (1994) 215). In single precision the parts are doubles, in which
// the squares of floats are exact.
#include "vecmath/complex/formulas.h"
#include "vecmath/complex/function.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Squares, and what their rounding loses, stay in the range of doubles.
QKR_INLINE Flags not_moderate(f64 x, f64 y) {
  constexpr double limit = 0x1p480;
  return outside(absolute<double>(x), 1 / limit, limit) | outside(absolute<double>(y), 1 / limit, limit);
}

struct Ln {
  static constexpr int width = 2;
  static constexpr bool raises_events = true;
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    return {logarithm_of_modulus(x, y).hi, angle(exact(y), exact(x)).hi};
  }
  QKR_INLINE static Flags special(f64 x, f64 y, f64, f64) { return not_moderate(x, y); }
  static vxm64fc scalar(double x, double y) { return _vxmclog_scalar(x, y); }
};

struct Log10 : Ln {
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    const DoubleDouble<V> log10_e = {all<V>(0x1.bcb7b1526e50ep-2), all<V>(0x1.95355baaafad3p-57)};
    return {(logarithm_of_modulus(x, y) * log10_e).hi, (angle(exact(y), exact(x)) * log10_e).hi};
  }
  static vxm64fc scalar(double x, double y) { return _vxmclog10_scalar(x, y); }
};

struct LnSingle {
  static constexpr int width = 2;
  static constexpr bool raises_events = false;
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    const auto [a, b] = by_magnitude(x, y);
    return {0.5 * logarithm_in_double(a * a, b * b), angle_in_double(x, y, a, b)};
  }
  QKR_INLINE static Flags special(f64 x, f64 y, f64, f64) { return not_moderate(x, y); }
  static vxm64fc scalar(double x, double y) { return _vxmclog_scalar(x, y); }

 private:
  // ln(A + B) for A >= B.
  template <class V>
  QKR_INLINE static V logarithm_in_double(V A, V B) {
    const V less_one = (A - 1.0) + B;
    const auto far = absolute<double>(less_one) >= near_one;
    const auto reduced = reduce_logarithm(DoubleDouble<V>{A + B, V{}});
    const V r = select(far, reduced.r.hi, less_one), z = r * r;
    const V base = zero_unless(far, reduced.base_hi + reduced.base_lo);
    return base + (r + z * ((-0.5 + r * (1.0 / 3)) + z * (-0.25 + r * 0.2)));
  }
  // The angle of (x, y), whose larger and smaller magnitudes are a and b.
  template <class V>
  QKR_INLINE static V angle_in_double(V x, V y, V a, V b) {
    const V t = b / a * 256.0 + shifter, c = (t - shifter) * (1.0 / 256), slope = (b - c * a) / (a + c * b);
    V T, T_lo;
    look_up(extended::arc_tangents, bits(t) & 511ul, T, T_lo);
    const V z = slope * slope, part = T + (slope + slope * z * (-1.0 / 3 + z * 0.2));
    const auto [half_turns, sign] = octant(y, x);
    return flip_sign(half_turns * pi_hi + flip_sign(part, sign), y);
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_COMPLEX_FUNCTION(_vxmzLn_HA, _vxmzLn_50, vxm64fc, 0.501, -0x1.0000000000006p+0, -0x1.b634c2b6e12fp-46, Ln,
                     Plain)
QKR_COMPLEX_FUNCTION(_vxmcLn_HA, _vxmcLn_21, vxm32fc, 0.501, 0x1.fffffcp-1, -0x1.0d0b94p-55, LnSingle, Plain)
QKR_COMPLEX_FUNCTION(_vxmzLog10_HA, _vxmzLog10_50, vxm64fc, 0.501, 0x1.71e3bd43ade29p-809,
                     0x1.cb107afb6e647p+684, Log10, Plain)
QKR_COMPLEX_FUNCTION(_vxmcLog10_HA, _vxmcLog10_21, vxm32fc, 0.501, -0x1.29d1p+1, -0x1.fd99ap-4, Log10, Plain)
