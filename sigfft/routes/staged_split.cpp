// The transforms of staged.cpp on separate real and imaginary arrays: the same passes and tables, but parts
// stay apart throughout, in the work area and in registers.
#include "sigfft/passes/split_passes.h"
#include "sigfft/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using namespace sigfft;

// The twiddles of one pass.
template <class T, int radix>
struct GroupTwiddles {
  using Element = T;
  const T *table;

  template <int bytes>
  QKR_INLINE PartVectors<T, bytes> at(size_t k, int m) const {
    constexpr size_t stride = (radix - 1) * 2 * group<T>;
    const T *p = table + k / group<T> * stride + (m - 1) * 2 * group<T>;
    return {gather_cells<T, bytes>(p, stride), gather_cells<T, bytes>(p + group<T>, stride)};
  }
  template <int bytes>
  QKR_INLINE PartVectors<T, bytes> one(size_t k, int m) const {
    const T *p = table + (k / group<T> * (radix - 1) + m - 1) * 2 * group<T> + k % group<T>;
    return {all_lanes<T, bytes>(p[0]), all_lanes<T, bytes>(p[group<T>])};
  }
};

// And of one pass after the other.
template <class T>
struct GroupTables {
  static constexpr int largest_radix = 8;
  const T *next;

  template <int radix>
  QKR_INLINE GroupTwiddles<T, radix> take(size_t columns) {
    const T *const table = next;
    next += 2 * columns * (radix - 1);
    return {table};
  }
};

template <bool forward, int order, class T>
QKR_NOINLINE void short_transform(Split<const T> source, Split<T> area, Split<T> target, const T *table) {
  run_split_passes<forward, true>(source, area, target, passes_by_order<T>.of[order], order,
                                  GroupTables<T>{table});
}

template <bool forward, int order = largest_fixed_order + 1, class T>
QKR_INLINE void transform(Split<const T> source, Split<T> area, Split<T> target, int n, const T *table) {
  constexpr int longest_in_one = 10;
  if (n == 1 << order) return short_transform<forward, order>(source, area, target, table);
  if constexpr (order < longest_in_one) return transform<forward, order + 1>(source, area, target, n, table);
  const int its_order = __builtin_ctz(n);
  run_split_passes<forward, false>(source, area, target, passes_by_order<T>.of[its_order], its_order,
                                   GroupTables<T>{table});
}

// The result's own memory serves as the work area where it is not also the source. The rows of long
// transforms would all fall into the same few lines of the first cache: there runs are better.
template <bool forward, class T>
QKR_INLINE void transform(Split<const T> source, Split<T> target, int n, const T *table, T *work) {
  constexpr int longest_in_arrays = 1 << 12;
  if (n > longest_in_arrays) {
    const int order = __builtin_ctz(n);
    return run_split_passes<forward, false>(source, Runs<T>{work}, target, passes_by_order<T>.of[order],
                                            order, GroupTables<T>{table});
  }
  const auto unused = [&](const T *p) {
    return p != source.re && p != source.im && (size_t)p % widest_part == 0;
  };
  const bool in_result = unused(target.re) && unused(target.im);
  transform<forward>(source, in_result ? target : Split<T>{work, work + n}, target, n, table);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_STAGED_SPLIT(direction, forward, T, suffix)                                              \
  QKR_ENTRY(w6_zprs_staged##direction##_##suffix,                                                    \
            (const T *src_re, const T *src_im, T *dst_re, T *dst_im, int32_t n, const T *twiddles,   \
             const uint32_t *reversal, T *work),                                                     \
            (src_re, src_im, dst_re, dst_im, n, twiddles, reversal, work)) {                         \
    (void)reversal; /* places are counted */                                                         \
    transform<forward>(Split<const T>{src_re, src_im}, Split<T>{dst_re, dst_im}, n, twiddles, work); \
  }
QKR_STAGED_SPLIT(Fwd, true, double, 64f)
QKR_STAGED_SPLIT(Inv, false, double, 64f)
QKR_STAGED_SPLIT(Fwd, true, float, 32f)
QKR_STAGED_SPLIT(Inv, false, float, 32f)
