// Twiddles in the order in which passes over separate parts read them: a group of columns has for each
// multiple its cosines, and then the negated sines.
#pragma once

#include "sigfft/passes/split_registers.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Of one pass.
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

// And of one pass after the other, none of a larger radix.
template <class T, int largest>
struct GroupTables {
  static constexpr int largest_radix = largest;
  const T *next;

  template <int radix>
  QKR_INLINE GroupTwiddles<T, radix> take(size_t columns) {
    const T *const table = next;
    next += 2 * columns * (radix - 1);
    return {table};
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
