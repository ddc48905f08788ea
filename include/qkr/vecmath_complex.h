/** @file
 * Complex vector functions, over elements of two floats or two doubles. What vecmath.h tells of the form of
 * vector functions holds here; what differs:
 * - `_vxmc...` works on single-complex elements, `_vxmz...` on double-complex ones, real part first.
 * - No status is set and nothing is reported: floating-point events are the only signal. z = x + i y below.
 * - Values at infinities, NaNs and zeros are those of C99, Annex G; Exp, Cosh, Sinh, Tanh, Sqrt and Ln have
 *   choices of their own where a part is a NaN or Annex G leaves signs open.
 * - Errors are told in units in the last place of each part; results below the normal range stay within one
 *   subnormal spacing.
 * - Functions run with 64 bits of precision and round to nearest in the x87 unit and with rounding to nearest
 *   and subnormal numbers in SSE, whatever the caller has set, and restore both control words.
 * - `_vxmcfoo_scalar` takes the parts of one element and returns the function's value there. It relies on the
 *   caller's control words, as vecmath_extended.h says, and may differ from the vector function in the last
 *   bit of a part.
 *
 * Ordinary elements are computed in two doubles and rounded once; `c` Exp, Ln and Sqrt in double. */
#ifndef QKR_VECMATH_COMPLEX_H
#define QKR_VECMATH_COMPLEX_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

/** A double-complex element. */
typedef struct {
  double re, im;
} vxm64fc;

/** A single-complex element. */
typedef struct {
  float re, im;
} vxm32fc;

/** @name Complex Exp
 * The exponential function, e^z.
 *
 * Where e^x overflows or vanishes, both parts do, with the signs of cos y and sin y; of a real z the
 * imaginary part is that zero. Method: tables of 2^(j/64) and of the sine, short polynomials (P. T. P.
 * Tang, ACM TOMS 15 (1989) 144).
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzExp_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzExp_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcExp_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcExp_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmcexp_scalar(double x, double y);
QKR_API vxm32fc _vxm_cexpf_scalar(float x, float y);
/**@}*/

/** @name Complex Ln
 * The natural logarithm, ln |z| + i arg z, cut along the negative real axis.
 *
 * arg z is from -pi to pi, and a zero imaginary part counts with its sign. Ln(0) is -inf and raises
 * divide-by-zero. Near the unit circle |z|^2 - 1 is formed without loss (T. E. Hull, T. F. Fairgrieve and P.
 * T. P. Tang, ACM TOMS 20 (1994) 215).
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzLn_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzLn_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcLn_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcLn_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmclog_scalar(double x, double y);
QKR_API vxm32fc _vxm_clogf_scalar(float x, float y);
/**@}*/

/** @name Complex Log10
 * The logarithm to base 10, Ln z / ln 10.
 *
 * Values and method as for Ln.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzLog10_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzLog10_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcLog10_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcLog10_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmclog10_scalar(double x, double y);
/**@}*/

/** @name Complex Sqrt
 * The square root with a real part that is not negative, cut along the negative real axis.
 *
 * The imaginary part has the sign of that of z. An infinite imaginary part makes both parts infinite, also
 * beside a NaN. Method: Hull and others, as for Ln.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzSqrt_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzSqrt_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcSqrt_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcSqrt_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmcsqrt_scalar(double x, double y);
QKR_API vxm32fc _vxm_csqrtf_scalar(float x, float y);
/**@}*/

/** @name Complex Cosh
 * The hyperbolic cosine, cosh x cos y + i sinh x sin y.
 *
 * Method: as Exp, from e^x and its reciprocal, a series for small x.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzCosh_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzCosh_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcCosh_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcCosh_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmccosh_scalar(double x, double y);
/**@}*/

/** @name Complex Sinh
 * The hyperbolic sine, sinh x cos y + i cosh x sin y.
 *
 * Method: as Cosh.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzSinh_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzSinh_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcSinh_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcSinh_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmcsinh_scalar(double x, double y);
/**@}*/

/** @name Complex Tanh
 * The hyperbolic tangent, with D = sinh^2 x + cos^2 y: sinh x cosh x / D + i sin y cos y / D.
 *
 * From |x| = 512 on the real part is 1 or -1. Method: as Cosh.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzTanh_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzTanh_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcTanh_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcTanh_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmctanh_scalar(double x, double y);
/**@}*/

/** @name Complex Cos
 * The cosine: Cosh of i z.
 *
 * Method: as Cosh.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzCos_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzCos_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcCos_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcCos_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmccos_scalar(double x, double y);
/**@}*/

/** @name Complex Sin
 * The sine: Sinh of i z, turned back by -i.
 *
 * Method: as Cosh.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzSin_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzSin_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcSin_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcSin_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmcsin_scalar(double x, double y);
/**@}*/

/** @name Complex Tan
 * The tangent: Tanh of i z, turned back by -i.
 *
 * Method: as Tanh.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzTan_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzTan_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcTan_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcTan_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmctan_scalar(double x, double y);
/**@}*/

/** @name Complex Asin
 * The inverse sine, cut along the real axis below -1 and above 1.
 *
 * On a cut the sign of the zero imaginary part says the side. Method: T. E. Hull, T. F. Fairgrieve and P. T.
 * P. Tang, ACM TOMS 23 (1997) 299.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzAsin_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzAsin_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcAsin_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcAsin_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmcasin_scalar(double x, double y);
/**@}*/

/** @name Complex Acos
 * The inverse cosine, cut as Asin.
 *
 * Method: as Asin.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzAcos_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzAcos_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcAcos_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcAcos_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmcacos_scalar(double x, double y);
/**@}*/

/** @name Complex Atan
 * The inverse tangent, cut along the imaginary axis below -i and above i.
 *
 * On a cut the sign of the zero real part says the side. Infinite at i and -i, with divide-by-zero. Method:
 * as Atanh.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzAtan_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzAtan_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcAtan_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcAtan_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmcatan_scalar(double x, double y);
/**@}*/

/** @name Complex Asinh
 * The inverse hyperbolic sine, cut along the imaginary axis below -i and above i.
 *
 * Method: as Asin.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzAsinh_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzAsinh_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcAsinh_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcAsinh_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmcasinh_scalar(double x, double y);
/**@}*/

/** @name Complex Acosh
 * The inverse hyperbolic cosine with a real part that is not negative, cut along the real axis below 1.
 *
 * Method: as Asin.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzAcosh_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzAcosh_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcAcosh_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcAcosh_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmcacosh_scalar(double x, double y);
/**@}*/

/** @name Complex Atanh
 * The inverse hyperbolic tangent, cut along the real axis below -1 and above 1.
 *
 * Infinite at 1 and -1, with divide-by-zero. Method: logarithm of 1 + 4 x / |1 - z|^2 and an angle (W. Kahan,
 * Branch cuts for complex elementary functions, 1987), with |z|^2 - 1 formed without loss.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzAtanh_HA(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmzAtanh_50(int32_t n, const vxm64fc *a, vxm64fc *r);
QKR_API void _vxmcAtanh_HA(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API void _vxmcAtanh_21(int32_t n, const vxm32fc *a, vxm32fc *r);
QKR_API vxm64fc _vxmcatanh_scalar(double x, double y);
/**@}*/

/** @name Complex Pow
 * The power: r[i] = a[i]^b[i], which is Exp(b Ln a).
 *
 * A zero exponent gives 1, whatever the base. A zero base gives +0 where the exponent has a positive real
 * part, +inf with divide-by-zero for a negative real exponent, else NaN and invalid. Method: as Exp and Ln,
 * the logarithm being kept in two doubles to the end. _vxmcpow_scalar() takes the parts of base and exponent.
 *
 * Largest error: 0.501 ulp (float 0.501). To it come 2^-66 |b Ln a| of the result's modulus, while |b Ln a|
 * is below 2^50: little beside it in a part that is not far smaller than the other, up to |b Ln a| = 8, and
 * then in proportion; doubles are within 0.56 ulp at 500. */
/**@{*/
QKR_API void _vxmzPow_HA(int32_t n, const vxm64fc *a, const vxm64fc *b, vxm64fc *r);
QKR_API void _vxmzPow_50(int32_t n, const vxm64fc *a, const vxm64fc *b, vxm64fc *r);
QKR_API void _vxmcPow_HA(int32_t n, const vxm32fc *a, const vxm32fc *b, vxm32fc *r);
QKR_API void _vxmcPow_21(int32_t n, const vxm32fc *a, const vxm32fc *b, vxm32fc *r);
QKR_API vxm64fc _vxmcpow_scalar(double x, double y, double u, double v);
/**@}*/

/** @name Complex Powx
 * The power: r[i] = a[i]^b, one exponent for all, which is Exp(b Ln a).
 *
 * Values and method as for Pow.
 *
 * Largest error: 0.501 ulp (float 0.501). */
/**@{*/
QKR_API void _vxmzPowx_HA(int32_t n, const vxm64fc *a, vxm64fc b, vxm64fc *r);
QKR_API void _vxmzPowx_50(int32_t n, const vxm64fc *a, vxm64fc b, vxm64fc *r);
QKR_API void _vxmcPowx_HA(int32_t n, const vxm32fc *a, vxm32fc b, vxm32fc *r);
QKR_API void _vxmcPowx_21(int32_t n, const vxm32fc *a, vxm32fc b, vxm32fc *r);
/**@}*/

/** @name Parts of the complex functions
 * _vxm_internal_csqrt() is the root of finite numbers that are not zero, without special cases, by the
 * formula of Sqrt. The others tell, as 1 or 0 and by its bit pattern, whether a number is infinite, NaN, a
 * zero of either sign, -0, -inf, +inf, or finite and not zero. They serve layers that have kernels of their
 * own. Method: as for Sqrt; exact. @{ */
QKR_API vxm64fc _vxm_internal_csqrt(double x, double y);
QKR_API int32_t _vxm_internal_isinf(double x);
QKR_API int32_t _vxm_internal_isnan(double x);
QKR_API int32_t _vxm_internal_iszero(double x);
QKR_API int32_t _vxm_internal_isnegzero(double x);
QKR_API int32_t _vxm_internal_isninf(double x);
QKR_API int32_t _vxm_internal_ispinf(double x);
QKR_API int32_t _vxm_internal_isnzfinite(double x);
/** @} */

QKR_END_DECLS

#endif
