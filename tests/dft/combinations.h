// One transform in all its settings, and what it must give: plain sums in long double along every dimension.
#pragma once

#include <optional>
#include <qkr/dft.h>
#include <string>
#include <vector>

#include "tests/support/guarded.h"

namespace qkr::tests {

enum class Layout {
  contiguous,   // one transform behind the other, default strides
  interleaved,  // element i of all transforms side by side
  spread,       // gaps everywhere
};

struct Case {
  int32_t precision = DFTX_DOUBLE, domain = DFTX_COMPLEX;
  std::vector<int32_t> lengths;
  int32_t storage = DFTX_COMPLEX_REAL, format = DFTX_CCS_FORMAT;  // of a real transform's spectrum
  int32_t placement = DFTX_NOT_INPLACE, ordering = DFTX_ORDERED;
  int32_t transforms = 1;
  Layout layout = Layout::contiguous;
  double scale = 1;
  int32_t thread_limit = 1;
  bool forward = true;
  bool in_place = false;  // of a real transform: input and output are one array
  // The arrays stand between pages that must not be touched, right at one of them.
  std::optional<Edge> guarded = std::nullopt;
};

std::string name(const Case &c);

// Creates the descriptor, sets it up and commits it: the first code that is not 0.
int32_t prepare(const Case &c, DftDescriptor **handle);

struct Outcome {
  int32_t code = -1;  // of prepare, or of compute
  double error = 0;   // root of the sum of squares of the differences, divided by that of the exact numbers
  bool strayed = false;     // numbers that are no output were written, or input that is to stay
  std::vector<char> bytes;  // the output array
};

// With a descriptor of `prepare`, on random numbers that depend on the case alone.
Outcome compute(const Case &c, DftDescriptor *descriptor);

// From create to free.
Outcome run(const Case &c);

}  // namespace qkr::tests
