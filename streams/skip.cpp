// A skip of any 64-bit count: by a function of the generator's own for those of the library, which InitStream
// has no room for; registered ones are asked.
#include <qkr/streams_files.h>
#include <qkr/streams_generators.h>

#include "streams/generators/skips.h"
#include "streams/internal.h"
#include "streams/quasi/digital_sequence_setup.h"

namespace {

struct Skip {
  decltype(BrngRecord::InitStream) generator;
  int32_t (*skip)(StreamState *, uint64_t);
};
constexpr Skip skips[] = {
    {__vxsBRngMCG31M1InitStream, qkr::skip_mcg31m1},
    {__vxsBRngMRG32K3AInitStream, qkr::skip_mrg32k3a},
    {__vxsBRngMCG59InitStream, qkr::skip_mcg59},
    {__vxsBRngWHInitStream, qkr::skip_wichmann_hill},
    {__vxsBRngSobolInitStream, qkr::skip_sequence<qkr::Sobol>},
    {__vxsBRngNiederrInitStream, qkr::skip_sequence<qkr::Niederreiter>},
};

}  // namespace

extern "C" int32_t qkr_skip_ahead(StreamState *stream, uint64_t count) {
  int32_t row, member;
  const BrngRecord *table = __vxsGetBrngBaseOffset(static_cast<int32_t>(stream->brng), &row, &member);
  const auto generator = table[row].InitStream;
  for (const Skip &own : skips) {
    if (own.generator == generator) return own.skip(stream, count);
  }
  const int32_t status = count <= INT32_MAX
                             ? generator(VXS_INIT_SKIP_AHEAD, stream, static_cast<int32_t>(count), nullptr)
                             : generator(QKR_INIT_SKIP_AHEAD_64, stream, 0, &count);
  return status == VXS_STATUS_BAD_METHOD ? VXS_STATUS_NO_SKIP_AHEAD : status;
}
