// SSE2: two doubles or four floats. No fused operation, no per-lane shift, no masked memory access.
#pragma once

#include "simd/narrow.h"

namespace qkr::sse2 {
namespace {

QKR_INLINE bool any(Flags f, double) { return _mm_movemask_pd((__m128d)f) != 0; }
QKR_INLINE bool any(Flags f, float) { return _mm_movemask_ps((__m128)f) != 0; }
QKR_INLINE unsigned lane_set(Flags f, double) { return _mm_movemask_pd((__m128d)f); }
QKR_INLINE unsigned lane_set(Flags f, float) { return _mm_movemask_ps((__m128)f); }

QKR_INLINE f64 exact_mad(f64 a, f64 b, f64 c) { return a * b + c; }
QKR_INLINE f32 exact_mad(f32 a, f32 b, f32 c) { return a * b + c; }

// `fill` behind the last element.
QKR_INLINE void load_part(const double *p, int, double fill, f64 &v) { v = f64{p[0], fill}; }
QKR_INLINE void load_part(const float *p, int count, float fill, f32 &v) {
  v = f32{p[0], count > 1 ? p[1] : fill, count > 2 ? p[2] : fill, fill};
}

// The second where one of them is a NaN.
QKR_INLINE f64 larger(f64 a, f64 b) { return (f64)_mm_max_pd((__m128d)a, (__m128d)b); }
QKR_INLINE f32 larger(f32 a, f32 b) { return (f32)_mm_max_ps((__m128)a, (__m128)b); }
QKR_INLINE f64 smaller(f64 a, f64 b) { return (f64)_mm_min_pd((__m128d)a, (__m128d)b); }

QKR_INLINE f64 square_root(f64 v) { return (f64)_mm_sqrt_pd((__m128d)v); }
QKR_INLINE f32 square_root(f32 v) { return (f32)_mm_sqrt_ps((__m128)v); }

// Conversions of the lower and the upper floats, and back.
QKR_INLINE f64 low_doubles(f32 v) { return (f64)_mm_cvtps_pd((__m128)v); }
QKR_INLINE f64 high_doubles(f32 v) { return (f64)_mm_cvtps_pd(_mm_movehl_ps((__m128)v, (__m128)v)); }
QKR_INLINE f32 join_singles(f64 low, f64 high) {
  return (f32)_mm_movelh_ps(_mm_cvtpd_ps((__m128d)low), _mm_cvtpd_ps((__m128d)high));
}

// Element j of a column of 2^k; higher bits of j do not count.
template <int count>
QKR_INLINE f64 pick(const double *column, u64 j) {
  const u64 k = j & (uint64_t)(count - 1);
  return (f64)_mm_loadh_pd(_mm_load_sd(column + k[0]), column + k[1]);
}

QKR_INLINE void look_up(const double (*rows)[2], u64 j, f64 &c0, f64 &c1) {
  const __m128d p = _mm_load_pd(rows[j[0]]), q = _mm_load_pd(rows[j[1]]);
  c0 = (f64)_mm_unpacklo_pd(p, q);
  c1 = (f64)_mm_unpackhi_pd(p, q);
}

QKR_INLINE void look_up(const double (*rows)[4], u64 j, f64 &c0, f64 &c1, f64 &c2, f64 &c3) {
  const double *p = rows[j[0]], *q = rows[j[1]];
  const __m128d a = _mm_load_pd(p), b = _mm_load_pd(q), c = _mm_load_pd(p + 2), d = _mm_load_pd(q + 2);
  c0 = (f64)_mm_unpacklo_pd(a, b);
  c1 = (f64)_mm_unpackhi_pd(a, b);
  c2 = (f64)_mm_unpacklo_pd(c, d);
  c3 = (f64)_mm_unpackhi_pd(c, d);
}

QKR_INLINE void look_up(const float (*rows)[2], u32 j, f32 &c0, f32 &c1) {
  const __m128 a = pair_of_rows(rows[j[0]], rows[j[1]]), b = pair_of_rows(rows[j[2]], rows[j[3]]);
  c0 = (f32)_mm_shuffle_ps(a, b, 0x88);
  c1 = (f32)_mm_shuffle_ps(a, b, 0xDD);
}

QKR_INLINE void look_up(const float (*rows)[4], u32 j, f32 &c0, f32 &c1, f32 &c2, f32 &c3) {
  __m128 a = _mm_load_ps(rows[j[0]]), b = _mm_load_ps(rows[j[1]]);
  __m128 c = _mm_load_ps(rows[j[2]]), d = _mm_load_ps(rows[j[3]]);
  _MM_TRANSPOSE4_PS(a, b, c, d);
  c0 = (f32)a, c1 = (f32)b, c2 = (f32)c, c3 = (f32)d;
}

}  // namespace
}  // namespace qkr::sse2
