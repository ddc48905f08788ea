// Transforms of 1, 2, 4 and 8 points: no tables, no work memory. A factor multiplies after the first layer of
// sums.
#pragma once

#include "sigfft/plan/plan.h"

namespace qkr::sigfft {

// Of 1 << order points. Real ones write, and read, the Perm format. Orders are told apart by branches: a call
// through a table would cost as much as the transform.
template <bool forward, class T>
void fixed_complex(int order, bool scaled, const T *src, T *dst, T factor);
template <bool forward, class T>
void fixed_real(int order, bool scaled, const T *src, T *dst, T factor);
// Forward: the inverse has real and imaginary parts exchanged.
template <class T>
void fixed_split(int order, bool scaled, const T *src_re, const T *src_im, T *dst_re, T *dst_im, T factor);

}  // namespace qkr::sigfft
