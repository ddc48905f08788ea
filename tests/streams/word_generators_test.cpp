// R250, MRG32K3A, MT19937, MT2203: published numbers, seeding, states that only a file could bring, and the
// matrices behind skip-ahead.
#include <algorithm>
#include <qkr/streams_generators.h>
#include <random>

#include "streams/tables/tables.h"
#include "tests/streams/stream.h"
#include "tests/support/levels.h"

namespace {

using namespace qkr;
using namespace qkr::tests;

using Words = std::vector<uint32_t>;
constexpr uint32_t r250 = 0x200000, mrg32k3a = 0x300000, mt19937 = 0x800000, mt2203 = 0x900000;

// The running state as words: all four generators keep nothing else.
uint32_t *state(const Stream &stream) { return reinterpret_cast<uint32_t *>(stream.get() + 1); }

Words random_words(size_t n) {
  std::mt19937 random(91);
  Words words(n);
  for (uint32_t &word : words) word = static_cast<uint32_t>(random());
  return words;
}

// mt19937ar.out of M. Matsumoto and T. Nishimura; the 10000th number is that of the C++ standard, whose state
// is filled by a rule of its own from 5489.
TEST(WordGenerators, Mt19937GivesThePublishedNumbers) {
  EXPECT_EQ(draw_words(new_stream(mt19937, {0x123, 0x234, 0x345, 0x456}), 5),
            (Words{1067595299, 955945823, 477289528, 4107218783, 4228976476}));
  const Stream stream = new_stream(mt19937, {});
  uint32_t *mt = state(stream);
  mt[0] = 5489;
  for (uint32_t i = 1; i < 624; ++i) mt[i] = 1812433253 * (mt[i - 1] ^ mt[i - 1] >> 30) + i;
  EXPECT_EQ(draw_words(stream, 10000).back(), 4123659995);
}

// P. L'Ecuyer gives the sum of ten million reals from six seeds of 12345 as 5001090.95.
TEST(WordGenerators, Mrg32k3aGivesThePublishedSum) {
  const Stream stream = new_stream(mrg32k3a, Words(6, 12345));
  double sum = 0;
  for (int block = 0; block < 100; ++block) {
    for (double real : draw_doubles(stream, 100000)) sum += real;
  }
  EXPECT_NEAR(sum, 5001090.95, 0.005);
}

TEST(WordGenerators, SeedsThatMeanTheSame) {
  const struct {
    uint32_t id;
    Words seeds, same;
  } cases[] = {
      {r250, {}, {1}},
      {r250, {0}, {1}},
      {r250, Words(249, 8), {8}},
      {mrg32k3a, {}, {1, 1, 1, 1, 1, 1}},
      {mrg32k3a, {3, 4}, {3, 4, 1, 1, 1, 1}},
      {mrg32k3a, {0, 0, 0, 0, 0, 0}, {1, 0, 0, 1, 0, 0}},
      {mrg32k3a, {4294967087, 5, 6, 4294944443, 7, 8, 9}, {0, 5, 6, 0, 7, 8}},
      {mrg32k3a, {0xffffffff, 5, 6, 0xffffffff, 7, 8}, {208, 5, 6, 22852, 7, 8}},
      {mt19937, {}, {1}},
      {mt2203 + 1023, {}, {1}},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(draw_words(new_stream(c.id, c.seeds), 300), draw_words(new_stream(c.id, c.same), 300))
        << std::hex << c.id << ", " << c.seeds.size() << " seeds";
  }
}

TEST(WordGenerators, R250TakesAWholeRegister) {
  const Words exact = random_words(251);
  EXPECT_TRUE(std::equal(exact.begin(), exact.end() - 1, state(new_stream(r250, exact))));
  EXPECT_EQ(draw_words(new_stream(r250, Words(250, 0)), 500), Words(500, 0));
}

TEST(WordGenerators, TwistersUseAllSeedsAndBeginSpent) {
  for (const auto &[id, words] : {std::pair{mt19937, 624u}, std::pair{mt2203, 69u}}) {
    Words seeds = random_words(700);
    const Stream stream = new_stream(id, seeds);
    EXPECT_EQ(state(stream)[0], 0x80000000);
    EXPECT_EQ(state(stream)[words], words) << "index";
    seeds.back() ^= 1;
    EXPECT_NE(draw_words(stream, 50), draw_words(new_stream(id, seeds), 50));
  }
}

TEST(WordGenerators, Mt2203MembersHaveTheirParameters) {
  for (uint32_t member : {0u, 5u, 1023u}) {
    EXPECT_EQ(memcmp(state(new_stream(mt2203 + member, {1})) + 70, mt2203::parameters[member], 12), 0)
        << member;
  }
  EXPECT_NE(draw_words(new_stream(mt2203, {1}), 1), draw_words(new_stream(mt2203 + 1, {1}), 1));
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
    std::generate_n(state(stream), 6, [&] { return words[random() % 6]; });
    expect_same_in_one_draw(stream, 300);
  }
}

// Indices closer together than a vector is wide.
TEST(WordGenerators, R250WithOtherDistances) {
  for (uint32_t i1 : {0, 1, 4, 10, 19, 20, 21, 30, 249}) {
    const Stream stream = new_stream(r250, {5});
    state(stream)[250] = 20;
    state(stream)[251] = i1;
    expect_same_in_one_draw(stream, 1000);
  }
}

TEST(ModularMatrix, ProductsAndPowers) {
  constexpr uint32_t m = 4294967087, most = m - 1;
  uint32_t a[9] = {most, most, most, 2, 0, most, 1, most, 7}, square[9], cube[9], power[9];
  __vxsiMatr3x3MulMod(a, a, square, m);
  // (-1)(-1) + (-1) 2 + (-1) 1 = -2 and (-1)(-1) + (-1) 0 + (-1)(-1) = 2.
  EXPECT_EQ(square[0], m - 2);
  EXPECT_EQ(square[1], 2u);
  __vxsiMatr3x3MulMod(a, square, cube, m);
  uint32_t column[3] = {square[2], square[5], square[8]};
  __vxsiMatr3x3VectMulMod(a, column, column, m);
  EXPECT_EQ((Words{column, column + 3}), (Words{cube[2], cube[5], cube[8]}));
  uint32_t consumed[9];
  memcpy(consumed, a, sizeof a);
  __vxsiMatr3x3PowMod(consumed, power, m, 3);
  EXPECT_EQ(memcmp(power, cube, sizeof cube), 0);
  __vxsiMatr3x3MulMod(a, a, a, m);
  EXPECT_EQ(memcmp(a, square, sizeof square), 0) << "in place";
  __vxsiMatr3x3PowMod(a, power, m, 0);
  EXPECT_EQ((Words{power, power + 9}), (Words{1, 0, 0, 0, 1, 0, 0, 0, 1}));
}

// z[n] = 2 z[n-1] + 3 z[n-2] + 5 z[n-3] from 1, 1, 1: 10, 28, 91, 316.
TEST(ModularMatrix, AdvancesASequence) {
  const uint32_t coefficients[3] = {2, 3, 5};
  uint32_t z[3] = {1, 1, 1};
  __vxsiVect3PowMod(z, coefficients, 101, 4);
  EXPECT_EQ((Words{z, z + 3}), (Words{28, 91, 316 % 101}));
}

}  // namespace
