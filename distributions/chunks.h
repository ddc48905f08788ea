// What a distribution keeps in a stream from one call to the next: a record in a chunk of its own.
#pragma once

#include <cstdlib>

#include "simd/vectors.h"
#include "streams/internal.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The newest record with this id, or null. A chunk from a damaged file may be too small for one.
template <class Record>
inline Record *find_record(const StreamState *stream, uint32_t id) {
  const StreamChunk *chunk = find_chunk(stream, id);
  return chunk && chunk->size >= sizeof(Record) ? static_cast<Record *>(chunk->data) : nullptr;
}

// Finds the record, or puts `initial` there. VXS_STATUS_NO_MEMORY, with nothing changed.
template <class Record>
inline int32_t find_or_add_chunk(StreamState *stream, uint32_t id, Record initial, Record **record) {
  *record = find_record<Record>(stream, id);
  if (*record) return VXS_STATUS_OK;
  Record *fresh = static_cast<Record *>(malloc(sizeof(Record)));
  if (!fresh) return VXS_STATUS_NO_MEMORY;
  *fresh = initial;
  const int32_t status = __vxsAddChunk(stream, id, fresh, sizeof(Record));
  if (status < 0) free(fresh);
  else *record = fresh;
  return status;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
