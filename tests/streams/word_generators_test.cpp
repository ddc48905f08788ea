// Published numbers, seeds, states that only a file could bring, and the matrices behind skip-ahead.
#include <algorithm>
#include <array>
#include <qkr/streams_generators.h>
#include <random>

#include "tests/streams/stream.h"
#include "tests/support/levels.h"

namespace {

using namespace qkr;
using namespace qkr::tests;

constexpr uint32_t mcg31m1 = 0x100000, r250 = 0x200000, mrg32k3a = 0x300000, mcg59 = 0x400000, wh = 0x500000,
                   mt19937 = 0x800000, mt2203 = 0x900000;

// The running state as words.
uint32_t *state(const Stream &stream) { return reinterpret_cast<uint32_t *>(stream.get() + 1); }

Words random_words(size_t n) {
  std::mt19937 random(91);
  Words words(n);
  std::generate(words.begin(), words.end(), random);
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
  for (int block = 0; block < 100; ++block)
    for (double real : draw_doubles(stream, 100000)) sum += real;
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

// The answers that the authors' Random123 lists for philox4x32 with ten rounds, as key and counter.
TEST(WordGenerators, PhiloxGivesThePublishedNumbers) {
  constexpr uint32_t all = 0xffffffff;
  const auto id = static_cast<uint32_t>(qkr_philox());
  ASSERT_EQ(qkr_philox(), static_cast<int32_t>(id));
  const struct {
    Words seeds, expected;
  } rows[] = {{{}, {0x6627e8d5, 0xe169c58d, 0xbc57ac4c, 0x9b00dbd8}},
              {{all, all, all, all, all, all}, {0x408f276d, 0x41c83b0e, 0xa20bc7c6, 0x6d5451fd}},
              {{0xa4093822, 0x299f31d0, 0x243f6a88, 0x85a308d3, 0x13198a2e, 0x03707344},
               {0xd16cfe09, 0x94fdcceb, 0x5001e420, 0x24126ea1}}};
  for (const auto &row : rows) EXPECT_EQ(draw_words(new_stream(id, row.seeds), 4), row.expected);
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
              {mrg32k3a, {}, {1, 1, 1, 1, 1, 1}},
              {mrg32k3a, {3, 4}, {3, 4, 1, 1, 1, 1}},
              {mrg32k3a, {0, 0, 0, 0, 0, 0}, {1, 0, 0, 1, 0, 0}},
              {mrg32k3a, {4294967087, 5, 6, 4294944443, 7, 8, 9}, {0, 5, 6, 0, 7, 8}},
              {mrg32k3a, {top, 5, 6, top, 7, 8}, {208, 5, 6, 22852, 7, 8}},
              {mcg59, {}, {1}},
              {mcg59, {0, 0x08000000}, {1}},
              {mcg59, {7, top, 9}, {7, 0x07ffffff}},
              {wh, {}, {1, 1, 1, 1}},
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
}

TEST(WordGenerators, R250TakesAWholeRegister) {
  const Words exact = random_words(250);
  EXPECT_TRUE(std::equal(exact.begin(), exact.end(), state(new_stream(r250, exact))));
  EXPECT_EQ(draw_words(new_stream(r250, Words(250, 0)), 500), Words(500, 0));
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
  using Matrix = std::array<uint32_t, 9>;
  constexpr uint32_t modulus = 4294967087, most = modulus - 1;
  Matrix matrix = {most, most, most, 2, 0, most, 1, most, 7}, square, cube, power, consumed = matrix;
  __vxsiMatr3x3MulMod(matrix.data(), matrix.data(), square.data(), modulus);
  // (-1)(-1) + (-1) 2 + (-1) 1 = -2 and (-1)(-1) + (-1) 0 + (-1)(-1) = 2.
  EXPECT_EQ(square[0], modulus - 2);
  EXPECT_EQ(square[1], 2u);
  __vxsiMatr3x3MulMod(matrix.data(), square.data(), cube.data(), modulus);
  __vxsiMatr3x3PowMod(consumed.data(), power.data(), modulus, 3);
  EXPECT_EQ(power, cube);
  uint32_t column[3] = {square[2], square[5], square[8]};
  __vxsiMatr3x3VectMulMod(matrix.data(), column, column, modulus);
  EXPECT_EQ((Words{column, column + 3}), (Words{cube[2], cube[5], cube[8]}));
  __vxsiMatr3x3MulMod(matrix.data(), matrix.data(), matrix.data(), modulus);
  EXPECT_EQ(matrix, square) << "in place";
  __vxsiMatr3x3PowMod(matrix.data(), power.data(), modulus, 0);
  EXPECT_EQ(power, (Matrix{1, 0, 0, 0, 1, 0, 0, 0, 1}));
}

// z[n] = 2 z[n-1] + 3 z[n-2] + 5 z[n-3] from 1, 1, 1: 10, 28, 91, 316.
TEST(ModularMatrix, AdvancesASequence) {
  const uint32_t coefficients[3] = {2, 3, 5};
  uint32_t z[3] = {1, 1, 1};
  __vxsiVect3PowMod(z, coefficients, 101, 4);
  EXPECT_EQ((Words{z, z + 3}), (Words{28, 91, 316 % 101}));
}

}  // namespace
