// Counting with the bits reversed.
#pragma once

#include <stddef.h>

namespace qkr::sigfft {
namespace {

// j with its `bits` low bits reversed, for j = 0, 1, 2, ... in turn.
class ReversedCounter {
  size_t value_ = 0, j_ = 0, high_;

 public:
  explicit ReversedCounter(int bits) : high_((size_t{1} << bits) >> 1) {}
  size_t value() const { return value_; }
  // Counting flips the lowest bits of j up to the first that is clear: here the highest.
  void next() { value_ ^= 2 * high_ - (high_ >> __builtin_ctzll(++j_)); }
};

}  // namespace
}  // namespace qkr::sigfft
