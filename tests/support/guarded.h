// Arrays of pages: between such that must not be touched, and far larger than the memory behind them.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

namespace qkr::tests {

enum class Edge { end, start };

// A read or write beyond its end, or before its start, ends the test program.
template <class T>
class Guarded {
  static constexpr size_t page = 4096;
  char *map_;
  size_t bytes_, count_;
  T *data_;

 public:
  Guarded(size_t count, Edge edge) : bytes_((count * sizeof(T) + page - 1) / page * page), count_(count) {
    map_ =
        static_cast<char *>(mmap(nullptr, bytes_ + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (map_ == MAP_FAILED || (bytes_ && mprotect(map_ + page, bytes_, PROT_READ | PROT_WRITE))) abort();
    data_ = reinterpret_cast<T *>(map_ + page + (edge == Edge::end ? bytes_ - count * sizeof(T) : 0));
  }
  Guarded(const Guarded &) = delete;
  ~Guarded() { munmap(map_, bytes_ + 2 * page); }
  T *data() const { return data_; }
  T *begin() const { return data_; }
  T *end() const { return data_ + count_; }
  size_t size() const { return count_; }
  T &operator[](size_t i) const { return data_[i]; }
};

// One stretch of memory, mapped over and over: what was written last stays. Null if there are not as many
// addresses.
class Repeated {
  static constexpr size_t stretch = size_t{1} << 26;
  size_t bytes_;
  char *data_ = nullptr;

 public:
  explicit Repeated(size_t bytes) : bytes_((bytes + 2 * stretch) / stretch * stretch) {
    const int file = memfd_create("repeated", 0);
    void *all = mmap(nullptr, bytes_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (file < 0 || ftruncate(file, stretch) != 0 || all == MAP_FAILED) return;
    data_ = static_cast<char *>(all);
    for (size_t at = 0; at < bytes_; at += stretch)
      if (mmap(data_ + at, stretch, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0) == MAP_FAILED)
        abort();
    close(file);
  }
  Repeated(const Repeated &) = delete;
  ~Repeated() {
    if (data_) munmap(data_, bytes_);
  }
  char *data() const { return data_; }
};

}  // namespace qkr::tests
