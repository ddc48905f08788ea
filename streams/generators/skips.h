// What skips of any 64-bit count are made of: one function for each generator that can jump.
#pragma once

#include <qkr/streams.h>

namespace qkr {

int32_t skip_mcg31m1(StreamState *stream, uint64_t count);
int32_t skip_mcg59(StreamState *stream, uint64_t count);
int32_t skip_wichmann_hill(StreamState *stream, uint64_t count);
int32_t skip_mrg32k3a(StreamState *stream, uint64_t count);

// Three successive numbers of a linear recurrence, as __vxsiVect3PowMod() advances them.
void advance_recurrence(uint32_t *vector, const uint32_t *coefficients, uint32_t modulus, uint64_t steps);

}  // namespace qkr
