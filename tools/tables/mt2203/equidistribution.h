// How evenly the leading bits of a member of MT2203 fill the cube. With v bits of each output word, k(v) is
// the largest k for which all patterns of k successive outputs occur equally often; it is at most 2203 / v.
//
// k(v) is the smallest of the counts of leading zero outputs in a reduced basis of the lattice that the
// sequence spans with the unit vectors: R. Couture and P. L'Ecuyer, Math. Comp. 69 (2000) 757; the reduction
// that works on states of the generator: S. Harase, M. Matsumoto and M. Saito, Math. Comp. 80 (2011) 395.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

#include "tools/tables/mt2203/binary_polynomial.h"

namespace mt2203 {

struct Parameters {
  uint32_t twist, mask_b, mask_c;
};

inline uint32_t temper(uint32_t word, const Parameters &member) {
  word ^= word >> 12;
  word ^= word << 7 & member.mask_b;
  word ^= word << 15 & member.mask_c;
  return word ^ word >> 18;
}

// The last 69 words of a sequence, which moves through its buffer as it steps.
class Sequence {
 public:
  void set_unit() {
    clear();
    buffer_[words - 1] = 0x80000000u;
  }
  void clear() {
    start_ = 0;
    std::memset(buffer_, 0, sizeof buffer_);
  }
  uint32_t step(uint32_t twist) {
    if (start_ == room) {
      std::memcpy(buffer_, buffer_ + room, sizeof(uint32_t) * words);
      start_ = 0;
    }
    uint32_t *x = buffer_ + start_++;
    const uint32_t y = (x[0] & ~lower_mask) | (x[1] & lower_mask);
    return x[words] = x[middle] ^ y >> 1 ^ (x[1] & 1 ? twist : 0);
  }
  void add(const Sequence &other) {
    uint32_t *x = buffer_ + start_;
    const uint32_t *y = other.buffer_ + other.start_;
    for (int k = 0; k < words; ++k) x[k] ^= y[k];
  }
  bool is_zero() const {
    const uint32_t *x = buffer_ + start_;
    uint32_t any = x[0] & ~lower_mask;
    for (int k = 1; k < words; ++k) any |= x[k];
    return any == 0;
  }

 private:
  static constexpr int room = 448;
  int start_;
  uint32_t buffer_[room + words];
};

class Equidistribution {
 public:
  explicit Equidistribution(const Parameters &member) : member_(member), basis_(33) {}

  // The basis starts as the unit vectors. The sequence comes in with its first nonzero output; whenever that
  // has a bit in common with a basis vector, the one with more leading zeros gets the other added (which
  // clears the bit) and, once no bit is left, steps on to its next nonzero output.
  int dimension(int v) {
    for (int i = 0; i < v; ++i) {
      basis_[i].leading_zeros = 0;
      basis_[i].output = 0x80000000u >> i;
      basis_[i].tail.clear();
    }
    Vector *incoming = &basis_[32];
    incoming->leading_zeros = 0;
    incoming->output = 0;
    incoming->tail.set_unit();
    std::vector<Vector *> at(v);
    for (int i = 0; i < v; ++i) at[i] = &basis_[i];
    const uint32_t kept = ~0u << (32 - v);
    for (;;) {
      while (incoming->output == 0) {
        if (incoming->tail.is_zero()) {
          int smallest = degree;
          for (const Vector *vector : at) smallest = std::min(smallest, vector->leading_zeros);
          return smallest;
        }
        incoming->output = temper(incoming->tail.step(member_.twist), member_) & kept;
        ++incoming->leading_zeros;
      }
      Vector *&held = at[std::countl_zero(incoming->output)];
      if (incoming->leading_zeros > held->leading_zeros) std::swap(incoming, held);
      incoming->output ^= held->output;
      incoming->tail.add(held->tail);
    }
  }

  // The sum of what k(v) lacks of its bound for v = 1 to 32. Gives up, with a partial sum, above `limit`.
  int defect(int limit = degree * 32) {
    int sum = 0;
    for (int v = 1; v <= 32 && sum <= limit; ++v) sum += degree / v - dimension(v);
    return sum;
  }

 private:
  struct Vector {
    int leading_zeros;
    uint32_t output;
    Sequence tail;
  };
  Parameters member_;
  std::vector<Vector> basis_;
};

}  // namespace mt2203
