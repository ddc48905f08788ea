// What the conversions share: the walk over an array by groups, and floating point to integers.
#pragma once

#include "sigfft/lanes.h"
#include "sigfft/registers.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// group(src, dst) converts `count` elements, loading all before it stores one. What is left over at the end
// goes through it in a copy.
template <size_t count, class Source, class Target, class Group>
QKR_INLINE void for_each_group(const Source *src, Target *dst, size_t len, Group group) {
  size_t i = 0;
  for (; i + count <= len; i += count) group(src + i, dst + i);
  if (i < len) {
    Source in[count] = {};
    Target out[count];
    memcpy(in, src + i, (len - i) * sizeof(Source));
    group(in, out);
    memcpy(dst + i, out, (len - i) * sizeof(Target));
  }
}

QKR_INLINE f32 number(float x) { return x - f32{}; }
QKR_INLINE Two<f64> number(double x) { return {x - f64{}, x - f64{}}; }

// Rounding goes by the sum with 0.5 in the same precision. The one sum whose own rounding leads astray is
// that of the number after 0.5: it is 1, seen as a tie between 0 and 1. So that number counts as 0.
QKR_INLINE f32 zero_after_half(f32 v) {
  const u32 pattern = bits(v);
  return real(pattern & (u32)((pattern & 0x7FFFFFFFu) != 0x3F000001u));
}
QKR_INLINE f64 zero_after_half(f64 v) {
  const u64 pattern = bits(v);
  return real(pattern & (u64)((pattern & 0x7FFFFFFFFFFFFFFFu) != 0x3FE0000000000001u));
}
QKR_INLINE Two<f64> zero_after_half(Two<f64> v) { return {zero_after_half(v.a), zero_after_half(v.b)}; }

// v * factor, in lanes that a Target takes as they are or too low, also for a NaN: the smaller of a number
// and a NaN is the second operand. What comes from a Source of fewer bits cannot follow 0.5 that closely.
template <bool nearest, class Source, class Target, class V, class T>
QKR_INLINE i32 to_integers(V v, T factor) {
  constexpr uint64_t highest = ((uint64_t)1 << (8 * sizeof(Target) - ((Target)-1 < 0))) - 1;
  v = smaller(number((T)highest), v * number(factor));
  if constexpr (!nearest) return truncated(v);
  else if constexpr (sizeof(Source) < sizeof(T)) return rounded(v);
  else return rounded(zero_after_half(v));
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
