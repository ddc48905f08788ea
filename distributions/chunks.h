// What a distribution keeps in a stream from one call to the next: a record in a chunk of its own.
#pragma once

#include <cstdlib>
#include <qkr/streams.h>

#include "simd/vectors.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Finds the record, or puts `initial` there. VXS_STATUS_NO_MEMORY, with nothing changed.
template <class Record>
inline int32_t find_or_add_chunk(StreamState *stream, uint32_t id, Record initial, Record **record) {
  *record = static_cast<Record *>(__vxsSearchChunk(stream, id));
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
