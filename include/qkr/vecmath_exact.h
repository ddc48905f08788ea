/** @file
 * Exact vector functions: rounding to integers, integer part and fraction, moves; and functions of one
 * number.
 *
 * As in vecmath.h: `n` elements, nothing for n of 0 or below; `_vxmd...` for doubles, `_vxms...` for floats.
 * No status is ever set. The functions work under the caller's floating-point settings, of which only Rint
 * and NearbyInt take notice; subnormal numbers count even where the caller has them flushed to zero. Doubles
 * raise no exception, but for a signalling NaN, which comes out quiet. */
#ifndef QKR_VECMATH_EXACT_H
#define QKR_VECMATH_EXACT_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

/** @name Rounding to an integer
 * r[i] is a[i] rounded: Ceil upward, Floor downward, Trunc toward zero, Round to nearest with halves away
 * from zero, Rint and NearbyInt in the caller's rounding direction (MXCSR; halves to even in rounding to
 * nearest). A zero result has the sign of a[i]. Infinities and NaNs give themselves; a float NaN is not
 * quieted. `r` may be `a`; other overlap is not allowed. */
/**@{*/
QKR_API void _vxmdCeil(int32_t n, const double *a, double *r);
QKR_API void _vxmsCeil(int32_t n, const float *a, float *r);
QKR_API void _vxmdFloor(int32_t n, const double *a, double *r);
QKR_API void _vxmsFloor(int32_t n, const float *a, float *r);
QKR_API void _vxmdRound(int32_t n, const double *a, double *r);
QKR_API void _vxmsRound(int32_t n, const float *a, float *r);
QKR_API void _vxmdTrunc(int32_t n, const double *a, double *r);
QKR_API void _vxmsTrunc(int32_t n, const float *a, float *r);
QKR_API void _vxmdRint(int32_t n, const double *a, double *r);
QKR_API void _vxmsRint(int32_t n, const float *a, float *r);
QKR_API void _vxmdNearbyInt(int32_t n, const double *a, double *r);
QKR_API void _vxmsNearbyInt(int32_t n, const float *a, float *r);
/**@}*/

/** @name Modf
 * r1[i] is a[i] without its fraction, r2[i] the fraction, both with the sign of a[i]. An infinity gives
 * itself and a zero, a NaN twice a quiet NaN. `r1` or `r2` may be `a`; they are not the same vector. */
/**@{*/
QKR_API void _vxmdModf(int32_t n, const double *a, double *r1, double *r2);
QKR_API void _vxmsModf(int32_t n, const float *a, float *r1, float *r2);
/**@}*/

/** @name PackI, PackM, PackV
 * Elements gathered into the dense vector y: PackI y[i] = a[i * inc] for i below n, where inc may be 0 or
 * negative; PackM those a[i] for which mask[i] is not 0, in their order (n is the length of the mask); PackV
 * y[i] = a[index[i]]. The vectors may overlap: the result is that of a loop over i from 0 upward. */
/**@{*/
QKR_API void _vxmdPackI(int32_t n, const double *a, int32_t inc, double *y);
QKR_API void _vxmdPackM(int32_t n, const double *a, const int32_t *mask, double *y);
QKR_API void _vxmdPackV(int32_t n, const double *a, const int32_t *index, double *y);
QKR_API void _vxmsPackI(int32_t n, const float *a, int32_t inc, float *y);
QKR_API void _vxmsPackM(int32_t n, const float *a, const int32_t *mask, float *y);
QKR_API void _vxmsPackV(int32_t n, const float *a, const int32_t *index, float *y);
/**@}*/

/** @name UnpackI, UnpackM, UnpackV
 * Elements of the dense vector a spread: UnpackI y[i * inc] = a[i]; UnpackM the next element of a to each
 * y[i] for which mask[i] is not 0 (n is the length of the mask); UnpackV y[index[i]] = a[i]. Other elements
 * of y stay as they are. The vectors may overlap: the result is that of a loop over i from 0 upward. */
/**@{*/
QKR_API void _vxmdUnpackI(int32_t n, const double *a, double *y, int32_t inc);
QKR_API void _vxmdUnpackM(int32_t n, const double *a, double *y, const int32_t *mask);
QKR_API void _vxmdUnpackV(int32_t n, const double *a, double *y, const int32_t *index);
QKR_API void _vxmsUnpackI(int32_t n, const float *a, float *y, int32_t inc);
QKR_API void _vxmsUnpackM(int32_t n, const float *a, float *y, const int32_t *mask);
QKR_API void _vxmsUnpackV(int32_t n, const float *a, float *y, const int32_t *index);
/**@}*/

/** The square root of one number, by table and Newton step: within 3 units in the last place. A negative
 * number, -inf too, gives the NaN 0x7FF8A5A55A5A5A5A; nothing is reported. Faster than a vector call for one
 * element. */
QKR_API double _vxmdsqrt_scalar(double x);

/** The square root of one float, by table: within 0.61 units in the last place. A negative number, -inf too,
 * gives the NaN 0xFFC00000; nothing is reported. */
QKR_API float _vxmssqrt_scalar(float x);

/** The absolute value of a double: the sign bit cleared, of NaNs too. */
QKR_API double _vxm_dabs_scalar(double x);

/** The absolute value of a float: the sign bit cleared, of NaNs too. */
QKR_API float _vxm_sabs_scalar(float x);

/** The processor that this build of the library is made for.
 * @return 0: every x86-64 processor */
QKR_API int32_t dll_cpu_version(void);

QKR_END_DECLS

#endif
