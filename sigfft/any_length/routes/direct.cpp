// The direct sum: for lengths that have no factors and are too short for anything else. Halved by the
// symmetry of cosine and sine, as the factors route does with single factors.
#include "sigfft/any_length/passes/points.h"
#include "sigfft/any_length/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Four numbers: the real parts of the sum and the difference of two points, then the imaginary parts; or, of
// real points, the sum and the difference twice. Times [cos -sin cos -sin], one operation adds to both sums.
template <class T>
using Quad = Vector<T, 4 * sizeof(T)>;

template <class T>
QKR_INLINE Quad<T> quad(Columns<T, 2 * sizeof(T)> sum, Columns<T, 2 * sizeof(T)> difference) {
  constexpr int other = sizeof sum.v / sizeof(T);
  return shuffle<0, other, 1, other + 1>(sum.v, difference.v);
}
// A point [cos -sin], twice, as one load gives it.
#ifdef __AVX__
QKR_INLINE Quad<double> both_twice(const double *point) {
  return (Quad<double>)_mm256_broadcast_pd((const __m128d *)point);
}
QKR_INLINE Quad<float> both_twice(const float *point) {
  return (Quad<float>)_mm_loaddup_pd((const double *)point);
}
#else
template <class T>
QKR_INLINE Quad<T> both_twice(const T *point) {
  if constexpr (sizeof(T) == 8) {
    const auto w = load_vector<Vector<T, 16> >(point);
    return shuffle<0, 1, 0, 1>(w, w);
  } else {
    double w;
    __builtin_memcpy(&w, point, sizeof w);
    return (Quad<T>)Vector<double, 16>{w, w};
  }
}
#endif

// The sums k to k + together - 1. They share the numbers that they read.
template <int together, class T>
QKR_INLINE void sums(const Quad<T> *pairs, Quad<T> start, int half, int k, SmallCircle<T> circle,
                     Quad<T> *result) {
  Quad<T> sum[together];
  size_t place[together];
  auto from = (const char *)(circle.places + k);
  asm("" : "+r"(from));  // one register for all of them
#pragma GCC unroll 8
  for (int i = 0; i < together; ++i) sum[i] = start, place[i] = 0;
  for (int j = 0; j < half; ++j)
#pragma GCC unroll 8
    for (int i = 0; i < together; ++i) {
      // Twice a place, which counts two numbers for each index, is that index in bytes.
      uint32_t next;
      __builtin_memcpy(&next, from + 4 * i + 2 * place[i], sizeof next);
      place[i] = next;
      sum[i] += pairs[j] * both_twice(circle.points + next);
    }
#pragma GCC unroll 8
  for (int i = 0; i < together; ++i) result[k + i] = sum[i];
}
// All sums of a number of points that the compiler knows.
template <int points, class T>
QKR_INLINE void known_sums(const Quad<T> *pairs, Quad<T> start, SmallCircle<T> circle, Quad<T> *result) {
  constexpr int half = (points - 1) / 2;
  Quad<T> sum[half];
#pragma GCC unroll 8
  for (int i = 0; i < half; ++i) sum[i] = start;
#pragma GCC unroll 8
  for (int j = 1; j <= half; ++j)
#pragma GCC unroll 8
    for (int k = 1; k <= half; ++k)
      sum[k - 1] += pairs[j - 1] * both_twice(circle.points + 2 * (j * k % points));
#pragma GCC unroll 8
  for (int i = 0; i < half; ++i) result[i + 1] = sum[i];
}
template <class T>
QKR_NOINLINE void all_sums(const Quad<T> *pairs, Quad<T> start, int points, SmallCircle<T> circle,
                           Quad<T> *result) {
  if (points == 11) return known_sums<11>(pairs, start, circle, result);
  if (points == 13) return known_sums<13>(pairs, start, circle, result);
  constexpr int together = QKR_BASELINE ? 4 : 8;
  const int half = (points - 1) / 2;
  int k = 1;
  for (; k + together - 1 <= half; k += together) sums<together>(pairs, start, half, k, circle, result);
  for (; k + 1 <= half; k += 2) sums<2>(pairs, start, half, k, circle, result);
  if (k <= half) sums<1>(pairs, start, half, k, circle, result);
}

template <bool forward, class Source, class Target, class T>
QKR_INLINE void direct(Source source, Target target, int points, const T *table) {
  constexpr int one = 2 * sizeof(T);
  using C = Columns<T, one>;
  const auto circle = sigfft::small_circle(table, points);
  const auto get = [&](int m) QKR_LAMBDA { return columns<one>(source, m); };
  const auto put = [&](int k, C x) QKR_LAMBDA { set_columns<one>(target, k, x); };
  if (points == 5) return transform_points<forward>(Factor<5>(), get, put, circle);
  if (points == 7) return transform_points<forward>(Factor<7>(), get, put, circle);
  const int half = (points - 1) / 2;
  Quad<T> pairs[(most_points - 1) / 2], both[(most_points + 1) / 2];
  const C x0 = get(0);
  C sum = x0;
  for (int j = 0; j < half; ++j) {
    const C x = get(j + 1), y = get(points - 1 - j), a = x + y;
    pairs[j] = quad<T>(a, x - y);
    sum = sum + a;
  }
  put(0, sum);
  const C nothing = {typename C::V{T(-0.0), T(-0.0)}};
  all_sums(pairs, quad<T>(x0, nothing), points, circle, both);
  for (int k = 1; k <= half; ++k) {
    using Lanes = typename C::V;
    const auto part = [&](auto first) QKR_LAMBDA {
      if constexpr (sizeof(T) == 8) return C{(Lanes)shuffle<first(), first() + 2>(both[k], both[k])};
      else return C{(Lanes)shuffle<first(), first() + 2, first(), first() + 2>(both[k], both[k])};
    };
    put_pair<forward>(points, k, part(std::integral_constant<int, 0>()),
                      part(std::integral_constant<int, 1>()), put);
  }
}

// The inverse has twice the real and the imaginary part where the forward transform has sum and difference.
template <bool forward, class T>
QKR_INLINE void real_direct(const T *src, T *dst, int points, const T *table) {
  const int half = (points - 1) / 2;
  Quad<T> pairs[(most_points - 1) / 2], both[(most_points + 1) / 2];
  const T x0 = src[0];
  Quad<T> sum = {x0};
  for (int j = 0; j < half; ++j) {
    const T x = forward ? src[j + 1] : src[2 * j + 1], y = forward ? src[points - 1 - j] : src[2 * j + 2];
    if constexpr (forward) pairs[j] = Quad<T>{x + y, x - y};
    else pairs[j] = Quad<T>{x + x, y + y};
    sum += pairs[j];
  }
  dst[0] = sum[0];
  all_sums(pairs, Quad<T>{x0, T(-0.0)}, points, sigfft::small_circle(table, points), both);
  for (int k = 1; k <= half; ++k) {
    if constexpr (forward) dst[2 * k - 1] = both[k][0], dst[2 * k] = both[k][1];
    else dst[k] = both[k][0] + both[k][1], dst[points - k] = both[k][0] - both[k][1];
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_DIRECT(direction, forward, T, suffix)                                                           \
  QKR_ENTRY(zprs_direct##direction##_##suffix##c, (const T *src, T *dst, int32_t points, const T *circle),  \
            (src, dst, points, circle)) {                                                                   \
    direct<forward>(Interleaved<const T>{src}, Interleaved<T>{dst}, points, circle);                        \
  }                                                                                                         \
  QKR_ENTRY(zprs_realDirect##direction##_##suffix, (const T *src, T *dst, int32_t points, const T *circle), \
            (src, dst, points, circle)) {                                                                   \
    real_direct<forward>(src, dst, points, circle);                                                         \
  }
QKR_DIRECT(Fwd, true, double, 64f)
QKR_DIRECT(Inv, false, double, 64f)
QKR_DIRECT(Fwd, true, float, 32f)
QKR_DIRECT(Inv, false, float, 32f)

#define QKR_SPLIT_DIRECT(T, suffix)                                                                    \
  QKR_ENTRY(zprs_direct_##suffix,                                                                      \
            (const T *src_re, const T *src_im, T *dst_re, T *dst_im, int32_t points, const T *circle), \
            (src_re, src_im, dst_re, dst_im, points, circle)) {                                        \
    direct<true>(Split<const T>{src_re, src_im}, Split<T>{dst_re, dst_im}, points, circle);            \
  }
QKR_SPLIT_DIRECT(double, 64f)
QKR_SPLIT_DIRECT(float, 32f)
