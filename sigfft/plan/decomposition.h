// How the order of a transform decides its path, its passes and its blocks: what the tables of a plan and the
// passes that read them must agree on.
#pragma once

#include "sigfft/plan/plan.h"

namespace qkr::sigfft {

// A long transform of the w6_ set: 2^blocks transforms of contiguous blocks, then passes over their columns,
// so many columns together that 2^buffer numbers lie in the work buffer.
struct Blocking {
  int blocks, buffer;
};
extern const Blocking w6_blockings_64f[], w6_blockings_32f[];
extern const int8_t plain_blocks_64f[], plain_blocks_32f[];
constexpr int first_blocked_order = 9;

namespace {  // also compiled for wide levels: no two files share a function

// Values of a table or work area of complex numbers that fill 16 bytes: the reals, and then the imaginaries,
// of a group of columns.
template <class T>
constexpr int group = 16 / sizeof(T);

template <class T>
constexpr bool is_double = sizeof(T) == 8;

// Complex transforms up to this order need no tables, those up to the second run as one sequence of passes,
// and longer ones go by blocks.
constexpr int largest_fixed_order = 3;
template <EntrySet set, class T>
constexpr int largest_staged_order = set == EntrySet::w6 ? (is_double<T> ? 14 : 16) : (is_double<T> ? 9 : 10);

// Binary logarithms of the radices of successive passes.
struct Passes {
  int count = 0;
  int bits[6] = {};
  constexpr void add(int b) { bits[count++] = b; }
};

// One sequence of passes. Radix 8 saves a third of the trips through memory; radix 4 makes up the remainder.
template <class T>
constexpr Passes staged_passes(int order) {
  Passes passes;
  int done = 0;
  const auto add = [&](int bits) { passes.add(bits), done += bits; };
  if (is_double<T>) {
    add(order == 4 || order == 6 ? 2 : 3);
    while (done < order) add(order - done == 2 || order - done == 4 ? 2 : 3);
  } else {
    // Four rows of four floats are transposed with the fewest steps: the first pass has radix 4.
    const bool eight_second = order == 7 || order == 10 || order == 11 || order == 13 || order == 14;
    add(order == 3 ? 3 : 2);
    while (done < order) {
      const int rest = order - done;
      add(rest == 3 || (rest >= 5 && done >= 3) || (done == 2 && eight_second) ? 3 : 2);
    }
  }
  return passes;
}

// The same for each order, made by the compiler.
template <class T>
struct PassesByOrder {
  Passes of[largest_staged_order<EntrySet::w6, T> + 1];
  constexpr PassesByOrder() : of() {
    for (int order = largest_fixed_order; order <= largest_staged_order<EntrySet::w6, T>; ++order)
      of[order] = staged_passes<T>(order);
  }
};
template <class T>
constexpr PassesByOrder<T> passes_by_order;

// The same of the plain set, whose radix is 4 but for a first pass of 8 where the order is odd.
constexpr Passes plain_set_passes(int order) {
  Passes passes;
  int done = order & 1 ? 3 : 2;
  passes.add(done);
  for (; done < order; done += 2) passes.add(2);
  return passes;
}

// The passes over columns across 2^block_bits blocks.
constexpr Passes column_passes(int block_bits) {
  Passes passes;
  for (int done = 0; done < block_bits; done += passes.bits[passes.count - 1])
    passes.add(block_bits - done == 2 || block_bits - done == 4 ? 2 : 3);
  return passes;
}

template <class T>
Blocking w6_blocking(int order) {
  return (is_double<T> ? w6_blockings_64f : w6_blockings_32f)[order - first_blocked_order];
}
// Of the plain set: 0 stands for blocks of the largest staged order that are merged by radix 2.
template <class T>
int plain_blocks(int order) {
  return (is_double<T> ? plain_blocks_64f : plain_blocks_32f)[order - first_blocked_order];
}

// From this order on the bit reversal of a long w6_ transform goes by tiles of 64 rows of 64 numbers.
template <class T>
constexpr int first_tiled_order = is_double<T> ? 19 : 20;
constexpr int tile_bits = 6;

}  // namespace
}  // namespace qkr::sigfft
