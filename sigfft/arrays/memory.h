// Memory of the engine's own, and of callers, at addresses that suit vectors.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace qkr::sigfft {

// Memory at a multiple of 32, or null; release_block is zprsFree.
void *allocate_block(size_t bytes);
void release_block(void *block);

constexpr size_t align16(size_t bytes) { return (bytes + 15) & ~size_t{15}; }
template <class Pointer>
Pointer align16(Pointer p) {
  return (Pointer)align16((size_t)p);
}

// The work buffer of one call, of `bytes` bytes: the caller's, or one of its own. 16 bytes of the caller's
// are there for the rounding.
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
      own = allocate_block((size_t)bytes + 32);
      start = (T *)(((size_t)own + 63) & ~size_t{63});  // what the widest registers like best
      failed = !own;
    }
  }
  WorkBuffer(const WorkBuffer &) = delete;
  ~WorkBuffer() {
    if (own) release_block(own);
  }
};

}  // namespace qkr::sigfft
