// All basic generators, each beside its definition in a few lines. A generator joins the tests with one row.
#pragma once

#include <functional>
#include <qkr/streams_generators.h>

#include "tests/streams/stream.h"

namespace qkr::tests {

// Gives the words of one number, and goes on to the next.
using Steps = std::function<void(uint32_t *words)>;

// What a stream can do beside giving numbers: skip some, also be split, be split by dimensions only.
enum class Moves { none, ahead, apart, by_dimension };

struct Generator {
  const char *name;
  uint32_t id;
  Seeds seeds;
  Moves moves;
  Steps (*definition)(const Stream &stream, Seeds seeds);

  Stream start() const { return new_stream(id, seeds); }
};
inline void PrintTo(const Generator &generator, std::ostream *out) { *out << generator.name; }

const std::vector<Generator> &all_generators();

// By the direction numbers and the place in the sequence of the stream.
Steps digital_sequence(const Stream &stream, Seeds);

// A user's array of direction numbers for `dim` dimensions of a quasi-random generator.
Seeds user_directions(uint32_t dim);

}  // namespace qkr::tests
