// The convolution that anybody would write, compiled at -O3 for each level.
#pragma once

#include <cstddef>

namespace qkr::bench {

template <class T>
using PlainLoop = void (*)(const T *x, size_t a, const T *h, size_t b, T *dst);

struct PlainLoops {
  PlainLoop<float> single;
  PlainLoop<double> twice;
  PlainLoop<float> get(float) const { return single; }
  PlainLoop<double> get(double) const { return twice; }
};
extern const PlainLoops plain_loops_sse2, plain_loops_avx2, plain_loops_avx512;

}  // namespace qkr::bench
