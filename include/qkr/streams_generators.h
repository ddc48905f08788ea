/** @file
 * Random streams: the basic generators by name, and the arithmetic that they export. */
#ifndef QKR_STREAMS_GENERATORS_H
#define QKR_STREAMS_GENERATORS_H

#include <qkr/streams.h>

QKR_BEGIN_DECLS

/** @name Basic generators
 * The entry points of each, as in its BrngRecord.
 *
 * - MCG31M1: x' = 1132489760 x mod 2^31 - 1 (P. L'Ecuyer, Mathematics of Computation 68 (1999) 249). One seed
 *   word. Reals are x (b - a) / (2^31 - 1) + a, the single-precision ones computed in single precision.
 * - R250: x[i] = x[i - 250] ^ x[i - 147] (S. Kirkpatrick and E. P. Stoll, Journal of Computational Physics 40
 *   (1981) 517). 250 seed words are the register itself; fewer leave it to the first, or to 1, to fill it.
 * - MRG32K3A: two recurrences of order three, modulo m1 = 4294967087 and m2 = 4294944443, combined (P.
 *   L'Ecuyer, Operations Research 47 (1999) 159). Up to six seed words are the state, x before y; 1 stands
 * for each that is missing. Skips ahead by less than 2^31.
 * - MCG59: x' = 13^13 x mod 2^59. Two seed words, the lower half first. Reals are x 2^-59 (b - a) + a. Its
 *   integers are 64-bit: `out` takes 2 n words.
 * - WH: four components x' = a x mod m with primes m below 2^24 (B. A. Wichmann and I. D. Hill, Applied
 *   Statistics 31 (1982) 188). Four seed words. A real is the fraction of the sum of x / m, times b - a, plus
 * a. An integer is the four x: `out` takes 4 n words.
 * - Sobol, Niederr: quasi-random points, whose components come one after the other. Sobol's sequence has up
 * to 40 dimensions (P. Bratley and B. L. Fox, Algorithm 659, ACM Transactions on Mathematical Software 14
 * (1988) 88), Niederreiter's in base 2 up to 318 (P. Bratley, B. L. Fox and H. Niederreiter, ACM Transactions
 * on Modeling and Computer Simulation 2 (1992) 195). The first point is that of index 1, not the origin;
 * after 2^32 points the sequence repeats. Reals are x (b - a) / 2^32 + a, computed in double precision. The
 * first word of params is the dimension d, and 1 is taken for it where it is missing or out of range. More
 * words make a user's array; one that is not complete is ignored but for d, and with a d above 40 or 318
 * refused: VXS_STATUS_BAD_ARGUMENT. A user's array may ask for any number of dimensions where the table says
 * so. Leapfrog keeps a single dimension: n is 0x7fffffff and the index the dimension, from 0; a stream cannot
 * be widened again. Skip-ahead counts components, n of them, more than 0. A stream of more dimensions than
 * its record holds, 31580641 at most, keeps them in a chunk of 136 d bytes, which copies and files take
 * along. A stream whose array was refused has no dimensions: draws answer VXS_STATUS_BAD_ARGUMENT.
 *
 *   | word of params | content                                        |
 *   |----------------|------------------------------------------------|
 *   | 0              | d                                              |
 *   | 1              | 1                                              |
 *   | 2              | kind                                           |
 *   | from 3 on      | by kind; polynomials are over GF(2), bit i being the coefficient of x^i |
 *
 *   | generator | kind | words from 3 on                                                           | d |
 *   |-----------|------|---------------------------------------------------------------------------|---|
 *   | Sobol     | 1    | polynomials of dimensions 2 to d                                          | to 40 |
 *   | Sobol     | 2    | w, then w initial values for each of dimensions 2 to d                    | to 40 |
 *   | Sobol     | 3    | polynomials of dimensions 2 to d, w, w initial values for each of these   | any |
 *   | Sobol     | 4    | 32 direction numbers for each dimension, used as they stand               | any |
 *   | Sobol     | 11   | d polynomials, w, w initial values for each dimension                     | any |
 *   | Niederr   | 1    | d polynomials                                                             | any |
 *   | Niederr   | 4    | 32 direction numbers for each dimension, used as they stand               | any |
 *
 *   Of the w initial values as many are used as the polynomial's degree; those missing are 1. They are odd,
 * and number k, from 0, is below 2^(k+1).
 *
 * - MT19937: the Mersenne twister (M. Matsumoto and T. Nishimura, ACM TOMACS 8 (1998) 3). Any number of seed
 *   words, all of which count; none are the single word 1.
 * - MT2203: 1024 small twisters with recurrences of their own, for parallel streams (M. Matsumoto and T.
 *   Nishimura, Dynamic creation of pseudorandom number generators, 2000). Seeded like MT19937. Members with
 *   the same seed begin alike and part only after some 500 numbers: give member k the seed words {seed, k}.
 * - iAbstract, dAbstract, sAbstract: see qkr/streams_abstract.h.
 *
 * Similar seeds show in the first numbers of MCG31M1, MCG59, WH and MRG32K3A, and the same seed in all
 * members of WH: __vxsSeedWords() makes seed words for many streams out of one seed.
 *
 * Reals of R250, MRG32K3A, MT19937 and MT2203 are x (b - a) / m + a in double precision, where m is m1 for
 * MRG32K3A and 2^32 for the others; those in single precision are then rounded, so that b itself can come
 * out. MT2203 takes the difference b - a of single-precision ends in single precision.
 * @{ */
#define QKR_GENERATOR(G)                                                                          \
  QKR_API int32_t __vxsBRng##G##InitStream(int32_t method, StreamState *stream, int32_t n,        \
                                           const void *params);                                   \
  QKR_API int32_t __vxssBRng##G(StreamState *stream, int32_t n, float *out, float a, float b);    \
  QKR_API int32_t __vxsdBRng##G(StreamState *stream, int32_t n, double *out, double a, double b); \
  QKR_API int32_t __vxsiBRng##G(StreamState *stream, int32_t n, uint32_t *out);
QKR_GENERATOR(MCG31M1)
QKR_GENERATOR(R250)
QKR_GENERATOR(MRG32K3A)
QKR_GENERATOR(MCG59)
QKR_GENERATOR(WH)
QKR_GENERATOR(Sobol)
QKR_GENERATOR(Niederr)
QKR_GENERATOR(MT19937)
QKR_GENERATOR(MT2203)
QKR_GENERATOR(iAbstract)
QKR_GENERATOR(dAbstract)
QKR_GENERATOR(sAbstract)
#undef QKR_GENERATOR
/** @} */

/** @name Philox
 * Philox 4x32-10 (J. K. Salmon, M. A. Moraes, R. O. Dror and D. E. Shaw, Parallel random numbers: as easy
 * as 1, 2, 3, SC11 (2011)), for work that is spread over many machines: its numbers are a function of a key
 * of 64 bits and a counter of 128 bits, so that any stream, and any place in it, is as near as any other.
 * Four words of 32 bits come from each count; reals are x (b - a) / 2^32 + a.
 *
 * | seed word | meaning                                                              |
 * |-----------|----------------------------------------------------------------------|
 * | 0, 1      | the key                                                              |
 * | 2 to 5    | where the counter begins, the lowest word first; those missing are 0 |
 *
 * Streams with different keys have nothing in common, however alike the keys: {seed, member} serves 2^32
 * members, and {seed, member, 0, 0, step} gives each step of each member 2^66 numbers of its own. A skip of
 * any count takes as long as one number; it does not leapfrog.
 *
 * It is no row of the table, but registers itself by __vxsRegisterBrng() at the first of these calls; from
 * then on it is a generator like the others, in files too: a program that loads a stream calls this first,
 * and registers what it has of its own in the same order as the one that saved it.
 *
 *     uint32_t seed[2] = {777, member};
 *     status = __vxsNewStreamEx(&stream, (uint32_t)qkr_philox(), 2, seed);
 *
 * @{ */

/** The id of Philox. The first call registers it, which nobody else may do meanwhile; the next only read.
 * @return the id, or VXS_STATUS_NO_MEMORY if the table is full */
QKR_API int32_t qkr_philox(void);
/** @} */

/** @name Modular powers
 * base^exponent by repeated squaring, as skip-ahead and leapfrog use them; 1 if the exponent is 0. The bits
 * of the exponent count as an unsigned number.
 * @{ */
QKR_API uint32_t __vxsiPowMod(uint32_t base, int32_t exponent, uint32_t modulus); /**< modulo `modulus` */
/** modulo 2^31 - 1, for a base below 2^31. Each product p is folded once, to the low 32 bits of
 * p mod 2^31 + p / 2^31, less 2^31 - 1 if they are not below that: the product of two residues becomes a
 * residue, but that of larger bases need not, and a base of 2^31 or more does not give its power. Reduce it
 * first. */
QKR_API uint32_t __vxsiPowMod2P31M1(uint32_t base, int32_t exponent);
QKR_API uint64_t __vxsiPowMod2P59(uint64_t base, int32_t exponent); /**< modulo 2^59 */
/** @} */

/** @name Matrices modulo m
 * What skip-ahead of MRG32K3A stands on. A matrix is nine words in rows, a vector three words; results are
 * residues. A result may overwrite an operand, save where that is excluded.
 * @{ */

/** result = a b mod modulus. */
QKR_API void __vxsiMatr3x3MulMod(const uint32_t *a, const uint32_t *b, uint32_t *result, uint32_t modulus);

/** result = matrix vector mod modulus. */
QKR_API void __vxsiMatr3x3VectMulMod(const uint32_t *matrix, const uint32_t *vector, uint32_t *result,
                                     uint32_t modulus);

/** result = matrix^exponent mod modulus. Destroys matrix, which result must not overlap. */
QKR_API void __vxsiMatr3x3PowMod(uint32_t *matrix, uint32_t *result, uint32_t modulus, uint32_t exponent);

/** Advances three successive numbers of a sequence z[n] = c[0] z[n-1] + c[1] z[n-2] + c[2] z[n-3] mod
 * modulus, oldest first, by exponent steps, in place.
 * @param coefficients c, as residues */
QKR_API void __vxsiVect3PowMod(uint32_t *vector, const uint32_t *coefficients, uint32_t modulus,
                               uint32_t exponent);
/** @} */

/** @name Functions of one number
 * For user generators and tests; arrays go through vector math.
 * @{ */

/** ln(x), within 1 ulp. -infinity, with the event "divide by zero", for 0; NaN, with the event "invalid", for
 * numbers below 0. */
QKR_API double __vxsdLn(double x);
/** ln(x) in double precision, rounded. */
QKR_API float __vxssLn(float x);
/** The largest whole number not above x; with the sign of x if it is 0. */
QKR_API double __vxsdFloor(double x);
/** The square root of 0 or a positive normal number, within 3 ulp. */
QKR_API double __vxsdSqrt(double x);
/** @} */

QKR_END_DECLS

#endif
