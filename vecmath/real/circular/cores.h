// What the circular functions share: argument reduction and scalar cores in double; the per-element routines
// are public.
#pragma once

#include <qkr/vecmath_elements.h>

// Reduces x to x = n pi/2 + out[0] + out[1], |out[0]| at most about pi/4; returns n mod 4.
extern "C" int32_t _vxmreduce_pio2d(double x, double *out);

namespace qkr {

// One double in, for any x; the routines of both precisions use them.
double sine_of_any(double x);
double cosine_of_any(double x);
void sine_and_cosine_of_any(double x, double *sine, double *cosine);
double tangent_of_any(double x);

}  // namespace qkr
