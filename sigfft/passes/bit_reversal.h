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

}  // namespace
}  // namespace qkr::sigfft
