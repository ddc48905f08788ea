// Points of the unit circle, the numbers that all twiddles are drawn from. Correctly rounded but for about
// one in 2^19 near an axis, and fewer elsewhere, which may be the other neighbour of the exact value; singles
// are doubles rounded again. The same bits on every processor: plain arithmetic in a fixed order.
#pragma once

#include <stddef.h>

extern "C" {
void zprs_fillCircle_64f(size_t n, double *pairs);
void zprs_fillCircle_32f(size_t n, float *pairs);
void zprs_fillQuarterSines_64f(size_t n, double *table);
void zprs_fillQuarterSines_32f(size_t n, float *table);
}

namespace qkr::sigfft {

// Pair k: cosine and negated sine of 2 pi k / n, k below n. n is from 1 to 2^40.
inline void fill_circle(size_t n, double *pairs) { zprs_fillCircle_64f(n, pairs); }
inline void fill_circle(size_t n, float *pairs) { zprs_fillCircle_32f(n, pairs); }

// Number k: sine of 2 pi k / n, k from 0 to n/4. n is a multiple of 8, and at most 2^40.
inline void fill_quarter_sines(size_t n, double *table) { zprs_fillQuarterSines_64f(n, table); }
inline void fill_quarter_sines(size_t n, float *table) { zprs_fillQuarterSines_32f(n, table); }

}  // namespace qkr::sigfft
