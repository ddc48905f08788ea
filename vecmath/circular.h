// What the circular functions share: argument reduction and scalar cores in double; the per-element routines
// are public.
#pragma once

#include <qkr/vecmath_elements.h>

extern "C" {

// Reduces x to x = n pi/2 + out[0] + out[1], |out[0]| at most about pi/4; returns n mod 4.
int32_t _vxmreduce_pio2d(double x, double *out);

// One double in, for any x; the routines of both precisions use them.
double _dSin(double x);
double _dCos(double x);
void _dSinCos(double x, double *sine, double *cosine);
double _dTan(double x);
}
