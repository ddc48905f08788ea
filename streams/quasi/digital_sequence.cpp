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

// One block holds the record of the chunk, the point, the row addresses and the rows, so that it goes with
// its chunk; the chunk's size names the record alone.
LargeSequence *allocate_large(int32_t dim) {
  const size_t count = static_cast<size_t>(dim), row_bytes = direction_numbers * sizeof(uint32_t);
  const size_t head = sizeof(LargeSequence) + count * sizeof(uint32_t *);
  auto *data = static_cast<LargeSequence *>(malloc(head + count * (row_bytes + sizeof(uint32_t))));
  if (!data) return nullptr;
  data->v = reinterpret_cast<uint32_t **>(data + 1);
  auto *rows = reinterpret_cast<uint32_t *>(data->v + count);
  for (size_t j = 0; j < count; ++j) data->v[j] = rows + j * direction_numbers;
  data->x = rows + count * direction_numbers;
  return data;
}

}  // namespace

int32_t add_large_sequence(StreamState *stream, uint32_t chunk_id, int32_t dim) {
  LargeSequence *data = allocate_large(dim);
  if (!data) return VXS_STATUS_NO_MEMORY;
  const int32_t status = __vxsAddChunk(stream, chunk_id, data, sizeof *data);
  if (status != VXS_STATUS_OK) free(data);
  return status;
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

void skip_ahead(const Sequence &s, int32_t count) {
  SequencePosition &at = *s.position;
  if (at.pending > count) {
    at.pending -= count;
    return;
  }
  count -= at.pending;
  const uint32_t points = static_cast<uint32_t>(count / at.dim + (at.pending > 0));
  const int32_t given_out = count % at.dim;
  const uint32_t difference = gray_code(at.seq) ^ gray_code(at.seq + points);
  for (int32_t j = 0; j < at.dim; ++j) s.x[j] ^= change(s.row(j), difference);
  at.seq += points;
  at.pending = given_out ? at.dim - given_out : 0;
}

}  // namespace qkr
