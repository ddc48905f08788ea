// The passes. The first reads numbers as callers hand them over, at bit-reversed places, and writes the
// working layout; the others go from working layout to working layout, but for the last, which restores the
// callers' order.
#pragma once

#include <type_traits>

#include "sigfft/passes/butterfly.h"
#include "sigfft/passes/transpose.h"
#include "sigfft/passes/views.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// body(0), body(1), ... body(count - 1); a few that the compiler can count stand one behind the other where
// there are registers enough, so that what one pass stores the next finds in a register.
template <class Body>
QKR_INLINE void repeat(size_t count, Body body) {
  if (QKR_SIMD_BYTES == 64 && __builtin_constant_p(count) && count <= 4) {
#pragma GCC unroll 4
    for (size_t i = 0; i < count; ++i) body(i);
  } else {
    for (size_t i = 0; i < count; ++i) body(i);
  }
}

// Where the inputs of a first butterfly stand behind its column: rows of `spacing` numbers.
template <int radix>
struct Rows {
  size_t start[radix];
  QKR_INLINE explicit Rows(size_t spacing) {
#pragma GCC unroll 8
    for (size_t m = 0; m < radix; ++m) {
      start[m] = m * spacing;
      // Where they are no constants g++ would compute each address from the one before.
      if (!__builtin_constant_p(spacing)) asm("" : "+r"(start[m]));
    }
  }
};

// As many neighbouring columns as a register holds: input m in row m, outputs of column c at block[c].
template <int radix, bool forward, int bytes, int stored, class Source, class Store>
QKR_INLINE void first_tile(Source source, size_t column, const Rows<radix> &rows, Store store) {
  using T = typename Source::Element;
  Paired<T, bytes> y[radix];
  const Source from = source + column;
  const auto input = [&](int m) QKR_LAMBDA { return from.template pairs<bytes>(rows.start[m]); };
  const auto output = [&](int k, auto value) QKR_LAMBDA { y[k] = value; };
  butterfly<radix, forward>(input, output);
  transpose<radix, stored>(y, store);
}
template <int radix, bool forward, int bytes, int stored = bytes, class Source, class Area>
QKR_INLINE void first_butterflies(Source source, size_t column, const Rows<radix> &rows, Area area,
                                  const size_t *block) {
  first_tile<radix, forward, bytes, stored>(
      source, column, rows, [&](int c, int k, auto value) QKR_LAMBDA { area.put(block[c] + k, value); });
}
// Two such tiles, whose outputs lie side by side, where one writes only half lines of cache.
template <int radix, bool forward, int bytes, class Source, class Area>
QKR_INLINE void first_butterflies(Source source, size_t column, size_t column2, const Rows<radix> &rows,
                                  Area area, const size_t *block) {
  using T = typename Source::Element;
  constexpr int columns = bytes / 2 / sizeof(T);
  Grouped<T, 32> kept[2][columns];
  const auto keep = [&](int tile) QKR_LAMBDA {
    return [&, tile](int c, int, auto value) QKR_LAMBDA { kept[tile][c] = value; };
  };
  first_tile<radix, forward, bytes, 32>(source, column, rows, keep(0));
  first_tile<radix, forward, bytes, 32>(source, column2, rows, keep(1));
#pragma GCC unroll 8
  for (int c = 0; c < columns; ++c) area.put(block[c], kept[0][c]), area.put(block[c] + radix, kept[1][c]);
}

// How many columns of an array fill a register.
template <class Array, int bytes>
constexpr size_t columns_together = bytes / 2 / sizeof(typename Array::Element);

#if QKR_SIMD_BYTES == 64
// Two blocks, `distance` apart, in the halves of registers.
template <class Area>
struct TwoBlocks {
  using Element = typename Area::Element;
  Area area;
  size_t distance;

  QKR_INLINE TwoBlocks operator+(size_t k) const { return {area + k, distance}; }
  template <int bytes>
  QKR_INLINE Grouped<Element, bytes> grouped(size_t k) const {
    if constexpr (std::is_same_v<Area, Interleaved<Element>>)
      return {load_halves(area.p + 2 * k, area.p + 2 * (k + distance))};
    else
      return {join<Element, 32>(area.template grouped<32>(k).v, area.template grouped<32>(k + distance).v)};
  }
  QKR_INLINE void put(size_t k, Grouped<Element, 64> x) const {
    area.put(k, Grouped<Element, 32>{lower_half(x.v)});
    area.put(k + distance, Grouped<Element, 32>{upper_half(x.v)});
  }
};

template <class Area, int bytes>
constexpr size_t columns_together<TwoBlocks<Area>, bytes> = group<typename Area::Element>;
#endif

// Cosine and sine of twiddle m of each column that a register holds: of one group, or of two whose table
// entries lie `stride` numbers apart.
template <class V>
struct Twiddle {
  V c, s;
};
#if QKR_BASELINE
template <int radix, int bytes, class T>
QKR_INLINE auto twiddle(const T *table, int m, int) {
  using V = Vector<T, 16>;
  const T *c = table + (m - 1) * 2 * group<T>;
  return Twiddle<V>{load_vector<V>(c), load_vector<V>(c + group<T>)};
}
#else
template <int radix, int bytes, class T>
QKR_INLINE auto twiddle(const T *table, int m, [[maybe_unused]] int stride) {
  using V = Vector<T, bytes>;
  const auto place = [=](int i) QKR_LAMBDA { return table + (i - 1) * 2 * group<T>; };
  if constexpr (bytes == 32) {
    const auto twice = [](const T *p) QKR_LAMBDA { return (V)_mm256_broadcast_pd((const __m128d *)p); };
    return Twiddle<V>{twice(place(m)), twice(place(m) + group<T>)};
  } else {
#ifdef __AVX512F__
    const auto both = [=](const T *p) QKR_LAMBDA {
      const __m512d first = _mm512_broadcast_f64x2(_mm_loadu_pd((const double *)p));
      if (stride == 0) return (V)first;
      return (V)_mm512_mask_broadcast_f64x2(first, 0xF0, _mm_loadu_pd((const double *)(p + stride)));
    };
    return Twiddle<V>{both(place(m)), both(place(m) + group<T>)};
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
  constexpr size_t together = columns_together<In, bytes>;
  constexpr int stride = together == group<T> ? 0 : table_stride<T, radix>;
  repeat(columns / together, [=](size_t i) QKR_LAMBDA {
    const In from = in + i * together;
    const Out to = out + i * together;
    const T *const twiddles = table + i * (table_stride<T, radix> * (together / group<T>));
    butterfly<radix, forward>(
        [&](int m) QKR_LAMBDA {
          const auto x = from.template grouped<bytes>(reversed_place<radix>(m) * in_spacing);
          if (!m) return x;
          const auto w = twiddle<radix, bytes>(twiddles, m, stride);
          return times<forward>(x, w.c, w.s);
        },
        [&](int q, auto value) QKR_LAMBDA {
          if constexpr (last) to.natural(q * out_spacing, value);
          else to.put(q * out_spacing, value);
        });
  });
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
// for all blocks. The blocks are `step` apart.
template <int radix, bool forward, int bytes, class Area, class T>
QKR_INLINE void blocks_of_butterflies(Area area, size_t columns, size_t blocks, size_t step, const T *table) {
  constexpr size_t together = columns_together<Area, bytes>;
  constexpr int stride = together == group<T> ? 0 : table_stride<T, radix>;
  for (size_t i = 0; i < columns / together; ++i) {
    const T *const twiddles = table + i * (table_stride<T, radix> * (together / group<T>));
    decltype(twiddle<radix, bytes>(table, 1, stride)) w[radix];
#pragma GCC unroll 8
    for (int m = 1; m < radix; ++m) w[m] = twiddle<radix, bytes>(twiddles, m, stride);
    const Area first = area + i * together;
    repeat(blocks, [=](size_t b) QKR_LAMBDA {
      const Area block = first + b * step;
      butterfly<radix, forward>(
          [&](int m) QKR_LAMBDA {
            const auto x = block.template grouped<bytes>(reversed_place<radix>(m) * columns);
            return m ? times<forward>(x, w[m].c, w[m].s) : x;
          },
          [&](int q, auto value) QKR_LAMBDA { block.put(q * columns, value); });
    });
  }
}

constexpr size_t first_cache = 32768, alias_distance = 4096;

// A pass in place over `blocks` blocks of radix times `columns` numbers, all with the same twiddles. Short
// blocks are taken together; long ones are not, for a load waits for stores under way whose addresses agree
// in the last 12 bits.
template <int radix, bool forward, class Area, class T>
QKR_INLINE void middle_pass(Area area, size_t columns, size_t blocks, const T *table) {
  const size_t step = radix * columns, block_bytes = step * 2 * sizeof(T);
#if QKR_SIMD_BYTES == 64
  if (columns == group<T>)
    return blocks_of_butterflies<radix, forward, 64>(TwoBlocks<Area>{area, step}, columns, blocks / 2,
                                                     2 * step, table);
#endif
  if (block_bytes >= alias_distance) {
    for (size_t b = 0; b < blocks; ++b) {
      const Area block = area + b * step;
      block_of_butterflies<radix, forward, widest_group, false>(block, columns, block, columns, columns,
                                                                table);
    }
    return;
  }
  size_t together = first_cache / block_bytes;
  if (together > blocks) together = blocks;
  for (size_t b = 0; b < blocks; b += together)
    blocks_of_butterflies<radix, forward, widest_group>(area + b * step, columns, together, step, table);
}

template <int radix, bool forward, class Area, class Target, class T>
QKR_INLINE void last_pass(Area area, Target target, size_t columns, const T *table) {
  butterflies<radix, forward, true>(area, columns, target, columns, columns, table);
}

// How passes are called: each loop by itself where there is much to do, and all in one for a length that the
// compiler knows, so that short transforms stay in registers.
struct Apart {
  static constexpr bool in_one = false;
  template <class Pass>
  QKR_NOINLINE void operator()(Pass pass) const {
    pass();
  }
};
struct InOne {
  static constexpr bool in_one = true;
  template <class Pass>
  QKR_INLINE void operator()(Pass pass) const {
    pass();
  }
};

// Where a sequence of passes stands: the next pass, the binary logarithm of the columns, the twiddles.
template <class T>
struct Progress {
  int pass, done;
  const T *table;
};

// Passes before number `end` on 2^order numbers, as far as their blocks are no longer than that.
template <bool forward, int largest_radix = 8, class Call, class Area, class T>
QKR_INLINE Progress<T> middle_passes(Call call, Area area, int order, const qkr::sigfft::Passes &passes,
                                     int end, Progress<T> at) {
#pragma GCC unroll 4
  for (int pass = at.pass; pass < end; ++pass) {
    const int bits = passes.bits[pass];
    if (at.done + bits > order) break;
    const size_t columns = size_t{1} << at.done, blocks = size_t{1} << (order - at.done - bits);
    const T *const table = at.table;
    if (bits == 2) call([=]() QKR_LAMBDA { middle_pass<4, forward>(area, columns, blocks, table); });
    else if constexpr (largest_radix == 8)
      call([=]() QKR_LAMBDA { middle_pass<8, forward>(area, columns, blocks, table); });
    at = {pass + 1, at.done + bits, table + 2 * columns * ((1 << bits) - 1)};
  }
  return at;
}

// The same of a long array: first on one part after the other that stays in the first cache.
template <bool forward, class Call, class Area, class T>
QKR_INLINE Progress<T> passes_by_sections(Call call, Area area, int order, const qkr::sigfft::Passes &passes,
                                          int end, Progress<T> at) {
  constexpr int section_order = sigfft::is_double<T> ? 10 : 11;
  if (!Call::in_one && order > section_order) {
    const Progress<T> start = at;
    for (size_t place = 0; place >> order == 0; place += size_t{1} << section_order)
      at = middle_passes<forward>(call, area + place, section_order, passes, end, start);
  }
  return middle_passes<forward>(call, area, order, passes, end, at);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
