/** @file
 * Vector math: elementary functions over whole arrays, with a per-thread error policy.
 *
 * Common to all functions here, unless told otherwise:
 * - `n` comes first, the number of elements; 0 or a negative number does nothing. Inputs follow, then
 * results: plain pointers to `n` elements one behind the other, of any alignment, not null.
 * - A result vector may be an input vector; vectors may not overlap otherwise.
 * - `_vxmd...` works on doubles, `_vxms...` on floats. `..._HA` is the function; `..._50` (double) and
 * `..._21` (float) are other names of it. Functions without such an ending are exact.
 * - The bits of a result do not depend on the vector width of the processor, on the position in the vector,
 * on alignment or on `n`.
 * - Functions return nothing. An element with an error gets the result told here, then the thread's status
 * word is set and its error policy is carried out (see vecmath_control.h); the other elements are not
 * affected.
 * - Functions that approximate run with rounding to nearest and with subnormal numbers, whatever the caller
 * has set in MXCSR, and restore that.
 * - Measured largest errors stand in docs/accuracy.md, made by `./dev accuracy`. */
#ifndef QKR_VECMATH_H
#define QKR_VECMATH_H

#include <qkr/api.h>
#include <qkr/vecmath_complex.h>
#include <qkr/vecmath_control.h>
#include <qkr/vecmath_elements.h>
#include <qkr/vecmath_exact.h>
#include <qkr/vecmath_extended.h>
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
 * A double NaN gives the NaN of all ones. Floats from -87.3365 down to the smallest normal result also
 * report 4; from -103.279 down they give 0, though as far as -103.972 the smallest subnormal number is
 * nearer. Method: P. T. P. Tang, ACM Transactions on Mathematical Software 15 (1989) 144.
 *
 * Largest error: 0.54 ulp (float 0.574). */
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
 * Method: P. T. P. Tang, ACM Transactions on Mathematical Software 16 (1990) 378.
 *
 * Largest error: 0.60 ulp (float 0.567). */
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
 * Method: P. T. P. Tang, ACM Transactions on Mathematical Software 16 (1990) 378.
 *
 * Largest error: 0.60 ulp (float 0.75). */
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
 * Correctly rounded: the processor's own square root. */
/**@{*/
QKR_API void _vxmdSqrt_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdSqrt_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsSqrt_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsSqrt_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Div
 * Division, r[i] = a[i] / b[i], correctly rounded in the caller's rounding mode.
 *
 * A zero divisor is reported as status 2, also for 0 / 0, after the quotient is stored; in double not where
 * a[i] is infinite or NaN. With denormals-are-zero set, a subnormal double divisor counts as zero. */
/**@{*/
QKR_API void _vxmdDiv_HA(int32_t n, const double *a, const double *b, double *r);
QKR_API void _vxmdDiv_50(int32_t n, const double *a, const double *b, double *r);
QKR_API void _vxmsDiv_HA(int32_t n, const float *a, const float *b, float *r);
QKR_API void _vxmsDiv_21(int32_t n, const float *a, const float *b, float *r);
/**@}*/

/** @name Inv
 * Reciprocal, r[i] = 1 / a[i], correctly rounded in the caller's rounding mode.
 *
 * A zero of either sign is reported as status 2; r[i] is the infinity of that sign. An overflowing reciprocal
 * of a subnormal number is not reported. */
/**@{*/
QKR_API void _vxmdInv_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdInv_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsInv_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsInv_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Sin
 * The sine of a[i] radians.
 *
 * An infinity gives NaN and status 1, reported under the short name "dSin_HA" ("sSin_HA"). A NaN gives NaN
 * and no status. Finite arguments of any size keep full accuracy: large ones are reduced with as many bits of
 * 4/pi as they need. A double zero of either sign gives +0.
 *
 * Method: table of the sine and its slope on a regular grid, short polynomials between (S. Gal and B.
 * Bachelis, ACM Transactions on Mathematical Software 17 (1991) 26); float: reduction modulo pi and a minimax
 * polynomial. Large arguments: M. Payne and R. Hanek, ACM SIGNUM Newsletter 18 (1983) 19.
 *
 * Largest error: 0.54 ulp (float 0.802). */
/**@{*/
QKR_API void _vxmdSin_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdSin_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsSin_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsSin_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Cos
 * The cosine of a[i] radians.
 *
 * An infinity gives NaN and status 1, reported under the short name "dCos_HA" ("sCos_HA"). A NaN gives NaN
 * and no status. Finite arguments of any size keep full accuracy: large ones are reduced with as many bits of
 * 4/pi as they need. A zero gives exactly 1. For 13 floats between 2736 and 9972 the results of a and -a
 * differ in the last bit.
 *
 * Method: as Sin, a quarter turn on.
 *
 * Largest error: 0.545 ulp (float 0.802). */
/**@{*/
QKR_API void _vxmdCos_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdCos_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsCos_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsCos_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name SinCos
 * Sine in r1[i] and cosine in r2[i] of a[i] radians; r1 or r2 may be a, but r1 is not r2.
 *
 * An infinity gives NaN and status 1, reported under the short name "dSinCos_HA" ("sSinCos_HA"). A NaN gives
 * NaN and no status. Finite arguments of any size keep full accuracy: large ones are reduced with as many
 * bits of 4/pi as they need. Both results of an infinity are NaN, reported once.
 *
 * Method: as Sin, on a finer grid, with one reduction for both; float: reduction modulo pi/2 and two minimax
 * polynomials.
 *
 * Largest error: 0.56 ulp (float 0.563). */
/**@{*/
QKR_API void _vxmdSinCos_HA(int32_t n, const double *a, double *r1, double *r2);
QKR_API void _vxmdSinCos_50(int32_t n, const double *a, double *r1, double *r2);
QKR_API void _vxmsSinCos_HA(int32_t n, const float *a, float *r1, float *r2);
QKR_API void _vxmsSinCos_21(int32_t n, const float *a, float *r1, float *r2);
/**@}*/

/** @name Tan
 * The tangent of a[i] radians.
 *
 * An infinity gives NaN and status 1, reported under the short name "dTan_HA" ("sTan_HA"). A NaN gives NaN
 * and no status. Finite arguments of any size keep full accuracy: large ones are reduced with as many bits of
 * 4/pi as they need. A zero keeps its sign.
 *
 * Method: table of polynomials for the tangent less its pole on a regular grid (P. T. P. Tang, 10th IEEE
 * Symposium on Computer Arithmetic (1991) 232); float: reduction modulo pi/2 and a rational function. Large
 * arguments as for Sin.
 *
 * Largest error: 0.70 ulp (float 0.936). */
/**@{*/
QKR_API void _vxmdTan_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdTan_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsTan_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsTan_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name InvSqrt
 * The reciprocal square root, r[i] = 1 / sqrt(a[i]).
 *
 * | a[i]                     | r[i]       | status         |
 * |--------------------------|------------|----------------|
 * | NaN                      | NaN        | none           |
 * | +inf                     | +0         | none           |
 * | +0, -0                   | +inf, -inf | 2, singularity |
 * | negative, -inf included  | NaN        | 1, domain      |
 *
 * Method: guess from the bit pattern (J. F. Blinn, 1997), Householder step, binomial series on an exact
 * residual.
 *
 * Largest error: 0.501 ulp (float 0.506). */
/**@{*/
QKR_API void _vxmdInvSqrt_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdInvSqrt_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsInvSqrt_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsInvSqrt_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Cbrt
 * The cube root. Zeros, infinities and NaNs give themselves; nothing is reported. Method as for InvSqrt.
 *
 * Largest error: 0.55 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmdCbrt_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdCbrt_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsCbrt_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsCbrt_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name InvCbrt
 * The reciprocal cube root. A zero gives the infinity of its sign and status 2; an infinity gives the zero of
 * its sign; a NaN gives NaN. Method as for InvSqrt.
 *
 * Largest error: 0.515 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmdInvCbrt_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdInvCbrt_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsInvCbrt_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsInvCbrt_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Pow, Powx
 * Powers: Pow, r[i] = a[i]^b[i]; Powx, r[i] = a[i]^b with one exponent b for all.
 *
 * | a[i]                 | b                        | r[i]                       | status         |
 * |----------------------|--------------------------|----------------------------|----------------|
 * | anything, NaN too    | +0, -0                   | 1                          | none           |
 * | 1                    | anything, NaN too        | 1                          | none           |
 * | NaN                  | else                     | NaN                        | none           |
 * | else                 | NaN                      | NaN                        | none           |
 * | +0, -0               | negative, finite         | +inf; -inf of -0 and odd b | 2, singularity |
 * | +0, -0               | positive, or an infinity | 0 or +inf, as the limit    | none           |
 * | -1                   | +inf, -inf               | 1                          | none           |
 * | finite, negative     | finite, not an integer   | NaN                        | 1, domain      |
 * | an infinity          | or b is an infinity      | 0 or an infinity           | none           |
 * | finite, not 0        | result too large         | an infinity                | 3, overflow    |
 * | finite, not 0        | result below the normals | subnormal or zero          | 4, underflow   |
 *
 * The sign of the result is that of a[i] where b is an odd integer, else positive. Method: logarithm and
 * product in double-double arithmetic, by table and polynomial; after P. T. P. Tang (1990, 1989) and T. J.
 * Dekker (1971).
 *
 * Largest error: 0.55 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmdPow_HA(int32_t n, const double *a, const double *b, double *r);
QKR_API void _vxmdPow_50(int32_t n, const double *a, const double *b, double *r);
QKR_API void _vxmdPowx_HA(int32_t n, const double *a, double b, double *r);
QKR_API void _vxmdPowx_50(int32_t n, const double *a, double b, double *r);
QKR_API void _vxmsPow_HA(int32_t n, const float *a, const float *b, float *r);
QKR_API void _vxmsPow_21(int32_t n, const float *a, const float *b, float *r);
QKR_API void _vxmsPowx_HA(int32_t n, const float *a, float b, float *r);
QKR_API void _vxmsPowx_21(int32_t n, const float *a, float b, float *r);
/**@}*/

/** @name Erf
 * The error function, 2/sqrt(pi) times the integral of e^(-t^2) from 0 to a[i]. Zeros keep their sign,
 * infinities give 1 with their sign, NaN gives NaN; nothing is reported.
 *
 * Method: table of short polynomials (P. T. P. Tang, IEEE Symposium on Computer Arithmetic 10 (1991) 232).
 *
 * Largest error: 0.58 ulp (float 0.508). */
/**@{*/
QKR_API void _vxmdErf_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdErf_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsErf_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsErf_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Erfc
 * The complementary error function, 1 - erf(a[i]), with full relative accuracy also where it is small.
 *
 * | a[i]                         | r[i]              | status       |
 * |------------------------------|-------------------|--------------|
 * | NaN                          | NaN               | none         |
 * | +inf, -inf                   | +0, 2             | none         |
 * | above 26.543 (float 9.194)   | subnormal or zero | 4, underflow |
 *
 * Method: e^(-x^2) times a function that changes slowly (W. J. Cody, Mathematics of Computation 23 (1969)
 * 631), both by tables of short polynomials (P. T. P. Tang, 1991).
 *
 * Largest error: 0.56 ulp (float 0.513). */
/**@{*/
QKR_API void _vxmdErfc_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdErfc_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsErfc_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsErfc_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name ErfInv
 * The inverse of the error function: erf(r[i]) = a[i].
 *
 * | a[i]                       | r[i]        | status         |
 * |----------------------------|-------------|----------------|
 * | NaN                        | NaN         | none           |
 * | +0, -0                     | a[i]        | none           |
 * | 1, -1                      | +inf, -inf  | 2, singularity |
 * | above 1 or below -1        | NaN         | 1, domain      |
 *
 * Method: a[i] times a function of -ln(1 - a[i]^2) (M. Giles, GPU Computing Gems 2, 2010), by a table of
 * short polynomials.
 *
 * Largest error: 0.53 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmdErfInv_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdErfInv_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsErfInv_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsErfInv_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Hypot
 * The hypotenuse, r[i] = sqrt(a[i]^2 + b[i]^2), without overflow or underflow on the way.
 *
 * An infinite a[i] or b[i] gives +inf, also beside a NaN; else a NaN gives NaN; neither is reported. An
 * overflow gives +inf and status 3. Method: exact squares (T. J. Dekker, 1971), root as in InvSqrt.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmdHypot_HA(int32_t n, const double *a, const double *b, double *r);
QKR_API void _vxmdHypot_50(int32_t n, const double *a, const double *b, double *r);
QKR_API void _vxmsHypot_HA(int32_t n, const float *a, const float *b, float *r);
QKR_API void _vxmsHypot_21(int32_t n, const float *a, const float *b, float *r);
/**@}*/

/** @name Cosh
 * The hyperbolic cosine, r[i] = cosh(a[i]).
 *
 * | a[i]                                    | r[i] | status      |
 * |-----------------------------------------|------|-------------|
 * | NaN                                     | NaN  | none        |
 * | +inf, -inf                              | +inf | none        |
 * | +0, -0                                  | 1    | none        |
 * | above 710.475 (float 89.416) in size    | +inf | 3, overflow |
 *
 * Method: addition theorem around a table of nodes, after P. T. P. Tang, 10th IEEE Symposium on Computer
 * Arithmetic (1991) 232.
 *
 * Largest error: 0.57 ulp (float 0.503). */
/**@{*/
QKR_API void _vxmdCosh_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdCosh_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsCosh_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsCosh_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Sinh
 * The hyperbolic sine, r[i] = sinh(a[i]).
 *
 * | a[i]                                    | r[i]                    | status      |
 * |-----------------------------------------|-------------------------|-------------|
 * | NaN                                     | NaN                     | none        |
 * | +inf, -inf, +0, -0                      | a[i]                    | none        |
 * | above 710.475 (float 89.416) in size    | infinity of a[i]'s sign | 3, overflow |
 *
 * Subnormal numbers give themselves. Method as for Cosh.
 *
 * Largest error: 0.565 ulp (float 0.504). */
/**@{*/
QKR_API void _vxmdSinh_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdSinh_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsSinh_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsSinh_21(int32_t n, const float *a, float *r);
/**@}*/

/** @name Tanh
 * The hyperbolic tangent, r[i] = tanh(a[i]). Zeros keep their sign, subnormal numbers give themselves,
 * infinities give 1 and -1, a NaN gives NaN; nothing is reported. Method as for Cosh.
 *
 * Largest error: 0.67 ulp (float 0.517). */
/**@{*/
QKR_API void _vxmdTanh_HA(int32_t n, const double *a, double *r);
QKR_API void _vxmdTanh_50(int32_t n, const double *a, double *r);
QKR_API void _vxmsTanh_HA(int32_t n, const float *a, float *r);
QKR_API void _vxmsTanh_21(int32_t n, const float *a, float *r);
/**@}*/

QKR_END_DECLS

#endif
