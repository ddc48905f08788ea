// Bit reversal by a list of pairs. Place i has a high bit, a middle part and a low bit; the table names the
// middle parts that change places, and behind a 0, which is one of them, those that stay. High and low bit
// change places always.
#pragma once

#include <stddef.h>
#include <stdint.h>

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

template <class Element>
void reverse_into(const Element *src, Element *dst, size_t n, const uint32_t *table) {
  if (n < 4) {
    for (size_t i = 0; i < n; ++i) dst[i] = src[i];
    return;
  }
  const auto move = [=](size_t a, size_t b) {
    dst[b] = src[a];
    dst[b + 1] = src[a + n / 2];
    dst[b + n / 2] = src[a + 1];
    dst[b + n / 2 + 1] = src[a + n / 2 + 1];
  };
  for (; *table; table += 2) move(table[0] / 2, table[1] / 2), move(table[1] / 2, table[0] / 2);
  do move(*table / 2, *table / 2);
  while (*++table);
}

}  // namespace
}  // namespace qkr::sigfft
