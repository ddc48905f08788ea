// Square root by the processor's own instruction, which rounds correctly.
#include "vecmath/frame/function.h"
#include "vecmath/frame/numbers.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T>
struct Sqrt : UnaryKernel<T, 2> {
  static constexpr bool events_are_right = true;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return negative(x);
  }
  template <class V>
  QKR_INLINE static V core(V x) {
    return square_root(x);
  }
  static Outcome<T> scalar(T x) { return {square_root(x), x != x ? VXM_STATUS_OK : VXM_STATUS_ERRDOM}; }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ROUNDED_FUNCTION(_vxmdSqrt_HA, _vxmdSqrt_50, double, Sqrt<double>)
QKR_ROUNDED_FUNCTION(_vxmsSqrt_HA, _vxmsSqrt_21, float, Sqrt<float>)
