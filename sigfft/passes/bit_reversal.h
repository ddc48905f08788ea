// Bit reversal by a list of pairs. Place i has a high bit, a middle part and a low bit; the table names the
// middle parts that change places, and behind a 0, which is one of them, those that stay. High and low bit
// change places always.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "sigfft/plan/reversed_counter.h"

namespace qkr::sigfft {
namespace {

template <class Element>
inline void exchange(Element &a, Element &b) {
  const Element kept = a;
  a = b;
  b = kept;
}

template <class Element>
void reverse_in_place(Element *data, size_t n, const uint32_t *table) {
  if (n < 4) return;
  Element *const upper = data + n / 2;
  for (; *table; table += 2) {
    const size_t a = table[0] / 2, b = table[1] / 2;
    exchange(data[a], data[b]);
    exchange(data[a + 1], upper[b]);
    exchange(upper[a], data[b + 1]);
    exchange(upper[a + 1], upper[b + 1]);
  }
  do exchange(data[*table / 2 + 1], upper[*table / 2]);
  while (*++table);
}

// Out of place without a table: four at a time, whose new places differ in the highest bits.
template <class Element>
void reverse_into(const Element *src, Element *dst, int order) {
  if (order < 2) {
    for (size_t k = 0; k < size_t{1} << order; ++k) dst[k] = src[k];
    return;
  }
  const size_t quarter = size_t{1} << (order - 2);
  ReversedCounter place(order - 2);
  for (size_t k = 0; k < quarter; ++k, place.next()) {
    Element *const to = dst + place.value();
    for (size_t i = 0; i < 4; ++i) to[(i >> 1 | (i & 1) << 1) * quarter] = src[4 * k + i];
  }
}

// Out of place no more than what blocks need that reverse themselves: block rev(b) gets what lies from b on
// 2^block_bits apart. As many blocks at once as share the lines of cache that they read.
template <class Element, size_t together = 64 / sizeof(Element)>
void deal(const Element *src, Element *dst, size_t n, int block_bits) {
  const size_t blocks = size_t{1} << block_bits, length = n >> block_bits;
  if constexpr (together > 2)
    if (blocks < together) return deal<Element, together / 2>(src, dst, n, block_bits);
  ReversedCounter block(block_bits);
  for (size_t b = 0; b < blocks; b += together) {
    Element *to[together];
    for (size_t t = 0; t < together; ++t, block.next()) to[t] = dst + block.value() * length;
    for (size_t i = 0; i < length; ++i) {
#pragma GCC unroll 16
      for (size_t t = 0; t < together; ++t) to[t][i] = src[i * blocks + b + t];
    }
  }
}

}  // namespace
}  // namespace qkr::sigfft
