// Published numbers, seeds, and the table of MT2203.
#include <algorithm>
#include <qkr/streams_generators.h>
#include <random>
#include <set>

#include "streams/tables/tables.h"
#include "tests/streams/stream.h"
#include "tests/support/samples.h"
#include "tools/tables/mt2203/equidistribution.h"

namespace {

using namespace qkr::tests;

constexpr uint32_t mcg31m1 = 0x100000, r250 = 0x200000, mrg32k3a = 0x300000, mcg59 = 0x400000, wh = 0x500000,
                   mt19937 = 0x800000, mt2203 = 0x900000;

// mt19937ar.out of M. Matsumoto and T. Nishimura.
TEST(WordGenerators, TwistersAreSeededAsPublished) {
  EXPECT_EQ(draw_words(new_stream(mt19937, {0x123, 0x234, 0x345, 0x456}), 5),
            (Words{1067595299, 955945823, 477289528, 4107218783, 4228976476}));
}

// An irreducible characteristic polynomial of degree 2203 is primitive: the period is 2^2203 - 1. Of the
// defects of equidistribution, the given rows have 699 to 711, random masks about 2900. The search for the
// rows takes too long to be run again.
TEST(Mt2203Table, HasFullPeriodsAndEquidistributedBits) {
  const int every = __builtin_cpu_supports("pclmul") ? 1 : 64;  // 3 ms each, or 40 ms without the instruction
  std::set<uint32_t> different;
  for (int member = 0; member < qkr::mt2203::members; ++member) {
    const auto &[twist, mask_b, mask_c] = qkr::mt2203::parameters[member];
    EXPECT_TRUE(different.insert(twist).second) << member;
    EXPECT_TRUE(member % every != 0 || ::mt2203::irreducible(twist)) << member;
    EXPECT_TRUE(member % 33 != 0 || ::mt2203::Equidistribution({twist, mask_b, mask_c}).defect() <= 716)
        << member;
  }
}

// The hash in the terms of SplitMix64, of which the first number from 1234567 is published.
TEST(SeedWords, AreThoseOfSplitMix64) {
  EXPECT_EQ(Random{1234567}(), 6457827717110365317u);
  for (const uint64_t seed : {uint64_t{0}, uint64_t{777}, ~uint64_t{0}})
    for (const uint64_t index : {uint64_t{0}, uint64_t{5}, ~uint64_t{0}}) {
      Random start = {seed};
      start.state = start() + index * 0x9e3779b97f4a7c15;
      start.state = start();
      const uint64_t words[] = {start(), start()};
      uint32_t found[4] = {0, 0, 0, 7};
      __vxsSeedWords(seed, index, 3, found);
      EXPECT_EQ(memcmp(found, words, 3 * sizeof *found), 0) << seed << ", " << index;
      EXPECT_EQ(found[3], 7u);
    }
  __vxsSeedWords(1, 2, -1, nullptr);
}

TEST(Generators, SeedsThatMeanTheSame) {
  constexpr uint32_t top = 0xffffffff;
  const struct {
    uint32_t id;
    Words seeds, same;
  } rows[] = {{mcg31m1, {}, {1}},
              {mcg31m1, {0}, {1}},
              {mcg31m1, {top}, {1}},
              {mcg31m1, {0x80000001, 5}, {2}},
              {r250, {}, {1}},
              {r250, {0}, {1}},
              {r250, Words(249, 8), {8}},
              {mrg32k3a, {3, 4}, {3, 4, 1, 1, 1, 1}},
              {mrg32k3a, {0, 0, 0, 0, 0, 0}, {1, 0, 0, 1, 0, 0}},
              {mrg32k3a, {4294967087, 5, 6, 4294944443, 7, 8, 9}, {0, 5, 6, 0, 7, 8}},
              {mrg32k3a, {top, 5, 6, top, 7, 8}, {208, 5, 6, 22852, 7, 8}},
              {mcg59, {0, 0x08000000}, {1}},
              {mcg59, {7, top, 9}, {7, 0x07ffffff}},
              {wh, {5}, {5, 1, 1, 1}},
              {wh, {16770647, 16770644, 0, top, 8}, {1, 1, 1, top % 16770617}},
              {mt19937, {}, {1}},
              {mt2203 + 1023, {}, {1}},
              {static_cast<uint32_t>(qkr_philox()), {1, 2}, {1, 2, 0, 0, 0, 0}}};
  for (const auto &[id, seeds, same] : rows)
    EXPECT_EQ(draw_words(new_stream(id, seeds), 300), draw_words(new_stream(id, same), 300))
        << std::hex << id << ", " << seeds.size() << " seeds";
  const Words seeds = {2, 3, 4, 5};
  const Stream stream = made([&](auto out) { return __vxsNewStreamEx(out, wh, -1, seeds.data()); });
  EXPECT_EQ(draw_words(stream, 1), seeds) << "a negative count means all four";
  // 250 seeds are the register itself.
  Words exact(250);
  std::generate(exact.begin(), exact.end(), std::mt19937(91));
  EXPECT_TRUE(std::equal(exact.begin(), exact.end(), state_words(new_stream(r250, exact))));
}

}  // namespace
