// Every combination of settings against FFTW in long double, those that are refused included.
#include "tests/dft/combinations.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

#include "tests/support/levels.h"

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

// A transform has the same bits alone and among others, behind them or beside them, from one array to another
// or in one, at every level: by codelets, by lines one a lane, and by the engine.
TEST(Bits, OfATransformAreThoseOfItAlone) {
  std::vector<Lengths> lines = {
      {60}, {151}, {256, 64}};  // columns of the last fall into one set of the cache
  for (int order = 0; order <= 9; ++order) lines.push_back({1 << order});
  for (const Case &c : cases({.lengths = lines, .layouts = {Layout::contiguous}, .scales = {1, 0.3}})) {
    const std::vector<int32_t> counts =
        points(c.lengths) > 512 ? std::vector{1, 2} : std::vector{1, 2, 3, 5, 8, 17};
    std::vector<double> expected;
    for (Case alone = c; alone.first < counts.back(); ++alone.first) {
      const Outcome one = run(alone);
      expected.insert(expected.end(), one.numbers.begin(), one.numbers.end());
    }
    for (Case among : cases({.lengths = {c.lengths},
                      .precisions = {c.precision},
                      .kinds = {{c.domain, c.storage, c.format}},
                      .forward = {c.forward},
                      .transforms = counts,
                      .layouts = {Layout::contiguous, Layout::interleaved},
                      .scales = {c.scale},
                      .one_array = {false, true},
                      .edges = {Edge::end, Edge::start}}))
      for_each_level([&](const char *level) {
        const Outcome outcome = run(among);
        ASSERT_EQ(outcome.code, DFTX_NO_ERROR);
        ASSERT_FALSE(outcome.strayed);
        ASSERT_EQ(outcome.numbers.size(), expected.size() / counts.back() * among.transforms);
        ASSERT_EQ(memcmp(outcome.numbers.data(), expected.data(), outcome.numbers.size() * sizeof(double)), 0)
            << name(among) << ' ' << level;
      });
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace qkr::tests
