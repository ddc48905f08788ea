// The steps on 32-bit sums that end in 16 bits, for one number as for vectors.
#pragma once

#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The nearest number that 16 bits hold.
template <class I>
QKR_INLINE I saturated(I x) {
  const I lowest = x * 0 + INT16_MIN, highest = x * 0 + INT16_MAX;
  const I low = x < lowest ? lowest : x;
  return low > highest ? highest : low;
}

// x 2^-scale, rounded down, within 16 bits. What 16 bits do not hold before a shift to the left they do not
// hold after it, and neither do they any number but 0 shifted by 16.
template <class I>
QKR_INLINE I scaled(I x, int32_t scale) {
  if (scale >= 0) return saturated(x >> (scale < 31 ? scale : 31));
  const int32_t left = scale > -16 ? -scale : 16;
  return saturated((I)(saturated(x) * (1 << left)));
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
