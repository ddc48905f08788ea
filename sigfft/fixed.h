// Transforms of 1, 2, 4 and 8 points: no tables, no work memory. A factor multiplies after the first layer of
// sums.
#pragma once

#include "sigfft/internal.h"

namespace qkr::sigfft {

template <class T>
struct Fixed {
  using Complex = void (*)(const T *src, T *dst, T factor);
  using Separate = void (*)(const T *src_re, const T *src_im, T *dst_re, T *dst_im, T factor);
  // Indexed by order. Real ones write, and read, the Perm format.
  static const Complex tbl_cFFTfwd_small[4], tbl_cFFTinv_small[4];
  static const Complex tbl_cFFTfwd_norm_small[4], tbl_cFFTinv_norm_small[4];
  static const Separate tbl_crFFTfwd_small[4], tbl_crFFTinv_small[4];
  static const Separate tbl_crFFTfwd_norm_small[4], tbl_crFFTinv_norm_small[4];
  static const Complex tbl_rFFTfwd_small[4], tbl_rFFTinv_small[4];
  static const Complex tbl_rFFTfwd_norm_small[4], tbl_rFFTinv_norm_small[4];
};

}  // namespace qkr::sigfft
