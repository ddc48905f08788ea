// Uniform numbers: the stream's own, over an interval. All other distributions draw through here.
#include "distributions/internal.h"

namespace {

const BrngRecord &generator_of(const StreamState *stream) {
  int32_t row, member;
  const BrngRecord *table = __vxsGetBrngBaseOffset(static_cast<int32_t>(stream->brng), &row, &member);
  return table[row];
}

template <class T>
int32_t bounded_if_accurate(int32_t method, int32_t status, int32_t n, T *out, T a, T b) {
  if (status >= 0 && method & VXS_METHOD_ACCURATE) qkr::bound(n, out, a, b);
  return status;
}

}  // namespace

extern "C" {

int32_t _vxsdRngUniform(int32_t method, StreamState *stream, int32_t n, double *out, double a, double b) {
  return bounded_if_accurate(method, generator_of(stream).dBrng(stream, n, out, a, b), n, out, a, b);
}

int32_t _vxssRngUniform(int32_t method, StreamState *stream, int32_t n, float *out, float a, float b) {
  return bounded_if_accurate(method, generator_of(stream).sBrng(stream, n, out, a, b), n, out, a, b);
}

int32_t _vxsiRngUniformBits(int32_t, StreamState *stream, int32_t n, uint32_t *out) {
  return generator_of(stream).iBrng(stream, n, out);
}

}  // extern "C"
