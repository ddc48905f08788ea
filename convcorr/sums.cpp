// Sums of products, outputs side by side in the lanes, each with its terms in ascending order: the bits of
// the plain loop. Products and sums are rounded apart.
#include "convcorr/sums.h"

#include "simd/entry.h"
#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using convcorr::SumLine;
using convcorr::TapRow;

// Vectors worked on together: enough for the additions of each to hide behind those of the others.
constexpr int together = 8;

// Taps of outputs that are worked out from windows; fewer are taken one by one.
constexpr int64_t least_windowed_taps = 7, most_windowed_taps = 64;

// Terms first to last of an output.
struct Terms {
  int64_t first, last;
};

template <class T, bool descending, bool unit_step>
struct Sums {
  static constexpr int64_t lanes = sizeof(Native<T>) / sizeof(T);
  const TapRow<T> *rows;
  int64_t count;
  SumLine line;
  T *z;

  QKR_INLINE int64_t place(int64_t k) const { return line.first + (unit_step ? k : k * line.step); }
  QKR_INLINE Terms terms(int64_t k) const {
    const int64_t at = place(k), to_end = line.signal - 1 - at;
    const int64_t before = descending ? to_end : at, behind = descending ? at : to_end;
    return {before < 0 ? -before : 0, behind < line.taps ? behind : line.taps - 1};
  }
  // That lanes k to k + lanes - 1 have in common: they move along the taps as k grows, up or down.
  QKR_INLINE Terms common(int64_t k) const {
    const Terms a = terms(k), b = terms(k + lanes - 1);
    return {a.first > b.first ? a.first : b.first, a.last < b.last ? a.last : b.last};
  }
  static QKR_INLINE const T *at_term(const T *signal, int64_t m) {
    return descending ? signal - m : signal + m;
  }

  QKR_INLINE Native<T> signals(const T *from) const {
    Native<T> v;
    if constexpr (unit_step) load(from, v);
    else
      for (int i = 0; i < lanes; ++i) v[i] = from[i * line.step];
    return v;
  }

  QKR_INLINE T sum_on(T sum, const TapRow<T> &row, int64_t k, int64_t first, int64_t last) const {
    const T *const signal = row.signal + place(k);
    for (int64_t m = first; m <= last; ++m) sum = sum + row.taps[m] * *at_term(signal, m);
    return sum;
  }

  // Outputs one by one.
  QKR_INLINE void singly(int64_t k, int64_t end) const {
    for (; k < end; ++k) {
      const Terms all = terms(k);
      T sum = 0;
      for (int64_t r = 0; r < count; ++r) sum = sum_on(sum, rows[r], k, all.first, all.last);
      z[k] = sum;
    }
  }

  // `vectors` vectors of outputs from k on, the last of which ends at `end` and may overlap the one before.
  template <int vectors>
  struct Group {
    int64_t at[vectors];
    QKR_INLINE Group(int64_t k, int64_t end) {
      for (int v = 0; v < vectors; ++v) at[v] = v == vectors - 1 ? end - lanes : k + v * lanes;
    }
  };

  // All outputs have all terms.
  template <int vectors>
  QKR_INLINE void whole(int64_t k, int64_t end) const {
    const Group<vectors> group(k, end);
    Native<T> sum[vectors] = {};
    int64_t offset[vectors];
#pragma GCC unroll 8
    for (int v = 0; v < vectors; ++v) offset[v] = place(group.at[v]);
    for (int64_t r = 0; r < count; ++r) {
      const T *const taps = rows[r].taps, *const signal = rows[r].signal;
      for (int64_t m = 0; m < line.taps; ++m) {
        const T *const from = at_term(signal, m);
        const T tap = taps[m];
#pragma GCC unroll 8
        for (int v = 0; v < vectors; ++v) sum[v] = sum[v] + tap * signals(from + offset[v]);
      }
    }
#pragma GCC unroll 8
    for (int v = 0; v < vectors; ++v) store(z + group.at[v], sum[v]);
  }

  // Terms first to last of one vector.
  QKR_INLINE Native<T> vector_on(Native<T> sum, const TapRow<T> &row, int64_t k, int64_t first,
                                 int64_t last) const {
    const T *const signal = row.signal + place(k);
    for (int64_t m = first; m <= last; ++m) sum = sum + row.taps[m] * signals(at_term(signal, m));
    return sum;
  }

  // Outputs that lack terms: what the lanes of a vector have in common is taken together, what the vectors
  // of the group have in common side by side, and what comes before and behind is not.
  template <int vectors>
  QKR_INLINE void partial(int64_t k, int64_t end) const {
    const Group<vectors> group(k, end);
    T sums[vectors][lanes] = {};
    Terms own[vectors];
    Terms shared = {0, line.taps - 1};
    for (int v = 0; v < vectors; ++v) {
      own[v] = common(group.at[v]);
      if (own[v].first > shared.first) shared.first = own[v].first;
      if (own[v].last < shared.last) shared.last = own[v].last;
    }
    if (shared.first > shared.last) shared = {line.taps, line.taps - 1};  // nothing: vectors go by themselves
    for (int64_t r = 0; r < count; ++r) {
      const TapRow<T> row = rows[r];
      Native<T> sum[vectors];
      for (int v = 0; v < vectors; ++v) {
        const int64_t stop = own[v].first <= own[v].last ? own[v].first : line.taps;
        for (int i = 0; i < lanes; ++i) {
          const Terms all = terms(group.at[v] + i);
          const int64_t last = all.last < stop ? all.last : stop - 1;
          sums[v][i] = sum_on(sums[v][i], row, group.at[v] + i, all.first, last);
        }
        load(sums[v], sum[v]);
        const int64_t last = own[v].last < shared.first ? own[v].last : shared.first - 1;
        sum[v] = vector_on(sum[v], row, group.at[v], own[v].first, last);
      }
      for (int64_t m = shared.first; m <= shared.last; ++m) {
        const T *const from = at_term(row.signal, m);
        const T tap = row.taps[m];
#pragma GCC unroll 8
        for (int v = 0; v < vectors; ++v) sum[v] = sum[v] + tap * signals(from + place(group.at[v]));
      }
      for (int v = 0; v < vectors; ++v) {
        if (shared.first <= shared.last)
          sum[v] = vector_on(sum[v], row, group.at[v], shared.last + 1, own[v].last);
        store(sums[v], sum[v]);
        if (own[v].first > own[v].last) continue;
        for (int i = 0; i < lanes; ++i)
          sums[v][i] = sum_on(sums[v][i], row, group.at[v] + i, own[v].last + 1, terms(group.at[v] + i).last);
      }
    }
    for (int v = 0; v < vectors; ++v) memcpy(z + group.at[v], sums[v], sizeof sums[v]);
  }

  // Few outputs that lack some of few taps: from a window of each row with zeros around it. A product with 0
  // changes no sum, since none that starts from +0 is ever -0, unless the tap is an infinity or a NaN: false
  // then, by sums that are not finite.
  template <int vectors>
  QKR_NOINLINE bool windowed(int64_t k, int64_t end) const {
    T window[vectors * lanes + most_windowed_taps] = {};
    const int64_t missing = line.taps - 1, low = place(k) - (descending ? missing : 0);
    const int64_t high = low + vectors * lanes + missing, stop = high < line.signal ? high : line.signal;
    const int64_t from = low > 0 ? low : 0, numbers = stop - from;
    Native<T> sum[vectors] = {};
    for (int64_t r = 0; r < count; ++r) {
      if (numbers > 0) memcpy(window + (from - low), rows[r].signal + from, (size_t)numbers * sizeof(T));
      for (int64_t m = 0; m < line.taps; ++m) {
        const T *const signal = window + (descending ? missing - m : m);
        const T tap = rows[r].taps[m];
#pragma GCC unroll 8
        for (int v = 0; v < vectors; ++v) sum[v] = sum[v] + tap * signals(signal + v * lanes);
      }
    }
    T sums[vectors * lanes];
    Flags not_finite = {};
    for (int v = 0; v < vectors; ++v) {
      not_finite = not_finite | beyond(sum[v], (T)__builtin_inf());
      store(sums + v * lanes, sum[v]);
    }
    if (any(not_finite, T())) return false;
    memcpy(z + k, sums, (size_t)(end - k) * sizeof(T));
    return true;
  }
  template <int vectors>
  QKR_INLINE bool in_windows(int64_t k, int64_t end) const {
    if constexpr (vectors > 1)
      if (end - k <= (vectors - 1) * lanes) return in_windows<vectors - 1>(k, end);
    return windowed<vectors>(k, end);
  }

  template <int vectors, bool is_whole>
  QKR_NOINLINE void group(int64_t k, int64_t end) const {
    if constexpr (is_whole) whole<vectors>(k, end);
    else partial<vectors>(k, end);
  }
  template <int vectors, bool is_whole>
  QKR_INLINE void last_group(int64_t k, int64_t end) const {
    if constexpr (vectors > 1)
      if (end - k <= (vectors - 1) * lanes) return last_group<vectors - 1, is_whole>(k, end);
    group<vectors, is_whole>(k, end);
  }

  // Outputs k to end - 1. The last vector may reach back before k, where there are outputs.
  template <bool is_whole>
  QKR_INLINE void segment(int64_t k, int64_t end) const {
    constexpr int most = is_whole ? together : together / 2;
    if (k >= end) return;
    if constexpr (!is_whole && unit_step) {
      const bool few = end - k <= most * lanes && line.taps <= most_windowed_taps;
      if (few && line.taps > least_windowed_taps && in_windows<most>(k, end)) return;
    }
    if (end - k < lanes && (is_whole || line.taps < 2 * lanes || end < lanes)) return singly(k, end);
    for (; end - k > most * lanes; k += most * lanes) group<most, is_whole>(k, k + most * lanes);
    last_group<most, is_whole>(k, end);
  }

  QKR_INLINE void all() const {
    // Outputs [begin, end) have all terms.
    const int64_t missing = line.taps - 1;
    const int64_t lowest = descending ? missing : 0, highest = line.signal - 1 - (descending ? 0 : missing);
    const auto first_not_below = [&](int64_t limit) QKR_LAMBDA {
      const int64_t k = (limit - line.first + line.step - 1) / line.step;
      return limit <= line.first ? 0 : k < line.outputs ? k : line.outputs;
    };
    const int64_t begin = first_not_below(lowest);
    const int64_t stop = first_not_below(highest + 1), end = stop > begin ? stop : begin;
    segment<false>(0, begin);
    segment<true>(begin, end);
    segment<false>(end, line.outputs);
  }
};

template <class T>
QKR_INLINE void sums(const TapRow<T> *rows, int64_t count, const SumLine &line, T *z) {
  if (line.step == 1) {
    if (line.descending) Sums<T, true, true>{rows, count, line, z}.all();
    else Sums<T, false, true>{rows, count, line, z}.all();
  } else {
    if (line.descending) Sums<T, true, false>{rows, count, line, z}.all();
    else Sums<T, false, false>{rows, count, line, z}.all();
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_SUMS(name, T)                                                                                    \
  QKR_ENTRY(name,                                                                                            \
            (const qkr::convcorr::TapRow<T> *rows, int64_t count, const qkr::convcorr::SumLine *line, T *z), \
            (rows, count, line, z)) {                                                                        \
    sums(rows, count, *line, z);                                                                             \
  }
QKR_SUMS(convcorr_sums_32f, float)
QKR_SUMS(convcorr_sums_64f, double)
