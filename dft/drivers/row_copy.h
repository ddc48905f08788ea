// The row copier's kernels: a strip of neighbouring columns becomes rows that a line transform can take, and
// back.
//   gather   rows[r * pitch + j] = source[j * stride + r]
//   scatter  target[j * stride + r] = rows[r * pitch + j]
// for r below the width of the strip and j below the length. One row of the strip at a time, so that each
// line of the cache is finished before the next: transposes in registers keep more of them in flight and lose
// at strides of a power of two. One kernel for each width, from one template.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <utility>

namespace qkr::dft {

constexpr int widest_strip = 16;

// An element is one number or a pair of them, moved as bits; aligned as one number is.
template <class T, int count>
struct __attribute__((may_alias)) Element {
  T number[count];
};

template <class E, int width>
void gather_strip(const E *source, ptrdiff_t stride, int64_t length, E *rows, ptrdiff_t pitch) {
#pragma GCC unroll 4
  for (int64_t j = 0; j < length; ++j, source += stride)
#pragma GCC unroll 16
    for (int r = 0; r < width; ++r) rows[r * pitch + j] = source[r];
}
template <class E, int width>
void scatter_strip(const E *rows, ptrdiff_t pitch, int64_t length, E *target, ptrdiff_t stride) {
#pragma GCC unroll 4
  for (int64_t j = 0; j < length; ++j, target += stride)
#pragma GCC unroll 16
    for (int r = 0; r < width; ++r) target[r] = rows[r * pitch + j];
}

template <class E>
using Gather = void (*)(const E *source, ptrdiff_t stride, int64_t length, E *rows, ptrdiff_t pitch);
template <class E>
using Scatter = void (*)(const E *rows, ptrdiff_t pitch, int64_t length, E *target, ptrdiff_t stride);

template <class E, int... width>
Gather<E> gather_of(int wanted, std::integer_sequence<int, width...>) {
  static constexpr Gather<E> kernels[] = {gather_strip<E, width + 1>...};
  return kernels[wanted - 1];
}
template <class E, int... width>
Scatter<E> scatter_of(int wanted, std::integer_sequence<int, width...>) {
  static constexpr Scatter<E> kernels[] = {scatter_strip<E, width + 1>...};
  return kernels[wanted - 1];
}

template <class E>
void gather(int width, const E *source, ptrdiff_t stride, int64_t length, E *rows, ptrdiff_t pitch) {
  gather_of<E>(width, std::make_integer_sequence<int, widest_strip>())(source, stride, length, rows, pitch);
}
template <class E>
void scatter(int width, const E *rows, ptrdiff_t pitch, int64_t length, E *target, ptrdiff_t stride) {
  scatter_of<E>(width, std::make_integer_sequence<int, widest_strip>())(rows, pitch, length, target, stride);
}

}  // namespace qkr::dft
