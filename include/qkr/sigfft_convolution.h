/** @file
 * Convolution of real sequences, and products of spectra.
 *
 * Results are the same bits on every processor, whatever the alignment. Every call makes what it needs and
 * shares nothing: any number of threads may call at the same time. */
#ifndef QKR_SIGFFT_CONVOLUTION_H
#define QKR_SIGFFT_CONVOLUTION_H

#include <qkr/sigfft.h>

QKR_BEGIN_DECLS

/** @name Linear convolution
 * dst[n] = sum over k of src1[k] src2[n - k], n from 0 to len1 + len2 - 2. `dst` has room for `len1 + len2 -
 * 1` numbers and overlaps neither source; the sources may be one array.
 *
 * With a samples in the longer sequence, b in the shorter and L = a + b - 1 results, the method is
 *
 * | lengths                   | method                                                             |
 * |---------------------------|--------------------------------------------------------------------|
 * | L < 150 or b < 32         | the sum itself, in the precision of the samples                    |
 * | otherwise, a < 3 b        | one transform of the power of two that is not below L              |
 * | otherwise                 | overlap-save, by transforms of the power of two from 4 b on        |
 *
 * The sum adds the terms of a result in ascending order of the shorter sequence's index, from +0 on; from
 * a = 4096 on the longer sequence is taken in parts of 4096 samples, and a result's terms part by part. An
 * infinity or a NaN reaches the results it has a term in. By transform it reaches all results of its block,
 * and the error is relative to the largest results of the block, not to each: about 1e-16 (single precision:
 * 1e-7) times the norms of the two sequences there.
 *
 * 16-bit integers are computed in single precision, multiplied by 2 to the power `-scale`, rounded to
 * nearest, ties to even, and saturated.
 *
 * @return zprStsNullPtrErr, zprStsSizeErr (a length less than 1, or results whose number no int32_t holds),
 * zprStsFftOrderErr (a transform of more than 2^30 points is needed), zprStsMemAllocErr. After the last two
 * `dst` may have been written in part. The sums of `32f` and `64f` allocate nothing.
 *
 * Source: T. G. Stockham, AFIPS Spring Joint Computer Conference (1966) 229; overlap-save: H. D. Helms, IEEE
 * Transactions on Audio and Electroacoustics 15 (1967) 85.
 * @{ */
QKR_API zprStatus zprsConv_32f(const float *src1, int32_t len1, const float *src2, int32_t len2, float *dst);
QKR_API zprStatus zprsConv_64f(const double *src1, int32_t len1, const double *src2, int32_t len2,
                               double *dst);
QKR_API zprStatus zprsConv_16s_Sfs(const int16_t *src1, int32_t len1, const int16_t *src2, int32_t len2,
                                   int16_t *dst, int32_t scale);
/** @} */

/** @name Cyclic convolution
 * dst[n] = sum over k of src1[k] src2[(n - k) mod N] of `N` = 8 real points, or of N = 4 points, real in
 * `src1` and complex in `src2` and `dst`. The terms are added from k = 0 on. `dst` may be `src1` or `src2`.
 * Pointers are not checked.
 *
 * The sums of 16-bit integers are taken in 32 bits, where they wrap; they are shifted right by `scale` with
 * their sign, or left by `-scale`, counts taken modulo 32, and then saturated.
 * @return zprStsNoErr
 * @{ */
QKR_API zprStatus zprsConvCyclic8x8_32f(const float *src1, const float *src2, float *dst);
QKR_API zprStatus zprsConvCyclic8x8_16s_Sfs(const int16_t *src1, const int16_t *src2, int16_t *dst,
                                            int32_t scale);
QKR_API zprStatus zprsConvCyclic4x4_32f32fc(const float *src1, const zpr32fc *src2, zpr32fc *dst);
/** @} */

/** @name Products of spectra
 * The product, frequency by frequency, of two spectra of real signals of length `len`, in the layouts of the
 * real transforms:
 *
 *     Perm, len even   R0 R(len/2)  R1 I1  R2 I2 ...
 *     Pack, len even   R0           R1 I1  R2 I2 ...  R(len/2)
 *     both, len odd    R0           R1 I1  R2 I2 ...
 *
 * `dst` may be `src1` or `src2`; the forms with `_I` multiply `src_dst` by `src`. The real numbers are
 * multiplied as such; `Conj` multiplies `src` by the complex conjugate of `src_dst`, which makes a
 * correlation of a convolution.
 *
 * 16-bit parts (real numbers among them): the sum of products times 2 to the power `-scale`, rounded down,
 * and saturated. In an imaginary part A.re B.im + A.im B.re the second product is left out if the first is
 * that of -32768 and -32768.
 *
 * @return zprStsNullPtrErr, zprStsSizeErr (`len` less than 1), in this order.
 * @{ */
QKR_API zprStatus zprsMulPerm_32f(const float *src1, const float *src2, float *dst, int32_t len);
QKR_API zprStatus zprsMulPerm_64f(const double *src1, const double *src2, double *dst, int32_t len);
QKR_API zprStatus zprsMulPerm_16s_Sfs(const int16_t *src1, const int16_t *src2, int16_t *dst, int32_t len,
                                      int32_t scale);
QKR_API zprStatus zprsMulPerm_32f_I(const float *src, float *src_dst, int32_t len);
QKR_API zprStatus zprsMulPerm_64f_I(const double *src, double *src_dst, int32_t len);
QKR_API zprStatus zprsMulPerm_16s_ISfs(const int16_t *src, int16_t *src_dst, int32_t len, int32_t scale);
QKR_API zprStatus zprsMulPack_32f(const float *src1, const float *src2, float *dst, int32_t len);
QKR_API zprStatus zprsMulPack_64f(const double *src1, const double *src2, double *dst, int32_t len);
QKR_API zprStatus zprsMulPack_16s_Sfs(const int16_t *src1, const int16_t *src2, int16_t *dst, int32_t len,
                                      int32_t scale);
QKR_API zprStatus zprsMulPack_32f_I(const float *src, float *src_dst, int32_t len);
QKR_API zprStatus zprsMulPack_64f_I(const double *src, double *src_dst, int32_t len);
QKR_API zprStatus zprsMulPack_16s_ISfs(const int16_t *src, int16_t *src_dst, int32_t len, int32_t scale);
QKR_API zprStatus zprsMulPackConj_32f_I(const float *src, float *src_dst, int32_t len);
QKR_API zprStatus zprsMulPackConj_64f_I(const double *src, double *src_dst, int32_t len);
/** @} */

QKR_END_DECLS

#endif
