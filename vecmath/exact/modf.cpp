// Modf: the integer part by truncation, the fraction by an exact subtraction.
#include "vecmath/exact/rounding.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T, bool by_hardware>
struct Modf : UnaryKernel<T, 1> {
  using Environment = CallersEnvironment;
  static constexpr int results = 2;

  template <class V>
  QKR_INLINE static Pair<V> core(V x) {
    using B = Bits<T>;
    using I = typename B::Signed;
    const auto pattern = bits(x), magnitude = pattern & ~B::sign, sign = pattern & B::sign;
#if QKR_SIMD_BYTES > 16
    if constexpr (by_hardware) {
      const auto infinite = (typename B::Unsigned)((I)magnitude == (I)(decltype(magnitude){} + B::infinity));
      const V integer = round_by_hardware<_MM_FROUND_TO_ZERO>(x);
      auto minuend = pattern & ~infinite, subtrahend = bits(integer) & ~infinite;
      asm("" : "+x"(minuend), "+x"(subtrahend));  // else clang 19 subtracts first, in all lanes
      const V fraction = real(minuend) - real(subtrahend);
      return {integer, real((bits(fraction) & ~B::sign) | sign)};
    }
#endif
    // A subtraction takes part only where there is a fraction of a number above 1, and where x is NaN.
    const Parts<T> parts(x);
    const auto nan = (typename B::Unsigned)((I)magnitude > (I)(decltype(magnitude){} + B::infinity));
    const auto integer = parts.template rounded<Rounding::to_zero>();
    const auto takes_part = ~(parts.below_one | parts.no_fraction);
    auto minuend = pattern & takes_part, subtrahend = integer & takes_part;
    asm("" : "+x"(minuend), "+x"(subtrahend));
    const V fraction = real(minuend) - real(subtrahend);
    const V twice = real(pattern & nan) + real(pattern & nan);
    const auto quiet = bits(twice) & nan;
    return {real((integer & ~nan) | quiet),
            real((parts.below_one & pattern) | quiet |
                 (~(parts.below_one | nan) & ((bits(fraction) & ~B::sign) | sign)))};
  }
};

template <class T>
QKR_INLINE void modf_all(int32_t n, const T *a, T *r1, T *r2) {
  if (hardware_rounds_exactly()) run<Modf<T, true>>(n, {a, nullptr, r1, r2});
  else run<Modf<T, false>>(n, {a, nullptr, r1, r2});
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ENTRY(_vxmdModf, (int32_t n, const double *a, double *r1, double *r2), (n, a, r1, r2)) {
  modf_all(n, a, r1, r2);
}
QKR_ENTRY(_vxmsModf, (int32_t n, const float *a, float *r1, float *r2), (n, a, r1, r2)) {
  modf_all(n, a, r1, r2);
}
