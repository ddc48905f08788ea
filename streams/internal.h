// What the files of the random streams share.
#pragma once

#include <qkr/streams.h>

constexpr int32_t legacy_rows = 279;
constexpr int32_t current_rows = 512;

constexpr int32_t wh_members = 273;
constexpr int32_t mt2203_members = 1024;
constexpr int32_t first_legacy_wh = 4;  // ids 4 to 276 are the members of WH

constexpr uint32_t abstract_integers = 0xa00000, abstract_doubles = 0xb00000, abstract_singles = 0xc00000;

struct LegacyTable {
  BrngRecord rows[legacy_rows];
};

extern "C" {
extern const LegacyTable __RegBrngs;
extern BrngRecord __RegBrngsNew[current_rows];
extern int32_t NumOffsets[current_rows];  // family members of each row of __RegBrngsNew
extern int32_t NRegBrngsNew;              // rows in use
}

static_assert(sizeof(StreamState) == 16, "the payload begins at byte 16, in files too");

// A generator's running state, behind the head of the record.
template <class Payload>
inline __attribute__((always_inline)) Payload &payload_of(StreamState *stream) {
  return *reinterpret_cast<Payload *>(stream + 1);
}

inline __attribute__((always_inline)) int32_t family_member(const StreamState *stream) {
  int32_t row, member;
  __vxsGetBrngBaseOffset(static_cast<int32_t>(stream->brng), &row, &member);
  return member;
}
