// Lines: many transforms of one dimension, wherever they lie. Every batch, every pass over rows or columns is
// one of these.
#pragma once

#include <string.h>

#include "dft/descriptor/record.h"

namespace qkr::dft {

// Where the elements of lines stand, in steps of single numbers (a complex one is two): element j of line i
// at base + i * distance + j * stride, its imaginary part, if it has one, `imaginary` behind.
template <class T>
struct Place {
  T *base;
  ptrdiff_t stride, distance, imaginary = 1;

  T *line(int64_t i) const { return base + i * distance; }
  // Whether lines of so many neighbouring numbers do not overlap: others are transformed one after the other.
  bool are_apart(ptrdiff_t numbers) const { return distance >= numbers || distance <= -numbers; }
  bool is_contiguous(int width) const { return stride == width && imaginary == 1; }
  bool is_interleaved(int width) const { return distance == width && imaginary == 1; }
};

// Complex lines first to last - 1 of the record in this direction. Source and target are the same or apart.
template <class T>
int32_t transform_complex_lines(const DftDescriptor *record, Direction direction, Place<const T> source,
                                Place<T> target, int64_t first, int64_t last, uint8_t *work);

// Real lines to spectra (forward) or back, by a transform of the record whose packed format has so many
// numbers. The elements of a spectrum are pairs: its first two numbers, the next two, and so on, and the last
// alone if they are odd.
struct RealTransform {
  const DftDescriptor *record;
  LineTransform line;
  Direction direction;
  int32_t format;
  int64_t spectrum_numbers;
};
template <class T>
int32_t transform_real_lines(const RealTransform &transform, Place<const T> source, Place<T> target,
                             int64_t first, int64_t last, uint8_t *work);

// Copies of one line: single numbers; and `count` numbers in pairs.
template <class T>
void copy_numbers(int64_t count, const T *source, ptrdiff_t source_stride, T *target,
                  ptrdiff_t target_stride) {
  if (source_stride == 1 && target_stride == 1) memcpy(target, source, count * sizeof(T));
  else
    for (int64_t j = 0; j < count; ++j) target[j * target_stride] = source[j * source_stride];
}
template <class T>
void copy_pairs(int64_t count, const T *source, ptrdiff_t source_stride, ptrdiff_t source_imaginary,
                T *target, ptrdiff_t target_stride, ptrdiff_t target_imaginary) {
  copy_numbers((count + 1) / 2, source, source_stride, target, target_stride);
  copy_numbers(count / 2, source + source_imaginary, source_stride, target + target_imaginary, target_stride);
}
// From a line of a place into a row of neighbours, and back.
template <class T>
void take_pairs(int64_t count, Place<const T> place, int64_t i, T *row) {
  copy_pairs<T>(count, place.line(i), place.stride, place.imaginary, row, 2, 1);
}
template <class T>
void put_pairs(int64_t count, const T *row, Place<T> place, int64_t i) {
  copy_pairs<T>(count, row, 2, 1, place.line(i), place.stride, place.imaginary);
}

}  // namespace qkr::dft
