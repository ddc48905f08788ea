// Natural logarithm in single precision, over the formulas of logarithm/natural_single.h.
#include "vecmath/frame/function.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/logarithm/natural_single.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct LnSingle : NaturalSingle, UnaryKernel<float, QKR_SIMD_BYTES == 32 ? 4 : 2> {
  template <class V>
  QKR_INLINE static Flags special(V x) {
    return not_positive_normal(x);
  }

  template <class V>
  QKR_INLINE static V core(V x) {
    return logarithm(x, 0.0f);
  }

  static Outcome<float> scalar(float x) {
    constexpr uint32_t domain_nan = 0x7FFC0000;
    const uint32_t pattern = bits(x);
    if (magnitude(pattern) > pattern_of_infinity(0.0f) || pattern == pattern_of_infinity(0.0f)) return {x};
    if (magnitude(pattern) == 0) return {-infinity<float>, VXM_STATUS_SING};
    if (pattern >> 31) return {real(domain_nan), VXM_STATUS_ERRDOM};
    const int top = 31 - __builtin_clz(pattern);  // normalise: the top bit becomes the implicit one
    const uint32_t fraction = (pattern << (23 - top)) & fraction_mask;
    return {logarithm(real(fraction | (uint32_t)(top + 1) << 23), -23.0f)};
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_FUNCTION(_vxmsLn_HA, _vxmsLn_21, float, 0.567, 0x1.f9ffd2p-1, LnSingle)
