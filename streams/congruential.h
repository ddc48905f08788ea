// Multiplicative congruential generators x' = a x mod m: consecutive vectors. Lane j of the first vector
// holds x a^j, and each vector comes from the one before it by one multiplication with a power of a.
//
// A Modulus tells, all static:
//   Word, V                  a residue, and a native vector of them
//   times(Word, Word)        product mod m
//   Factor, factor(Word)     a multiplier made ready for vectors
//   times(V, Factor)         product mod m
//   number(V or Word)        what goes out
#pragma once

#include "streams/generator.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class Modulus, class Vector>
QKR_INLINE Vector times(Vector x, typename Modulus::Factor factor) {
  if constexpr (sizeof(Vector) > sizeof(typename Modulus::V)) {
    return {times<Modulus>(x.a, factor), times<Modulus>(x.b, factor)};
  } else {
    return Modulus::times(x, factor);
  }
}

// Draws n numbers with multiplier a, and leaves in x the next one.
template <class Modulus, class Output>
QKR_INLINE void draw_congruential(typename Modulus::Word &state, typename Modulus::Word a, int32_t n,
                                  typename Output::Element *out, const Output &output) {
  using Word = typename Modulus::Word;
  using V = typename Modulus::V;
  using Group = Two<Two<V>>;  // four vectors in flight hide the latency of the product
  constexpr int width = sizeof(V) / sizeof(Word), group = 4 * width;

  Word x = state;
  if (n < group) {  // the first vectors would cost more than they bring
    for (int i = 0; i < n; ++i) {
      output.put_one(out + i, Modulus::number(x));
      x = Modulus::times(x, a);
    }
    state = x;
    return;
  }

  Word line[group] = {x};
  Word power = a;
  for (int filled = 1; filled < width; filled *= 2) {
    for (int j = 0; j < filled; ++j) line[filled + j] = Modulus::times(line[j], power);
    power = Modulus::times(power, power);
  }
  V first;
  load(line, first);
  const Word power2 = Modulus::times(power, power);
  const Two<V> pair = {first, Modulus::times(first, Modulus::factor(power))};
  Group words = {pair, times<Modulus>(pair, Modulus::factor(power2))};
  const auto onward = Modulus::factor(Modulus::times(power2, power2));

  int i = 0;
  for (; i + group <= n; i += group) {
    put(output, out + i, Modulus::number(words));
    words = times<Modulus>(words, onward);
  }
  store(line, words);
  emit<typename Modulus::Stretch>(line, n - i, out + i, output, [](auto v) { return Modulus::number(v); });
  state = line[n - i];
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
