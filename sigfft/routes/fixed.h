// Transforms of 1, 2, 4 and 8 points: no tables, no work memory. A factor multiplies after the first layer of
// sums.
#pragma once

#include "sigfft/plan/plan.h"

namespace qkr::sigfft {

// By direction (0 inverse, 1 forward), whether a factor multiplies, and order. Real ones write, and read, the
// Perm format.
template <class T>
struct FixedCode {
  using Interleaved = void (*)(const T *src, T *dst, T factor);
  using Split = void (*)(const T *src_re, const T *src_im, T *dst_re, T *dst_im, T factor);
  Interleaved complex[2][2][4], real[2][2][4];
  Split split[2][4];  // forward: the inverse has real and imaginary parts exchanged
};
extern const FixedCode<double> fixed_code_64f;
extern const FixedCode<float> fixed_code_32f;
template <class T>
constexpr const FixedCode<double> &fixed_code = fixed_code_64f;
template <>
inline constexpr const FixedCode<float> &fixed_code<float> = fixed_code_32f;

}  // namespace qkr::sigfft
