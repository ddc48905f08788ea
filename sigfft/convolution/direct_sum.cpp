// Convolution by the sum that defines it, with the bits of the plain loop
//   for (j ...) for (i ...) dst[i + j] += x[i] * h[j];
// Every result gets its terms one after the other in the order of h; results lie side by side in the lanes.
#include "sigfft/convolution/kernels.h"
#include "simd/entry.h"
#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using sigfft::longest_direct_filter;

template <class T>
constexpr size_t lanes_of = sizeof(Native<T>) / sizeof(T);

// Sums of `count` vectors from number k on, the last of which starts at number `last`. They go on from
// `start`, or from 0 if that is null. term(k, j) is the vector of the products with h[j] from number k on.
template <int count, class T, class Term>
QKR_INLINE void vectors_of_sums(size_t k, size_t last, const T *start, T *dst, size_t taps, Term term) {
  const auto place = [=](int v) QKR_LAMBDA { return v == count - 1 ? last : k + v * lanes_of<T>; };
  Native<T> sum[count] = {};
  if (start)
#pragma GCC unroll 8
    for (int v = 0; v < count; ++v) load(start + place(v), sum[v]);
  for (size_t j = 0; j < taps; ++j)
#pragma GCC unroll 8
    for (int v = 0; v < count; ++v) sum[v] = sum[v] + term(place(v), j);
#pragma GCC unroll 8
  for (int v = 0; v < count; ++v) store(dst + place(v), sum[v]);
}

// At most `count` vectors, and as many as it takes.
template <int count, class T, class Term>
QKR_INLINE void last_sums(size_t k, size_t results, const T *start, T *dst, size_t taps, Term term) {
  if constexpr (count > 1)
    if (results - k <= (count - 1) * lanes_of<T>)
      return last_sums<count - 1>(k, results, start, dst, taps, term);
  vectors_of_sums<count>(k, results - lanes_of<T>, start, dst, taps, term);
}

// At least one vector of sums. Four together hide the latency of each other's additions. The last vector may
// overlap the one before it, and is then the same once more.
template <class T, class Term>
QKR_INLINE void all_sums(size_t results, const T *start, T *dst, size_t taps, Term term) {
  constexpr size_t together = 4, width = together * lanes_of<T>;
  size_t k = 0;
  for (; k + 2 * width < results; k += width)
    vectors_of_sums<together>(k, k + width - lanes_of<T>, start, dst, taps, term);
  last_sums<2 * together>(k, results, start, dst, taps, term);
}

// window[k + taps - 1] is the sample that meets h[0] in sum number k.
template <class T>
QKR_NOINLINE void sums_of_products(const T *window, size_t results, const T *h, size_t taps, const T *start,
                                   T *dst) {
  all_sums(results, start, dst, taps, [=](size_t k, size_t j) QKR_LAMBDA {
    Native<T> v;
    load(window + k + taps - 1 - j, v);
    return v * h[j];
  });
}

// The same of those places of the window where `inside` has all bits set.
template <class T, class Bits>
QKR_NOINLINE void sums_of_products_inside(const T *window, const Bits *inside, size_t results, const T *h,
                                          size_t taps, const T *start, T *dst) {
  all_sums(results, start, dst, taps, [=](size_t k, size_t j) QKR_LAMBDA {
    Native<T> v;
    decltype(bits(v)) mask;
    load(window + k + taps - 1 - j, v);
    load(inside + k + taps - 1 - j, mask);
    return real(bits(v * h[j]) & mask);
  });
}

template <class T>
QKR_INLINE bool all_finite(const T *numbers, size_t count) {
  Flags not_finite = {};
  const auto look = [&](size_t k) QKR_LAMBDA {
    Native<T> v;
    load(numbers + k, v);
    not_finite = not_finite | beyond(v, (T)__builtin_inf());
  };
  for (size_t k = 0; k < count - lanes_of<T>; k += lanes_of<T>) look(k);
  look(count - lanes_of<T>);
  return !any(not_finite, T());
}

// `samples` numbers: `before` zeros, `held` numbers of x, zeros. Few enough for calls to be felt.
template <class T>
QKR_INLINE void fill_window(T *window, size_t samples, const T *x, size_t before, size_t held) {
  for (size_t i = 0; i < samples; i += lanes_of<T>) store(window + i, Native<T>{});
  size_t i = 0;
  for (; i + lanes_of<T> <= held; i += lanes_of<T>) {
    Native<T> v;
    load(x + i, v);
    store(window + before + i, v);
  }
  for (; i < held; ++i) window[before + i] = x[i];
}

constexpr size_t few = 160;  // samples that one window takes in: more than those that h reaches over

// Sums number `first` to first + results - 1 of a part; if they are `continued` they go on from dst. Zeros
// stand for samples that are missing. They change no sum, since none that starts from +0 is ever -0; but
// where h holds an infinity or a NaN they do. Sums that come out not finite are taken once more without them.
template <class T>
QKR_NOINLINE void sums_at_end(const T *x, size_t count, size_t first, size_t results, const T *h, size_t taps,
                              bool continued, T *dst) {
  constexpr size_t lanes = lanes_of<T>, margin = longest_direct_filter - 1, most = few + margin + lanes;
  T window[most + margin + lanes], start[most], sums[most];
  const bool direct = results >= lanes && !continued;
  T *const target = direct ? dst : sums;
  const size_t taken = results < lanes ? lanes : results, samples = taken + taps - 1;
  // Place i of the window holds sample i + first - (taps - 1).
  const size_t before = first < taps - 1 ? taps - 1 - first : 0, from = first + before - (taps - 1);
  const size_t held = samples - before < count - from ? samples - before : count - from;
  fill_window(window, samples, x + from, before, held);
  if (continued) fill_window(start, taken, dst, 0, taps - 1);
  const T *const from_start = continued ? start : nullptr;
  sums_of_products(window, taken, h, taps, from_start, target);
  if (!all_finite(target, taken)) [[unlikely]] {
    decltype(bits(T())) inside[most + margin];
    memset(inside, 0, samples * sizeof(T));
    memset(inside + before, -1, held * sizeof(T));
    sums_of_products_inside(window, inside, taken, h, taps, from_start, target);
  }
  if (!direct) memcpy(dst, sums, results * sizeof(T));
}

template <class T>
QKR_INLINE void direct_sum(const T *x, size_t count, const T *h, size_t taps, bool continued, T *dst) {
  const size_t overlap = taps - 1;
  if (count <= few) return sums_at_end(x, count, 0, count + overlap, h, taps, continued, dst);
  sums_of_products(x, count - overlap, h, taps, (const T *)nullptr, dst + overlap);
  if (!overlap) return;
  sums_at_end(x, count, 0, overlap, h, taps, continued, dst);
  sums_at_end(x, count, count, overlap, h, taps, false, dst + count);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_DIRECT_SUM(name, T)                                                                \
  QKR_ENTRY(name, (const T *x, size_t count, const T *h, size_t taps, bool continued, T *dst), \
            (x, count, h, taps, continued, dst)) {                                             \
    direct_sum(x, count, h, taps, continued, dst);                                             \
  }
QKR_DIRECT_SUM(zprs_directSum_32f, float)
QKR_DIRECT_SUM(zprs_directSum_64f, double)
