// Between complex elements one behind the other and vectors of their parts, which are doubles.
#pragma once

#include <qkr/vecmath_complex.h>

#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int lanes = QKR_SIMD_BYTES / 8;

// Lanes of two vectors one behind the other: every second, and by turns from the one and the other.
#if QKR_SIMD_BYTES == 64
#define QKR_EVEN 0, 2, 4, 6, 8, 10, 12, 14
#define QKR_ODD 1, 3, 5, 7, 9, 11, 13, 15
#define QKR_LOW 0, 8, 1, 9, 2, 10, 3, 11
#define QKR_HIGH 4, 12, 5, 13, 6, 14, 7, 15
#elif QKR_SIMD_BYTES == 32
#define QKR_EVEN 0, 2, 4, 6
#define QKR_ODD 1, 3, 5, 7
#define QKR_LOW 0, 4, 1, 5
#define QKR_HIGH 2, 6, 3, 7
#else
#define QKR_EVEN 0, 2
#define QKR_ODD 1, 3
#define QKR_LOW 0, 2
#define QKR_HIGH 1, 3
#endif

QKR_INLINE void take(const vxm64fc *z, f64 &re, f64 &im) {
  f64 a, b;
  load(&z[0].re, a);
  load(&z[lanes / 2].re, b);
  re = __builtin_shufflevector(a, b, QKR_EVEN);
  im = __builtin_shufflevector(a, b, QKR_ODD);
}
QKR_INLINE void give(vxm64fc *z, f64 re, f64 im) {
  store(&z[0].re, __builtin_shufflevector(re, im, QKR_LOW));
  store(&z[lanes / 2].re, __builtin_shufflevector(re, im, QKR_HIGH));
}

QKR_INLINE void take(const vxm32fc *z, f64 &re, f64 &im) {
  f32 a;
  load(&z[0].re, a);
  a = __builtin_shufflevector(a, a, QKR_EVEN, QKR_ODD);
  re = low_doubles(a);
  im = high_doubles(a);
}
QKR_INLINE void give(vxm32fc *z, f64 re, f64 im) {
  const f32 parts = join_singles(re, im);
  store(&z[0].re, __builtin_shufflevector(parts, parts, QKR_LOW, QKR_HIGH));
}

#undef QKR_EVEN
#undef QKR_ODD
#undef QKR_LOW
#undef QKR_HIGH

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
