// Transforms of contiguous lines; one entry a precision and direction, for all processors.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace qkr::dft {

constexpr int largest_row_order = 7;

}  // namespace qkr::dft

// Element j of line i is the j-th complex number behind source + i * source_distance, for i below `count` and
// j below 2^order, from order 1 on; the result, times `scale`, goes behind target + i * target_distance.
// Distances count single numbers, and no two lines may overlap; both arrays may be the same. Answers how many
// lines are done: the last few may be left, or all of them.
#define QKR_ROWS(name)                                                                            \
  extern "C" int64_t name(int order, const void *source, ptrdiff_t source_distance, void *target, \
                          ptrdiff_t target_distance, int64_t count, double scale);
QKR_ROWS(dft_rows_forward_32fc)
QKR_ROWS(dft_rows_backward_32fc)
QKR_ROWS(dft_rows_forward_64fc)
QKR_ROWS(dft_rows_backward_64fc)
#undef QKR_ROWS
