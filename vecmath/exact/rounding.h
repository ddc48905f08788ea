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

// One vector taken apart for rounding; masks are all ones or zero in a lane.
template <class T>
struct Parts {
  using B = Bits<T>;
  using U = typename B::Unsigned;
  using I = typename B::Signed;
  U pattern, magnitude, sign, below_one, no_fraction, behind_point;

  QKR_INLINE explicit Parts(typename B::Float x) {
    pattern = bits(x);
    magnitude = pattern & ~B::sign;
    sign = pattern & B::sign;
    below_one = (U)((I)magnitude < (I)(U{} + B::one));
    no_fraction = (U)((I)magnitude >= (I)(U{} + B::all_integers));
    // The 2^s - 1 with s bits behind the point: 2^s is in reach of exponent arithmetic, and the low bits of
    // 2^52 + (2^s - 1) spell the difference. Exact.
    U exponent =
        (magnitude & ~B::fraction & ~(below_one | no_fraction)) | (B::one & (below_one | no_fraction));
    asm("" : "+x"(exponent));  // else clang 19 does the sums on all lanes first, and some are inexact
    const auto power = real((B::one + B::all_integers) - exponent);
    behind_point = bits(B::integers_from + (power - (T)1)) & B::fraction;
  }

  // `inside` for 1 <= |x| < 2^52, `small` below one, x itself elsewhere.
  QKR_INLINE U choose(U small, U inside) const {
    return (below_one & small) | (no_fraction & pattern) | (~(below_one | no_fraction) & inside);
  }

  // 1.0 with the sign of x where the mask says so, else a zero with the sign of x.
  QKR_INLINE U signed_one(U where) const { return sign | (where & B::one); }

  template <Rounding rounding>
  QKR_INLINE U rounded() const {
    const U truncated = pattern & ~behind_point, unit = behind_point + 1u;
    if constexpr (rounding == Rounding::to_zero) {
      return choose(sign, truncated);
    } else if constexpr (rounding == Rounding::up || rounding == Rounding::down) {
      const U away =
          (U)((I)pattern < 0) ^ (rounding == Rounding::up ? ~U{} : U{});  // the side that moves outward
      const U not_zero = (U)(magnitude != 0u), fractional = (U)((pattern & behind_point) != 0u);
      return choose(signed_one(away & not_zero), truncated + (unit & away & fractional));
    } else if constexpr (rounding == Rounding::half_away) {
      return choose(signed_one((U)((I)magnitude >= (I)(U{} + B::half))),
                    (pattern + (unit >> 1)) & ~behind_point);
    } else {
      const U odd = (U)((pattern & unit) != 0u) & 1u;
      return choose(signed_one((U)((I)magnitude > (I)(U{} + B::half))),
                    (pattern + ((behind_point >> 1) + odd)) & ~behind_point);
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
