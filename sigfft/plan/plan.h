// What all files of the transforms share: the two sets of entries, and plans.
#pragma once

#include <qkr/sigfft.h>

namespace qkr::sigfft {

// The entries with the prefix w6_ and those without. They differ in path limits, tables and work memory.
enum class EntrySet : int32_t { w6, plain };

// A finished plan is read-only. `id` tells its kind and is 0 once it is released; tables that an order does
// not use are null. A plan for real signals keeps the tables of the complex transform of half the length.
template <class T>
struct Plan {
  int32_t id, order;
  int32_t forward_norm, inverse_norm;  // 1: that direction multiplies by norm_factor
  T norm_factor;
  int32_t hint;
  int32_t work_bytes;  // of work buffer, 0 for none
  int32_t owned;       // 1: memory of our own allocator, 0: the caller's
  EntrySet set;
  uint32_t *reversal;
  T *twiddles;                     // of the innermost transform; a long transform's tables start with it
  T *merge_twiddles;               // of the radix-2 merges
  T *forward_real, *inverse_real;  // of the forward and the inverse recombination of real signals
  T *across_twiddles[3];           // by level, of the short transforms across the blocks
  T *column_twiddles[3];           // by level, of the columns across the blocks
};

// Plans of the two sets have the same types, but not the same tables.
template <EntrySet set, class T>
bool is_of(const Plan<T> *plan, int32_t id) {
  return plan->id == id && plan->set == set;
}

constexpr int32_t largest_order = 30;

// Identifiers of plans.
enum Id : int32_t { id_C_32fc = 4, id_C_32f, id_R_32f, id_C_64fc, id_C_64f, id_R_64f };

}  // namespace qkr::sigfft
