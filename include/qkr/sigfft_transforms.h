/** @file
 * Power-of-two Fourier transforms of `N = 2^order` points, from the plans of sigfft_plan.h.
 *
 * Forward: X[k] = sum over n of x[n] exp(-2 pi i n k / N); the inverse has the plus sign; each is divided as
 * the flag of its plan says. `dst` may be `src`; other overlap is not allowed. The functions with `_I` work
 * in place.
 *
 * `work` is a work buffer of at least as many bytes as GetBufSize of the plan tells, which no other thread
 * uses meanwhile; or null: then the call allocates one for itself. Its alignment is free, like that of the
 * arrays, but addresses that are multiples of 64, as those of w6_zprsMalloc_8u, are the fastest.
 *
 * Accuracy: the relative root-mean-square error grows as the square root of `order`, from about 1e-16 at
 * order 4 to 3e-16 at order 18 (single precision: 0.5e-7 to 1.6e-7). Results are the same bits on every
 * processor, in place or not, whatever the alignment; where a result is a NaN, they agree in that, and not in
 * its sign and fraction.
 *
 * Every function returns zprStsNullPtrErr (plan), zprStsContextMatchErr, zprStsNullPtrErr (data),
 * zprStsMemAllocErr (work buffer), in this order.
 *
 * Method: the mixed radix-8 and radix-4 decimation in time of J. W. Cooley and J. W. Tukey, Mathematics of
 * Computation 19 (1965) 297; for long transforms by blocks, as D. H. Bailey, Journal of Supercomputing 4
 * (1990) 23. */
#ifndef QKR_SIGFFT_TRANSFORMS_H
#define QKR_SIGFFT_TRANSFORMS_H

#include <qkr/sigfft_plan.h>

QKR_BEGIN_DECLS

/** @name Complex transforms
 * Of `N` interleaved complex numbers (`fc`), or of `N` real and `N` imaginary parts in arrays of their own
 * (`f`).
 * @{ */
QKR_API zprStatus w6_zprsFFTFwd_CToC_32fc(const zpr32fc *src, zpr32fc *dst, const zprsFFTSpec_C_32fc *plan,
                                          uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_CToC_32fc_I(zpr32fc *data, const zprsFFTSpec_C_32fc *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_CToC_32f(const float *src_re, const float *src_im, float *dst_re,
                                         float *dst_im, const zprsFFTSpec_C_32f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_CToC_32f_I(float *data_re, float *data_im, const zprsFFTSpec_C_32f *plan,
                                           uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_CToC_32fc(const zpr32fc *src, zpr32fc *dst, const zprsFFTSpec_C_32fc *plan,
                                          uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_CToC_32fc_I(zpr32fc *data, const zprsFFTSpec_C_32fc *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_CToC_32f(const float *src_re, const float *src_im, float *dst_re,
                                         float *dst_im, const zprsFFTSpec_C_32f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_CToC_32f_I(float *data_re, float *data_im, const zprsFFTSpec_C_32f *plan,
                                           uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_CToC_64fc(const zpr64fc *src, zpr64fc *dst, const zprsFFTSpec_C_64fc *plan,
                                          uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_CToC_64fc_I(zpr64fc *data, const zprsFFTSpec_C_64fc *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_CToC_64f(const double *src_re, const double *src_im, double *dst_re,
                                         double *dst_im, const zprsFFTSpec_C_64f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_CToC_64f_I(double *data_re, double *data_im, const zprsFFTSpec_C_64f *plan,
                                           uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_CToC_64fc(const zpr64fc *src, zpr64fc *dst, const zprsFFTSpec_C_64fc *plan,
                                          uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_CToC_64fc_I(zpr64fc *data, const zprsFFTSpec_C_64fc *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_CToC_64f(const double *src_re, const double *src_im, double *dst_re,
                                         double *dst_im, const zprsFFTSpec_C_64f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_CToC_64f_I(double *data_re, double *data_im, const zprsFFTSpec_C_64f *plan,
                                           uint8_t *work);
QKR_API zprStatus zprsFFTFwd_CToC_32fc(const zpr32fc *src, zpr32fc *dst, const zprsFFTSpec_C_32fc *plan,
                                       uint8_t *work);
QKR_API zprStatus zprsFFTFwd_CToC_32fc_I(zpr32fc *data, const zprsFFTSpec_C_32fc *plan, uint8_t *work);
QKR_API zprStatus zprsFFTFwd_CToC_32f(const float *src_re, const float *src_im, float *dst_re, float *dst_im,
                                      const zprsFFTSpec_C_32f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTFwd_CToC_32f_I(float *data_re, float *data_im, const zprsFFTSpec_C_32f *plan,
                                        uint8_t *work);
QKR_API zprStatus zprsFFTInv_CToC_32fc(const zpr32fc *src, zpr32fc *dst, const zprsFFTSpec_C_32fc *plan,
                                       uint8_t *work);
QKR_API zprStatus zprsFFTInv_CToC_32fc_I(zpr32fc *data, const zprsFFTSpec_C_32fc *plan, uint8_t *work);
QKR_API zprStatus zprsFFTInv_CToC_32f(const float *src_re, const float *src_im, float *dst_re, float *dst_im,
                                      const zprsFFTSpec_C_32f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTInv_CToC_32f_I(float *data_re, float *data_im, const zprsFFTSpec_C_32f *plan,
                                        uint8_t *work);
QKR_API zprStatus zprsFFTFwd_CToC_64fc(const zpr64fc *src, zpr64fc *dst, const zprsFFTSpec_C_64fc *plan,
                                       uint8_t *work);
QKR_API zprStatus zprsFFTFwd_CToC_64fc_I(zpr64fc *data, const zprsFFTSpec_C_64fc *plan, uint8_t *work);
QKR_API zprStatus zprsFFTFwd_CToC_64f(const double *src_re, const double *src_im, double *dst_re,
                                      double *dst_im, const zprsFFTSpec_C_64f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTFwd_CToC_64f_I(double *data_re, double *data_im, const zprsFFTSpec_C_64f *plan,
                                        uint8_t *work);
QKR_API zprStatus zprsFFTInv_CToC_64fc(const zpr64fc *src, zpr64fc *dst, const zprsFFTSpec_C_64fc *plan,
                                       uint8_t *work);
QKR_API zprStatus zprsFFTInv_CToC_64fc_I(zpr64fc *data, const zprsFFTSpec_C_64fc *plan, uint8_t *work);
QKR_API zprStatus zprsFFTInv_CToC_64f(const double *src_re, const double *src_im, double *dst_re,
                                      double *dst_im, const zprsFFTSpec_C_64f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTInv_CToC_64f_I(double *data_re, double *data_im, const zprsFFTSpec_C_64f *plan,
                                        uint8_t *work);
/** @} */

/** @name Forward transforms of real signals
 * The spectrum X of a real signal has X[N-k] equal to the conjugate of X[k], so that it is stored up to the
 * middle H = N/2, where X[0] and X[H] are real, in one of three formats. With R and I the parts of X:
 *
 * | format | numbers | order                                                               |
 * |--------|---------|---------------------------------------------------------------------|
 * | Perm   | N       | R[0], R[H], R[1], I[1], R[2], I[2], ... R[H-1], I[H-1]              |
 * | Pack   | N       | R[0], R[1], I[1], R[2], I[2], ... R[H-1], I[H-1], R[H]              |
 * | CCS    | N + 2   | R[0], 0, R[1], I[1], ... R[H-1], I[H-1], R[H], 0                    |
 *
 * A signal of one number gives R[0] alone, in CCS format R[0] and 0. Perm is the fastest.
 * @{ */
QKR_API zprStatus w6_zprsFFTFwd_RToPerm_32f(const float *src, float *dst, const zprsFFTSpec_R_32f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_RToPerm_32f_I(float *data, const zprsFFTSpec_R_32f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_RToPack_32f(const float *src, float *dst, const zprsFFTSpec_R_32f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_RToPack_32f_I(float *data, const zprsFFTSpec_R_32f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_RToCCS_32f(const float *src, float *dst, const zprsFFTSpec_R_32f *plan,
                                           uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_RToCCS_32f_I(float *data, const zprsFFTSpec_R_32f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_RToPerm_64f(const double *src, double *dst, const zprsFFTSpec_R_64f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_RToPerm_64f_I(double *data, const zprsFFTSpec_R_64f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_RToPack_64f(const double *src, double *dst, const zprsFFTSpec_R_64f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_RToPack_64f_I(double *data, const zprsFFTSpec_R_64f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_RToCCS_64f(const double *src, double *dst, const zprsFFTSpec_R_64f *plan,
                                           uint8_t *work);
QKR_API zprStatus w6_zprsFFTFwd_RToCCS_64f_I(double *data, const zprsFFTSpec_R_64f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTFwd_RToPerm_32f(const float *src, float *dst, const zprsFFTSpec_R_32f *plan,
                                         uint8_t *work);
QKR_API zprStatus zprsFFTFwd_RToPerm_32f_I(float *data, const zprsFFTSpec_R_32f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTFwd_RToPack_32f(const float *src, float *dst, const zprsFFTSpec_R_32f *plan,
                                         uint8_t *work);
QKR_API zprStatus zprsFFTFwd_RToPack_32f_I(float *data, const zprsFFTSpec_R_32f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTFwd_RToCCS_32f(const float *src, float *dst, const zprsFFTSpec_R_32f *plan,
                                        uint8_t *work);
QKR_API zprStatus zprsFFTFwd_RToCCS_32f_I(float *data, const zprsFFTSpec_R_32f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTFwd_RToPerm_64f(const double *src, double *dst, const zprsFFTSpec_R_64f *plan,
                                         uint8_t *work);
QKR_API zprStatus zprsFFTFwd_RToPerm_64f_I(double *data, const zprsFFTSpec_R_64f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTFwd_RToPack_64f(const double *src, double *dst, const zprsFFTSpec_R_64f *plan,
                                         uint8_t *work);
QKR_API zprStatus zprsFFTFwd_RToPack_64f_I(double *data, const zprsFFTSpec_R_64f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTFwd_RToCCS_64f(const double *src, double *dst, const zprsFFTSpec_R_64f *plan,
                                        uint8_t *work);
QKR_API zprStatus zprsFFTFwd_RToCCS_64f_I(double *data, const zprsFFTSpec_R_64f *plan, uint8_t *work);
/** @} */

/** @name Inverse transforms to real signals
 * From the formats of the forward transforms; the zeros of the CCS format are not read.
 * @{ */
QKR_API zprStatus w6_zprsFFTInv_PermToR_32f(const float *src, float *dst, const zprsFFTSpec_R_32f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_PermToR_32f_I(float *data, const zprsFFTSpec_R_32f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_PackToR_32f(const float *src, float *dst, const zprsFFTSpec_R_32f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_PackToR_32f_I(float *data, const zprsFFTSpec_R_32f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_CCSToR_32f(const float *src, float *dst, const zprsFFTSpec_R_32f *plan,
                                           uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_CCSToR_32f_I(float *data, const zprsFFTSpec_R_32f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_PermToR_64f(const double *src, double *dst, const zprsFFTSpec_R_64f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_PermToR_64f_I(double *data, const zprsFFTSpec_R_64f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_PackToR_64f(const double *src, double *dst, const zprsFFTSpec_R_64f *plan,
                                            uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_PackToR_64f_I(double *data, const zprsFFTSpec_R_64f *plan, uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_CCSToR_64f(const double *src, double *dst, const zprsFFTSpec_R_64f *plan,
                                           uint8_t *work);
QKR_API zprStatus w6_zprsFFTInv_CCSToR_64f_I(double *data, const zprsFFTSpec_R_64f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTInv_PermToR_32f(const float *src, float *dst, const zprsFFTSpec_R_32f *plan,
                                         uint8_t *work);
QKR_API zprStatus zprsFFTInv_PermToR_32f_I(float *data, const zprsFFTSpec_R_32f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTInv_PackToR_32f(const float *src, float *dst, const zprsFFTSpec_R_32f *plan,
                                         uint8_t *work);
QKR_API zprStatus zprsFFTInv_PackToR_32f_I(float *data, const zprsFFTSpec_R_32f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTInv_CCSToR_32f(const float *src, float *dst, const zprsFFTSpec_R_32f *plan,
                                        uint8_t *work);
QKR_API zprStatus zprsFFTInv_CCSToR_32f_I(float *data, const zprsFFTSpec_R_32f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTInv_PermToR_64f(const double *src, double *dst, const zprsFFTSpec_R_64f *plan,
                                         uint8_t *work);
QKR_API zprStatus zprsFFTInv_PermToR_64f_I(double *data, const zprsFFTSpec_R_64f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTInv_PackToR_64f(const double *src, double *dst, const zprsFFTSpec_R_64f *plan,
                                         uint8_t *work);
QKR_API zprStatus zprsFFTInv_PackToR_64f_I(double *data, const zprsFFTSpec_R_64f *plan, uint8_t *work);
QKR_API zprStatus zprsFFTInv_CCSToR_64f(const double *src, double *dst, const zprsFFTSpec_R_64f *plan,
                                        uint8_t *work);
QKR_API zprStatus zprsFFTInv_CCSToR_64f_I(double *data, const zprsFFTSpec_R_64f *plan, uint8_t *work);
/** @} */

/**
 * @name Bit reversal
 * Element i of an array of n = 2^order elements of 4 or 8 bytes goes to the place whose number has the
 * `order` bits of i in reverse. `BitRev1` works in place, `BitRev2` from one array to another, which must not
 * overlap it; no alignment is asked for, and nothing is checked. The transforms do this themselves.
 *
 * `table` is the list of pairs for n: with rev the reversal of order - 2 bits, it holds 4 j and 4 rev(j) for
 * each j below n / 4 with j < rev(j); then 0; then, up to element n / 4 - 1, the numbers 4 j above 0 with
 * j = rev(j), in descending order; and 0 in element n / 4. `BitRev1` of n below 4 and `BitRev2` do not
 * read it.
 * @{
 */
QKR_API void w6_zprs_BitRev1_4(void *data, int32_t n, const uint32_t *table);
QKR_API void w6_zprs_BitRev1_8(void *data, int32_t n, const uint32_t *table);
QKR_API void w6_zprs_BitRev2_4(const void *src, void *dst, int32_t n, const uint32_t *table);
QKR_API void w6_zprs_BitRev2_8(const void *src, void *dst, int32_t n, const uint32_t *table);
/** @} */

QKR_END_DECLS

#endif
