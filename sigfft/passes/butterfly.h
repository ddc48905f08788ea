// The butterflies: transforms of 4 and 8 points over whatever registers hold the points. The odd terms of 8
// points are multiplied by exp(-i pi/4) and exp(-3 i pi/4) as a sum or difference of the number and its turn,
// times cos(pi/4).
#pragma once

#include "sigfft/passes/registers.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T>
constexpr T cos_1_8 = (T)0x1.6a09e667f3bcdp-1;

// What becomes of the sums of the first layer.
struct AsTheyAre {
  template <class C>
  QKR_INLINE C operator()(C x) const {
    return x;
  }
};
template <class T>
struct Multiplied {
  T factor;
  template <class C>
  QKR_INLINE C operator()(C x) const {
    return x * factor;
  }
};

template <bool forward, class C, class Scale = AsTheyAre>
QKR_INLINE void butterfly4(C &x0, C &x1, C &x2, C &x3, Scale scale = {}) {
  const C a = scale(x0 + x2), b = scale(x0 - x2), c = scale(x1 + x3), d = scale(x1 - x3);
  x0 = a + c;
  x1 = plus_turned<forward>(b, d);
  x2 = a - c;
  x3 = minus_turned<forward>(b, d);
}

// get(m) gives input m, put(k, value) takes output k. All inputs are read before the first output is put.
template <int radix, bool forward, class Get, class Put, class Scale = AsTheyAre>
QKR_INLINE void butterfly(Get get, Put put, Scale scale = {}) {
  using C = decltype(get(0));
  if constexpr (radix == 4) {
    C x0 = get(0), x2 = get(2), x1 = get(1), x3 = get(3);
    butterfly4<forward>(x0, x1, x2, x3, scale);
    put(0, x0), put(1, x1), put(2, x2), put(3, x3);
  } else {
    constexpr auto h = cos_1_8<typename C::Element>;
    C odd0 = get(1), odd2 = get(5), odd1 = get(3), odd3 = get(7);
    butterfly4<forward>(odd0, odd1, odd2, odd3, scale);
    C even0 = get(0), even2 = get(4), even1 = get(2), even3 = get(6);
    butterfly4<forward>(even0, even1, even2, even3, scale);
    put(0, even0 + odd0), put(4, even0 - odd0);
    odd1 = plus_turned<forward>(odd1, odd1) * h;
    put(1, even1 + odd1), put(5, even1 - odd1);
    put(2, plus_turned<forward>(even2, odd2)), put(6, minus_turned<forward>(even2, odd2));
    odd3 = minus_turned<forward>(odd3, odd3) * h;
    put(3, even3 - odd3), put(7, even3 + odd3);
  }
}

// Where sub-transform m stands after the bit reversal.
template <int radix>
constexpr int reversed_place(int m) {
  return radix == 4 ? (m & 1) << 1 | m >> 1 : (m & 1) << 2 | (m & 2) | m >> 2;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
