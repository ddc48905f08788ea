// The convolution that anybody would write, compiled at -O3 for each level: result by result, and term by
// term into all results.
#pragma once

#include <cstdint>

namespace qkr::bench {

// Two operands, x the larger one, of up to three dimensions; z is the whole result.
struct LoopShape {
  int64_t x[3], h[3];
};

template <class T>
using PlainLoop = void (*)(const LoopShape &shape, const T *x, const T *h, T *z);

template <class T>
struct PlainLoops {
  PlainLoop<T> by_results, by_terms;
};
struct LoopsOfLevel {
  PlainLoops<double> of_doubles;
  PlainLoops<float> of_floats;
  const PlainLoops<double> &get(double) const { return of_doubles; }
  const PlainLoops<float> &get(float) const { return of_floats; }
};
extern const LoopsOfLevel plain_loops_sse2, plain_loops_avx2, plain_loops_avx512;

}  // namespace qkr::bench
