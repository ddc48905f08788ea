// The kernels of convolution, compiled for each vector width: the entries call that of the processor.
#pragma once

#include <qkr/sigfft.h>

namespace qkr::sigfft {

// No direct sum has a shorter sequence of more samples than this: its lengths are below 150 together, or the
// shorter one's is below 32.
constexpr int32_t shortest_transformed_result = 150, shortest_transformed_filter = 32;
constexpr size_t longest_direct_filter = shortest_transformed_result / 2;

}  // namespace qkr::sigfft

extern "C" {
// One part of x, of `count` samples, convolved with the `taps` samples of h, term after term of each result
// from h[0] on. The first taps - 1 results go on from the sums in dst if they are `continued`; all others, up
// to number count + taps - 2, start with this part.
void zprs_directSum_32f(const float *x, size_t count, const float *h, size_t taps, bool continued,
                        float *dst);
void zprs_directSum_64f(const double *x, size_t count, const double *h, size_t taps, bool continued,
                        double *dst);

// Products of `count` pairs, each a complex number: a[k] b[k], or a[k] times the conjugate of b[k]. dst may
// be a or b. Those of 16-bit integers, times 2^-scale, are rounded down and saturated.
void zprs_pairProducts_32f(const float *a, const float *b, float *dst, size_t count);
void zprs_pairProducts_64f(const double *a, const double *b, double *dst, size_t count);
void zprs_conjugateProducts_32f(const float *a, const float *b, float *dst, size_t count);
void zprs_conjugateProducts_64f(const double *a, const double *b, double *dst, size_t count);
void zprs_pairProducts_16s(const int16_t *a, const int16_t *b, int16_t *dst, size_t count, int32_t scale);
}
