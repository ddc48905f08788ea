// Real transforms of contiguous lines; one entry a precision and direction, for all processors.
#pragma once

#include "dft/codelets/rows.h"

// Line i has 2^order real numbers, from order 2 on, and a spectrum in the order of DFTX_PERM_FORMAT, or, if
// it has a last number of its own, of DFTX_CCS_FORMAT. One is behind source + i * source_distance, the other
// goes behind target + i * target_distance. No two lines may overlap; both arrays may be the same with the
// same distance. What is not zero by its place is scaled. Answers how many lines are done: the last few may
// be left, or all of them.
#define QKR_REAL_ROWS(name)                                                                       \
  extern "C" int64_t name(int order, const void *source, ptrdiff_t source_distance, void *target, \
                          ptrdiff_t target_distance, int64_t count, bool has_last, double scale);
QKR_REAL_ROWS(dft_real_rows_forward_32f)
QKR_REAL_ROWS(dft_real_rows_backward_32f)
QKR_REAL_ROWS(dft_real_rows_forward_64f)
QKR_REAL_ROWS(dft_real_rows_backward_64f)
#undef QKR_REAL_ROWS
