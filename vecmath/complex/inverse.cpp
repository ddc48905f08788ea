// Inverse circular and hyperbolic functions. Of those of sine and cosine (T. E. Hull, T. F. Fairgrieve and
// P. T. P. Tang, ACM TOMS 23 (1997) 299) two doubles need no branch but that at x = 1. The inverse tangent:
// W. Kahan, Branch cuts for complex elementary functions (1987), with |z|^2 - 1 formed without loss.
#include "vecmath/complex/formulas.h"
#include "vecmath/complex/function.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// For x, y > 0: arcsin z = arctan(x/adjacent) + i logarithm, arccos z = arctan(adjacent/x) - i logarithm.
template <class V>
struct Triangle {
  DoubleDouble<V> adjacent, logarithm;
};
template <class V>
QKR_INLINE Triangle<V> triangle(V x, V y) {
  const V one = all<V>(1.0);
  const DoubleDouble<V> unit = {one, V{}};
  const auto y2 = two_product(y, y), x_more = two_sum(x, one), x_less = two_sum(x, -one);
  const auto R = square_root(square(x_more) + y2), S = square_root(square(x_less) + y2);
  const auto A = scaled(R + S, 0.5);
  // All that would cancel is a sum: y2/(S + |x - 1|) is S - |x - 1|.
  const auto right = y2 / (R + x_more), beside = S + flip_sign(x_less, x_less.hi), left = y2 / beside;
  const auto above_one = scaled(right + select_pair(x < 1.0, left, beside), 0.5);
  const auto above_x = scaled(right + select_pair(x < 1.0, beside, left), 0.5);
  return {square_root((A + exact(x)) * above_x),
          logarithm_of_one_more(above_one + square_root(above_one * (A + unit)))};
}

struct Acos {
  static constexpr int width = 2;
  static constexpr bool raises_events = true;
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    const auto t = triangle(absolute<double>(x), absolute<double>(y));
    return {angle(t.adjacent, exact(x)).hi, -flip_sign(t.logarithm.hi, y)};
  }
  QKR_INLINE static Flags special(f64 x, f64 y, f64, f64) {
    constexpr double limit = 0x1p300;  // y^2/x, and what its rounding loses, are in the range of doubles
    return outside(absolute<double>(x), 1 / limit, limit) | outside(absolute<double>(y), 1 / limit, limit);
  }
  static vxm64fc scalar(double x, double y) { return _vxmcacos_scalar(x, y); }
};

struct Asinh : Acos {
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    const auto t = triangle(absolute<double>(y), absolute<double>(x));
    return {flip_sign(t.logarithm.hi, x), angle(exact(y), t.adjacent).hi};
  }
  static vxm64fc scalar(double x, double y) { return _vxmcasinh_scalar(x, y); }
};

struct Atanh : Acos {
  // ln(1 + 4 x / |1 - z|^2)/4 for x > 0, and half the angle of 1 - |z|^2 + 2 i y.
  template <class V>
  QKR_INLINE static Pair<V> core(V x, V y) {
    const V a = absolute<double>(x);
    const auto distance = square(two_sum(all<V>(1.0), -a)) + two_product(y, y);
    const auto log = logarithm_of_one_more(exact(4.0 * a) / distance);
    const auto m = modulus(by_magnitude(x, y));
    return {flip_sign(0.25 * log.hi, x), 0.5 * angle(exact(2.0 * y), -m.less_one).hi};
  }
  static vxm64fc scalar(double x, double y) { return _vxmcatanh_scalar(x, y); }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_COMPLEX_FUNCTION(_vxmzAcos_HA, _vxmzAcos_50, vxm64fc, 0.501, 0x1.38c6a0ff961a8p+0, -0x1.8b04a554c99b4p-87,
                     Acos, Plain)
QKR_COMPLEX_FUNCTION(_vxmcAcos_HA, _vxmcAcos_21, vxm32fc, 0.501, 0x1.e03196p-73, 0x1.a5845cp+1, Acos, Plain)
QKR_COMPLEX_FUNCTION(_vxmzAcosh_HA, _vxmzAcosh_50, vxm64fc, 0.501, 0x1.38c6a0ff961a8p+0,
                     -0x1.8b04a554c99b4p-87, Acos, RightHalf)
QKR_COMPLEX_FUNCTION(_vxmcAcosh_HA, _vxmcAcosh_21, vxm32fc, 0.501, 0x1.e03196p-73, 0x1.a5845cp+1, Acos,
                     RightHalf)
QKR_COMPLEX_FUNCTION(_vxmzAsinh_HA, _vxmzAsinh_50, vxm64fc, 0.501, 0x1.563e80e837a07p-2, -0x1.655c2b118dfap-1,
                     Asinh, Plain)
QKR_COMPLEX_FUNCTION(_vxmcAsinh_HA, _vxmcAsinh_21, vxm32fc, 0.501, 0x1.a5845cp+1, 0x1.e03196p-73, Asinh,
                     Plain)
QKR_COMPLEX_FUNCTION(_vxmzAsin_HA, _vxmzAsin_50, vxm64fc, 0.501, 0x1.38c6a0ff961a8p+0, -0x1.8b04a554c99b4p-87,
                     Asinh, Rotated)
QKR_COMPLEX_FUNCTION(_vxmcAsin_HA, _vxmcAsin_21, vxm32fc, 0.501, 0x1.b293ep-1, -0x1.0f6ef4p-31, Asinh,
                     Rotated)
QKR_COMPLEX_FUNCTION(_vxmzAtanh_HA, _vxmzAtanh_50, vxm64fc, 0.501, 0x1.af23468c53a82p-36,
                     -0x1.1ac762724fdb7p-4, Atanh, Plain)
QKR_COMPLEX_FUNCTION(_vxmcAtanh_HA, _vxmcAtanh_21, vxm32fc, 0.501, -0x1.efda6cp-40, 0x1.fb1516p+1, Atanh,
                     Plain)
QKR_COMPLEX_FUNCTION(_vxmzAtan_HA, _vxmzAtan_50, vxm64fc, 0.501, 0x1.6d3ede3832d6bp-1, -0x1.72762cc8bae02p-1,
                     Atanh, Rotated)
QKR_COMPLEX_FUNCTION(_vxmcAtan_HA, _vxmcAtan_21, vxm32fc, 0.501, 0x1.972bc8p-1, 0x1.366988p-1, Atanh, Rotated)
