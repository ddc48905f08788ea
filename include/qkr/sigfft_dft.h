/** @file
 * Fourier transforms of any length `N`, from 1 up.
 *
 * Forward: X[k] = sum over n of x[n] exp(-2 pi i n k / N); the inverse has the plus sign; each is divided as
 * the flag of its plan says (the table of sigfft_plan.h). `dst` may be `src`; other overlap is not allowed.
 *
 * Which lengths are fast: powers of two, and products of 2, 3, 4, 5 and 7. Other factors up to 150 are
 * served, the slower the larger they are. A length with a prime factor above 150 takes a convolution by
 * power-of-two transforms, several times the time of a good length nearby; a prime up to 150 (for real
 * signals up to 179) a direct sum. A real signal of even length costs half of a complex one.
 *
 * | length                                    | route                                          |
 * |-------------------------------------------|------------------------------------------------|
 * | 1 to 4                                    | fixed code                                     |
 * | power of two                              | the transforms of sigfft_transforms.h          |
 * | two or more factors, all at most 150      | mixed radix: Cooley and Tukey (1965)           |
 * | otherwise, above 150 (odd real: above 180)| convolution with a chirp: Bluestein (1970)     |
 * | otherwise                                 | direct sum, halved by symmetry                 |
 *
 * A real signal of even length takes the route of half its length, and a recombination.
 *
 * `work` is a work buffer of at least as many bytes as GetBufSize of the plan tells, of any alignment, which
 * no other thread uses meanwhile; or null: then the call allocates one for itself. About 16 bytes for each
 * number in double and 8 in single precision; chirp lengths need four to eight times that.
 *
 * Accuracy: the relative root-mean-square error is at most 1.3 times that of FFTW at the same length, but for
 * 1.5 unit roundoffs (real signals: 3.1), against long double transforms at all lengths to 2100 and some to
 * 10^6. Results are the same bits on every processor, in place or not, interleaved or not, whatever the
 * alignment. */
#ifndef QKR_SIGFFT_DFT_H
#define QKR_SIGFFT_DFT_H

#include <qkr/sigfft.h>

QKR_BEGIN_DECLS

/** @name Plan types
 * Opaque records. A finished plan is read-only: any number of threads may use one at the same time, each with
 * a work buffer of its own.
 * @{ */
typedef struct zprsDFTSpec_C_32fc zprsDFTSpec_C_32fc;
typedef struct zprsDFTSpec_C_32f zprsDFTSpec_C_32f;
typedef struct zprsDFTSpec_R_32f zprsDFTSpec_R_32f;
typedef struct zprsDFTSpec_C_64fc zprsDFTSpec_C_64fc;
typedef struct zprsDFTSpec_C_64f zprsDFTSpec_C_64f;
typedef struct zprsDFTSpec_R_64f zprsDFTSpec_R_64f;
typedef struct zprsDFTOutOrdSpec_C_32fc zprsDFTOutOrdSpec_C_32fc;
typedef struct zprsDFTOutOrdSpec_C_64fc zprsDFTOutOrdSpec_C_64fc;
/** @} */

/** @name Plans
 * Builds a plan for transforms of `length` numbers, which Free releases, and stores its address to `*plan`:
 * `C_64fc` of interleaved complex numbers, `C_64f` of real and imaginary parts in separate arrays, `R_64f` of
 * real signals; `32` for single precision. `flag` is that of sigfft_plan.h, with N the length; `hint` has no
 * influence.
 * @return zprStsNullPtrErr, zprStsSizeErr (length below 1), zprStsMemAllocErr, zprStsFftFlagErr, in this
 * order; then zprStsSizeErr if the work buffer would exceed 2 GiB (from about 2^27 numbers in double and 2^28
 * in single precision, chirp lengths a quarter of that), and zprStsMemAllocErr if a table could not be
 * allocated.
 * @{ */
QKR_API zprStatus w6_zprsDFTInitAlloc_C_32fc(zprsDFTSpec_C_32fc **plan, int32_t length, int32_t flag,
                                             int32_t hint);
QKR_API zprStatus w6_zprsDFTInitAlloc_C_32f(zprsDFTSpec_C_32f **plan, int32_t length, int32_t flag,
                                            int32_t hint);
QKR_API zprStatus w6_zprsDFTInitAlloc_R_32f(zprsDFTSpec_R_32f **plan, int32_t length, int32_t flag,
                                            int32_t hint);
QKR_API zprStatus w6_zprsDFTInitAlloc_C_64fc(zprsDFTSpec_C_64fc **plan, int32_t length, int32_t flag,
                                             int32_t hint);
QKR_API zprStatus w6_zprsDFTInitAlloc_C_64f(zprsDFTSpec_C_64f **plan, int32_t length, int32_t flag,
                                            int32_t hint);
QKR_API zprStatus w6_zprsDFTInitAlloc_R_64f(zprsDFTSpec_R_64f **plan, int32_t length, int32_t flag,
                                            int32_t hint);
/** @} */

/** @name Size of the work buffer
 * Stores to `*size` how many bytes a transform needs as its work buffer; 0 for none.
 * @return zprStsNullPtrErr, zprStsContextMatchErr, in this order.
 * @{ */
QKR_API zprStatus w6_zprsDFTGetBufSize_C_32fc(const zprsDFTSpec_C_32fc *plan, int32_t *size);
QKR_API zprStatus w6_zprsDFTGetBufSize_C_32f(const zprsDFTSpec_C_32f *plan, int32_t *size);
QKR_API zprStatus w6_zprsDFTGetBufSize_R_32f(const zprsDFTSpec_R_32f *plan, int32_t *size);
QKR_API zprStatus w6_zprsDFTGetBufSize_C_64fc(const zprsDFTSpec_C_64fc *plan, int32_t *size);
QKR_API zprStatus w6_zprsDFTGetBufSize_C_64f(const zprsDFTSpec_C_64f *plan, int32_t *size);
QKR_API zprStatus w6_zprsDFTGetBufSize_R_64f(const zprsDFTSpec_R_64f *plan, int32_t *size);
/** @} */

/** @name Release
 * @return zprStsNullPtrErr, zprStsContextMatchErr, in this order.
 * @{ */
QKR_API zprStatus w6_zprsDFTFree_C_32fc(zprsDFTSpec_C_32fc *plan);
QKR_API zprStatus w6_zprsDFTFree_C_32f(zprsDFTSpec_C_32f *plan);
QKR_API zprStatus w6_zprsDFTFree_R_32f(zprsDFTSpec_R_32f *plan);
QKR_API zprStatus w6_zprsDFTFree_C_64fc(zprsDFTSpec_C_64fc *plan);
QKR_API zprStatus w6_zprsDFTFree_C_64f(zprsDFTSpec_C_64f *plan);
QKR_API zprStatus w6_zprsDFTFree_R_64f(zprsDFTSpec_R_64f *plan);
/** @} */

/** @name Complex transforms
 * Of `N` interleaved complex numbers (`fc`), or of `N` real and `N` imaginary parts in arrays of their own
 * (`f`).
 * @return zprStsNullPtrErr (plan), zprStsContextMatchErr, zprStsNullPtrErr (data), zprStsMemAllocErr (work
 * buffer), in this order; nothing has been written then.
 * @{ */
QKR_API zprStatus w6_zprsDFTFwd_CToC_32fc(const zpr32fc *src, zpr32fc *dst, const zprsDFTSpec_C_32fc *plan,
                                          uint8_t *work);
QKR_API zprStatus w6_zprsDFTInv_CToC_32fc(const zpr32fc *src, zpr32fc *dst, const zprsDFTSpec_C_32fc *plan,
                                          uint8_t *work);
QKR_API zprStatus w6_zprsDFTFwd_CToC_32f(const float *src_re, const float *src_im, float *dst_re,
                                         float *dst_im, const zprsDFTSpec_C_32f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsDFTInv_CToC_32f(const float *src_re, const float *src_im, float *dst_re,
                                         float *dst_im, const zprsDFTSpec_C_32f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsDFTFwd_CToC_64fc(const zpr64fc *src, zpr64fc *dst, const zprsDFTSpec_C_64fc *plan,
                                          uint8_t *work);
QKR_API zprStatus w6_zprsDFTInv_CToC_64fc(const zpr64fc *src, zpr64fc *dst, const zprsDFTSpec_C_64fc *plan,
                                          uint8_t *work);
QKR_API zprStatus w6_zprsDFTFwd_CToC_64f(const double *src_re, const double *src_im, double *dst_re,
                                         double *dst_im, const zprsDFTSpec_C_64f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsDFTInv_CToC_64f(const double *src_re, const double *src_im, double *dst_re,
                                         double *dst_im, const zprsDFTSpec_C_64f *plan, uint8_t *work);
/** @} */

/** @name Real transforms
 * The spectrum of a real signal, X[k] = R_k + i I_k with X[N - k] its conjugate, in one of three formats:
 *
 *     N even          0    1    2    3    4   ...  N-2      N-1      N        N+1
 *     Perm            R_0  R_H  R_1  I_1  R_2 ...  R_(H-1)  I_(H-1)
 *     Pack            R_0  R_1  I_1  R_2  I_2 ...  I_(H-1)  R_H                      H = N / 2
 *     CCS             R_0  0    R_1  I_1  R_2 ...  R_(H-1)  I_(H-1)  R_H      0
 *
 *     N odd           0    1    2    3    4   ...  N-2      N-1      N
 *     Perm, Pack      R_0  R_1  I_1  R_2  I_2 ...  R_H      I_H                      H = (N - 1) / 2
 *     CCS             R_0  0    R_1  I_1  R_2 ...  I_(H-1)  R_H      I_H
 *
 * CCS takes N + 2 numbers where N is even and N + 1 where it is odd, also of an array that a transform in
 * place leaves it in; the inverse does not read its zeros.
 * @return as the complex transforms.
 * @{ */
QKR_API zprStatus w6_zprsDFTFwd_RToPerm_32f(const float *src, float *dst, const zprsDFTSpec_R_32f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsDFTFwd_RToPack_32f(const float *src, float *dst, const zprsDFTSpec_R_32f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsDFTFwd_RToCCS_32f(const float *src, float *dst, const zprsDFTSpec_R_32f *plan,
                                           uint8_t *work);
QKR_API zprStatus w6_zprsDFTInv_PermToR_32f(const float *src, float *dst, const zprsDFTSpec_R_32f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsDFTInv_PackToR_32f(const float *src, float *dst, const zprsDFTSpec_R_32f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsDFTInv_CCSToR_32f(const float *src, float *dst, const zprsDFTSpec_R_32f *plan,
                                           uint8_t *work);
QKR_API zprStatus w6_zprsDFTFwd_RToPerm_64f(const double *src, double *dst, const zprsDFTSpec_R_64f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsDFTFwd_RToPack_64f(const double *src, double *dst, const zprsDFTSpec_R_64f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsDFTFwd_RToCCS_64f(const double *src, double *dst, const zprsDFTSpec_R_64f *plan,
                                           uint8_t *work);
QKR_API zprStatus w6_zprsDFTInv_PermToR_64f(const double *src, double *dst, const zprsDFTSpec_R_64f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsDFTInv_PackToR_64f(const double *src, double *dst, const zprsDFTSpec_R_64f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsDFTInv_CCSToR_64f(const double *src, double *dst, const zprsDFTSpec_R_64f *plan,
                                           uint8_t *work);
/** @} */

/** @name Out-of-order transforms
 * For callers that transform, multiply point by point and transform back. The spectrum of a mixed-radix
 * length from 5001 on comes in an order that follows from its factors, which saves the reordering; of all
 * other lengths in natural order. All plans of one length and precision have the same order, and the inverse
 * takes it; nothing else is promised about it. Statuses are those of the plans, sizes and transforms above.
 * @{ */
QKR_API zprStatus w6_zprsDFTOutOrdInitAlloc_C_32fc(zprsDFTOutOrdSpec_C_32fc **plan, int32_t length,
                                                   int32_t flag, int32_t hint);
QKR_API zprStatus w6_zprsDFTOutOrdInitAlloc_C_64fc(zprsDFTOutOrdSpec_C_64fc **plan, int32_t length,
                                                   int32_t flag, int32_t hint);
QKR_API zprStatus w6_zprsDFTOutOrdGetBufSize_C_32fc(const zprsDFTOutOrdSpec_C_32fc *plan, int32_t *size);
QKR_API zprStatus w6_zprsDFTOutOrdGetBufSize_C_64fc(const zprsDFTOutOrdSpec_C_64fc *plan, int32_t *size);
QKR_API zprStatus w6_zprsDFTOutOrdFree_C_32fc(zprsDFTOutOrdSpec_C_32fc *plan);
QKR_API zprStatus w6_zprsDFTOutOrdFree_C_64fc(zprsDFTOutOrdSpec_C_64fc *plan);
QKR_API zprStatus w6_zprsDFTOutOrdFwd_CToC_32fc(const zpr32fc *src, zpr32fc *dst,
                                                const zprsDFTOutOrdSpec_C_32fc *plan, uint8_t *work);
QKR_API zprStatus w6_zprsDFTOutOrdInv_CToC_32fc(const zpr32fc *src, zpr32fc *dst,
                                                const zprsDFTOutOrdSpec_C_32fc *plan, uint8_t *work);
QKR_API zprStatus w6_zprsDFTOutOrdFwd_CToC_64fc(const zpr64fc *src, zpr64fc *dst,
                                                const zprsDFTOutOrdSpec_C_64fc *plan, uint8_t *work);
QKR_API zprStatus w6_zprsDFTOutOrdInv_CToC_64fc(const zpr64fc *src, zpr64fc *dst,
                                                const zprsDFTOutOrdSpec_C_64fc *plan, uint8_t *work);
/** @} */

QKR_END_DECLS

#endif
