// Integer vectors: products, order of words, and conversion between words and real numbers: exact ones to
// doubles, to singles with one rounding.
#pragma once

#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// unpack_low and unpack_high double the words of a vector so that even_words and odd_words of the two results
// restore their order, whatever the order between.
#if QKR_SIMD_BYTES == 64
// The whole products of the lower halves of 64-bit lanes.
QKR_INLINE u64 product_of_low_halves(u64 a, u64 b) { return (u64)_mm512_mul_epu32((__m512i)a, (__m512i)b); }
QKR_INLINE u32 unpack_low(u32 a, u32 b) { return (u32)_mm512_unpacklo_epi32((__m512i)a, (__m512i)b); }
QKR_INLINE u32 unpack_high(u32 a, u32 b) { return (u32)_mm512_unpackhi_epi32((__m512i)a, (__m512i)b); }
QKR_INLINE u32 even_words(u64 a, u64 b) { return (u32)_mm512_shuffle_ps((__m512)a, (__m512)b, 0x88); }
QKR_INLINE u32 odd_words(u64 a, u64 b) { return (u32)_mm512_shuffle_ps((__m512)a, (__m512)b, 0xDD); }
QKR_INLINE u32 smaller(u32 a, u32 b) { return (u32)_mm512_min_epu32((__m512i)a, (__m512i)b); }
QKR_INLINE u32 looked_up(u32 table, u32 index) {
  return (u32)_mm512_permutevar_ps((__m512)table, (__m512i)index);
}

// below_words: all words in order, a word of `high`, which are alike, above each. multiples_of(unit, w),
// where unit is a power of two, is unit * w. Words and doubles in order. words_of: of whole numbers from 0 to
// 2^32 - 1.
QKR_INLINE Two<f64> doubles_of(u32 w) {
  return {(f64)_mm512_cvtepu32_pd(_mm512_castsi512_si256((__m512i)w)),
          (f64)_mm512_cvtepu32_pd(_mm512_extracti64x4_epi64((__m512i)w, 1))};
}
QKR_INLINE u32 words_of(Two<f64> x) {
  const __m256i low = _mm512_cvtpd_epu32((__m512d)x.a), high = _mm512_cvtpd_epu32((__m512d)x.b);
  return (u32)_mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1);
}
QKR_INLINE f64 multiples_of(double unit, u64 x) { return (f64)_mm512_cvtepu64_pd((__m512i)x) * unit; }
QKR_INLINE Two<u64> below_words(u32 w, u32 high) {
  return {
      (u64)__builtin_shufflevector(w, high, 0, 16, 1, 16, 2, 16, 3, 16, 4, 16, 5, 16, 6, 16, 7, 16),
      (u64)__builtin_shufflevector(w, high, 8, 16, 9, 16, 10, 16, 11, 16, 12, 16, 13, 16, 14, 16, 15, 16)};
}
QKR_INLINE f32 multiples_of(float unit, u32 w) { return (f32)_mm512_cvtepu32_ps((__m512i)w) * unit; }
// Of doubles from 0 to below 2^31.
QKR_INLINE f64 whole_part(f64 x) { return round_by_hardware<_MM_FROUND_TO_ZERO>(x); }
#elif QKR_SIMD_BYTES == 32
QKR_INLINE u64 product_of_low_halves(u64 a, u64 b) { return (u64)_mm256_mul_epu32((__m256i)a, (__m256i)b); }
QKR_INLINE u32 unpack_low(u32 a, u32 b) { return (u32)_mm256_unpacklo_epi32((__m256i)a, (__m256i)b); }
QKR_INLINE u32 unpack_high(u32 a, u32 b) { return (u32)_mm256_unpackhi_epi32((__m256i)a, (__m256i)b); }
QKR_INLINE u32 even_words(u64 a, u64 b) { return (u32)_mm256_shuffle_ps((__m256)a, (__m256)b, 0x88); }
QKR_INLINE u32 odd_words(u64 a, u64 b) { return (u32)_mm256_shuffle_ps((__m256)a, (__m256)b, 0xDD); }
QKR_INLINE u32 smaller(u32 a, u32 b) { return (u32)_mm256_min_epu32((__m256i)a, (__m256i)b); }
QKR_INLINE u32 looked_up(u32 table, u32 index) {
  return (u32)_mm256_permutevar_ps((__m256)table, (__m256i)index);
}

QKR_INLINE Two<u64> below_words(u32 w, u32 high) {
  const u32 mixed = (u32)_mm256_permute4x64_epi64((__m256i)w, 0xD8);
  return {(u64)unpack_low(mixed, high), (u64)unpack_high(mixed, high)};
}
QKR_INLINE u32 words_of(Two<f64> x) {
  const u32 mixed = even_words(bits(x.a + 0x1p52), bits(x.b + 0x1p52));
  return (u32)_mm256_permute4x64_epi64((__m256i)mixed, 0xD8);
}
QKR_INLINE f64 whole_part(f64 x) { return round_by_hardware<_MM_FROUND_TO_ZERO>(x); }
#else
QKR_INLINE u64 product_of_low_halves(u64 a, u64 b) { return (u64)_mm_mul_epu32((__m128i)a, (__m128i)b); }
QKR_INLINE u32 unpack_low(u32 a, u32 b) { return (u32)_mm_unpacklo_epi32((__m128i)a, (__m128i)b); }
QKR_INLINE u32 unpack_high(u32 a, u32 b) { return (u32)_mm_unpackhi_epi32((__m128i)a, (__m128i)b); }
QKR_INLINE u32 even_words(u64 a, u64 b) { return (u32)_mm_shuffle_ps((__m128)a, (__m128)b, 0x88); }
QKR_INLINE u32 odd_words(u64 a, u64 b) { return (u32)_mm_shuffle_ps((__m128)a, (__m128)b, 0xDD); }

QKR_INLINE Two<u64> below_words(u32 w, u32 high) {
  return {(u64)unpack_low(w, high), (u64)unpack_high(w, high)};
}
QKR_INLINE u32 words_of(Two<f64> x) { return even_words(bits(x.a + 0x1p52), bits(x.b + 0x1p52)); }
QKR_INLINE f64 whole_part(f64 x) { return (f64)_mm_cvtepi32_pd(_mm_cvttpd_epi32((__m128d)x)); }

// Numbers below 2^63 in general registers, which multiply faster than two lanes.
QKR_INLINE Two<f64> doubles_of(Two<Two<uint64_t> > x) {
  const auto converted = [](Two<uint64_t> pair) {
    return f64{(double)(int64_t)pair.a, (double)(int64_t)pair.b};
  };
  return {converted(x.a), converted(x.b)};
}
#endif

// A word in lanes whose number is odd, 0 in the others. Wider vectors look it up by the number's last two
// bits.
struct ForOdd {
  u32 word;

  explicit QKR_INLINE ForOdd(uint32_t of_odd) {
#if QKR_BASELINE
    broadcast(of_odd, word);
#else
    u64 pairs;
    broadcast((uint64_t)of_odd << 32, pairs);
    word = (u32)pairs;
#endif
  }
  QKR_INLINE u32 operator()(u32 number) const {
#if QKR_BASELINE
    return zero_unless((number & 1) != 0, word);
#else
    return looked_up(word, number);
#endif
  }
  template <class V>
  QKR_INLINE Two<V> operator()(Two<V> number) const {
    return {(*this)(number.a), (*this)(number.b)};
  }
};

// As the lower halves of numbers whose upper halves stand for 2^52 units.
QKR_INLINE Two<f64> multiples_of(double unit, u32 w) {
  const double base = 0x1p52 * unit;
  u32 high;
  broadcast((uint32_t)(bits(base) >> 32), high);
  const Two<u64> patterns = below_words(w, high);
  return real(patterns) - base;
}

#if QKR_SIMD_BYTES < 64
QKR_INLINE Two<f64> doubles_of(u32 w) { return multiples_of(1.0, w); }
// Each half as the lower bits of a number whose exponent fits; only the last sum rounds.
QKR_INLINE f32 multiples_of(float unit, u32 w) {
  const float low = 0x1p23f * unit, high = 0x1p39f * unit;
#if QKR_BASELINE
  const u32 lower = (w & 0xFFFFu) | bits(low);
#else
  const u32 lower = (u32)_mm256_blend_epi16((__m256i)w, _mm256_set1_epi32((int32_t)bits(low)), 0xAA);
#endif
  return (real(w >> 16 | bits(high)) - (high + low)) + real(lower);
}
// The upper half as a multiple of 2^32 above 2^84, the lower above 2^52; only the last sum rounds.
QKR_INLINE f64 multiples_of(double unit, u64 x) {
  const double low = 0x1p52 * unit, high = 0x1p84 * unit;
#if QKR_BASELINE
  const u64 lower = (x & 0xFFFFFFFFu) | bits(low);
#else
  const u64 lower = (u64)_mm256_blend_epi32((__m256i)x, _mm256_set1_epi64x((int64_t)bits(low)), 0xAA);
#endif
  return (real((x >> 32) | bits(high)) - (high + low)) + real(lower);
}
#endif
QKR_INLINE f64 doubles_of(u64 x) { return multiples_of(1.0, x); }
QKR_INLINE Two<f64> multiples_of(double unit, Two<u64> x) {
  return {multiples_of(unit, x.a), multiples_of(unit, x.b)};
}
QKR_INLINE Two<f64> doubles_of(Two<u64> x) { return {doubles_of(x.a), doubles_of(x.b)}; }
QKR_INLINE Two<f64> whole_part(Two<f64> x) { return {whole_part(x.a), whole_part(x.b)}; }
QKR_INLINE double whole_part(double x) { return (double)(int32_t)x; }

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
