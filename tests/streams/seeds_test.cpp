// Members of families and streams of hashed seeds are not correlated at their start.
//
// The seeds are fixed, so a test passes always or never. With a seed drawn at random, independent streams
// would fail each row with probability 4e-7 at the most.
#include <cmath>
#include <functional>
#include <gsl/gsl_cdf.h>

#include "tests/streams/stream.h"

namespace {

using namespace qkr::tests;

// How plausible the first numbers of some streams are, as tails of independent ones: the mean over the
// streams of each of the first numbers, and the products of successive streams.
struct Tails {
  double means, products;
};
Tails tails_of_starts(uint32_t members, const std::function<Stream(uint32_t)> &make) {
  constexpr int numbers = 64;
  std::vector<std::vector<double>> u;
  for (uint32_t k = 0; k < members; ++k)
    u.push_back(draw_doubles(make(k), numbers, -std::sqrt(3), std::sqrt(3)));
  double squares = 0, products = 0;
  for (int j = 0; j < numbers; ++j) {
    double sum = 0;
    for (uint32_t k = 0; k < members; ++k) sum += u[k][j];
    for (uint32_t k = 1; k < members; ++k) products += u[k][j] * u[k - 1][j];
    squares += sum * sum / members;
  }
  return {gsl_cdf_chisq_Q(squares, numbers),
          gsl_cdf_ugaussian_Q(products / std::sqrt((members - 1.0) * numbers))};
}

TEST(SeedWords, StreamsAreNotCorrelatedAtTheirStart) {
  using Make = std::function<Stream(uint32_t)>;
  const auto by_hash = [](uint32_t id, uint32_t step, int32_t words) {
    return [=](uint32_t k) {
      Words seeds(static_cast<size_t>(words));
      __vxsSeedWords(2026, k, words, seeds.data());
      return new_stream(id + step * k, seeds);
    };
  };
  const Make by_seed_and_member = [](uint32_t k) { return new_stream(0x900000 + k, {777, k}); };
  // What the words are for: the same seed in all members, and seeds that follow each other.
  const Make mt2203_of_one_seed = [](uint32_t k) { return new_stream(0x900000 + k, {777}); };
  const Make wh_of_one_seed = [](uint32_t k) { return new_stream(0x500000 + k, Words(4, 777)); };
  const Make by_small_seeds = [](uint32_t k) { return new_stream(0x100000, {k + 1}); };
  constexpr double smallest = 1e-7;
  const struct {
    const char *what;
    uint32_t members;
    Make make;
    bool plausible = true;
  } rows[] = {{"MCG31M1", 1024, by_hash(0x100000, 0, 1)},
              {"R250", 1024, by_hash(0x200000, 0, 250)},
              {"MRG32K3A", 1024, by_hash(0x300000, 0, 6)},
              {"MCG59", 1024, by_hash(0x400000, 0, 2)},
              {"WH, one member", 1024, by_hash(0x500000, 0, 4)},
              {"WH, all members", 273, by_hash(0x500000, 1, 4)},
              {"MT19937", 1024, by_hash(0x800000, 0, 4)},
              {"MT2203, one member", 1024, by_hash(0x900000, 0, 4)},
              {"MT2203, all members", 1024, by_hash(0x900000, 1, 4)},
              {"MT2203, seed and member", 1024, by_seed_and_member},
              {"MT2203, one seed", 1024, mt2203_of_one_seed, false},
              {"WH, one seed", 273, wh_of_one_seed, false},
              {"MCG31M1, small seeds", 1024, by_small_seeds, false}};
  for (const auto &row : rows) {
    const Tails tails = tails_of_starts(row.members, row.make);
    const auto is_plausible = [](double tail) { return tail > smallest && tail < 1 - smallest; };
    EXPECT_EQ(is_plausible(tails.means) && is_plausible(tails.products), row.plausible)
        << row.what << ": " << tails.means << ", " << tails.products;
  }
}

}  // namespace
