// The division of one sequence among several streams.
#include <qkr/streams_files.h>

namespace {

const BrngRecord &generator_of(const StreamState *stream) {
  int32_t row, member;
  return __vxsGetBrngBaseOffset(static_cast<int32_t>(stream->brng), &row, &member)[row];
}

}  // namespace

extern "C" {

int32_t __vxsLeapfrogStream(StreamState *stream, int32_t k, int32_t nstreams) {
  return generator_of(stream).InitStream(VXS_INIT_LEAPFROG, stream, nstreams, &k);
}

int32_t __vxsSkipAheadStream(StreamState *stream, int64_t nskip) {
  return generator_of(stream).InitStream(VXS_INIT_SKIP_AHEAD, stream, static_cast<int32_t>(nskip), nullptr);
}

}  // extern "C"
