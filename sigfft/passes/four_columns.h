// Passes over four neighbouring columns across the blocks of a long transform, with twiddles of their own
// before the first.
#pragma once

#include "sigfft/passes/group_twiddles.h"
#include "sigfft/passes/split_passes.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Row by row, those of one row side by side.
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

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
