// Transforms of neighbouring columns; one entry a precision and direction, for all processors.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace qkr::dft {

// The longest that is worked on so: its columns, as many as fill a line of the cache, stay in the first
// cache.
constexpr int largest_column_order = 8;

}  // namespace qkr::dft

// Element j of column i is the i-th complex number behind source + j * source_stride, for i below `count` and
// j below 2^order; the result, times `scale`, goes behind target + j * target_stride. Both may be the same
// array with the same stride. Strides count single numbers, and may be odd.
#define QKR_COLUMNS(name)                                                                    \
  extern "C" void name(int order, const void *source, ptrdiff_t source_stride, void *target, \
                       ptrdiff_t target_stride, int64_t count, double scale);
QKR_COLUMNS(dft_columns_forward_32fc)
QKR_COLUMNS(dft_columns_backward_32fc)
QKR_COLUMNS(dft_columns_forward_64fc)
QKR_COLUMNS(dft_columns_backward_64fc)
#undef QKR_COLUMNS
