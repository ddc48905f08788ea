// From the transform of pairs of real numbers, taken as complex ones, to the spectrum of the real signal, and
// back (J. W. Cooley, P. A. W. Lewis and P. D. Welch, Journal of Sound and Vibration 12 (1970) 315). The
// numbers k and H - k are worked on together, from both ends of the array toward its middle.
#include "sigfft/kernels.h"
#include "sigfft/plain_passes.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using namespace sigfft;

template <class T, int bytes, int... i>
QKR_INLINE Paired<T, bytes> in_reverse(Paired<T, bytes> x, std::integer_sequence<int, i...>) {
  constexpr int count = sizeof...(i);
  return {shuffle<(count - 2 - (i & ~1) + (i & 1))...>(x.v, x.v)};
}
template <class T, int bytes>
QKR_INLINE Paired<T, bytes> in_reverse(Paired<T, bytes> x) {
  return in_reverse(x, std::make_integer_sequence<int, bytes / (int)sizeof(T)>());
}

template <class T, int bytes>
QKR_INLINE Paired<T, bytes> conjugate(Paired<T, bytes> x) {
  return {x.v * x.signs()};
}

// The table's first and second value of each successive k, twice: for the real and the imaginary part.
template <class V>
struct Values {
  V first, second;
};
template <EntrySet set, class T, int bytes, int... i>
QKR_INLINE Values<Vector<T, bytes>> table_values(const T *table, size_t k, std::integer_sequence<int, i...>) {
  using V = Vector<T, bytes>;
  if constexpr (set == EntrySet::plain) {
    const auto w = load_vector<V>(table + 2 * k);
    return {shuffle<(i & ~1)...>(w, w), shuffle<(i | 1)...>(w, w)};
  } else {  // groups of first values and of second values, from k = 1 on
    constexpr int g = group<T>, numbers = sizeof...(i) / 2;
    const T *start = table + (k - 1) / g * 2 * g + (k - 1) % g;
    if constexpr (numbers < g) {
      return {V{start[i / 2]...}, V{start[g + i / 2]...}};
    } else {
      const auto w = load_vector<V>(start);
      return {shuffle<(i / 2 / g * 2 * g + i / 2 % g)...>(w, w),
              shuffle<(i / 2 / g * 2 * g + g + i / 2 % g)...>(w, w)};
    }
  }
}

// Numbers k and their counterparts H - k. In both directions the difference to the counterpart's conjugate is
// multiplied by a complex number of the table.
template <EntrySet set, bool forward, int bytes, class T>
QKR_INLINE void pairs_of_numbers(const T *src, T *dst, size_t half, size_t k, const T *table,
                                 size_t table_k) {
  constexpr int lanes = bytes / (int)sizeof(T);
  const size_t counterpart = half - k - (lanes / 2 - 1);
  const Interleaved<const T> from = {src};
  const Interleaved<T> to = {dst};
  const auto lower = from.template pairs<bytes>(k);
  const auto upper = conjugate(in_reverse(from.template pairs<bytes>(counterpart)));
  const auto [first, second] =
      table_values<set, T, bytes>(table, table_k, std::make_integer_sequence<int, lanes>());
  const auto product = times<!forward>(lower - upper, second, first);
  if constexpr (forward) {
    to.template set_pairs<bytes>(k, upper + product);
    to.template set_pairs<bytes>(counterpart, in_reverse(conjugate(lower - product)));
  } else {
    const auto sum = lower + upper;
    to.template set_pairs<bytes>(k, sum + product);
    to.template set_pairs<bytes>(counterpart, in_reverse(conjugate(sum - product)));
  }
}

// All numbers but number 0, for which there are sums of their own. The last step takes in the middle, which
// is its own counterpart and is put right afterwards.
template <EntrySet set, bool forward, int bytes, class T>
QKR_NOINLINE void recombine_by(const T *src, T *dst, size_t half, const T *table) {
  constexpr size_t together = bytes / 2 / sizeof(T);
  const size_t middle = half / 2;
  const T re = src[2 * middle], im = src[2 * middle + 1];
  size_t k = 1;
  for (; k + together <= middle; k += together)
    pairs_of_numbers<set, forward, bytes>(src, dst, half, k, table, k);
  if constexpr (set == EntrySet::plain) {  // whose table ends before the middle
    T rows[2 * together] = {};
    __builtin_memcpy(rows, table + 2 * k, (together - 1) * 2 * sizeof(T));
    pairs_of_numbers<set, forward, bytes>(src, dst, half, k, rows, 0);
  } else {
    pairs_of_numbers<set, forward, bytes>(src, dst, half, k, table, k);
  }
  dst[2 * middle] = forward ? re : 2 * re;
  dst[2 * middle + 1] = forward ? -im : -2 * im;
}

template <EntrySet set, bool forward, class T>
QKR_INLINE void recombine(const T *src, T *dst, size_t half, const T *table) {
  if (half * sizeof(T) < widest_pairs) recombine_by<set, forward, narrow_pairs>(src, dst, half, table);
  else recombine_by<set, forward, widest_pairs>(src, dst, half, table);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_RECOMBINE(prefix, set, T, suffix)                                                          \
  QKR_ENTRY(prefix##zprs_cRealRecombine_##suffix, (T * data, int32_t half, const T *table),            \
            (data, half, table)) {                                                                     \
    recombine<EntrySet::set, true>(data, data, (size_t)half, table);                                   \
  }                                                                                                    \
  QKR_ENTRY(prefix##zprs_cCcsRecombine_##suffix, (const T *src, T *dst, int32_t half, const T *table), \
            (src, dst, half, table)) {                                                                 \
    recombine<EntrySet::set, false>(src, dst, (size_t)half, table);                                    \
  }
QKR_RECOMBINE(w6_, w6, double, 64f)
QKR_RECOMBINE(w6_, w6, float, 32f)
QKR_RECOMBINE(, plain, double, 64f)
QKR_RECOMBINE(, plain, float, 32f)
