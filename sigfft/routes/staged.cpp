// Transforms up to the largest order that runs as one sequence of passes.
#include "sigfft/passes/passes.h"
#include "sigfft/plan/reversed_counter.h"
#include "sigfft/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using namespace sigfft;

// The first pass in tiles: neighbouring columns are read together, so that every line of cache is used whole,
// and each column's outputs go to the block that the bit reversal gives it.
template <int radix, bool forward, int bytes, int stored = bytes, class Source, class Area>
QKR_INLINE void first_tiles(Source source, Area area, size_t n, const uint32_t *reversal) {
  using T = typename Source::Element;
  constexpr size_t columns = bytes / 2 / sizeof(T);
  const size_t spacing = n / radix, tiles = spacing / columns;
  size_t block[columns];
  ReversedCounter reversed_column(__builtin_ctzll(columns));
#pragma GCC unroll 8
  for (size_t c = 0; c < columns; ++c, reversed_column.next())
    block[c] = reversed_column.value() * tiles * radix;
  const Rows<radix> rows(spacing);
  const auto column = [=](size_t tile) QKR_LAMBDA { return (size_t)reversal[tile * (radix / 4)] / 2; };
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

template <int radix, bool forward, class Source, class Area>
QKR_INLINE void first_pass(Source source, Area area, size_t n, const uint32_t *reversal) {
  using T = typename Source::Element;
  if constexpr (widest_pairs == 64)
    if (n * 2 * sizeof(T) < (size_t)radix * 64)
      return first_tiles<radix, forward, 32>(source, area, n, reversal);
  if constexpr (widest_pairs == 64 && is_double<T>)
    if (n >= 128 && n <= 512)  // shorter: the next pass wants whole registers; longer: stores set the pace
      return first_tiles<radix, forward, 64, 32>(source, area, n, reversal);
  first_tiles<radix, forward, widest_pairs>(source, area, n, reversal);
}

template <bool forward, class Call, class Source, class Area, class Target, class T>
QKR_INLINE void run_passes(Call call, Source source, Area area, Target target, int order, const T *table,
                           const uint32_t *reversal) {
  const size_t n = size_t{1} << order;
  const Passes &passes = passes_by_order<T>.of[order];
  if (passes.bits[0] == 2) call([=]() QKR_LAMBDA { first_pass<4, forward>(source, area, n, reversal); });
  else if constexpr (is_double<T>)
    call([=]() QKR_LAMBDA { first_pass<8, forward>(source, area, n, reversal); });
  const Progress<T> last = passes_by_sections<forward>(call, area, order, passes, passes.count - 1,
                                                       Progress<T>{1, passes.bits[0], table});
  const size_t columns = size_t{1} << last.done;
  const T *const last_table = last.table;
  if (passes.bits[last.pass] == 2)
    call([=]() QKR_LAMBDA { last_pass<4, forward>(area, target, columns, last_table); });
  else call([=]() QKR_LAMBDA { last_pass<8, forward>(area, target, columns, last_table); });
}

template <bool forward, int order, class Source, class Area, class Target, class T>
QKR_NOINLINE void short_transform(Source source, Area area, Target target, const T *table,
                                  const uint32_t *reversal) {
  run_passes<forward>(InOne(), source, area, target, order, table, reversal);
}

template <bool forward, class Source, class Area, class Target, class T>
QKR_NOINLINE void long_transform(Source source, Area area, Target target, size_t n, const T *table,
                                 const uint32_t *reversal) {
  run_passes<forward>(Apart(), source, area, target, __builtin_ctzll(n), table, reversal);
}

template <bool forward, int order = largest_fixed_order + 1, class Source, class Area, class Target, class T>
QKR_INLINE void transform(Source source, Area area, Target target, size_t n, const T *table,
                          const uint32_t *reversal) {
  constexpr int longest_in_one = 10;
  if (n == 1 << order) short_transform<forward, order>(source, area, target, table, reversal);
  else if constexpr (order < longest_in_one)
    transform<forward, order + 1>(source, area, target, n, table, reversal);
  else long_transform<forward>(source, area, target, n, table, reversal);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

// The result's own memory serves as the work area where it is not also the source.
#define QKR_STAGED(name, forward, T)                                                                       \
  QKR_ENTRY(name, (const T *src, T *dst, int32_t n, const T *twiddles, const uint32_t *reversal, T *work), \
            (src, dst, n, twiddles, reversal, work)) {                                                     \
    const Interleaved<T> area = {src != dst && (size_t)dst % 16 == 0 ? dst : work};                        \
    transform<forward>(Interleaved<const T>{src}, area, Interleaved<T>{dst}, n, twiddles, reversal);       \
  }
QKR_STAGED(w6_zprs_stagedFwd_64fc, true, double)
QKR_STAGED(w6_zprs_stagedInv_64fc, false, double)
QKR_STAGED(w6_zprs_stagedFwd_32fc, true, float)
QKR_STAGED(w6_zprs_stagedInv_32fc, false, float)
