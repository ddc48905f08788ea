// Whether the bytes behind a stream's head are a state that can be drawn from. A file may bring any bytes,
// and a copy of the state those of another generator; what a generator indexes with, or computes with
// unchecked, must lie in its range.
#pragma once

#include <qkr/streams.h>

namespace qkr {

bool is_sound_mcg31m1(const StreamState *stream);
bool is_sound_mcg59(const StreamState *stream);
bool is_sound_wichmann_hill(const StreamState *stream);
bool is_sound_r250(const StreamState *stream);
bool is_sound_mt19937(const StreamState *stream);
bool is_sound_mt2203(const StreamState *stream);

// MRG32K3A draws from any six words.

}  // namespace qkr
