// Seeds of many streams: the words of __vxsSeedWords, and members of families at their start.
//
// The seeds are fixed, so a test passes always or never. With a seed drawn at random, independent streams
// would fail each row with probability 4e-7 at the most.
#include <cmath>
#include <gsl/gsl_cdf.h>
#include <set>

#include "tests/streams/stream.h"

namespace {

using namespace qkr::tests;

Seeds hashed(uint64_t seed, uint64_t index, int32_t n) {
  Seeds words(static_cast<size_t>(n));
  __vxsSeedWords(seed, index, n, words.data());
  return words;
}

// The generator's published first numbers from 1234567, then the hash in its terms.
TEST(SeedWords, AreThoseOfSplitMix64) {
  const auto next = [](uint64_t &state) {
    uint64_t z = state += 0x9e3779b97f4a7c15;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
    z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
    return z ^ (z >> 31);
  };
  uint64_t published = 1234567;
  EXPECT_EQ(next(published), 6457827717110365317u);
  EXPECT_EQ(next(published), 3203168211198807973u);

  for (const uint64_t seed : {uint64_t{0}, uint64_t{777}, ~uint64_t{0}})
    for (const uint64_t index : {uint64_t{0}, uint64_t{5}, ~uint64_t{0}}) {
      uint64_t start = seed, state = next(start) + index * 0x9e3779b97f4a7c15;
      state = next(state);
      const uint64_t first = next(state), second = next(state);
      EXPECT_EQ(hashed(seed, index, 3),
                (Seeds{static_cast<uint32_t>(first), static_cast<uint32_t>(first >> 32),
                       static_cast<uint32_t>(second)}));
    }
  __vxsSeedWords(1, 2, 0, nullptr);
  __vxsSeedWords(1, 2, -1, nullptr);
}

TEST(SeedWords, DoNotRepeat) {
  std::set<Seeds> seen;
  for (uint64_t seed = 0; seed < 100; ++seed)
    for (uint64_t index = 0; index < 1000; ++index) seen.insert(hashed(seed, index, 2));
  EXPECT_EQ(seen.size(), 100000u);
}

// How plausible the first numbers of some streams are, as tails of independent ones: the mean over the
// streams of each of the first numbers, and the products of successive streams.
struct Tails {
  double means, products;
};
Tails tails_of_starts(int members, const std::function<Stream(int)> &make) {
  constexpr int numbers = 64;
  std::vector<std::vector<double>> u;
  for (int k = 0; k < members; ++k) u.push_back(draw_doubles(make(k), numbers, -std::sqrt(3), std::sqrt(3)));
  double squares = 0, products = 0;
  for (int j = 0; j < numbers; ++j) {
    double sum = 0;
    for (int k = 0; k < members; ++k) sum += u[k][j];
    for (int k = 1; k < members; ++k) products += u[k][j] * u[k - 1][j];
    squares += sum * sum / members;
  }
  return {gsl_cdf_chisq_Q(squares, numbers),
          gsl_cdf_ugaussian_Q(products / std::sqrt((members - 1.0) * numbers))};
}

TEST(SeedWords, StreamsAreNotCorrelatedAtTheirStart) {
  const auto by_hash = [](uint32_t id, uint32_t step, int32_t words) {
    return [=](int k) { return new_stream(id + step * k, hashed(2026, k, words)); };
  };
  constexpr double smallest = 1e-7;
  const struct {
    const char *what;
    int members;
    std::function<Stream(int)> make;
    bool plausible;
  } rows[] = {
      {"MCG31M1", 1024, by_hash(0x100000, 0, 1), true},
      {"R250", 1024, by_hash(0x200000, 0, 250), true},
      {"MRG32K3A", 1024, by_hash(0x300000, 0, 6), true},
      {"MCG59", 1024, by_hash(0x400000, 0, 2), true},
      {"WH, one member", 1024, by_hash(0x500000, 0, 4), true},
      {"WH, all members", 273, by_hash(0x500000, 1, 4), true},
      {"MT19937", 1024, by_hash(0x800000, 0, 4), true},
      {"MT2203, one member", 1024, by_hash(0x900000, 0, 4), true},
      {"MT2203, all members", 1024, by_hash(0x900000, 1, 4), true},
      {"MT2203, seed and member", 1024,
       [](int k) {
         return new_stream(0x900000 + k, {777, static_cast<uint32_t>(k)});
       },
       true},
      // What the words are for: the same seed in all members, and seeds that follow each other.
      {"MT2203, one seed", 1024, [](int k) { return new_stream(0x900000 + k, {777}); }, false},
      {"WH, one seed", 273,
       [](int k) {
         return new_stream(0x500000 + k, {777, 777, 777, 777});
       },
       false},
      {"MCG31M1, small seeds", 1024,
       [](int k) { return new_stream(0x100000, {static_cast<uint32_t>(k + 1)}); }, false},
  };
  for (const auto &row : rows) {
    const Tails tails = tails_of_starts(row.members, row.make);
    const auto is_plausible = [](double tail) { return tail > smallest && tail < 1 - smallest; };
    EXPECT_EQ(is_plausible(tails.means) && is_plausible(tails.products), row.plausible)
        << row.what << ": " << tails.means << ", " << tails.products;
  }
}

}  // namespace
