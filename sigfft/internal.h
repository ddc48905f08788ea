// What the files of the transform engine share: the two sets of entries, plans, memory.
#pragma once

#include <qkr/sigfft.h>

namespace qkr::sigfft {

// The entries with the prefix w6_ and those without. They differ in path limits, tables and work memory.
enum class EntrySet { w6, plain };

// A finished plan is read-only. `id` tells its kind and is 0 once it is released; tables that an order does
// not use are null. A plan for real signals keeps the tables of the complex transform of half the length.
template <class T>
struct Plan {
  int32_t id, order;
  int32_t fwdNorm, invNorm;  // 1: that direction multiplies by normFactor
  T normFactor;
  int32_t hint;
  int32_t bufSize;  // bytes of work buffer, 0 for none
  int32_t owned;    // 1: memory of our own allocator, 0: the caller's
  uint32_t *bitRevTable;
  T *twiddleL1;                   // of the innermost transform; a long transform's tables start with it
  T *twiddleL2, *twiddleL2b;      // of the radix-2 merges
  T *realRecTable, *ccsRecTable;  // of the forward and the inverse recombination of real signals
  T *blockTwiddle[3];             // by level, of the short transforms across the blocks
  T *stepTwiddle[3];              // by level, of the columns across the blocks
};
static_assert(sizeof(Plan<double>) == 136 && sizeof(Plan<float>) == 128);

constexpr int32_t largest_order = 30;

// Identifiers of plans.
enum Id : int32_t { id_C_32fc = 4, id_C_32f, id_R_32f, id_C_64fc, id_C_64f, id_R_64f };

// Memory at a multiple of 32, or null; release_block is zprsFree.
void *allocate_block(size_t bytes);
void release_block(void *block);

constexpr size_t align16(size_t bytes) { return (bytes + 15) & ~size_t{15}; }
template <class Pointer>
Pointer align16(Pointer p) {
  return (Pointer)align16((size_t)p);
}

}  // namespace qkr::sigfft
