/** @file
 * Inverse circular and inverse hyperbolic vector functions. What vecmath.h tells of all functions holds here.
 * Zeros and subnormal numbers keep their sign and all their bits. */
#ifndef QKR_VECMATH_INVERSE_H
#define QKR_VECMATH_INVERSE_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

/** @name Atan
 * The arc tangent, r[i] = arctan(a[i]) in radians, from -pi/2 to pi/2.
 *
 * | a[i]       | r[i]         | status |
 * |------------|--------------|--------|
 * | NaN        | NaN          | none   |
 * | +inf, -inf | +pi/2, -pi/2 | none   |
 * | +0, -0     | a[i]         | none   |
 *
 * Method: table and short polynomial, S. Gal, Lecture Notes in Computer Science 235 (1986) 1.
 *
 * Largest error: 0.62 ulp (float 0.51). */
/**@{*/
QKR_API void _vxmdAtan_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdAtan_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsAtan_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsAtan_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Atan2
 * The angle of the point with abscissa b[i] and ordinate a[i], in radians, from -pi to pi.
 *
 * No status is set. r[i] has the sign of a[i], and a zero result or a zero of an input counts with its sign:
 *
 * | a[i]           | b[i]                        | r[i]    |
 * |----------------|-----------------------------|---------|
 * | NaN            | any                         | NaN     |
 * | any            | NaN                         | NaN     |
 * | +-0            | +0 or positive              | +-0     |
 * | +-0            | -0 or negative              | +-pi    |
 * | not zero       | +-0                         | +-pi/2  |
 * | finite         | +inf                        | +-0     |
 * | finite         | -inf                        | +-pi    |
 * | +-inf          | finite                      | +-pi/2  |
 * | +-inf          | +inf                        | +-pi/4  |
 * | +-inf          | -inf                        | +-3pi/4 |
 *
 * Method: as Atan.
 *
 * Largest error: 0.60 ulp (float 0.52). */
/**@{*/
QKR_API void _vxmdAtan2_HA(int32_t n, const double *a, const double *b, double *r);
QKR_API void _vxmdAtan2_50(int32_t n, const double *a, const double *b, double *r);
QKR_API void _vxmsAtan2_HA(int32_t n, const float *a, const float *b, float *r);
QKR_API void _vxmsAtan2_21(int32_t n, const float *a, const float *b, float *r);
/**@}*/

/** @name Asin
 * The arc sine, r[i] = arcsin(a[i]) in radians, from -pi/2 to pi/2.
 *
 * | a[i]                        | r[i] | status    |
 * |-----------------------------|------|-----------|
 * | NaN                         | NaN  | none      |
 * | +0, -0                      | a[i] | none      |
 * | above 1, below -1, infinite | NaN  | 1, domain |
 *
 * Method: W. J. Cody and W. Waite, Software Manual for the Elementary Functions, 1980, chapter 10.
 *
 * Largest error: 0.61 ulp (float 0.53). */
/**@{*/
QKR_API void _vxmdAsin_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdAsin_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsAsin_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsAsin_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Acos
 * The arc cosine, r[i] = arccos(a[i]) in radians, from 0 to pi.
 *
 * | a[i]                        | r[i] | status    |
 * |-----------------------------|------|-----------|
 * | NaN                         | NaN  | none      |
 * | 1                           | +0   | none      |
 * | above 1, below -1, infinite | NaN  | 1, domain |
 *
 * Method: as Asin.
 *
 * Largest error: 0.59 ulp (float 0.53). */
/**@{*/
QKR_API void _vxmdAcos_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdAcos_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsAcos_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsAcos_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Acosh
 * The inverse hyperbolic cosine, r[i] = arcosh(a[i]), not negative.
 *
 * | a[i]                   | r[i] | status    |
 * |------------------------|------|-----------|
 * | NaN                    | NaN  | none      |
 * | +inf                   | +inf | none      |
 * | 1                      | +0   | none      |
 * | below 1, -inf included | NaN  | 1, domain |
 *
 * Method: logarithm of 1 + u with a small u, W. Kahan, Branch cuts for complex elementary functions (1987).
 *
 * Largest error: 0.63 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmdAcosh_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdAcosh_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsAcosh_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsAcosh_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Asinh
 * The inverse hyperbolic sine, r[i] = arsinh(a[i]).
 *
 * | a[i]               | r[i] | status |
 * |--------------------|------|--------|
 * | NaN                | NaN  | none   |
 * | +inf, -inf, +0, -0 | a[i] | none   |
 *
 * Method: as Acosh.
 *
 * Largest error: 0.60 ulp (float 0.503). */
/**@{*/
QKR_API void _vxmdAsinh_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdAsinh_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsAsinh_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsAsinh_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Atanh
 * The inverse hyperbolic tangent, r[i] = artanh(a[i]).
 *
 * | a[i]                        | r[i]       | status         |
 * |-----------------------------|------------|----------------|
 * | NaN                         | NaN        | none           |
 * | +0, -0                      | a[i]       | none           |
 * | 1, -1                       | +inf, -inf | 2, singularity |
 * | above 1, below -1, infinite | NaN        | 1, domain      |
 *
 * Method: as Acosh.
 *
 * Largest error: 0.60 ulp (float 0.503). */
/**@{*/
QKR_API void _vxmdAtanh_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdAtanh_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsAtanh_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsAtanh_21(int32_t n, const float *a, float *r);
/**@}*/

QKR_END_DECLS

#endif
