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
QKR_INLINE f64 in_lanes(f64 v) { return v; }
QKR_INLINE f64 in_lanes(double x) { return x - f64{}; }

// yes where a < b, else no; and no where !(a < b), else 0. Operands may be one number.
template <class A, class B, class Yes, class No>
QKR_INLINE f64 select_less(A a, B b, Yes yes, No no) requires(sizeof(a + b) == sizeof(f64)) {
  return in_lanes(a) < in_lanes(b) ? in_lanes(yes) : in_lanes(no);
}
template <class B, class No>
QKR_INLINE f64 zero_if_less(f64 a, B b, No no) {
#if QKR_SIMD_BYTES == 64
  return (f64)_mm512_maskz_mov_pd(_mm512_cmp_pd_mask((__m512d)a, (__m512d)in_lanes(b), _CMP_NLT_UQ),
                                  (__m512d)in_lanes(no));
#else
  return real(bits(in_lanes(no)) & ~(u64)(a < in_lanes(b)));
#endif
}
QKR_INLINE double select_less(double a, double b, double yes, double no) { return a < b ? yes : no; }
QKR_INLINE double zero_if_less(double a, double b, double no) { return a < b ? 0.0 : no; }

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
QKR_INLINE double zero_unless(double v, double c) { return c != 0.0 ? v : 0.0; }
QKR_INLINE double add_if_zero(double s, double v, double c) { return c == 0.0 ? s + v : s; }
QKR_INLINE float zero_unless(float v, float c) { return c != 0.0f ? v : 0.0f; }
QKR_INLINE float add_if_zero(float s, float v, float c) { return c == 0.0f ? s + v : s; }
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
