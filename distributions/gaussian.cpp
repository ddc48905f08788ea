// Normal numbers from pairs of uniform numbers, (u1, u2): sqrt(-2 ln u1) times the sine and, by the second
// method, also the cosine of 2 pi u2 (G. E. P. Box and M. E. Muller, Annals of Mathematical Statistics 29
// (1958) 610). And lognormal ones, which are made of those of the second method.
#include "distributions/chunks.h"
#include "distributions/radii.h"

extern "C" {
extern const double _vxsdGaussianTab[2];
#if QKR_BASELINE
const double _vxsdGaussianTab[2] = {qkr::sse2::whole_turn, qkr::sse2::ln_floor<double>};
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int32_t block_pairs = 512;

template <class T>
int32_t one_of_each_pair(StreamState *stream, int32_t n, T *out) {
  T pairs[2 * block_pairs], sine[block_pairs];
  return in_whole_blocks<block_pairs>(n, [&, out](int32_t m, ptrdiff_t first) {
    const int32_t drawn = uniforms(stream, 2 * m, pairs);
    if (drawn < 0) return drawn;
    T *x = out + first;
    part_pairs(m, pairs, x, sine, T(whole_turn));
    Precision<T>::sin(m, sine, sine);
    radii(m, x);
    for (int32_t i = 0; i < m; ++i) x[i] *= sine[i];
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

// Both numbers of one pair, with the bits that they have among others.
template <class T>
void both_of(const PendingPair &pair, T &first, T &second) {
  T radius = T(pair.u1), angle = T(pair.u2) * T(whole_turn), sine, cosine;
  Precision<T>::sin_cos(1, &angle, &sine, &cosine);
  radii(1, &radius);
  first = sine * radius;
  second = cosine * radius;
}

template <class T>
int32_t whole_pairs(StreamState *stream, int32_t pairs, T *out) {
  T u[2 * block_pairs], radius[block_pairs], sine[block_pairs], cosine[block_pairs];
  int32_t status = VXS_STATUS_OK;
  for (; pairs > 0 && status >= 0; pairs -= block_pairs, out += 2 * block_pairs) {
    const int32_t m = pairs < block_pairs ? pairs : block_pairs;
    status = uniforms(stream, 2 * m, u);
    if (status < 0) break;
    part_pairs(m, u, radius, sine, T(whole_turn));
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
int32_t both_of_each_pair(StreamState *stream, int32_t n, T *out) {
  PendingPair *pending;
  int32_t status = find_or_add_chunk(stream, pending_pair, PendingPair{none, none}, &pending);
  if (status < 0) return status;
  T *next = out, spent;
  if (pending->u1 != none) {
    both_of(*pending, spent, *next++);
    *pending = {none, none};
  }
  const int32_t missing = n - static_cast<int32_t>(next - out);
  status = whole_pairs(stream, missing >> 1, next);
  if (status < 0 || !(missing & 1)) return status;
  T u[2], last, held_over;
  status = uniforms(stream, 2, u);
  if (status < 0) return status;
  *pending = {u[0], u[1]};
  both_of(*pending, last, held_over);
  if (missing > 0) next[missing - 1] = last;
  return status;
}

// How much shorter the first block has to be, so that the second method never parts a pair between two.
int32_t lead(const StreamState *stream) {
  const auto *pending = find_record<const PendingPair>(stream, pending_pair);
  return pending && pending->u1 != none;
}

template <class T>
int32_t gaussian_by_one(StreamState *stream, int32_t n, T *out, T a, T sigma) {
  return draw_in_blocks(
      stream, n, [=](int32_t m, ptrdiff_t first) { return one_of_each_pair(stream, m, out + first); },
      [=](int32_t m, ptrdiff_t first) { scale(m, out + first, sigma, a); });
}

template <class T>
int32_t gaussian_by_both(StreamState *stream, int32_t n, T *out, T a, T sigma) {
  return draw_in_blocks(
      stream, n, [=](int32_t m, ptrdiff_t first) { return both_of_each_pair(stream, m, out + first); },
      [=](int32_t m, ptrdiff_t first) { scale(m, out + first, sigma, a); }, lead(stream));
}

template <class T>
int32_t gaussian(int32_t method, StreamState *stream, int32_t n, T *out, T a, T sigma) {
  if (method != 0 && method != 1) return VXS_STATUS_BAD_METHOD;
  const auto kernel = method ? gaussian_by_both<T> : gaussian_by_one<T>;
  return with_finite_logarithms<T, ActsOn::singularities>([=] { return kernel(stream, n, out, a, sigma); });
}

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

QKR_DISTRIBUTION(_vxsdRngGaussian, double, (double a, double sigma), (a, sigma)) {
  return gaussian(method, stream, n, out, a, sigma);
}
QKR_DISTRIBUTION(_vxssRngGaussian, float, (float a, float sigma), (a, sigma)) {
  return gaussian(method, stream, n, out, a, sigma);
}
QKR_DISTRIBUTION(_vxsdRngLognormal, double, (double a, double sigma, double b, double beta),
                 (a, sigma, b, beta)) {
  return lognormal(stream, n, out, a, sigma, b, beta);
}
QKR_DISTRIBUTION(_vxssRngLognormal, float, (float a, float sigma, float b, float beta), (a, sigma, b, beta)) {
  return lognormal(stream, n, out, a, sigma, b, beta);
}
