// Two ways to evaluate c[0] + c[1] x + c[2] x^2 + ... in half as many steps one behind the other as Horner's.
#pragma once

#include <stddef.h>

#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Even and odd powers by themselves, for four terms or more: the sums of small terms come last.
template <size_t terms, class V>
QKR_INLINE V polynomial(const double (&c)[terms], V x) {
  constexpr int top = (int)terms - 1;
  const V square = x * x;
  V high = square * c[top] + c[top - 2], next = square * c[top - 1] + c[top - 3];
  for (int k = top - 4; k >= 0; k -= 2) high = high * square + c[k];
  for (int k = top - 5; k >= 0; k -= 2) next = next * square + c[k];
  return top % 2 ? high * x + next : next * x + high;
}

// Two neighbouring terms at a time.
template <int degree, class V>
QKR_INLINE auto polynomial_by_pairs(const double *c, V x, V square) {
  if constexpr (degree == 0) return c[0];
  else if constexpr (degree == 1) return c[0] + x * c[1];
  else return (c[0] + x * c[1]) + square * polynomial_by_pairs<degree - 2>(c + 2, x, square);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
