// The generators with words of 32 bits, one number at a time, as their publications define them. The records
// have the layout of the running state in a stream.
#pragma once

#include <algorithm>
#include <cstdint>

namespace one_step {

struct R250 {
  static constexpr double modulus = 0x1p32;
  uint32_t s[250];
  int32_t i0, i1;

  uint32_t operator()() {
    const uint32_t word = s[i0] ^= s[i1];
    i0 = (i0 + 1) % 250;
    i1 = (i1 + 1) % 250;
    return word;
  }
};

struct Mrg32k3a {
  static constexpr int64_t m1 = 4294967087, m2 = 4294944443;
  static constexpr double modulus = m1;
  uint32_t x[3], y[3];

  uint32_t operator()() {
    const int64_t p = ((1403580ll * x[1] - 810728ll * x[0]) % m1 + m1) % m1;
    const int64_t q = ((527612ll * y[2] - 1370589ll * y[0]) % m2 + m2) % m2;
    x[0] = x[1], x[1] = x[2], x[2] = static_cast<uint32_t>(p);
    y[0] = y[1], y[1] = y[2], y[2] = static_cast<uint32_t>(q);
    return static_cast<uint32_t>(p > q ? p - q : p - q + m1);
  }
};

template <int words, int middle, int lower_bits, int first_shift>
struct Twister {
  static constexpr double modulus = 0x1p32;
  uint32_t mt[words];
  int32_t index;

  uint32_t next(uint32_t matrix, uint32_t mask_b, uint32_t mask_c) {
    if (index >= words) {
      for (int k = 0; k < words; ++k) {
        const uint32_t lower = (1u << lower_bits) - 1, following = mt[(k + 1) % words];
        const uint32_t y = (mt[k] & ~lower) | (following & lower);
        mt[k] = mt[(k + middle) % words] ^ y >> 1 ^ (following % 2 ? matrix : 0);
      }
      index = 0;
    }
    uint32_t v = mt[index++];
    v ^= v >> first_shift;
    v ^= v << 7 & mask_b;
    v ^= v << 15 & mask_c;
    return v ^ v >> 18;
  }
};
struct Mt19937 : Twister<624, 397, 31, 11> {
  uint32_t operator()() { return next(0x9908b0df, 0x9d2c5680, 0xefc60000); }
};
struct Mt2203 : Twister<69, 34, 5, 12> {
  uint32_t matrix, mask_b, mask_c;
  uint32_t operator()() { return next(matrix, mask_b, mask_c); }
};

}  // namespace one_step
