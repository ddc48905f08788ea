// What the two quasi-random generators, Sobol and Niederreiter in base 2, share. Both are digital sequences:
// in dimension j the point of index i is the exclusive or of those direction numbers v[j][c] whose bit c is
// set in the Gray code of i (I. A. Antonov and V. M. Saleev, USSR Computational Mathematics and Mathematical
// Physics 19 (1980) 252), so the next point costs one exclusive or for each dimension.
#pragma once

#include "simd/vectors.h"
#include "streams/generators/payload.h"

namespace qkr {

constexpr int32_t direction_numbers = 32;  // of one dimension
constexpr int32_t row_stride = 33;         // words from one dimension to the next in a record

struct SequencePosition {
  uint32_t seq;  // index of the current point; the first one given out has index 1
  int32_t dim;
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

// The data of chunk G::chunk_id, for more dimensions.
struct LargeSequence {
  uint32_t *x;
  uint32_t **v;  // 32 words for each dimension
};

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
  uint32_t *record_rows;
  uint32_t **chunk_rows;  // null when the rows lie in the record

  QKR_INLINE uint32_t *row(int32_t j) const {
    return chunk_rows ? chunk_rows[j] : record_rows + row_stride * j;
  }
  QKR_INLINE Sequence from(int32_t j) const {
    return {position, x + j, record_rows + row_stride * j, chunk_rows ? chunk_rows + j : nullptr};
  }
};

template <class G>
QKR_INLINE Sequence sequence_in_record(StreamState *stream) {
  auto &record = payload_of<SequenceRecord<G>>(stream);
  return {&record.position, record.x, record.v[0], nullptr};
}
template <class G>
QKR_INLINE Sequence sequence_of(StreamState *stream) {
  const auto *data = static_cast<const LargeSequence *>(__vxsSearchChunk(stream, G::chunk_id));
  if (!data) return sequence_in_record<G>(stream);
  return {&payload_of<SequencePosition>(stream), data->x, nullptr, data->v};
}

// Which direction number leads from the point of index `seq` to the next: as many as `seq` has ones at its
// low end. After 2^32 points the last one leads back to the origin.
QKR_INLINE int next_direction(uint32_t seq) { return __builtin_ctz(~seq | 0x80000000u); }

QKR_INLINE uint32_t gray_code(uint32_t seq) { return seq ^ seq >> 1; }

}  // namespace qkr
