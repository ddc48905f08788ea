// What the conversions share: the walk over an array by groups, and floating point to integers.
#pragma once

#include "sigfft/arrays/block_writing.h"
#include "sigfft/arrays/lanes.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Part of an array, from or to one of full size. What is put together from pieces has to reach memory before
// it can be loaded as a whole; masked loads do without that.
#if QKR_SIMD_BYTES == 64
QKR_INLINE uint64_t first_bytes(size_t bytes, size_t from) {
  const size_t n = bytes > from ? bytes - from : 0;
  return n < 64 ? (uint64_t{1} << n) - 1 : ~uint64_t{0};
}
// Whole registers are moved between it and the array of full size, which may be shorter than one.
template <class T, size_t count>
constexpr size_t whole_registers = (count * sizeof(T) + 63) / 64 * 64 / sizeof(T);
template <class T, size_t count>
QKR_INLINE void load_start(T (&all)[count], const T *src, size_t len) {
  static_assert(sizeof all % 64 == 0);
  for (size_t i = 0; i < sizeof all; i += 64) {
    const char *const p = (const char *)src + i;
    _mm512_storeu_si512((char *)all + i, _mm512_maskz_loadu_epi8(first_bytes(len * sizeof(T), i), p));
  }
}
template <class T, size_t count>
QKR_INLINE void store_start(T *dst, const T (&all)[count], size_t len) {
  static_assert(sizeof all % 64 == 0);
  for (size_t i = 0; i < sizeof all; i += 64) {
    const __m512i v = _mm512_loadu_si512((const char *)all + i);
    _mm512_mask_storeu_epi8((char *)dst + i, first_bytes(len * sizeof(T), i), v);
  }
}
#else
template <class T, size_t count>
constexpr size_t whole_registers = count;
template <class T, size_t count>
QKR_INLINE void load_start(T (&all)[count], const T *src, size_t len) {
  memset(all, 0, sizeof all);
  write_short((uint8_t *)all, len * sizeof(T), Copied{(const uint8_t *)src});
}
template <class T, size_t count>
QKR_INLINE void store_start(T *dst, const T (&all)[count], size_t len) {
  write_short((uint8_t *)dst, len * sizeof(T), Copied{(const uint8_t *)all});
}
#endif

// group(src, dst) converts `count` elements, loading all before it stores one. The last group overlaps the
// one before it; it is converted first, since dst may be src.
template <size_t count, class Source, class Target, class Group>
QKR_INLINE void for_each_group(const Source *src, Target *dst, size_t len, Group group) {
  Target last[whole_registers<Target, count>];
  if (len < count) {
    Source all[whole_registers<Source, count>];
    load_start(all, src, len);
    group(all, last);
    return store_start(dst, last, len);
  }
  const size_t end = len - count;
  group(src + end, last);
  for (size_t i = 0; i < end; i += count) group(src + i, dst + i);
  memcpy(dst + end, last, count * sizeof(Target));
}

QKR_INLINE f32 number(float x) { return x - f32{}; }
QKR_INLINE Two<f64> number(double x) { return {x - f64{}, x - f64{}}; }

// Rounding is defined by the sum with 0.5 in the same precision. The one sum whose own rounding leads astray
// is that of the number after 0.5: it is 1, seen as a tie between 0 and 1. Half a step less in magnitude, a
// tie that goes to 0.5 itself, makes it 0, and leaves all others on their side.
QKR_INLINE f32 toward_zero(f32 v, float least) {
  return real((bits(v) & 0x80000000u) ^ bits(number(-least)));
}
QKR_INLINE f64 toward_zero(f64 v, double least) {
  return real((bits(v) & 0x8000000000000000u) ^ bits(number(-least).a));
}
QKR_INLINE Two<f64> toward_zero(Two<f64> v, double least) {
  return {toward_zero(v.a, least), toward_zero(v.b, least)};
}
template <class T>
constexpr T half_step = sizeof(T) == 8 ? (T)0x1p-54 : (T)0x1p-25;

// v * factor, in lanes that a Target takes as they are or too low, also for a NaN: the smaller of a number
// and a NaN is the second operand. What comes from a Source of fewer bits cannot follow 0.5 that closely.
template <bool nearest, class Source, class Target, class V, class T>
QKR_INLINE i32 to_integers(V v, T factor) {
  constexpr uint64_t highest = ((uint64_t)1 << (8 * sizeof(Target) - ((Target)-1 < 0))) - 1;
  if constexpr (nearest && sizeof(Source) == sizeof(T))
    v = exact_mad(v, number(factor), toward_zero(v, half_step<T>));
  else v = v * number(factor);
  return integers<nearest>(smaller(number((T)highest), v));
}

// work() while the processor rounds to nearest. It must not be inlined: the compiler does not know that its
// operations depend on the mode.
template <class Work>
QKR_INLINE void in_nearest_mode(Work work) {
  const unsigned control = _mm_getcsr(), mode = control & _MM_ROUND_MASK;
  if (mode) [[unlikely]]
    _mm_setcsr(control & ~(unsigned)_MM_ROUND_MASK);
  work();
  if (mode) [[unlikely]]
    _mm_setcsr(_mm_getcsr() | mode);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
