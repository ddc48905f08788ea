// Points of few dimensions, as many side by side as a vector has lanes: a group. Its first index is a
// multiple of that number, so point p is the first one changed by the Gray code of p, and all of a group
// change alike to the next one.
#pragma once

#include <utility>

#include "streams/generators/generator.h"
#include "streams/quasi/digital_sequence.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class Output>
using Element = typename Output::Element;

// Stretches too short for a vector of their own: not inlined, as they stand at the ends of every loop.
template <class Output>
QKR_NOINLINE void emit_words(const uint32_t *words, int32_t n, Element<Output> *out, Output output) {
  emit(words, n, out, output);
}

template <int count, class Function>
QKR_INLINE void for_constants(Function function) {
  [&]<int... i>(std::integer_sequence<int, i...>) QKR_LAMBDA {
    (function(std::integral_constant<int, i>()), ...);
  }
  (std::make_integer_sequence<int, count>());
}

// A group of `lanes` points in `dims` dimensions: word i of it belongs to dimension i % dims of point i /
// dims, and vector t begins with word t * lanes.
template <int dims, int t>
struct GroupVector {
  using Lanes = std::make_integer_sequence<int, lanes>;

  // The lanes at the head of v, one for each dimension, to all places of their dimensions.
  QKR_INLINE static u32 spread(u32 v) {
    return [v]<int... i>(std::integer_sequence<int, i...>) {
      return (u32)__builtin_shufflevector(v, v, (t * lanes + i) % dims...);
    }
    (Lanes());
  }
  // The places of those points in whose Gray code bit c is set.
  template <int c>
  QKR_INLINE static u32 where_bit() {
    return []<int... i>(std::integer_sequence<int, i...>) {
      return u32{(gray_code((t * lanes + i) / dims) >> c & 1 ? ~0u : 0u)...};
    }
    (Lanes());
  }
};

// Whole points of all the dimensions, which are `dims`.
template <int dims, class Output>
QKR_NOINLINE void points_side_by_side(const Sequence &s, int32_t points, Element<Output> *out,
                                      Output output) {
  constexpr int bits = __builtin_ctz(lanes);
  constexpr auto dimensions = std::make_integer_sequence<int, dims>();
  const uint32_t *rows[dims];
  for (int j = 0; j < dims; ++j) rows[j] = s.row(j);
  const auto directions = [&](int c) {
    return [&]<int... j>(std::integer_sequence<int, j...>) { return u32{rows[j][c]...}; }
    (dimensions);
  };
  u32 low[bits];  // direction numbers that change the point within a group
  for_constants<bits>([&](auto c) { low[c] = directions(c); });
  const auto from_first = [&](uint32_t p) {  // the change from the first point of a group to its point p
    u32 sum = {};
    for_constants<bits>([&](auto c) { sum ^= low[c] & (0u - (gray_code(p) >> c & 1)); });
    return sum;
  };

  uint32_t p = s.position->seq % lanes, group = s.position->seq - p;
  const u32 x = [&]<int... j>(std::integer_sequence<int, j...>) { return u32{s.x[j]...}; }
  (dimensions);
  const u32 first_point = x ^ from_first(p);
  u32 first[dims], changes[dims], directions_in_use[direction_numbers][dims];
  uint32_t in_use = 0;  // a bit for each
  for_constants<dims>([&](auto t) {
    using Vector = GroupVector<dims, t>;
    first[t] = Vector::spread(first_point);
    changes[t] = u32{};
    for_constants<bits>(
        [&](auto c) { changes[t] ^= Vector::spread(low[c]) & Vector::template where_bit<c>(); });
  });
  const auto next_group = [&] {
    group += lanes;
    const int c = next_direction(group - 1);
    if (__builtin_expect(!(in_use >> c & 1), 0)) {
      in_use |= 1u << c;
      const u32 v = directions(c) ^ low[bits - 1];
      for_constants<dims>([&](auto t) { directions_in_use[c][t] = GroupVector<dims, t>::spread(v); });
    }
    for_constants<dims>([&](auto t) { first[t] ^= directions_in_use[c][t]; });
  };
  const auto part_of_group = [&](int32_t count) {
    uint32_t words[dims * lanes];
    for_constants<dims>([&](auto t) { store(words + t * lanes, first[t] ^ changes[t]); });
    emit_words(words + p * dims, count * dims, out, output);
    out += count * dims;
    points -= count;
    p += count;
  };

  if (p > 0) {
    part_of_group(points < (int32_t)(lanes - p) ? points : (int32_t)(lanes - p));
    if (p == lanes) next_group(), p = 0;
  }
  for (; points >= lanes; points -= lanes, out += dims * lanes) {
    for_constants<dims>([&](auto t) { put(output, out + t * lanes, first[t] ^ changes[t]); });
    next_group();
  }
  if (points > 0) part_of_group(points);

  uint32_t last[lanes];
  store(last, first[0] ^ from_first(p));
  memcpy(s.x, last, dims * sizeof *last);
  s.position->seq = group + p;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
