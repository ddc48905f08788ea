// Copies of streams, and the division of one sequence among several.
#include <qkr/streams_files.h>
#include <string.h>

#include "streams/internal.h"

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

}  // namespace

extern "C" {

int32_t __vxsCopyStream(StreamState **out, const StreamState *source) {
  const Place place(source);
  const int32_t status = __vxsAllocateStream(out, place.table, source->brng, place.row, place.member);
  if (status == VXS_STATUS_OK) memcpy(*out, source, static_cast<size_t>(place.generator().StateSize));
  return status;
}

int32_t __vxsCopyStreamState(StreamState *destination, const StreamState *source) {
  if (destination == source) return VXS_STATUS_OK;
  const Place from(source), to(destination);
  // WH declares twice the seed words that its record holds.
  const int64_t declared = static_cast<int64_t>(from.generator().WordSize) * from.generator().SeedWords;
  const int64_t size = smaller(declared, smaller(from.payload_size(), to.payload_size()));
  if (size > 0) memcpy(destination + 1, source + 1, static_cast<size_t>(size));
  return from.row == to.row ? VXS_STATUS_OK : VXS_STATUS_OTHER_GENERATOR;
}

int32_t __vxsLeapfrogStream(StreamState *stream, int32_t k, int32_t nstreams) {
  return Place(stream).generator().InitStream(VXS_INIT_LEAPFROG, stream, nstreams, &k);
}

int32_t __vxsSkipAheadStream(StreamState *stream, int64_t nskip) {
  return Place(stream).generator().InitStream(VXS_INIT_SKIP_AHEAD, stream, static_cast<int32_t>(nskip),
                                              nullptr);
}

}  // extern "C"
