// What the Mersenne twisters share: seeding, the twist and the tempering. M. Matsumoto and T. Nishimura,
// Mersenne Twister: a 623-dimensionally equidistributed uniform pseudorandom number generator, ACM TOMACS 8
// (1998) 3; seeding by an array as they published it in 2002.
#pragma once

#include "streams/generators/generator.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The recurrence is mt[k + N] = mt[k + M] ^ twisted(mt[k], mt[k + 1]).
template <class V>
QKR_INLINE V twisted(V word, V next, uint32_t upper_mask, ForOdd matrix) {
  return ((word & upper_mask) | (next & ~upper_mask)) >> 1 ^ matrix(next);
}

// How a word of the state becomes an output: vectors and single words alike.
template <int first_shift>
struct Tempering {
  uint32_t mask_b, mask_c;

  template <class W>
  QKR_INLINE W operator()(W v) const {
    v = v ^ v >> first_shift;
    v = v ^ (v << 7 & mask_b);
    v = v ^ (v << 15 & mask_c);
    return v ^ v >> 18;
  }
};

#if QKR_BASELINE
constexpr uint32_t mixed(uint32_t word) { return word ^ word >> 30; }

template <int words>
struct StartWords {
  uint32_t word[words];
};
template <int words>
constexpr StartWords<words> start_words() {
  StartWords<words> start = {{19650218}};
  for (int i = 1; i < words; ++i) start.word[i] = mixed(start.word[i - 1]) * 1812433253 + i;
  return start;
}

// Seeds any twister with an array of n words; none count as the single word 1. The state is spent
// afterwards: the first output makes a block of new words.
template <class State>
void seed_state(StreamState *stream, int32_t n, const uint32_t *seeds) {
  State &state = payload_of<State>(stream);
  uint32_t(&mt)[State::words] = state.mt;
  constexpr int words = State::words;
  static constexpr StartWords<words> start = start_words<words>();
  memcpy(mt, start.word, sizeof mt);
  state.index = words;

  constexpr uint32_t one = 1;
  if (n <= 0) n = 1, seeds = &one;
  int i = 1;
  const auto move_on = [&] {
    if (++i >= words) mt[0] = mt[words - 1], i = 1;
  };
  for (int32_t left = n > words ? n : words, j = 0; left > 0; --left) {
    mt[i] = (mt[i] ^ mixed(mt[i - 1]) * 1664525) + seeds[j] + static_cast<uint32_t>(j);
    move_on();
    if (++j >= n) j = 0;
  }
  for (int left = words - 1; left > 0; --left) {
    mt[i] = (mt[i] ^ mixed(mt[i - 1]) * 1566083941) - static_cast<uint32_t>(i);
    move_on();
  }
  mt[0] = 0x80000000;
}
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
