// What the digests share: a hash of results, and a line for each name, whose hash every level must give.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "tests/support/levels.h"

namespace qkr::tests {

class Hash {
  uint64_t value_ = 0xCBF29CE484222325;

 public:
  template <class T>
  void add(const std::vector<T> &numbers) {
    for (T x : numbers) {
      if constexpr (sizeof x == 8) value_ ^= __builtin_bit_cast(uint64_t, x);
      else if constexpr (sizeof x == 4) value_ ^= __builtin_bit_cast(uint32_t, x);
      else value_ ^= (uint16_t)x;
      value_ *= 0x9E3779B97F4A7C15;
      value_ ^= value_ >> 29;
    }
  }
  uint64_t value() const { return value_; }
};

inline int differences;  // found so far between levels

template <class HashOf>
void print_digest(const std::string &name, HashOf hash_of) {
  uint64_t first = 0;
  for_each_level([&](const char *level) {
    const auto hash = static_cast<unsigned long long>(hash_of());
    if (!first) std::printf("%s %016llx\n", name.c_str(), hash);
    if (first && hash != first) std::printf("  differs at %s: %016llx\n", level, hash), ++differences;
    if (!first) first = hash;
  });
}

}  // namespace qkr::tests
