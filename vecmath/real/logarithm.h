// The steps of the logarithm in double, for functions that are built on it.
#pragma once

#include "vecmath/frame/function.h"
#include "vecmath/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr double ln2_hi = 0x1.62e42fefa3800p-1, ln2_lo = 5.497923018708371e-14;

// x = 2^n y, r about 1/y from the table; y = head + tail, of which head * r is exact.
template <class V>
struct LogReduction {
  V n, r, t_hi, t_lo, head_residual, tail;
  QKR_INLINE explicit LogReduction(V x) {
    const V y = real((bits(x) & 0x000FFFFFFFFFFFFFu) | 0x3FF0000000000000u);
    n = exponent(bits(x) + 0x0008040000000000u);  // one more from 1.499 on, with the table's jump
    V again;
    look_up(ln_double::rows, ((bits(y) + 0x0000040000000000u) >> 43) - 0x7FE00u, r, again, t_hi, t_lo);
    const V head = real(bits(y) & 0x7FFFFFFF00000000u);
    tail = y - head;
    head_residual = exact_mad(head, r, -1.0);
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
