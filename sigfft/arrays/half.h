// IEEE binary16 in lanes: from and to single precision. By the processor's own conversions where it has them,
// which do otherwise with NaNs and at the two ends of the range.
#pragma once

#include "sigfft/arrays/convert.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Bits of single precision.
constexpr int32_t infinity = 255 << 23, beyond_halves = 143 << 23, least_half_normal = 113 << 23;
constexpr int32_t half_of_least = 102 << 23;  // the least subnormal binary16 is 2^-24

#if QKR_BASELINE

// With exponent and fraction moved to those of single precision, a normal number lacks 112 in the exponent,
// infinities and NaNs 224, and a subnormal one is an integer multiple of 2^-37.
QKR_INLINE f32 load_halves(const uint16_t *p) {
  constexpr int32_t half_infinity = 31 << 23, least_normal = 1 << 23, missing = 112 << 23;
  const i32 half = load_lanes(p);
  const u32 sign = ((u32)half & 0x8000u) << 16;
  const i32 magnitude = (half & 0x7FFF) << 13;
  const u32 normal = (u32)(magnitude + missing + ((magnitude >= half_infinity) & missing));
  const u32 subnormal = bits(singles(magnitude) * 0x1p-37f);
  return real(select(magnitude < least_normal, subnormal, normal) | sign);
}

QKR_INLINE f32 load_numbers(const uint16_t *p) { return load_halves(p); }
QKR_INLINE bool any_nan(f32, f32) { return false; }  // load_numbers() serves them too

// Without sign, in units of the least subnormal number.
template <bool nearest>
QKR_INLINE i32 subnormal_half(f32 magnitude) {
  const f32 units = magnitude * 0x1p24f;
  if constexpr (!nearest) return truncated(units);
  else return rounded(units) + ((i32)(units == 0.5f) & 1);
}

// Of what is not below the normal numbers; infinities and NaNs come out above that of binary16.
template <bool nearest>
QKR_INLINE u32 normal_half(u32 magnitude) {
  constexpr uint32_t excess = 112 << 23;
  if constexpr (nearest) magnitude += 0xFFFu + ((magnitude >> 13) & 1u);
  return (magnitude - excess) >> 13;
}
// With the sign in all upper bits, as packing likes it.
QKR_INLINE i32 with_sign(u32 half, f32 x) { return (i32)half | (((i32)bits(x) >> 16) & ~0x7FFF); }

template <bool nearest>
QKR_INLINE i32 to_half(f32 x) {
  const u32 magnitude = bits(x) & 0x7FFFFFFFu, shifted = normal_half<nearest>(magnitude);
  u32 normal = select((i32)shifted > 0x7C00, u32{} + 0x7C00u, shifted);
  normal |= (u32)((i32)magnitude > infinity) & 0x1FFu;
  const u32 subnormal = (u32)subnormal_half<nearest>(real(magnitude));
  return with_sign(select((i32)magnitude < least_half_normal, subnormal, normal), x);
}
template <bool nearest>
QKR_INLINE void store_halves(uint16_t *p, f32 low, f32 high) {
  const i32 v[] = {to_half<nearest>(low), to_half<nearest>(high)};
  store_lanes((int16_t *)p, v);
}

// Of numbers that binary16 has among its normal ones, or 0.
template <bool nearest>
QKR_INLINE i32 to_ordinary_half(f32 x) {
  const u32 magnitude = bits(x) & 0x7FFFFFFFu;
  return with_sign(normal_half<nearest>(magnitude) & (u32)(magnitude != 0), x);
}
template <bool nearest>
QKR_INLINE void store_ordinary_halves(uint16_t *p, f32 low, f32 high) {
  const i32 v[] = {to_ordinary_half<nearest>(low), to_ordinary_half<nearest>(high)};
  store_lanes((int16_t *)p, v);
}

#else

#if QKR_SIMD_BYTES == 64
typedef __m256i Halves;
QKR_INLINE f32 convert_halves(Halves h) { return (f32)_mm512_cvtph_ps(h); }
template <int direction>
QKR_INLINE Halves convert_singles(f32 v) {
  return _mm512_cvtps_ph((__m512)v, direction | _MM_FROUND_NO_EXC);
}
#else
typedef __m128i Halves;
QKR_INLINE f32 convert_halves(Halves h) { return (f32)_mm256_cvtph_ps(h); }
template <int direction>
QKR_INLINE Halves convert_singles(f32 v) {
  return _mm256_cvtps_ph((__m256)v, direction | _MM_FROUND_NO_EXC);
}
#endif
typedef int16_t i16 __attribute__((vector_size(QKR_SIMD_BYTES / 2)));

// For those who do not look at the fraction of a NaN.
QKR_INLINE f32 load_numbers(const uint16_t *p) {
  Halves h;
  memcpy(&h, p, sizeof h);
  return convert_halves(h);
}
#if QKR_SIMD_BYTES == 64
QKR_INLINE bool any_nan(f32 a, f32 b) { return _mm512_cmp_ps_mask((__m512)a, (__m512)b, _CMP_UNORD_Q); }
#else
QKR_INLINE bool any_nan(f32 a, f32 b) {
  return _mm256_movemask_ps(_mm256_cmp_ps((__m256)a, (__m256)b, _CMP_UNORD_Q));
}
#endif
// The processor makes quiet NaNs of signalling ones; here a NaN keeps its fraction.
QKR_INLINE f32 load_halves(const uint16_t *p) {
  const f32 v = load_numbers(p);
  const u32 moved = (u32)load_lanes((const int16_t *)p) << 13;
  return real(select((i32)(v != v), (moved & 0x8FFFFFFFu) | 0x70000000u, bits(v)));
}

// Of numbers that binary16 has among its normal ones, or 0.
template <bool nearest>
QKR_INLINE void store_ordinary_half(uint16_t *p, f32 v) {
  const Halves h = convert_singles < nearest ? _MM_FROUND_TO_NEAREST_INT : _MM_FROUND_TO_ZERO > (v);
  memcpy(p, &h, sizeof h);
}
// Half of the least number goes up, also from the tie; what is too large becomes infinity, also in
// truncation; all NaNs become the same.
template <bool nearest, bool all_numbers>
QKR_INLINE void store_half(uint16_t *p, f32 x) {
  u32 pattern = bits(x);
  const i32 magnitude = (i32)(pattern & 0x7FFFFFFFu);
  if constexpr (nearest) pattern -= (u32)(magnitude == half_of_least);
  else if constexpr (all_numbers) {
    const i32 too_large = (magnitude >= beyond_halves) & (magnitude <= infinity);
    pattern = select(too_large, (pattern & 0x80000000u) | (uint32_t)infinity, pattern);
  }
  constexpr int direction = nearest ? _MM_FROUND_TO_NEAREST_INT : _MM_FROUND_TO_ZERO;
  i16 half = (i16)convert_singles<direction>(real(pattern));
  if constexpr (all_numbers) {
    const i16 nan = (i16)((half & 0x7FFF) > 0x7C00);
    half = (half | (nan & 0x7FFF)) & ~(nan & 0x200);
  }
  memcpy(p, &half, sizeof half);
}
template <bool nearest>
QKR_INLINE void store_halves(uint16_t *p, f32 low, f32 high) {
  constexpr float limit = 65536;
  const bool ordinary = nearest ? !any_nan(low, high) : !any(beyond(low, limit) | beyond(high, limit), limit);
  if (ordinary) [[likely]] {
    store_half<nearest, false>(p, low);
    store_half<nearest, false>(p + lanes, high);
  } else {
    store_half<nearest, true>(p, low);
    store_half<nearest, true>(p + lanes, high);
  }
}
template <bool nearest>
QKR_INLINE void store_ordinary_halves(uint16_t *p, f32 low, f32 high) {
  store_ordinary_half<nearest>(p, low);
  store_ordinary_half<nearest>(p + lanes, high);
}

#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
