// The transforms of staged.cpp on separate real and imaginary arrays: the same passes and tables, but parts
// stay apart throughout, in the work area and in registers.
#include "sigfft/passes/group_twiddles.h"
#include "sigfft/passes/split_passes.h"
#include "sigfft/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using namespace sigfft;

template <int order, class T>
QKR_NOINLINE void short_transform(Split<const T> source, Split<T> area, Split<T> target, const T *table) {
  run_split_passes<true, true>(source, area, target, passes_by_order<T>.of[order], order,
                               GroupTables<T, 8>{table});
}

template <class Area, class T>
QKR_INLINE void long_transform(Split<const T> source, Area area, Split<T> target, int n, const T *table) {
  const int order = __builtin_ctz(n);
  run_split_passes<true, false>(source, area, target, passes_by_order<T>.of[order], order,
                                GroupTables<T, 8>{table});
}

template <int order = largest_fixed_order + 1, class T>
QKR_INLINE void transform(Split<const T> source, Split<T> area, Split<T> target, int n, const T *table) {
  constexpr int longest_in_one = 10;
  if (n == 1 << order) short_transform<order>(source, area, target, table);
  else if constexpr (order < longest_in_one) transform<order + 1>(source, area, target, n, table);
  else long_transform(source, area, target, n, table);
}

// The result's own memory serves as the work area where it is not also the source. The rows of long
// transforms would all fall into the same few lines of the first cache: there runs are better.
template <class T>
QKR_INLINE void transform(Split<const T> source, Split<T> target, int n, const T *table, T *work) {
  constexpr int longest_in_arrays = 1 << 12;
  if (n > longest_in_arrays) return long_transform(source, Runs<T>{work}, target, n, table);
  const auto unused = [&](const T *p) {
    return p != source.re && p != source.im && (size_t)p % widest_part == 0;
  };
  const bool in_result = unused(target.re) && unused(target.im);
  transform(source, in_result ? target : Split<T>{work, work + n}, target, n, table);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_STAGED_SPLIT(T, suffix)                                                                          \
  QKR_ENTRY(w6_zprs_staged_##suffix,                                                                         \
            (const T *src_re, const T *src_im, T *dst_re, T *dst_im, int32_t n, const T *twiddles, T *work), \
            (src_re, src_im, dst_re, dst_im, n, twiddles, work)) {                                           \
    transform(Split<const T>{src_re, src_im}, Split<T>{dst_re, dst_im}, n, twiddles, work);                  \
  }
QKR_STAGED_SPLIT(double, 64f)
QKR_STAGED_SPLIT(float, 32f)
