// Transforms of the plain set: short ones as one sequence of passes through a work area on the stack; longer
// ones by blocks and columns, four at a time, or by merging blocks two by two.
#include "sigfft/passes/bit_reversal.h"
#include "sigfft/passes/deal.h"
#include "sigfft/passes/first_pass.h"
#include "sigfft/passes/four_columns.h"
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

// A transform by one sequence of passes, whose work area is on the stack; each length is one piece of code.
template <int order>
constexpr Passes passes_of = plain_set_passes(order);

template <int order>
struct ReversedColumns {
  template <int radix>
  QKR_INLINE size_t of(size_t tile) const {
    return reversed_bytes.of[tile] >> (8 + __builtin_ctz(radix) - order);
  }
};

template <bool forward, int order, class T>
QKR_INLINE void run_passes(Interleaved<const T> source, T *memory, Interleaved<T> target, const T *table) {
  constexpr const Passes &passes = passes_of<order>;
  const Interleaved<T> area = {memory};
  first_pass<1 << passes.bits[0], forward>(source, area, size_t{1} << order, ReversedColumns<order>());
  const Progress<T> last = middle_passes<forward, 4>(InOne(), area, order, passes, passes.count - 1,
                                                     Progress<T>{1, passes.bits[0], table});
  last_pass<4, forward>(area, target, size_t{1} << last.done, last.table);
}
template <bool forward, int order, class T>
QKR_INLINE void run_passes(Split<const T> source, T *memory, Split<T> target, const T *table) {
  run_split_passes<forward, true>(source, Runs<T>{memory}, target, passes_of<order>, order,
                                  GroupTables<T, 4>{table});
}

template <bool forward, int order, class Source, class Target, class T>
QKR_NOINLINE void in_one(Source source, Target target, const T *table) {
  alignas(64) T memory[2 << order];
  run_passes<forward, order>(source, memory, target, table);
}
template <bool forward, int order = largest_fixed_order + 1, class Source, class Target, class T>
QKR_INLINE void short_transform(Source source, Target target, int wanted, const T *table) {
  if (order == wanted) in_one<forward, order>(source, target, table);
  else if constexpr (order < largest_staged_order<EntrySet::plain, T>)
    short_transform<forward, order + 1>(source, target, wanted, table);
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
