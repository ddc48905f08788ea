// Conversions between elements of 8 and 16 bits in memory and lanes of 32, and the few steps on lanes that
// differ from level to level.
#pragma once

#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr size_t lanes = QKR_SIMD_BYTES / 4;

QKR_INLINE i32 load_lanes(const int32_t *p) {
  i32 v;
  memcpy(&v, p, sizeof v);
  return v;
}
QKR_INLINE void store_lanes(int32_t *p, const i32 *v) { memcpy(p, v, sizeof *v); }

// The level's part: load_lanes and store_lanes of narrower integers; to lanes truncated() and rounded(), the
// latter in the processor's rounding mode, and INT32_MIN for what is not within their range; from lanes
// singles() and doubles().

#if QKR_SIMD_BYTES == 64

QKR_INLINE i32 load_lanes(const int8_t *p) {
  return (i32)_mm512_cvtepi8_epi32(_mm_loadu_si128((const __m128i *)p));
}
QKR_INLINE i32 load_lanes(const uint8_t *p) {
  return (i32)_mm512_cvtepu8_epi32(_mm_loadu_si128((const __m128i *)p));
}
QKR_INLINE i32 load_lanes(const int16_t *p) {
  return (i32)_mm512_cvtepi16_epi32(_mm256_loadu_si256((const __m256i *)p));
}
QKR_INLINE i32 load_lanes(const uint16_t *p) {
  return (i32)_mm512_cvtepu16_epi32(_mm256_loadu_si256((const __m256i *)p));
}

// As many vectors as fill one with the narrower integers; what these cannot hold becomes their lowest or
// highest. Packing works in quarters: a permutation puts them in order.
QKR_INLINE void store_lanes(int16_t *p, const i32 *v) {
  const __m512i packed = _mm512_packs_epi32((__m512i)v[0], (__m512i)v[1]);
  const __m512i order = _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7);
  _mm512_storeu_si512(p, _mm512_permutexvar_epi64(order, packed));
}
QKR_INLINE void store_lanes(uint16_t *p, const i32 *v) {
  const __m512i packed = _mm512_packus_epi32((__m512i)v[0], (__m512i)v[1]);
  const __m512i order = _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7);
  _mm512_storeu_si512(p, _mm512_permutexvar_epi64(order, packed));
}
QKR_INLINE void store_bytes(void *p, __m512i packed) {
  const __m512i order = _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
  _mm512_storeu_si512(p, _mm512_permutexvar_epi32(order, packed));
}
QKR_INLINE void store_lanes(int8_t *p, const i32 *v) {
  const __m512i low = _mm512_packs_epi32((__m512i)v[0], (__m512i)v[1]);
  store_bytes(p, _mm512_packs_epi16(low, _mm512_packs_epi32((__m512i)v[2], (__m512i)v[3])));
}
QKR_INLINE void store_lanes(uint8_t *p, const i32 *v) {
  const __m512i low = _mm512_packs_epi32((__m512i)v[0], (__m512i)v[1]);
  store_bytes(p, _mm512_packus_epi16(low, _mm512_packs_epi32((__m512i)v[2], (__m512i)v[3])));
}

QKR_INLINE f32 smaller(f32 a, f32 b) { return (f32)_mm512_min_ps((__m512)a, (__m512)b); }
QKR_INLINE i32 truncated(f32 v) { return (i32)_mm512_cvttps_epi32((__m512)v); }
QKR_INLINE i32 truncated(Two<f64> v) {
  const __m256i low = _mm512_cvttpd_epi32((__m512d)v.a), high = _mm512_cvttpd_epi32((__m512d)v.b);
  return (i32)_mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1);
}
QKR_INLINE i32 rounded(f32 v) { return (i32)_mm512_cvtps_epi32((__m512)v); }
QKR_INLINE i32 rounded(Two<f64> v) {
  const __m256i low = _mm512_cvtpd_epi32((__m512d)v.a), high = _mm512_cvtpd_epi32((__m512d)v.b);
  return (i32)_mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1);
}
QKR_INLINE f32 singles(i32 v) { return (f32)_mm512_cvtepi32_ps((__m512i)v); }
QKR_INLINE Two<f64> doubles(i32 v) {
  const __m512i all = (__m512i)v;
  return {(f64)_mm512_cvtepi32_pd(_mm512_castsi512_si256(all)),
          (f64)_mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(all, 1))};
}

#elif QKR_SIMD_BYTES == 32

QKR_INLINE i32 load_lanes(const int8_t *p) {
  return (i32)_mm256_cvtepi8_epi32(_mm_loadl_epi64((const __m128i *)p));
}
QKR_INLINE i32 load_lanes(const uint8_t *p) {
  return (i32)_mm256_cvtepu8_epi32(_mm_loadl_epi64((const __m128i *)p));
}
QKR_INLINE i32 load_lanes(const int16_t *p) {
  return (i32)_mm256_cvtepi16_epi32(_mm_loadu_si128((const __m128i *)p));
}
QKR_INLINE i32 load_lanes(const uint16_t *p) {
  return (i32)_mm256_cvtepu16_epi32(_mm_loadu_si128((const __m128i *)p));
}

// As many vectors as fill one with the narrower integers; what these cannot hold becomes their lowest or
// highest. Packing works in halves: a permutation puts them in order.
QKR_INLINE void store_lanes(int16_t *p, const i32 *v) {
  const __m256i packed = _mm256_packs_epi32((__m256i)v[0], (__m256i)v[1]);
  _mm256_storeu_si256((__m256i *)p, _mm256_permute4x64_epi64(packed, 0xD8));
}
QKR_INLINE void store_lanes(uint16_t *p, const i32 *v) {
  const __m256i packed = _mm256_packus_epi32((__m256i)v[0], (__m256i)v[1]);
  _mm256_storeu_si256((__m256i *)p, _mm256_permute4x64_epi64(packed, 0xD8));
}
QKR_INLINE void store_bytes(void *p, __m256i packed) {
  const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
  _mm256_storeu_si256((__m256i *)p, _mm256_permutevar8x32_epi32(packed, order));
}
QKR_INLINE void store_lanes(int8_t *p, const i32 *v) {
  const __m256i low = _mm256_packs_epi32((__m256i)v[0], (__m256i)v[1]);
  store_bytes(p, _mm256_packs_epi16(low, _mm256_packs_epi32((__m256i)v[2], (__m256i)v[3])));
}
QKR_INLINE void store_lanes(uint8_t *p, const i32 *v) {
  const __m256i low = _mm256_packs_epi32((__m256i)v[0], (__m256i)v[1]);
  store_bytes(p, _mm256_packus_epi16(low, _mm256_packs_epi32((__m256i)v[2], (__m256i)v[3])));
}

QKR_INLINE f32 smaller(f32 a, f32 b) { return (f32)_mm256_min_ps((__m256)a, (__m256)b); }
QKR_INLINE i32 truncated(f32 v) { return (i32)_mm256_cvttps_epi32((__m256)v); }
QKR_INLINE i32 truncated(Two<f64> v) {
  const __m128i low = _mm256_cvttpd_epi32((__m256d)v.a), high = _mm256_cvttpd_epi32((__m256d)v.b);
  return (i32)_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}
QKR_INLINE i32 rounded(f32 v) { return (i32)_mm256_cvtps_epi32((__m256)v); }
QKR_INLINE i32 rounded(Two<f64> v) {
  const __m128i low = _mm256_cvtpd_epi32((__m256d)v.a), high = _mm256_cvtpd_epi32((__m256d)v.b);
  return (i32)_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}
QKR_INLINE f32 singles(i32 v) { return (f32)_mm256_cvtepi32_ps((__m256i)v); }
QKR_INLINE Two<f64> doubles(i32 v) {
  const __m256i all = (__m256i)v;
  return {(f64)_mm256_cvtepi32_pd(_mm256_castsi256_si128(all)),
          (f64)_mm256_cvtepi32_pd(_mm256_extracti128_si256(all, 1))};
}

#else

// An element in the upper part of its lane, whatever stands below, and then shifted down with or without
// sign.
QKR_INLINE __m128i upper_bytes(const void *p) {
  int32_t word;
  memcpy(&word, p, sizeof word);
  const __m128i bytes = _mm_cvtsi32_si128(word), pairs = _mm_unpacklo_epi8(bytes, bytes);
  return _mm_unpacklo_epi16(pairs, pairs);
}
QKR_INLINE __m128i upper_halves(const void *p) {
  const __m128i words = _mm_loadl_epi64((const __m128i *)p);
  return _mm_unpacklo_epi16(words, words);
}
QKR_INLINE i32 load_lanes(const int8_t *p) { return (i32)_mm_srai_epi32(upper_bytes(p), 24); }
QKR_INLINE i32 load_lanes(const uint8_t *p) { return (i32)_mm_srli_epi32(upper_bytes(p), 24); }
QKR_INLINE i32 load_lanes(const int16_t *p) { return (i32)_mm_srai_epi32(upper_halves(p), 16); }
QKR_INLINE i32 load_lanes(const uint16_t *p) { return (i32)_mm_srli_epi32(upper_halves(p), 16); }

// As many vectors as fill one with the narrower integers; what these cannot hold becomes their lowest or
// highest.
QKR_INLINE void store_lanes(int16_t *p, const i32 *v) {
  _mm_storeu_si128((__m128i *)p, _mm_packs_epi32((__m128i)v[0], (__m128i)v[1]));
}
// Packing knows signed values only: their range is shifted there and back, where negative ones are left out.
QKR_INLINE void store_lanes(uint16_t *p, const i32 *v) {
  const auto shifted = [](i32 x) { return (__m128i)((x & (x > 0)) - 32768); };
  const __m128i packed = _mm_packs_epi32(shifted(v[0]), shifted(v[1]));
  _mm_storeu_si128((__m128i *)p, _mm_xor_si128(packed, _mm_set1_epi16(-32768)));
}
QKR_INLINE void store_lanes(int8_t *p, const i32 *v) {
  const __m128i low = _mm_packs_epi32((__m128i)v[0], (__m128i)v[1]);
  const __m128i high = _mm_packs_epi32((__m128i)v[2], (__m128i)v[3]);
  _mm_storeu_si128((__m128i *)p, _mm_packs_epi16(low, high));
}
QKR_INLINE void store_lanes(uint8_t *p, const i32 *v) {
  const __m128i low = _mm_packs_epi32((__m128i)v[0], (__m128i)v[1]);
  const __m128i high = _mm_packs_epi32((__m128i)v[2], (__m128i)v[3]);
  _mm_storeu_si128((__m128i *)p, _mm_packus_epi16(low, high));
}

QKR_INLINE f32 smaller(f32 a, f32 b) { return (f32)_mm_min_ps((__m128)a, (__m128)b); }
QKR_INLINE i32 truncated(f32 v) { return (i32)_mm_cvttps_epi32((__m128)v); }
QKR_INLINE i32 truncated(Two<f64> v) {
  return (i32)_mm_unpacklo_epi64(_mm_cvttpd_epi32((__m128d)v.a), _mm_cvttpd_epi32((__m128d)v.b));
}

QKR_INLINE i32 rounded(f32 v) { return (i32)_mm_cvtps_epi32((__m128)v); }
QKR_INLINE i32 rounded(Two<f64> v) {
  return (i32)_mm_unpacklo_epi64(_mm_cvtpd_epi32((__m128d)v.a), _mm_cvtpd_epi32((__m128d)v.b));
}
QKR_INLINE f32 singles(i32 v) { return (f32)_mm_cvtepi32_ps((__m128i)v); }
QKR_INLINE Two<f64> doubles(i32 v) {
  const __m128i all = (__m128i)v;
  return {(f64)_mm_cvtepi32_pd(all), (f64)_mm_cvtepi32_pd(_mm_unpackhi_epi64(all, all))};
}

#endif

template <bool nearest, class V>
QKR_INLINE i32 integers(V v) {
  if constexpr (nearest) return rounded(v);
  else return truncated(v);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
