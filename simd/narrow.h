// What SSE2 and AVX2 say alike. A set of lanes is a vector whose sign bits tell.
#pragma once

#include "simd/vectors.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

typedef u64 Flags;

QKR_INLINE Flags flags_of(u64 sign_bits) { return sign_bits; }
QKR_INLINE Flags flags_of(u32 sign_bits) { return (u64)sign_bits; }

// Lanes with !(|x| < limit): large ones, infinities and NaNs. Bit patterns of non-negative numbers are
// ordered.
QKR_INLINE Flags beyond(f64 x, double limit) {
  return ~((bits(x) & 0x7FFFFFFFFFFFFFFFu) - __builtin_bit_cast(uint64_t, limit));
}
QKR_INLINE Flags beyond(f32 x, float limit) {
  return flags_of(~((bits(x) & 0x7FFFFFFFu) - __builtin_bit_cast(uint32_t, limit)));
}

// Lanes of a number without sign that lie below `low` or not below `high`.
QKR_INLINE Flags outside(f64 x, double low, double high) {
  return (bits(x) - __builtin_bit_cast(uint64_t, low)) | ~(bits(x) - __builtin_bit_cast(uint64_t, high));
}

// Lanes that hold anything but a positive normal number.
QKR_INLINE Flags not_positive_normal(f64 x) {
  return (bits(x) - 0x0010000000000000u) | ~(bits(x) - 0x7FF0000000000000u);
}
QKR_INLINE Flags not_positive_normal(f32 x) {
  return flags_of((bits(x) - 0x00800000u) | ~(bits(x) - 0x7F800000u));
}

// Lanes below zero; NaNs with a sign are among them.
QKR_INLINE Flags negative(f64 x) { return bits(x) & (bits(x) - 1u); }
QKR_INLINE Flags negative(f32 x) { return flags_of(bits(x) & (bits(x) - 1u)); }

// Lanes with !(first <= x < limit), NaNs always among them; the two are positive.
QKR_INLINE Flags outside(f32 x, float first, float limit) {
  return flags_of((bits(x) - __builtin_bit_cast(uint32_t, first)) |
                  ~(bits(x) - __builtin_bit_cast(uint32_t, limit)));
}

QKR_INLINE Flags is_zero(f64 x) { return (u64)(x == 0.0); }
QKR_INLINE Flags is_zero(f32 x) { return flags_of((u32)(x == 0.0f)); }
QKR_INLINE Flags is_zero(u64 x) { return x - 1; }  // for patterns without sign
QKR_INLINE Flags is_zero(u32 x) { return flags_of(x - 1); }

// The exponent of a pattern that stands for a positive number, as a floating-point number.
QKR_INLINE f64 exponent(u64 pattern) {
  return real((pattern >> 52) | 0x4330000000000000u) - (4503599627370496.0 + 1023.0);
}
QKR_INLINE f32 exponent(u32 pattern) { return real((pattern >> 23) | 0x4B000000u) - (8388608.0f + 127.0f); }

template <class T, class V>
QKR_INLINE void store_part(T *p, int count, V v) {
  T lanes[sizeof(V) / sizeof(T)];
  memcpy(lanes, &v, sizeof v);
  for (int k = 0; k < count; ++k) p[k] = lanes[k];
}

// Two floats from p and two from q in one register.
QKR_INLINE __m128 pair_of_rows(const float *p, const float *q) {
  return _mm_castpd_ps(_mm_loadh_pd(_mm_load_sd((const double *)p), (const double *)q));
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
