// Laplace: an exponential number with a random sign.
#include "distributions/internal.h"

extern "C" {
extern const double _vxsdLaplaceTab[2];
#if QKR_BASELINE
const double _vxsdLaplaceTab[2] = {0.5, qkr::sse2::ln_floor<double>};
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The numbers x become a + beta x or a - beta x, as `choice` is above a half or not.
template <class T>
void sign_and_scale(int32_t m, T *x, const T *choice, T beta, T a) {
  const T minus_beta = T(0) - beta;
  for (int32_t i = 0; i < m; ++i) x[i] = x[i] * (choice[i] > T(0.5) ? beta : minus_beta) + a;
}

template <class T>
int32_t laplace(StreamState *stream, int32_t n, T *out, T a, T beta) {
  return with_finite_logarithms<T, ActsOn::every_error>([=] {
    T pairs[2 * longest_block], choice[longest_block];
    return in_whole_blocks<longest_block>(n, [&, out](int32_t m, ptrdiff_t first) {
      const int32_t status = uniforms(stream, 2 * m, pairs);
      if (status < 0) return status;
      T *x = out + first;
      part_pairs(m, pairs, x, choice);
      Precision<T>::ln(m, x, x);
      sign_and_scale(m, x, choice, beta, a);
      return status;
    });
  });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION(_vxsdRngLaplace, double, (double a, double beta), (a, beta)) {
  return laplace(stream, n, out, a, beta);
}
QKR_DISTRIBUTION(_vxssRngLaplace, float, (float a, float beta), (a, beta)) {
  return laplace(stream, n, out, a, beta);
}
