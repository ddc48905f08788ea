// A few uniform numbers of a stream at once: those that lie ready, without the way through the registry and
// the processor's level, which takes longer than they do.
#pragma once

#include "streams/generators/mt19937.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The next n numbers of [a, b), as the generator's block entry gives them; false, with nothing changed,
// where they have to come from there.
template <class T>
QKR_INLINE bool draw_ready(StreamState *stream, int32_t n, T *out, double a, double b) {
  if (stream->brng != QKR_MT19937) return false;
  Mt19937 &state = payload_of<Mt19937>(stream);
  if (state.index > Mt19937::words - n) return false;
  const Reals<T> output = {(b - a) * 0x1p-32, a};
  for (int32_t i = 0; i < n; ++i) output.put_one(out + i, tempering(state.mt[state.index + i]));
  state.index += n;
  return true;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
