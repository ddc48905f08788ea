// Published numbers, seeds, and states that only a file could bring.
#include <algorithm>
#include <qkr/streams_generators.h>
#include <random>

#include "tests/streams/stream.h"
#include "tests/support/levels.h"

namespace {

using namespace qkr::tests;

constexpr uint32_t mcg31m1 = 0x100000, r250 = 0x200000, mrg32k3a = 0x300000, mcg59 = 0x400000, wh = 0x500000,
                   mt19937 = 0x800000, mt2203 = 0x900000;

// mt19937ar.out of M. Matsumoto and T. Nishimura, and the answers that the authors' Random123 lists for
// philox4x32 with ten rounds, as key and counter.
TEST(WordGenerators, GiveThePublishedNumbers) {
  EXPECT_EQ(draw_words(new_stream(mt19937, {0x123, 0x234, 0x345, 0x456}), 5),
            (Words{1067595299, 955945823, 477289528, 4107218783, 4228976476}));
  const auto philox = static_cast<uint32_t>(qkr_philox());
  EXPECT_EQ(draw_words(new_stream(philox, {}), 4), (Words{0x6627e8d5, 0xe169c58d, 0xbc57ac4c, 0x9b00dbd8}));
  EXPECT_EQ(draw_words(new_stream(philox, Words(6, ~0u)), 4),
            (Words{0x408f276d, 0x41c83b0e, 0xa20bc7c6, 0x6d5451fd}));
  EXPECT_EQ(
      draw_words(new_stream(philox, {0xa4093822, 0x299f31d0, 0x243f6a88, 0x85a308d3, 0x13198a2e, 0x03707344}),
                 4),
      (Words{0xd16cfe09, 0x94fdcceb, 0x5001e420, 0x24126ea1}));
}

// P. L'Ecuyer gives the sum of ten million reals from six seeds of 12345 as 5001090.95.
TEST(WordGenerators, Mrg32k3aGivesThePublishedSum) {
  const Stream stream = new_stream(mrg32k3a, Words(6, 12345));
  double sum = 0;
  for (int block = 0; block < 100; ++block)
    for (const double real : draw_doubles(stream, 100000)) sum += real;
  EXPECT_NEAR(sum, 5001090.95, 0.005);
}

// SplitMix64 by its published first numbers from 1234567, then the hash in its terms.
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
      const uint64_t words[] = {next(state), next(state)};
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
              {mcg31m1, {0x7fffffff}, {1}},
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
              {mt2203 + 1023, {}, {1}}};
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

// Short draws take one step at a time, long ones go by vectors.
void expect_same_in_one_draw(const Stream &stream, int32_t n) {
  for_each_level([&](const char *level) {
    const Stream stepwise = copy_of(stream), at_once = copy_of(stream);
    Words expected;
    for (int32_t i = 0; i < n; ++i) expected.push_back(draw_words(stepwise, 1)[0]);
    ASSERT_EQ(draw_words(at_once, n), expected) << level;
    ASSERT_EQ(payload(at_once), payload(stepwise)) << level;
  });
}

// Residues at the ends of their range, and words above the moduli.
TEST(WordGenerators, Mrg32k3aFromExtremeStates) {
  constexpr uint32_t words[] = {0, 1, 0x7fffff97, 4294944442, 4294967086, 0xffffffff};
  std::mt19937 random(5);
  for (int trial = 0; trial < 100; ++trial) {
    const Stream stream = new_stream(mrg32k3a, {});
    std::generate_n(state_words(stream), 6, [&] { return words[random() % 6]; });
    expect_same_in_one_draw(stream, 300);
  }
}

// Indices closer together than a vector is wide.
TEST(WordGenerators, R250WithOtherDistances) {
  for (const uint32_t i1 : {0, 1, 4, 10, 19, 20, 21, 30, 249}) {
    const Stream stream = new_stream(r250, {5});
    state_words(stream)[250] = 20;
    state_words(stream)[251] = i1;
    expect_same_in_one_draw(stream, 1000);
  }
}

}  // namespace
