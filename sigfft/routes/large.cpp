// Long transforms (D. H. Bailey, Journal of Supercomputing 4 (1990) 23): the first pass of all blocks in one
// go over the array, which is also the bit reversal; the other passes of each block, which stays in the
// cache; then passes across the blocks, a few columns at a time, which are in the work buffer between the
// first of these passes and the last. Blocks that are too long themselves are split likewise.
#include <string.h>

#include "sigfft/passes/passes.h"
#include "sigfft/passes/scale.h"
#include "sigfft/plan/reversed_counter.h"
#include "sigfft/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using namespace sigfft;

// The array is seen as tiles of 64 numbers, 8 rows of 8 neighbours; the bit reversal of the whole takes tile
// m to tile rev(m), and within the tile transposes and reverses rows and columns.
constexpr size_t tile_side = 8;
constexpr int tile_number_bits = 6;
constexpr int reversed3[tile_side] = {0, 4, 2, 6, 1, 5, 3, 7};

// rev(m) of order - 6 bits, from the table of the plan.
class TileReversal {
  const uint32_t *table_;
  int group_bits_;  // of the table's groups of 64 tiles, 0 if the table is not by groups

 public:
  template <class T>
  TileReversal(const qkr::sigfft::Plan<T> *plan, int order)
      : table_(plan->reversal), group_bits_(order < first_tiled_order<T> ? 0 : order - 2 * tile_bits) {}
  QKR_INLINE size_t operator()(size_t m) const {
    if (!group_bits_) return table_[m] >> 5;
    const size_t high = m >> group_bits_;
    const auto reversed6 = (size_t)(reversed3[high & 7] << 3 | reversed3[high >> 3]);
    return table_[m & ((size_t{1} << group_bits_) - 1)] | reversed6;
  }
};

// From one array to another: tiles of `columns` neighbours in each of the rows that a butterfly takes
// together.
template <int radix, bool forward, class Source, class Data>
QKR_NOINLINE void first_pass_to(Source source, Data data, size_t n, size_t columns, TileReversal reversed) {
  using T = typename Source::Element;
  constexpr size_t together = widest_pairs / 2 / sizeof(T), most_steps = 64;
  const size_t steps = columns / together;
  const int extra_bits = __builtin_ctzll(columns * radix) - tile_number_bits;
  const size_t spacing = n / radix, tiles = spacing / columns;
  size_t block[together];
  ReversedCounter reversed_column(__builtin_ctzll(together));
  for (size_t c = 0; c < together; ++c, reversed_column.next())
    block[c] = reversed_column.value() * (spacing / together) * radix;
  size_t step_place[most_steps];
  ReversedCounter reversed_step(__builtin_ctzll(steps));
  for (size_t i = 0; i < steps; ++i, reversed_step.next())
    step_place[i] = reversed_step.value() * tiles * radix;
  const Rows<radix> rows(spacing);
  for (size_t tile = 0; tile < tiles; ++tile) {
    const size_t column = (reversed(tile) >> extra_bits) * columns;
    for (size_t i = 0; i < steps; ++i)
      first_butterflies<radix, forward, widest_pairs>(source, column + i * together, rows,
                                                      data + (step_place[i] + tile * radix), block);
  }
}

// The tile at `from`, rows `spacing` apart, through the first pass to the tile at `to`.
template <int radix, bool forward, class Source, class Data>
QKR_INLINE void first_pass_of_tile(Source from, size_t spacing, Data to, size_t to_spacing) {
  using T = typename Source::Element;
  constexpr size_t together = widest_pairs / 2 / sizeof(T);
  size_t block[together];
  const Rows<radix> rows(tile_side / radix * spacing);
#pragma GCC unroll 8
  for (size_t c0 = 0; c0 < tile_side; c0 += together)
#pragma GCC unroll 2
    for (size_t u = 0; u < tile_side / radix; ++u) {
#pragma GCC unroll 8
      for (size_t c = 0; c < together; ++c) block[c] = reversed3[c0 + c] * to_spacing + u * radix;
      first_butterflies<radix, forward, widest_pairs>(from, u * spacing + c0, rows, to, block);
    }
}

// In place: tiles change places in pairs.
template <int radix, bool forward, class Data>
QKR_NOINLINE void first_pass_within(Data data, size_t n, TileReversal reversed) {
  using T = typename Data::Element;
  const size_t spacing = n / tile_side;
  alignas(64) T memory[2 * tile_side * tile_side];
  const Interleaved<T> kept = {memory};
  for (size_t m = 0; m < spacing / tile_side; ++m) {
    const size_t partner = reversed(m);
    if (partner < m) continue;
    const Data a = data + m * tile_side, b = data + partner * tile_side;
    first_pass_of_tile<radix, forward>(a, spacing, kept, tile_side);
    if (partner != m) first_pass_of_tile<radix, forward>(b, spacing, a, spacing);
    constexpr size_t together = widest_group / 2 / sizeof(T);
    for (size_t row = 0; row < tile_side; ++row)
      for (size_t k = 0; k < tile_side; k += together)
        b.put(row * spacing + k, kept.template grouped<widest_group>(row * tile_side + k));
  }
}

template <bool forward, class Source, class Data>
QKR_INLINE void first_pass(Source source, Data data, bool in_place, int order, TileReversal reversed) {
  using T = typename Data::Element;
  constexpr int radix = is_double<T> ? 8 : 4;
  constexpr size_t columns = 64 / radix;
  const size_t n = size_t{1} << order;
  if (in_place) first_pass_within<radix, forward>(data, n, reversed);
  else
    first_pass_to<radix, forward>(source, data, n, order < first_tiled_order<T> ? columns : 4 * columns,
                                  reversed);
}

// All passes of a block but the first.
template <bool forward, class Data, class T>
void finish_block(const qkr::sigfft::Plan<T> *plan, Data block, int order, bool norm) {
  const Passes passes = staged_passes<T>(order);
  passes_by_sections<forward>(Apart(), block, order, passes, passes.count,
                              Progress<T>{1, passes.bits[0], plan->twiddles});
  if (norm) normalise(block, size_t{1} << order, plan->norm_factor);
}

// One pass across the blocks over `together` columns: from the rows, which are `length` apart, or the work
// area into the work area or the rows. `done` rows are combined already, out of `rows`.
template <int radix, bool forward, bool natural, class Data, class Area, class T>
QKR_NOINLINE void column_pass(Data data, size_t length, size_t rows, Area work, size_t together, size_t done,
                              const T *table) {
  const bool first = done == 1, last = done * radix == rows;
  const size_t columns = done * together;
  if (first && last) {
    block_of_butterflies<radix, forward, widest_group, natural>(data, length, data, length, together, table);
  } else if (first) {
    for (size_t row = 0; row < rows; row += radix)
      block_of_butterflies<radix, forward, widest_group, false>(
          data + row * length, length, work + row * together, together, together, table);
  } else if (last) {
    for (size_t i = 0; i < done; ++i)
      block_of_butterflies<radix, forward, widest_group, natural>(work + i * together, columns,
                                                                  data + i * length, done * length, together,
                                                                  table + 2 * (radix - 1) * i * together);
  } else {
    for (size_t row = 0; row < rows; row += done * radix)
      block_of_butterflies<radix, forward, widest_group, false>(
          work + row * together, columns, work + row * together, columns, columns, table);
  }
}

template <bool forward, bool natural, class Data, class T>
void combine(const qkr::sigfft::Plan<T> *plan, Data data, int order, bool norm, int level,
             Interleaved<T> work) {
  const Blocking blocking = w6_blocking<T>(order);
  const int block_order = order - blocking.blocks;
  const size_t length = size_t{1} << block_order, rows = size_t{1} << blocking.blocks;
  for (size_t row = 0; row < rows; ++row) {
    if (block_order <= largest_staged_order<EntrySet::w6, T>)
      finish_block<forward>(plan, data + row * length, block_order, norm);
    else combine<forward, false>(plan, data + row * length, block_order, norm, level + 1, work);
  }
  const size_t together = size_t{1} << (blocking.buffer - blocking.blocks);
  const Passes passes = column_passes(blocking.blocks);
  const T *table = plan->column_twiddles[level];
  for (size_t column = 0; column < length; column += together)
    for (int p = 0, done = 0; p < passes.count; done += passes.bits[p++]) {
      const int radix = 1 << passes.bits[p];
      if (radix == 4)
        column_pass<4, forward, natural>(data + column, length, rows, work, together, size_t{1} << done,
                                         table);
      else
        column_pass<8, forward, natural>(data + column, length, rows, work, together, size_t{1} << done,
                                         table);
      table += 2 * ((size_t)radix - 1) * (together << done);
    }
}

template <bool forward, class Source, class Data, class T>
QKR_INLINE void run_large(const qkr::sigfft::Plan<T> *plan, Source source, Data data, bool in_place,
                          int order, bool norm, T *work) {
  first_pass<forward>(source, data, in_place, order, TileReversal(plan, order));
  combine<forward, true>(plan, data, order, norm, 0, Interleaved<T>{work});
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_LARGE(name, forward, T)                                                                          \
  QKR_ENTRY(name,                                                                                            \
            (const qkr::sigfft::Plan<T> *plan, const T *src, T *dst, int32_t order, bool norm, T *work),     \
            (plan, src, dst, order, norm, work)) {                                                           \
    run_large<forward>(plan, Interleaved<const T>{src}, Interleaved<T>{dst}, src == dst, order, norm, work); \
  }
QKR_LARGE(w6_zprs_largeFwd_64fc, true, double)
QKR_LARGE(w6_zprs_largeInv_64fc, false, double)
QKR_LARGE(w6_zprs_largeFwd_32fc, true, float)
QKR_LARGE(w6_zprs_largeInv_32fc, false, float)

#define QKR_LARGE_SPLIT(name, T)                                                                       \
  QKR_ENTRY(name,                                                                                      \
            (const qkr::sigfft::Plan<T> *plan, const T *src_re, const T *src_im, T *dst_re, T *dst_im, \
             int32_t order, bool norm, T *work),                                                       \
            (plan, src_re, src_im, dst_re, dst_im, order, norm, work)) {                               \
    const bool re_in_place = src_re == dst_re, im_in_place = src_im == dst_im;                         \
    if (re_in_place && !im_in_place) memcpy(dst_im, src_im, sizeof(T) << order);                       \
    if (im_in_place && !re_in_place) memcpy(dst_re, src_re, sizeof(T) << order);                       \
    run_large<true>(plan, Split<const T>{src_re, src_im}, Split<T>{dst_re, dst_im},                    \
                    re_in_place || im_in_place, order, norm, work);                                    \
  }
QKR_LARGE_SPLIT(w6_zprs_large_64f, double)
QKR_LARGE_SPLIT(w6_zprs_large_32f, float)
