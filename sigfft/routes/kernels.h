// The kernels that are compiled for each vector width: the entries call that of the processor. Those whose
// names end in `c` take interleaved numbers, the others split arrays. For these there is no inverse: it is
// the forward transform with real and imaginary parts exchanged, down to every single operation.
#pragma once

#include "sigfft/plan/plan.h"

extern "C" {
// Of the w6_ set: `staged` transforms 2^4 to 2^14 numbers (single: 2^16) by one sequence of passes, the bit
// reversal in the first; `large` does longer ones, by blocks. Of the plain set: all orders from 4 on. The
// last two multiply by the plan's factor where `norm` says so.
#define QKR_DECLARE_KERNELS(direction, T, suffix)                                                     \
  void w6_zprs_staged##direction##_##suffix##c(const T *src, T *dst, int32_t n, const T *twiddles,    \
                                               const uint32_t *reversal, T *work);                    \
  void w6_zprs_large##direction##_##suffix##c(const qkr::sigfft::Plan<T> *plan, const T *src, T *dst, \
                                              int32_t order, bool norm, T *work);                     \
  void zprs_plain##direction##_##suffix##c(const qkr::sigfft::Plan<T> *plan, const T *src, T *dst,    \
                                           int32_t order, bool norm, T *work);
QKR_DECLARE_KERNELS(Fwd, double, 64f)
QKR_DECLARE_KERNELS(Inv, double, 64f)
QKR_DECLARE_KERNELS(Fwd, float, 32f)
QKR_DECLARE_KERNELS(Inv, float, 32f)
#undef QKR_DECLARE_KERNELS
#define QKR_DECLARE_SPLIT(T, suffix)                                                                         \
  void w6_zprs_staged_##suffix(const T *src_re, const T *src_im, T *dst_re, T *dst_im, int32_t n,            \
                               const T *twiddles, T *work);                                                  \
  void w6_zprs_large_##suffix(const qkr::sigfft::Plan<T> *plan, const T *src_re, const T *src_im, T *dst_re, \
                              T *dst_im, int32_t order, bool norm, T *work);                                 \
  void zprs_plain_##suffix(const qkr::sigfft::Plan<T> *plan, const T *src_re, const T *src_im, T *dst_re,    \
                           T *dst_im, int32_t order, bool norm, T *work);
QKR_DECLARE_SPLIT(double, 64f)
QKR_DECLARE_SPLIT(float, 32f)
#undef QKR_DECLARE_SPLIT

// Between the transform of H complex numbers, that are 2 H real ones, and the spectrum in Perm format, number
// 0 left out. The forward one works in place; the inverse one may.
// Then whole real transforms of 16 numbers to or from a spectrum in any format, which the place of the last
// real number, R8, tells.
#define QKR_DECLARE_REAL(prefix, T, suffix)                                                     \
  void prefix##zprs_recombineFwd_##suffix(T *data, int32_t half, const T *table);               \
  void prefix##zprs_recombineInv_##suffix(const T *src, T *dst, int32_t half, const T *table);  \
  void prefix##zprs_sixteenFwd_##suffix(const qkr::sigfft::Plan<T> *plan, const T *src, T *dst, \
                                        int32_t last);                                          \
  void prefix##zprs_sixteenInv_##suffix(const qkr::sigfft::Plan<T> *plan, const T *src, T *dst, int32_t last);
QKR_DECLARE_REAL(w6_, double, 64f)
QKR_DECLARE_REAL(w6_, float, 32f)
QKR_DECLARE_REAL(, double, 64f)
QKR_DECLARE_REAL(, float, 32f)
#undef QKR_DECLARE_REAL

// Bit reversal of n elements of 4, 8 or 16 bytes, in place and out of place, by the table of pairs. Those of
// the w6_ set are public.
#define QKR_DECLARE_REVERSAL(prefix, size)                                        \
  void prefix##zprs_BitRev1_##size(void *data, int32_t n, const uint32_t *table); \
  void prefix##zprs_BitRev2_##size(const void *src, void *dst, int32_t n, const uint32_t *table);
QKR_DECLARE_REVERSAL(, 4)
QKR_DECLARE_REVERSAL(, 8)
QKR_DECLARE_REVERSAL(, 16)
#undef QKR_DECLARE_REVERSAL

// data[i] *= factor for i below count.
void zprs_multiply_64f(double *data, ptrdiff_t count, double factor);
void zprs_multiply_32f(float *data, ptrdiff_t count, float factor);
}
