// The kernels of the routes of any length, which are compiled for each vector width: the entries call that of
// the processor.
#pragma once

#include "sigfft/any_length/plan/plan.h"

#define QKR_DECLARE_KERNELS(direction, T, suffix)                                                        \
  /* The factors route; the stages work over the result, or over `work` where that is the source. */     \
  void zprs_factors##direction##_##suffix##c(const qkr::sigfft::AnyLengthPlan<T> *plan, const T *src,    \
                                             T *dst, T *work);                                           \
  /* The same with the spectrum in the order of the stages. */                                           \
  void zprs_outOfOrder##direction##_##suffix##c(const qkr::sigfft::AnyLengthPlan<T> *plan, const T *src, \
                                                T *dst);                                                 \
  /* Odd real signals, to and from Perm format. */                                                       \
  void zprs_realFactors##direction##_##suffix(const qkr::sigfft::AnyLengthPlan<T> *plan, const T *src,   \
                                              T *dst, T *work);                                          \
  /* The direct sum, of an odd number of points. */                                                      \
  void zprs_direct##direction##_##suffix##c(const T *src, T *dst, int32_t points, const T *circle);      \
  void zprs_realDirect##direction##_##suffix(const T *src, T *dst, int32_t points, const T *circle);
// Of separate arrays, forward: the inverse exchanges real and imaginary parts.
#define QKR_DECLARE_SPLIT(T, suffix)                                                                      \
  void zprs_factors_##suffix(const qkr::sigfft::AnyLengthPlan<T> *plan, const T *src_re, const T *src_im, \
                             T *dst_re, T *dst_im, T *work);                                              \
  void zprs_direct_##suffix(const T *src_re, const T *src_im, T *dst_re, T *dst_im, int32_t points,       \
                            const T *circle);
extern "C" {
QKR_DECLARE_KERNELS(Fwd, double, 64f)
QKR_DECLARE_KERNELS(Inv, double, 64f)
QKR_DECLARE_KERNELS(Fwd, float, 32f)
QKR_DECLARE_KERNELS(Inv, float, 32f)
#undef QKR_DECLARE_KERNELS
QKR_DECLARE_SPLIT(double, 64f)
QKR_DECLARE_SPLIT(float, 32f)
#undef QKR_DECLARE_SPLIT

// Between the transform of H complex numbers, that are 2 H real ones, and the spectrum in Perm format, number
// 0 left out. Both may work in place. Then products of complex numbers for the chirp route, dst[i] = a[i]
// b[i], where dst may be b: of b in two arrays, to two arrays, of real b, and the real parts alone.
#define QKR_DECLARE_ARRAYS(T, suffix)                                                            \
  void zprs_recombineHalfFwd_##suffix(const T *src, T *dst, int32_t half, const T *table);       \
  void zprs_recombineHalfInv_##suffix(const T *src, T *dst, int32_t half, const T *table);       \
  void zprs_multiplyComplex_##suffix##c(const T *a, const T *b, T *dst, int32_t n);              \
  void zprs_multiplySplit_##suffix(const T *a, const T *b_re, const T *b_im, T *dst, int32_t n); \
  void zprs_multiplyToSplit_##suffix(const T *a, const T *b, T *dst_re, T *dst_im, int32_t n);   \
  void zprs_multiplyReal_##suffix(const T *a, const T *b, T *dst, int32_t n);                    \
  void zprs_multiplyToReal_##suffix(const T *a, const T *b, T *dst, int32_t n);
QKR_DECLARE_ARRAYS(double, 64f)
QKR_DECLARE_ARRAYS(float, 32f)
#undef QKR_DECLARE_ARRAYS
}
