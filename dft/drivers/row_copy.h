// The row copier's kernels: a strip of neighbouring columns becomes rows that a line transform can take, and
// back. Element j of row r of the scratch is the r-th element behind source + j * stride (gather), or behind
// target + j * stride (scatter), for r below the width of the strip and j below the length. One row of the
// strip at a time, so that each line of the cache is finished before the next: transposes in registers keep
// more of them in flight and lose at strides of a power of two. One kernel for each width, from one template.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <utility>

namespace qkr::dft {

constexpr int widest_strip = 16;

// An element is one number or a pair of them, moved as bits; aligned as one number is. Strides and pitches
// count numbers: rows of pairs may be an odd number of them apart.
template <class T, int count>
struct __attribute__((may_alias)) Element {
  T number[count];
};

template <class T>
struct Columns {
  T *base;
  ptrdiff_t stride;
};

// The rows of a strip may each lie on a page of their own, where the processor does not foresee the next
// ones: they are asked for so many rows ahead. Behind the last row nothing is read.
constexpr ptrdiff_t rows_ahead = 8;
template <size_t bytes, bool to_write, class T>
inline void ask_ahead(Columns<T> columns) {
  const auto row =
      reinterpret_cast<size_t>(columns.base) + static_cast<size_t>(rows_ahead * columns.stride) * sizeof(T);
#pragma GCC unroll 8
  for (size_t i = 0; i < bytes; i += 64)
    __builtin_prefetch(reinterpret_cast<const void *>(row + i), to_write);
}

template <class E, int width, class T>
void gather_strip(Columns<const T> source, int64_t length, Columns<T> rows) {
#pragma GCC unroll 4
  for (int64_t j = 0; j < length; ++j, source.base += source.stride) {
    ask_ahead<width * sizeof(E), false>(source);
#pragma GCC unroll 16
    for (int r = 0; r < width; ++r)
      reinterpret_cast<E *>(rows.base + r * rows.stride)[j] = reinterpret_cast<const E *>(source.base)[r];
  }
}
template <class E, int width, class T>
void scatter_strip(Columns<const T> rows, int64_t length, Columns<T> target) {
#pragma GCC unroll 4
  for (int64_t j = 0; j < length; ++j, target.base += target.stride) {
    ask_ahead<width * sizeof(E), true>(target);
#pragma GCC unroll 16
    for (int r = 0; r < width; ++r)
      reinterpret_cast<E *>(target.base)[r] = reinterpret_cast<const E *>(rows.base + r * rows.stride)[j];
  }
}

template <class T>
using StripKernel = void (*)(Columns<const T>, int64_t, Columns<T>);
template <class E, class T, int... width>
StripKernel<T> gather_of(int wanted, std::integer_sequence<int, width...>) {
  static constexpr StripKernel<T> kernels[] = {gather_strip<E, width + 1, T>...};
  return kernels[wanted - 1];
}
template <class E, class T, int... width>
StripKernel<T> scatter_of(int wanted, std::integer_sequence<int, width...>) {
  static constexpr StripKernel<T> kernels[] = {scatter_strip<E, width + 1, T>...};
  return kernels[wanted - 1];
}

// Columns of single numbers (parts = 1) or of pairs, to rows and back.
template <int parts, class T>
void gather(int width, Columns<const T> source, int64_t length, Columns<T> rows) {
  using E = Element<T, parts>;
  gather_of<E, T>(width, std::make_integer_sequence<int, widest_strip>())(source, length, rows);
}
template <int parts, class T>
void scatter(int width, Columns<const T> rows, int64_t length, Columns<T> target) {
  using E = Element<T, parts>;
  scatter_of<E, T>(width, std::make_integer_sequence<int, widest_strip>())(rows, length, target);
}

}  // namespace qkr::dft
