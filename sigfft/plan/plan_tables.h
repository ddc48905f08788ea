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
