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
#define QKR_ELEMENT(letter, T, function)                                                   \
  QKR_API void _vxm##letter##function##_SC(int32_t i, const T *a, T *r, const void *spare, \
                                           const char *name);                              \
  QKR_API void _vxm##letter##function##_SC_HA(int32_t i, const T *a, T *r);                \
  QKR_API void _vxm##letter##function##_SC_LA(int32_t i, const T *a, T *r);                \
  QKR_API void _vxm##letter##function##_SC_A11(int32_t i, const T *a, T *r);
#define QKR_ELEMENT_OF_TWO(letter, T)                                                          \
  QKR_API void _vxm##letter##SinCos_SC(int32_t i, const T *a, T *r1, T *r2, const char *name); \
  QKR_API void _vxm##letter##SinCos_SC_HA(int32_t i, const T *a, T *r1, T *r2);                \
  QKR_API void _vxm##letter##SinCos_SC_LA(int32_t i, const T *a, T *r1, T *r2);                \
  QKR_API void _vxm##letter##SinCos_SC_A11(int32_t i, const T *a, T *r1, T *r2);
QKR_ELEMENT(d, double, Sin)
QKR_ELEMENT(d, double, Cos)
QKR_ELEMENT(d, double, Tan)
QKR_ELEMENT(s, float, Sin)
QKR_ELEMENT(s, float, Cos)
QKR_ELEMENT(s, float, Tan)
QKR_ELEMENT_OF_TWO(d, double)
QKR_ELEMENT_OF_TWO(s, float)
#undef QKR_ELEMENT
#undef QKR_ELEMENT_OF_TWO
/** @} */

/** @name Elements of ErfInv
 * r[i] from a[i], whatever a[i] is; results, statuses and accuracy are those of _vxmdErfInv_HA(), whose name
 * reports carry. `r` may be `a`. Method as there.
 * @{ */
QKR_API void _vxmdErfInv_HA_SC_p4(int32_t i, const double *a, double *r);
QKR_API void _vxmsErfInv_HA_SC_p4(int32_t i, const float *a, float *r);
/** @} */

QKR_END_DECLS

#endif
