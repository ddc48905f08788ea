/** @file
 * Functions of one number in the processor's extended format: long double, 64 bits of mantissa. The complex
 * functions stand on them.
 *
 * They neither set a status nor report: floating-point events are their only signal. They change no control
 * word, and rely on those of the caller: 64 bits of precision and round to nearest for the x87 unit, round to
 * nearest for SSE, as threads start with. Bits of results do not depend on the processor.
 *
 * Method: kernels in two doubles, by tables and short polynomials (P. T. P. Tang, ACM Transactions on
 * Mathematical Software 15 (1989) 144 and 16 (1990) 378; S. Gal, Lecture Notes in Computer Science 235 (1986)
 * 1), joined by one extended addition. */
#ifndef QKR_VECMATH_EXTENDED_H
#define QKR_VECMATH_EXTENDED_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

/** e^x. Largest error: 0.501 ulp. +inf and -inf give +inf and +0; results beyond the format raise overflow or
 * underflow. */
QKR_API long double _vxmexpl_scalar(long double x);

/** @name Sine, cosine, tangent
 * Of x radians, of any size: large ones are reduced after M. Payne and R. Hanek, ACM SIGNUM Newsletter 18
 * (1983) 19. Largest error: 0.63 ulp. An infinity gives NaN and raises invalid. _vxmsincosl_scalar() stores
 * both; the two places may not be the same.
 * @{ */
QKR_API long double _vxmsinl_scalar(long double x);
QKR_API long double _vxmcosl_scalar(long double x);
QKR_API void _vxmsincosl_scalar(long double x, long double *sine, long double *cosine);
QKR_API long double _vxmtanl_scalar(long double x);
/** @} */

/** @name Hyperbolic sine, cosine, tangent
 * Largest error: 0.53 ulp. Results beyond the format raise overflow. _vxmsinhcoshl_scalar() stores both; the
 * two places may not be the same.
 * @{ */
QKR_API long double _vxmsinhl_scalar(long double x);
QKR_API long double _vxmcoshl_scalar(long double x);
QKR_API void _vxmsinhcoshl_scalar(long double x, long double *sine, long double *cosine);
QKR_API long double _vxmtanhl_scalar(long double x);
/** @} */

/** @name Logarithms
 * ln x and ln(1 + x). Largest error: 0.75 ulp. The logarithm of 0 is -inf and raises divide-by-zero; that of
 * a negative number is NaN and raises invalid.
 * @{ */
QKR_API long double _vxmlogl_scalar(long double x);
QKR_API long double _vxmlog1pl_scalar(long double x);
/** @} */

/** The angle of the point (x, y), from -pi to pi; zeros count with their signs, and infinite coordinates as
 * in C's atan2. Largest error: 0.63 ulp. */
QKR_API long double _vxmatan2l_scalar(long double y, long double x);

/** The square root, correctly rounded: the processor's own. */
QKR_API long double _vxmsqrtl_scalar(long double x);

/** |x|. */
QKR_API long double _vxmfabsl_scalar(long double x);

QKR_END_DECLS

#endif
