/** @file
 * Arrays of the signal transforms: copy, fill and convert.
 *
 * `len` counts elements. Every function returns ::zprStsNullPtrErr if a pointer is null, else ::zprStsSizeErr
 * if `len` is less than 1, and writes nothing then; else ::zprStsNoErr. Arrays may have any alignment. */
#ifndef QKR_SIGFFT_ARRAYS_H
#define QKR_SIGFFT_ARRAYS_H

#include <qkr/sigfft.h>

QKR_BEGIN_DECLS

/** @name Copy
 * Copies `len` elements from `src` to `dst`, which must not overlap.
 * @{ */
QKR_API zprStatus w6_zprsCopy_8u(const uint8_t *src, uint8_t *dst, int32_t len);
QKR_API zprStatus w6_zprsCopy_16s(const int16_t *src, int16_t *dst, int32_t len);
QKR_API zprStatus w6_zprsCopy_16sc(const zpr16sc *src, zpr16sc *dst, int32_t len);
QKR_API zprStatus w6_zprsCopy_32s(const int32_t *src, int32_t *dst, int32_t len);
QKR_API zprStatus w6_zprsCopy_32sc(const zpr32sc *src, zpr32sc *dst, int32_t len);
QKR_API zprStatus w6_zprsCopy_32f(const float *src, float *dst, int32_t len);
QKR_API zprStatus w6_zprsCopy_32fc(const zpr32fc *src, zpr32fc *dst, int32_t len);
QKR_API zprStatus w6_zprsCopy_64s(const int64_t *src, int64_t *dst, int32_t len);
QKR_API zprStatus w6_zprsCopy_64sc(const zpr64sc *src, zpr64sc *dst, int32_t len);
QKR_API zprStatus w6_zprsCopy_64f(const double *src, double *dst, int32_t len);
QKR_API zprStatus w6_zprsCopy_64fc(const zpr64fc *src, zpr64fc *dst, int32_t len);
QKR_API zprStatus zprsCopy_8u(const uint8_t *src, uint8_t *dst, int32_t len);
QKR_API zprStatus zprsCopy_16s(const int16_t *src, int16_t *dst, int32_t len);
QKR_API zprStatus zprsCopy_16sc(const zpr16sc *src, zpr16sc *dst, int32_t len);
QKR_API zprStatus zprsCopy_32s(const int32_t *src, int32_t *dst, int32_t len);
QKR_API zprStatus zprsCopy_32sc(const zpr32sc *src, zpr32sc *dst, int32_t len);
QKR_API zprStatus zprsCopy_32f(const float *src, float *dst, int32_t len);
QKR_API zprStatus zprsCopy_32fc(const zpr32fc *src, zpr32fc *dst, int32_t len);
QKR_API zprStatus zprsCopy_64s(const int64_t *src, int64_t *dst, int32_t len);
QKR_API zprStatus zprsCopy_64sc(const zpr64sc *src, zpr64sc *dst, int32_t len);
QKR_API zprStatus zprsCopy_64f(const double *src, double *dst, int32_t len);
QKR_API zprStatus zprsCopy_64fc(const zpr64fc *src, zpr64fc *dst, int32_t len);
/** @} */

/** @name Zero
 * Sets `len` elements of `dst` to zero.
 * @{ */
QKR_API zprStatus w6_zprsZero_8u(uint8_t *dst, int32_t len);
QKR_API zprStatus w6_zprsZero_16s(int16_t *dst, int32_t len);
QKR_API zprStatus w6_zprsZero_16sc(zpr16sc *dst, int32_t len);
QKR_API zprStatus w6_zprsZero_32s(int32_t *dst, int32_t len);
QKR_API zprStatus w6_zprsZero_32sc(zpr32sc *dst, int32_t len);
QKR_API zprStatus w6_zprsZero_32f(float *dst, int32_t len);
QKR_API zprStatus w6_zprsZero_32fc(zpr32fc *dst, int32_t len);
QKR_API zprStatus w6_zprsZero_64s(int64_t *dst, int32_t len);
QKR_API zprStatus w6_zprsZero_64sc(zpr64sc *dst, int32_t len);
QKR_API zprStatus w6_zprsZero_64f(double *dst, int32_t len);
QKR_API zprStatus w6_zprsZero_64fc(zpr64fc *dst, int32_t len);
QKR_API zprStatus zprsZero_8u(uint8_t *dst, int32_t len);
QKR_API zprStatus zprsZero_16s(int16_t *dst, int32_t len);
QKR_API zprStatus zprsZero_16sc(zpr16sc *dst, int32_t len);
QKR_API zprStatus zprsZero_32s(int32_t *dst, int32_t len);
QKR_API zprStatus zprsZero_32sc(zpr32sc *dst, int32_t len);
QKR_API zprStatus zprsZero_32f(float *dst, int32_t len);
QKR_API zprStatus zprsZero_32fc(zpr32fc *dst, int32_t len);
QKR_API zprStatus zprsZero_64s(int64_t *dst, int32_t len);
QKR_API zprStatus zprsZero_64sc(zpr64sc *dst, int32_t len);
QKR_API zprStatus zprsZero_64f(double *dst, int32_t len);
QKR_API zprStatus zprsZero_64fc(zpr64fc *dst, int32_t len);
/** @} */

/** @name Set
 * Sets `len` elements of `dst` to `value`.
 * @{ */
QKR_API zprStatus w6_zprsSet_8u(uint8_t value, uint8_t *dst, int32_t len);
QKR_API zprStatus w6_zprsSet_16s(int16_t value, int16_t *dst, int32_t len);
QKR_API zprStatus w6_zprsSet_16sc(zpr16sc value, zpr16sc *dst, int32_t len);
QKR_API zprStatus w6_zprsSet_32s(int32_t value, int32_t *dst, int32_t len);
QKR_API zprStatus w6_zprsSet_32sc(zpr32sc value, zpr32sc *dst, int32_t len);
QKR_API zprStatus w6_zprsSet_32f(float value, float *dst, int32_t len);
QKR_API zprStatus w6_zprsSet_32fc(zpr32fc value, zpr32fc *dst, int32_t len);
QKR_API zprStatus w6_zprsSet_64s(int64_t value, int64_t *dst, int32_t len);
QKR_API zprStatus w6_zprsSet_64sc(zpr64sc value, zpr64sc *dst, int32_t len);
QKR_API zprStatus w6_zprsSet_64f(double value, double *dst, int32_t len);
QKR_API zprStatus w6_zprsSet_64fc(zpr64fc value, zpr64fc *dst, int32_t len);
QKR_API zprStatus zprsSet_8u(uint8_t value, uint8_t *dst, int32_t len);
QKR_API zprStatus zprsSet_16s(int16_t value, int16_t *dst, int32_t len);
QKR_API zprStatus zprsSet_16sc(zpr16sc value, zpr16sc *dst, int32_t len);
QKR_API zprStatus zprsSet_32s(int32_t value, int32_t *dst, int32_t len);
QKR_API zprStatus zprsSet_32sc(zpr32sc value, zpr32sc *dst, int32_t len);
QKR_API zprStatus zprsSet_32f(float value, float *dst, int32_t len);
QKR_API zprStatus zprsSet_32fc(zpr32fc value, zpr32fc *dst, int32_t len);
QKR_API zprStatus zprsSet_64s(int64_t value, int64_t *dst, int32_t len);
QKR_API zprStatus zprsSet_64sc(zpr64sc value, zpr64sc *dst, int32_t len);
QKR_API zprStatus zprsSet_64f(double value, double *dst, int32_t len);
QKR_API zprStatus zprsSet_64fc(zpr64fc value, zpr64fc *dst, int32_t len);
/** @} */

/** @name Conversion from integers
 * Floating-point numbers of the same value. Only 32-bit integers in single precision may need rounding, which
 * the processor's current rounding mode does.
 *
 * Arrays of a conversion must not overlap; where the elements of both have the same size, `dst` may be `src`.
 * This holds for all conversions.
 * @{ */
QKR_API zprStatus zprsConvert_8s32f(const int8_t *src, float *dst, int32_t len);
QKR_API zprStatus zprsConvert_8u32f(const uint8_t *src, float *dst, int32_t len);
QKR_API zprStatus zprsConvert_16s32f(const int16_t *src, float *dst, int32_t len);
QKR_API zprStatus zprsConvert_16u32f(const uint16_t *src, float *dst, int32_t len);
QKR_API zprStatus zprsConvert_32s32f(const int32_t *src, float *dst, int32_t len);
QKR_API zprStatus zprsConvert_32s64f(const int32_t *src, double *dst, int32_t len);
/** @} */

/** @name Conversion to integers
 * Integers of the value times 2 to the power `-scale`. `mode` 1 rounds to nearest, ties to even; any other
 * mode truncates. What is beyond the range of the integers becomes its nearest end, and a NaN the lower end.
 *
 * The value is multiplied by the power of two in its own precision (from 32f to 32s: in double precision), so
 * that a `scale` beyond the exponent range makes zeros or infinities of all values; for `16f` the product is
 * exact. Nearest is found by adding 0.5 in that precision, and so the number that follows 0.5 rounds to 0.
 * @{ */
QKR_API zprStatus zprsConvert_32f8s_Sfs(const float *src, int8_t *dst, int32_t len, uint32_t mode,
                                        int32_t scale);
QKR_API zprStatus zprsConvert_32f8u_Sfs(const float *src, uint8_t *dst, int32_t len, uint32_t mode,
                                        int32_t scale);
QKR_API zprStatus zprsConvert_32f16s_Sfs(const float *src, int16_t *dst, int32_t len, uint32_t mode,
                                         int32_t scale);
QKR_API zprStatus zprsConvert_32f16u_Sfs(const float *src, uint16_t *dst, int32_t len, uint32_t mode,
                                         int32_t scale);
QKR_API zprStatus zprsConvert_32f32s_Sfs(const float *src, int32_t *dst, int32_t len, uint32_t mode,
                                         int32_t scale);
QKR_API zprStatus zprsConvert_64f32s_Sfs(const double *src, int32_t *dst, int32_t len, uint32_t mode,
                                         int32_t scale);
QKR_API zprStatus zprsConvert_16f16s_Sfs(const uint16_t *src, int16_t *dst, int32_t len, uint32_t mode,
                                         int32_t scale);
/** @} */

/** @name Half precision
 * From and to IEEE binary16, carried in 16-bit words. `mode` 1 rounds to nearest, ties to even; any other
 * mode truncates toward zero. The wider format holds every value of the narrower one, NaNs with their
 * fractions.
 *
 * In half precision every NaN becomes 0x7DFF with its sign, and what is too large, up to the largest number,
 * becomes an infinity, also in truncation. Of the values that round to zero or to the least subnormal number,
 * half of that number, 2^-25, goes up.
 * @{ */
QKR_API zprStatus zprsConvert_16f32f(const uint16_t *src, float *dst, int32_t len);
QKR_API zprStatus zprsConvert_32f16f(const float *src, uint16_t *dst, int32_t len, uint32_t mode);
QKR_API zprStatus zprsConvert_16s16f(const int16_t *src, uint16_t *dst, int32_t len, uint32_t mode);
/** @} */

QKR_END_DECLS

#endif
