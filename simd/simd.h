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
#include "simd/masks.h"

// What all levels say alike, and what serves one number as well as a vector.
namespace qkr::QKR_SIMD_LEVEL {
namespace {

QKR_INLINE f64 exact_mad(f64 a, double b, f64 c) { return exact_mad(a, b - f64{}, c); }
QKR_INLINE f32 exact_mad(f32 a, float b, f32 c) { return exact_mad(a, b - f32{}, c); }
QKR_INLINE f64 exact_mad(f64 a, f64 b, double c) { return exact_mad(a, b, c - f64{}); }
QKR_INLINE f32 exact_mad(f32 a, f32 b, float c) { return exact_mad(a, b, c - f32{}); }
QKR_INLINE f64 larger(f64 a, double b) { return larger(a, b - f64{}); }
QKR_INLINE f32 larger(f32 a, float b) { return larger(a, b - f32{}); }
QKR_INLINE f64 smaller(f64 a, double b) { return smaller(a, b - f64{}); }

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
// As smaller, but a NaN stays.
QKR_INLINE f64 at_most(f64 x, double limit) { return smaller(in_lanes(limit), x); }
QKR_INLINE double at_most(double x, double limit) { return limit < x ? limit : x; }
QKR_INLINE float square_root(float x) { return __builtin_sqrtf(x); }
QKR_INLINE double square_root(double x) { return __builtin_sqrt(x); }
QKR_INLINE double larger(double a, double b) { return a > b ? a : b; }
QKR_INLINE float larger(float a, float b) { return a > b ? a : b; }
QKR_INLINE double smaller(double a, double b) { return a < b ? a : b; }
QKR_INLINE double widen(float x) { return x; }
QKR_INLINE float narrow(double x) { return (float)x; }
template <class T, class... Columns>
QKR_INLINE void look_up(const T (*rows)[sizeof...(Columns)], uint64_t j, Columns &...columns) {
  const T *row = rows[j];
  ((columns = *row++), ...);
}

// Rows of eight doubles, a line of the cache each: two rows of four.
QKR_INLINE void look_up(const double (*rows)[8], u64 j, f64 &c0, f64 &c1, f64 &c2, f64 &c3, f64 &c4, f64 &c5,
                        f64 &c6, f64 &c7) {
  const auto halves = (const double(*)[4])rows;
  const u64 even = j + j;
  look_up(halves, even, c0, c1, c2, c3);
  look_up(halves + 1, even, c4, c5, c6, c7);
}

// A table of floats that stands as rows and again as columns, which only the widest level can hold in
// registers.
template <int count, int width, int stride>
struct RowsAndColumns {
  const float (*rows)[width];
  const float (*columns)[stride];
};
template <int count, int width, int stride, class... Columns>
QKR_INLINE void look_up(RowsAndColumns<count, width, stride> table, u32 j, Columns &...columns) {
#if QKR_SIMD_BYTES == 64
  pick<count>(table.columns, j, columns...);
#else
  look_up(table.rows, j, columns...);
#endif
}
template <int count, int width, int stride, class... Columns>
QKR_INLINE void look_up(RowsAndColumns<count, width, stride> table, uint32_t j, Columns &...columns) {
  look_up(table.rows, j, columns...);
}

// Rows of a table of 16.
#if QKR_SIMD_BYTES < 64
QKR_INLINE void look_up_16(const double (*rows)[2], u64 j, f64 &c0, f64 &c1) { look_up(rows, j, c0, c1); }
#endif
QKR_INLINE void look_up_16(const double (*rows)[2], uint64_t j, double &c0, double &c1) {
  look_up(rows, j, c0, c1);
}

// Lanes whose pattern lies from first to last, as numbers without sign.
QKR_INLINE i32 within(u32 pattern, uint32_t first, uint32_t last) {
  const u32 shifted = pattern - (first + 0x80000000u);
  return (i32)shifted <= (int32_t)(last - first + 0x80000000u);
}
QKR_INLINE bool within(uint32_t pattern, uint32_t first, uint32_t last) {
  return pattern - first <= last - first;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#include "simd/two.h"
