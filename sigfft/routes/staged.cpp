// Transforms up to the largest order that runs as one sequence of passes.
#include "sigfft/passes/first_pass.h"
#include "sigfft/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using namespace sigfft;

// Every radix-4 tile has its column in the table, every radix-8 tile takes every second.
struct ColumnsOfTable {
  const uint32_t *reversal;
  template <int radix>
  QKR_INLINE size_t of(size_t tile) const {
    return reversal[tile * (radix / 4)] / 2;
  }
};

template <bool forward, class Call, class Source, class Area, class Target, class T>
QKR_INLINE void run_passes(Call call, Source source, Area area, Target target, int order, const T *table,
                           const uint32_t *reversal) {
  const size_t n = size_t{1} << order;
  const Passes &passes = passes_by_order<T>.of[order];
  const ColumnsOfTable columns_of = {reversal};
  if (passes.bits[0] == 2) call([=]() QKR_LAMBDA { first_pass<4, forward>(source, area, n, columns_of); });
  else if constexpr (is_double<T>)
    call([=]() QKR_LAMBDA { first_pass<8, forward>(source, area, n, columns_of); });
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
