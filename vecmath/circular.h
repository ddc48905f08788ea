// What the circular functions share: scalar cores in double, argument reduction, per-element routines.
#pragma once

#include <stdint.h>

extern "C" {

// Reduces x to x = n pi/2 + out[0] + out[1], |out[0]| at most about pi/4; returns n mod 4.
int32_t _vxmreduce_pio2d(double x, double *out);

// One double in, for any x; the routines of both precisions use them.
double _dSin(double x);
double _dCos(double x);
void _dSinCos(double x, double *sine, double *cosine);
double _dTan(double x);

// Element i by itself, of any size, with the report of an infinity under the given name; `spare` is not read.
void _vxmdSin_SC(int32_t i, const double *a, double *r, const void *spare, const char *name);
void _vxmdCos_SC(int32_t i, const double *a, double *r, const void *spare, const char *name);
void _vxmdTan_SC(int32_t i, const double *a, double *r, const void *spare, const char *name);
void _vxmdSinCos_SC(int32_t i, const double *a, double *r1, double *r2, const char *name);
void _vxmsSin_SC(int32_t i, const float *a, float *r, const void *spare, const char *name);
void _vxmsCos_SC(int32_t i, const float *a, float *r, const void *spare, const char *name);
void _vxmsTan_SC(int32_t i, const float *a, float *r, const void *spare, const char *name);
void _vxmsSinCos_SC(int32_t i, const float *a, float *r1, float *r2, const char *name);

// Their three named entry points.
#define QKR_SC_NAMES(letter, T, function)                           \
  void _vxm##letter##function##_SC_HA(int32_t i, const T *a, T *r); \
  void _vxm##letter##function##_SC_LA(int32_t i, const T *a, T *r); \
  void _vxm##letter##function##_SC_A11(int32_t i, const T *a, T *r);
QKR_SC_NAMES(d, double, Sin)
QKR_SC_NAMES(d, double, Cos)
QKR_SC_NAMES(d, double, Tan)
QKR_SC_NAMES(s, float, Sin)
QKR_SC_NAMES(s, float, Cos)
QKR_SC_NAMES(s, float, Tan)
#undef QKR_SC_NAMES
#define QKR_SC_NAMES(letter, T)                                         \
  void _vxm##letter##SinCos_SC_HA(int32_t i, const T *a, T *r1, T *r2); \
  void _vxm##letter##SinCos_SC_LA(int32_t i, const T *a, T *r1, T *r2); \
  void _vxm##letter##SinCos_SC_A11(int32_t i, const T *a, T *r1, T *r2);
QKR_SC_NAMES(d, double)
QKR_SC_NAMES(s, float)
#undef QKR_SC_NAMES
}
