// Multiplicative congruential generators x' = a x mod m: consecutive vectors. Lane j of the first vector
// holds x a^j, and each vector comes from the one before it by one multiplication with a power of a.
//
// Residues go to the output as they are. A Modulus tells, all static:
//   Word, V                  a residue, and a native vector of them
//   Stretch                  a vector of `lanes` residues
//   times(Word, Word)        product mod m
//   Factor, factor(Word)     a multiplier made ready for vectors
//   times(V, Factor)         product mod m
//   smallest                 fewer numbers are made one by one: the first vectors would cost more than
//                            they bring
//   many                     from so many on eight vectors are in flight, not four; 0: never
#pragma once

#include "streams/generators/generator.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// A generator's payload.
template <class Word>
struct CongruentialState {
  Word x, a;
};

template <class Modulus, class Vector>
QKR_INLINE Vector times(Vector x, typename Modulus::Factor factor) {
  if constexpr (sizeof(Vector) > sizeof(typename Modulus::V)) {
    return {times<Modulus>(x.a, factor), times<Modulus>(x.b, factor)};
  } else {
    return Modulus::times(x, factor);
  }
}

// Draws n numbers: `words` are the first ones, `power` leads from each to the next such group.
template <class Modulus, class Group, class Output>
QKR_INLINE void draw_groups(typename Modulus::Word &state, Group words, typename Modulus::Word power,
                            int32_t n, typename Output::Element *out, const Output &output) {
  constexpr int group = sizeof(Group) / sizeof(power);
  const auto onward = Modulus::factor(power);
  ptrdiff_t i = 0;  // so that i + group does not overflow
  for (; i + group <= n; i += group) {
    put(output, out + i, words);
    words = times<Modulus>(words, onward);
  }
  typename Modulus::Word line[group];
  store(line, words);
  emit<typename Modulus::Stretch>(line, (int)(n - i), out + i, output);
  state = line[n - i];
}

// Draws n numbers with multiplier a, and leaves in `state` the residue of the next one.
template <class Modulus, class Output>
QKR_INLINE void draw_congruential(typename Modulus::Word &state, typename Modulus::Word a, int32_t n,
                                  typename Output::Element *out, const Output &output) {
  using Word = typename Modulus::Word;
  using V = typename Modulus::V;
  using Group = Two<Two<V>>;  // four vectors in flight hide most of the latency of the product
  constexpr int width = sizeof(V) / sizeof(Word);

  Word x = state;
  if (n < Modulus::smallest) {
    for (int i = 0; i < n; ++i) {
      output.put_one(out + i, x);
      x = Modulus::times(x, a);
    }
    state = x;
    return;
  }

  Word line[width] = {x};
  Word power = a;
  for (int filled = 1; filled < width; filled *= 2) {
    for (int j = 0; j < filled; ++j) line[filled + j] = Modulus::times(line[j], power);
    power = Modulus::times(power, power);
  }
  V first;
  load(line, first);
  const Word power2 = Modulus::times(power, power);
  const Two<V> pair = {first, Modulus::times(first, Modulus::factor(power))};
  const Group words = {pair, times<Modulus>(pair, Modulus::factor(power2))};
  const Word power4 = Modulus::times(power2, power2);
  if (Modulus::many && n >= Modulus::many) {
    const Two<Group> twice = {words, times<Modulus>(words, Modulus::factor(power4))};
    draw_groups<Modulus>(state, twice, Modulus::times(power4, power4), n, out, output);
  } else {
    draw_groups<Modulus>(state, words, power4, n, out, output);
  }
}

#if QKR_BASELINE
// base^exponent under the product `times`, from the lowest bit of the exponent on.
template <class Word, class Times>
Word power_of(Word base, uint64_t exponent, Times times) {
  Word result = 1;
  for (; exponent != 0; exponent >>= 1, base = times(base, base)) {
    if (exponent & 1) result = times(result, base);
  }
  return result;
}

template <class Modulus>
typename Modulus::Word power_of(typename Modulus::Word base, uint64_t exponent) {
  using Word = typename Modulus::Word;
  return Modulus::reduced(power_of(base, exponent, [](Word x, Word y) { return Modulus::times(x, y); }));
}

// InitStream; the Modulus adds `multiplier`, residue(n, seeds) for n > 0, and reduced(residue).
template <class Modulus>
struct CongruentialMethods {
  using Word = typename Modulus::Word;
  using Payload = CongruentialState<Word>;

  static int32_t seed(StreamState *stream, int32_t n, const uint32_t *seeds) {
    const Word x = n > 0 ? Modulus::residue(n, seeds) : 1;
    payload_of<Payload>(stream) = {x ? x : 1, Modulus::multiplier};
    return VXS_STATUS_OK;
  }
  // x a^index begins, and a^stride leads on.
  static int32_t leapfrog(StreamState *stream, int32_t stride, const int32_t *index) {
    skip_ahead(stream, *index);
    Payload &state = payload_of<Payload>(stream);
    state.a = power_of<Modulus>(state.a, (uint32_t)stride);
    return VXS_STATUS_OK;
  }
  static int32_t skip_ahead(StreamState *stream, int32_t count) { return skip(stream, (uint32_t)count); }
  static int32_t skip(StreamState *stream, uint64_t count) {
    Payload &state = payload_of<Payload>(stream);
    state.x = Modulus::reduced(Modulus::times(state.x, power_of<Modulus>(state.a, count)));
    return VXS_STATUS_OK;
  }
};
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
