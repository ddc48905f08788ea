// The first pass of a transform of numbers in natural order. columns_of.of<radix>(tile) is where a tile
// begins: its number with the bits reversed.
#pragma once

#include "sigfft/passes/passes.h"
#include "sigfft/plan/reversed_counter.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The first pass in tiles: neighbouring columns are read together, so that every line of cache is used whole,
// and each column's outputs go to the block that the bit reversal gives it.
template <int radix, bool forward, int bytes, int stored = bytes, class Source, class Area, class Columns>
QKR_INLINE void first_tiles(Source source, Area area, size_t n, Columns columns_of) {
  using T = typename Source::Element;
  constexpr size_t columns = bytes / 2 / sizeof(T);
  const size_t spacing = n / radix, tiles = spacing / columns;
  size_t block[columns];
  sigfft::ReversedCounter reversed_column(__builtin_ctzll(columns));
#pragma GCC unroll 8
  for (size_t c = 0; c < columns; ++c, reversed_column.next())
    block[c] = reversed_column.value() * tiles * radix;
  const Rows<radix> rows(spacing);
  const auto column = [=](size_t tile) QKR_LAMBDA { return columns_of.template of<radix>(tile); };
  // A column of 32 bytes is half a line of cache, which the other half should find there.
  if constexpr (radix * 2 * sizeof(T) == 32 && bytes >= 32)
    if (tiles > 1 && (bytes == 64 || n * 2 * sizeof(T) >= first_cache))
      return repeat(tiles / 2, [=](size_t i) QKR_LAMBDA {
        first_butterflies<radix, forward, bytes>(source, column(2 * i), column(2 * i + 1), rows,
                                                 area + 2 * i * radix, block);
      });
  repeat(tiles, [=](size_t i) QKR_LAMBDA {
    first_butterflies<radix, forward, bytes, stored>(source, column(i), rows, area + i * radix, block);
  });
}

template <int radix, bool forward, class Source, class Area, class Columns>
QKR_INLINE void first_pass(Source source, Area area, size_t n, Columns columns_of) {
  using T = typename Source::Element;
  if constexpr (widest_pairs == 64)
    if (n * 2 * sizeof(T) < (size_t)radix * 64)
      return first_tiles<radix, forward, 32>(source, area, n, columns_of);
  if constexpr (widest_pairs == 64 && sigfft::is_double<T>)
    if (n >= 128 && n <= 512)  // shorter: the next pass wants whole registers; longer: stores set the pace
      return first_tiles<radix, forward, 64, 32>(source, area, n, columns_of);
  first_tiles<radix, forward, widest_pairs>(source, area, n, columns_of);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
