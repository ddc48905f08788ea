// Short complex transforms of contiguous lines, one a lane.
#include "dft/codelets/rows.h"

#include "dft/codelets/row_lanes.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T, bool forward, int order>
QKR_NOINLINE int64_t transform_rows(const T *source, ptrdiff_t source_distance, T *target,
                                    ptrdiff_t target_distance, int64_t count, T scale) {
  using Source = SourceRows<T, order>;
  using Target = TargetRows<T, order>;
  constexpr int lines = Source::lines;
  int64_t i = 0;
  for (; i + lines <= count; i += lines) {
    T *const to = target + i * target_distance;
    lane_transform<order, forward, typename Source::C>(
        Source{{(T *)source + i * source_distance, source_distance}}, Target{{to, target_distance}});
    if (scale != 1) scale_rows(to, target_distance, lines, 2 << order, scale);
  }
  return i;
}

template <class T, bool forward, int order = 1>
QKR_INLINE int64_t rows_of(int wanted, const T *source, ptrdiff_t source_distance, T *target,
                           ptrdiff_t target_distance, int64_t count, T scale) {
  if constexpr (order < dft::largest_row_order)
    if (wanted != order)
      return rows_of<T, forward, order + 1>(wanted, source, source_distance, target, target_distance, count,
                                            scale);
  return transform_rows<T, forward, order>(source, source_distance, target, target_distance, count, scale);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_ROWS(name, T, forward)                                                                      \
  QKR_ENTRY_OF(int64_t, name,                                                                           \
               (int order, const void *source, ptrdiff_t source_distance, void *target,                 \
                ptrdiff_t target_distance, int64_t count, double scale),                                \
               (order, source, source_distance, target, target_distance, count, scale)) {               \
    return rows_of<T, forward>(order, (const T *)source, source_distance, (T *)target, target_distance, \
                               count, (T)scale);                                                        \
  }
QKR_ROWS(dft_rows_forward_32fc, float, true)
QKR_ROWS(dft_rows_backward_32fc, float, false)
QKR_ROWS(dft_rows_forward_64fc, double, true)
QKR_ROWS(dft_rows_backward_64fc, double, false)
