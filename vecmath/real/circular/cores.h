// What the circular functions share: scalar cores in double; the argument reduction and the per-element
// routines are public.
#pragma once

#include <qkr/vecmath_elements.h>

namespace qkr {

// One double in, for any x; the routines of both precisions use them.
double sine_of_any(double x);
double cosine_of_any(double x);
void sine_and_cosine_of_any(double x, double *sine, double *cosine);
double tangent_of_any(double x);

}  // namespace qkr
