// A generator that replays recorded numbers, among them all that are awkward, and that fails when it is told.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/streams/stream.h"

namespace qkr::tests {

struct Recording {
  std::vector<double> numbers;
  size_t next = 0;
  int until_failure = 0;  // the draw that fails: 1 is the next; 0: none
};
extern Recording recording;

constexpr int32_t recorded_failure = -77;

// A stream that draws from `recording`, all of which is read again from the start.
Stream recorded_stream();

// What vector math keeps of a thread it allocates on first use: tests that count allocations begin with it.
void make_cells_of_thread();

}  // namespace qkr::tests
