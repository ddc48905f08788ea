// Rows of the tables of the error functions: their nodes lie evenly in every binade of y = x + 1, at the
// numbers with `bits` bits behind the leading one.
#pragma once

#include "vecmath/frame/function.h"
#include "vecmath/frame/sign.h"
#include "vecmath/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Results and what they are the sum of are scaled up, so that close to the subnormal numbers only the result
// itself loses bits.
constexpr double scaled_up = 0x1p64;
template <class V>
QKR_INLINE V scaled_down(V magnitude, V x) {
  return magnitude * real((bits(x) & sign_bit<double>) | __builtin_bit_cast(uint64_t, 1 / scaled_up));
}

// The row nearest to x >= 0, the lower of two, and the distance of x from its node. It is exact: from row 1
// on the two are within a factor of 2 of each other.
template <int bits_of_node, class V>
struct NearestRow {
  decltype(bits(V())) row;
  V node, distance;
  QKR_INLINE explicit NearestRow(V x) {
    constexpr int shift = 52 - bits_of_node;
    const auto rounded = (bits(x + 1.0) + (((uint64_t)1 << (shift - 1)) - 1)) >> shift;
    row = rounded - ((uint64_t)1023 << bits_of_node);
    node = real(rounded << shift) - 1.0;
    distance = x - node;
  }
};

// The cubic polynomials of the tables for single precision.
template <class V>
QKR_INLINE V cubic(const double (*rows)[4], V x) {
  const NearestRow<6, V> at(x);
  V c0, c1, c2, c3;
  look_up(rows, at.row, c0, c1, c2, c3);
  const V d = at.distance;
  return c0 + d * (c1 + d * (c2 + d * c3));
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
