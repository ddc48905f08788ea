// Normal numbers from pairs of uniform numbers, (u1, u2): sqrt(-2 ln u1) times the sine and, by the second
// method, also the cosine of 2 pi u2 (G. E. P. Box and M. E. Muller, Annals of Mathematical Statistics 29
// (1958) 610).
#include "distributions/chunks.h"
#include "distributions/radii.h"

extern "C" {
extern const double _vxsdGaussianTab[2];
#if QKR_BASELINE
const double _vxsdGaussianTab[2] = {6.283185307179586, qkr::sse2::ln_floor};  // 2 pi
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int32_t block_pairs = 512;

template <class T>
T whole_turn() {
  return T(_vxsdGaussianTab[0]);
}

template <class T>
int32_t one_of_each_pair(StreamState *stream, int32_t n, T *out, T a, T sigma) {
  T pairs[2 * block_pairs], sine[block_pairs];
  const int32_t status = in_blocks<block_pairs>(n, [&, out](int32_t m, int32_t first) {
    const int32_t drawn = uniforms(stream, 2 * m, pairs);
    if (drawn < 0) return drawn;
    T *x = out + first;
    part_pairs(m, pairs, x, sine, whole_turn<T>());
    Precision<T>::sin(m, sine, sine);
    radii(m, x);
    for (int32_t i = 0; i < m; ++i) x[i] *= sine[i];
    return drawn;
  });
  if (status >= 0) scale(n, out, sigma, a);
  return status;
}

// The pair whose sine was the last output of the second method, untransformed, so that it serves any mean,
// deviation and precision.
struct PendingPair {
  double u1, u2;
};
constexpr double none = -1.0;
constexpr uint32_t pending_pair = 2;
static_assert(sizeof(PendingPair) == 16, "in stream files too");

// The cosine's half of the pending pair, which is used up in place.
template <class T>
T second_half(PendingPair &pending) {
  T radius = T(pending.u1), cosine = T(pending.u2) * whole_turn<T>();
  Precision<T>::cos(1, &cosine, &cosine);
  radii(1, &radius);
  pending = {radius, cosine};
  return radius * cosine;
}

// The sine's half of a new pair, which becomes pending.
template <class T>
int32_t first_half(StreamState *stream, PendingPair &pending, T &out) {
  T pair[2];
  const int32_t status = uniforms(stream, 2, pair);
  if (status < 0) return status;
  pending = {pair[0], pair[1]};
  pair[1] *= whole_turn<T>();
  Precision<T>::sin(1, pair + 1, pair + 1);
  radii(1, pair);
  out = pair[0] * pair[1];
  return status;
}

template <class T>
int32_t whole_pairs(StreamState *stream, int32_t pairs, T *out) {
  T u[2 * block_pairs], radius[block_pairs], sine[block_pairs], cosine[block_pairs];
  int32_t status = VXS_STATUS_OK;
  for (; pairs > 0 && status >= 0; pairs -= block_pairs, out += 2 * block_pairs) {
    const int32_t m = pairs < block_pairs ? pairs : block_pairs;
    status = uniforms(stream, 2 * m, u);
    if (status < 0) break;
    part_pairs(m, u, radius, sine, whole_turn<T>());
    Precision<T>::sin_cos(m, sine, sine, cosine);
    radii(m, radius);
    for (int32_t i = 0; i < m; ++i) {
      out[2 * i] = sine[i] * radius[i];
      out[2 * i + 1] = cosine[i] * radius[i];
    }
  }
  return status;
}

template <class T>
int32_t both_of_each_pair(StreamState *stream, int32_t n, T *out, T a, T sigma) {
  PendingPair *pending;
  int32_t status = find_or_add_chunk(stream, pending_pair, PendingPair{none, none}, &pending);
  if (status < 0) return status;
  T *next = out;
  if (pending->u1 != none) *next++ = second_half<T>(*pending);
  const int32_t missing = n - static_cast<int32_t>(next - out);
  status = whole_pairs(stream, missing >> 1, next);
  if (status < 0) return status;
  if (missing & 1) {
    T last;
    status = first_half(stream, *pending, last);
    if (status < 0) return status;
    if (missing > 0) next[missing - 1] = last;
  } else {
    *pending = {none, none};
  }
  scale(n, out, sigma, a);
  return status;
}

template <class T>
int32_t gaussian(int32_t method, StreamState *stream, int32_t n, T *out, T a, T sigma) {
  static constexpr decltype(&one_of_each_pair<T>) kernels[] = {one_of_each_pair<T>, both_of_each_pair<T>};
  return with_finite_logarithms<T, _vxsdGaussianTab, ActsOn::singularities>(
      [=] { return kernels[method](stream, n, out, a, sigma); });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define ENTRIES(letter, T)                                                                             \
  QKR_ENTRY_OF(int32_t, _v##letter##RngGaussianBoxMuller,                                              \
               (StreamState * stream, int32_t n, T * out, T a, T sigma), (stream, n, out, a, sigma)) { \
    return one_of_each_pair(stream, n, out, a, sigma);                                                 \
  }                                                                                                    \
  QKR_ENTRY_OF(int32_t, _v##letter##RngGaussianBoxMuller2,                                             \
               (StreamState * stream, int32_t n, T * out, T a, T sigma), (stream, n, out, a, sigma)) { \
    return both_of_each_pair(stream, n, out, a, sigma);                                                \
  }                                                                                                    \
  QKR_DISTRIBUTION(letter, T, Gaussian, (T a, T sigma), (a, sigma)) {                                  \
    return gaussian(method, stream, n, out, a, sigma);                                                 \
  }
ENTRIES(d, double)
ENTRIES(s, float)
