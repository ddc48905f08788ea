// The passes. The first reads numbers as callers hand them over, at bit-reversed places, and writes the
// working layout; the others go from working layout to working layout, but for the last, which restores the
// callers' order.
#pragma once

#include "sigfft/butterfly.h"
#include "sigfft/transpose.h"
#include "sigfft/views.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// As many neighbouring columns as a register holds: inputs m at column + m spacing, outputs of column c at
// block[c].
template <int radix, bool forward, int bytes, class Source, class Area>
QKR_INLINE void first_butterflies(Source source, size_t column, size_t spacing, Area area,
                                  const size_t *block) {
  using T = typename Source::Element;
  Paired<T, bytes> y[radix];
  const auto input = [&](int m) QKR_LAMBDA { return source.template pairs<bytes>(column + m * spacing); };
  const auto output = [&](int k, auto value) QKR_LAMBDA { y[k] = value; };
  butterfly<radix, forward>(input, output);
  transpose<radix>(y, [&](int c, int k, auto value) QKR_LAMBDA { area.put(block[c] + k, value); });
}

// A twiddle of each column that a register holds: of one group, or of two whose table entries lie `stride`
// numbers apart.
#if QKR_BASELINE
template <class T, int bytes>
using Twiddle = Vector<T, 16>;
template <class T, int bytes>
QKR_INLINE Twiddle<T, bytes> twiddle(const T *p, int) {
  return load_vector<Vector<T, 16>>(p);
}
#else
template <class T, int bytes>
using Twiddle = Vector<T, bytes>;
template <class T, int bytes>
QKR_INLINE Twiddle<T, bytes> twiddle(const T *p, [[maybe_unused]] int stride) {
  const auto twice = [](const T *q) { return _mm256_broadcast_pd((const __m128d *)q); };
  if constexpr (bytes == 32) {
    return (Vector<T, 32>)twice(p);
  } else {
#ifdef __AVX512F__
    return (Vector<T, 64>)_mm512_insertf64x4(_mm512_castpd256_pd512(twice(p)), twice(p + stride), 1);
#endif
  }
}
#endif

template <class T, int radix>
constexpr int table_stride = (radix - 1) * 2 * group<T>;

// One block of butterflies: sub-transform m stands at place reversed(m) in_spacing, output k goes to k
// out_spacing.
template <int radix, bool forward, int bytes, bool last, class In, class Out, class T>
QKR_INLINE void block_of_butterflies(In in, size_t in_spacing, Out out, size_t out_spacing, size_t columns,
                                     const T *table) {
  constexpr size_t together = bytes / 2 / sizeof(T);
  for (size_t k = 0; k < columns; k += together, table += table_stride<T, radix> * (together / group<T>)) {
    const In from = in + k;
    const Out to = out + k;
    butterfly<radix, forward>(
        [&](int m) QKR_LAMBDA {
          const auto x = from.template grouped<bytes>(reversed_place<radix>(m) * in_spacing);
          if (!m) return x;
          const T *c = table + (m - 1) * 2 * group<T>;
          return times<forward>(x, twiddle<T, bytes>(c, table_stride<T, radix>),
                                twiddle<T, bytes>(c + group<T>, table_stride<T, radix>));
        },
        [&](int q, auto value) QKR_LAMBDA {
          if constexpr (last) to.natural(q * out_spacing, value);
          else to.put(q * out_spacing, value);
        });
  }
}

// The same in registers of 32 bytes where the columns do not fill more.
template <int radix, bool forward, bool last, class In, class Out, class T>
QKR_INLINE void butterflies(In in, size_t in_spacing, Out out, size_t out_spacing, size_t columns,
                            const T *table) {
  if (widest_group == 64 && columns == group<T>)
    block_of_butterflies<radix, forward, 32, last>(in, in_spacing, out, out_spacing, columns, table);
  else
    block_of_butterflies<radix, forward, widest_group, last>(in, in_spacing, out, out_spacing, columns,
                                                             table);
}

// The same on `blocks` blocks side by side, in place: column by column, so that the twiddles are loaded once
// for all blocks.
template <int radix, bool forward, int bytes, class Area, class T>
QKR_INLINE void blocks_of_butterflies(Area area, size_t columns, size_t blocks, const T *table, int stride) {
  constexpr size_t together = bytes / 2 / sizeof(T);
  const size_t step = radix * columns;
  for (size_t k = 0; k < columns; k += together, table += table_stride<T, radix> * (together / group<T>)) {
    Twiddle<T, bytes> c[radix], s[radix];
#pragma GCC unroll 8
    for (int m = 1; m < radix; ++m) {
      c[m] = twiddle<T, bytes>(table + (m - 1) * 2 * group<T>, stride);
      s[m] = twiddle<T, bytes>(table + (m - 1) * 2 * group<T> + group<T>, stride);
    }
    Area block = area + k;
    for (size_t b = 0; b < blocks; ++b, block = block + step)
      butterfly<radix, forward>(
          [&](int m) QKR_LAMBDA {
            const auto x = block.template grouped<bytes>(reversed_place<radix>(m) * columns);
            return m ? times<forward>(x, c[m], s[m]) : x;
          },
          [&](int q, auto value) QKR_LAMBDA { block.put(q * columns, value); });
  }
}

#if QKR_SIMD_BYTES == 64
// Two blocks, `distance` apart, in the halves of registers.
template <class Area>
struct TwoBlocks {
  using Element = typename Area::Element;
  Area area;
  size_t distance;

  QKR_INLINE TwoBlocks operator+(size_t k) const { return {area + 2 * k, distance}; }
  template <int bytes>
  QKR_INLINE Grouped<Element, bytes> grouped(size_t k) const {
    return {join<Element, 32>(area.template grouped<32>(k).v, area.template grouped<32>(k + distance).v)};
  }
  QKR_INLINE void put(size_t k, Grouped<Element, 64> x) const {
    area.put(k, Grouped<Element, 32>{half_of<Element, 64, 0>(x.v)});
    area.put(k + distance, Grouped<Element, 32>{half_of<Element, 64, 1>(x.v)});
  }
};
#endif

constexpr size_t first_cache = 32768;

// A pass in place over `blocks` blocks of radix times `columns` numbers, all with the same twiddles. Blocks
// are taken together as long as they stay in the first cache.
template <int radix, bool forward, class Area, class T>
QKR_INLINE void middle_pass(Area area, size_t columns, size_t blocks, const T *table) {
  const size_t block_bytes = radix * columns * 2 * sizeof(T);
#if QKR_SIMD_BYTES == 64
  if (columns == group<T>)
    return blocks_of_butterflies<radix, forward, 64>(TwoBlocks<Area>{area, radix * columns}, columns,
                                                     blocks / 2, table, 0);
#endif
  size_t together = first_cache / block_bytes;
  if (together > blocks) together = blocks;
  if (together > 1) {
    for (size_t b = 0; b < blocks; b += together)
      blocks_of_butterflies<radix, forward, widest_group>(area + b * radix * columns, columns, together,
                                                          table, table_stride<T, radix>);
    return;
  }
  for (size_t b = 0; b < blocks; ++b) {
    const Area block = area + b * radix * columns;
    block_of_butterflies<radix, forward, widest_group, false>(block, columns, block, columns, columns, table);
  }
}

template <int radix, bool forward, class Area, class Target, class T>
QKR_INLINE void last_pass(Area area, Target target, size_t columns, const T *table) {
  butterflies<radix, forward, true>(area, columns, target, columns, columns, table);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
