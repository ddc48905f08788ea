// What a generator asks of a state that it did not make itself.
#include "streams/generators/soundness.h"

#include <qkr/streams_generators.h>

#include "streams/internal.h"
#include "streams/quasi/digital_sequence_setup.h"

namespace {

struct Check {
  decltype(BrngRecord::InitStream) generator;
  bool (*is_sound)(const StreamState *);
};
constexpr Check checks[] = {
    {__vxsBRngMCG31M1InitStream, qkr::is_sound_mcg31m1},
    {__vxsBRngR250InitStream, qkr::is_sound_r250},
    {__vxsBRngMCG59InitStream, qkr::is_sound_mcg59},
    {__vxsBRngWHInitStream, qkr::is_sound_wichmann_hill},
    {__vxsBRngSobolInitStream, qkr::is_sound_sequence<qkr::Sobol>},
    {__vxsBRngNiederrInitStream, qkr::is_sound_sequence<qkr::Niederreiter>},
    {__vxsBRngMT19937InitStream, qkr::is_sound_mt19937},
    {__vxsBRngMT2203InitStream, qkr::is_sound_mt2203},
};

}  // namespace

bool qkr::is_sound(const StreamState *stream) {
  int32_t row, member;
  const auto generator =
      __vxsGetBrngBaseOffset(static_cast<int32_t>(stream->brng), &row, &member)[row].InitStream;
  for (const Check &check : checks) {
    if (check.generator == generator) return check.is_sound(stream);
  }
  return true;
}
