// Sobol's and Niederreiter's sequences: against GSL, by user arrays, split and moved, at every vector width.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <gsl/gsl_qrng.h>
#include <gtest/gtest.h>
#include <memory>
#include <numeric>
#include <random>
#include <unistd.h>
#include <vector>

#include "streams/quasi/digital_sequence.h"
#include "streams/tables/tables.h"
#include "tests/streams/allocations.h"
#include "tests/streams/stream.h"
#include "tests/support/levels.h"

namespace {

using namespace qkr;
using namespace qkr::tests;
using Words = std::vector<uint32_t>;

constexpr uint32_t kSobol = 0x600000, kNiederreiter = 0x700000;
constexpr int32_t kOneDimension = 0x7fffffff;

int32_t status_of_new_stream(uint32_t id, const Words &params) {
  StreamState *stream = nullptr;
  const int32_t status = __vxsNewStreamEx(&stream, id, static_cast<int32_t>(params.size()), params.data());
  if (stream) __vxsDeleteStream(&stream);
  return status;
}

SequencePosition &position(const Stream &s) { return payload_of<SequencePosition>(s.get()); }

int32_t leapfrog(const Stream &s, int32_t stride, int32_t k) {
  return __vxsLeapfrogStream(s.get(), k, stride);
}
int32_t skip(const Stream &s, int32_t count) { return __vxsSkipAheadStream(s.get(), count); }

Sequence sequence(const Stream &s) {
  return s->brng == kSobol ? sequence_of<Sobol>(s.get()) : sequence_of<Niederreiter>(s.get());
}

// The definition: one word, then the step to the next point where it was the last.
uint32_t next_word(const Sequence &s) {
  SequencePosition &at = *s.position;
  const auto step = [&](int32_t j) {
    uint32_t c = 0;
    while (c < 31 && at.seq >> c & 1) ++c;
    s.x[j] ^= s.row(j)[c];
  };
  if (at.only_dim >= 0) {
    const uint32_t word = s.x[at.only_dim];
    step(at.only_dim);
    ++at.seq;
    return word;
  }
  if (at.pending == 0) at.pending = at.dim;
  const uint32_t word = s.x[at.dim - at.pending--];
  if (at.pending == 0) {
    for (int32_t j = 0; j < at.dim; ++j) step(j);
    ++at.seq;
  }
  return word;
}

// GSL keeps fewer bits, and Niederreiter's sequence begins with the origin there.
TEST(QuasiRandom, SameAsGsl) {
  const struct {
    uint32_t id, dim;
    const gsl_qrng_type *type;
    int bits, points_before;
  } rows[] = {
      {kSobol, 40, gsl_qrng_sobol, 30, 0},
      {kSobol, 7, gsl_qrng_sobol, 30, 0},
      {kNiederreiter, 12, gsl_qrng_niederreiter_2, 31, 1},
      {277, 3, gsl_qrng_sobol, 30, 0},
      {278, 5, gsl_qrng_niederreiter_2, 31, 1},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(testing::Message() << row.id << ' ' << row.dim);
    const Stream ours = new_stream(row.id, {row.dim});
    gsl_qrng *theirs = gsl_qrng_alloc(row.type, row.dim);
    std::vector<double> point(row.dim);
    for (int i = 0; i < row.points_before; ++i) gsl_qrng_get(theirs, point.data());
    int different = 0;
    for (int i = 0; i < 20000; ++i) {
      gsl_qrng_get(theirs, point.data());
      const Words words = draw_words(ours, row.dim);
      for (uint32_t j = 0; j < row.dim; ++j)
        different += words[j] >> (32 - row.bits) != std::ldexp(point[j], row.bits);
    }
    gsl_qrng_free(theirs);
    EXPECT_EQ(different, 0);
  }
}

TEST(QuasiRandom, DimensionOfParameters) {
  const struct {
    uint32_t id;
    Words params;
    int32_t dim;
  } rows[] = {
      {kSobol, {}, 1},
      {kSobol, {40}, 40},
      {kSobol, {41}, 1},
      {kSobol, {0}, 1},
      {kSobol, {~0u}, 1},
      {kSobol, {~0u, 1, 1, 0}, 1},
      {kSobol, {5, 1}, 5},           // too short for an array
      {kSobol, {5, 2, 4, 0}, 5},     // not marked as one
      {kSobol, {2, 1, 5, 7, 7}, 2},  // no such kind
      {kSobol, {3, 1, 3, 7, 11, 2, 1, 1, 1}, 3},
      {kNiederreiter, {}, 1},
      {kNiederreiter, {318}, 318},
      {kNiederreiter, {319}, 1},
      {kNiederreiter, {4, 1, 1, 2, 3, 7}, 4},
      {kNiederreiter, {4, 1, 2, 2, 3, 7, 11}, 4},
  };
  for (const auto &row : rows) {
    const Stream s = new_stream(row.id, row.params);
    const Stream plain = new_stream(row.id, {static_cast<uint32_t>(row.dim)});
    EXPECT_EQ(position(s).dim, row.dim) << &row - rows;
    EXPECT_EQ(payload(s), payload(plain)) << &row - rows;
  }
  EXPECT_EQ(draw_words(new_stream(kSobol, {}), 3), (Words{0x80000000, 0xc0000000, 0x40000000}));
  EXPECT_EQ(status_of_new_stream(kSobol, {41, 1, 1, 0}), VXS_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(status_of_new_stream(kNiederreiter, {319, 2, 1}), VXS_STATUS_BAD_ARGUMENT);
}

// A user's array that repeats the tables for `dim` dimensions; beyond those of the tables, other polynomials.
Words user_array(uint32_t id, uint32_t dim, uint32_t kind) {
  Words array = {dim, 1, kind};
  if (kind == 4) {
    const uint32_t in_tables = id == kSobol ? 40 : 318;
    const Stream tables = new_stream(id, {in_tables});
    for (uint32_t j = 0; j < dim; ++j) {
      const uint32_t *row = sequence(tables).row(static_cast<int32_t>(j % in_tables));
      for (int c = 0; c < 32; ++c) array.push_back(j < in_tables ? row[c] : ~row[c]);
    }
    return array;
  }
  if (id == kNiederreiter) {
    for (uint32_t j = 0; j < dim; ++j) array.push_back(j < 318 ? niederreiter::polynomials[j] : 3053);
    return array;
  }
  const int width = 9;
  const bool all = kind == 11;
  if (all) array.push_back(2);  // the polynomial x repeats its initial value, as dimension 1 does
  if (kind != 2)
    for (uint32_t j = 0; j + 1 < dim; ++j) array.push_back(sobol::polynomials[j % 39]);
  if (kind != 1) {
    array.push_back(width);
    if (all) array.insert(array.end(), width, 1);
    for (uint32_t j = 0; j + 1 < dim; ++j) {
      array.insert(array.end(), sobol::initial_values[j % 39], sobol::initial_values[j % 39] + 8);
      array.push_back(0);
    }
  }
  return array;
}

TEST(QuasiRandom, UserArrays) {
  const struct {
    uint32_t id, kind, dim;
  } rows[] = {
      {kSobol, 1, 2},          {kSobol, 1, 40},         {kSobol, 2, 40},         {kSobol, 3, 1},
      {kSobol, 3, 40},         {kSobol, 4, 40},         {kSobol, 11, 40},        {kSobol, 3, 41},
      {kSobol, 4, 41},         {kSobol, 11, 79},        {kNiederreiter, 1, 318}, {kNiederreiter, 4, 318},
      {kNiederreiter, 1, 319}, {kNiederreiter, 4, 400},
  };
  for (const auto &[id, kind, dim] : rows) {
    SCOPED_TRACE(testing::Message() << id << ' ' << kind << ' ' << dim);
    const uint32_t tables = std::min(dim, id == kSobol ? 40u : 318u);
    Words array = user_array(id, dim, kind);
    const Stream user = new_stream(id, array), plain = new_stream(id, {tables});
    EXPECT_EQ(__vxsGetNumChunks(user.get()), dim > tables);
    ASSERT_EQ(position(user).dim, static_cast<int32_t>(dim));
    int different = 0;
    for (int p = 0; p < 300; ++p) {
      const Words ours = draw_words(user, dim), expected = draw_words(plain, tables);
      different += !std::equal(expected.begin(), expected.end(), ours.begin());
    }
    EXPECT_EQ(different, 0);
    if (dim > tables && !(id == kNiederreiter && kind == 1)) {
      const Sequence s = sequence(user);
      const uint32_t repeated = dim - tables + (kind == 3 || kind == 11);
      const uint32_t *last = s.row(static_cast<int32_t>(dim) - 1);
      const uint32_t *same = s.row(static_cast<int32_t>(repeated) - 1);
      for (int c = 0; c < 32; ++c) EXPECT_EQ(last[c], kind == 4 ? ~same[c] : same[c]);
    }
    // One word less, and it is no user array any more.
    array.pop_back();
    EXPECT_EQ(status_of_new_stream(id, array), dim > tables ? VXS_STATUS_BAD_ARGUMENT : VXS_STATUS_OK);
  }
}

TEST(QuasiRandom, FailingAllocations) {
  for (const auto &[id, dim] : {std::pair{kSobol, 41u}, {kNiederreiter, 319u}}) {
    const Words array = user_array(id, dim, 4);
    const uint32_t generator = id;  // clang 14 captures no structured bindings
    EXPECT_EQ(fail_each_allocation([&] { return status_of_new_stream(generator, array); }), 3);
  }
}

// A stream that was refused tells so at every draw.
TEST(QuasiRandom, RefusedStreamsAnswerNoNumbers) {
  for (const auto &[id, dim] : {std::pair{kSobol, 41u}, {kNiederreiter, 319u}}) {
    const Words array = {dim, 1, 1, 0};
    StreamState *made = nullptr;
    EXPECT_EQ(__vxsNewStreamEx(&made, id, 4, array.data()), VXS_STATUS_BAD_ARGUMENT);
    const Stream s(made);
    EXPECT_EQ(payload(s), std::string(payload(s).size(), 0));
    uint32_t word;
    double real;
    float single;
    EXPECT_EQ(generator_of(s).iBrng(made, 1, &word), VXS_STATUS_BAD_ARGUMENT);
    EXPECT_EQ(generator_of(s).dBrng(made, 1, &real, 0, 1), VXS_STATUS_BAD_ARGUMENT);
    EXPECT_EQ(generator_of(s).sBrng(made, 1, &single, 0, 1), VXS_STATUS_BAD_ARGUMENT);
    EXPECT_EQ(skip(s, 1), VXS_STATUS_NO_SKIP_AHEAD);
    EXPECT_EQ(leapfrog(s, kOneDimension, 0), VXS_STATUS_NO_LEAPFROG);
  }
}

// Streams of more dimensions than the record holds own their rows: a copy, and what comes from a file, go on
// when the first is gone.
TEST(QuasiRandom, LargeStreamsAreCopiedAndSaved) {
  const std::string file = testing::TempDir() + "qkr_large_" + std::to_string(getpid());
  for (const auto &[id, dim] : {std::pair{kSobol, 41u}, {kSobol, 500u}, {kNiederreiter, 319u}}) {
    Stream first = new_stream(id, user_array(id, dim, 4));
    draw_words(first, 3 * static_cast<int32_t>(dim) + 7);
    const Stream copy = copy_of(first);
    ASSERT_EQ(__vxsSaveStreamF(first.get(), file.c_str(), -1), VXS_STATUS_OK);
    StreamState *loaded = nullptr;
    ASSERT_EQ(__vxsLoadStreamF(&loaded, file.c_str()), VXS_STATUS_OK);
    const Stream second(loaded);
    const int32_t n = 100 * static_cast<int32_t>(dim);
    const Words words = draw_words(first, n);
    first.reset();
    EXPECT_EQ(draw_words(copy, n), words);
    EXPECT_EQ(draw_words(second, n), words);

    // With a chunk of another size, or without it, the file is refused.
    copy->chunks->size -= 4;
    ASSERT_EQ(__vxsSaveStreamF(copy.get(), file.c_str(), -1), VXS_STATUS_OK);
    EXPECT_EQ(__vxsLoadStreamF(&(loaded = nullptr), file.c_str()), VXS_STATUS_FILE_FORMAT);
    __vxsDeleteChunks(copy.get());
    ASSERT_EQ(__vxsSaveStreamF(copy.get(), file.c_str(), -1), VXS_STATUS_OK);
    EXPECT_EQ(__vxsLoadStreamF(&(loaded = nullptr), file.c_str()), VXS_STATUS_FILE_FORMAT);
    uint32_t word;
    EXPECT_EQ(generator_of(copy).iBrng(copy.get(), 1, &word), VXS_STATUS_BAD_ARGUMENT);
  }
  remove(file.c_str());
}

TEST(QuasiRandom, StatesMoveWhereTheyFit) {
  const struct {
    uint32_t from, from_dim, to, to_dim;
    bool fits;
  } rows[] = {{kSobol, 40, kSobol, 40, true},
              {kSobol, 41, kSobol, 41, true},
              {kSobol, 60, kSobol, 50, false},
              {kSobol, 50, kSobol, 60, false},
              {kSobol, 60, kSobol, 3, false},
              {kSobol, 3, kSobol, 60, false},
              {kSobol, 350, kNiederreiter, 350, false},
              {kNiederreiter, 350, kNiederreiter, 319, false},
              {kNiederreiter, 319, kNiederreiter, 319, true},
              {0x800000, 1, kSobol, 60, false}};
  for (const auto &row : rows) {
    SCOPED_TRACE(testing::Message() << row.from_dim << " to " << row.to_dim);
    const auto make = [](uint32_t id, uint32_t dim) {
      const bool large = (id == kSobol && dim > 40) || (id == kNiederreiter && dim > 318);
      return new_stream(id, large ? user_array(id, dim, 4) : Words{dim});
    };
    const Stream from = make(row.from, row.from_dim), to = make(row.to, row.to_dim), before = copy_of(to);
    draw_words(from, 100);
    EXPECT_EQ(__vxsCopyStreamState(to.get(), from.get()),
              row.fits ? VXS_STATUS_OK : VXS_STATUS_OTHER_GENERATOR);
    EXPECT_EQ(draw_words(to, 5000), draw_words(row.fits ? from : before, 5000));
  }
}

// The tables hold eight initial values, of which a polynomial of higher degree leaves none even.
TEST(QuasiRandom, UserPolynomialOfHighDegree) {
  const Stream s = new_stream(kSobol, {2, 1, 1, 0x80000009});
  for (int c = 0; c < 32; ++c) EXPECT_EQ(std::countr_zero(sequence(s).row(1)[c]), 31 - c);
  const Stream none = new_stream(kNiederreiter, {2, 1, 1, 1, 0});
  EXPECT_EQ(draw_words(none, 100), Words(100, 0));
}

// Blocks of random lengths, against single words by the definition: numbers, point and position.
TEST(QuasiRandom, BlocksFollowTheDefinition) {
  std::mt19937 random(20240521);
  const auto below = [&](uint32_t n) { return static_cast<int32_t>(random() % n); };
  const struct {
    uint32_t id, dim;
    bool restricted;
  } rows[] = {
      {kSobol, 1, false},          {kSobol, 2, false},          {kSobol, 3, false},
      {kSobol, 4, false},          {kSobol, 5, false},          {kSobol, 7, false},
      {kSobol, 8, false},          {kSobol, 9, false},          {kSobol, 16, false},
      {kSobol, 17, false},         {kSobol, 40, false},         {kSobol, 41, false},
      {kSobol, 60, false},         {kSobol, 13, true},          {kSobol, 41, true},
      {kNiederreiter, 3, false},   {kNiederreiter, 100, false}, {kNiederreiter, 318, false},
      {kNiederreiter, 350, false}, {kNiederreiter, 318, true},
  };
  tests::for_each_level([&](const char *level) {
    for (const auto &[id, dim, restricted] : rows) {
      SCOPED_TRACE(testing::Message() << level << ' ' << id << ' ' << dim);
      const uint32_t tables = id == kSobol ? 40 : 318;
      const Words params = dim > tables ? user_array(id, dim, 4) : Words{dim};
      const Stream ours = new_stream(id, params), plain = new_stream(id, params);
      const BrngRecord row = generator_of(ours);
      for (int round = 0; round < 60; ++round) {
        if (round % 16 == 15) {  // elsewhere; at last to where the index wraps
          const int32_t count = round < 40 ? below(1 << 30) + 1 : 0x7fffffff;
          for (const Stream *s : {&ours, &plain}) EXPECT_EQ(skip(*s, count), VXS_STATUS_OK);
          if (round > 40) position(ours).seq = position(plain).seq = 0u - 40 - random() % 40;
        }
        if (restricted && round == 10) {
          const int32_t k = below(dim);
          for (const Stream *s : {&ours, &plain}) EXPECT_EQ(leapfrog(*s, kOneDimension, k), VXS_STATUS_OK);
        }
        const int32_t n = below(round % 3 == 0 ? 40 : round % 3 == 1 ? 700 : 6 * dim + 3000);
        Words expected(n);
        for (uint32_t &word : expected) word = next_word(sequence(plain));
        int different = 0;
        if (round % 3 == 0) {
          Words words(n + 1, 77);
          row.iBrng(ours.get(), n, words.data());
          for (int i = 0; i < n; ++i) different += words[i] != expected[i];
          EXPECT_EQ(words[n], 77u);
        } else if (round % 3 == 1) {
          std::vector<double> reals(n + 1, 77);
          row.dBrng(ours.get(), n, reals.data(), -0.3, 5.1);
          for (int i = 0; i < n; ++i) different += reals[i] != expected[i] * ((5.1 - -0.3) * 0x1p-32) + -0.3;
          EXPECT_EQ(reals[n], 77);
        } else {
          std::vector<float> reals(n + 1, 77);
          const float a = -0.3f, b = 5.1f;
          row.sBrng(ours.get(), n, reals.data(), a, b);
          const double scale = static_cast<double>(b - a) * 0x1p-32;
          for (int i = 0; i < n; ++i) different += reals[i] != static_cast<float>(expected[i] * scale + a);
          EXPECT_EQ(reals[n], 77);
        }
        ASSERT_EQ(different, 0) << "round " << round << ", n " << n;
        ASSERT_EQ(payload(ours), payload(plain)) << "round " << round << ", n " << n;
        ASSERT_TRUE(std::equal(sequence(ours).x, sequence(ours).x + dim, sequence(plain).x))
            << "round " << round;
      }
    }
  });
}

TEST(QuasiRandom, SkipAheadLeavesWordsOut) {
  for (const uint32_t dim : {1u, 2u, 5u, 41u}) {
    const Words params = dim == 41 ? user_array(kSobol, dim, 4) : Words{dim};
    const Words all = draw_words(new_stream(kSobol, params), 1000);
    for (const size_t before : {0, 1, 3, 41})
      for (const size_t count : {1, 2, 3, 4, 5, 37, 82, 800}) {
        const Stream s = new_stream(kSobol, params), walked = new_stream(kSobol, params);
        draw_words(s, before);
        EXPECT_EQ(skip(s, static_cast<int32_t>(count)), VXS_STATUS_OK);
        draw_words(walked, before + count);
        EXPECT_EQ(payload(s), payload(walked)) << dim << ' ' << before << ' ' << count;
        EXPECT_EQ(draw_words(s, 50), Words(&all[before + count], &all[before + count + 50]));
      }
  }
}

TEST(QuasiRandom, LeapfrogKeepsOneDimension) {
  const uint32_t dim = 5;
  const Words all = draw_words(new_stream(kNiederreiter, {dim}), 2000);
  for (uint32_t before = 0; before <= 11; ++before)
    for (uint32_t k = 0; k < dim; ++k) {
      const Stream s = new_stream(kNiederreiter, {dim});
      draw_words(s, before);
      EXPECT_EQ(leapfrog(s, kOneDimension, static_cast<int32_t>(k)), VXS_STATUS_OK);
      size_t next = before + (k + dim - before % dim) % dim;  // the first one of component k not given out
      for (const uint32_t word : draw_words(s, 100)) {
        ASSERT_EQ(word, all[next]) << before << ' ' << k;
        next += dim;
      }
      // To another dimension: from the point after the next one; to the same one: nothing happens.
      const uint32_t other = (k + 2) % dim;
      EXPECT_EQ(leapfrog(s, kOneDimension, static_cast<int32_t>(k)), VXS_STATUS_OK);
      EXPECT_EQ(draw_words(s, 1)[0], all[next]);
      EXPECT_EQ(leapfrog(s, kOneDimension, static_cast<int32_t>(other)), VXS_STATUS_OK);
      EXPECT_EQ(draw_words(s, 1)[0], all[next + 2 * dim - k + other]);
    }
}

TEST(QuasiRandom, Statuses) {
  for (const uint32_t id : {kSobol, kNiederreiter}) {
    const Stream s = new_stream(id, {3});
    draw_words(s, 4);
    const std::string before = payload(s);
    EXPECT_EQ(leapfrog(s, 3, 0), VXS_STATUS_NO_LEAPFROG);
    EXPECT_EQ(leapfrog(s, kOneDimension, 3), VXS_STATUS_NO_LEAPFROG);
    EXPECT_EQ(leapfrog(s, kOneDimension, -1), VXS_STATUS_NO_LEAPFROG);
    EXPECT_EQ(skip(s, 0), VXS_STATUS_NO_SKIP_AHEAD);
    EXPECT_EQ(skip(s, -1), VXS_STATUS_NO_SKIP_AHEAD);
    for (const int32_t method : {3, -1})
      EXPECT_EQ(generator_of(s).InitStream(method, s.get(), 1, nullptr), VXS_STATUS_BAD_METHOD);
    EXPECT_EQ(generator_of(s).iBrng(s.get(), 0, nullptr), VXS_STATUS_OK);
    EXPECT_EQ(generator_of(s).iBrng(s.get(), -7, nullptr), VXS_STATUS_OK);
    EXPECT_EQ(payload(s), before);
  }
}

}  // namespace
