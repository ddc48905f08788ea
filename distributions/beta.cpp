// Beta numbers, the method chosen by the shapes p and q; sources stand at each.
#include <limits>

#include "distributions/near_one.h"
#include "distributions/rejection.h"

namespace qkr {
constexpr double ln4 = 1.3862943611198906;
// The border between the two methods for shapes below 1: Johnk's where curvature p^2 + offset + q <= 0.
constexpr double border_curvature = 0.8522552176537243, border_offset = -0.9562409713408151;
}  // namespace qkr

extern "C" {
extern const double _vxsdBETATab[7];
#if QKR_BASELINE
const double _vxsdBETATab[7] = {
    0.0, 1.0, qkr::ln4, 2.0, qkr::border_curvature, qkr::border_offset, qkr::sse2::ln_floor<double>};
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// From here on, the plain formulas multiply the rounding errors of numbers near 1 to something that shows.
template <class T>
constexpr T large_shape = T(0x1p-12) / std::numeric_limits<T>::epsilon();
// Below this, powers 1/p of uniform numbers can underflow.
template <class T>
constexpr T tiny_shape = T(0.05);
template <>
constexpr float tiny_shape<float> = 0.2f;

// Both shapes small: X / (X + Y) with X = u1^(1/p) and Y = u2^(1/q), where X + Y <= 1 (M. D. Johnk, Metrika 8
// (1964) 5).
template <class T>
int32_t johnk(StreamState *stream, int32_t n, T *out, T p, T q) {
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
  return by_rejection(stream, n, out, prepare, [&](int32_t i, T &x) {
    const T sum = powers[2 * i] + powers[2 * i + 1];
    x = powers[2 * i] / sum;
    return (sum > T(0)) & (sum <= T(1));
  });
}

// The same where X and Y may both underflow: x = 1 / (1 + Y / X), by the logarithm of Y / X.
template <class T>
int32_t johnk_by_logarithms(StreamState *stream, int32_t n, T *out, T p, T q) {
  const T smaller = p < q ? p : q, p_ratio = p / smaller, q_ratio = q / smaller;
  T sum[most_candidates], ratio[most_candidates], logarithms[2 * most_candidates];
  const auto prepare = [&](int32_t m, T *pairs) {
    Precision<T>::ln(2 * m, pairs, logarithms);
    for (int32_t i = 0; i < m; ++i) {
      ratio[i] = (logarithms[2 * i + 1] / q_ratio - logarithms[2 * i] / p_ratio) / smaller;
      pairs[2 * i] = logarithms[2 * i] / p;
      pairs[2 * i + 1] = logarithms[2 * i + 1] / q;
    }
    Precision<T>::exp(m, ratio, ratio);
    Precision<T>::exp(2 * m, pairs, pairs);
    for (int32_t i = 0; i < m; ++i) sum[i] = pairs[2 * i] + pairs[2 * i + 1];
  };
  return by_rejection(stream, n, out, prepare, [&](int32_t i, T &x) {
    x = T(1) / (T(1) + ratio[i]);
    return Answer<T>(sum[i] <= T(1));
  });
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

// The same where the constant factors overflow, or where q is so large that x and 1 - x^(1/q) lose their
// digits: powers by logarithms, and what is near 0 or 1 as its distance from there. `base` is 1 - t or 1: the
// divisor of what is below.
template <class T>
int32_t switching_by_logarithms(StreamState *stream, int32_t n, T *out, T p, T q, T t, T r, T base) {
  const T ln_t = ln(t), ln_complement = ln_of_one_plus(-t), ln_base = base == T(1) ? T(0) : ln_complement;
  T u[most_candidates], candidate[most_candidates], power[most_candidates], less_one[most_candidates];
  T excess[most_candidates], logarithm[most_candidates];
  const auto prepare = [&](int32_t m, T *pairs) {
    part_pairs(m, pairs, u, logarithm);
    for (int32_t i = 0; i < m; ++i) power[i] = u[i] <= r ? u[i] / r : (T(1) - u[i]) / (T(1) - r);
    Precision<T>::ln(m, power, power);
    for (int32_t i = 0; i < m; ++i) power[i] = u[i] <= r ? power[i] / p + ln_t : power[i] / q + ln_complement;
    exponential_and_less_one(m, power, power, less_one);
    for (int32_t i = 0; i < m; ++i) candidate[i] = u[i] <= r ? power[i] : -less_one[i];
    // The logarithms of 1 - x and of x / t
    for (int32_t i = 0; i < m; ++i) power[i] = u[i] <= r ? -candidate[i] : candidate[i] / t - T(1);
    ln_of_one_plus(m, power, excess);
    for (int32_t i = 0; i < m; ++i)
      excess[i] = u[i] <= r ? (T(1) - q) * (excess[i] - ln_base) : (T(1) - p) * excess[i];
    Precision<T>::ln(m, logarithm, logarithm);
  };
  return by_rejection(stream, n, out, prepare, [&](int32_t i, T &x) {
    x = candidate[i];
    return logarithm[i] + excess[i] <= T(0);
  });
}

// Both shapes below 1.
template <class T>
int32_t atkinson_small(StreamState *stream, int32_t n, T *out, T p, T q) {
  T roots[2] = {p * (T(1) - p), q * (T(1) - q)};
  Precision<T>::sqrt(2, roots, roots);
  const T t = roots[0] / (roots[0] + roots[1]), r = q * t / ((T(1) - t) * p + q * t);
  if (p < tiny_shape<T>) return switching_by_logarithms(stream, n, out, p, q, t, r, T(1) - t);
  return switching(stream, n, out, p, q, t, r, [=](T x) { return (T(1) - x) / (T(1) - t); });
}

// p below 1, q above.
template <class T>
int32_t atkinson_mixed(StreamState *stream, int32_t n, T *out, T p, T q) {
  const T t = (T(1) - p) / (T(1) - p + q);
  if (p < tiny_shape<T> || q > large_shape<T>) {
    const T r = q * t / (exp(q * ln_of_one_plus(-t)) * p + q * t);
    return switching_by_logarithms(stream, n, out, p, q, t, r, T(1));
  }
  const T r = q * t / (power(T(1) - t, q) * p + q * t);
  return switching(stream, n, out, p, q, t, r, [](T x) { return T(1) - x; });
}

// Both shapes above 1: w / (q + w) with ln(w / p) logistic (R. C. H. Cheng, Communications of the ACM 21
// (1978) 317, algorithm BB).
template <class T>
int32_t cheng(StreamState *stream, int32_t n, T *out, T p, T q) {
  const T s = p + q, b = sqrt((s - T(2)) / (T(2) * p * q - s)), g = p + T(1) / b;
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
  return by_rejection(stream, n, out, prepare, [&](int32_t i, T &x) {
    const bool odds_finite = u1[i] != T(1);  // it may be, after rounding
    x = w[i] / (q + w[i]);
    return odds_finite & (s * ratio[i] - T(ln4) + g * v[i] >= z[i]);
  });
}

// The same for large shapes, with everything divided by s = p + q, which may be above the largest number.
// Where w / p = e^v is near 1, the sum of the two large terms of the test is
//   s ln(s / (q + w)) + p v = s (share v - ln(1 + share (e^v - 1))), share = p / s.
template <class T>
int32_t cheng_large(StreamState *stream, int32_t n, T *out, T p, T q) {
  const T half = T(0.5) * p + T(0.5) * q, share = T(0.5) * p / half, other = T(0.5) * q / half;
  const T smaller = p < q ? p : q, larger_share = p < q ? other : share;
  const T b = sqrt((half - T(1)) / half / (T(2) * (smaller * larger_share) - T(1)));
  T u1[most_candidates], v[most_candidates], power[most_candidates], growth[most_candidates];
  T logarithm[most_candidates], z[most_candidates];
  const auto prepare = [&](int32_t m, T *pairs) {
    part_pairs(m, pairs, u1, z);
    for (int32_t i = 0; i < m; ++i) v[i] = u1[i] / (T(1) - u1[i]);
    Precision<T>::ln(m, v, v);
    for (int32_t i = 0; i < m; ++i) {
      v[i] *= b;
      z[i] = u1[i] * u1[i] * z[i];
    }
    exponential_and_less_one(m, v, power, growth);
    for (int32_t i = 0; i < m; ++i) growth[i] *= share;
    ln_of_one_plus(m, growth, logarithm);
    Precision<T>::ln(m, z, z);
  };
  return by_rejection(stream, n, out, prepare, [&](int32_t i, T &x) {
    const bool odds_finite = u1[i] != T(1);
    const T difference = T(2) * (share * v[i] - logarithm[i]);
    const T ratio = share * power[i] / (T(1) + growth[i]);
    x = ratio < T(1) ? ratio : T(1);
    return odds_finite & (half * difference - T(ln4) + v[i] / b >= z[i]);
  });
}

// u^(1/p)
template <class T>
int32_t power_of_uniform(StreamState *stream, int32_t n, T *out, T p) {
  return from_uniforms(stream, n, out, [=](int32_t m, T *x) { Precision<T>::powx(m, x, T(1) / p, x); });
}

// 1 - u^(1/q)
template <class T>
int32_t complement_of_power(StreamState *stream, int32_t n, T *out, T q) {
  return from_uniforms(stream, n, out, [=](int32_t m, T *x) {
    if (q <= T(1)) {
      Precision<T>::powx(m, x, T(1) / q, x);
      for (int32_t i = 0; i < m; ++i) x[i] = T(1) - x[i];
      return;
    }
    T exponent[longest_block];
    Precision<T>::ln(m, x, x);
    for (int32_t i = 0; i < m; ++i) exponent[i] = x[i] / q;
    exponential_and_less_one(m, exponent, exponent, x);
    negate(m, x);
  });
}

template <class T>
int32_t beta_over(int32_t method, StreamState *stream, int32_t n, T *out, T p, T q, T a, T beta) {
  const auto mirror = [=](int32_t status) {
    if (status >= 0)
      for (ptrdiff_t i = 0; i < n; ++i) out[i] = T(1) - out[i];
    return status;
  };
  const auto stretched = [=](int32_t status, bool bounded) {
    if (status < 0) return status;
    in_blocks(n, [=](int32_t m, ptrdiff_t first) {
      scale(m, out + first, beta, a);
      if (bounded) bound(m, out + first, a, a + beta);
    });
    return status;
  };
  const T one = T(1), tiny = tiny_shape<T>;
  const bool accurate = method & VXS_METHOD_ACCURATE;
  if (p < one && q < one) {
    const bool outside = T(border_curvature) * p * p + T(border_offset) + q > T(0);
    const auto kernel = outside                ? atkinson_small<T>
                        : p < tiny && q < tiny ? johnk_by_logarithms<T>
                                               : johnk<T>;
    return stretched(kernel(stream, n, out, p, q), accurate);
  }
  if (p < one && q > one) return stretched(atkinson_mixed(stream, n, out, p, q), true);
  if (p > one && q < one) return stretched(mirror(atkinson_mixed(stream, n, out, q, p)), true);
  if (p > one && q > one) {
    const bool large = p > large_shape<T> || q > large_shape<T>;
    return stretched((large ? cheng_large<T> : cheng<T>)(stream, n, out, p, q), accurate);
  }
  if (p != one && q == one) return stretched(power_of_uniform(stream, n, out, p), true);
  if (p == one) return stretched(complement_of_power(stream, n, out, q), true);
  return Precision<T>::uniform(VXS_METHOD_ACCURATE, stream, n, out, a, a + beta);  // a shape is NaN
}

template <class T>
int32_t beta_under_callback(int32_t method, StreamState *stream, int32_t n, T *out, T p, T q, T a, T beta) {
  return with_finite_logarithms<T, ActsOn::singularities>(
      [=] { return beta_over(method, stream, n, out, p, q, a, beta); });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION(_vxsdRngBeta, double, (double p, double q, double a, double beta), (p, q, a, beta)) {
  return beta_under_callback(method, stream, n, out, p, q, a, beta);
}
QKR_DISTRIBUTION(_vxssRngBeta, float, (float p, float q, float a, float beta), (p, q, a, beta)) {
  return beta_under_callback(method, stream, n, out, p, q, a, beta);
}
