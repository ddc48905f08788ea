// Tables of the basic generators, made by the generators in tools/tables, whose opening comments give the
// rule of the rows.
#pragma once

#include <stdint.h>

#pragma GCC visibility push(hidden)

namespace qkr::wichmann_hill {
constexpr int32_t members = 273;
extern const uint32_t moduli[members][4];
extern const uint8_t multipliers[members][4];
extern const double inverse_moduli[members][4];
}  // namespace qkr::wichmann_hill

namespace qkr::mt2203 {
constexpr int32_t members = 1024;
extern const uint32_t parameters[members][3];  // twist word, tempering masks B and C
}  // namespace qkr::mt2203

// Polynomials over GF(2) are words, bit i being the coefficient of x^i.
namespace qkr::sobol {
extern const uint32_t polynomials[40];  // primitive ones, of dimensions 2 to 40, and a zero
extern const int32_t degrees[40];
extern const uint32_t initial_values[39][8];  // as many count as the degree; the rest follow from them
}  // namespace qkr::sobol

namespace qkr::niederreiter {
extern const uint32_t polynomials[320];  // irreducible ones, of dimensions 1 to 318, and two zeros
extern const int32_t degrees[320];
}  // namespace qkr::niederreiter

// Row k: r about 1 / (1 + (k + 1/2)/256), a multiple of 2^-16; and -ln(r), as a multiple of 2^-42 and the
// rest.
namespace qkr::stream_scalars {
alignas(64) extern const double reciprocals[256];
alignas(64) extern const double minus_logarithms[256][2];
}  // namespace qkr::stream_scalars

#pragma GCC visibility pop
