#include "sigfft_convolution/plain_loop.h"

#include "simd/vectors.h"

namespace qkr::bench {
namespace {

template <class T>
void convolve(const T *__restrict x, size_t a, const T *__restrict h, size_t b, T *__restrict dst) {
  for (size_t k = 0; k < a + b - 1; ++k) dst[k] = 0;
  for (size_t j = 0; j < b; ++j)
    for (size_t i = 0; i < a; ++i) dst[i + j] += x[i] * h[j];
}

}  // namespace

#if QKR_SIMD_BYTES == 64
const PlainLoops plain_loops_avx512
#elif QKR_SIMD_BYTES == 32
const PlainLoops plain_loops_avx2
#else
const PlainLoops plain_loops_sse2
#endif
    = {convolve<float>, convolve<double>};

}  // namespace qkr::bench
