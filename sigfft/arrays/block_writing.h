// Writing a block within the cache by vectors of the processor's width. A source says what stands in it:
// source.get(i, v) gives v the bytes that belong at byte i. Up to eight vectors go without a loop: what is
// written at either end overlaps.
#pragma once

#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr size_t width = QKR_SIMD_BYTES;
using Pair = Two<u64>;
using Four = Two<Pair>;
template <size_t size>
struct Narrow {
  typedef uint64_t Vector __attribute__((vector_size(size < width ? size : width)));
};

struct Copied {
  const uint8_t *src;
  template <class V>
  QKR_INLINE void get(size_t i, V &v) const {
    memcpy(&v, src + i, sizeof v);
  }
  template <class V>
  QKR_INLINE void get(size_t i, Two<V> &v) const {
    get(i, v.a);
    get(i + sizeof(V), v.b);
  }
};
template <class V>
QKR_INLINE void put(uint8_t *p, V v) {
  memcpy(p, &v, sizeof v);
}
template <class V>
QKR_INLINE void put(uint8_t *p, Two<V> v) {
  put(p, v.a);
  put(p + sizeof(V), v.b);
}

template <class V, class Source>
QKR_INLINE void write(uint8_t *dst, size_t i, Source source) {
  V v;
  source.get(i, v);
  put(dst + i, v);
}

// A block of at least one V and at most two.
template <class V, class Source>
QKR_INLINE void write_both_ends(uint8_t *dst, size_t bytes, Source source) {
  V first, last;
  source.get(0, first);
  source.get(bytes - sizeof(V), last);
  put(dst, first);
  put(dst + bytes - sizeof(V), last);
}

template <class Source>
QKR_INLINE void write_part_of_vector(uint8_t *dst, size_t bytes, Source source) {
  if (bytes >= 32) write_both_ends<Narrow<32>::Vector>(dst, bytes, source);
  else if (bytes >= 16) write_both_ends<Narrow<16>::Vector>(dst, bytes, source);
  else if (bytes >= 8) write_both_ends<uint64_t>(dst, bytes, source);
  else if (bytes >= 4) write_both_ends<uint32_t>(dst, bytes, source);
  else if (bytes >= 2) write_both_ends<uint16_t>(dst, bytes, source);
  else if (bytes) write<uint8_t>(dst, 0, source);
}

// The shortest fall through without a jump: one costs them as much as the stores.
template <class Source>
QKR_INLINE void write_short(uint8_t *dst, size_t bytes, Source source) {
  if (bytes <= 2 * width) [[likely]] {
    if (bytes >= width) [[likely]]
      write_both_ends<u64>(dst, bytes, source);
    else write_part_of_vector(dst, bytes, source);
  } else if (bytes <= 4 * width) [[likely]] {
    write_both_ends<Pair>(dst, bytes, source);
  } else {
    write_both_ends<Four>(dst, bytes, source);
  }
}

// The distance to the next address that is a multiple of the width.
QKR_INLINE size_t to_alignment(const uint8_t *dst) { return width - ((size_t)dst & (width - 1)); }

// More than eight vectors: between those at the ends in steps of four, from an aligned address on.
template <class Source, class Between>
QKR_INLINE void write_long(uint8_t *dst, size_t bytes, Source source, Between between) {
  const size_t last = bytes - sizeof(Four);
  write<u64>(dst, 0, source);
  for (size_t i = to_alignment(dst); i < last; i += sizeof(Four)) write<Four>(dst, i, between);
  write<Four>(dst, last, source);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
