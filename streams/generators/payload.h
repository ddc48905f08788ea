// What a generator sees of a stream's record.
#pragma once

#include <qkr/streams.h>

static_assert(sizeof(StreamState) == 16, "the payload begins at byte 16, in files too");

namespace qkr {

// A generator's running state, behind the head of the record.
template <class Payload>
inline __attribute__((always_inline)) Payload &payload_of(StreamState *stream) {
  return *reinterpret_cast<Payload *>(stream + 1);
}
template <class Payload>
inline __attribute__((always_inline)) const Payload &payload_of(const StreamState *stream) {
  return *reinterpret_cast<const Payload *>(stream + 1);
}

// The newest chunk with this id, or null.
const StreamChunk *find_chunk(const StreamState *stream, uint32_t id);

inline __attribute__((always_inline)) int32_t family_member(const StreamState *stream) {
  int32_t row, member;
  __vxsGetBrngBaseOffset(static_cast<int32_t>(stream->brng), &row, &member);
  return member;
}

}  // namespace qkr
