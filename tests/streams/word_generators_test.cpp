// R250, MRG32K3A, MT19937, MT2203: seeding, statuses, published outputs, and the same numbers and states as
// one step at a time at every vector width, however the draws are split.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <qkr/streams_generators.h>
#include <random>
#include <vector>

#include "streams/tables/tables.h"
#include "tests/streams/one_step.h"
#include "tests/support/levels.h"

namespace {

using Words = std::vector<uint32_t>;

enum Id : uint32_t { r250 = 0x200000, mrg32k3a = 0x300000, mt19937 = 0x800000, mt2203 = 0x900000 };

struct Delete {
  void operator()(StreamState *stream) const { __vxsDeleteStream(&stream); }
};
using Stream = std::unique_ptr<StreamState, Delete>;

Stream new_stream(uint32_t id, const Words &seeds) {
  StreamState *stream = nullptr;
  EXPECT_EQ(__vxsNewStreamEx(&stream, id, (int32_t)seeds.size(), seeds.data()), VXS_STATUS_OK);
  return Stream(stream);
}

template <class State>
State &state_of(const Stream &stream) {
  return *reinterpret_cast<State *>(stream.get() + 1);
}

template <class State>
bool same_state(const Stream &stream, const State &expected) {
  return memcmp(stream.get() + 1, &expected, sizeof expected) == 0;
}

BrngRecord row_of(const Stream &stream) {
  BrngRecord row;
  EXPECT_EQ(__vxsGetBrngProperties((int32_t)stream->brng, &row), VXS_STATUS_OK);
  return row;
}

Words draw(const Stream &stream, int32_t n) {
  Words words(n);
  EXPECT_EQ(row_of(stream).iBrng(stream.get(), n, words.data()), VXS_STATUS_OK);
  return words;
}

Words seed_words(size_t n) {
  std::mt19937 random(91);
  Words words(n);
  for (uint32_t &word : words) word = (uint32_t)random();
  return words;
}

template <class State>
void expect_one_step_at_a_time(Id id, const Stream &start) {
  constexpr double a = -1.7, b = 3.3;
  constexpr float fa = -1.7f, fb = 3.3f;
  const double width_of_singles = id == mt2203 ? (double)(fb - fa) : (double)fb - (double)fa;
  qkr::tests::for_each_level([&](const char *) {
    std::mt19937 random(3);
    const Stream stream = new_stream(start->brng, {});
    state_of<State>(stream) = state_of<State>(start);
    State reference = state_of<State>(start);
    const BrngRecord row = row_of(stream);
    const auto numbers = [&](auto entry, auto number) {
      using Number = decltype(number());
      for (int draws = 0; draws < 500; ++draws) {
        const int32_t n = (int32_t)(random() % (draws % 3 == 0 ? 40 : draws % 20 == 1 ? 4000 : 800));
        std::vector<Number> actual(n + 1, Number(7)), expected(n + 1, Number(7));
        ASSERT_EQ(entry(n, actual.data()), VXS_STATUS_OK);
        for (int32_t i = 0; i < n; ++i) expected[i] = number();
        ASSERT_EQ(memcmp(actual.data(), expected.data(), (n + 1) * sizeof(Number)), 0) << n;
        ASSERT_TRUE(same_state(stream, reference)) << n;
      }
    };
    numbers([&](int32_t n, uint32_t *out) { return row.iBrng(stream.get(), n, out); },
            [&] { return reference(); });
    const double scale = (b - a) / State::modulus, scale_of_singles = width_of_singles / State::modulus;
    numbers([&](int32_t n, double *out) { return row.dBrng(stream.get(), n, out, a, b); },
            [&] { return reference() * scale + a; });
    numbers([&](int32_t n, float *out) { return row.sBrng(stream.get(), n, out, fa, fb); },
            [&] { return (float)(reference() * scale_of_singles + (double)fa); });
  });
}

TEST(WordGenerators, EqualOneStepAtATime) {
  expect_one_step_at_a_time<one_step::R250>(r250, new_stream(r250, seed_words(250)));
  expect_one_step_at_a_time<one_step::Mrg32k3a>(mrg32k3a, new_stream(mrg32k3a, seed_words(6)));
  expect_one_step_at_a_time<one_step::Mt19937>(mt19937, new_stream(mt19937, seed_words(4)));
  for (uint32_t member : {0u, 500u, 1023u}) {
    expect_one_step_at_a_time<one_step::Mt2203>(mt2203, new_stream(mt2203 + member, seed_words(4)));
  }
}

// Residues at the ends of their range, and words that a file could bring though no seed does.
TEST(WordGenerators, Mrg32k3aFromExtremeStates) {
  constexpr uint32_t words[] = {0, 1, 4294967086, 4294944442, 0x7fffff98, 0xffffffff};
  std::mt19937 random(5);
  for (int trial = 0; trial < 60; ++trial) {
    const Stream stream = new_stream(mrg32k3a, {});
    for (uint32_t &word : state_of<one_step::Mrg32k3a>(stream).x) word = words[random() % 6];
    for (uint32_t &word : state_of<one_step::Mrg32k3a>(stream).y) word = words[random() % 6];
    one_step::Mrg32k3a reference = state_of<one_step::Mrg32k3a>(stream);
    qkr::tests::for_each_level([&](const char *) {
      for (uint32_t word : draw(stream, 300)) ASSERT_EQ(word, reference());
      ASSERT_TRUE(same_state(stream, reference));
    });
  }
}

// Indices that only a file could bring: closer together than a vector is wide.
TEST(WordGenerators, R250WithOtherDistances) {
  qkr::tests::for_each_level([&](const char *) {
    for (int32_t i1 : {0, 1, 2, 10, 20, 30, 249}) {
      const Stream stream = new_stream(r250, {5});
      state_of<one_step::R250>(stream).i0 = 20;
      state_of<one_step::R250>(stream).i1 = i1;
      one_step::R250 reference = state_of<one_step::R250>(stream);
      for (uint32_t word : draw(stream, 1000)) ASSERT_EQ(word, reference()) << i1;
      ASSERT_TRUE(same_state(stream, reference)) << i1;
    }
  });
}

// mt19937ar.out of M. Matsumoto and T. Nishimura; the 10000th number is that of the C++ standard, from a
// state filled by its own rule from 5489.
TEST(WordGenerators, Mt19937GivesThePublishedNumbers) {
  EXPECT_EQ(draw(new_stream(mt19937, {0x123, 0x234, 0x345, 0x456}), 5),
            (Words{1067595299, 955945823, 477289528, 4107218783, 4228976476}));
  const Stream stream = new_stream(mt19937, {});
  uint32_t(&mt)[624] = state_of<one_step::Mt19937>(stream).mt;
  mt[0] = 5489;
  for (uint32_t i = 1; i < 624; ++i) mt[i] = 1812433253 * (mt[i - 1] ^ mt[i - 1] >> 30) + i;
  EXPECT_EQ(draw(stream, 10000).back(), 4123659995);
}

// From six seeds of 12345 the sum of 10^7 reals is 5001090.95 (P. L'Ecuyer, 1999).
TEST(WordGenerators, Mrg32k3aGivesThePublishedSum) {
  const Stream stream = new_stream(mrg32k3a, Words(6, 12345));
  std::vector<double> reals(100000);
  double sum = 0;
  for (int block = 0; block < 100; ++block) {
    __vxsdBRngMRG32K3A(stream.get(), (int32_t)reals.size(), reals.data(), 0, 1);
    for (double real : reals) sum += real;
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
      {mt2203, {}, {1}},
      {mt2203 + 1023, {}, {1}},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(draw(new_stream(c.id, c.seeds), 300), draw(new_stream(c.id, c.same), 300)) << std::hex << c.id;
  }
}

TEST(WordGenerators, SeedingSetsTheState) {
  const Words exact = seed_words(250);
  const Stream literal = new_stream(r250, exact);
  EXPECT_TRUE(std::equal(exact.begin(), exact.end(), state_of<one_step::R250>(literal).s));
  EXPECT_EQ(draw(new_stream(r250, Words(250, 0)), 500), Words(500, 0));

  const Stream filled = new_stream(r250, {8});
  const auto &register_ = state_of<one_step::R250>(filled);
  EXPECT_EQ(register_.s[0], 8u * 69069u);
  EXPECT_EQ(register_.s[3] >> 31, 1u);
  EXPECT_EQ(register_.s[3 + 7 * 31], 1u) << "the tip of the triangle";
  EXPECT_EQ(register_.i1, 103);

  // All seed words count, also beyond the size of the state.
  for (uint32_t id : {+mt19937, +mt2203}) {
    Words seeds = seed_words(700);
    const Words before = draw(new_stream(id, seeds), 50);
    seeds.back() ^= 1;
    EXPECT_NE(draw(new_stream(id, seeds), 50), before);
  }
  const Stream member = new_stream(mt2203 + 5, {1});
  const auto &twister = state_of<one_step::Mt2203>(member);
  EXPECT_EQ(twister.index, 69);
  EXPECT_EQ(twister.mt[0], 0x80000000);
  EXPECT_EQ(memcmp(&twister.matrix, _vxs_mt2203_table[5], 12), 0);
  EXPECT_EQ(state_of<one_step::Mt19937>(new_stream(mt19937, {1})).index, 624);
}

TEST(WordGenerators, Statuses) {
  const struct {
    uint32_t id;
    int32_t leapfrog, skip_ahead;
  } cases[] = {{r250, VXS_STATUS_NO_LEAPFROG, VXS_STATUS_NO_SKIP_AHEAD},
               {mrg32k3a, VXS_STATUS_NO_LEAPFROG, VXS_STATUS_OK},
               {mt19937, VXS_STATUS_NO_LEAPFROG, VXS_STATUS_NO_SKIP_AHEAD},
               {mt2203, VXS_STATUS_NO_LEAPFROG, VXS_STATUS_NO_SKIP_AHEAD}};
  const int32_t index = 0;
  for (const auto &c : cases) {
    const Stream stream = new_stream(c.id, {1});
    const BrngRecord row = row_of(stream);
    EXPECT_EQ(row.InitStream(VXS_INIT_LEAPFROG, stream.get(), 2, &index), c.leapfrog);
    EXPECT_EQ(row.InitStream(VXS_INIT_SKIP_AHEAD, stream.get(), 2, nullptr), c.skip_ahead);
    for (int32_t method : {3, -1}) {
      EXPECT_EQ(row.InitStream(method, stream.get(), 2, &index), VXS_STATUS_BAD_METHOD);
    }
  }
  StreamState *none = nullptr;
  EXPECT_EQ(__vxsNewStreamEx(&none, mt2203 + 1024, 0, nullptr), VXS_STATUS_BAD_GENERATOR);
}

TEST(WordGenerators, Mrg32k3aSkipsAhead) {
  constexpr int32_t length = 1000000;
  const Words seeds = seed_words(6), plain = draw(new_stream(mrg32k3a, seeds), length + 1);
  for (int32_t count : {0, 1, 2, 57, 4096, 65537, 999999, length}) {
    const Stream stream = new_stream(mrg32k3a, seeds);
    EXPECT_EQ(__vxsBRngMRG32K3AInitStream(VXS_INIT_SKIP_AHEAD, stream.get(), count, nullptr), VXS_STATUS_OK);
    EXPECT_EQ(draw(stream, 1)[0], plain[count]) << count;
  }
  // The longest skip, against halves of it.
  const Stream whole = new_stream(mrg32k3a, seeds), halves = new_stream(mrg32k3a, seeds);
  for (int32_t count : {0x3fffffff, 0x3fffffff, 1}) {
    __vxsBRngMRG32K3AInitStream(VXS_INIT_SKIP_AHEAD, halves.get(), count, nullptr);
  }
  __vxsBRngMRG32K3AInitStream(VXS_INIT_SKIP_AHEAD, whole.get(), 0x7fffffff, nullptr);
  EXPECT_TRUE(same_state(whole, state_of<one_step::Mrg32k3a>(halves)));
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
  EXPECT_EQ(column[1], cube[5]);
  uint32_t consumed[9];
  memcpy(consumed, a, sizeof a);
  __vxsiMatr3x3PowMod(consumed, power, m, 3);
  EXPECT_EQ(memcmp(power, cube, sizeof cube), 0);
  __vxsiMatr3x3MulMod(a, a, a, m);
  EXPECT_EQ(memcmp(a, square, sizeof square), 0) << "in place";
  __vxsiMatr3x3PowMod(a, power, m, 0);
  EXPECT_EQ((Words{power, power + 9}), (Words{1, 0, 0, 0, 1, 0, 0, 0, 1}));
}

}  // namespace
