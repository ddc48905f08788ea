// Every combination of settings against plain sums, those that are refused included.
#include "tests/dft/combinations.h"

#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>

namespace qkr::tests {
namespace {

using Lengths = std::vector<int32_t>;

// 1, 2 and 3, powers of two on both sides of each threshold, odd ones, primes on both sides of 150 and 180.
const std::vector<Lengths> lengths_of_dimension[] = {
    {{1},
     {2},
     {3},
     {4},
     {5},
     {8},
     {15},
     {16},
     {32},
     {60},
     {64},
     {128},
     {149},
     {151},
     {181},
     {256},
     {512},
     {1000}},
    {{1, 1}, {1, 9}, {7, 1}, {2, 2}, {3, 5}, {4, 33}, {15, 4}, {32, 64}, {64, 31}, {30, 151}},
    {{1, 1, 1}, {2, 1, 3}, {3, 5, 2}, {16, 4, 9}, {7, 33, 6}, {8, 16, 64}}};

// What commit answers.
int32_t expected_code(const Case &c) {
  if (c.domain == DFTX_REAL) {
    if (c.ordering == DFTX_SCRAMBLED) return DFTX_INVALID_ARGUMENT;
    if (c.storage == DFTX_COMPLEX_REAL && (c.lengths.size() == 3 || c.format == DFTX_CCE_FORMAT))
      return DFTX_UNIMPLEMENTED;
  }
  return DFTX_NO_ERROR;
}

// The error of a line grows as the root of its logarithm; a direct sum of a prime length as its root.
double bound(const Case &c) {
  double points = 1;
  for (const int32_t n : c.lengths) points *= n;
  const double unit = c.precision == DFTX_DOUBLE ? 0x1p-53 : 0x1p-24;
  return unit * (2 + std::log2(points));
}

struct Counts {
  int computed = 0, refused = 0;
};
void tell(const Counts &counts) {
  std::printf("%d combinations computed, %d refused\n", counts.computed, counts.refused);
}

void check(const Case &c, Counts &counts) {
  SCOPED_TRACE(name(c));
  const Outcome outcome = run(c);
  ASSERT_EQ(outcome.code, expected_code(c));
  if (outcome.code) {
    ++counts.refused;
    return;
  }
  ++counts.computed;
  ASSERT_FALSE(outcome.strayed);
  ASSERT_LE(outcome.error, bound(c));
}

class Combinations : public testing::TestWithParam<int32_t> {};

// Many of the short ones only: the sums take their time.
std::vector<int32_t> numbers_of_transforms(const Lengths &shape) {
  int64_t points = 1;
  for (const int32_t n : shape) points *= n;
  return points <= 128 ? std::vector<int32_t>{0, 1, 2, 33} : std::vector<int32_t>{0, 1, 3};
}

template <class Body>
void for_each_setting(int32_t precision, Body body) {
  for (const auto &lengths : lengths_of_dimension)
    for (const Lengths &shape : lengths)
      for (const bool forward : {true, false})
        for (const double scale : {1.0, 0.375})
          for (const int32_t transforms : numbers_of_transforms(shape))
            for (const Layout layout : {Layout::contiguous, Layout::interleaved, Layout::spread})
              for (const int32_t placement : {DFTX_INPLACE, DFTX_NOT_INPLACE})
                for (const int32_t ordering : {DFTX_ORDERED, DFTX_SCRAMBLED}) {
                  Case c;
                  c.precision = precision;
                  c.lengths = shape;
                  c.forward = forward;
                  c.scale = scale;
                  c.transforms = transforms;
                  c.layout = layout;
                  c.placement = placement;
                  c.ordering = ordering;
                  body(c);
                }
}

TEST_P(Combinations, Complex) {
  Counts counts;
  for_each_setting(GetParam(), [&](Case &c) {
    if (!testing::Test::HasFatalFailure()) check(c, counts);
  });
  tell(counts);
}

TEST_P(Combinations, Real) {
  Counts counts;
  for_each_setting(GetParam(), [&](Case &c) {
    c.domain = DFTX_REAL;
    for (const int32_t storage : {DFTX_COMPLEX_REAL, DFTX_COMPLEX_COMPLEX})
      for (const int32_t format : {DFTX_CCS_FORMAT, DFTX_PACK_FORMAT, DFTX_PERM_FORMAT, DFTX_CCE_FORMAT})
        for (const bool in_place : {false, true}) {
          if (testing::Test::HasFatalFailure()) return;
          // Interleaved or spread transforms of one array would write into one another's input.
          if (in_place && c.layout != Layout::contiguous && c.transforms > 1) continue;
          c.storage = storage;
          c.format = format;
          c.in_place = in_place;
          check(c, counts);
        }
  });
  tell(counts);
}

INSTANTIATE_TEST_SUITE_P(Of, Combinations, testing::Values(DFTX_SINGLE, DFTX_DOUBLE),
                         [](const auto &of) { return of.param == DFTX_SINGLE ? "Single" : "Double"; });

}  // namespace
}  // namespace qkr::tests
