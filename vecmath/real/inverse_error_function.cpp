// The inverse of the error function as x F(w) with w = -ln(1 - x^2), of which F is so smooth (M. Giles,
// Approximating the erfinv function, GPU Computing Gems 2, 2010) that one table of short polynomials carries
// it from 0 to the largest number below 1.
#include <qkr/vecmath_elements.h>

#include "vecmath/frame/numbers.h"
#include "vecmath/real/error_function.h"
#include "vecmath/real/logarithm.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Any element: the routines for single elements take ordinary ones too.
template <class Kernel, class T>
Outcome<T> any_inverse(T x) {
  if (x != x) return {x + x};
  const T magnitude = __builtin_fabs(x);
  if (magnitude < 1) return {Kernel::core(x)};
  if (magnitude > 1) return {indefinite<T>(), VXM_STATUS_ERRDOM};
  return {(T)__builtin_copysign(infinity<T>, x), VXM_STATUS_SING};
}

struct ErfInvDouble : UnaryKernel<double, QKR_BASELINE ? 1 : 2> {
  using Environment = WithSse<X87Double>;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, 1.0);
  }

  template <class V>
  QKR_INLINE static V core(V x) {
    const V magnitude = smaller(absolute<double>(x), 1.0 - 0x1p-53);
    // 1 - x^2 = u + u_lo, by at most a part of 2^28.
    const V square = magnitude * magnitude, u = 1.0 - square;
    const V u_lo = ((1.0 - u) - square) - product_error(magnitude, magnitude, square);
    // ln(u + u_lo) = s + rest, where s and its distance from a node are exact.
    const LogReduction<V> u_is(u);
    const V scale = real(0x7FE0000000000000u - (bits(u) & 0x7FF0000000000000u));
    const V z = u_is.head_residual + (u_is.tail + u_lo * scale) * u_is.r;
    const V series = (z * z) * (-0.5 + z * (1.0 / 3 + z * (-0.25 + z * 0.2)));
    const V s = exact_mad(u_is.n, ln2_hi, u_is.t_hi);
    const V rest = (z + series) + (u_is.n * ln2_lo + u_is.t_lo);
    const NearestRow<6, V> at(0.0 - (s + rest));
    const V d = ((0.0 - s) - at.node) - rest;
    V g, c0, c1, c2, c3, c4, c5, c6;
    look_up(erf_inverse_double::rows, at.row, g, c0, c1, c2, c3, c4, c5, c6);
    const V correction = c0 + d * (c1 + d * (c2 + d * (c3 + d * (c4 + d * (c5 + d * c6)))));
    // Both halves of x have exact products with g.
    const V scaled = magnitude * scaled_up, head = real(bits(scaled) & 0xFFFFFFFFF8000000u),
            tail = scaled - head;
    return scaled_down(head * g + (tail * g + scaled * correction), x);
  }

  static Outcome<double> scalar(double x) { return any_inverse<ErfInvDouble>(x); }
};

struct ErfInvSingle : UnaryKernel<float, QKR_BASELINE ? 1 : 2> {
  using Environment = WithSse<X87Double>;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, 1.0f);
  }

  template <class V>
  QKR_INLINE static V core(V x) {
    const auto wide = widen(x), magnitude = smaller(absolute<double>(wide), 1.0 - 0x1p-24);
    const LogReduction u_is(1.0 - magnitude * magnitude);
    const auto z = u_is.head_residual + u_is.tail * u_is.r;
    const auto rest = u_is.t_lo + (z + (z * z) * (-0.5 + z * (1.0 / 3)));
    const auto ln = exact_mad(u_is.n, ln2_hi, u_is.t_hi) + rest;
    return narrow(wide * cubic(erf_inverse_single::rows, 0.0 - ln));
  }

  static Outcome<float> scalar(float x) { return any_inverse<ErfInvSingle>(x); }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_FUNCTION(_vxmdErfInv_HA, _vxmdErfInv_50, double, 0.53, 0x1.ffffdc39a0a5dp-1, ErfInvDouble)
QKR_FUNCTION(_vxmsErfInv_HA, _vxmsErfInv_21, float, 0.501, 0x1.f5556p-1, ErfInvSingle)

#if QKR_BASELINE
extern "C" void _vxmdErfInv_HA_SC_p4(int32_t i, const double *a, double *r) {
  qkr::sse2::_vxmdErfInv_HA_alone(i, {a, nullptr, r, nullptr});
}
extern "C" void _vxmsErfInv_HA_SC_p4(int32_t i, const float *a, float *r) {
  qkr::sse2::_vxmsErfInv_HA_alone(i, {a, nullptr, r, nullptr});
}
#endif
