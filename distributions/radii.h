// The radius sqrt(-2 ln u) of two normal numbers (G. E. P. Box and M. E. Muller, Annals of Mathematical
// Statistics 29 (1958) 610).
#pragma once

#include "distributions/internal.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr double whole_turn = 6.283185307179586;  // 2 pi

// u becomes its radius.
template <class T>
inline void radii(int32_t n, T *u) {
  Precision<T>::ln(n, u, u);
  for (int32_t i = 0; i < n; ++i) u[i] = T(0) - (u[i] + u[i]);
  Precision<T>::sqrt(n, u, u);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
