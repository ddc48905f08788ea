// Modf: the integer part by truncation, the fraction by an exact subtraction.
#include "vecmath/exact/rounding.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T, bool by_hardware>
struct Modf : UnaryKernel<T, 2> {
  using Environment = CallersEnvironment;
  static constexpr int results = 2;

  template <class V>
  QKR_INLINE static Pair<V> core(V x) {
    if constexpr (is_two<V>) {
      const auto a = core(x.a), b = core(x.b);
      return {{a.first, b.first}, {a.second, b.second}};
    } else {
      return parts(x);
    }
  }

  // The subtraction leaves out infinities, which it would make NaNs, and with `small` what lies below 1:
  // there x is the fraction, and with denormals-are-zero a difference need not be x.
  using B = Bits<T>;
  using U = typename B::Unsigned;
  template <class V>
  QKR_INLINE static Pair<V> parts(V x) {
    const U pattern = bits(x);
#if QKR_SIMD_BYTES > 16
    if constexpr (by_hardware) {
      const V integer = round_by_hardware<_MM_FROUND_TO_ZERO>(x);
      return {integer, fraction(pattern, bits(integer), U{})};
    }
#endif
    const Parts<T> x_has(x);
    const U integer = x_has.template rounded<Rounding::to_zero>();
    return {times_one(real(integer)), fraction(pattern, integer, x_has.below_one())};
  }
  QKR_INLINE static Native<T> fraction(U pattern, U integer, U small) {
    const U left_out = small | (U)((pattern & ~B::sign) == B::infinity);
    U minuend = pattern & ~left_out, subtrahend = integer & ~left_out;
    asm("" : "+x"(minuend), "+x"(subtrahend));  // else clang 19 subtracts first, in all lanes
    const U difference = bits(real(minuend) - real(subtrahend));
    return real((difference & ~B::sign) | (pattern & (small | B::sign)));
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
