// One transform in all its settings, and what it must give: by FFTW in long double.
#pragma once

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

using Lengths = std::vector<int32_t>;
int64_t points(const Lengths &lengths);

struct Case {
  int32_t precision = DFTX_DOUBLE, domain = DFTX_COMPLEX;
  Lengths lengths;
  int32_t storage = DFTX_COMPLEX_REAL, format = DFTX_CCS_FORMAT;  // of a real transform's spectrum
  int32_t placement = DFTX_NOT_INPLACE, ordering = DFTX_ORDERED;
  int32_t transforms = 1;
  int32_t first = 0;  // of the transforms, each of which has numbers of its own
  Layout layout = Layout::contiguous;
  double scale = 1;
  int32_t thread_limit = 1;
  bool forward = true;
  bool in_place = false;  // of a real transform: input and output are one array
  Edge edge = Edge::end;  // the arrays stand between pages that must not be touched, right at one of them
};

std::string name(const Case &c);

// Complex data, or the way in which the spectrum of real data is stored.
struct Kind {
  int32_t domain, storage, format;
};
constexpr Kind complex_kind = {DFTX_COMPLEX, DFTX_COMPLEX_REAL, DFTX_CCS_FORMAT},
               half_spectrum = {DFTX_REAL, DFTX_COMPLEX_COMPLEX, DFTX_CCE_FORMAT},
               packed_ccs = {DFTX_REAL, DFTX_COMPLEX_REAL, DFTX_CCS_FORMAT},
               packed_pack = {DFTX_REAL, DFTX_COMPLEX_REAL, DFTX_PACK_FORMAT},
               packed_perm = {DFTX_REAL, DFTX_COMPLEX_REAL, DFTX_PERM_FORMAT};

// What the fields of cases run over.
struct Ranges {
  std::vector<Lengths> lengths = {};
  std::vector<int32_t> precisions = {DFTX_SINGLE, DFTX_DOUBLE};
  std::vector<Kind> kinds = {complex_kind, half_spectrum, packed_ccs, packed_pack, packed_perm};
  std::vector<bool> forward = {true, false};
  std::vector<int32_t> transforms = {1};
  std::vector<Layout> layouts = {Layout::contiguous, Layout::interleaved, Layout::spread};
  std::vector<double> scales = {1};
  std::vector<int32_t> placements = {DFTX_NOT_INPLACE}, orderings = {DFTX_ORDERED}, thread_limits = {1};
  std::vector<bool> one_array = {false};
  std::vector<Edge> edges = {Edge::end};
  bool with_refused = false;
};

// Their product, but for what cannot be: complex data have one array at any rate, and interleaved or spread
// transforms of one array would write into one another's input.
std::vector<Case> cases(const Ranges &ranges);

// What commit answers.
int32_t expected_code(const Case &c);

// Creates the descriptor, sets it up and commits it: the first code that is not 0.
int32_t prepare(const Case &c, DftDescriptor **handle);

// The compute function of the case.
int32_t call(const Case &c, DftDescriptor *descriptor, void *input, void *output);

struct Outcome {
  int32_t code = -1;  // of prepare, or of compute
  double error = 0;   // root of the sum of squares of the differences, divided by that of the exact numbers
  bool strayed = false;         // numbers that are no output were written, or input that is to stay
  std::vector<char> bytes;      // the output array
  std::vector<double> numbers;  // of the results, transform after transform, in whatever layout
};

// With a descriptor of `prepare`, on random numbers that depend on the case alone.
Outcome compute(const Case &c, DftDescriptor *descriptor);

// From create to free.
Outcome run(const Case &c);

}  // namespace qkr::tests
