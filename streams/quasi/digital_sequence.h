// What the two quasi-random generators, Sobol and Niederreiter in base 2, share. Both are digital sequences:
// in dimension j the point of index i is the exclusive or of those direction numbers v[j][c] whose bit c is
// set in the Gray code of i (I. A. Antonov and V. M. Saleev, USSR Computational Mathematics and Mathematical
// Physics 19 (1980) 252), so the next point costs one exclusive or for each dimension.
#pragma once

#include "simd/vectors.h"
#include "streams/generators/payload.h"

namespace qkr {

constexpr int32_t direction_numbers = 32;  // of one dimension
constexpr int32_t row_stride = 33;         // words from one dimension to the next

struct SequencePosition {
  uint32_t seq;      // index of the current point; the first one given out has index 1
  int32_t dim;       // 0 where seeding was refused
  int32_t only_dim;  // -1, or the one dimension that is given out
  int32_t pending;   // components of the current point not given out yet, 0 at a boundary
};

// The payload of a stream, of a generator whose record holds G::largest_dim dimensions.
template <class G>
struct SequenceRecord {
  SequencePosition position;
  uint32_t x[G::largest_dim];  // the current point
  uint32_t v[G::largest_dim][row_stride];
};

// More dimensions lie in chunk G::chunk_id: x, then v, for as many as there are. No addresses are among them,
// so that a copy of the chunk, or its bytes in a file, are the sequence. A chunk's size is a 32-bit number.
constexpr size_t chunk_bytes(int32_t dim) {
  return static_cast<size_t>(dim) * (1 + row_stride) * sizeof(uint32_t);
}
constexpr int32_t most_dimensions = UINT32_MAX / chunk_bytes(1);

struct Sobol {
  static constexpr int32_t largest_dim = 40;
  static constexpr uint32_t chunk_id = 9;
};
struct Niederreiter {
  static constexpr int32_t largest_dim = 318;
  static constexpr uint32_t chunk_id = 10;
};

// The sequence of a stream, or some dimensions of it that follow each other, wherever the words lie.
struct Sequence {
  SequencePosition *position;
  uint32_t *x;
  uint32_t *rows;

  QKR_INLINE uint32_t *row(ptrdiff_t j) const { return rows + row_stride * j; }
  QKR_INLINE Sequence from(int32_t j) const { return {position, x + j, row(j)}; }

  // Not where seeding was refused, nor where the chunk was deleted.
  QKR_INLINE bool exists() const { return position->dim > 0 && x; }
};

template <class G>
QKR_INLINE Sequence sequence_of(StreamState *stream) {
  auto &record = payload_of<SequenceRecord<G>>(stream);
  const int32_t dim = record.position.dim;
  if (dim <= G::largest_dim) return {&record.position, record.x, record.v[0]};
  auto *words = static_cast<uint32_t *>(__vxsSearchChunk(stream, G::chunk_id));
  return {&record.position, words, words + dim};
}

// The chunk of a stream with more dimensions than its record holds, or null.
template <class G>
const StreamChunk *chunk_of(const StreamState *stream) {
  const bool large = payload_of<SequencePosition>(stream).dim > G::largest_dim;
  return large ? find_chunk(stream, G::chunk_id) : nullptr;
}

// Which direction number leads from the point of index `seq` to the next: as many as `seq` has ones at its
// low end. After 2^32 points the last one leads back to the origin.
QKR_INLINE int next_direction(uint32_t seq) { return __builtin_ctz(~seq | 0x80000000u); }

QKR_INLINE uint32_t gray_code(uint32_t seq) { return seq ^ seq >> 1; }

}  // namespace qkr
