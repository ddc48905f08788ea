// The vector layer: include this.
#pragma once

#include "simd/vectors.h"

#if QKR_SIMD_BYTES == 64
#include "simd/avx512.h"
#elif QKR_SIMD_BYTES == 32
#include "simd/avx2.h"
#else
#include "simd/sse2.h"
#endif

// What all levels say alike, and what serves one number as well as a vector.
namespace qkr::QKR_SIMD_LEVEL {
namespace {

QKR_INLINE f64 exact_mad(f64 a, double b, f64 c) { return exact_mad(a, b - f64{}, c); }
QKR_INLINE f32 exact_mad(f32 a, float b, f32 c) { return exact_mad(a, b - f32{}, c); }
QKR_INLINE f64 exact_mad(f64 a, f64 b, double c) { return exact_mad(a, b, c - f64{}); }
QKR_INLINE f32 exact_mad(f32 a, f32 b, float c) { return exact_mad(a, b, c - f32{}); }

// a * b - product, where product = a * b rounded: exact, if it is not below the normal range. With a fused
// operation at the levels that have it, by halves of 26 bits (T. J. Dekker, Numerische Mathematik 18 (1971)
// 224) elsewhere.
template <class V>
QKR_INLINE V product_error_by_halves(V a, V b, V product) {
  const auto head = [](V v) { return real((bits(v) + 0x4000000u) & 0xFFFFFFFFF8000000u); };
  const V a_hi = head(a), a_lo = a - a_hi, b_hi = head(b), b_lo = b - b_hi;
  return ((a_hi * b_hi - product) + a_hi * b_lo + a_lo * b_hi) + a_lo * b_lo;
}
QKR_INLINE f64 product_error(f64 a, f64 b, f64 product) {
#if QKR_BASELINE
  return product_error_by_halves(a, b, product);
#else
  return exact_mad(a, b, -product);
#endif
}
QKR_INLINE double product_error(double a, double b, double product) {
  return product_error_by_halves(a, b, product);
}

QKR_INLINE void broadcast(double x, f64 &v) { v = x - f64{}; }
QKR_INLINE void broadcast(float x, f32 &v) { v = x - f32{}; }
QKR_INLINE void broadcast(uint64_t x, u64 &v) { v = x - u64{}; }
QKR_INLINE void broadcast(uint32_t x, u32 &v) { v = x - u32{}; }

QKR_INLINE double exact_mad(double a, double b, double c) { return a * b + c; }
QKR_INLINE float exact_mad(float a, float b, float c) { return a * b + c; }
QKR_INLINE double exponent(uint64_t pattern) { return (double)((int)(pattern >> 52) - 1023); }
QKR_INLINE float exponent(uint32_t pattern) { return (float)((int)(pattern >> 23) - 127); }
QKR_INLINE float approximate_rsqrt(float x) { return _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(x))); }
QKR_INLINE uint64_t approximate_rsqrt(uint64_t single) {
  return bits(approximate_rsqrt(real((uint32_t)single)));
}
QKR_INLINE double square_root(double x) { return __builtin_sqrt(x); }
QKR_INLINE double larger(double a, double b) { return a > b ? a : b; }
QKR_INLINE double smaller(double a, double b) { return a < b ? a : b; }
QKR_INLINE double widen(float x) { return x; }
QKR_INLINE float narrow(double x) { return (float)x; }
QKR_INLINE double zero_unless(double v, double c) { return c != 0.0 ? v : 0.0; }
QKR_INLINE double add_if_zero(double s, double v, double c) { return c == 0.0 ? s + v : s; }
QKR_INLINE float zero_unless(float v, float c) { return c != 0.0f ? v : 0.0f; }
QKR_INLINE float add_if_zero(float s, float v, float c) { return c == 0.0f ? s + v : s; }
template <class T, class... Columns>
QKR_INLINE void look_up(const T (*rows)[sizeof...(Columns)], uint64_t j, Columns &...columns) {
  const T *row = rows[j];
  ((columns = *row++), ...);
}

// Rows of two floats that also stand as two columns of 128: only the widest level can hold columns in
// registers.
QKR_INLINE void look_up_128(const float (*rows)[2], const float *column0, const float *column1, u32 j,
                            f32 &c0, f32 &c1) {
#if QKR_SIMD_BYTES == 64
  (void)rows;
  c0 = pick128(column0, j);
  c1 = pick128(column1, j);
#else
  (void)column0, (void)column1;
  look_up(rows, j, c0, c1);
#endif
}
QKR_INLINE void look_up_128(const float (*rows)[2], const float *, const float *, uint32_t j, float &c0,
                            float &c1) {
  look_up(rows, j, c0, c1);
}

// v where first <= pattern <= last as unsigned numbers, else +0.
QKR_INLINE f32 zero_unless_within(f32 v, u32 pattern, uint32_t first, uint32_t last) {
  const u32 shifted = pattern - (first + 0x80000000u);
  return real(bits(v) & (u32)((i32)shifted <= (int32_t)(last - first + 0x80000000u)));
}
QKR_INLINE float zero_unless_within(float v, uint32_t pattern, uint32_t first, uint32_t last) {
  return pattern - first <= last - first ? v : 0.0f;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#include "simd/two.h"
