// How neighbouring columns are cut into strips that are worked on together.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace qkr::dft {

// Columns of a strip, and how many numbers of the scratch lie from one of its rows to the next.
struct Strip {
  int width;
  ptrdiff_t pitch;
};

// At strides of a large power of two all elements of a column fall into a few sets of the first cache: the
// more columns then share each line the better, and the scratch rows, a line longer than they need, must not
// fall into one set of their own.
template <class T>
Strip strip_of(int64_t count, ptrdiff_t stride, int64_t row_numbers) {
  constexpr ptrdiff_t line = 64 / sizeof(T);
  const bool collides = stride * static_cast<ptrdiff_t>(sizeof(T)) % 1024 == 0;
  const int64_t width = sizeof(T) == 4 || collides ? 16 : 8;
  const ptrdiff_t whole_lines = (row_numbers + line - 1) / line * line;
  const bool rows_collide = whole_lines * static_cast<ptrdiff_t>(sizeof(T)) % 512 == 0;
  return {static_cast<int>(width < count ? width : count), rows_collide ? whole_lines + line : whole_lines};
}

// body(line, width) for each strip of lines first to last - 1, until a code is not 0.
template <class Body>
int32_t for_each_strip(int64_t first, int64_t last, int width, Body body) {
  for (int64_t i = first; i < last; i += width) {
    const int64_t left = last - i;
    if (const int32_t code = body(i, left < width ? static_cast<int>(left) : width)) return code;
  }
  return 0;
}

}  // namespace qkr::dft
