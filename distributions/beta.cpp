// Beta numbers, the method chosen by the shapes p and q; sources stand at each.
#include "distributions/rejection.h"

extern "C" {
extern const double _vxsdBETATab[7];
#if QKR_BASELINE
const double _vxsdBETATab[7] = {0.0,
                                1.0,
                                1.3862943611198906,
                                2.0,
                                0.8522552176537243,
                                -0.9562409713408151,
                                qkr::sse2::ln_floor};  // [2]: ln 4
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Both shapes small: X / (X + Y) with X = u1^(1/p) and Y = u2^(1/q), where X + Y <= 1 (M. D. Johnk, Metrika 8
// (1964) 5).
template <class T>
int32_t _Johnk(StreamState *stream, int32_t n, T *out, T p, T q, T a, T beta) {
  T *powers;
  const auto prepare = [&](int32_t m, T *pairs) {
    Precision<T>::ln(2 * m, pairs, pairs);
    for (int32_t i = 0; i < m; ++i) {
      pairs[2 * i] /= p;
      pairs[2 * i + 1] /= q;
    }
    Precision<T>::exp(2 * m, pairs, pairs);
    powers = pairs;
  };
  const int32_t status = by_rejection(stream, n, out, prepare, [&](int32_t i, T &x) {
    const T sum = powers[2 * i] + powers[2 * i + 1];
    x = powers[2 * i] / sum;
    return (sum > T(0)) & (sum <= T(1));
  });
  if (status >= 0) scale(n, out, beta, a);
  return status;
}

// p < 1: rejection from x^(p - 1) below t and (1 - x)^(q - 1) above, of which the first is chosen with
// probability r (A. C. Atkinson and J. Whittaker, Journal of the Royal Statistical Society A 139 (1976) 462).
// What is then tested is the logarithm of below(x), times 1 - q, or of x / t, times 1 - p.
template <class T, class Below>
int32_t switching(StreamState *stream, int32_t n, T *out, T p, T q, T t, T r, Below below) {
  const T exponents[2] = {T(1) / p, T(1) / q};
  T powers[2] = {T(1) / r, T(1) / (T(1) - r)};
  Precision<T>::pow(2, powers, exponents, powers);
  const T lower = t * powers[0], upper = (T(1) - t) * powers[1];
  T u[most_candidates], candidate[most_candidates], exponent[most_candidates], excess[most_candidates];
  T logarithm[most_candidates];
  const auto prepare = [&](int32_t m, T *pairs) {
    part_pairs(m, pairs, u, logarithm);
    for (int32_t i = 0; i < m; ++i) {
      candidate[i] = u[i] <= r ? u[i] : T(1) - u[i];
      exponent[i] = u[i] <= r ? exponents[0] : exponents[1];
    }
    Precision<T>::pow(m, candidate, exponent, candidate);
    for (int32_t i = 0; i < m; ++i) {
      candidate[i] = u[i] <= r ? lower * candidate[i] : T(1) - upper * candidate[i];
      excess[i] = u[i] <= r ? below(candidate[i]) : candidate[i] / t;
    }
    Precision<T>::ln(m, excess, excess);
    for (int32_t i = 0; i < m; ++i) excess[i] *= u[i] <= r ? T(1) - q : T(1) - p;
    Precision<T>::ln(m, logarithm, logarithm);
  };
  return by_rejection(stream, n, out, prepare, [&](int32_t i, T &x) {
    x = candidate[i];
    return logarithm[i] + excess[i] <= T(0);
  });
}

template <class T>
int32_t _Atkinson1(StreamState *stream, int32_t n, T *out, T p, T q, T a, T beta) {
  T roots[2] = {p * (T(1) - p), q * (T(1) - q)};
  Precision<T>::sqrt(2, roots, roots);
  const T t = roots[0] / (roots[0] + roots[1]), r = q * t / ((T(1) - t) * p + q * t);
  const int32_t status = switching(stream, n, out, p, q, t, r, [=](T x) { return (T(1) - x) / (T(1) - t); });
  if (status >= 0) scale(n, out, beta, a);
  return status;
}

template <class T>
int32_t _Atkinson2(StreamState *stream, int32_t n, T *out, T p, T q) {
  const T t = (T(1) - p) / (T(1) - p + q), r = q * t / (power(T(1) - t, q) * p + q * t);
  return switching(stream, n, out, p, q, t, r, [](T x) { return T(1) - x; });
}

// Both shapes above 1: w / (q + w) with ln(w / p) logistic (R. C. H. Cheng, Communications of the ACM 21
// (1978) 317, algorithm BB).
template <class T>
int32_t _Cheng(StreamState *stream, int32_t n, T *out, T p, T q, T a, T beta) {
  const T ln4 = T(_vxsdBETATab[2]), s = p + q, b = sqrt((s - T(2)) / (T(2) * p * q - s)), g = p + T(1) / b;
  T u1[most_candidates], v[most_candidates], w[most_candidates], ratio[most_candidates], z[most_candidates];
  const auto prepare = [&](int32_t m, T *pairs) {
    part_pairs(m, pairs, u1, z);
    for (int32_t i = 0; i < m; ++i) v[i] = u1[i] / (T(1) - u1[i]);
    Precision<T>::ln(m, v, v);
    for (int32_t i = 0; i < m; ++i) v[i] *= b;
    Precision<T>::exp(m, v, w);
    for (int32_t i = 0; i < m; ++i) {
      w[i] *= p;
      ratio[i] = s / (q + w[i]);
      z[i] = u1[i] * u1[i] * z[i];
    }
    Precision<T>::ln(m, ratio, ratio);
    Precision<T>::ln(m, z, z);
  };
  const int32_t status = by_rejection(stream, n, out, prepare, [&](int32_t i, T &x) {
    const bool odds_finite = u1[i] != T(1);  // it may be, after rounding
    x = w[i] / (q + w[i]);
    return odds_finite & (s * ratio[i] - ln4 + g * v[i] >= z[i]);
  });
  if (status >= 0) scale(n, out, beta, a);
  return status;
}

// u^(1/p)
template <class T>
int32_t power_of_uniform(StreamState *stream, int32_t n, T *out, T p) {
  return from_uniforms(stream, n, out, [=](int32_t m, T *x) { Precision<T>::powx(m, x, T(1) / p, x); });
}

template <class T>
int32_t beta_over(int32_t method, StreamState *stream, int32_t n, T *out, T p, T q, T a, T beta) {
  const auto stretched = [=](int32_t status, bool mirrored) {
    if (status < 0) return status;
    in_stretches(n, [=](int32_t m, int32_t first) {
      T *x = out + first;
      if (mirrored)
        for (int32_t i = 0; i < m; ++i) x[i] = T(1) - x[i];
      scale(m, x, beta, a);
      bound(m, x, a, a + beta);
    });
    return status;
  };
  const auto bounded_if_accurate = [=](int32_t status) {
    if (status >= 0 && method & VXS_METHOD_ACCURATE) bound(n, out, a, a + beta);
    return status;
  };
  const T one = T(1);
  if (p < one && q < one) {
    const bool outside = T(_vxsdBETATab[4]) * p * p + T(_vxsdBETATab[5]) + q > T(0);
    const auto kernel = outside ? _Atkinson1<T> : _Johnk<T>;
    return bounded_if_accurate(kernel(stream, n, out, p, q, a, beta));
  }
  if (p < one && q > one) return stretched(_Atkinson2(stream, n, out, p, q), false);
  if (p > one && q < one) return stretched(_Atkinson2(stream, n, out, q, p), true);
  if (p > one && q > one) return bounded_if_accurate(_Cheng(stream, n, out, p, q, a, beta));
  if (p != one && q == one) return stretched(power_of_uniform(stream, n, out, p), false);
  if (p == one) return stretched(power_of_uniform(stream, n, out, q), true);
  return Precision<T>::uniform(VXS_METHOD_ACCURATE, stream, n, out, a, a + beta);  // a shape is NaN
}

template <class T>
int32_t beta_under_callback(int32_t method, StreamState *stream, int32_t n, T *out, T p, T q, T a, T beta) {
  return with_finite_logarithms<T, _vxsdBETATab, ActsOn::singularities>(
      [=] { return beta_over(method, stream, n, out, p, q, a, beta); });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION(d, double, Beta, (double p, double q, double a, double beta), (p, q, a, beta)) {
  return beta_under_callback(method, stream, n, out, p, q, a, beta);
}
QKR_DISTRIBUTION(s, float, Beta, (float p, float q, float a, float beta), (p, q, a, beta)) {
  return beta_under_callback(method, stream, n, out, p, q, a, beta);
}
