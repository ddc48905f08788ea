// Gamma numbers by rejection, the method chosen by the shape alpha; sources stand at each.
#include "distributions/chunks.h"
#include "distributions/normals.h"
#include "distributions/rejection.h"
#include "streams/few_numbers.h"

namespace qkr {
constexpr double third = 1.0 / 3.0;
constexpr double squeeze = 0.0331;    // accepts at once: u < 1 - squeeze x^4
constexpr double weibull_from = 0.6;  // the shape from which rejection from Weibull's law is the faster
}  // namespace qkr

extern "C" {
extern const double _vxsdGAMMATab[8];
#if QKR_BASELINE
const double _vxsdGAMMATab[8] = {0.0, qkr::third,        qkr::squeeze,          1.0,
                                 0.5, qkr::weibull_from, qkr::sse2::whole_turn, qkr::sse2::ln_floor<double>};
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// A candidate not yet looked at: its acceptance uniform and its normal number.
struct PendingCandidate {
  double u, x;
};
constexpr double none = -1.0;
constexpr uint32_t pending_candidate = 7;
static_assert(sizeof(PendingCandidate) == 16, "in stream files too");

template <class T>
struct Candidates {
  T u[most_candidates + 1], x[most_candidates + 1];

  // m of them, an even number, from place `first` on. The words of the stream go two and two: part of a pair
  // for Box and Muller, acceptance uniform.
  int32_t draw(StreamState *stream, int32_t m, int32_t first) {
    T words[2 * most_candidates], pairs[most_candidates];
    const int32_t status = uniforms(stream, 2 * m, words);
    if (status < 0) return status;
    part_pairs(m, words, pairs, u + first);
    normals<T, Takes::both>(m / 2, pairs, x + first, T(1), T(-0.0));
    return status;
  }

  // Tests the first m, and puts those that are accepted into `out`; returns how many they are. The undecided
  // of a quick test are a few in a hundred, whose logarithms are taken together.
  int32_t keep_accepted(int32_t m, T c, T d, T *out) const {
    T cube[most_candidates + 1], product[most_candidates + 1];
    Answer<T> accepted[most_candidates + 1], undecided[most_candidates + 1];
    for (int32_t i = 0; i < m; ++i) {
      const T v = c * x[i] + T(1), s = x[i] * x[i];
      const bool positive = v > T(0), inside = u[i] < T(1) - T(squeeze) * s * s;
      cube[i] = v * v * v;
      product[i] = d * cube[i];
      accepted[i] = positive & inside;
      undecided[i] = positive & !inside;
    }

    int32_t place[most_candidates + 1], count = 0;
    for (int32_t i = 0; i < m; ++i) {
      place[count] = i;
      count += static_cast<int32_t>(undecided[i]);
    }
    T logarithms[2 * (most_candidates + 1)], *ln_u = logarithms, *ln_w = logarithms + count;
    for (int32_t k = 0; k < count; ++k) {
      ln_u[k] = u[place[k]];
      ln_w[k] = cube[place[k]];
    }
    Precision<T>::ln(2 * count, logarithms, logarithms);
    // For large d, the cube is near 1: 1 - cube is exact then, and its difference to the logarithm small.
    for (int32_t k = 0; k < count; ++k) {
      const int32_t i = place[k];
      accepted[i] = ln_u[k] < T(0.5) * (x[i] * x[i]) + d * (ln_w[k] + (T(1) - cube[i]));
    }
    return keep(m, product, accepted, out);
  }
};

// alpha > 1: d (1 + c x)^3 with x normal (G. Marsaglia and W. W. Tsang, ACM Transactions on Mathematical
// Software 26 (2000) 363). Candidates come in twos. One that is left over is kept for the next call, so that
// the split of n into calls does not matter.
template <class T>
int32_t marsaglia_tsang(StreamState *stream, int32_t n, T *out, T alpha) {
  const T d = alpha - T(third), c = sqrt(T(1) / (T(9) * alpha - T(3)));
  PendingCandidate *pending;
  int32_t status = find_or_add_chunk(stream, pending_candidate, PendingCandidate{none, 0.0}, &pending);
  if (status < 0) return status;
  Candidates<T> candidates;
  int32_t held = 0;
  if (pending->u >= 0.0) {
    candidates.u[0] = T(pending->u);
    candidates.x[0] = T(pending->x);
    held = 1;
    pending->u = none;
  }

  for (int32_t done = 0; done < n;) {
    const int32_t missing = n - done, wanted = missing - held;
    const int32_t round = wanted < most_candidates ? missing : most_candidates;
    const int32_t drawn = wanted < most_candidates ? wanted + (wanted & 1) : most_candidates;
    if (drawn > 0) {
      status = candidates.draw(stream, drawn, held);
      if (status < 0) return status;
    }
    done += candidates.keep_accepted(round, c, d, out + done);
    held = held + drawn - round;
    if (held) {
      candidates.u[0] = candidates.u[round];
      candidates.x[0] = candidates.x[round];
    }
  }
  if (held) *pending = {candidates.u[0], candidates.x[0]};
  return status;
}

#if QKR_BASELINE
// Whether a candidate is accepted, and as which number.
template <class T>
bool accepts(T u, T x, T c, T d, T *product) {
  const T v = c * x + T(1), s = x * x, cube = v * v * v;
  *product = d * cube;
  if (!(v > T(0))) return false;
  if (u < T(1) - T(squeeze) * s * s) return true;
  return finite_ln(u) < T(0.5) * s + d * (finite_ln(cube) + (T(1) - cube));
}

// The same for one number, as long as candidates lie ready in the stream; false where there is none any
// more. Those that were looked at are gone then, as they are for the way of many.
template <class T>
bool one_marsaglia_tsang(StreamState *stream, T *out, T alpha) {
  auto *pending = find_record<PendingCandidate>(stream, pending_candidate);
  if (!pending || !environment_is_default()) return false;
  const T d = alpha - T(third), c = square_root(T(1) / (T(9) * alpha - T(3)));
  for (;;) {
    T words[4], normal[2];
    if (pending->u >= 0.0) {
      words[1] = T(pending->u);
      normal[0] = T(pending->x);
      pending->u = none;
    } else {
      if (!draw_ready(stream, 4, words, 0, 1)) return false;
      const T pair[2] = {words[0], words[2]};
      one_pair(pair, normal);
      *pending = {words[3], normal[1]};
    }
    if (accepts(words[1], normal[0], c, d, out)) return true;
  }
}

template <class T>
bool one_gamma(StreamState *stream, T *out, T alpha, T a, T beta) {
  if (!(alpha > T(1)) || !one_marsaglia_tsang(stream, out, alpha)) return false;
  *out = at_least(*out * beta + a, a);
  return true;
}
#endif

// 0.6 <= alpha < 1: by rejection from a Weibull number (I. Vaduva, Mathematische Operationsforschung und
// Statistik 8 (1977) 545).
template <class T>
int32_t vaduva(StreamState *stream, int32_t n, T *out, T alpha) {
  const T c = T(1) / alpha, d = (T(1) - alpha) * exp(alpha * ln(alpha) / (T(1) - alpha));
  T first[most_candidates], second[most_candidates], root[most_candidates];
  const auto prepare = [&](int32_t m, T *pairs) {
    Precision<T>::ln(2 * m, pairs, pairs);
    negate(2 * m, pairs);
    part_pairs(m, pairs, first, second);
    Precision<T>::powx(m, first, c, root);
  };
  return by_rejection(stream, n, out, prepare, [&](int32_t i, T &x) {
    x = root[i];
    return second[i] + first[i] >= d + x;
  });
}

// alpha < 0.6: by rejection from an exponential power number (J. Dagpunar, Principles of Random Variate
// Generation, 1988).
template <class T>
int32_t exponential_power(StreamState *stream, int32_t n, T *out, T alpha) {
  const T r = T(1) / alpha, k = T(1) - alpha;
  T u[most_candidates], y[most_candidates], power[most_candidates], logarithm[most_candidates];
  const auto prepare = [&](int32_t m, T *pairs) {
    part_pairs(m, pairs, u, logarithm);
    for (int32_t i = 0; i < m; ++i) y[i] = u[i] > k ? (T(1) - u[i]) * r : T(1);
    Precision<T>::ln(m, y, y);
    for (int32_t i = 0; i < m; ++i) power[i] = u[i] > k ? k - alpha * y[i] : u[i];
    Precision<T>::powx(m, power, r, power);
    Precision<T>::ln(m, logarithm, logarithm);
  };
  return by_rejection(stream, n, out, prepare, [&](int32_t i, T &x) {
    x = power[i];
    return x <= -y[i] - logarithm[i];
  });
}

template <class T>
int32_t standard_gamma(StreamState *stream, int32_t n, T *out, T alpha) {
  if (alpha > T(1)) return marsaglia_tsang(stream, n, out, alpha);
  if (alpha == T(1)) return Precision<T>::exponential(0, stream, n, out, T(0), T(1));
  if (alpha >= T(weibull_from)) return vaduva(stream, n, out, alpha);
  return exponential_power(stream, n, out, alpha);
}

template <class T>
int32_t gamma(StreamState *stream, int32_t n, T *out, T alpha, T a, T beta) {
  return with_finite_logarithms<T, ActsOn::singularities>([=] {
    const int32_t status = standard_gamma(stream, n, out, alpha);
    if (status >= 0) scale_at_least(n, out, beta, a);
    return status;
  });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION_UNLESS(_vxsdRngGamma, double, (double alpha, double a, double beta), (alpha, a, beta),
                        n == 1 && one_gamma(stream, out, alpha, a, beta)) {
  return gamma(stream, n, out, alpha, a, beta);
}
QKR_DISTRIBUTION_UNLESS(_vxssRngGamma, float, (float alpha, float a, float beta), (alpha, a, beta),
                        n == 1 && one_gamma(stream, out, alpha, a, beta)) {
  return gamma(stream, n, out, alpha, a, beta);
}
