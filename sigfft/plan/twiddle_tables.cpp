// Twiddle tables, each in the order in which the passes read it, so that they read it straight forward.
#include <utility>

#include "sigfft/plan/base_circle.h"
#include "sigfft/plan/plan_tables.h"

namespace qkr::sigfft {
namespace {

template <class T>
using Lanes = std::make_integer_sequence<int, group<T>>;

// The values of two vectors side by side.
template <class T, class V, int... i>
void store_pairs(T *t, V a, V b, std::integer_sequence<int, i...>) {
  constexpr int together = sizeof...(i), half = together / 2;
  sse2::store(t, __builtin_shufflevector(a, b, (i / 2 + i % 2 * together)...));
  sse2::store(t + together, __builtin_shufflevector(a, b, (half + i / 2 + i % 2 * together)...));
}

// The twiddles of `count` columns from k on of radix-2^bits butterflies. A group of columns has for each
// multiple m from 1 up the cosines of m k, and then the negated sines. So many columns go together as stay in
// the first cache until all their multiples are written.
template <class T>
T *append_groups(T *table, const BaseCircle<T> &circle, int bits, size_t k, size_t count) {
  constexpr size_t g = group<T>, most = 128;
  const size_t multiples = (size_t{1} << bits) - 1;
  for (size_t end = k + count; k < end; k += most) {
    const size_t columns = end - k < most ? end - k : most;
    for (size_t m = 1; m <= multiples; ++m)
      circle.for_groups(m * k, m, columns / g, [=](size_t i, auto re, auto im) {
        T *const place = table + (i * multiples + m - 1) * 2 * g;
        sse2::store(place, re), sse2::store(place + g, im);
      });
    table += 2 * multiples * columns;
  }
  return table;
}

template <class T>
T *fill_passes(const Passes &passes, int order, const T *base, int base_order, T *table) {
  T *t = table;
  for (int p = 1, done = passes.bits[0]; p < passes.count; ++p) {
    const int bits = passes.bits[p];
    t = append_groups(t, BaseCircle<T>{base, base_order, done + bits}, bits, 0, size_t{1} << done);
    done += bits;
  }
  return align16(table + (size_t{2} << order));
}

template <class T>
void fill_columns(Plan<T> &plan, int order, const T *base, int base_order, int level, T *&table) {
  const Blocking blocking = w6_blocking<T>(order);
  const int block_order = order - blocking.blocks;
  if (block_order <= largest_staged_order<EntrySet::w6, T>) {
    plan.twiddles = table;
    table = fill_passes(staged_passes<T>(block_order), block_order, base, base_order, table);
  } else {
    fill_columns(plan, block_order, base, base_order, level + 1, table);
  }
  plan.column_twiddles[level] = table;
  const size_t length = size_t{1} << block_order, together = size_t{1} << (blocking.buffer - blocking.blocks);
  const Passes passes = column_passes(blocking.blocks);
  for (size_t column = 0; column < length; column += together)
    for (int p = 0, done = 0; p < passes.count; done += passes.bits[p++]) {
      const BaseCircle<T> circle = {base, base_order, block_order + done + passes.bits[p]};
      for (size_t block = 0; block < size_t{1} << done; ++block)
        table = append_groups(table, circle, passes.bits[p], column + block * length, together);
    }
  table = align16(table);
}

template <class T>
void fill_plain_blocks(Plan<T> &plan, int order, const T *base, int base_order, int level, T *&table) {
  constexpr int staged = largest_staged_order<EntrySet::plain, T>;
  if (order <= staged) {
    plan.twiddles = table;
    table = fill_passes(plain_set_passes(order), order, base, base_order, table);
    return;
  }
  const int blocks = plain_blocks<T>(order), block_order = order - blocks;
  if (!blocks) {
    plan.twiddles = table;
    plan.merge_twiddles = table = fill_passes(plain_set_passes(staged), staged, base, base_order, table);
    table = append_groups(table, BaseCircle<T>{base, base_order, order}, 1, 0, size_t{1} << (order - 2));
    return;
  }
  fill_plain_blocks(plan, block_order, base, base_order, level + 1, table);
  plan.across_twiddles[level] = table;
  plan.column_twiddles[level] = table =
      fill_passes(plain_set_passes(blocks), blocks, base, base_order, table);
  const BaseCircle<T> circle = {base, base_order, order};
  // Four columns of all blocks lie together. Some more are filled at a time, so that what is written stays in
  // the cache.
  constexpr size_t g = group<T>, together = 4, groups = together / g, filled = 32;
  const size_t length = size_t{1} << block_order, block_count = size_t{1} << blocks;
  for (size_t column = 0; column < length; column += filled) {
    ReversedCounter frequency(blocks);
    for (size_t block = 0; block < block_count; ++block, frequency.next()) {
      const size_t f = frequency.value();
      circle.for_groups(f * column, f, filled / g, [=](size_t i, auto re, auto im) {
        T *const columns = table + 2 * together * (i / groups * block_count + block);
        store_pairs(columns + 2 * g * (i % groups), re, im, Lanes<T>());
      });
    }
    table += 2 * filled * block_count;
  }
}

// A value made of the cosine of column k and one made of its sine: as many as fill 16 bytes of the first kind
// and then of the second, from k = 1 on, or, in the plain set, side by side from k = 0.
template <EntrySet set, class T, class First, class Second, int... i>
T *fill_real_table(int order, const T *base, T *table, First first, Second second,
                   std::integer_sequence<int, i...>) {
  constexpr bool plain = set == EntrySet::plain;
  constexpr int together = sizeof...(i);
  const size_t quarter = size_t{1} << (order - 2);
  T *t = table;
  for (size_t k = plain ? 0 : 1; k < quarter; k += together, t += 2 * together) {
    sse2::Native<T> cosines, sines;
    sse2::load(base + quarter - k - (together - 1), cosines);
    sse2::load(base + k, sines);
    const auto a = first(__builtin_shufflevector(cosines, cosines, (together - 1 - i)...)), b = second(sines);
    if (plain) store_pairs(t, a, b, Lanes<T>());
    else sse2::store(t, a), sse2::store(t + together, b);
  }
  return align16(table + 2 * quarter);
}
}  // namespace

template <EntrySet set, class T>
T *fill_staged_table(int order, const T *base, int base_order, T *table) {
  if (set == EntrySet::w6 && order <= largest_fixed_order) return table;
  const Passes passes = set == EntrySet::w6 ? staged_passes<T>(order) : plain_set_passes(order);
  return fill_passes(passes, order, base, base_order, table);
}

template <EntrySet set, class T>
void fill_large_tables(Plan<T> &plan, int order, const T *base, int base_order, T *table) {
  if (set == EntrySet::plain) return fill_plain_blocks(plan, order, base, base_order, 0, table);
  fill_columns(plan, order, base, base_order, 0, table);
}

template <EntrySet set, class T>
T *fill_forward_real_table(int order, const T *base, T *table) {
  return fill_real_table<set>(
      order, base, table, [](auto cosine) { return T(0.5) * cosine; },
      [](auto sine) { return T(0.5) - T(0.5) * sine; }, Lanes<T>());
}

template <EntrySet set, class T>
T *fill_inverse_real_table(int order, const T *base, T *table) {
  return fill_real_table<set>(
      order, base, table, [](auto cosine) { return cosine; }, [](auto sine) { return -sine; }, Lanes<T>());
}

#define QKR_INSTANTIATE(set, T)                                                        \
  template T *fill_staged_table<EntrySet::set>(int, const T *, int, T *);              \
  template void fill_large_tables<EntrySet::set>(Plan<T> &, int, const T *, int, T *); \
  template T *fill_forward_real_table<EntrySet::set>(int, const T *, T *);             \
  template T *fill_inverse_real_table<EntrySet::set>(int, const T *, T *);
QKR_INSTANTIATE(w6, double)
QKR_INSTANTIATE(w6, float)
QKR_INSTANTIATE(plain, double)
QKR_INSTANTIATE(plain, float)

}  // namespace qkr::sigfft
