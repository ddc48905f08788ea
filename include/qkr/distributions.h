/** @file
 * Random distributions: arrays of random numbers from a stream.
 *
 * Common to all functions here, unless told otherwise:
 * - `_vxsdRng...` gives doubles, `_vxssRng...` floats, `_vxsiRng...` 32-bit integers. The two real forms take
 *   the same steps, each in its own precision throughout.
 * - `method` is ignored where no table of methods stands; pass 0. Where one stands, others are answered with
 *   VXS_STATUS_BAD_METHOD, and nothing is drawn.
 *   `stream` is read and moved on, by one thread at a time. `n` numbers, 0 or more, go to `out`, which must
 *   not overlap the stream. The parameters of the distribution follow. Arguments are checked only where
 *   that is told.
 * - The result is the status of the stream's generator: VXS_STATUS_OK for those of the library. A negative
 *   status of a user's generator ends the call at once, with `out` unfinished.
 * - u, u1, u2 below are uniform numbers over [0, 1) in the order of the stream. Some generators yield 0 and,
 *   after rounding, 1. The logarithm of 0 is then taken as -744.4400719213812 (floats: -103.2789306640625),
 *   that of the smallest positive number, so that `out` stays finite. The error policy of vector math that
 *   the caller has set is put aside for that and restored.
 * - Splitting a request of n1 + n2 numbers into two calls changes nothing.
 *
 * Example: a thousand normal numbers with mean 5 and deviation 2.
 *
 *     StreamState *stream = NULL;
 *     uint32_t seed = 777;
 *     double numbers[1000];
 *     int32_t status = __vxsNewStreamEx(&stream, 0x800000, 1, &seed);
 *     if (status == VXS_STATUS_OK) status = _vxsdRngGaussian(1, stream, 1000, numbers, 5.0, 2.0);
 *     __vxsDeleteStream(&stream); */
#ifndef QKR_DISTRIBUTIONS_H
#define QKR_DISTRIBUTIONS_H

#include <qkr/api.h>
#include <qkr/streams.h>

QKR_BEGIN_DECLS

/** Values of `method`, and of `mstorage` of GaussianMV. */
enum {
  VXS_METHOD_ACCURATE = 0x40000000, /**< method of Uniform and Beta: the bounds hold in spite of rounding */
  QKR_GAUSSIAN_SINE = 0,            /**< method of Gaussian: one number for each pair of uniform ones */
  QKR_GAUSSIAN_PAIRS = 1,           /**< method of Gaussian: two numbers for each pair */
  QKR_POISSON_PTPE = 0,             /**< method of Poisson: table, or rejection */
  QKR_POISSON_NORMAL = 1,           /**< method of Poisson: table, or corrected normal numbers */
  QKR_STORAGE_FULL = 0,             /**< mstorage: the full matrix by rows */
  QKR_STORAGE_PACKED = 1,           /**< mstorage: the lower triangle by columns */
  QKR_STORAGE_DIAGONAL = 2          /**< mstorage: the diagonal */
};

/** @name Uniform
 * Uniform over [a, b). The rounding of some generators lets a few numbers leave the interval; with
 * VXS_METHOD_ACCURATE in `method`, what is below a becomes a, and what is above b becomes b. */
/**@{*/
QKR_API int32_t _vxsdRngUniform(int32_t method, StreamState *stream, int32_t n, double *out, double a,
                                double b);
QKR_API int32_t _vxssRngUniform(int32_t method, StreamState *stream, int32_t n, float *out, float a, float b);
/**@}*/

/** Uniform over [a, b) with all 53 bits of a double, where Uniform has those of one number of the generator,
 * 32 as a rule. Two numbers u1, u2 of the stream, uniform over [0, 1), make one: with
 *
 *     u = (floor(2^27 u1) 2^26 + floor(2^26 u2)) 2^-53
 *
 * it is u (b - a) + a, which may round to b. From generators of 32 bits that is genrand_res53 of M.
 * Matsumoto and T. Nishimura. Of quasi-random streams it takes two components for one number, which spoils
 * them. VXS_STATUS_OTHER_TYPE for abstract streams of integers and floats. */
QKR_API int32_t qkr_uniform_53(StreamState *stream, int32_t n, double *out, double a, double b);

/** @name Exponential
 * Exponential of scale beta, displaced to begin at a: a - beta ln u, at least a. Inversion. */
/**@{*/
QKR_API int32_t _vxsdRngExponential(int32_t method, StreamState *stream, int32_t n, double *out, double a,
                                    double beta);
QKR_API int32_t _vxssRngExponential(int32_t method, StreamState *stream, int32_t n, float *out, float a,
                                    float beta);
/**@}*/

/** @name Laplace
 * Laplace of mean a and scale beta: a + beta ln u1 if u2 > 1/2, else a - beta ln u1. */
/**@{*/
QKR_API int32_t _vxsdRngLaplace(int32_t method, StreamState *stream, int32_t n, double *out, double a,
                                double beta);
QKR_API int32_t _vxssRngLaplace(int32_t method, StreamState *stream, int32_t n, float *out, float a,
                                float beta);
/**@}*/

/** @name Weibull
 * Weibull of shape alpha and scale beta, displaced to begin at a: a + beta (-ln u)^(1 / alpha), at least a.
 * Inversion. A very small alpha overflows to infinity. */
/**@{*/
QKR_API int32_t _vxsdRngWeibull(int32_t method, StreamState *stream, int32_t n, double *out, double alpha,
                                double a, double beta);
QKR_API int32_t _vxssRngWeibull(int32_t method, StreamState *stream, int32_t n, float *out, float alpha,
                                float a, float beta);
/**@}*/

/** @name Cauchy
 * Cauchy of location a and scale beta: a + beta tan v, v uniform over [-pi/2, pi/2). Inversion. */
/**@{*/
QKR_API int32_t _vxsdRngCauchy(int32_t method, StreamState *stream, int32_t n, double *out, double a,
                               double beta);
QKR_API int32_t _vxssRngCauchy(int32_t method, StreamState *stream, int32_t n, float *out, float a,
                               float beta);
/**@}*/

/** @name Rayleigh
 * Rayleigh, displaced to begin at a: a + beta sqrt(-ln u), at least a. Inversion. The deviation sigma of the
 * two normal components is beta / sqrt(2). */
/**@{*/
QKR_API int32_t _vxsdRngRayleigh(int32_t method, StreamState *stream, int32_t n, double *out, double a,
                                 double beta);
QKR_API int32_t _vxssRngRayleigh(int32_t method, StreamState *stream, int32_t n, float *out, float a,
                                 float beta);
/**@}*/

/** @name Lognormal
 * b + beta e^g, at least b, with g normal of mean a and deviation sigma, made by method 1 of Gaussian, with
 * whose calls it shares the number held over. VXS_STATUS_NO_MEMORY as there. */
/**@{*/
QKR_API int32_t _vxsdRngLognormal(int32_t method, StreamState *stream, int32_t n, double *out, double a,
                                  double sigma, double b, double beta);
QKR_API int32_t _vxssRngLognormal(int32_t method, StreamState *stream, int32_t n, float *out, float a,
                                  float sigma, float b, float beta);
/**@}*/

/** @name Gumbel
 * Gumbel of location a and scale beta, with the long tail to the left: a + beta ln(-ln u). Inversion. */
/**@{*/
QKR_API int32_t _vxsdRngGumbel(int32_t method, StreamState *stream, int32_t n, double *out, double a,
                               double beta);
QKR_API int32_t _vxssRngGumbel(int32_t method, StreamState *stream, int32_t n, float *out, float a,
                               float beta);
/**@}*/

/** @name Gaussian
 * Normal of mean a and deviation sigma, by the transform of G. E. P. Box and M. E. Muller, Annals of
 * Mathematical Statistics 29 (1958) 610.
 *
 * | method | numbers                                                                          |
 * |--------|----------------------------------------------------------------------------------|
 * | 0      | sqrt(-2 ln u1) sin(2 pi u2), one for each pair                                   |
 * | 1      | that, then sqrt(-2 ln u1) cos(2 pi u2): two for each pair, and the faster method |
 *
 * Method 1 holds an unfinished pair over to its next call on the same stream, in either precision; n must not
 * be 0 then. It returns VXS_STATUS_NO_MEMORY if there is no room for that, with nothing drawn. */
/**@{*/
QKR_API int32_t _vxsdRngGaussian(int32_t method, StreamState *stream, int32_t n, double *out, double a,
                                 double sigma);
QKR_API int32_t _vxssRngGaussian(int32_t method, StreamState *stream, int32_t n, float *out, float a,
                                 float sigma);
/**@}*/

/** @name GaussianMV
 * `n` vectors of `d` elements each, mean + T z, with z independent standard normal numbers made by `method`
 * of Gaussian: normal with covariance T T'. T is lower triangular, the Cholesky factor of the covariance:
 *
 * | mstorage | T[j][i], i <= j, stands at                                               |
 * |----------|--------------------------------------------------------------------------|
 * | 0        | t[j * d + i]: the full matrix by rows; what is above the diagonal is not read |
 * | 1        | the lower triangle column after column                                   |
 * | 2        | t[j], T being diagonal                                                   |
 * | other    | T is taken for the unit matrix and mean for 0                            |
 *
 * For d = 1, T is t[0], whatever `mstorage` is. n * d may be above 2^31. VXS_STATUS_NO_MEMORY leaves z in
 * `out`, or nothing if it comes from Gaussian. VXS_STATUS_BAD_METHOD as there. */
/**@{*/
QKR_API int32_t _vxsdRngGaussianMV(int32_t method, StreamState *stream, int32_t n, double *out, int32_t d,
                                   int32_t mstorage, const double *mean, const double *t);
QKR_API int32_t _vxssRngGaussianMV(int32_t method, StreamState *stream, int32_t n, float *out, int32_t d,
                                   int32_t mstorage, const float *mean, const float *t);
/**@}*/

/** @name Gamma
 * Gamma of shape alpha and scale beta, displaced to begin at a; at least a.
 *
 * | alpha        | method               |
 * |--------------|----------------------|
 * | above 1      | Marsaglia and Tsang  |
 * | 1            | Exponential          |
 * | from 0.6 on  | Vaduva               |
 * | below 0.6    | exponential power    |
 *
 * G. Marsaglia and W. W. Tsang, ACM Transactions on Mathematical Software 26 (2000) 363; I. Vaduva,
 * Mathematische Operationsforschung und Statistik 8 (1977) 545; J. Dagpunar, Principles of Random Variate
 * Generation (1988).
 *
 * Above 1, a candidate not yet looked at is held over to the next call on the same stream, in either
 * precision; VXS_STATUS_NO_MEMORY if there is no room for it, with nothing drawn. */
/**@{*/
QKR_API int32_t _vxsdRngGamma(int32_t method, StreamState *stream, int32_t n, double *out, double alpha,
                              double a, double beta);
QKR_API int32_t _vxssRngGamma(int32_t method, StreamState *stream, int32_t n, float *out, float alpha,
                              float a, float beta);
/**@}*/

/** @name Beta
 * Beta of shapes p and q, stretched over [a, a + beta].
 *
 * | p       | q       | method                                                  |
 * |---------|---------|---------------------------------------------------------|
 * | below 1 | below 1 | Johnk if both are small, else Atkinson and Whittaker    |
 * | below 1 | above 1 | Atkinson and Whittaker                                  |
 * | above 1 | below 1 | Atkinson and Whittaker, with p and q exchanged          |
 * | above 1 | above 1 | Cheng                                                   |
 * | other   | 1       | u^(1 / p)                                               |
 * | 1       | any     | 1 - u^(1 / q)                                           |
 *
 * M. D. Johnk, Metrika 8 (1964) 5; A. C. Atkinson and J. Whittaker, Journal of the Royal Statistical Society
 * A 139 (1976) 462; R. C. H. Cheng, algorithm BB, Communications of the ACM 21 (1978) 317.
 *
 * Every pair of positive finite shapes is served: where large ones (2^40; floats: 2^11) would cost the plain
 * formulas their digits, or tiny ones their range, the same methods work with logarithms and e^x - 1.
 *
 * Where both shapes are below 1 or both above, rounding may lead out of the interval; with
 * VXS_METHOD_ACCURATE in `method` it does not. */
/**@{*/
QKR_API int32_t _vxsdRngBeta(int32_t method, StreamState *stream, int32_t n, double *out, double p, double q,
                             double a, double beta);
QKR_API int32_t _vxssRngBeta(int32_t method, StreamState *stream, int32_t n, float *out, float p, float q,
                             float a, float beta);
/**@}*/

/** Whole numbers, uniform over a to b - 1: the floor of Uniform over [a, b) in double precision. b itself can
 * come out where the generator's numbers round up to it. */
QKR_API int32_t _vxsiRngUniform(int32_t method, StreamState *stream, int32_t n, int32_t *out, int32_t a,
                                int32_t b);

/** The generator's own integers: `n` words of WordSize bytes each (4; MCG59: 8, WH: 16).
 * VXS_STATUS_OTHER_TYPE for abstract streams of reals. */
QKR_API int32_t _vxsiRngUniformBits(int32_t method, StreamState *stream, int32_t n, uint32_t *out);

/** 1 with probability p, else 0: whether a single-precision u is below p. Always 1 for p = 1. */
QKR_API int32_t _vxsiRngBernoulli(int32_t method, StreamState *stream, int32_t n, int32_t *out, double p);

/** The number of failures before the first success, where p, above 0 and below 1, is the probability of
 * success: the whole part of ln u / ln(1 - p), with ln u in single precision; 2147483647 where that is
 * larger, as it nearly always is below p = 2^-40. Inversion. */
QKR_API int32_t _vxsiRngGeometric(int32_t method, StreamState *stream, int32_t n, int32_t *out, double p);

/** @name Binomial, Hypergeometric, Negbinomial, Poisson
 * What a call has set up for its parameters stays on the stream, with which it is copied and saved: the next
 * call with the same parameters skips it. VXS_STATUS_NO_MEMORY if there is no room for it, with nothing
 * drawn. VXS_STATUS_BAD_ARGUMENT for parameters outside the stated ranges and for NaN, with nothing drawn.
 * Numbers above 2147483647 come out as that. */
/**@{*/

/** The number of successes among `ntrial` independent trials of probability p: ntrial >= 0, 0 <= p <= 1. With
 * p = 0 or ntrial = 0 all numbers are 0, with p = 1 all are ntrial.
 *
 * With p' the smaller of p and 1 - p: inversion of a table where ntrial p' < 30, else algorithm BTPE of
 * V. Kachitvichyanukul and B. W. Schmeiser, Communications of the ACM 31 (1988) 216. */
QKR_API int32_t _vxsiRngBinomial(int32_t method, StreamState *stream, int32_t n, int32_t *out, int32_t ntrial,
                                 double p);

/** How many of a sample of `s` without replacement are marked, where `m` of a lot of `l` are: 0 <= s <= l,
 * 0 <= m <= l. Where nothing or all is sampled or marked, only one number is possible, and none is drawn.
 *
 * Inversion of a table where the mode of the reduced problem (sample and marked at most half of the lot) is
 * below 40, else algorithm H2PE of V. Kachitvichyanukul and B. W. Schmeiser, Journal of Statistical
 * Computation and Simulation 22 (1985) 127. */
QKR_API int32_t _vxsiRngHypergeometric(int32_t method, StreamState *stream, int32_t n, int32_t *out,
                                       int32_t l, int32_t s, int32_t m);

/** The number of failures before success number `a`, in trials of probability p; by the formula of its law
 * also for a that is no whole number: a >= 0, 0 < p <= 1. With a = 0 or p = 1 all numbers are 0.
 *
 * Inversion of a table where (a - 1) (1 - p) / p < 100; where its tail is long (p < 0.01), numbers beyond
 * it are Poisson numbers of gamma means, with the errors of PoissonV, as all are where a / p is above 2^48.
 * Else rejection under a plateau with two exponential tails, as in H2PE. */
QKR_API int32_t _vxsiRngNegbinomial(int32_t method, StreamState *stream, int32_t n, int32_t *out, double a,
                                    double p);

/** Poisson of mean lambda >= 0; with lambda = 0 all numbers are 0.
 *
 * | method | numbers                                                                                        |
 * |--------|------------------------------------------------------------------------------------------------|
 * | 0      | inversion of a table where lambda < 27, else algorithm PTPE, in single precision               |
 * | 1      | from lambda = 100 on normal numbers, corrected, with method 1 of Gaussian; below, inversion of |
 * |        | a table by single-precision uniform numbers                                                    |
 *
 * B. W. Schmeiser and V. Kachitvichyanukul, Poisson Random Variate Generation, Research Memorandum 81-4,
 * Purdue University (1981); M. B. Giles, ACM Transactions on Mathematical Software 42 (2016), Algorithm
 * 955. Cumulative probabilities of method 1 are right within 6e-6. VXS_STATUS_BAD_METHOD for other methods.
 * */
QKR_API int32_t _vxsiRngPoisson(int32_t method, StreamState *stream, int32_t n, int32_t *out, double lambda);
/**@}*/

/** Poisson of mean lambda[i] for number i, with no set-up: a polynomial in a normal number (method 1 of
 * Gaussian in single precision), the coefficients chosen by the power of two below the mean. Below 1/16 the
 * series of the distribution function. The array of means must not overlap `out`. A mean that is negative
 * or NaN gives 0.
 *
 * The laws are approximate. Their distance from Poisson's (half the sum of the absolute differences of all
 * probabilities) is at most
 *
 * | means    | below 1/8 | 1/8 to 1/2 | 1/2 to 8 | 8 to 16 | 16 to 2^13        | from 2^13 on |
 * |----------|-----------|------------|----------|---------|-------------------|--------------|
 * | distance | 2e-4      | 6e-5       | 3e-4     | 1e-4    | 4e-5, falling to 1e-6 | 6e-4     |
 *
 * tools/tables/poisson_bands.py measures it for each power of two. */
QKR_API int32_t _vxsiRngPoissonV(int32_t method, StreamState *stream, int32_t n, int32_t *out,
                                 const double *lambda);

QKR_END_DECLS

#endif
