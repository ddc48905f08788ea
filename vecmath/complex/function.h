// A complex function is its kernel, a rotation, and one row for each precision, in which its names stand
// whole:
//
//   QKR_COMPLEX_FUNCTION(_vxmzSin_HA, _vxmzSin_50, vxm64fc, 0.501, 0x1.8p+3, 0x1p-2, Sinh, Rotated)
//
// name, lower-accuracy name (which forwards), element, the largest error of a part in ulp, the real and the
// imaginary part where it was found (see contract.h), kernel and rotation (see blocks.h).
// QKR_COMPLEX_FUNCTION_OF_TWO has a second operand, QKR_COMPLEX_FUNCTION_OF_NUMBER one for all elements.
#pragma once

#include "vecmath/complex/blocks.h"
#include "vecmath/frame/function.h"

#define QKR_COMPLEX_FUNCTION(name, low_name, T, bound, worst_re, worst_im, K, Turn) \
  QKR_CONTRACT(name, bound, worst_re, worst_im);                                    \
  QKR_ENTRY(name, (int32_t n, const T *a, T *r), (n, a, r)) {                       \
    run_complex<K, Turn>(n, a, (const T *)nullptr, r);                              \
  }                                                                                 \
  QKR_LOW_NAME(name, low_name, (int32_t n, const T *a, T *r), (n, a, r))

#define QKR_COMPLEX_FUNCTION_OF_TWO(name, low_name, T, bound, worst_re, worst_im, K) \
  QKR_CONTRACT(name, bound, worst_re, worst_im);                                     \
  QKR_ENTRY(name, (int32_t n, const T *a, const T *b, T *r), (n, a, b, r)) {         \
    run_complex<K, Plain>(n, a, b, r);                                               \
  }                                                                                  \
  QKR_LOW_NAME(name, low_name, (int32_t n, const T *a, const T *b, T *r), (n, a, b, r))

#define QKR_COMPLEX_FUNCTION_OF_NUMBER(name, low_name, T, bound, worst_re, worst_im, K) \
  QKR_CONTRACT(name, bound, worst_re, worst_im);                                        \
  QKR_ENTRY(name, (int32_t n, const T *a, T b, T *r), (n, a, b, r)) {                   \
    run_complex<K, Plain, true>(n, a, &b, r);                                           \
  }                                                                                     \
  QKR_LOW_NAME(name, low_name, (int32_t n, const T *a, T b, T *r), (n, a, b, r))
