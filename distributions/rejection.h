// Acceptance and rejection of candidates that are made of two uniform numbers each.
#pragma once

#include "distributions/internal.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int32_t most_candidates = 512;

// Fills `out`: draws blocks of pairs of uniform numbers, has `prepare(m, pairs)` work on the m pairs of a
// block as a whole, and then asks `accept(i, x)` of each whether it is accepted, and as which number x.
template <class T, class Prepare, class Accept>
inline int32_t by_rejection(StreamState *stream, int32_t n, T *out, Prepare prepare, Accept accept) {
  T pairs[2 * most_candidates];
  int32_t status = VXS_STATUS_OK;
  for (int32_t done = 0; done < n;) {
    const int32_t m = n - done < most_candidates ? n - done : most_candidates;
    status = uniforms(stream, 2 * m, pairs);
    if (status < 0) break;
    prepare(m, pairs);
    for (int32_t i = 0; i < m; ++i) {
      T x;
      if (accept(i, x)) out[done++] = x;
    }
  }
  return status;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
