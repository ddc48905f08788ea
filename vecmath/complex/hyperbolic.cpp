// Hyperbolic and circular functions. cosh z = cosh x cos y + i sinh x sin y, sinh z = sinh x cos y + i cosh
// x sin y; tanh z has sinh x cosh x and sin y cos y over sinh^2 x + cos^2 y, of whose terms none cancels (W.
// Kahan, Branch cuts for complex elementary functions, 1987). The circular ones are these of i z.
#include "vecmath/complex/formulas.h"
#include "vecmath/complex/function.h"
#include "vecmath/extended/circular.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class V>
struct Factors {
  Hyperbolic<V> of_x;
  Circular<V> of_y;
  QKR_INLINE Factors(V x, V y)
      : of_x(hyperbolic_pair(exact(absolute<double>(x)))), of_y(circular_pair(exact(y))) {
    of_x.sinh = flip_sign(of_x.sinh, x);
  }
};

QKR_INLINE Flags not_within(f64 x, f64 y, double limit_of_x) {
  constexpr double tiny = 0x1p-200;
  return outside(absolute<double>(x), tiny, limit_of_x) | outside(absolute<double>(y), tiny, circular_limit);
}

struct Cosh {
  static constexpr int width = 2;
  static constexpr bool raises_events = true;
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    const Factors<V> f(x, y);
    return {(f.of_x.cosh * f.of_y.cos).hi, (f.of_x.sinh * f.of_y.sin).hi};
  }
  QKR_INLINE static Flags special(f64 x, f64 y, f64, f64) { return not_within(x, y, 700); }
  static vxm64fc scalar(double x, double y) { return _vxmccosh_scalar(x, y); }
};

struct Sinh : Cosh {
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    const Factors<V> f(x, y);
    return {(f.of_x.sinh * f.of_y.cos).hi, (f.of_x.cosh * f.of_y.sin).hi};
  }
  static vxm64fc scalar(double x, double y) { return _vxmcsinh_scalar(x, y); }
};

struct Tanh : Cosh {
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    const Factors<V> f(x, y);
    const auto D = square(f.of_x.sinh) + square(f.of_y.cos);
    return {(f.of_x.sinh * f.of_x.cosh / D).hi, (f.of_y.sin * f.of_y.cos / D).hi};
  }
  QKR_INLINE static Flags special(f64 x, f64 y, f64, f64) {
    return not_within(x, y, 300);
  }  // D is no infinity
  static vxm64fc scalar(double x, double y) { return _vxmctanh_scalar(x, y); }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_COMPLEX_FUNCTION(_vxmzCosh_HA, _vxmzCosh_50, vxm64fc, 0.501, -0x1.280ad1bc05de5p+2, 0x1.bca06d22f7adp+31,
                     Cosh, Plain)
QKR_COMPLEX_FUNCTION(_vxmcCosh_HA, _vxmcCosh_21, vxm32fc, 0.501, -0x1.77529ap+0, 0x1.59fa52p+0, Cosh, Plain)
QKR_COMPLEX_FUNCTION(_vxmzSinh_HA, _vxmzSinh_50, vxm64fc, 0.501, 0x1.43f87b24156p-4, 0x1.7c8c12644db04p+651,
                     Sinh, Plain)
QKR_COMPLEX_FUNCTION(_vxmcSinh_HA, _vxmcSinh_21, vxm32fc, 0.501, 0x1.2ba404p+6, 0x1.893fcep-33, Sinh, Plain)
QKR_COMPLEX_FUNCTION(_vxmzTanh_HA, _vxmzTanh_50, vxm64fc, 0.501, 0x1.306b79dc8a5ecp+8, -0x1.a6cf3e10ed5a4p+5,
                     Tanh, Plain)
QKR_COMPLEX_FUNCTION(_vxmcTanh_HA, _vxmcTanh_21, vxm32fc, 0.501, 0x1.0cc22ap+1, 0x1.8efb76p+7, Tanh, Plain)
QKR_COMPLEX_FUNCTION(_vxmzCos_HA, _vxmzCos_50, vxm64fc, 0.501, 0x1.bca06d22f7adp+31, -0x1.280ad1bc05de5p+2,
                     Cosh, OfRotated)
QKR_COMPLEX_FUNCTION(_vxmcCos_HA, _vxmcCos_21, vxm32fc, 0.501, 0x1.ff4b5p+9, -0x1.6aba6cp-4, Cosh, OfRotated)
QKR_COMPLEX_FUNCTION(_vxmzSin_HA, _vxmzSin_50, vxm64fc, 0.501, 0x1.7c8c12644db04p+651, 0x1.43f87b24156p-4,
                     Sinh, Rotated)
QKR_COMPLEX_FUNCTION(_vxmcSin_HA, _vxmcSin_21, vxm32fc, 0.501, 0x1.7b58eap+10, -0x1.66f3c2p-3, Sinh, Rotated)
QKR_COMPLEX_FUNCTION(_vxmzTan_HA, _vxmzTan_50, vxm64fc, 0.501, -0x1.808b8413e054p-4, 0x1.7c019456ac7acp+0,
                     Tanh, Rotated)
QKR_COMPLEX_FUNCTION(_vxmcTan_HA, _vxmcTan_21, vxm32fc, 0.501, 0x1.8efb76p+7, 0x1.0cc22ap+1, Tanh, Rotated)
