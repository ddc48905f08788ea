// Whole numbers that are given out, and what stands in their array before them.
#pragma once

#include "distributions/internal.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Numbers of another type that stand in an array of int32_t until they are replaced.
using DoubleInPlace [[maybe_unused]] = double __attribute__((may_alias));
using SingleInPlace [[maybe_unused]] = float __attribute__((may_alias));

constexpr double largest_whole = INT32_MAX;

inline int32_t whole(double x) { return static_cast<int32_t>(x < largest_whole ? x : largest_whole); }

// All numbers of a law that lies above the largest.
inline int32_t fill_with_largest(int32_t n, int32_t *out) {
  for (ptrdiff_t i = 0; i < n; ++i) out[i] = INT32_MAX;
  return VXS_STATUS_OK;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
