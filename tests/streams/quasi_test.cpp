// Sobol's and Niederreiter's sequences: against GSL, by user arrays, streams of many dimensions, refusals.
#include <algorithm>
#include <bit>
#include <cmath>
#include <gsl/gsl_qrng.h>
#include <unistd.h>

#include "streams/quasi/digital_sequence.h"
#include "streams/tables/tables.h"
#include "tests/streams/generators.h"
#include "tests/support/allocations.h"

namespace {

using namespace qkr;
using namespace qkr::tests;

constexpr uint32_t sobol_id = 0x600000, niederreiter_id = 0x700000;

uint32_t dimensions_of_tables(uint32_t id) { return id == sobol_id ? 40 : 318; }

Stream stream_of_dimensions(uint32_t id, uint32_t dim) {
  return new_stream(id, dim > dimensions_of_tables(id) ? user_directions(dim) : Words{dim});
}

int32_t status_of_new_stream(uint32_t id, const Words &params) {
  const auto count = static_cast<int32_t>(params.size());
  return status_of([&](auto out) { return __vxsNewStreamEx(out, id, count, params.data()); });
}

const uint32_t *directions(const Stream &stream, uint32_t j) {
  const bool is_sobol = stream->brng == sobol_id;
  return (is_sobol ? sequence_of<Sobol>(stream.get()) : sequence_of<Niederreiter>(stream.get()))
      .row(int32_t(j));
}

// GSL keeps fewer bits, and Niederreiter's sequence begins with the origin there.
TEST(QuasiRandom, SameAsGsl) {
  for (const auto &[id, dim] : {std::pair{sobol_id, 40u}, {277u, 3u}, {niederreiter_id, 12u}, {278u, 5u}}) {
    const bool is_sobol = id == sobol_id || id == 277;
    const Stream ours = new_stream(id, {dim});
    gsl_qrng *theirs = gsl_qrng_alloc(is_sobol ? gsl_qrng_sobol : gsl_qrng_niederreiter_2, dim);
    std::vector<double> point(dim);
    if (!is_sobol) gsl_qrng_get(theirs, point.data());
    const int bits = is_sobol ? 30 : 31;
    int different = 0;
    for (int i = 0; i < 20000; ++i) {
      gsl_qrng_get(theirs, point.data());
      const Words words = draw_words(ours, static_cast<int32_t>(dim));
      for (uint32_t j = 0; j < dim; ++j) different += words[j] >> (32 - bits) != std::ldexp(point[j], bits);
    }
    gsl_qrng_free(theirs);
    EXPECT_EQ(different, 0) << id;
  }
}

TEST(QuasiRandom, DimensionOfParameters) {
  const struct {
    uint32_t id;
    Words params;
    uint32_t dim;
  } rows[] = {
      {sobol_id, {}, 1},
      {sobol_id, {40}, 40},
      {sobol_id, {41}, 1},
      {sobol_id, {0}, 1},
      {sobol_id, {~0u, 1, 1, 0}, 1},
      {sobol_id, {5, 1}, 5},           // too short for an array
      {sobol_id, {5, 2, 4, 0}, 5},     // not marked as one
      {sobol_id, {2, 1, 5, 7, 7}, 2},  // no such kind
      {sobol_id, {3, 1, 3, 7, 11, 2, 1, 1, 1}, 3},
      {niederreiter_id, {}, 1},
      {niederreiter_id, {318}, 318},
      {niederreiter_id, {319}, 1},
      {niederreiter_id, {4, 1, 1, 2, 3, 7}, 4},
      {niederreiter_id, {4, 1, 2, 2, 3, 7, 11}, 4},
  };
  for (const auto &row : rows)
    EXPECT_EQ(payload(new_stream(row.id, row.params)), payload(new_stream(row.id, {row.dim}))) << &row - rows;
}

// A user's array that repeats the tables, and begins them again where they end.
Words user_array(uint32_t id, uint32_t dim, uint32_t kind) {
  const uint32_t in_tables = dimensions_of_tables(id);
  Words array = {dim, 1, kind};
  const auto append = [&](const uint32_t *words, size_t count) {
    array.insert(array.end(), words, words + count);
  };
  if (kind == 4) {
    const Stream tables = new_stream(id, {in_tables});
    for (uint32_t j = 0; j < dim; ++j) append(directions(tables, j % in_tables), 32);
    return array;
  }
  if (id == niederreiter_id) {
    for (uint32_t j = 0; j < dim; ++j) append(niederreiter::polynomials + j % in_tables, 1);
    return array;
  }
  // The polynomial x repeats its initial value, as dimension 1 does.
  const bool all = kind == 11;
  if (all) array.push_back(2);
  for (uint32_t j = 0; kind != 2 && j + 1 < dim; ++j) append(sobol::polynomials + j % 39, 1);
  if (kind == 1) return array;
  array.push_back(9);  // words for each dimension
  if (all) array.insert(array.end(), 9, 1);
  for (uint32_t j = 0; j + 1 < dim; ++j) {
    append(sobol::initial_values[j % 39], 8);
    array.push_back(0);
  }
  return array;
}

TEST(QuasiRandom, UserArrays) {
  // The first dimension is not a user's but where he gives all of them; behind the tables, they begin again.
  const struct {
    uint32_t id, kind, dim, again_from = 0;
  } rows[] = {{sobol_id, 1, 2},          {sobol_id, 1, 40},         {sobol_id, 2, 40},
              {sobol_id, 3, 1},          {sobol_id, 3, 40},         {sobol_id, 4, 40},
              {sobol_id, 11, 40},        {sobol_id, 3, 41, 1},      {sobol_id, 4, 41, 0},
              {sobol_id, 11, 79, 1},     {niederreiter_id, 1, 318}, {niederreiter_id, 4, 318},
              {niederreiter_id, 1, 319}, {niederreiter_id, 4, 400}};
  for (const auto &[id, kind, dim, again_from] : rows) {
    SCOPED_TRACE(testing::Message() << id << ' ' << kind << ' ' << dim);
    const uint32_t tables = dimensions_of_tables(id);
    Words array = user_array(id, dim, kind);
    const Stream user = new_stream(id, array), plain = new_stream(id, {std::min(dim, tables)});
    EXPECT_EQ(__vxsGetNumChunks(user.get()), dim > tables);
    for (uint32_t j = 0; j < dim; ++j) {
      const uint32_t *row = directions(plain, j < tables ? j : j - tables + again_from);
      ASSERT_TRUE(std::equal(row, row + 32, directions(user, j))) << j;
    }
    // One word less, and it is no user array any more.
    array.pop_back();
    EXPECT_EQ(status_of_new_stream(id, array), dim > tables ? VXS_STATUS_BAD_ARGUMENT : VXS_STATUS_OK);
  }
  // The tables hold eight initial values, of which a polynomial of higher degree leaves none even.
  const Stream s = new_stream(sobol_id, {2, 1, 1, 0x80000009});
  for (int c = 0; c < 32; ++c) EXPECT_EQ(std::countr_zero(directions(s, 1)[c]), 31 - c);
  EXPECT_EQ(draw_words(new_stream(niederreiter_id, {2, 1, 1, 1, 0}), 100), Words(100, 0));
}

// A stream that was refused, or has lost its chunk, tells so at every use.
void expect_refusals(const Stream &stream) {
  const BrngRecord generator = generator_of(stream);
  uint32_t word;
  double real;
  float single;
  EXPECT_EQ(generator.iBrng(stream.get(), 1, &word), VXS_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(generator.dBrng(stream.get(), 1, &real, 0, 1), VXS_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(generator.sBrng(stream.get(), 1, &single, 0, 1), VXS_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(__vxsSkipAheadStream(stream.get(), 1), VXS_STATUS_NO_SKIP_AHEAD);
  EXPECT_EQ(__vxsLeapfrogStream(stream.get(), 0, QKR_ONE_DIMENSION), VXS_STATUS_NO_LEAPFROG);
}

// Streams of more dimensions than the record holds own their rows: a copy goes on when the first is gone.
// With a chunk of another size, or without it, a file is refused.
TEST(QuasiRandom, LargeStreamsNeedTheirChunk) {
  const std::string file = testing::TempDir() + "qkr_large_" + std::to_string(getpid());
  const auto expect_refused = [&](const Stream &stream) {
    save(stream, file);
    EXPECT_EQ(status_of([&](auto out) { return __vxsLoadStreamF(out, file.c_str()); }),
              VXS_STATUS_FILE_FORMAT);
  };
  for (const auto &bound : {std::pair{sobol_id, 41u}, {sobol_id, 500u}, {niederreiter_id, 319u}}) {
    const uint32_t id = bound.first, dim = bound.second;
    const Words params = user_directions(dim), array = {dim, 1, 1, 0};
    Stream first = new_stream(id, params);
    const Stream copy = copy_of(first);
    const Words words = draw_words(first, 10000);
    first.reset();
    EXPECT_EQ(draw_words(copy, 10000), words);
    copy->chunks->size -= 4;
    expect_refused(copy);
    __vxsDeleteChunks(copy.get());
    expect_refused(copy);
    expect_refusals(copy);

    const auto allocate = [&] { return status_of_new_stream(id, params); };
    EXPECT_EQ(allocations_survived(allocate, VXS_STATUS_NO_MEMORY), 3);
    StreamState *refused = nullptr;
    EXPECT_EQ(__vxsNewStreamEx(&refused, id, 4, array.data()), VXS_STATUS_BAD_ARGUMENT);
    const Stream stream(refused);
    EXPECT_EQ(payload(stream), std::string(payload(stream).size(), 0));
    expect_refusals(stream);
  }
  remove(file.c_str());
}

TEST(QuasiRandom, StatesMoveWhereTheyFit) {
  const struct {
    uint32_t from, from_dim, to, to_dim;
  } rows[] = {{sobol_id, 41, sobol_id, 41},
              {sobol_id, 60, sobol_id, 50},
              {sobol_id, 50, sobol_id, 60},
              {sobol_id, 60, sobol_id, 3},
              {sobol_id, 3, sobol_id, 60},
              {sobol_id, 350, niederreiter_id, 350},
              {niederreiter_id, 319, niederreiter_id, 319},
              {0x800000, 1, sobol_id, 60}};
  for (const auto &[from_id, from_dim, to_id, to_dim] : rows) {
    SCOPED_TRACE(testing::Message() << from_dim << " to " << to_dim);
    const bool fits = from_id == to_id && from_dim == to_dim;
    const Stream from = stream_of_dimensions(from_id, from_dim), to = stream_of_dimensions(to_id, to_dim),
                 before = copy_of(to);
    draw_words(from, 100);
    EXPECT_EQ(__vxsCopyStreamState(to.get(), from.get()), fits ? VXS_STATUS_OK : VXS_STATUS_OTHER_GENERATOR);
    EXPECT_EQ(draw_words(to, 5000), draw_words(fits ? from : before, 5000));
  }
}

// Of one dimension from the first component on that was not given out. From one to another: from the point
// after the next one; to the same one: nothing happens. A skip follows the numbers.
TEST(QuasiRandom, LeapfrogsByDimension) {
  constexpr uint32_t dim = 5;
  for (const uint32_t id : {sobol_id, niederreiter_id})
    for (uint32_t before = 0; before < dim; ++before)
      for (uint32_t k = 0; k < dim; ++k) {
        SCOPED_TRACE(testing::Message() << id << ", " << before << ", " << k);
        const Stream stream = new_stream(id, {dim});
        const Words all = draw_words(new_stream(id, {dim}), 100);
        draw_words(stream, static_cast<int32_t>(before));
        const auto expect_next = [&](uint32_t dimension, uint32_t point) {
          EXPECT_EQ(__vxsLeapfrogStream(stream.get(), int32_t(dimension), QKR_ONE_DIMENSION), VXS_STATUS_OK);
          EXPECT_EQ(draw_words(stream, 1)[0], all[dim * point + dimension]);
        };
        const uint32_t point = k < before, other = (k + 2) % dim;
        expect_next(k, point);
        expect_next(k, point + 1);
        EXPECT_EQ(qkr_skip_ahead(stream.get(), (uint64_t{7} << 32) + 5), VXS_STATUS_OK);
        expect_next(k, point + 7);
        expect_next(other, point + 9);
      }
}

}  // namespace
