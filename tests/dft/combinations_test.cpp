// Every combination of settings against FFTW in long double, those that are refused included.
#include "tests/dft/combinations.h"

#include <cmath>
#include <gtest/gtest.h>

namespace qkr::tests {
namespace {

// 1, 2 and 3, powers of two on both sides of each threshold, odd ones, primes on both sides of 150 and 180.
const std::vector<Lengths> shapes = {
    {1},       {2},       {3},       {4},       {5},        {8},        {15},       {16},     {32},
    {60},      {64},      {128},     {149},     {151},      {181},      {256},      {512},    {1000},
    {1, 1},    {1, 9},    {7, 1},    {2, 2},    {3, 5},     {4, 33},    {15, 4},    {32, 64}, {64, 31},
    {30, 151}, {1, 1, 1}, {2, 1, 3}, {3, 5, 2}, {16, 4, 9}, {7, 33, 6}, {8, 16, 64}};

// The error of a line grows as the root of its logarithm; a direct sum of a prime length as its root.
double bound(const Case &c) {
  const double unit = c.precision == DFTX_DOUBLE ? 0x1p-53 : 0x1p-24;
  return unit * (2 + std::log2(static_cast<double>(points(c.lengths))));
}

class Combinations : public testing::TestWithParam<int32_t> {
 protected:
  void check(Ranges ranges) {
    int computed = 0, refused = 0;
    ranges.precisions = {GetParam()};
    ranges.scales = {1, 0.375};
    ranges.placements = {DFTX_INPLACE, DFTX_NOT_INPLACE};
    ranges.orderings = {DFTX_ORDERED, DFTX_SCRAMBLED};
    ranges.with_refused = true;
    for (const Lengths &shape : shapes) {
      ranges.lengths = {shape};
      // Many of the short ones only.
      ranges.transforms = points(shape) <= 128 ? std::vector{0, 1, 2, 33} : std::vector{0, 1, 3};
      for (const Case &c : cases(ranges)) {
        SCOPED_TRACE(name(c));
        const Outcome outcome = run(c);
        ASSERT_EQ(outcome.code, expected_code(c));
        ++(outcome.code ? refused : computed);
        ASSERT_FALSE(outcome.strayed);
        ASSERT_LE(outcome.error, bound(c));
      }
    }
    RecordProperty("computed", computed);
    RecordProperty("refused", refused);
  }
};

TEST_P(Combinations, Complex) { check({.kinds = {complex_kind}}); }

TEST_P(Combinations, Real) {
  Ranges ranges = {.kinds = {}, .one_array = {false, true}};
  for (const int32_t storage : {DFTX_COMPLEX_REAL, DFTX_COMPLEX_COMPLEX})
    for (const int32_t format : {DFTX_CCS_FORMAT, DFTX_PACK_FORMAT, DFTX_PERM_FORMAT, DFTX_CCE_FORMAT})
      ranges.kinds.push_back({DFTX_REAL, storage, format});
  check(ranges);
}

INSTANTIATE_TEST_SUITE_P(Of, Combinations, testing::Values(DFTX_SINGLE, DFTX_DOUBLE),
                         [](const auto &of) { return of.param == DFTX_SINGLE ? "Single" : "Double"; });

}  // namespace
}  // namespace qkr::tests
