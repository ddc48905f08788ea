#pragma once

#include <stdint.h>

// Tables of the vector functions, made by the generators in tools/tables, whose opening comments give the
// rule of the rows. Rows lie on their own lines of cache as far as they fit: every table is aligned to 64
// bytes. Where a table also stands by columns, these are for the level that can hold them in registers.

#pragma GCC visibility push(hidden)

namespace qkr::arc_tangent {
// Row 2k: a, c, hi, lo: the direction (a, c) with c/a the k-th slope from 0 to infinity, and its angle hi +
// lo; row 2k + 1: the same for (-a, c).
alignas(64) extern const double directions[164][4];
// arctan t = t + t z p(z), z = t^2.
alignas(64) extern const double polynomial_for_double[4];
alignas(64) extern const double polynomial_for_single[5];
}  // namespace qkr::arc_tangent

namespace qkr::arc_sine {
// arcsin u = u + u z p(z), z = u^2.
alignas(64) extern const double polynomial_for_double[14];
alignas(64) extern const double polynomial_for_single[6];
}  // namespace qkr::arc_sine

namespace qkr::inverse_hyperbolic {
// Row k: r, about 1/(1 + k/16), and -ln r.
alignas(64) extern const double short_logarithms[16][2];
}  // namespace qkr::inverse_hyperbolic

namespace qkr::circular {
// Row j: T0, T1, T2, T3 for the sine around the node a = 2 pi j / rows: sin(a) = T1 + T2, cos(a) = T3 + T0.
alignas(64) extern const double sine_rows[64][4];
alignas(64) extern const double fine_sine_rows[128][4];
// 32 rows from node 0 on; and from nodes -16 and 16 on, where the second holds the cosines of the first.
alignas(64) extern const double sine_columns[4][32];
alignas(64) extern const double fine_sine_columns[4][32];
alignas(64) extern const double fine_cosine_columns[4][32];
// Row j, in groups of columns 32 rows apart: the tangent around the node pi j / 32 less its pole, T + T_lo +
// r (slope + D + A2 r + ... + A9 r^8): T, T_lo, slope, D; A2 to A5; A6 to A9.
alignas(64) extern const double tangent_rows[96][4];
alignas(64) extern const double tangent_columns[12][32];
// Bits of 4/pi: chunk k of 25 bits times 2^200, from chunk 1 on.
alignas(64) extern const double four_over_pi_chunks[52];
}  // namespace qkr::circular

namespace qkr::exp_double {
// Row j: hi, lo with hi + lo = 2^(j/64); the 15 low bits of hi are zero.
alignas(64) extern const double powers[64][2];
}  // namespace qkr::exp_double

namespace qkr::exp_single {
// Row j: hi, lo with hi * (1 + lo) = 2^(j/128).
alignas(64) extern const float powers[128][2];
alignas(64) extern const float powers_columns[2][128];
}  // namespace qkr::exp_single

namespace qkr::extended {
// Values as hi, lo: 2^(j/64); sine and cosine of pi j/256; the arc tangent of j/256.
alignas(64) extern const double powers[64][2];
alignas(64) extern const double sines[512][4];
alignas(64) extern const double arc_tangents[257][2];
// Row i for mantissas that begin with the eight bits i: c, about 1/m, and -ln(c) as hi, lo.
alignas(64) extern const double logarithms[256][4];
// Word i of the bits of 2/pi: its last bit stands for 2^(-64 (i + 1)).
alignas(64) extern const uint64_t two_over_pi[262];
}  // namespace qkr::extended

// Polynomials for the error functions, a row for each node; the columns stand in the generator.
namespace qkr::erf_double {
alignas(64) extern const double rows[353][8];
}
namespace qkr::erfc_double {
alignas(64) extern const double rows[611][8];
}
namespace qkr::erf_inverse_double {
alignas(64) extern const double rows[333][8];
}
namespace qkr::erf_single {
alignas(64) extern const double rows[145][4];
}
namespace qkr::erfc_single {
alignas(64) extern const double rows[219][4];
}
namespace qkr::erf_inverse_single {
alignas(64) extern const double rows[264][4];
}
namespace qkr::hyperbolic_double {
// Row j: e^a / 2 and e^-a / 2 with a = j ln2/64, each as hi, lo with hi + lo the value.
alignas(64) extern const double halves[64][4];
// Row j: hi, lo with hi + lo = tanh(j/16).
alignas(64) extern const double tangents[321][2];
}  // namespace qkr::hyperbolic_double

namespace qkr::ln_double {
// Row k of 0 to 512: r, r, T.hi, T.lo with r about 1 / (1 + k/512), a multiple of 2^-23, and T = -ln(r), less
// ln 2 from row 256 on.
alignas(64) extern const double rows[520][4];
}  // namespace qkr::ln_double

namespace qkr::log10_double {
// Row k of 0 to 512: r * C, r * C, T.hi, T.lo with r about 1 / (1 + k/512), C = 0.43359375, r * C a multiple
// of 2^-23, and T = -log10(r).
alignas(64) extern const double rows[520][4];
}  // namespace qkr::log10_double

namespace qkr::ln_single {
// Row k: T.hi, T.lo, r, 0 with r about 1 / (1 + k/64), a multiple of 2^-8, and T = -ln(r).
alignas(64) extern const float rows[65][4];
alignas(64) extern const float columns[4][80];
}  // namespace qkr::ln_single

namespace qkr::log10_single {
// Row k: r * C, r * C, T.hi, T.lo with r about 1 / (1 + k/128), C = 0.43359375, r * C of seven significant
// bits, and T = -log10(r), less log10(2) from row 64 on.
alignas(64) extern const float rows[129][4];
alignas(64) extern const float columns[4][144];
}  // namespace qkr::log10_single

namespace qkr::pow_single {
// Floats from pattern 0x3F320000 on in steps of 0x40000 patterns, interval j: about 1/x, a multiple of 2^-28,
// and -log2 of it; for the interval around 1 they are 1 and 0.
alignas(64) extern const double reciprocal[32];
alignas(64) extern const double minus_log[32];
// 2^(j/32).
alignas(64) extern const double powers[32];
// c[0] + c[1] z + ... is about log2(1 + z)/z and (2^z - 1)/z for |z| <= 1/64.
alignas(64) extern const double log_polynomial[7];
alignas(64) extern const double power_polynomial[5];
}  // namespace qkr::pow_single

namespace qkr::sqrt_double {
// Row k: A2 * m^2 + A1 * m + A0 is about 1 / sqrt(m) for 1 + k/128 <= m <= 1 + (k + 1)/128.
alignas(64) extern const double A2[128];
alignas(64) extern const double A1[128];
alignas(64) extern const double A0[128];
}  // namespace qkr::sqrt_double

namespace qkr::sqrt_single {
// Row k: A2 * m^2 + A1 * m + A0 is about sqrt(m) for 1 + k/64 <= m <= 1 + (k + 1)/64.
alignas(64) extern const double A2[64];
alignas(64) extern const double A1[64];
alignas(64) extern const double A0[64];
}  // namespace qkr::sqrt_single

#pragma GCC visibility pop
