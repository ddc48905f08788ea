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
  butterfly<radix, forward>([&](int m)
                                QKR_LAMBDA { return source.template pairs<bytes>(column + m * spacing); },
                            [&](int k, auto value) QKR_LAMBDA { y[k] = value; });
  transpose<radix>(y, [&](int c, int k, auto value) QKR_LAMBDA { area.put(block[c] + k, value); });
}

// Twiddle m of the columns that start at a place of the table; wider registers take a second group, which
// lies `stride` numbers behind.
template <bool forward, class T, int bytes, class C>
QKR_INLINE C twiddled(C x, const T *table, int m, [[maybe_unused]] int stride) {
  const T *c = table + (m - 1) * 2 * group<T>, *s = c + group<T>;
#if QKR_BASELINE
  return times<forward>(x, load_vector<Vector<T, 16>>(c), load_vector<Vector<T, 16>>(s));
#else
  const auto twice = [](const T *p) { return _mm256_broadcast_pd((const __m128d *)p); };
  if constexpr (bytes == 32) {
    return times<forward>(x, (Vector<T, 32>)twice(c), (Vector<T, 32>)twice(s));
  } else {
#ifdef __AVX512F__
    const auto both = [&](const T *p) {
      return (Vector<T, 64>)_mm512_insertf64x4(_mm512_castpd256_pd512(twice(p)), twice(p + stride), 1);
    };
    return times<forward>(x, both(c), both(s));
#endif
  }
#endif
}

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
          return m ? twiddled<forward, T, bytes>(x, table, m, table_stride<T, radix>) : x;
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

// A pass in place over `blocks` blocks of radix times `columns` numbers, all with the same twiddles.
template <int radix, bool forward, class Area, class T>
QKR_NOINLINE void middle_pass(Area area, size_t columns, size_t blocks, const T *table) {
  for (size_t b = 0; b < blocks; ++b) {
    const Area block = area + b * radix * columns;
    butterflies<radix, forward, false>(block, columns, block, columns, columns, table);
  }
}

template <int radix, bool forward, class Area, class Target, class T>
QKR_NOINLINE void last_pass(Area area, Target target, size_t columns, const T *table) {
  butterflies<radix, forward, true>(area, columns, target, columns, columns, table);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
