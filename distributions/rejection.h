// Acceptance and rejection of candidates that are made of two uniform numbers each.
#pragma once

#include "distributions/internal.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int32_t most_candidates = 512;

// An answer, yes (1) or no (0), as wide as what it is about: so a loop of them serves whole vectors.
template <class T>
using Answer = decltype(bits(T()));

// Puts those of m candidates that are accepted into `out` one after another, and returns how many they are.
// Behind them, as far as m elements, comes what is not accepted: a branch that nobody can foresee would cost
// more than these writes.
template <class T>
inline int32_t keep(int32_t m, const T *candidates, const Answer<T> *accepted, T *out) {
  int32_t kept = 0;
  for (int32_t i = 0; i < m; ++i) {
    out[kept] = candidates[i];
    kept += static_cast<int32_t>(accepted[i]);
  }
  return kept;
}

// Fills `out`: draws blocks of pairs of uniform numbers, has `prepare(m, pairs)` work on the m pairs of a
// block as a whole, and then asks `accept(i, x)` of each whether it is accepted, and as which number x.
template <class T, class Prepare, class Accept>
inline int32_t by_rejection(StreamState *stream, int32_t n, T *out, Prepare prepare, Accept accept) {
  T pairs[2 * most_candidates], candidates[most_candidates];
  Answer<T> accepted[most_candidates];
  int32_t status = VXS_STATUS_OK;
  for (int32_t done = 0; done < n;) {
    const int32_t m = n - done < most_candidates ? n - done : most_candidates;
    status = uniforms(stream, 2 * m, pairs);
    if (status < 0) break;
    prepare(m, pairs);
    for (int32_t i = 0; i < m; ++i) accepted[i] = accept(i, candidates[i]);
    done += keep(m, candidates, accepted, out + done);
  }
  return status;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
