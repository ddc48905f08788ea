// A first approximation of 1 / sqrt(x), short enough for an exact residual: what the roots and Hypot share.
#pragma once

#include "vecmath/frame/function.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// x cut to its leading bits by a mask, and y rounded to its leading bits, half of the last one being given.
template <class V, class Mask>
QKR_INLINE V leading_bits(V x, Mask mask) {
  return real(bits(x) & mask);
}
template <class V, class Mask>
QKR_INLINE V round_to(V y, Mask mask, Mask half) {
  return real((bits(y) + half) & mask);
}

// Doubles: y gets 16 bits and the head of x 21, so that x_head y^2 has 53. Floats: 8, 8 and 24.
struct DoubleRoot {
  using Element = double;
  static constexpr uint64_t guess = 0x5FE6E80000000000, head = 0xFFFFFFFF00000000;
  static constexpr uint64_t y_mask = ~(uint64_t)0 << 37, y_half = (uint64_t)1 << 36;
};
struct SingleRoot {
  using Element = float;
  static constexpr uint32_t guess = 0x5F374000, head = 0xFFFF0000;
  static constexpr uint32_t y_mask = 0xFFFF0000, y_half = 0x8000;
};

// 1 / sqrt(x) of a positive normal x, rounded to the bits of y: a guess from the pattern of x, within 3.4 %
// (J. F. Blinn, IEEE Computer Graphics and Applications 17:4 (1997) 80), and one step of third order.
template <class Format, class V>
QKR_INLINE V short_reciprocal_root(V x) {
  using T = typename Format::Element;
  const V guess = real(Format::guess - (bits(x) >> 1));
  const V z = (T)1 - (x * guess) * guess;
  const V better = guess + guess * (z * ((T)0.5 + z * ((T)0.375 + z * (T)0.3125)));
  return round_to(better, Format::y_mask, Format::y_half);
}

// (1 + e)^(-1/2) - 1
template <class T, class V>
QKR_INLINE V reciprocal_root_series(V e) {
  return e * ((T)-0.5 + e * ((T)0.375 + e * ((T)-0.3125 + e * (T)0.2734375)));
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
