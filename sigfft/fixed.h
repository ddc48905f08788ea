// Transforms of 1, 2, 4 and 8 points: no tables, no work memory. A factor multiplies after the first layer of
// sums.
#pragma once

#include "sigfft/internal.h"

namespace qkr::sigfft {

// Indexed by order. Real ones write, and read, the Perm format.
template <class T>
struct FixedCode {
  using Interleaved = void (*)(const T *src, T *dst, T factor);
  using Separate = void (*)(const T *src_re, const T *src_im, T *dst_re, T *dst_im, T factor);
  Interleaved tbl_cFFTfwd_small[4], tbl_cFFTinv_small[4], tbl_cFFTfwd_norm_small[4],
      tbl_cFFTinv_norm_small[4];
  Separate tbl_crFFTfwd_small[4], tbl_crFFTinv_small[4], tbl_crFFTfwd_norm_small[4],
      tbl_crFFTinv_norm_small[4];
  Interleaved tbl_rFFTfwd_small[4], tbl_rFFTinv_small[4], tbl_rFFTfwd_norm_small[4],
      tbl_rFFTinv_norm_small[4];
};
extern const FixedCode<double> fixed_code_64f;
extern const FixedCode<float> fixed_code_32f;
template <class T>
constexpr const FixedCode<double> &fixed_code = fixed_code_64f;
template <>
inline constexpr const FixedCode<float> &fixed_code<float> = fixed_code_32f;

}  // namespace qkr::sigfft
