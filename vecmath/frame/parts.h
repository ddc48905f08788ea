// The first lanes of a vector into memory, by single stores: a loop over them becomes a call of the C
// library, and what a masked store has written cannot be loaded again at once.
#pragma once

#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

#if QKR_SIMD_BYTES == 64
template <class T, class V>
QKR_INLINE void store_first(T *p, int count, V v) {
  store_part(p, count, v);
}
#else
QKR_INLINE void store_below_four(float *p, int count, __m128 v) {
  if (count & 2) {
    _mm_storel_pi((__m64 *)p, v);
    p += 2;
    v = _mm_movehl_ps(v, v);
  }
  if (count & 1) _mm_store_ss(p, v);
}
#endif
#if QKR_SIMD_BYTES == 32
QKR_INLINE void store_first(double *p, int count, f64 v) {
  __m128d part = _mm256_castpd256_pd128((__m256d)v);
  if (count & 2) {
    _mm_storeu_pd(p, part);
    p += 2;
    part = _mm256_extractf128_pd((__m256d)v, 1);
  }
  if (count & 1) _mm_store_sd(p, part);
}
QKR_INLINE void store_first(float *p, int count, f32 v) {
  __m128 part = _mm256_castps256_ps128((__m256)v);
  if (count & 4) {
    _mm_storeu_ps(p, part);
    p += 4;
    part = _mm256_extractf128_ps((__m256)v, 1);
  }
  store_below_four(p, count, part);
}
#elif QKR_BASELINE
QKR_INLINE void store_first(double *p, int, f64 v) { _mm_store_sd(p, (__m128d)v); }
QKR_INLINE void store_first(float *p, int count, f32 v) { store_below_four(p, count, (__m128)v); }
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
