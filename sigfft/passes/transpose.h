// From the first pass into the working layout: `radix` registers hold one output each of neighbouring
// columns, and the outputs of a column are to stand side by side, in groups. store(column, first output,
// Grouped) takes them. Doubles of 64 bytes go to registers of `stored` bytes: halves need fewer shuffles.
#pragma once

#include "sigfft/passes/registers.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

#if QKR_BASELINE

template <int radix, int stored, class Store>
QKR_INLINE void transpose(const Paired<double, 16> *y, Store store) {
#pragma GCC unroll 4
  for (int k = 0; k < radix; k += 2)
    store(0, k, Grouped<double, 32>{shuffle<0, 2>(y[k].v, y[k + 1].v), shuffle<1, 3>(y[k].v, y[k + 1].v)});
}

template <class Store>
QKR_INLINE void transpose_four(const Paired<float, 16> *y, Store store) {
  const auto ab0 = as_doubles<float, 16>(shuffle<0, 4, 1, 5>(y[0].v, y[1].v));
  const auto ab1 = as_doubles<float, 16>(shuffle<2, 6, 3, 7>(y[0].v, y[1].v));
  const auto cd0 = as_doubles<float, 16>(shuffle<0, 4, 1, 5>(y[2].v, y[3].v));
  const auto cd1 = as_doubles<float, 16>(shuffle<2, 6, 3, 7>(y[2].v, y[3].v));
  using V = Vector<float, 16>;
  store(0, 0, Grouped<float, 32>{(V)shuffle<0, 2>(ab0, cd0), (V)shuffle<1, 3>(ab0, cd0)});
  store(1, 0, Grouped<float, 32>{(V)shuffle<0, 2>(ab1, cd1), (V)shuffle<1, 3>(ab1, cd1)});
}

#else

// The lower halves of two vectors, and the upper ones: one shuffle and two blends, where two shuffles would
// wait for the one port that has them.
struct Halves {
  Vector<double, 32> lower, upper;
};
QKR_INLINE Halves halves_of(Vector<double, 32> a, Vector<double, 32> b) {
  const auto middle = (__m256d)shuffle<2, 3, 4, 5>(a, b);
  return {(Vector<double, 32>)_mm256_blend_pd((__m256d)a, middle, 0b1100),
          (Vector<double, 32>)_mm256_blend_pd(middle, (__m256d)b, 0b1100)};
}

template <int radix, int stored, class Store>
QKR_INLINE void transpose(const Paired<double, 32> *y, Store store) {
#pragma GCC unroll 4
  for (int k = 0; k < radix; k += 2) {
    const auto re = shuffle<0, 4, 2, 6>(y[k].v, y[k + 1].v), im = shuffle<1, 5, 3, 7>(y[k].v, y[k + 1].v);
    const auto columns = halves_of(re, im);
    store(0, k, Grouped<double, 32>{columns.lower});
    store(1, k, Grouped<double, 32>{columns.upper});
  }
}

template <class Store>
QKR_INLINE void transpose_four(const Paired<float, 32> *y, Store store) {
  const auto low = [](auto a, auto b) {
    return as_doubles<float, 32>(shuffle<0, 8, 1, 9, 4, 12, 5, 13>(a, b));
  };
  const auto high = [](auto a, auto b) {
    return as_doubles<float, 32>(shuffle<2, 10, 3, 11, 6, 14, 7, 15>(a, b));
  };
  // Columns 0 and 2, and 1 and 3.
  const auto ab02 = low(y[0].v, y[1].v), ab13 = high(y[0].v, y[1].v);
  const auto cd02 = low(y[2].v, y[3].v), cd13 = high(y[2].v, y[3].v);
  const auto re02 = shuffle<0, 4, 2, 6>(ab02, cd02), im02 = shuffle<1, 5, 3, 7>(ab02, cd02);
  const auto re13 = shuffle<0, 4, 2, 6>(ab13, cd13), im13 = shuffle<1, 5, 3, 7>(ab13, cd13);
  using V = Vector<float, 32>;
  store(0, 0, Grouped<float, 32>{(V)shuffle<0, 1, 4, 5>(re02, im02)});
  store(1, 0, Grouped<float, 32>{(V)shuffle<0, 1, 4, 5>(re13, im13)});
  store(2, 0, Grouped<float, 32>{(V)shuffle<2, 3, 6, 7>(re02, im02)});
  store(3, 0, Grouped<float, 32>{(V)shuffle<2, 3, 6, 7>(re13, im13)});
}

#ifdef __AVX512F__
template <int radix, int stored, class Store>
QKR_INLINE void transpose(const Paired<double, 64> *y, Store store) {
  const auto re = [&](int k) { return shuffle<0, 8, 2, 10, 4, 12, 6, 14>(y[k].v, y[k + 1].v); };
  const auto im = [&](int k) { return shuffle<1, 9, 3, 11, 5, 13, 7, 15>(y[k].v, y[k + 1].v); };
  if constexpr (stored == 32) {
#pragma GCC unroll 4
    for (int k = 0; k < radix; k += 2) {
      const auto columns01 = shuffle<0, 1, 8, 9, 2, 3, 10, 11>(re(k), im(k));
      const auto columns23 = shuffle<4, 5, 12, 13, 6, 7, 14, 15>(re(k), im(k));
      store(0, k, Grouped<double, 32>{lower_half(columns01)});
      store(1, k, Grouped<double, 32>{upper_half(columns01)});
      store(2, k, Grouped<double, 32>{lower_half(columns23)});
      store(3, k, Grouped<double, 32>{upper_half(columns23)});
    }
  } else {
#pragma GCC unroll 2
    for (int k = 0; k < radix; k += 4) {
      // Lanes of 16 bytes, columns 0 and 1, then 2 and 3, of outputs 0 and 1, then 2 and 3.
      const auto a01 = shuffle<0, 1, 2, 3, 8, 9, 10, 11>(re(k), im(k));
      const auto a23 = shuffle<4, 5, 6, 7, 12, 13, 14, 15>(re(k), im(k));
      const auto b01 = shuffle<0, 1, 2, 3, 8, 9, 10, 11>(re(k + 2), im(k + 2));
      const auto b23 = shuffle<4, 5, 6, 7, 12, 13, 14, 15>(re(k + 2), im(k + 2));
      store(0, k, Grouped<double, 64>{shuffle<0, 1, 4, 5, 8, 9, 12, 13>(a01, b01)});
      store(1, k, Grouped<double, 64>{shuffle<2, 3, 6, 7, 10, 11, 14, 15>(a01, b01)});
      store(2, k, Grouped<double, 64>{shuffle<0, 1, 4, 5, 8, 9, 12, 13>(a23, b23)});
      store(3, k, Grouped<double, 64>{shuffle<2, 3, 6, 7, 10, 11, 14, 15>(a23, b23)});
    }
  }
}

template <class Store>
QKR_INLINE void transpose_four(const Paired<float, 64> *y, Store store) {
  const auto low = [](auto a, auto b) {
    return as_doubles<float, 64>(shuffle<0, 16, 1, 17, 4, 20, 5, 21, 8, 24, 9, 25, 12, 28, 13, 29>(a, b));
  };
  const auto high = [](auto a, auto b) {
    return as_doubles<float, 64>(shuffle<2, 18, 3, 19, 6, 22, 7, 23, 10, 26, 11, 27, 14, 30, 15, 31>(a, b));
  };
  const auto store_columns = [&](int column, auto ab, auto cd) {
    const auto re = shuffle<0, 8, 2, 10, 4, 12, 6, 14>(ab, cd),
               im = shuffle<1, 9, 3, 11, 5, 13, 7, 15>(ab, cd);
    const auto first = shuffle<0, 1, 8, 9, 2, 3, 10, 11>(re, im);
    const auto second = shuffle<4, 5, 12, 13, 6, 7, 14, 15>(re, im);
    using V = Vector<float, 32>;
    store(column, 0, Grouped<float, 32>{(V)lower_half(first)});
    store(column + 2, 0, Grouped<float, 32>{(V)upper_half(first)});
    store(column + 4, 0, Grouped<float, 32>{(V)lower_half(second)});
    store(column + 6, 0, Grouped<float, 32>{(V)upper_half(second)});
  };
  store_columns(0, low(y[0].v, y[1].v), low(y[2].v, y[3].v));
  store_columns(1, high(y[0].v, y[1].v), high(y[2].v, y[3].v));
}
#endif

#endif

template <int radix, int stored, int bytes, class Store>
QKR_INLINE void transpose(const Paired<float, bytes> *y, Store store) {
#pragma GCC unroll 2
  for (int k = 0; k < radix; k += 4)
    transpose_four(y + k, [&](int column, int first, auto x) QKR_LAMBDA { store(column, k + first, x); });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
