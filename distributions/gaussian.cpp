// Normal numbers from pairs of uniform numbers, (u1, u2): sqrt(-2 ln u1) times the sine and, by the second
// method, also the cosine of 2 pi u2 (G. E. P. Box and M. E. Muller, Annals of Mathematical Statistics 29
// (1958) 610). And lognormal ones, which are made of those of the second method.
#include "distributions/chunks.h"
#include "distributions/normals.h"
#include "streams/few_numbers.h"

extern "C" {
extern const double _vxsdGaussianTab[2];
#if QKR_BASELINE
const double _vxsdGaussianTab[2] = {qkr::sse2::whole_turn, qkr::sse2::ln_floor<double>};
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int32_t block_pairs = 512;

// What becomes of the standard normal numbers. The draws of user generators are scaled when all have
// succeeded.
template <class T>
struct Law {
  T sigma, a;
};

template <class T>
int32_t one_of_each_pair(StreamState *stream, int32_t n, T *out, Law<T> law) {
  alignas(64) T pairs[2 * block_pairs];
  return in_whole_blocks<block_pairs>(n, [&, out](int32_t m, ptrdiff_t first) {
    const int32_t drawn = uniforms(stream, 2 * m, pairs);
    if (drawn >= 0) normals<T, Takes::sine>(m, pairs, out + first, law.sigma, law.a);
    return drawn;
  });
}

// The pair whose sine was the last output of the second method, untransformed, so that it serves any mean,
// deviation and precision.
struct PendingPair {
  double u1, u2;
};
constexpr double none = -1.0;
constexpr uint32_t pending_pair = 2;
static_assert(sizeof(PendingPair) == 16, "in stream files too");

// The sine (half 0) or the cosine (half 1) of a pair, with the bits that they have among others.
template <class T>
QKR_NOINLINE T half_by_functions(const PendingPair &pair, int half, Law<T> law) {
  const T u[2] = {T(pair.u1), T(pair.u2)};
  T both[2];
  normals_by_functions<T, Takes::both>(1, u, both, law.sigma, law.a);
  return both[half];
}
template <class T>
T half_of(const PendingPair &pair, int half, Law<T> law) {
  const T u = T(pair.u1), turns = T(pair.u2);
  if (!has_logarithm(u) || !(turns >= T(0) && turns <= T(1)) || !environment_is_default()) {
    return half_by_functions(pair, half, law);
  }
  const Pair<T> p = Cores<T>::sine_and_cosine_of(turns * T(whole_turn));
  return ((half ? p.second : p.first) * radius_of<T>(u)) * law.sigma + law.a;
}

template <class T>
int32_t whole_pairs(StreamState *stream, int32_t pairs, T *out, Law<T> law) {
  alignas(64) T u[2 * block_pairs];
  int32_t status = VXS_STATUS_OK;
  for (; pairs > 0; pairs -= block_pairs, out += 2 * block_pairs) {
    const int32_t m = pairs < block_pairs ? pairs : block_pairs;
    status = uniforms(stream, 2 * m, u);
    if (status < 0) break;
    normals<T, Takes::both>(m, u, out, law.sigma, law.a);
  }
  return status;
}

template <class T>
int32_t both_of_each_pair(StreamState *stream, int32_t n, T *out, Law<T> law) {
  PendingPair *pending;
  int32_t status = find_or_add_chunk(stream, pending_pair, PendingPair{none, none}, &pending);
  if (status < 0) return status;
  T *next = out;
  if (pending->u1 != none) {
    *next++ = half_of(*pending, 1, law);
    *pending = {none, none};
  }
  const int32_t missing = n - static_cast<int32_t>(next - out);
  status = whole_pairs(stream, missing >> 1, next, law);
  if (status < 0 || !(missing & 1)) return status;
  T u[2];
  status = uniforms(stream, 2, u);
  if (status < 0) return status;
  *pending = {u[0], u[1]};
  if (missing > 0) next[missing - 1] = half_of(*pending, 0, law);
  return status;
}

// How much shorter the first block has to be, so that the second method never parts a pair between two.
int32_t lead(const StreamState *stream) {
  const auto *pending = find_record<const PendingPair>(stream, pending_pair);
  return pending && pending->u1 != none;
}

template <class T>
int32_t gaussian(int32_t method, StreamState *stream, int32_t n, T *out, T a, T sigma) {
  if (method != 0 && method != 1) return VXS_STATUS_BAD_METHOD;
  const auto kernel = method ? both_of_each_pair<T> : one_of_each_pair<T>;
  if (!is_users(stream)) return kernel(stream, n, out, {sigma, a});
  return with_finite_logarithms<T, ActsOn::singularities>([=] {
    const int32_t status = kernel(stream, n, out, {T(1), T(-0.0)});
    if (status >= 0) scale(n, out, sigma, a);
    return status;
  });
}

#if QKR_BASELINE
// One number of those that lie ready in the stream; false, with nothing changed, where there is none.
template <class T>
bool one_gaussian(int32_t method, StreamState *stream, T *out, T a, T sigma) {
  if (method == 1) {
    auto *pending = find_record<PendingPair>(stream, pending_pair);
    if (!pending) return false;
    const bool held = pending->u1 != none;
    T u[2];
    if (!held) {
      if (!draw_ready(stream, 2, u, 0, 1)) return false;
      *pending = {u[0], u[1]};
    }
    *out = half_of(*pending, held, Law<T>{sigma, a});
    if (held) *pending = {none, none};
    return true;
  }
  T u[2];
  if (method != 0 || !draw_ready(stream, 2, u, 0, 1)) return false;
  if (has_logarithm(u[0]) && environment_is_default()) {
    *out = (radius_of<T>(u[0]) * Cores<T>::sine(u[1] * T(whole_turn))) * sigma + a;
  } else {
    normals_by_functions<T, Takes::sine>(1, u, out, sigma, a);
  }
  return true;
}
#endif

// The exponential function reports its errors by the caller's policy.
template <class T>
int32_t lognormal(StreamState *stream, int32_t n, T *out, T a, T sigma, T b, T beta) {
  return draw_in_blocks(
      stream, n, [=](int32_t m, ptrdiff_t first) { return gaussian(1, stream, m, out + first, a, sigma); },
      [=](int32_t m, ptrdiff_t first) {
        Precision<T>::exp(m, out + first, out + first);
        scale_at_least(m, out + first, beta, b);
      },
      lead(stream));
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION_UNLESS(_vxsdRngGaussian, double, (double a, double sigma), (a, sigma),
                        n == 1 && one_gaussian(method, stream, out, a, sigma)) {
  return gaussian(method, stream, n, out, a, sigma);
}
QKR_DISTRIBUTION_UNLESS(_vxssRngGaussian, float, (float a, float sigma), (a, sigma),
                        n == 1 && one_gaussian(method, stream, out, a, sigma)) {
  return gaussian(method, stream, n, out, a, sigma);
}
QKR_DISTRIBUTION(_vxsdRngLognormal, double, (double a, double sigma, double b, double beta),
                 (a, sigma, b, beta)) {
  return lognormal(stream, n, out, a, sigma, b, beta);
}
QKR_DISTRIBUTION(_vxssRngLognormal, float, (float a, float sigma, float b, float beta), (a, sigma, b, beta)) {
  return lognormal(stream, n, out, a, sigma, b, beta);
}
