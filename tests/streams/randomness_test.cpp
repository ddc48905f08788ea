// A small statistical battery over all pseudo-random generators (D. E. Knuth, The Art of Computer
// Programming, vol. 2, 3.3.2; G. Marsaglia, Computers and Mathematics with Applications 9 (1985) 1, for the
// birthday spacings).
//
// The seeds are fixed, so a test passes always or never. With a seed drawn at random, a perfect generator
// would fail each of the 36 with probability 2e-7 at the most, and any of them with 7.2e-6.
#include <algorithm>
#include <array>
#include <cmath>
#include <gsl/gsl_cdf.h>

#include "tests/streams/generators.h"

namespace {

using namespace qkr::tests;

constexpr double smallest_probability = 1e-7;  // on either side

void expect_plausible(double upper_tail, const char *what) {
  EXPECT_GT(upper_tail, smallest_probability) << what << ": too far from uniform";
  EXPECT_LT(upper_tail, 1 - smallest_probability) << what << ": too close to uniform";
}

template <class Counts, class Probability>
void expect_distribution(const Counts &counts, double total, Probability probability, const char *what) {
  double statistic = 0;
  for (size_t k = 0; k < std::size(counts); ++k) {
    const double expected = total * probability(k);
    statistic += (counts[k] - expected) * (counts[k] - expected) / expected;
  }
  expect_plausible(gsl_cdf_chisq_Q(statistic, static_cast<double>(std::size(counts)) - 1), what);
}

class Randomness : public testing::TestWithParam<Generator> {
 protected:
  const Stream stream = GetParam().start();
  // The leading 24 bits of n numbers: as many as the weakest generators have.
  std::vector<uint32_t> bits(int32_t n) {
    std::vector<uint32_t> result;
    for (const double u : draw_doubles(stream, n)) result.push_back(static_cast<uint32_t>(u * 0x1p24));
    return result;
  }
};

TEST_P(Randomness, PairsOfBytesAreEquallyFrequent) {
  constexpr int32_t n = 1 << 21;
  const std::vector<uint32_t> words = bits(n);
  std::vector<double> counts(1 << 16);
  for (int32_t i = 0; i < n; i += 2) counts[words[i] >> 16 << 8 | words[i + 1] >> 16] += 1;
  expect_distribution(
      counts, n / 2, [](size_t) { return 0x1p-16; }, "byte pairs");
}

TEST_P(Randomness, GapsBetweenSmallNumbers) {
  constexpr int32_t n = 1 << 20, longest = 50;
  std::array<double, longest + 1> counts = {};
  double total = 0;
  int32_t gap = -1;
  for (const double u : draw_doubles(stream, n)) {
    if (gap >= 0) ++gap;
    if (u >= 0.1) continue;
    if (gap >= 0) counts[std::min(gap - 1, longest)] += 1, total += 1;
    gap = 0;
  }
  const auto probability = [](size_t k) { return std::pow(0.9, k) * (k == longest ? 1 : 0.1); };
  expect_distribution(counts, total, probability, "gaps");
}

// 512 birthdays in a year of 2^24 days: spacings that occur again are nearly Poisson with mean 2 a year.
TEST_P(Randomness, BirthdaySpacings) {
  constexpr int32_t birthdays = 512, years = 1000;
  double repeated = 0;
  for (int year = 0; year < years; ++year) {
    std::vector<uint32_t> days = bits(birthdays);
    std::sort(days.begin(), days.end());
    for (size_t i = birthdays - 1; i > 0; --i) days[i] -= days[i - 1];
    std::sort(days.begin(), days.end());
    for (size_t i = 1; i < birthdays; ++i) repeated += days[i] == days[i - 1];
  }
  const double mean = years * std::pow(birthdays, 3) / (4 * 0x1p24);
  expect_plausible(gsl_cdf_poisson_Q(static_cast<unsigned>(repeated), mean), "birthday spacings");
}

std::vector<Generator> random_generators() {
  std::vector<Generator> generators = all_generators();
  std::erase_if(generators, std::mem_fn(&Generator::is_quasi_random));
  return generators;
}

INSTANTIATE_TEST_SUITE_P(, Randomness, testing::ValuesIn(random_generators()), test_name);

}  // namespace
