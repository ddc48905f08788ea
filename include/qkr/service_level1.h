/** @file
 * Level-1 kernels: scaling and copying of strided vectors, with the classic interface in which every argument
 * is passed by address.
 *
 * A vector is `*n` elements, `*incx` elements apart; a complex number, real part first, is one element.
 * `*n` of zero or below touches nothing. Strides of zero and below are allowed:
 *
 * | stride   | scaling                             | copying                                                |
 * |----------|-------------------------------------|--------------------------------------------------------|
 * | positive | elements 0, inc, 2 inc, ...         | the same                                               |
 * | negative | the elements of the positive stride | from element (1 - n) inc down to element 0: in reverse |
 * | zero     | element 0, n times                  | element 0 is read, or written, n times                 |
 *
 * Copies move bits: NaNs keep their payload. Every function works at any alignment, and gives the same bits
 * on every processor.
 *
 * Method: C. L. Lawson, R. J. Hanson, D. R. Kincaid and F. T. Krogh, ACM Transactions on Mathematical
 * Software 5 (1979) 308. */
#ifndef QKR_SERVICE_LEVEL1_H
#define QKR_SERVICE_LEVEL1_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

/** @name Scaling
 * x = alpha x. `cs` and `zd` multiply complex numbers of single and of double precision by a real one. No
 * alpha is special: 0 times an infinity or a NaN is a NaN.
 * @{ */
QKR_API void qkr_blas_def_sscal(const int32_t *n, const float *alpha, float *x, const int32_t *incx);
QKR_API void qkr_blas_def_dscal(const int32_t *n, const double *alpha, double *x, const int32_t *incx);
QKR_API void qkr_blas_def_csscal(const int32_t *n, const float *alpha, void *x, const int32_t *incx);
QKR_API void qkr_blas_def_zdscal(const int32_t *n, const double *alpha, void *x, const int32_t *incx);
/** @} */

/** @name Copying
 * y = x, element for element in the order in which their strides walk. The vectors must not overlap, but may
 * be the same.
 * @{ */
QKR_API void qkr_blas_def_scopy(const int32_t *n, const float *x, const int32_t *incx, float *y,
                                const int32_t *incy);
QKR_API void qkr_blas_def_dcopy(const int32_t *n, const double *x, const int32_t *incx, double *y,
                                const int32_t *incy);
QKR_API void qkr_blas_def_ccopy(const int32_t *n, const void *x, const int32_t *incx, void *y,
                                const int32_t *incy);
QKR_API void qkr_blas_def_zcopy(const int32_t *n, const void *x, const int32_t *incx, void *y,
                                const int32_t *incy);
/** @} */

QKR_END_DECLS

#endif
