// The square root: with t = sqrt((|x| + |z|)/2), t + i y/(2t) on the right and the parts exchanged on the
// left, where the imaginary part has the sign of y. In single precision the parts are doubles.
#include "vecmath/complex/formulas.h"
#include "vecmath/complex/function.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// For finite parts that are not zero.
template <class V>
QKR_INLINE Pair<V> assemble(V x, V y, V root, V quotient) {
  return {select(x < 0.0, quotient, root), flip_sign(select(x < 0.0, root, quotient), y)};
}

struct Sqrt {
  static constexpr int width = 2;
  static constexpr bool raises_events = true;
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    const V a = absolute<double>(x), b = absolute<double>(y);
    const auto m = square_root(two_product(a, a) + two_product(b, b));
    const auto sum = two_sum(a, m.hi);
    const auto root = square_root(scaled(fast_sum(sum.hi, sum.lo + m.lo), 0.5));
    return assemble(x, y, root.hi, (exact(0.5 * b) / root).hi);
  }
  QKR_INLINE static Flags special(f64 x, f64 y, f64, f64) {
    constexpr double limit = 0x1p480;
    return outside(absolute<double>(x), 1 / limit, limit) | outside(absolute<double>(y), 1 / limit, limit);
  }
  static vxm64fc scalar(double x, double y) { return _vxmcsqrt_scalar(x, y); }
};

struct SqrtSingle : Sqrt {
  static constexpr bool raises_events = false;
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    const V m = square_root(x * x + y * y), root = square_root(0.5 * (absolute<double>(x) + m));
    return assemble(x, y, root, 0.5 * absolute<double>(y) / root);
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_COMPLEX_FUNCTION(_vxmzSqrt_HA, _vxmzSqrt_50, vxm64fc, 0.501, 0x1.5c20137a5eaadp+627,
                     0x1.bb063884924fap+109, Sqrt, Plain)
QKR_COMPLEX_FUNCTION(_vxmcSqrt_HA, _vxmcSqrt_21, vxm32fc, 0.501, -0x1.4632fap-33, -0x1.51812p-4, SqrtSingle,
                     Plain)
