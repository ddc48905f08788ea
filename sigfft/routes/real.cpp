// From the transform of pairs of real numbers, taken as complex ones, to the spectrum of the real signal, and
// back (J. W. Cooley, P. A. W. Lewis and P. D. Welch, Journal of Sound and Vibration 12 (1970) 315). The
// numbers k and H - k are worked on together, from both ends of the array toward its middle.
#include "sigfft/passes/butterfly.h"
#include "sigfft/passes/recombination.h"
#include "sigfft/passes/split_registers.h"
#include "sigfft/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using namespace sigfft;

// Numbers k and their counterparts H - k.
template <EntrySet set, bool forward, int bytes, class T>
QKR_INLINE void pairs_of_numbers(const T *src, T *dst, size_t half, size_t k, const T *table,
                                 size_t table_k) {
  constexpr int lanes = bytes / (int)sizeof(T);
  const size_t counterpart = half - k - (lanes / 2 - 1);
  const Interleaved<const T> from = {src};
  const Interleaved<T> to = {dst};
  const auto lower = from.template pairs<bytes>(k);
  const auto upper = in_reverse(from.template pairs<bytes>(counterpart));
  const auto [first, second] =
      table_values<set, T, bytes>(table, table_k, std::make_integer_sequence<int, lanes>());
  const auto [new_lower, new_upper] = recombined<forward>(lower, upper, first, second);
  to.template set_pairs<bytes>(k, new_lower);
  to.template set_pairs<bytes>(counterpart, in_reverse(new_upper));
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

constexpr int narrow_pairs = QKR_SIMD_BYTES == 16 ? 16 : 32;

template <EntrySet set, bool forward, class T>
QKR_INLINE void recombine(const T *src, T *dst, size_t half, const T *table) {
  if (half * sizeof(T) < widest_pairs) recombine_by<set, forward, narrow_pairs>(src, dst, half, table);
  else recombine_by<set, forward, widest_pairs>(src, dst, half, table);
}

// 16 real numbers: few enough for 8 complex ones to stay in registers, one in each.
constexpr int sixteen = 16;

template <class T>
QKR_INLINE Paired<T, 16> number(const T *p) {
  if constexpr (is_double<T>) {
    return {load_vector<Vector<T, 16>>(p)};
  } else {
    double both;
    __builtin_memcpy(&both, p, sizeof both);
    return {(Vector<T, 16>)Vector<double, 16>{both, 0}};
  }
}
template <class T>
QKR_INLINE void set_number(T *p, Paired<T, 16> x) {
  __builtin_memcpy(p, &x.v, 2 * sizeof(T));
}

// The table's values of k, in all lanes.
template <EntrySet set, class T>
QKR_INLINE Values<Vector<T, 16>> values_of(const T *table, size_t k) {
  constexpr size_t g = set == EntrySet::plain ? 1 : group<T>;
  const size_t from = set == EntrySet::plain ? k : k - 1;
  const T *p = table + from / g * 2 * g + from % g;
  return {all_lanes<T, 16>(p[0]), all_lanes<T, 16>(p[g])};
}

template <EntrySet set, bool forward, class T>
QKR_INLINE void recombine_eight(Paired<T, 16> *z, const T *table) {
#pragma GCC unroll 3
  for (int k = 1; k < 4; ++k) {
    const auto [first, second] = values_of<set>(table, k);
    const auto both = recombined<forward>(z[k], z[8 - k], first, second);
    z[k] = both.lower, z[8 - k] = both.upper;
  }
  z[4] = conjugate(z[4]);
  if (!forward) z[4] = z[4] * T(2);
}

// `last` is the place of R8; where that is behind all others, these have moved up by one.
template <EntrySet set, bool forward, class T>
QKR_INLINE void transform_sixteen(const Plan<T> *plan, const T *src, T *dst, int last) {
  Paired<T, 16> z[8], y[8];
  const int moved = last == sixteen - 1;
  const auto put = [&](int k, auto value) QKR_LAMBDA { y[k] = value; };
  const auto normalise = [&](bool wanted) QKR_LAMBDA {
    if (wanted)
#pragma GCC unroll 8
      for (auto &number : y) number = number * plan->norm_factor;
  };
  if constexpr (forward) {
    butterfly<8, true>([&](int m) QKR_LAMBDA { return number(src + 2 * m); }, put);
    normalise(plan->forward_norm);
    recombine_eight<set, true>(y, plan->forward_real);
#pragma GCC unroll 8
    for (int k = 1; k < 8; ++k) set_number(dst + 2 * k - moved, y[k]);
    dst[0] = y[0].v[0] + y[0].v[1];
    dst[last] = y[0].v[0] - y[0].v[1];
    if (last == sixteen) dst[1] = dst[sixteen + 1] = 0;
  } else {
    const T first = src[0], r8 = src[last];
    z[0] = {Vector<T, 16>{first + r8, first - r8}};
#pragma GCC unroll 8
    for (int k = 1; k < 8; ++k) z[k] = number(src + 2 * k - moved);
    recombine_eight<set, false>(z, plan->inverse_real);
    butterfly<8, false>([&](int m) QKR_LAMBDA { return z[m]; }, put);
    normalise(plan->inverse_norm);
#pragma GCC unroll 8
    for (int k = 0; k < 8; ++k) set_number(dst + 2 * k, y[k]);
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_REAL(prefix, set, T, suffix)                                                              \
  QKR_ENTRY(prefix##zprs_recombineFwd_##suffix, (T * data, int32_t half, const T *table),             \
            (data, half, table)) {                                                                    \
    recombine<EntrySet::set, true>(data, data, (size_t)half, table);                                  \
  }                                                                                                   \
  QKR_ENTRY(prefix##zprs_recombineInv_##suffix, (const T *src, T *dst, int32_t half, const T *table), \
            (src, dst, half, table)) {                                                                \
    recombine<EntrySet::set, false>(src, dst, (size_t)half, table);                                   \
  }                                                                                                   \
  QKR_ENTRY(prefix##zprs_sixteenFwd_##suffix,                                                         \
            (const qkr::sigfft::Plan<T> *plan, const T *src, T *dst, int32_t last),                   \
            (plan, src, dst, last)) {                                                                 \
    transform_sixteen<EntrySet::set, true>(plan, src, dst, last);                                     \
  }                                                                                                   \
  QKR_ENTRY(prefix##zprs_sixteenInv_##suffix,                                                         \
            (const qkr::sigfft::Plan<T> *plan, const T *src, T *dst, int32_t last),                   \
            (plan, src, dst, last)) {                                                                 \
    transform_sixteen<EntrySet::set, false>(plan, src, dst, last);                                    \
  }
QKR_REAL(w6_, w6, double, 64f)
QKR_REAL(w6_, w6, float, 32f)
QKR_REAL(, plain, double, 64f)
QKR_REAL(, plain, float, 32f)
