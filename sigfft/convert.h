// What the conversions share: the walk over an array by groups, rounding to nearest, and floating point to
// integers.
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

// The sum |v| + 0.5, with the sign of v, whose truncation is v rounded to the nearest integer; an odd integer
// that the sum hits, from a tie, is led below. v is at most 2^22 (single) or 2^51. Odd is what has a last bit
// of 1 when `unit`, whose last bit is worth 1, is added, provided that this leaves the sum as it is.
template <class V, class T, class Bits>
QKR_INLINE V half_added(V v, T unit, Bits sign_bit) {
  const auto sign = bits(v) & sign_bit;
  const V sum = real(bits(v) ^ sign) + (T)0.5;
  const V shifted = sum + unit;
  const auto odd = 0 - (bits(shifted) & 1);
  const auto integer = (decltype(odd))(shifted - unit == sum);
  return real(bits(sum - real(bits((T)0.5) & integer & odd)) | sign);
}
QKR_INLINE f32 half_added(f32 v) { return half_added(v, 0x1p23f, 0x80000000u); }
QKR_INLINE f64 half_added(f64 v) { return half_added(v, 0x1p52, 0x8000000000000000u); }
QKR_INLINE Two<f64> half_added(Two<f64> v) { return {half_added(v.a), half_added(v.b)}; }

QKR_INLINE f32 number(float x) { return x - f32{}; }
QKR_INLINE Two<f64> number(double x) { return {x - f64{}, x - f64{}}; }

// Into [low, high]; NaN becomes low, since the maximum of NaN and a number is the second operand.
template <class V, class T>
QKR_INLINE V clamp(V v, T low, T high) {
  return smaller(larger(v, number(low)), number(high));
}

// In the precision of `factor`; the bounds are those of Target, as far as that precision has them.
template <bool nearest, class Target, class V, class T>
QKR_INLINE i32 to_integers(V v, T factor) {
  constexpr Target highest = (Target)(((uint64_t)1 << (8 * sizeof(Target) - ((Target)-1 < 0))) - 1);
  constexpr Target lowest = (Target)-1 < 0 ? (Target)(-highest - 1) : 0;
  v = clamp(v * number(factor), (T)lowest, (T)highest);
  if constexpr (nearest) v = half_added(v);
  return truncated(v);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
