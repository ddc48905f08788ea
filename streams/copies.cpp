// Copies of streams and of their states.
#include <qkr/streams_files.h>
#include <qkr/streams_generators.h>
#include <stdlib.h>
#include <string.h>

#include "streams/internal.h"
#include "streams/quasi/digital_sequence_setup.h"

using namespace qkr;

namespace {

struct Place {
  int32_t row, member;
  const BrngRecord *table;
  explicit Place(const StreamState *stream)
      : table(__vxsGetBrngBaseOffset(static_cast<int32_t>(stream->brng), &row, &member)) {}
  const BrngRecord &generator() const { return table[row]; }
  int64_t payload_size() const { return generator().StateSize - static_cast<int64_t>(sizeof(StreamState)); }
};

int64_t smaller(int64_t a, int64_t b) { return a < b ? a : b; }

// In the same order. VXS_STATUS_NO_MEMORY leaves those that were made in the list.
int32_t copy_chunks(StreamState *to, const StreamState *from) {
  StreamChunk **end = &to->chunks;
  for (const StreamChunk *chunk = from->chunks; chunk; chunk = chunk->next) {
    StreamChunk *copy = static_cast<StreamChunk *>(malloc(sizeof(StreamChunk)));
    void *data = copy && chunk->data ? malloc(chunk->size ? chunk->size : 1) : nullptr;
    if (!copy || (chunk->data && !data)) {
      free(copy);
      return VXS_STATUS_NO_MEMORY;
    }
    if (data) memcpy(data, chunk->data, chunk->size);
    *copy = {chunk->id, chunk->size, data, nullptr};
    *end = copy;
    end = &copy->next;
  }
  return VXS_STATUS_OK;
}

// The chunk that holds the point and the direction numbers of a quasi-random stream, or null where the record
// does.
const StreamChunk *sequence_chunk(const StreamState *stream, const BrngRecord &generator) {
  if (generator.InitStream == __vxsBRngSobolInitStream) return chunk_of<Sobol>(stream);
  return generator.InitStream == __vxsBRngNiederrInitStream ? chunk_of<Niederreiter>(stream) : nullptr;
}

// The bytes of another generator do not stay in a stream that could not be drawn from with them.
void copy_foreign(StreamState *destination, const StreamState *source, size_t size) {
  constexpr size_t largest_payload = sizeof(SequenceRecord<Niederreiter>);
  char before[largest_payload];
  const size_t kept = size < largest_payload ? size : largest_payload;  // a larger one is a user generator's
  const bool was_sound = is_sound(destination);
  memcpy(before, destination + 1, kept);
  memcpy(destination + 1, source + 1, size);
  if (was_sound && (is_abstract(destination) || !is_sound(destination))) {
    memcpy(destination + 1, before, kept);
  }
}

}  // namespace

extern "C" {

int32_t __vxsCopyStream(StreamState **out, const StreamState *source) {
  const Place place(source);
  int32_t status = __vxsAllocateStream(out, place.table, source->brng, place.row, place.member);
  if (status != VXS_STATUS_OK) return status;
  (*out)->flags = source->flags;
  if (place.payload_size() > 0) memcpy(*out + 1, source + 1, static_cast<size_t>(place.payload_size()));
  status = copy_chunks(*out, source);
  if (status != VXS_STATUS_OK) __vxsDeleteStream(out);
  return status;
}

int32_t __vxsCopyStreamState(StreamState *destination, const StreamState *source) {
  if (destination == source) return VXS_STATUS_OK;
  const Place from(source), to(destination);
  const StreamChunk *sequence = sequence_chunk(source, from.generator());
  const StreamChunk *over = sequence_chunk(destination, to.generator());
  if (sequence || over) {
    const bool fits = sequence && over && sequence->id == over->id && sequence->size == over->size;
    if (!fits) return VXS_STATUS_OTHER_GENERATOR;
    memcpy(over->data, sequence->data, over->size);
  }
  // WH declares twice the seed words that its record holds.
  const int64_t declared = static_cast<int64_t>(from.generator().WordSize) * from.generator().SeedWords;
  const int64_t size = smaller(declared, smaller(from.payload_size(), to.payload_size()));
  if (size > 0) {
    const size_t bytes = static_cast<size_t>(size);
    if (from.generator().InitStream == to.generator().InitStream) memcpy(destination + 1, source + 1, bytes);
    else copy_foreign(destination, source, bytes);
  }
  return from.row == to.row ? VXS_STATUS_OK : VXS_STATUS_OTHER_GENERATOR;
}

}  // extern "C"
