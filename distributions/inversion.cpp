// Distributions whose quantile function is elementary: each number is that function of one uniform number
// (L. Devroye, Non-Uniform Random Variate Generation, 1986, chapter 2).
#include "distributions/cores.h"
#include "streams/few_numbers.h"

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

// A law says twice what a uniform number becomes, with the same bits: of one number that has a logarithm, in
// the default environment, by a formula, and of many by the vector functions one after the other. (Their
// formulas in one loop were measured too: at most a tenth faster, and slower than this at SSE2.)
template <class T>
struct ExponentialLaw {
  static constexpr ActsOn acts_on = ActsOn::every_error;
  T a, beta;

  T one(T u) const { return at_least(a - Cores<T>::ln(u) * beta, a); }
  void many(int32_t m, T *x) const {
    Precision<T>::ln(m, x, x);
    for (int32_t i = 0; i < m; ++i) x[i] = at_least(a - x[i] * beta, a);
  }
};
template <class T>
struct RayleighLaw {
  static constexpr ActsOn acts_on = ActsOn::singularities;
  T a, beta;

  T one(T u) const { return at_least(square_root(-Cores<T>::ln(u)) * beta + a, a); }
  void many(int32_t m, T *x) const {
    Precision<T>::ln(m, x, x);
    negate(m, x);
    Precision<T>::sqrt(m, x, x);
    scale_at_least(m, x, beta, a);
  }
};

template <class Law, class T>
int32_t by_inversion(Law law, StreamState *stream, int32_t n, T *out) {
  return with_finite_logarithms<T, Law::acts_on>(
      [=] { return from_uniforms(stream, n, out, [=](int32_t m, T *x) { law.many(m, x); }); });
}

#if QKR_BASELINE
// One number of those that lie ready in the stream; false, with nothing changed, where there is none.
template <class Law, class T>
bool one_by_inversion(Law law, StreamState *stream, T *out) {
  if (!environment_is_default() || !draw_ready(stream, 1, out, 0, 1)) return false;
  if (has_logarithm(*out)) {
    *out = law.one(*out);
  } else {
    with_finite_logarithms<T, Law::acts_on>([=] { return law.many(1, out), VXS_STATUS_OK; });
  }
  return true;
}
#endif

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

template <class T>
int32_t weibull(StreamState *stream, int32_t n, T *out, T alpha, T a, T beta) {
  return with_finite_logarithms<T, ActsOn::singularities>([=] {
    return from_uniforms(stream, n, out, [=](int32_t m, T *x) {
      Precision<T>::ln(m, x, x);
      negate(m, x);
      Precision<T>::powx(m, x, T(1) / alpha, x);
      scale_at_least(m, x, beta, a);
    });
  });
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

#define BY_INVERSION(name, T, Law)                                                    \
  QKR_DISTRIBUTION_UNLESS(name, T, (T a, T beta), (a, beta),                          \
                          n == 1 && one_by_inversion(Law<T>{a, beta}, stream, out)) { \
    return by_inversion(Law<T>{a, beta}, stream, n, out);                             \
  }
BY_INVERSION(_vxsdRngExponential, double, ExponentialLaw)
BY_INVERSION(_vxssRngExponential, float, ExponentialLaw)
BY_INVERSION(_vxsdRngRayleigh, double, RayleighLaw)
BY_INVERSION(_vxssRngRayleigh, float, RayleighLaw)

#define A_AND_BETA(name, T, kernel) \
  QKR_DISTRIBUTION(name, T, (T a, T beta), (a, beta)) { return kernel(stream, n, out, a, beta); }
A_AND_BETA(_vxsdRngGumbel, double, gumbel)
A_AND_BETA(_vxssRngGumbel, float, gumbel)
A_AND_BETA(_vxsdRngCauchy, double, cauchy)
A_AND_BETA(_vxssRngCauchy, float, cauchy)

QKR_DISTRIBUTION(_vxsdRngWeibull, double, (double alpha, double a, double beta), (alpha, a, beta)) {
  return weibull(stream, n, out, alpha, a, beta);
}
QKR_DISTRIBUTION(_vxssRngWeibull, float, (float alpha, float a, float beta), (alpha, a, beta)) {
  return weibull(stream, n, out, alpha, a, beta);
}
