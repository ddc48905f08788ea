// Distributions whose quantile function is elementary: each number is that function of one uniform number
// (L. Devroye, Non-Uniform Random Variate Generation, 1986, chapter 2).
#include "distributions/internal.h"

namespace qkr {
constexpr double half_pi = 1.5707963267948966;
}

extern "C" {
extern const double _vxsdExponentialTab[1], _vxsdGumbelTab[1], _vxsdRayleighTab[1], _vxsdWeibullTab[1];
extern const double _vxsdCauchyTab[2];
#if QKR_BASELINE
const double _vxsdExponentialTab[1] = {qkr::sse2::ln_floor<double>};
const double _vxsdGumbelTab[1] = {qkr::sse2::ln_floor<double>};
const double _vxsdRayleighTab[1] = {qkr::sse2::ln_floor<double>};
const double _vxsdWeibullTab[1] = {qkr::sse2::ln_floor<double>};
const double _vxsdCauchyTab[2] = {qkr::half_pi, -qkr::half_pi};
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T>
int32_t exponential(StreamState *stream, int32_t n, T *out, T a, T beta) {
  return with_finite_logarithms<T, ActsOn::every_error>([=] {
    return from_uniforms(stream, n, out, [=](int32_t m, T *x) {
      Precision<T>::ln(m, x, x);
      for (int32_t i = 0; i < m; ++i) x[i] = at_least(a - x[i] * beta, a);
    });
  });
}

template <class T>
int32_t gumbel(StreamState *stream, int32_t n, T *out, T a, T beta) {
  return with_finite_logarithms<T, ActsOn::every_error>([=] {
    return draw_in_blocks(
        stream, n,
        [=](int32_t m, ptrdiff_t first) {
          return Precision<T>::exponential(0, stream, m, out + first, T(0), T(1));
        },
        [=](int32_t m, ptrdiff_t first) {
          Precision<T>::ln(m, out + first, out + first);
          scale(m, out + first, beta, a);
        });
  });
}

// a + beta root(-ln u)
template <class T, class Root>
int32_t root_of_exponential(StreamState *stream, int32_t n, T *out, T a, T beta, Root root) {
  return with_finite_logarithms<T, ActsOn::singularities>([=] {
    return from_uniforms(stream, n, out, [=](int32_t m, T *x) {
      Precision<T>::ln(m, x, x);
      negate(m, x);
      root(m, x);
      scale_at_least(m, x, beta, a);
    });
  });
}

template <class T>
int32_t rayleigh(StreamState *stream, int32_t n, T *out, T a, T beta) {
  return root_of_exponential(stream, n, out, a, beta, [](int32_t m, T *x) { Precision<T>::sqrt(m, x, x); });
}

template <class T>
int32_t weibull(StreamState *stream, int32_t n, T *out, T alpha, T a, T beta) {
  return root_of_exponential(stream, n, out, a, beta,
                             [=](int32_t m, T *x) { Precision<T>::powx(m, x, T(1) / alpha, x); });
}

template <class T>
int32_t cauchy(StreamState *stream, int32_t n, T *out, T a, T beta) {
  const T upper = T(half_pi), lower = -upper;
  return draw_in_blocks(
      stream, n,
      [=](int32_t m, ptrdiff_t first) {
        return Precision<T>::uniform(0, stream, m, out + first, lower, upper);
      },
      [=](int32_t m, ptrdiff_t first) {
        Precision<T>::tan(m, out + first, out + first);
        scale(m, out + first, beta, a);
      });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define A_AND_BETA(name, T, kernel) \
  QKR_DISTRIBUTION(name, T, (T a, T beta), (a, beta)) { return kernel(stream, n, out, a, beta); }
A_AND_BETA(_vxsdRngExponential, double, exponential)
A_AND_BETA(_vxssRngExponential, float, exponential)
A_AND_BETA(_vxsdRngGumbel, double, gumbel)
A_AND_BETA(_vxssRngGumbel, float, gumbel)
A_AND_BETA(_vxsdRngRayleigh, double, rayleigh)
A_AND_BETA(_vxssRngRayleigh, float, rayleigh)
A_AND_BETA(_vxsdRngCauchy, double, cauchy)
A_AND_BETA(_vxssRngCauchy, float, cauchy)

QKR_DISTRIBUTION(_vxsdRngWeibull, double, (double alpha, double a, double beta), (alpha, a, beta)) {
  return weibull(stream, n, out, alpha, a, beta);
}
QKR_DISTRIBUTION(_vxssRngWeibull, float, (float alpha, float a, float beta), (alpha, a, beta)) {
  return weibull(stream, n, out, alpha, a, beta);
}
