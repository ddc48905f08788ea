// Numbers with their bits reversed: counted, or looked up.
#pragma once

#include <stddef.h>
#include <stdint.h>

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

// Of 8 bits.
struct ReversedBytes {
  uint8_t of[256] = {};
  constexpr ReversedBytes() {
    for (int i = 1; i < 256; ++i) of[i] = uint8_t(of[i / 2] / 2 + i % 2 * 128);
  }
};
constexpr ReversedBytes reversed_bytes;

}  // namespace
}  // namespace qkr::sigfft
