// Numbers dealt to blocks: no more of a bit reversal than what blocks need that reverse themselves.
#pragma once

#include "sigfft/passes/split_registers.h"
#include "sigfft/plan/reversed_counter.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Elements of 8 or 16 bytes that lie `stride` apart, put together.
template <int bytes, class Element>
QKR_INLINE Vector<double, bytes> gather_elements(const Element *p, size_t stride) {
  if constexpr (bytes == sizeof(Element)) {
    return load_vector<Vector<double, bytes>>((const double *)p);
  } else if constexpr (bytes == 16) {
    Vector<double, 16> pair;
    __builtin_memcpy(&pair, p, 8);
    __builtin_memcpy((double *)&pair + 1, p + stride, 8);
    return pair;
  } else {
    return join<double, bytes / 2>(
        gather_elements<bytes / 2>(p, stride),
        gather_elements<bytes / 2>(p + bytes / 2 / sizeof(Element) * stride, stride));
  }
}

// Block rev(b) gets what lies from b on 2^block_bits apart. As many blocks at once as share the lines of
// cache that they read.
template <class Element, size_t together = 64 / sizeof(Element)>
QKR_NOINLINE void deal(const Element *src, Element *dst, size_t n, int block_bits) {
  const size_t blocks = size_t{1} << block_bits, length = n >> block_bits;
  if constexpr (together > 2)
    if (blocks < together) return deal<Element, together / 2>(src, dst, n, block_bits);
  sigfft::ReversedCounter block(block_bits);
  for (size_t b = 0; b < blocks; b += together) {
    Element *to[together];
    for (size_t t = 0; t < together; ++t, block.next()) to[t] = dst + block.value() * length;
    if constexpr (sizeof(Element) >= 8) {
      for (size_t i = 0; i < length; i += QKR_SIMD_BYTES / sizeof(Element))
#pragma GCC unroll 8
        for (size_t t = 0; t < together; ++t)
          store_vector((double *)(to[t] + i),
                       gather_elements<QKR_SIMD_BYTES>(src + i * blocks + b + t, blocks));
    } else {
      for (size_t i = 0; i < length; ++i)
#pragma GCC unroll 16
        for (size_t t = 0; t < together; ++t) to[t][i] = src[i * blocks + b + t];
    }
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
