// The transforms before all stages, of the last factor's points. They are read column by column side by side,
// so that every line of cache is used whole, and each goes to the place that the stages want it at.
#pragma once

#include "sigfft/any_length/passes/stages.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// One number of each of as many columns.
template <int bytes, class T>
QKR_INLINE void scatter(Interleaved<T> area, const uint32_t *places, size_t q, Columns<T, bytes> x) {
  using Number = Vector<T, 2 * sizeof(T)>;
  Number numbers[sizeof x.v / sizeof(Number)];
  __builtin_memcpy(numbers, &x.v, sizeof numbers);
#pragma GCC unroll 8
  for (size_t c = 0; c < columns_together<T, bytes>; ++c)
    store_vector(area.p + 2 * (places[c] + q), numbers[c]);
}

// Numbers q and q + 1 of each column, side by side: of the columns 0, 2, ... in `even`, the others in `odd`;
// where the numbers are doubles, of those of the lower half and those of the upper half.
template <class V>
struct Zipped {
  V even, odd;
};
template <class V, int... i>
QKR_INLINE Zipped<V> zipped(V a, V b, std::integer_sequence<int, i...>) {
  constexpr int count = sizeof...(i);
  if constexpr (sizeof(a[0]) == 4) {  // lanes of 8 bytes, within 16
    const auto x = (Vector<double, sizeof(V)>)a, y = (Vector<double, sizeof(V)>)b;
    return [&]<int... j>(std::integer_sequence<int, j...>) QKR_LAMBDA {
      return Zipped<V>{(V)shuffle<(j % 2 ? count / 2 + j - 1 : j)...>(x, y),
                       (V)shuffle<(j % 2 ? count / 2 + j : j + 1)...>(x, y)};
    }
    (std::make_integer_sequence<int, count / 2>());
  } else {  // lanes of 16 bytes
    return {shuffle<(i / 4 * 2 + i % 2 + (i / 2 % 2 ? count : 0))...>(a, b),
            shuffle<(count / 2 + i / 4 * 2 + i % 2 + (i / 2 % 2 ? count : 0))...>(a, b)};
  }
}

// All numbers of each column.
template <int bytes, int points, class T>
QKR_INLINE void scatter_points(Interleaved<T> area, const uint32_t *places, const Columns<T, bytes> *y) {
  constexpr int count = columns_together<T, bytes>;
  if constexpr (count == 1) {
#pragma GCC unroll 8
    for (int q = 0; q < points; ++q) scatter<bytes>(area, places, q, y[q]);
  } else {
    constexpr bool is_single = sizeof(T) == 4;
    using Pair = Vector<T, 4 * sizeof(T)>;
#pragma GCC unroll 8
    for (int q = 0; q + 1 < points; q += 2) {
      const auto pairs =
          zipped(y[q].v, y[q + 1].v, std::make_integer_sequence<int, bytes / (int)sizeof(T)>());
      Pair of[2][count / 2];
      __builtin_memcpy(of[0], &pairs.even, bytes);
      __builtin_memcpy(of[1], &pairs.odd, bytes);
#pragma GCC unroll 8
      for (int c = 0; c < count; ++c)
        store_vector(area.p + 2 * (places[c] + q),
                     is_single ? of[c % 2][c / 2] : of[c / (count / 2)][c % (count / 2)]);
    }
    if constexpr (points % 2) scatter<bytes>(area, places, points - 1, y[points - 1]);
  }
}

// The columns from `first` to `end` of `count`.
template <bool forward, int points, class Source, class T>
QKR_NOINLINE void first_stage(Factor<points> factor, Source source, Interleaved<T> area, size_t count,
                              size_t first, size_t end, const uint32_t *places, SmallCircle<T> circle) {
  each_column<T>(first, end, [=](auto width, size_t k) QKR_LAMBDA {
    constexpr int bytes = decltype(width)::value;
    Columns<T, bytes> y[points];
    transform_points<forward>(
        factor, [&](int m) QKR_LAMBDA { return columns<bytes>(source, k + m * count); },
        [&](int q, auto x) QKR_LAMBDA { y[q] = x; }, circle);
    scatter_points<bytes, points>(area, places + k, y);
  });
}
template <bool forward, class Source, class T>
QKR_NOINLINE void first_stage(AnyFactor factor, Source source, Interleaved<T> area, size_t count,
                              size_t first, size_t end, const uint32_t *places, SmallCircle<T> circle) {
  each_column<T>(first, end, [=](auto width, size_t k) QKR_LAMBDA {
    constexpr int bytes = decltype(width)::value;
    transform_points<forward>(
        factor, [&](int m) QKR_LAMBDA { return columns<bytes>(source, k + m * count); },
        [&](int q, auto x) QKR_LAMBDA { scatter<bytes>(area, places + k, q, x); }, circle);
  });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
