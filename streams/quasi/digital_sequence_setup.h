// How a digital sequence begins and is moved, for any generator: seeding by dimension or by a user's array,
// memory for many dimensions, leapfrog and skip-ahead.
//
// A generator G adds to its dimensions and its chunk
//   default_rows(s)              the direction numbers of its own tables
//   is_valid(n, params)          whether a user's array is complete
//   user_rows(s, params)         the direction numbers that the array asks for
#pragma once

#include <string.h>

#include "streams/quasi/digital_sequence.h"

namespace qkr {

enum : uint32_t { user_array_mark = 1 };  // in word 1 of a user's array

// As many bits above the lowest one as the polynomial has.
inline int32_t degree_of(uint32_t polynomial) { return polynomial ? 31 - __builtin_clz(polynomial) : 0; }

// Copies direction numbers, 32 words for each dimension.
void copy_rows(const Sequence &s, const uint32_t *words);

// Memory for `dim` dimensions in a new chunk. Returns a status.
int32_t add_chunk_for(StreamState *stream, uint32_t chunk_id, int32_t dim);

// Whether the position, and the chunk where there are more than `largest_dim` dimensions, fit together: a
// file may bring any.
bool is_sound(const StreamState *stream, int32_t largest_dim, const StreamChunk *chunk);
template <class G>
bool is_sound_sequence(const StreamState *stream) {
  return is_sound(stream, G::largest_dim, chunk_of<G>(stream));
}

// Puts a sequence whose rows are filled on its first point.
void start(const Sequence &s);

// Restricts the stream to component k, from the first one not given out yet.
void leapfrog(const Sequence &s, int32_t k);

// Leaves out the next `count` components.
void skip_ahead(const Sequence &s, uint64_t count);

// Leaves out the next `count` numbers that the stream would give out, be they of one dimension. Returns a
// status.
int32_t skip(const Sequence &s, uint64_t count);
template <class G>
int32_t skip_sequence(StreamState *stream, uint64_t count) {
  return skip(sequence_of<G>(stream), count);
}

template <class G>
struct SequenceMethods {
  // A stream without dimensions remains where seeding fails; draws from it tell.
  static int32_t seed(StreamState *stream, int32_t n, const uint32_t *params) {
    memset(stream + 1, 0,
           sizeof(SequenceRecord<G>));  // what no dimension uses has defined bytes in files too
    int32_t dim = n > 0 ? static_cast<int32_t>(params[0]) : 1;
    const bool user_array = n > 1 && dim > 0 && G::is_valid(n, params);
    // A word alone that is out of range means one dimension; at the head of an array it is a mistake.
    if (dim > (user_array ? most_dimensions : G::largest_dim) && n > 1) return VXS_STATUS_BAD_ARGUMENT;
    if (!user_array && (dim <= 0 || dim > G::largest_dim)) dim = 1;

    if (dim > G::largest_dim) {
      const int32_t status = add_chunk_for(stream, G::chunk_id, dim);
      if (status != VXS_STATUS_OK) return status;
    }
    payload_of<SequencePosition>(stream).dim = dim;
    const Sequence s = sequence_of<G>(stream);
    user_array ? G::user_rows(s, params) : G::default_rows(s);
    start(s);
    return VXS_STATUS_OK;
  }

  static int32_t leapfrog(StreamState *stream, int32_t stride, const int32_t *index) {
    const Sequence s = sequence_of<G>(stream);
    const bool is_dimension = static_cast<uint32_t>(*index) < static_cast<uint32_t>(s.position->dim);
    if (stride != 0x7fffffff || !is_dimension || !s.exists()) {
      return VXS_STATUS_NO_LEAPFROG;
    }
    qkr::leapfrog(s, *index);
    return VXS_STATUS_OK;
  }

  static int32_t skip_ahead(StreamState *stream, int32_t count) {
    const Sequence s = sequence_of<G>(stream);
    if (count <= 0 || !s.exists()) return VXS_STATUS_NO_SKIP_AHEAD;
    qkr::skip_ahead(s, static_cast<uint64_t>(count));
    return VXS_STATUS_OK;
  }
};

}  // namespace qkr
