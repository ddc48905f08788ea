// Work memory of one call, from the cache of the calling thread.
#pragma once

#include <qkr/service.h>

namespace qkr::dft {

template <class T>
class Scratch {
  void *block_ = nullptr;

 public:
  // On a line of the cache, whatever the allocator's alignment; null where there is no memory, or a count of
  // 0.
  T *numbers = nullptr;

  explicit Scratch(int64_t count) {
    constexpr size_t line = 64;
    size_t bytes;
    if (count == 0) return;
    if (__builtin_mul_overflow(static_cast<size_t>(count), sizeof(T), &bytes) || bytes > SIZE_MAX - line)
      return;
    block_ = qkr_serv_allocate(bytes + line);
    if (block_) numbers = reinterpret_cast<T *>((reinterpret_cast<size_t>(block_) & ~(line - 1)) + line);
  }
  Scratch(const Scratch &) = delete;
  ~Scratch() { qkr_serv_deallocate(block_); }
};

}  // namespace qkr::dft
