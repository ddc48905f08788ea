// What the files of streams, registry and files share.
#pragma once

#include "streams/generators/payload.h"

namespace qkr {

constexpr uint32_t abstract_integers = 0xa00000, abstract_doubles = 0xb00000, abstract_singles = 0xc00000;

constexpr int32_t legacy_rows = 279;
constexpr int32_t current_rows = 512;

struct LegacyTable {
  BrngRecord rows[legacy_rows];
};
extern const LegacyTable legacy_generators;

extern BrngRecord current_generators[current_rows];
extern int32_t family_sizes[current_rows];  // members of each row of current_generators
extern int32_t current_generator_count;

// Whether the stream can be drawn from; see generators/soundness.h. User generators count as sound.
bool is_sound(const StreamState *stream);

inline bool is_abstract(const StreamState *stream) {
  return stream->brng == abstract_integers || stream->brng == abstract_doubles ||
         stream->brng == abstract_singles;
}

// Takes an abstract stream's addresses away, which are those of another process. Returns whether the rest of
// its state is sound.
bool disconnect_abstract(StreamState *stream);

}  // namespace qkr
