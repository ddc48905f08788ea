// The life of a stream, and the list of chunks that hangs on it.
#include <stdlib.h>

#include "streams/internal.h"

using namespace qkr;

const StreamChunk *qkr::find_chunk(const StreamState *stream, uint32_t id) {
  const StreamChunk *chunk = stream->chunks;
  while (chunk && chunk->id != id) chunk = chunk->next;
  return chunk;
}

extern "C" {

int32_t __vxsNewStreamEx(StreamState **out, uint32_t id, int32_t n, const void *params) {
  if (id == abstract_integers || id == abstract_doubles || id == abstract_singles) {
    return VXS_STATUS_BAD_GENERATOR;
  }
  int32_t row, member;
  const BrngRecord *table = __vxsGetBrngBaseOffset(static_cast<int32_t>(id), &row, &member);
  const int32_t status = __vxsAllocateStream(out, table, id, row, member);
  return status == VXS_STATUS_OK ? table[row].InitStream(VXS_INIT_SEED, *out, n, params) : status;
}

int32_t __vxsAllocateStream(StreamState **out, const BrngRecord *table, uint32_t id, int32_t row,
                            int32_t member) {
  const int32_t status = __vxsIsBrngValid(table, row, member);
  if (status != VXS_STATUS_OK) return status;
  // A registered generator may declare a size of 0; the head is there all the same. What a generator does not
  // set has defined bytes, which files show.
  const size_t declared = static_cast<size_t>(table[row].StateSize);
  const size_t size = declared < sizeof(StreamState) ? sizeof(StreamState) : declared;
  *out = static_cast<StreamState *>(calloc(1, size));
  if (!*out) return VXS_STATUS_NO_MEMORY;
  **out = {id, 1, nullptr};
  return VXS_STATUS_OK;
}

int32_t __vxsDeleteStream(StreamState **stream) {
  if (!*stream) return VXS_STATUS_NULL_POINTER;
  __vxsDeleteChunks(*stream);
  free(*stream);
  *stream = nullptr;
  return VXS_STATUS_OK;
}

uint32_t __vxsGetStreamStateBrng(const StreamState *stream) { return stream->brng; }

int32_t __vxsAddChunk(StreamState *stream, uint32_t id, void *data, uint32_t size) {
  StreamChunk *chunk = static_cast<StreamChunk *>(malloc(sizeof(StreamChunk)));
  if (!chunk) return VXS_STATUS_NO_MEMORY;
  *chunk = {id, size, data, stream->chunks};
  stream->chunks = chunk;
  return VXS_STATUS_OK;
}

void *__vxsSearchChunk(const StreamState *stream, uint32_t id) {
  const StreamChunk *chunk = find_chunk(stream, id);
  return chunk ? chunk->data : nullptr;
}

int32_t __vxsGetNumChunks(const StreamState *stream) {
  int32_t count = 0;
  for (const StreamChunk *chunk = stream->chunks; chunk; chunk = chunk->next) ++count;
  return count;
}

void __vxsDeleteChunks(StreamState *stream) {
  for (StreamChunk *chunk = stream->chunks, *next; chunk; chunk = next) {
    next = chunk->next;
    free(chunk->data);
    free(chunk);
  }
  stream->chunks = nullptr;
}

}  // extern "C"
