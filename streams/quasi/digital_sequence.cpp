// What becomes of a digital sequence as a whole: memory for its rows, its first point, leapfrog and
// skip-ahead.
#include <stdlib.h>
#include <string.h>

#include "streams/quasi/digital_sequence_setup.h"

namespace qkr {
namespace {

// What a change of the Gray code by `bits` makes of a component.
uint32_t change(const uint32_t *row, uint32_t bits) {
  uint32_t sum = 0;
  for (; bits; bits &= bits - 1) sum ^= row[__builtin_ctz(bits)];
  return sum;
}

// Leads dimensions first to end - 1 to the point `points` further on. The sequence repeats after 2^32.
void pass_points(const Sequence &s, int32_t first, int32_t end, uint32_t points) {
  uint32_t &seq = s.position->seq;
  const uint32_t difference = gray_code(seq) ^ gray_code(seq + points);
  for (int32_t j = first; j < end; ++j) s.x[j] ^= change(s.row(j), difference);
  seq += points;
}

}  // namespace

int32_t add_chunk_for(StreamState *stream, uint32_t chunk_id, int32_t dim) {
  void *data = calloc(1, chunk_bytes(dim));  // the spare word of each row has a defined value in files
  if (!data) return VXS_STATUS_NO_MEMORY;
  const int32_t status = __vxsAddChunk(stream, chunk_id, data, static_cast<uint32_t>(chunk_bytes(dim)));
  if (status != VXS_STATUS_OK) free(data);
  return status;
}

bool is_sound(const StreamState *stream, int32_t largest_dim, const StreamChunk *chunk) {
  const auto &at = payload_of<SequencePosition>(stream);
  if (at.dim < 1 || at.only_dim < -1 || at.only_dim >= at.dim || at.pending < 0 || at.pending >= at.dim) {
    return false;
  }
  if (at.dim <= largest_dim) return true;
  return chunk && at.dim <= most_dimensions && chunk->size == chunk_bytes(at.dim);
}

void start(const Sequence &s) {
  SequencePosition &at = *s.position;
  for (int32_t j = 0; j < at.dim; ++j) s.x[j] = s.row(j)[0];
  at.seq = 1;
  at.only_dim = -1;
  at.pending = 0;
}

void copy_rows(const Sequence &s, const uint32_t *words) {
  for (int32_t j = 0; j < s.position->dim; ++j, words += direction_numbers) {
    memcpy(s.row(j), words, direction_numbers * sizeof *words);
  }
}

void leapfrog(const Sequence &s, int32_t k) {
  SequencePosition &at = *s.position;
  if (k == at.only_dim) return;
  if (at.only_dim >= 0) {  // only the old component was kept up to date
    s.x[k] = change(s.row(k), gray_code(++at.seq));
  } else if (at.pending != 0 && k < at.dim - at.pending) {  // this one has gone out already
    s.x[k] ^= s.row(k)[next_direction(at.seq++)];
  }
  at.pending = 0;
  at.only_dim = k;
}

void skip_ahead(const Sequence &s, uint64_t count) {
  SequencePosition &at = *s.position;
  const auto pending = static_cast<uint64_t>(at.pending), dim = static_cast<uint64_t>(at.dim);
  if (pending > count) {
    at.pending -= static_cast<int32_t>(count);
    return;
  }
  count -= pending;
  const auto points = static_cast<uint32_t>(count / dim + (pending > 0));
  const auto given_out = static_cast<int32_t>(count % dim);
  pass_points(s, 0, at.dim, points);
  at.pending = given_out ? at.dim - given_out : 0;
}

int32_t skip(const Sequence &s, uint64_t count) {
  if (!s.exists()) return VXS_STATUS_NO_SKIP_AHEAD;
  const int32_t only = s.position->only_dim;
  if (only >= 0) {  // a number is a point
    pass_points(s, only, only + 1, static_cast<uint32_t>(count));
  } else {
    skip_ahead(s, count);
  }
  return VXS_STATUS_OK;
}

}  // namespace qkr
