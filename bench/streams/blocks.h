// Generators whose blocks a compiler turns into vectors: the fastest that are known for each form of number.
//
// SFMT      M. Saito and M. Matsumoto, SIMD-oriented fast Mersenne twister, MCQMC 2006 (2008) 607: 128 bits
// a step dSFMT     the same, A PRNG specialized in double precision floating point numbers using an affine
// transition,
//             MCQMC 2008 (2009) 589
// Xoshiro   D. Blackman and S. Vigna, Scrambled linear pseudorandom number generators, ACM TOMS 47 (2021)
// 36: up to
//             eight generators side by side
#pragma once

#include <cstring>
#include <immintrin.h>
#include <type_traits>

#include "simd/vectors.h"

namespace qkr::bench::QKR_SIMD_LEVEL {
namespace {

// Both twisters hold a block of numbers that are given out before the next is made. The values of the state
// do not matter for the time.
struct Sfmt {
  using Element = uint32_t;
  static constexpr int steps = 156, middle = 122, numbers = 4 * steps;
  alignas(16) uint32_t block[numbers];

  void refill() {
    auto *x = reinterpret_cast<__m128i *>(block);
    const __m128i mask = _mm_setr_epi32(int(0xdfffffef), int(0xddfecb7f), int(0xbffaffff), int(0xbffffff6));
    __m128i c = x[steps - 2], d = x[steps - 1];
    for (int i = 0; i < steps; ++i) {
      const __m128i a = x[i], b = x[i < steps - middle ? i + middle : i + middle - steps];
      const __m128i far = _mm_and_si128(_mm_srli_epi32(b, 11), mask);
      const __m128i near = _mm_xor_si128(_mm_srli_si128(c, 1), _mm_slli_epi32(d, 18));
      c = d;
      x[i] = d = _mm_xor_si128(_mm_xor_si128(a, _mm_slli_si128(a, 1)), _mm_xor_si128(far, near));
    }
  }
  static void copy(int n, const uint32_t *numbers, uint32_t *out) {
    memcpy(out, numbers, sizeof *out * size_t(n));
  }
};

struct Dsfmt {
  using Element = double;
  static constexpr int steps = 191, middle = 117, numbers = 2 * steps;
  alignas(16) double block[numbers];  // from 1 to 2
  __m128i lung = _mm_setr_epi32(1, 2, 3, 4);

  void refill() {
    auto *x = reinterpret_cast<__m128i *>(block);
    const __m128i mask = _mm_set_epi64x(0x000ffdfffc90fffd, 0x000ffafffffffb3f);
    __m128i u = lung;
    for (int i = 0; i < steps; ++i) {
      const __m128i a = x[i], b = x[i < steps - middle ? i + middle : i + middle - steps];
      u = _mm_xor_si128(_mm_shuffle_epi32(u, 0x1b), _mm_xor_si128(_mm_slli_epi64(a, 19), b));
      x[i] = _mm_xor_si128(a, _mm_xor_si128(_mm_srli_epi64(u, 12), _mm_and_si128(u, mask)));
    }
    lung = u;
  }
  static void copy(int n, const double *numbers, double *out) {
    for (int i = 0; i < n; ++i) out[i] = numbers[i] - 1;
  }
};

template <class Engine>
void draw_blocks(int n, typename Engine::Element *out) {
  static Engine engine = [] {
    Engine made;
    for (auto &number : made.block) number = typename Engine::Element(1.25);
    return made;
  }();
  static int index = Engine::numbers;
  while (n > 0) {
    if (index == Engine::numbers) engine.refill(), index = 0;
    const int left = Engine::numbers - index, count = n < left ? n : left;
    Engine::copy(count, engine.block + index, out);
    index += count, out += count, n -= count;
  }
}

// xoshiro128++ for words, xoshiro128+ for singles and xoshiro256+ for doubles. Reals by way of [1, 2).
template <class T>
void draw_xoshiro(int n, T *out) {
  using Word = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;
  constexpr int native = QKR_SIMD_BYTES / sizeof(Word), lanes = native < 8 ? native : 8;
  constexpr int bits = 8 * sizeof(Word), shift = bits == 64 ? 17 : 9, turn = bits == 64 ? 45 : 11;
  typedef Word Words __attribute__((vector_size(lanes * sizeof(Word))));
  typedef T Numbers __attribute__((vector_size(lanes * sizeof(T))));
  struct State {
    Words s0, s1, s2, s3;
  };
  static State kept = [] {
    State made;
    for (int j = 0; j < 4 * lanes; ++j)
      reinterpret_cast<Word *>(&made)[j] = Word(0x9e3779b97f4a7c15u) * Word(j + 1);
    return made;
  }();
  auto [s0, s1, s2, s3] = kept;
  const auto rotated = [](Words x, int count) { return x << count | x >> (bits - count); };
  const auto block = [&]() -> Numbers {
    const Words sum = s0 + s3, before = s0, t = s1 << shift;
    s2 ^= s0;
    s3 ^= s1;
    s1 ^= s2;
    s0 ^= s3;
    s2 ^= t;
    s3 = rotated(s3, turn);
    if constexpr (std::is_integral_v<T>) return rotated(sum, 7) + before;
    else if constexpr (bits == 64) return (Numbers)(sum >> 12 | 0x3FF0000000000000) - 1;
    else return (Numbers)(sum >> 9 | 0x3F800000) - 1;
  };
  int i = 0;
  for (; i + lanes <= n; i += lanes) {
    const Numbers numbers = block();
    memcpy(out + i, &numbers, sizeof numbers);
  }
  if (i < n) {
    const Numbers numbers = block();
    memcpy(out + i, &numbers, sizeof(T) * size_t(n - i));
  }
  kept = {s0, s1, s2, s3};
}

}  // namespace
}  // namespace qkr::bench::QKR_SIMD_LEVEL
