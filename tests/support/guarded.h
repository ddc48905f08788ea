// An array between pages that must not be touched: a read or write beyond its end, or before its start, ends
// the test program.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <sys/mman.h>

namespace qkr::tests {

enum class Edge { end, start };

template <class T>
class Guarded {
  static constexpr size_t page = 4096;
  char *map_;
  size_t bytes_;
  T *data_;

 public:
  Guarded(size_t count, Edge edge) : bytes_((count * sizeof(T) + page - 1) / page * page) {
    map_ =
        static_cast<char *>(mmap(nullptr, bytes_ + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (map_ == MAP_FAILED || (bytes_ && mprotect(map_ + page, bytes_, PROT_READ | PROT_WRITE))) abort();
    data_ = reinterpret_cast<T *>(map_ + page + (edge == Edge::end ? bytes_ - count * sizeof(T) : 0));
  }
  Guarded(const Guarded &) = delete;
  ~Guarded() { munmap(map_, bytes_ + 2 * page); }
  T *data() { return data_; }
};

}  // namespace qkr::tests
