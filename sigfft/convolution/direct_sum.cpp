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
// Returns the lanes whose sums are not finite.
template <int count, class T, class Term>
QKR_INLINE Flags vectors_of_sums(size_t k, size_t last, const T *start, T *dst, size_t taps, Term term) {
  const auto place = [=](int v) QKR_LAMBDA { return v == count - 1 ? last : k + v * lanes_of<T>; };
  Native<T> sum[count] = {};
  if (start)
#pragma GCC unroll 8
    for (int v = 0; v < count; ++v) load(start + place(v), sum[v]);
  for (size_t j = 0; j < taps; ++j)
#pragma GCC unroll 8
    for (int v = 0; v < count; ++v) sum[v] = sum[v] + term(place(v), j);
  Flags not_finite = {};
#pragma GCC unroll 8
  for (int v = 0; v < count; ++v) {
    not_finite = not_finite | beyond(sum[v], (T)__builtin_inf());
    store(dst + place(v), sum[v]);
  }
  return not_finite;
}

// At most `count` vectors, and as many as it takes.
template <int count, class T, class Term>
QKR_INLINE Flags last_sums(size_t k, size_t results, const T *start, T *dst, size_t taps, Term term) {
  if constexpr (count > 1)
    if (results - k <= (count - 1) * lanes_of<T>)
      return last_sums<count - 1>(k, results, start, dst, taps, term);
  return vectors_of_sums<count>(k, results - lanes_of<T>, start, dst, taps, term);
}

// At least one vector of sums. Four together hide the latency of each other's additions. The last vector may
// overlap the one before it, and is then the same once more. False if a sum is not finite.
template <class T, class Term>
QKR_INLINE bool all_sums(size_t results, const T *start, T *dst, size_t taps, Term term) {
  constexpr size_t together = 4, width = together * lanes_of<T>;
  Flags not_finite = {};
  size_t k = 0;
  for (; k + 2 * width < results; k += width)
    not_finite = not_finite | vectors_of_sums<together>(k, k + width - lanes_of<T>, start, dst, taps, term);
  not_finite = not_finite | last_sums<2 * together>(k, results, start, dst, taps, term);
  return !any(not_finite, T());
}

// newest[k] is the sample that meets h[0] in sum number k.
template <class T>
QKR_NOINLINE bool sums_of_products(const T *newest, size_t results, const T *h, size_t taps, const T *start,
                                   T *dst) {
  return all_sums(results, start, dst, taps, [=](size_t k, size_t j) QKR_LAMBDA {
    Native<T> v;
    load(newest + k - j, v);
    return v * h[j];
  });
}

// The same without the places where `inside`, of the size of T, has no bits set.
template <class T, class Bits>
QKR_NOINLINE bool sums_of_products_inside(const T *newest, const Bits *inside, size_t results, const T *h,
                                          size_t taps, const T *start, T *dst) {
  return all_sums(results, start, dst, taps, [=](size_t k, size_t j) QKR_LAMBDA {
    Native<T> v;
    decltype(bits(v)) mask;
    load(newest + k - j, v);
    load(inside + k - j, mask);
    return real(bits(v * h[j]) & mask);
  });
}

// Few enough for a call of the C library to be felt.
template <class T>
QKR_INLINE void copy_few(const T *src, T *dst, size_t count) {
  constexpr size_t lanes = lanes_of<T>;
  const auto copy = [=](size_t i) QKR_LAMBDA {
    Native<T> v;
    load(src + i, v);
    store(dst + i, v);
  };
  if (count < lanes) {
    memcpy(dst, src, count * sizeof(T));
    return;
  }
  for (size_t i = 0; i < count - lanes; i += lanes) copy(i);
  copy(count - lanes);
}
// Looks at the last vector to its end.
template <class T>
QKR_INLINE bool all_finite(const T *sums, size_t count) {
  Native<T> zero = {};
  for (size_t i = 0; i < count; i += lanes_of<T>) {
    Native<T> v;
    load(sums + i, v);
    zero = zero + v * T(0);
  }
  return !any(beyond(zero, T(1)), T());
}
template <class T>
QKR_INLINE void clear_few(T *dst, size_t count) {  // and up to the end of the last vector
  for (size_t i = 0; i < count; i += lanes_of<T>) store(dst + i, Native<T>{});
}

// Sums of `blocks` vectors of x with `open` vectors of h, added to what `sums` holds if they go on. x moves
// past the registers by one sample a step: the vector at x[block * lanes - t] meets h[t] in the newest
// vector of sums, h[lanes + t] in the one before it, and so on. After a block the oldest vector has all its
// terms and a new one begins.
template <int open, class T>
QKR_NOINLINE void rotating_sums(const T *x, size_t blocks, const T *h, bool go_on, T *sums) {
  constexpr size_t lanes = lanes_of<T>;
  Native<T> sum[open + 1] = {};
  if (go_on)
#pragma GCC unroll 8
    for (int v = 0; v < open; ++v) load(sums + (blocks + v) * lanes, sum[v]);
  for (size_t block = blocks; block-- > 0;) {
#pragma GCC unroll 8
    for (int v = open; v > 0; --v) sum[v] = sum[v - 1];
    sum[0] = Native<T>{};
    if (go_on) load(sums + block * lanes, sum[0]);
    for (size_t t = 0; t < lanes; ++t) {
      Native<T> samples;
      load(x + block * lanes - t, samples);
#pragma GCC unroll 8
      for (int v = 0; v < open; ++v) sum[v] = sum[v] + samples * h[v * lanes + t];
    }
    store(sums + (block + open - 1) * lanes, sum[open - 1]);
  }
#pragma GCC unroll 8
  for (int v = 0; v < open - 1; ++v) store(sums + v * lanes, sum[v]);
}
template <int most, class T>
QKR_INLINE void rotating_sums_of(size_t open, const T *x, size_t blocks, const T *h, bool go_on, T *sums) {
  if constexpr (most > 1)
    if (open < most) return rotating_sums_of<most - 1>(open, x, blocks, h, go_on, sums);
  rotating_sums<most>(x, blocks, h, go_on, sums);
}

constexpr size_t most_open = 8, few = 1024;
// Up to here whole windows of samples are the faster: too few sums would be open to hide their latency.
template <class T>
constexpr size_t short_filter = lanes_of<T> < 8 ? 4 * lanes_of<T> : 32;

// Sums number `first` to first + results - 1 of few samples, the foremost of which go on from `start` unless
// that is null. Zeros before the samples and behind them, and behind h, stand for those that are missing.
// They change no sum, since none that starts from +0 is ever -0; only where they meet an infinity or a NaN.
// If a sum comes out not finite, all are taken once more without the zeros.
template <class T>
QKR_NOINLINE void sums_of_few(const T *x, size_t count, const T *h, size_t taps, const T *start, size_t first,
                              size_t results, T *dst) {
  constexpr size_t lanes = lanes_of<T>, margin = (longest_direct_filter / 16 + 1) * 16,
                   behind = margin + lanes;
  alignas(64) T window[margin + few + behind + lanes], sums[few + 2 * margin + 3 * lanes];
  const size_t reach = taps <= short_filter<T> ? short_filter<T> : lanes;
  clear_few(window + margin - reach, reach);
  copy_few(x, window + margin, count);
  clear_few(window + margin + count, reach + lanes);
  const size_t all = count + taps - 1, padded = (all + lanes - 1) / lanes * lanes;
  const auto begin = [&](size_t end) QKR_LAMBDA {
    clear_few(sums, end);
    if (start) copy_few(start, sums, taps - 1);
  };

  bool finite;
  if (taps <= short_filter<T>) {
    if (!start && results >= lanes) {
      // The simplest case needs no sums between.
      if (sums_of_products(window + margin + first, results, h, taps, start, dst)) [[likely]]
        return;
      finite = false;
    } else {
      begin(padded);
      finite = sums_of_products(window + margin, padded, h, taps, (const T *)sums, sums);
    }
  } else {
    T filter[margin + most_open * lanes];
    const size_t vectors = (taps + lanes - 1) / lanes, rounds = (vectors + most_open - 1) / most_open;
    const size_t open = (vectors + rounds - 1) / rounds, blocks = (count + 2 * lanes - 2) / lanes;
    const bool go_on = start || rounds > 1;
    copy_few(h, filter, taps);
    clear_few(filter + taps, rounds * open * lanes - taps);
    if (go_on) begin((blocks + rounds * open) * lanes);
    for (size_t done = 0; done < rounds * open * lanes; done += open * lanes)
      rotating_sums_of<most_open>(open, window + margin, blocks, filter + done, go_on, sums + done);
    finite = all_finite(sums, all);
  }
  if (!finite) [[unlikely]] {
    decltype(bits(T())) inside[sizeof window / sizeof(T)] = {};
    memset(inside + margin, -1, count * sizeof(T));
    begin(padded);
    sums_of_products_inside(window + margin, inside + margin, padded, h, taps, (const T *)sums, sums);
  }
  copy_few(sums + first, dst, results);
}

// In a longer part only the sums at its ends have missing terms.
template <class T>
QKR_INLINE void direct_sum(const T *x, size_t count, const T *h, size_t taps, bool continued, T *dst) {
  const size_t overlap = taps - 1;
  const T *const start = continued ? dst : nullptr;
  if (count <= (taps <= short_filter<T> ? few : 2 * longest_direct_filter))
    return sums_of_few(x, count, h, taps, start, 0, count + overlap, dst);
  sums_of_products(x + overlap, count - overlap, h, taps, (const T *)nullptr, dst + overlap);
  if (!overlap) return;
  sums_of_few(x, overlap, h, taps, start, 0, overlap, dst);
  sums_of_few(x + count - overlap, overlap, h, taps, (const T *)nullptr, overlap, overlap, dst + count);
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
