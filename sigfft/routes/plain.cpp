// Transforms of the plain set: short ones as one sequence of passes through a work area on the stack; longer
// ones by blocks and columns, four at a time, or by merging blocks two by two.
#include "sigfft/passes/bit_reversal.h"
#include "sigfft/passes/deal.h"
#include "sigfft/passes/group_twiddles.h"
#include "sigfft/passes/merges.h"
#include "sigfft/passes/scale.h"
#include "sigfft/passes/split_passes.h"
#include "sigfft/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using namespace sigfft;

// The number as one element that is moved.
template <class T>
struct alignas(sizeof(T)) WholeNumber {
  T re, im;
};
template <class Move, class S, class T>
QKR_INLINE void for_each_array(Interleaved<S> src, Interleaved<T> dst, Move move) {
  move((const WholeNumber<T> *)src.p, (WholeNumber<T> *)dst.p);
}
template <class Move, class S, class T>
QKR_INLINE void for_each_array(Split<S> src, Split<T> dst, Move move) {
  move((const T *)src.re, dst.re);
  move((const T *)src.im, dst.im);
}
template <class T>
QKR_INLINE bool shares_memory(Interleaved<const T> src, Interleaved<T> dst) {
  return src.p == dst.p;
}
template <class T>
QKR_INLINE bool shares_memory(Split<const T> src, Split<T> dst) {
  return src.re == dst.re || src.im == dst.im;
}
template <class T>
QKR_INLINE Interleaved<const T> as_source(Interleaved<T> data) {
  return {data.p};
}
template <class T>
QKR_INLINE Split<const T> as_source(Split<T> data) {
  return {data.re, data.im};
}
template <class T>
QKR_INLINE Interleaved<T> in_memory(Interleaved<T>, T *memory, size_t) {
  return {memory};
}
template <class T>
QKR_INLINE Split<T> in_memory(Split<T>, T *memory, size_t n) {
  return {memory, memory + n};
}

// A transform by one sequence of passes, whose work area is on the stack. The shortest ones are one piece of
// code each: calls would cost as much as their passes.
template <int order>
constexpr Passes passes_of = plain_set_passes(order);

template <bool forward, int order, class Source, class Target, class T>
QKR_NOINLINE void in_one(Source source, Target target, const T *table) {
  alignas(64) T memory[2 << order];
  run_split_passes<forward, true>(source, Runs<T>{memory}, target, passes_of<order>, order,
                                  GroupTables<T, 4>{table});
}
template <bool forward, class Source, class Target, class T>
QKR_NOINLINE void short_transform(Source source, Target target, int order, const T *table) {
  if (order == 4) return in_one<forward, 4>(source, target, table);
  if (order == 5) return in_one<forward, 5>(source, target, table);
  if (order == 6) return in_one<forward, 6>(source, target, table);
  alignas(64) T memory[2 << largest_staged_order<EntrySet::plain, T>];
  run_split_passes<forward, false>(source, Runs<T>{memory}, target, plain_set_passes(order), order,
                                   GroupTables<T, 4>{table});
}
// The same of numbers in bit-reversed order.
template <bool forward, class Data, class T>
QKR_INLINE void short_reversed_transform(Data data, int order, const T *table) {
  alignas(64) T memory[2 << largest_staged_order<EntrySet::plain, T>];
  const Data natural = in_memory(data, memory, size_t{1} << order);
  for_each_array(data, natural, [=](auto from, auto to) { reverse_into(from, to, order); });
  short_transform<forward>(as_source(natural), data, order, table);
}

template <bool forward, class Data, class T>
QKR_INLINE void staged_block(const Plan<T> *plan, Data data, bool reversed, int order, bool norm) {
  if (reversed) short_reversed_transform<forward>(data, order, plan->twiddles);
  else short_transform<forward>(as_source(data), data, order, plan->twiddles);
  if (norm) normalise(data, size_t{1} << order, plan->norm_factor);
}

// Four columns across the blocks: row by row, those of one row side by side.
template <class View>
struct FourColumns {
  using Element = typename View::Element;
  View data;
  size_t length;  // from row to row

  QKR_INLINE size_t place(size_t k) const { return k / 4 * length + k % 4; }
  QKR_INLINE FourColumns operator+(size_t k) const { return {data + place(k), length}; }
  template <int bytes>
  QKR_INLINE PartVectors<Element, bytes> parts(size_t k) const {
    return data.template parts<bytes>(place(k));
  }
  template <class V>
  QKR_INLINE void set_parts(size_t k, Parts<Element, V> x) const {
    constexpr int row_bytes = 4 * sizeof(Element), piece = row_bytes < (int)sizeof(V) ? row_bytes : sizeof(V);
    const View to = data + place(k);
    const size_t to_next = length;
    take_apart<piece>(x, 0, [=](int row, auto part) QKR_LAMBDA { to.set_parts(row * to_next, part); });
  }
};

// The twiddles of rows, for each of their four columns.
template <class Twiddles>
struct RowByRow {
  using Element = typename Twiddles::Element;
  Twiddles twiddles;

  template <int bytes>
  QKR_INLINE PartVectors<Element, bytes> at(size_t k, int m) const {
    constexpr size_t half = bytes / 2 / sizeof(Element);
    if constexpr (half < 4) return twiddles.template one<bytes>(k / 4, m);
    else return join<Element, bytes / 2>(at<bytes / 2>(k, m), at<bytes / 2>(k + half, m));
  }
};
template <class T>
struct RowByRowTables {
  static constexpr int largest_radix = 4;
  GroupTables<T, 4> tables;

  template <int radix>
  QKR_INLINE RowByRow<GroupTwiddles<T, radix>> take(size_t columns) {
    return {tables.template take<radix>(columns / 4)};
  }
};

// The rows come in bit-reversed order, each number with a twiddle of its own.
template <int radix, bool forward, class Data, class T>
QKR_NOINLINE void first_rows(FourColumns<Data> rows, Interleaved<const T> twiddles, Runs<T> area,
                             size_t count) {
  constexpr int row_bytes = 4 * sizeof(T), bytes = row_bytes < widest_part ? row_bytes : widest_part;
  for (size_t row = 0; row < count; row += radix)
    for (size_t c = 0; c < 4; c += bytes / sizeof(T))
      butterfly<radix, forward>(
          [&](int m) QKR_LAMBDA {
            const size_t place = (row + reversed_place<radix>(m)) * 4 + c;
            const auto w = twiddles.template parts<bytes>(place);
            return times<forward>(rows.template parts<bytes>(place), w.re, w.im);
          },
          [&](int k, auto y) QKR_LAMBDA { area.set_parts((row + k) * 4 + c, y); });
}
template <bool forward, class Data, class T>
QKR_INLINE void four_columns(FourColumns<Data> rows, int blocks, Interleaved<const T> twiddles,
                             const T *table, Runs<T> work) {
  const size_t count = size_t{1} << blocks;
  const Passes passes = plain_set_passes(blocks);
  if (passes.bits[0] == 3) first_rows<8, forward>(rows, twiddles, work, count);
  else first_rows<4, forward>(rows, twiddles, work, count);
  later_split_passes<forward, false>(work, rows, passes, 1, size_t{4} << passes.bits[0], 4 * count,
                                     RowByRowTables<T>{{table}});
}

// How many blocks the innermost transforms of a long one are.
template <class T>
int innermost_blocks(int order) {
  constexpr int staged = largest_staged_order<EntrySet::plain, T>;
  int rest = order;
  while (rest > staged) rest = plain_blocks<T>(rest) ? rest - plain_blocks<T>(rest) : staged;
  return order - rest;
}

constexpr size_t cache = 32768;

template <class Element>
QKR_NOINLINE void deal_in_place(Element *data, size_t n, int block_bits) {
  Element copy[cache / sizeof(Element)];
  __builtin_memcpy(copy, data, n * sizeof(Element));
  deal(copy, data, n, block_bits);
}

// Blocks of numbers, in natural or in bit-reversed order, become transforms, and these are combined.
template <bool forward, class Data, class T>
void plain_transform(const Plan<T> *plan, Data data, bool reversed, int order, bool norm, int level,
                     T *work) {
  constexpr int staged = largest_staged_order<EntrySet::plain, T>;
  if (order <= staged) return staged_block<forward>(plan, data, reversed, order, norm);
  const size_t n = size_t{1} << order;
  const int blocks = plain_blocks<T>(order), block_order = blocks ? order - blocks : staged;
  const size_t length = size_t{1} << block_order;
  for (size_t block = 0; block < n; block += length)
    plain_transform<forward>(plan, data + block, reversed, block_order, norm, level + 1, work);
  if (!blocks) {
    const GroupTwiddles<T, 2> twiddles = {plan->merge_twiddles};
    return n == 2 * length ? merge_two<forward>(data, length, twiddles)
                           : merge_four<forward>(data, length, twiddles);
  }
  for (size_t column = 0; column < length; column += 4)
    four_columns<forward>(FourColumns<Data>{data + column, length}, blocks,
                          Interleaved<const T>{plan->column_twiddles[level]} + (column << blocks),
                          plan->across_twiddles[level], Runs<T>{work});
}

// Out of place, numbers are dealt to blocks in natural order; so they are in place by way of the stack, as
// long as they fit the first cache. Beyond that blocks come in bit-reversed order.
template <bool forward, class Source, class Data, class T>
QKR_INLINE void run(const Plan<T> *plan, Source source, Data data, int order, bool norm, T *work) {
  if (order <= largest_staged_order<EntrySet::plain, T>) {
    short_transform<forward>(source, data, order, plan->twiddles);
    if (norm) normalise(data, size_t{1} << order, plan->norm_factor);
    return;
  }
  const size_t n = size_t{1} << order;
  const int block_bits = innermost_blocks<T>(order);
  const bool reversed = shares_memory(source, data) && n * 2 * sizeof(T) > cache;
  for_each_array(source, data, [=](auto from, auto to) {
    if (reversed) {
      if (from != to) __builtin_memcpy(to, from, n * sizeof *to);
      reverse_in_place(to, n, plan->reversal);
    } else if (from == to) {
      deal_in_place(to, n, block_bits);
    } else {
      deal(from, to, n, block_bits);
    }
  });
  plain_transform<forward>(plan, data, reversed, order, norm, 0, work);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_PLAIN(name, forward, T)                                                                      \
  QKR_ENTRY(name,                                                                                        \
            (const qkr::sigfft::Plan<T> *plan, const T *src, T *dst, int32_t order, bool norm, T *work), \
            (plan, src, dst, order, norm, work)) {                                                       \
    run<forward>(plan, Interleaved<const T>{src}, Interleaved<T>{dst}, order, norm, work);               \
  }
QKR_PLAIN(zprs_plainFwd_64fc, true, double)
QKR_PLAIN(zprs_plainInv_64fc, false, double)
QKR_PLAIN(zprs_plainFwd_32fc, true, float)
QKR_PLAIN(zprs_plainInv_32fc, false, float)

#define QKR_PLAIN_SPLIT(name, T)                                                                       \
  QKR_ENTRY(name,                                                                                      \
            (const qkr::sigfft::Plan<T> *plan, const T *src_re, const T *src_im, T *dst_re, T *dst_im, \
             int32_t order, bool norm, T *work),                                                       \
            (plan, src_re, src_im, dst_re, dst_im, order, norm, work)) {                               \
    run<true>(plan, Split<const T>{src_re, src_im}, Split<T>{dst_re, dst_im}, order, norm, work);      \
  }
QKR_PLAIN_SPLIT(zprs_plain_64f, double)
QKR_PLAIN_SPLIT(zprs_plain_32f, float)
