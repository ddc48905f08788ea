// Registers that hold real or imaginary parts alone: how they are put together, taken apart and transposed.
#pragma once

#include "sigfft/passes/views.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Vectors made of pieces: of 16 bytes each that lie `stride` numbers apart, of one number, of two halves.
template <class T, int bytes>
QKR_INLINE Vector<T, bytes> gather_cells(const T *p, size_t stride) {
  if constexpr (bytes == 16) {
    Vector<T, 16> v;  // left to the compiler: an insertion takes its operand from memory
    __builtin_memcpy(&v, p, sizeof v);
    return v;
  } else {
    const T *upper = p + bytes / 32 * stride;
    return join<T, bytes / 2>(gather_cells<T, bytes / 2>(p, stride),
                              gather_cells<T, bytes / 2>(upper, stride));
  }
}
template <class T, int... i>
QKR_INLINE auto all_lanes(T x, std::integer_sequence<int, i...>) {
  return Vector<T, sizeof...(i) * sizeof(T)>{((void)i, x)...};
}
template <class T, int bytes>
QKR_INLINE Vector<T, bytes> all_lanes(T x) {
  return all_lanes(x, std::make_integer_sequence<int, bytes / (int)sizeof(T)>());
}
template <class T, int bytes>
QKR_INLINE PartVectors<T, 2 * bytes> join(PartVectors<T, bytes> a, PartVectors<T, bytes> b) {
  return {join<T, bytes>(a.re, b.re), join<T, bytes>(a.im, b.im)};
}

// take(number, Parts) for successive pieces of x, of `piece` bytes for each part.
template <int piece, class T, class V, class Take>
QKR_INLINE void take_apart(Parts<T, V> x, int number, Take take) {
  constexpr int bytes = sizeof(V);
  if constexpr (bytes == piece) {
    take(number, x);
  } else {
    using Half = PartVectors<T, bytes / 2>;
    take_apart<piece>(Half{half_of<T, bytes, 0>(x.re), half_of<T, bytes, 0>(x.im)}, number, take);
    take_apart<piece>(Half{half_of<T, bytes, 1>(x.re), half_of<T, bytes, 1>(x.im)},
                      number + bytes / 2 / piece, take);
  }
}

// Rows to columns, within each square of E x E lanes of 16 bytes, of rows `step` registers apart.
template <int distance, class V, int... i>
QKR_INLINE void exchange_lanes(V &a, V &b, std::integer_sequence<int, i...>) {
  constexpr int count = sizeof...(i);
  const auto x = (Vector<double, sizeof(V)>)a, y = (Vector<double, sizeof(V)>)b;
  a = (V)shuffle<(i & distance ? count + i - distance : i)...>(x, y);
  b = (V)shuffle<(i & distance ? count + i : i + distance)...>(x, y);
}
template <int rows, int step, class V>
QKR_INLINE void transpose_cells(V *y) {
  using Lanes = std::make_integer_sequence<int, sizeof(V) / sizeof(double)>;
  if constexpr (rows > 1)
    for (int i = 0; i < rows; i += 2) exchange_lanes<2>(y[i * step], y[(i + 1) * step], Lanes());
  if constexpr (rows > 2)
    for (int i = 0; i < 2; ++i) exchange_lanes<4>(y[i * step], y[(i + 2) * step], Lanes());
}

// The even lanes of a and b, and the odd ones: 16 bytes by 16 bytes.
template <class T, class V, int... i>
QKR_INLINE void unzip(V &a, V &b, std::integer_sequence<int, i...>) {
  constexpr int count = sizeof...(i), g = group<T>;
  const V even = shuffle<(i / g * g + 2 * (i % g) % g + (i % g < g / 2 ? 0 : count))...>(a, b);
  b = shuffle<(i / g * g + 2 * (i % g) % g + 1 + (i % g < g / 2 ? 0 : count))...>(a, b);
  a = even;
}

// y[k] holds output k of neighbouring columns; afterwards y[first / g * g + h] holds, in each 16 bytes l,
// the g outputs from `first` on of column l g + h.
template <int radix, class T, int bytes>
QKR_INLINE void outputs_together(Vector<T, bytes> *y) {
  using Lanes = std::make_integer_sequence<int, bytes / (int)sizeof(T)>;
  if constexpr (sigfft::is_double<T>) {
    for (int k = 0; k < radix; k += 2) unzip<T>(y[k], y[k + 1], Lanes());
  } else {
    for (int k = 0; k < radix; k += 4) {
      const auto pairs = [&](int i) {
        const auto a = as_doubles<T, bytes>(y[k + i]), b = as_doubles<T, bytes>(y[k + i + 1]);
        auto low = a, high = b;
        unzip<double>(low, high, std::make_integer_sequence<int, bytes / 8>());
        y[k + i] = (Vector<T, bytes>)low, y[k + i + 1] = (Vector<T, bytes>)high;
      };
      pairs(0), pairs(2);
      auto a = y[k], b = y[k + 1], c = y[k + 2], d = y[k + 3];
      unzip<T>(a, c, Lanes());
      unzip<T>(b, d, Lanes());
      y[k] = a, y[k + 1] = c, y[k + 2] = b, y[k + 3] = d;
    }
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
