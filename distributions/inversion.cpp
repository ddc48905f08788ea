// Distributions whose quantile function is elementary: each number is that function of one uniform number
// (L. Devroye, Non-Uniform Random Variate Generation, 1986, chapter 2).
#include "distributions/internal.h"

extern "C" {
extern const double _vxsdExponentialTab[1], _vxsdGumbelTab[1], _vxsdRayleighTab[1], _vxsdWeibullTab[1];
extern const double _vxsdCauchyTab[2];
#if QKR_BASELINE
const double _vxsdExponentialTab[1] = {qkr::sse2::ln_floor};
const double _vxsdGumbelTab[1] = {qkr::sse2::ln_floor};
const double _vxsdRayleighTab[1] = {qkr::sse2::ln_floor};
const double _vxsdWeibullTab[1] = {qkr::sse2::ln_floor};
const double _vxsdCauchyTab[2] = {1.5707963267948966, -1.5707963267948966};  // pi / 2, -pi / 2
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T>
int32_t exponential(StreamState *stream, int32_t n, T *out, T a, T beta) {
  return with_finite_logarithms<T, _vxsdExponentialTab, ActsOn::every_error>([=] {
    return from_uniforms(stream, n, out, [=](int32_t m, T *x) {
      Precision<T>::ln(m, x, x);
      for (int32_t i = 0; i < m; ++i) x[i] = at_least(a - x[i] * beta, a);
    });
  });
}

template <class T>
int32_t gumbel(StreamState *stream, int32_t n, T *out, T a, T beta) {
  return with_finite_logarithms<T, _vxsdGumbelTab, ActsOn::every_error>([=] {
    return draw_in_stretches(
        stream, n,
        [=](int32_t m, int32_t first) {
          return Precision<T>::exponential(0, stream, m, out + first, T(0), T(1));
        },
        [=](int32_t m, int32_t first) {
          Precision<T>::ln(m, out + first, out + first);
          scale(m, out + first, beta, a);
        });
  });
}

// a + beta root(-ln u)
template <class T, const auto &table, class Root>
int32_t root_of_exponential(StreamState *stream, int32_t n, T *out, T a, T beta, Root root) {
  return with_finite_logarithms<T, table, ActsOn::singularities>([=] {
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
  return root_of_exponential<T, _vxsdRayleighTab>(stream, n, out, a, beta,
                                                  [](int32_t m, T *x) { Precision<T>::sqrt(m, x, x); });
}

template <class T>
int32_t weibull(StreamState *stream, int32_t n, T *out, T alpha, T a, T beta) {
  return root_of_exponential<T, _vxsdWeibullTab>(
      stream, n, out, a, beta, [=](int32_t m, T *x) { Precision<T>::powx(m, x, T(1) / alpha, x); });
}

template <class T>
int32_t cauchy(StreamState *stream, int32_t n, T *out, T a, T beta) {
  const T lower = T(_vxsdCauchyTab[1]), upper = T(_vxsdCauchyTab[0]);
  return draw_in_stretches(
      stream, n,
      [=](int32_t m, int32_t first) {
        return Precision<T>::uniform(0, stream, m, out + first, lower, upper);
      },
      [=](int32_t m, int32_t first) {
        Precision<T>::tan(m, out + first, out + first);
        scale(m, out + first, beta, a);
      });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define ENTRIES(letter, T)                                                                                  \
  QKR_DISTRIBUTION(letter, T, Exponential, (T a, T beta), (a, beta)) {                                      \
    return exponential(stream, n, out, a, beta);                                                            \
  }                                                                                                         \
  QKR_DISTRIBUTION(letter, T, Gumbel, (T a, T beta), (a, beta)) { return gumbel(stream, n, out, a, beta); } \
  QKR_DISTRIBUTION(letter, T, Rayleigh, (T a, T beta), (a, beta)) {                                         \
    return rayleigh(stream, n, out, a, beta);                                                               \
  }                                                                                                         \
  QKR_DISTRIBUTION(letter, T, Weibull, (T alpha, T a, T beta), (alpha, a, beta)) {                          \
    return weibull(stream, n, out, alpha, a, beta);                                                         \
  }                                                                                                         \
  QKR_DISTRIBUTION(letter, T, Cauchy, (T a, T beta), (a, beta)) { return cauchy(stream, n, out, a, beta); }
ENTRIES(d, double)
ENTRIES(s, float)
