// The tables of plans. Each function fills one and returns the next multiple of 16 behind it, where the next
// table of a plan in the caller's memory starts.
#pragma once

#include "sigfft/arrays/memory.h"
#include "sigfft/plan/decomposition.h"
#include "sigfft/plan/reversed_counter.h"

namespace qkr::sigfft {

// The first quarter of a sine wave of 2^order points: the one table that needs sines computed, and that all
// others are drawn from.
template <class T>
T *fill_base_table(int order, T *table);

// The points exp(-2 pi i a / 2^bits) as the base table of an equally fine or finer circle shows them.
template <class T>
struct Circle {
  const T *base;
  int base_order, bits;

  // put(i, re, im) with the points first + i step, for i from 0 to count - 1. Within a quadrant the two parts
  // lie in the base table at one distance from point to point, one upward, the other downward.
  template <class Put>
  void for_points(size_t first, size_t step, size_t count, Put put) const {
    static constexpr T cos_signs[] = {1, -1, -1, 1}, negated_sin_signs[] = {-1, -1, 1, 1};
    const size_t quarter = size_t{1} << (base_order - 2), distance = step << (base_order - bits);
    size_t i = 0;
    while (i < count) {
      const size_t angle = (first + i * step) << (base_order - bits);
      const size_t quadrant = angle >> (base_order - 2) & 3, place = angle & (quarter - 1);
      const T re_sign = cos_signs[quadrant], im_sign = negated_sin_signs[quadrant];
      const bool odd = quadrant & 1;
      const T *const upward = base + place, *const downward = base + (quarter - place);
      const T up_sign = odd ? re_sign : im_sign, down_sign = odd ? im_sign : re_sign;
      size_t end = count;
      if (place + (count - 1 - i) * distance >= quarter) end = i + (quarter - place - 1) / distance + 1;
      const auto put_all = [&](auto in_order) {
        for (size_t at = 0; i < end; ++i, at += distance) {
          const T up = upward[at] * up_sign, down = *(downward - at) * down_sign;
          in_order(up, down);
        }
      };
      if (odd) put_all([&](T up, T down) { put(i, up, down); });
      else put_all([&](T up, T down) { put(i, down, up); });
    }
  }
};

// Twiddles of one sequence of passes.
template <EntrySet set, class T>
T *fill_staged_table(int order, const T *base, int base_order, T *table);

// Twiddles of a long transform, into the fields of the plan.
template <EntrySet set, class T>
void fill_large_tables(Plan<T> &plan, int order, const T *base, int base_order, T *table);

// Real recombination, forward and inverse; `order` is that of the real signal and of the base table.
template <EntrySet set, class T>
T *fill_forward_real_table(int order, const T *base, T *table);
template <EntrySet set, class T>
T *fill_inverse_real_table(int order, const T *base, T *table);

// 2 rev(j) for j below N/4, then 0, the end mark.
uint32_t *fill_reversal(int order, uint32_t *table);
// Pairs of places to exchange, in units of four elements; then 0.
uint32_t *fill_reversal_pairs(int order, uint32_t *table);
// For each group of tiles its partner; behind them the pairs of a tile of 2^(2 tile_bits) elements.
uint32_t *fill_reversal_tiles(int order, int tile_bits, uint32_t *table);

}  // namespace qkr::sigfft
