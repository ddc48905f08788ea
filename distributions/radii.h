// The radius sqrt(-2 ln u) of two normal numbers (G. E. P. Box and M. E. Muller, Annals of Mathematical
// Statistics 29 (1958) 610).
#pragma once

#include "distributions/internal.h"
#include "simd/simd.h"
#include "vecmath/frame/environment.h"

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

#if QKR_SIMD_BYTES < 64  // the processor's root is no faster than ours on the widest vectors
// x - r^2 for r about sqrt(x): exact, or with an error far below its largest size of r ulp(r).
QKR_INLINE f64 residual(f64 x, f64 r) {
#if QKR_BASELINE
  const f64 head = real(bits(r) & 0xFFFFFFFFF8000000u), rest = r - head;
  return ((x - head * head) - (head + head) * rest) - rest * rest;
#else
  return exact_mad(-r, r, x);
#endif
}

// _vxmdSqrt_HA errs by less than 0.502 ulp, so that it gives the rounded root r, the processor's, wherever
// the exact root r + residual / (2 r) is further than 2^-9 ulp from the middle between two numbers. Only the
// few others, and what is not an ordinary positive number, are left to it.
template <>
inline void radii(int32_t n, double *u) {
  constexpr int32_t lanes = sizeof(f64) / sizeof(double);
  constexpr double ulp = 0x1p-52, wide_of_middle = ulp * (1 - 0x1p-8);
  const auto by_function = [=](int32_t m, double *v) {
    for (int32_t i = 0; i < m; ++i) v[i] = 0.0 - (v[i] + v[i]);
    _vxmdSqrt_HA(m, v, v);
  };
  _vxmdLn_HA(n, u, u);
  const SseEnvironment environment;
  int32_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    f64 x;
    load(u + i, x);
    x = 0.0 - (x + x);
    const f64 r = square_root(x), power = real(bits(r) & 0x7FF0000000000000u);
    const f64 distance = real(bits(residual(x, r)) & 0x7FFFFFFFFFFFFFFFu);
    if (any(not_positive_normal(r * power * wide_of_middle - distance), 0.0)) by_function(lanes, u + i);
    else store(u + i, r);
  }
  by_function(n - i, u + i);
}
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
