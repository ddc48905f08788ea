// AVX2: four doubles or eight floats, fused operations.
#pragma once

#include "simd/narrow.h"

namespace qkr::avx2 {
namespace {

QKR_INLINE bool any(Flags f, double) { return _mm256_movemask_pd((__m256d)f) != 0; }
QKR_INLINE bool any(Flags f, float) { return _mm256_movemask_ps((__m256)f) != 0; }
QKR_INLINE unsigned lane_set(Flags f, double) { return _mm256_movemask_pd((__m256d)f); }
QKR_INLINE unsigned lane_set(Flags f, float) { return _mm256_movemask_ps((__m256)f); }

QKR_INLINE f64 exact_mad(f64 a, f64 b, f64 c) {
  return (f64)_mm256_fmadd_pd((__m256d)a, (__m256d)b, (__m256d)c);
}
QKR_INLINE f32 exact_mad(f32 a, f32 b, f32 c) {
  return (f32)_mm256_fmadd_ps((__m256)a, (__m256)b, (__m256)c);
}

// Rounding in the direction that the immediate names, without the inexact flag.
template <int direction>
QKR_INLINE f64 round_by_hardware(f64 v) {
  return (f64)_mm256_round_pd((__m256d)v, direction | _MM_FROUND_NO_EXC);
}
template <int direction>
QKR_INLINE f32 round_by_hardware(f32 v) {
  return (f32)_mm256_round_ps((__m256)v, direction | _MM_FROUND_NO_EXC);
}

// `fill` behind the last element.
constexpr int32_t part_masks[16] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};
QKR_INLINE __m256i part_mask(int words) {
  return _mm256_loadu_si256((const __m256i *)(part_masks + 8 - words));
}
QKR_INLINE void load_part(const double *p, int count, double fill, f64 &v) {
  const __m256i mask = part_mask(2 * count);
  v = (f64)_mm256_blendv_pd(_mm256_set1_pd(fill), _mm256_maskload_pd(p, mask), _mm256_castsi256_pd(mask));
}
QKR_INLINE void load_part(const float *p, int count, float fill, f32 &v) {
  const __m256i mask = part_mask(count);
  v = (f32)_mm256_blendv_ps(_mm256_set1_ps(fill), _mm256_maskload_ps(p, mask), _mm256_castsi256_ps(mask));
}

// The second where one of them is a NaN.
QKR_INLINE f64 larger(f64 a, f64 b) { return (f64)_mm256_max_pd((__m256d)a, (__m256d)b); }
QKR_INLINE f32 larger(f32 a, f32 b) { return (f32)_mm256_max_ps((__m256)a, (__m256)b); }
QKR_INLINE f64 smaller(f64 a, f64 b) { return (f64)_mm256_min_pd((__m256d)a, (__m256d)b); }

QKR_INLINE f64 square_root(f64 v) { return (f64)_mm256_sqrt_pd((__m256d)v); }
QKR_INLINE f32 square_root(f32 v) { return (f32)_mm256_sqrt_ps((__m256)v); }

// Conversions of the lower and the upper floats, and back.
QKR_INLINE f64 low_doubles(f32 v) { return (f64)_mm256_cvtps_pd(_mm256_castps256_ps128((__m256)v)); }
QKR_INLINE f64 high_doubles(f32 v) { return (f64)_mm256_cvtps_pd(_mm256_extractf128_ps((__m256)v, 1)); }
QKR_INLINE f32 join_singles(f64 low, f64 high) {
  const __m128 l = _mm256_cvtpd_ps((__m256d)low), h = _mm256_cvtpd_ps((__m256d)high);
  return (f32)_mm256_insertf128_ps(_mm256_castps128_ps256(l), h, 1);
}

QKR_INLINE __m256d pair(const double *p, const double *q) {
  return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_load_pd(p)), _mm_load_pd(q), 1);
}
QKR_INLINE __m256 pair(const float *p, const float *q) {
  return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_load_ps(p)), _mm_load_ps(q), 1);
}

// Element j of a column of 2^k; higher bits of j do not count.
template <int count>
QKR_INLINE f64 pick(const double *column, u64 j) {
  const u64 k = j & (uint64_t)(count - 1);
  const auto two = [&](int i) { return _mm_loadh_pd(_mm_load_sd(column + k[i]), column + k[i + 1]); };
  return (f64)_mm256_insertf128_pd(_mm256_castpd128_pd256(two(0)), two(2), 1);
}

QKR_INLINE void look_up(const double (*rows)[2], u64 j, f64 &c0, f64 &c1) {
  const __m256d a = pair(rows[j[0]], rows[j[2]]), b = pair(rows[j[1]], rows[j[3]]);
  c0 = (f64)_mm256_unpacklo_pd(a, b);
  c1 = (f64)_mm256_unpackhi_pd(a, b);
}

QKR_INLINE void look_up(const double (*rows)[4], u64 j, f64 &c0, f64 &c1, f64 &c2, f64 &c3) {
  const double *p = rows[j[0]], *q = rows[j[1]], *r = rows[j[2]], *s = rows[j[3]];
  const __m256d a = pair(p, r), b = pair(q, s), c = pair(p + 2, r + 2), d = pair(q + 2, s + 2);
  c0 = (f64)_mm256_unpacklo_pd(a, b);
  c1 = (f64)_mm256_unpackhi_pd(a, b);
  c2 = (f64)_mm256_unpacklo_pd(c, d);
  c3 = (f64)_mm256_unpackhi_pd(c, d);
}

QKR_INLINE void look_up(const float (*rows)[2], u32 j, f32 &c0, f32 &c1) {
  auto four = [&](int p, int q, int r, int s) {
    return _mm256_insertf128_ps(_mm256_castps128_ps256(pair_of_rows(rows[j[p]], rows[j[q]])),
                                pair_of_rows(rows[j[r]], rows[j[s]]), 1);
  };
  const __m256 a = four(0, 1, 4, 5), b = four(2, 3, 6, 7);
  c0 = (f32)_mm256_shuffle_ps(a, b, 0x88);
  c1 = (f32)_mm256_shuffle_ps(a, b, 0xDD);
}

QKR_INLINE void look_up(const float (*rows)[4], u32 j, f32 &c0, f32 &c1, f32 &c2, f32 &c3) {
  const __m256 a = pair(rows[j[0]], rows[j[4]]), b = pair(rows[j[1]], rows[j[5]]);
  const __m256 c = pair(rows[j[2]], rows[j[6]]), d = pair(rows[j[3]], rows[j[7]]);
  const __m256 ab = _mm256_unpacklo_ps(a, b), AB = _mm256_unpackhi_ps(a, b);
  const __m256 cd = _mm256_unpacklo_ps(c, d), CD = _mm256_unpackhi_ps(c, d);
  c0 = (f32)_mm256_shuffle_ps(ab, cd, 0x44);
  c1 = (f32)_mm256_shuffle_ps(ab, cd, 0xEE);
  c2 = (f32)_mm256_shuffle_ps(AB, CD, 0x44);
  c3 = (f32)_mm256_shuffle_ps(AB, CD, 0xEE);
}

}  // namespace
}  // namespace qkr::avx2
