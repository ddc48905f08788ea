// Uniform numbers: the stream's own, over an interval. All other distributions draw through here.
#include "distributions/internal.h"
#include "streams/few_numbers.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

const BrngRecord &generator_of(const StreamState *stream) {
  int32_t row, member;
  const BrngRecord *table = __vxsGetBrngBaseOffset(static_cast<int32_t>(stream->brng), &row, &member);
  return table[row];
}

template <class T>
int32_t bounded_if_accurate(int32_t method, int32_t status, int32_t n, T *out, T a, T b) {
  if (status >= 0 && method & VXS_METHOD_ACCURATE) bound(n, out, a, b);
  return status;
}

#if QKR_BASELINE
constexpr int32_t few = 4;  // from where on the way to the generator does not matter
template <class T>
bool few_uniforms(int32_t method, StreamState *stream, int32_t n, T *out, T a, T b) {
  return n > 0 && n <= few && !(method & VXS_METHOD_ACCURATE) && draw_ready(stream, n, out, a, b);
}
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION_UNLESS(_vxsdRngUniform, double, (double a, double b), (a, b),
                        few_uniforms(method, stream, n, out, a, b)) {
  return bounded_if_accurate(method, generator_of(stream).dBrng(stream, n, out, a, b), n, out, a, b);
}
QKR_DISTRIBUTION_UNLESS(_vxssRngUniform, float, (float a, float b), (a, b),
                        few_uniforms(method, stream, n, out, a, b)) {
  return bounded_if_accurate(method, generator_of(stream).sBrng(stream, n, out, a, b), n, out, a, b);
}

#if QKR_BASELINE
extern "C" int32_t _vxsiRngUniformBits(int32_t, StreamState *stream, int32_t n, uint32_t *out) {
  return qkr::sse2::generator_of(stream).iBrng(stream, n, out);
}
#endif
