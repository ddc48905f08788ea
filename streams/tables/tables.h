// Tables of the basic generators, made by the generators in tools/tables, whose opening comments give the
// rule of the rows.
#pragma once

#include <stdint.h>

#include "streams/internal.h"

#pragma GCC visibility push(hidden)

extern "C" {
// Member k of WH: moduli, multipliers, reciprocals of the moduli.
extern const uint32_t _vxs_WH_M[wh_members][4];
extern const uint8_t _vxs_WH_A[wh_members][4];
extern const double _vxsdWH_IM_Tab[wh_members][4];

// matrixA, maskB, maskC of each member of MT2203.
extern const uint32_t _vxs_mt2203_table[mt2203_members][3];

// Polynomials over GF(2) are words, bit i being the coefficient of x^i.
// Sobol: primitive polynomials of dimensions 2 to 40 and a zero, their degrees, and the values that each
// dimension starts from, as many as the degree; the rest of a row follows from them.
extern const uint32_t uSobolIrredPoly[40];
extern const int32_t iSobolIrredPolyDeg[40];
extern const uint32_t uSobolMInit[39][8];

// Niederreiter: irreducible polynomials of dimensions 1 to 318 in numerical order, and two zeros.
extern const uint32_t uNiederrIrredPoly[320];
extern const int32_t iNiederrIrredPolyDeg[320];
}

namespace qkr::stream_scalars {
// Row k: r about 1 / (1 + (k + 1/2)/256), a multiple of 2^-16; and -ln(r), as a multiple of 2^-42 and the
// rest.
alignas(64) extern const double reciprocals[256];
alignas(64) extern const double minus_logarithms[256][2];
}  // namespace qkr::stream_scalars

#pragma GCC visibility pop
