// Tables behind the direction numbers of the quasi-random generators. A polynomial over GF(2) is held as a
// word, bit i being the coefficient of x^i.
#pragma once

#include <stdint.h>

extern "C" {

// Sobol: primitive polynomials of dimensions 2 to 40 and a zero, their degrees, and the values that each
// dimension starts from, as many as the degree; the rest of a row follows from them.
extern const uint32_t uSobolIrredPoly[40];
extern const int32_t iSobolIrredPolyDeg[40];
extern const uint32_t uSobolMInit[39][8];

// Niederreiter: irreducible polynomials of dimensions 1 to 318 in numerical order, and two zeros.
extern const uint32_t uNiederrIrredPoly[320];
extern const int32_t iNiederrIrredPolyDeg[320];

}  // extern "C"
