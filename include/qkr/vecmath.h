/** @file
 * Vector math: elementary functions over whole arrays, with a per-thread error policy.
 *
 * Common to all functions here, unless told otherwise:
 * - `n` comes first, the number of elements; 0 or a negative number does nothing. Inputs follow, then results: plain
 *   pointers to `n` elements one behind the other, of any alignment, not null.
 * - A result vector may be an input vector; vectors may not overlap otherwise.
 * - `_vxmd...` works on doubles, `_vxms...` on floats. `..._HA` is the function; `..._50` (double) and `..._21`
 *   (float) are other names of it. Functions without such an ending are exact.
 * - The bits of a result do not depend on the vector width of the processor, on the position in the vector, on
 *   alignment or on `n`.
 * - Functions return nothing. An element with an error gets the result told here, then the thread's status word is
 *   set and its error policy is carried out (see vecmath_control.h); the other elements are not affected.
 * - Functions that approximate run with rounding to nearest and with subnormal numbers, whatever the caller has set
 *   in MXCSR, and restore that.
 * - Measured largest errors stand in docs/accuracy.md, made by `./dev accuracy`. */
#ifndef QKR_VECMATH_H
#define QKR_VECMATH_H

#include <qkr/api.h>
#include <qkr/vecmath_control.h>
#include <qkr/vecmath_exact.h>
#include <qkr/vecmath_inverse.h>

QKR_BEGIN_DECLS

/** @name Exp
 * The exponential function, r[i] = e^a[i].
 *
 * | a[i]                                     | r[i]              | status        |
 * |------------------------------------------|-------------------|---------------|
 * | NaN                                      | NaN               | none          |
 * | +inf, -inf                               | +inf, +0          | none          |
 * | above 709.78 (float 88.72)               | +inf              | 3, overflow   |
 * | below -708.396 (float -87.336)           | subnormal or zero | 4, underflow  |
 *
 * A double NaN gives the NaN of all ones. Floats from -87.3365 down to the smallest normal result also report 4.
 * Method: P. T. P. Tang, ACM Transactions on Mathematical Software 15 (1989) 144. */
/**@{*/
QKR_API void _vxmdExp_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdExp_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsExp_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsExp_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Ln
 * The natural logarithm, r[i] = ln(a[i]).
 *
 * | a[i]                     | r[i]     | status         |
 * |--------------------------|----------|----------------|
 * | NaN                      | a[i]     | none           |
 * | +inf                     | +inf     | none           |
 * | +0, -0                   | -inf     | 2, singularity |
 * | negative, -inf included  | NaN      | 1, domain      |
 *
 * Method: P. T. P. Tang, ACM Transactions on Mathematical Software 16 (1990) 378. */
/**@{*/
QKR_API void _vxmdLn_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdLn_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsLn_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsLn_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Log10
 * The common logarithm, r[i] = log10(a[i]).
 *
 * | a[i]                     | r[i]     | status         |
 * |--------------------------|----------|----------------|
 * | NaN                      | a[i]     | none           |
 * | +inf                     | +inf     | none           |
 * | +0, -0                   | -inf     | 2, singularity |
 * | negative, -inf included  | NaN      | 1, domain      |
 *
 * Method: P. T. P. Tang, ACM Transactions on Mathematical Software 16 (1990) 378. */
/**@{*/
QKR_API void _vxmdLog10_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdLog10_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsLog10_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsLog10_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Sqrt
 * The square root, r[i] = sqrt(a[i]).
 *
 * | a[i]                     | r[i] | status    |
 * |--------------------------|------|-----------|
 * | NaN                      | NaN  | none      |
 * | +inf, +0, -0             | a[i] | none      |
 * | negative, -inf included  | NaN  | 1, domain |
 *
 * Starts from the processor's approximate reciprocal square root, whose bits differ between makers of processors: the
 * last bit of a result may differ between them, though not between vector widths. Method: Taylor series of
 * (1 + e)^(-1/2). */
/**@{*/
QKR_API void _vxmdSqrt_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdSqrt_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsSqrt_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsSqrt_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Div
 * Division, r[i] = a[i] / b[i], correctly rounded in the caller's rounding mode.
 *
 * A zero divisor is reported as status 2, also for 0 / 0, after the quotient is stored; in double not where a[i] is
 * infinite or NaN. With denormals-are-zero set, a subnormal double divisor counts as zero. */
/**@{*/
QKR_API void _vxmdDiv_HA(int32_t n, const double *a, const double *b, double *r);
QKR_API void _vxmdDiv_50(int32_t n, const double *a, const double *b, double *r);
QKR_API void _vxmsDiv_HA(int32_t n, const float *a, const float *b, float *r);
QKR_API void _vxmsDiv_21(int32_t n, const float *a, const float *b, float *r);
/**@}*/

/** @name Inv
 * Reciprocal, r[i] = 1 / a[i], correctly rounded in the caller's rounding mode.
 *
 * A zero of either sign is reported as status 2; r[i] is the infinity of that sign. An overflowing reciprocal of a
 * subnormal number is not reported. */
/**@{*/
QKR_API void _vxmdInv_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdInv_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsInv_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsInv_21(int32_t n, const float *a, float *r);
/**@}*/

QKR_END_DECLS

#endif
