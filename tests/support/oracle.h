// The error of a vector function's result in units in the last place of the exact one.
#pragma once

#include "tests/support/big.h"
#include "tests/support/vector_functions.h"

namespace qkr::tests {

// By MPFR. An object belongs to one thread.
template <class T>
struct Oracle {
  ~Oracle() { mpfr_free_cache2(MPFR_FREE_LOCAL_CACHE); }
  // Of result 0 or 1 of f at a (and b).
  double error(const VectorFunction<T> &f, int result, T a, T b, T computed);
};

// By the C library's next wider format, for functions that have a quick reference: off by about a thousandth
// for doubles and by a millionth for floats.
template <class T>
double quick_error(const Quick<T> &quick, T a, T b, T computed);

}  // namespace qkr::tests
