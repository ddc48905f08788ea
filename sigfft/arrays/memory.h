// Memory of the engine's own, and of callers, at addresses that suit vectors.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace qkr::sigfft {

constexpr size_t round_up(size_t address, size_t alignment) {
  return (address + alignment - 1) & ~(alignment - 1);
}
constexpr size_t align16(size_t bytes) { return round_up(bytes, 16); }
template <class Pointer>
Pointer align16(Pointer p) {
  return (Pointer)align16((size_t)p);
}

// A line of the cache, and the widest register.
constexpr size_t best_alignment = 64;

// Memory at a multiple of that, or null; release_block is zprsFree.
void *allocate_block(size_t bytes);
void release_block(void *block);

// The work buffer of one call: one of its own, or the caller's. That has 16 bytes more for the rounding of
// its start, which leaves no room for the best alignment.
template <class T>
struct WorkBuffer {
  T *start = nullptr;
  void *own = nullptr;
  bool failed = false;

  WorkBuffer(int32_t bytes, uint8_t *callers) {
    if (bytes <= 0) return;
    if (callers) {
      start = (T *)align16(callers);
    } else {
      start = (T *)(own = allocate_block((size_t)bytes));
      failed = !own;
    }
  }
  WorkBuffer(const WorkBuffer &) = delete;
  ~WorkBuffer() {
    if (own) release_block(own);
  }
};

}  // namespace qkr::sigfft
