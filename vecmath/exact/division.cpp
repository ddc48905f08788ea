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
  static constexpr bool events_are_right = true;
  static Outcome<T> scalar(T x, T y) {
    bool pole = magnitude(bits(y)) == 0;
    if constexpr (is_double) pole = y == 0 && magnitude(bits(x)) < pattern_of_infinity(x);
    return {x / y, pole ? VXM_STATUS_SING : VXM_STATUS_OK};
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

  static constexpr bool events_are_right = true;
  static Outcome<T> scalar(T x) { return {(T)1 / x, VXM_STATUS_SING}; }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ROUNDED_FUNCTION_OF_TWO(_vxmdDiv_HA, _vxmdDiv_50, double, Division<double>)
QKR_ROUNDED_FUNCTION_OF_TWO(_vxmsDiv_HA, _vxmsDiv_21, float, Division<float>)
QKR_ROUNDED_FUNCTION(_vxmdInv_HA, _vxmdInv_50, double, Reciprocal<double>)
QKR_ROUNDED_FUNCTION(_vxmsInv_HA, _vxmsInv_21, float, Reciprocal<float>)
