// Rounding to an integer on bit patterns: exact under any rounding mode and with flush-to-zero, and it raises
// no exception. For 1 <= |x| < 2^52 (float 2^23) some low bits of the fraction field lie behind the point.
#pragma once

#include "vecmath/frame/function.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The first four in the order in which MXCSR numbers them.
enum class Rounding { nearest, down, up, to_zero, half_away };

template <class T>
struct Bits;
template <>
struct Bits<double> {
  using Float = f64;
  using Unsigned = u64;
  using Signed = i64;
  static constexpr uint64_t sign = 0x8000000000000000, fraction = 0x000FFFFFFFFFFFFF,
                            one = 0x3FF0000000000000;
  static constexpr uint64_t half = 0x3FE0000000000000, infinity = 0x7FF0000000000000;
  static constexpr uint64_t all_integers =
      0x4330000000000000;  // 2^52: from here on there is no bit behind the point
  static constexpr double integers_from = 0x1p52;
};
template <>
struct Bits<float> {
  using Float = f32;
  using Unsigned = u32;
  using Signed = i32;
  static constexpr uint32_t sign = 0x80000000, fraction = 0x007FFFFF, one = 0x3F800000;
  static constexpr uint32_t half = 0x3F000000, infinity = 0x7F800000;
  static constexpr uint32_t all_integers = 0x4B000000;  // 2^23
  static constexpr float integers_from = 0x1p23f;
};

template <class V>
constexpr bool is_two = false;
template <class V>
constexpr bool is_two<Two<V>> = true;

// Lanes of ones where the sign bit is set, else of zeros. SSE2 has no such shift of 64 bits.
#if QKR_BASELINE
QKR_INLINE u64 sign_mask(u64 v) {
  return (u64)_mm_shuffle_epi32(_mm_srai_epi32((__m128i)v, 31), _MM_SHUFFLE(3, 3, 1, 1));
}
#else
QKR_INLINE u64 sign_mask(u64 v) { return (u64)((i64)v >> 63); }
#endif
QKR_INLINE u32 sign_mask(u32 v) { return (u32)((i32)v >> 31); }

// v, but at least `low` and at most `high`: all three patterns of powers of two, whose upper 16 bits tell.
template <class U>
QKR_INLINE U between(U v, U low, U high) {
#if QKR_SIMD_BYTES == 64
  return (U)_mm512_min_epi16(_mm512_max_epi16((__m512i)v, (__m512i)low), (__m512i)high);
#elif QKR_SIMD_BYTES == 32
  return (U)_mm256_min_epi16(_mm256_max_epi16((__m256i)v, (__m256i)low), (__m256i)high);
#else
  return (U)_mm_min_epi16(_mm_max_epi16((__m128i)v, (__m128i)low), (__m128i)high);
#endif
}

// One vector taken apart for rounding. Comparisons are signs of differences: none of doubles as integers is
// known to SSE2.
template <class T>
struct Parts {
  using B = Bits<T>;
  using U = typename B::Unsigned;
  U pattern, magnitude, sign, behind_point;

  QKR_INLINE explicit Parts(typename B::Float x) {
    pattern = bits(x);
    magnitude = pattern & ~B::sign;
    sign = pattern & B::sign;
    // The 2^s - 1 with s bits behind the point, all of the fraction field below one and none from 2^52 on:
    // 2^s is in reach of exponent arithmetic, and the low bits of 2^52 + (2^s - 1) spell the difference.
    // Exact.
    const U exponent = between(pattern & B::infinity, U{} + B::one, U{} + B::all_integers);
    const auto power = real((B::one + B::all_integers) - exponent);
    behind_point = bits(power + (B::integers_from - 1)) & B::fraction;
  }

  QKR_INLINE U below_one() const {
#if QKR_BASELINE  // the upper halves tell
    if constexpr (sizeof(T) == 8)
      return (U)_mm_cmplt_epi32(_mm_shuffle_epi32((__m128i)magnitude, _MM_SHUFFLE(3, 3, 1, 1)),
                                _mm_set1_epi32((int)(B::one >> 32)));
#endif
    return sign_mask(magnitude - B::one);
  }

  // `inside` from 1 on, else 1.0 where the mask `away` says so and else 0, with the sign of x.
  QKR_INLINE U choose(U away, U inside) const {
    const U below = below_one();
    return (below & (sign | (away & B::one))) | (~below & inside);
  }

  template <Rounding rounding>
  QKR_INLINE U rounded() const {
    if constexpr (rounding == Rounding::to_zero) {
      return pattern & ~(behind_point | (below_one() & ~B::sign));
    } else if constexpr (rounding == Rounding::up || rounding == Rounding::down) {
      // Away from zero on one side, where zero does not lie.
      const U away =
          sign_mask(rounding == Rounding::up ? ~pattern & (0u - pattern) : pattern & (pattern - 1u));
      return choose(away, (pattern + (behind_point & away)) & ~behind_point);
    } else if constexpr (rounding == Rounding::half_away) {
      return choose(sign_mask((B::half - 1u) - magnitude),
                    (pattern + ((behind_point + 1u) >> 1)) & ~behind_point);
    } else {
      // Half a unit, less the last bit where the integer is even; nothing where there are only integers.
      const U unit = behind_point + 1u, even = ((pattern & unit) - 1u) >> (8 * sizeof(T) - 1);
      const U half = ((unit >> 1) - even) & behind_point;
      return choose(sign_mask(B::half - magnitude), (pattern + half) & ~behind_point);
    }
  }
};

// x * 1, which quiets a signalling NaN; the compiler must not know the 1.
template <class V, class T = decltype(V()[0] + 0)>
QKR_INLINE V times_one(V x) {
  T one = 1;
  asm("" : "+x"(one));
  return x * one;
}

// Instructions that round obey denormals-are-zero and flush-to-zero; with these set the patterns do it.
QKR_INLINE bool hardware_rounds_exactly() {
  constexpr unsigned flush_to_zero = 0x8000, denormals_are_zero = 0x0040;
  return QKR_SIMD_BYTES > 16 && !(_mm_getcsr() & (flush_to_zero | denormals_are_zero));
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
