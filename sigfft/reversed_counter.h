// Counting with the bits reversed.
#pragma once

#include <stddef.h>

namespace qkr::sigfft {
namespace {

// j with its `bits` low bits reversed, for j = 0, 1, 2, ... in turn.
class ReversedCounter {
  size_t value_ = 0, high_;

 public:
  explicit ReversedCounter(int bits) : high_((size_t{1} << bits) >> 1) {}
  size_t value() const { return value_; }
  void next() {
    size_t bit = high_;
    for (; value_ & bit; bit >>= 1) value_ ^= bit;
    value_ |= bit;
  }
};

}  // namespace
}  // namespace qkr::sigfft
