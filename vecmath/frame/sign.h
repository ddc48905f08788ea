// Sign, magnitude and kind of numbers of type T, alone or in vectors.
#pragma once

#include "simd/simd.h"
#include "vecmath/frame/numbers.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T>
constexpr auto sign_bit = ~magnitude(~decltype(bits(T()))());

template <class T, class V>
QKR_INLINE V absolute(V x) {
  return real(bits(x) & ~sign_bit<T>);
}
// x, which is not negative, with the sign of another.
template <class T, class V>
QKR_INLINE V with_sign_of(V sign, V x) {
  return real(bits(x) | (bits(sign) & sign_bit<T>));
}
// -x where `sign` is negative.
template <class V, class Sign>
QKR_INLINE V flip_sign(V x, Sign sign) {
  return real(bits(x) ^ (bits(sign) & sign_bit<double>));
}

// Lanes that hold a NaN.
#if QKR_SIMD_BYTES == 64
QKR_INLINE Flags is_nan(f64 x) { return _mm512_cmp_pd_mask((__m512d)x, (__m512d)x, _CMP_UNORD_Q); }
QKR_INLINE Flags is_nan(f32 x) { return _mm512_cmp_ps_mask((__m512)x, (__m512)x, _CMP_UNORD_Q); }
#else
QKR_INLINE Flags is_nan(f64 x) { return (u64)(x != x); }
QKR_INLINE Flags is_nan(f32 x) { return flags_of((u32)(x != x)); }
#endif
template <class V>
QKR_INLINE Flags is_nan(Two<V> x) {
  return is_nan(x.a) | is_nan(x.b);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
