// The tables of the plain set: the twiddles of column k, of 2 k and of 3 k lie in one row, and the passes of
// radix 4 take every row, or every fourth, sixteenth, and so on.
#pragma once

#include "sigfft/passes/split_registers.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr size_t row_length = 6;  // numbers of the table

// Of one pass, whose rows lie `stride` numbers apart.
template <class T>
struct RowTwiddles {
  using Element = T;
  const T *rows;
  size_t stride;

  // In each 16 bytes as many pairs as they hold, and as many rows left out behind them.
  template <int bytes>
  QKR_INLINE Vector<T, bytes> pairs_of_rows(const T *p) const {
    if constexpr (bytes > 16) {
      return join<T, bytes / 2>(pairs_of_rows<bytes / 2>(p),
                                pairs_of_rows<bytes / 2>(p + bytes / 32 * group<T> * stride));
    } else if constexpr (sigfft::is_double<T>) {
      return gather_cells<T, 16>(p, 0);
    } else {
      double a, b;
      __builtin_memcpy(&a, p, sizeof a);
      __builtin_memcpy(&b, p + stride, sizeof b);
      return (Vector<T, 16>)Vector<double, 16>{a, b};
    }
  }
  template <int bytes>
  QKR_INLINE PartVectors<T, bytes> at(size_t k, int m) const {
    const T *p = rows + k * stride + 2 * (m - 1);
    auto c = pairs_of_rows<bytes>(p), s = pairs_of_rows<bytes>(p + group<T> / 2 * stride);
    unzip<T>(c, s, std::make_integer_sequence<int, bytes / (int)sizeof(T)>());
    return {c, s};
  }
  template <int bytes>
  QKR_INLINE PartVectors<T, bytes> one(size_t k, int m) const {
    const T *p = rows + k * stride + 2 * (m - 1);
    return {all_lanes<T, bytes>(p[0]), all_lanes<T, bytes>(p[1])};
  }
};
// Of one pass after the other.
template <class T>
struct RowTables {
  static constexpr int largest_radix = 4;
  const T *rows;
  size_t n;

  template <int radix>
  QKR_INLINE RowTwiddles<T> take(size_t columns) const {
    return {rows, n / (4 * columns) * row_length};
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
