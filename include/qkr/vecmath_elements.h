/** @file
 * Single elements of vector functions: what a kernel does with an element that its fast path does not serve,
 * for layers that have kernels of their own. */
#ifndef QKR_VECMATH_ELEMENTS_H
#define QKR_VECMATH_ELEMENTS_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

/** @name Elements of the circular functions
 * r[i] from a[i], whatever a[i] is: a number of any size, an infinity (NaN, and status 1 reported), a NaN.
 * SinCos stores the sine in r1[i] and the cosine in r2[i]. `r` may be `a`. Accuracy as that of the vector
 * function: argument reduction after M. Payne and R. Hanek, ACM SIGNUM Newsletter 18 (1983) 19.
 *
 * Reports carry `name`, or the entry's own short name: "dSin_HA" of _vxmdSin_SC_HA(). The three entries of
 * a function, `_SC_HA`, `_SC_LA` and `_SC_A11`, differ in nothing else. `spare` is not read.
 * @{ */
QKR_API void _vxmdSin_SC(int32_t i, const double *a, double *r, const void *spare, const char *name);
QKR_API void _vxmdSin_SC_HA(int32_t i, const double *a, double *r);
QKR_API void _vxmdSin_SC_LA(int32_t i, const double *a, double *r);
QKR_API void _vxmdSin_SC_A11(int32_t i, const double *a, double *r);
QKR_API void _vxmdCos_SC(int32_t i, const double *a, double *r, const void *spare, const char *name);
QKR_API void _vxmdCos_SC_HA(int32_t i, const double *a, double *r);
QKR_API void _vxmdCos_SC_LA(int32_t i, const double *a, double *r);
QKR_API void _vxmdCos_SC_A11(int32_t i, const double *a, double *r);
QKR_API void _vxmdTan_SC(int32_t i, const double *a, double *r, const void *spare, const char *name);
QKR_API void _vxmdTan_SC_HA(int32_t i, const double *a, double *r);
QKR_API void _vxmdTan_SC_LA(int32_t i, const double *a, double *r);
QKR_API void _vxmdTan_SC_A11(int32_t i, const double *a, double *r);
QKR_API void _vxmdSinCos_SC(int32_t i, const double *a, double *r1, double *r2, const char *name);
QKR_API void _vxmdSinCos_SC_HA(int32_t i, const double *a, double *r1, double *r2);
QKR_API void _vxmdSinCos_SC_LA(int32_t i, const double *a, double *r1, double *r2);
QKR_API void _vxmdSinCos_SC_A11(int32_t i, const double *a, double *r1, double *r2);
QKR_API void _vxmsSin_SC(int32_t i, const float *a, float *r, const void *spare, const char *name);
QKR_API void _vxmsSin_SC_HA(int32_t i, const float *a, float *r);
QKR_API void _vxmsSin_SC_LA(int32_t i, const float *a, float *r);
QKR_API void _vxmsSin_SC_A11(int32_t i, const float *a, float *r);
QKR_API void _vxmsCos_SC(int32_t i, const float *a, float *r, const void *spare, const char *name);
QKR_API void _vxmsCos_SC_HA(int32_t i, const float *a, float *r);
QKR_API void _vxmsCos_SC_LA(int32_t i, const float *a, float *r);
QKR_API void _vxmsCos_SC_A11(int32_t i, const float *a, float *r);
QKR_API void _vxmsTan_SC(int32_t i, const float *a, float *r, const void *spare, const char *name);
QKR_API void _vxmsTan_SC_HA(int32_t i, const float *a, float *r);
QKR_API void _vxmsTan_SC_LA(int32_t i, const float *a, float *r);
QKR_API void _vxmsTan_SC_A11(int32_t i, const float *a, float *r);
QKR_API void _vxmsSinCos_SC(int32_t i, const float *a, float *r1, float *r2, const char *name);
QKR_API void _vxmsSinCos_SC_HA(int32_t i, const float *a, float *r1, float *r2);
QKR_API void _vxmsSinCos_SC_LA(int32_t i, const float *a, float *r1, float *r2);
QKR_API void _vxmsSinCos_SC_A11(int32_t i, const float *a, float *r1, float *r2);
/** @} */

/** @name Elements of ErfInv
 * r[i] from a[i], whatever a[i] is; results, statuses and accuracy are those of _vxmdErfInv_HA(), whose name
 * reports carry. `r` may be `a`. Method as there.
 * @{ */
QKR_API void _vxmdErfInv_HA_SC_p4(int32_t i, const double *a, double *r);
QKR_API void _vxmsErfInv_HA_SC_p4(int32_t i, const float *a, float *r);
/** @} */

/** Reduces an argument of a circular function: x = n pi/2 + out[0] + out[1] with out[0] from about -pi/4 to
 * pi/4 and out[1] what out[0] leaves over; the sum is right to 2^-58 of its value, for x of any size.
 * `out` is two doubles. A zero keeps its sign; an infinity gives two NaNs and raises invalid, a NaN gives two
 * NaNs; nothing is reported. Method: M. Payne and R. Hanek, ACM SIGNUM Newsletter 18 (1983) 19.
 * @return the quadrant, n mod 4, from 0 to 3; 0 for an infinity or a NaN */
QKR_API int32_t _vxmreduce_pio2d(double x, double *out);

QKR_END_DECLS

#endif
