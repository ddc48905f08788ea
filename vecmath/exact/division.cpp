// Division and reciprocal by the processor's own division, in the caller's rounding mode; a zero divisor is
// reported as a singularity.
#include "vecmath/frame/function.h"
#include "vecmath/frame/numbers.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T>
struct Division : BinaryKernel<T, 2> {
  using Environment = X87Double;
  static constexpr bool is_double = sizeof(T) == 8;

  // In double the divisor compares equal to 0, as the caller's denormals-are-zero has it; in single its bits
  // are 0.
  template <class V>
  QKR_INLINE static Flags special(V, V y) {
    if constexpr (is_double) return is_zero(y);
    else return is_zero(bits(y) & 0x7FFFFFFFu);
  }

  template <class V>
  QKR_INLINE static V core(V x, V y) {
    return x / y;
  }

  // An infinite or NaN dividend reports nothing in double.
  static void scalar(ptrdiff_t i, Arrays<T> v) {
    const T x = v.a[i], y = v.b[i];
    v.r[i] = x / y;
    if constexpr (is_double) {
      if (y == 0.0 && magnitude(bits(x)) < infinity_pattern_double) report(2, i, v, "_vxmdDiv_HA");
    } else {
      if (magnitude(bits(y)) == 0) report(2, i, v, "_vxmsDiv_HA");
    }
  }
};

template <class T>
struct Reciprocal : UnaryKernel<T, 2> {
  using Environment = X87Double;
  static constexpr auto all_but_sign = magnitude(~decltype(bits(T()))());

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return is_zero(bits(x) & all_but_sign);
  }

  template <class V>
  QKR_INLINE static V core(V x) {
    return (T)1 / x;
  }

  static void scalar(ptrdiff_t i, Arrays<T> v) {
    const T x = v.a[i];
    v.r[i] = (T)1 / x;
    if (magnitude(bits(x)) == 0) report(2, i, v, sizeof(T) == 8 ? "_vxmdInv_HA" : "_vxmsInv_HA");
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_BINARY(_vxmdDiv_HA, double, Division<double>)
QKR_BINARY(_vxmsDiv_HA, float, Division<float>)
QKR_UNARY(_vxmdInv_HA, double, Reciprocal<double>)
QKR_UNARY(_vxmsInv_HA, float, Reciprocal<float>)
QKR_BINARY_FORWARD(_vxmdDiv_HA, _vxmdDiv_50, double)
QKR_BINARY_FORWARD(_vxmsDiv_HA, _vxmsDiv_21, float)
QKR_UNARY_FORWARD(_vxmdInv_HA, _vxmdInv_50, double)
QKR_UNARY_FORWARD(_vxmsInv_HA, _vxmsInv_21, float)
