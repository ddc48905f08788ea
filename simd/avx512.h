// AVX-512: eight doubles or sixteen floats. A set of lanes is a mask register.
#pragma once

#include "simd/vectors.h"

namespace qkr::avx512 {
namespace {

typedef unsigned Flags;

QKR_INLINE bool any(Flags f, double) { return f; }
QKR_INLINE bool any(Flags f, float) { return f; }
QKR_INLINE unsigned lane_set(Flags f, double) { return f; }
QKR_INLINE unsigned lane_set(Flags f, float) { return f; }

// Lanes with !(|x| < limit): large ones, infinities and NaNs.
QKR_INLINE Flags beyond(f64 x, double limit) {
  return _mm512_cmp_pd_mask(_mm512_abs_pd((__m512d)x), _mm512_set1_pd(limit), _CMP_NLT_UQ);
}
QKR_INLINE Flags beyond(f32 x, float limit) {
  return _mm512_cmp_ps_mask(_mm512_abs_ps((__m512)x), _mm512_set1_ps(limit), _CMP_NLT_UQ);
}

// Lanes of a number without sign that lie below `low` or not below `high`.
QKR_INLINE Flags outside(f64 x, double low, double high) {
  const uint64_t first = __builtin_bit_cast(uint64_t, low),
                 count = __builtin_bit_cast(uint64_t, high) - first;
  return _mm512_cmpge_epu64_mask((__m512i)(bits(x) - first), _mm512_set1_epi64(count));
}
QKR_INLINE f64 larger(f64 a, f64 b) { return (f64)_mm512_max_pd((__m512d)a, (__m512d)b); }
QKR_INLINE f32 larger(f32 a, f32 b) { return (f32)_mm512_max_ps((__m512)a, (__m512)b); }
QKR_INLINE f64 smaller(f64 a, f64 b) { return (f64)_mm512_min_pd((__m512d)a, (__m512d)b); }

// Lanes that hold anything but a positive normal number: every class that the instruction knows.
QKR_INLINE Flags not_positive_normal(f64 x) { return _mm512_fpclass_pd_mask((__m512d)x, 0xFF); }
QKR_INLINE Flags not_positive_normal(f32 x) { return _mm512_fpclass_ps_mask((__m512)x, 0xFF); }

// Lanes below zero; NaNs with a sign are among them.
QKR_INLINE Flags negative(f64 x) { return _mm512_movepi64_mask((__m512i)(bits(x) & (bits(x) - 1u))); }
QKR_INLINE Flags negative(f32 x) { return _mm512_movepi32_mask((__m512i)(bits(x) & (bits(x) - 1u))); }

// Lanes with !(first <= x < limit), NaNs always among them; the two are positive.
QKR_INLINE Flags outside(f32 x, float first, float limit) {
  return _mm512_cmp_ps_mask((__m512)x, _mm512_set1_ps(first), _CMP_NGE_UQ) |
         _mm512_cmp_ps_mask((__m512)x, _mm512_set1_ps(limit), _CMP_NLT_UQ);
}

QKR_INLINE Flags is_zero(f64 x) { return _mm512_cmp_pd_mask((__m512d)x, _mm512_setzero_pd(), _CMP_EQ_OQ); }
QKR_INLINE Flags is_zero(f32 x) { return _mm512_cmp_ps_mask((__m512)x, _mm512_setzero_ps(), _CMP_EQ_OQ); }
// Of patterns without sign.
QKR_INLINE Flags is_zero(u64 x) { return _mm512_testn_epi64_mask((__m512i)x, (__m512i)x); }
QKR_INLINE Flags is_zero(u32 x) { return _mm512_testn_epi32_mask((__m512i)x, (__m512i)x); }

QKR_INLINE f64 exact_mad(f64 a, f64 b, f64 c) {
  return (f64)_mm512_fmadd_pd((__m512d)a, (__m512d)b, (__m512d)c);
}
QKR_INLINE f32 exact_mad(f32 a, f32 b, f32 c) {
  return (f32)_mm512_fmadd_ps((__m512)a, (__m512)b, (__m512)c);
}

// The exponent of a pattern that stands for a positive number. Not by getexp: a carry may have led the
// pattern into that of the infinities.
QKR_INLINE f64 exponent(u64 pattern) { return (f64)_mm512_cvtepi64_pd((__m512i)((pattern >> 52) - 1023u)); }
QKR_INLINE f32 exponent(u32 pattern) { return (f32)_mm512_cvtepi32_ps((__m512i)((pattern >> 23) - 127u)); }

// Sixteen words of low and high put together, from word `from` of low.
template <int from>
QKR_INLINE u32 joined(u32 low, u32 high) {
  return (u32)_mm512_alignr_epi32((__m512i)high, (__m512i)low, from);
}

// Rounding in the direction that the immediate names, without the inexact flag.
template <int direction>
QKR_INLINE f64 round_by_hardware(f64 v) {
  return (f64)_mm512_roundscale_pd((__m512d)v, direction | _MM_FROUND_NO_EXC);
}
template <int direction>
QKR_INLINE f32 round_by_hardware(f32 v) {
  return (f32)_mm512_roundscale_ps((__m512)v, direction | _MM_FROUND_NO_EXC);
}
// v + w toward zero, without any flag.
QKR_INLINE f64 add_toward_zero(f64 v, f64 w) {
  return (f64)_mm512_add_round_pd((__m512d)v, (__m512d)w, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
}
QKR_INLINE f32 add_toward_zero(f32 v, f32 w) {
  return (f32)_mm512_add_round_ps((__m512)v, (__m512)w, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
}

// `fill` behind the last element.
QKR_INLINE void load_part(const double *p, int count, double fill, f64 &v) {
  v = (f64)_mm512_mask_loadu_pd(_mm512_set1_pd(fill), (1u << count) - 1, p);
}
QKR_INLINE void load_part(const float *p, int count, float fill, f32 &v) {
  v = (f32)_mm512_mask_loadu_ps(_mm512_set1_ps(fill), (1u << count) - 1, p);
}
QKR_INLINE void store_part(double *p, int count, f64 v) {
  _mm512_mask_storeu_pd(p, (1u << count) - 1, (__m512d)v);
}
QKR_INLINE void store_part(float *p, int count, f32 v) {
  _mm512_mask_storeu_ps(p, (1u << count) - 1, (__m512)v);
}

QKR_INLINE f64 square_root(f64 v) { return (f64)_mm512_sqrt_pd((__m512d)v); }
QKR_INLINE f32 square_root(f32 v) { return (f32)_mm512_sqrt_ps((__m512)v); }

// Conversions of the lower and the upper floats, and back.
QKR_INLINE f64 low_doubles(f32 v) { return (f64)_mm512_cvtps_pd(_mm512_castps512_ps256((__m512)v)); }
QKR_INLINE f64 high_doubles(f32 v) { return (f64)_mm512_cvtps_pd(_mm512_extractf32x8_ps((__m512)v, 1)); }
QKR_INLINE f32 join_singles(f64 low, f64 high) {
  const __m256 l = _mm512_cvtpd_ps((__m512d)low), h = _mm512_cvtpd_ps((__m512d)high);
  return (f32)_mm512_insertf32x8(_mm512_castps256_ps512(l), h, 1);
}

// Eight small indices in two integer registers: cheaper than taking the lanes out one by one.
struct Indices {
  uint64_t low, high;
  QKR_INLINE explicit Indices(u64 j) {
    const __m128i packed = _mm512_cvtepi64_epi16((__m512i)j);
    low = (uint64_t)_mm_cvtsi128_si64(packed);
    high = (uint64_t)_mm_extract_epi64(packed, 1);
  }
  QKR_INLINE uint64_t operator[](int i) const { return (uint16_t)((i < 4 ? low : high) >> (16 * (i & 3))); }
};

QKR_INLINE __m512d four_pairs(const double *p, const double *q, const double *r, const double *s) {
  auto two = [](const double *a, const double *b) {
    return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_load_pd(a)), _mm_load_pd(b), 1);
  };
  return _mm512_insertf64x4(_mm512_castpd256_pd512(two(p, q)), two(r, s), 1);
}

QKR_INLINE void look_up(const double (*rows)[2], u64 j, f64 &c0, f64 &c1) {
  const Indices k(j);
  const __m512d a = four_pairs(rows[k[0]], rows[k[2]], rows[k[4]], rows[k[6]]);
  const __m512d b = four_pairs(rows[k[1]], rows[k[3]], rows[k[5]], rows[k[7]]);
  c0 = (f64)_mm512_unpacklo_pd(a, b);
  c1 = (f64)_mm512_unpackhi_pd(a, b);
}

QKR_INLINE void look_up(const double (*rows)[4], u64 j, f64 &c0, f64 &c1, f64 &c2, f64 &c3) {
  const Indices k(j);
  auto two = [&](int p, int q) {
    return _mm512_insertf64x4(_mm512_castpd256_pd512(_mm256_load_pd(rows[k[p]])), _mm256_load_pd(rows[k[q]]),
                              1);
  };
  const __m512d a = two(0, 2), b = two(1, 3), c = two(4, 6), d = two(5, 7);
  const __m512d ab = _mm512_unpacklo_pd(a, b), cd = _mm512_unpacklo_pd(c, d);
  const __m512d AB = _mm512_unpackhi_pd(a, b), CD = _mm512_unpackhi_pd(c, d);
  c0 = (f64)_mm512_shuffle_f64x2(ab, cd, 0x88);
  c1 = (f64)_mm512_shuffle_f64x2(AB, CD, 0x88);
  c2 = (f64)_mm512_shuffle_f64x2(ab, cd, 0xDD);
  c3 = (f64)_mm512_shuffle_f64x2(AB, CD, 0xDD);
}

QKR_INLINE void look_up(const float (*rows)[4], u32 j, f32 &c0, f32 &c1, f32 &c2, f32 &c3) {
  auto four = [&](int p) {
    auto row = [&](int i) { return _mm_load_ps(rows[j[i]]); };
    const __m256 low = _mm256_insertf128_ps(_mm256_castps128_ps256(row(p)), row(p + 4), 1);
    const __m256 high = _mm256_insertf128_ps(_mm256_castps128_ps256(row(p + 8)), row(p + 12), 1);
    return _mm512_insertf32x8(_mm512_castps256_ps512(low), high, 1);
  };
  const __m512 a = four(0), b = four(1), c = four(2), d = four(3);
  const __m512 ab = _mm512_unpacklo_ps(a, b), AB = _mm512_unpackhi_ps(a, b);
  const __m512 cd = _mm512_unpacklo_ps(c, d), CD = _mm512_unpackhi_ps(c, d);
  c0 = (f32)_mm512_shuffle_ps(ab, cd, 0x44);
  c1 = (f32)_mm512_shuffle_ps(ab, cd, 0xEE);
  c2 = (f32)_mm512_shuffle_ps(AB, CD, 0x44);
  c3 = (f32)_mm512_shuffle_ps(AB, CD, 0xEE);
}

// 16 rows, as two columns held in registers.
QKR_INLINE void look_up_16(const double (*rows)[2], u64 j, f64 &c0, f64 &c1) {
  const __m512i even = _mm512_setr_epi64(0, 2, 4, 6, 8, 10, 12, 14),
                odd = _mm512_setr_epi64(1, 3, 5, 7, 9, 11, 13, 15);
  const auto pick = [&](__m512i column) {
    const auto half = [&](int k) {
      return _mm512_permutex2var_pd(_mm512_load_pd(rows[k]), column, _mm512_load_pd(rows[k + 4]));
    };
    return (f64)_mm512_permutex2var_pd(half(0), (__m512i)j, half(8));
  };
  c0 = pick(even);
  c1 = pick(odd);
}

// Element j of a column held in registers: of two of them, of 2^k times as many, or of one element more,
// which is put in by itself. Higher bits of j do not count.
QKR_INLINE f64 pick_of_two(const double *t, u64 j) {
  return (f64)_mm512_permutex2var_pd(_mm512_load_pd(t), (__m512i)j, _mm512_load_pd(t + 8));
}
QKR_INLINE f32 pick_of_two(const float *t, u32 j) {
  return (f32)_mm512_permutex2var_ps(_mm512_load_ps(t), (__m512i)j, _mm512_load_ps(t + 16));
}
// b where the bit of j is set, else a: select() would take an instruction more for the mask.
QKR_INLINE f64 with_bit(u64 j, uint64_t bit, f64 a, f64 b) {
  return (f64)_mm512_mask_mov_pd((__m512d)a, _mm512_test_epi64_mask((__m512i)j, _mm512_set1_epi64(bit)),
                                 (__m512d)b);
}
QKR_INLINE f32 with_bit(u32 j, uint32_t bit, f32 a, f32 b) {
  return (f32)_mm512_mask_mov_ps((__m512)a, _mm512_test_epi32_mask((__m512i)j, _mm512_set1_epi32(bit)),
                                 (__m512)b);
}
template <int count, class T, class I>
QKR_INLINE Native<T> pick(const T *t, I j) {
  constexpr int half = count / 2;
  if constexpr (half * sizeof(T) == 64) return pick_of_two(t, j);
  else if constexpr (count % 2 == 0) return with_bit(j, half, pick<half>(t, j), pick<half>(t + half, j));
  else return with_bit(j, count - 1, pick<count - 1>(t, j), t[count - 1] - Native<T>{});
}
template <int count, class T, size_t stride, class I, class... Columns>
QKR_INLINE void pick(const T (*table)[stride], I j, Columns &...columns) {
  ((columns = pick<count>(*table++, j)), ...);
}

}  // namespace
}  // namespace qkr::avx512
