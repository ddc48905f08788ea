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
constexpr int32_t one_dimension = 0x7fffffff;

uint32_t dimensions_of_tables(uint32_t id) { return id == sobol_id ? 40 : 318; }

Stream stream_of_dimensions(uint32_t id, uint32_t dim) {
  return new_stream(id, dim > dimensions_of_tables(id) ? user_directions(dim) : Words{dim});
}

int32_t status_of_new_stream(uint32_t id, const Words &params) {
  StreamState *stream = nullptr;
  const int32_t status = __vxsNewStreamEx(&stream, id, static_cast<int32_t>(params.size()), params.data());
  if (stream) __vxsDeleteStream(&stream);
  return status;
}

Sequence sequence(const Stream &stream) {
  return stream->brng == sobol_id ? sequence_of<Sobol>(stream.get())
                                  : sequence_of<Niederreiter>(stream.get());
}

// GSL keeps fewer bits, and Niederreiter's sequence begins with the origin there.
TEST(QuasiRandom, SameAsGsl) {
  const struct {
    uint32_t id, dim;
    const gsl_qrng_type *type;
    int bits, points_before;
  } rows[] = {
      {sobol_id, 40, gsl_qrng_sobol, 30, 0},
      {sobol_id, 7, gsl_qrng_sobol, 30, 0},
      {niederreiter_id, 12, gsl_qrng_niederreiter_2, 31, 1},
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
      {sobol_id, {}, 1},
      {sobol_id, {40}, 40},
      {sobol_id, {41}, 1},
      {sobol_id, {0}, 1},
      {sobol_id, {~0u}, 1},
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
  for (const auto &row : rows) {
    const Stream s = new_stream(row.id, row.params);
    const Stream plain = new_stream(row.id, {static_cast<uint32_t>(row.dim)});
    EXPECT_EQ(payload(s), payload(plain)) << &row - rows;
  }
  EXPECT_EQ(draw_words(new_stream(sobol_id, {}), 3), (Words{0x80000000, 0xc0000000, 0x40000000}));
  EXPECT_EQ(status_of_new_stream(sobol_id, {41, 1, 1, 0}), VXS_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(status_of_new_stream(niederreiter_id, {319, 2, 1}), VXS_STATUS_BAD_ARGUMENT);
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
    for (uint32_t j = 0; j < dim; ++j) append(sequence(tables).row(j % in_tables), 32);
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
  const uint32_t width = 9;
  array.push_back(width);
  if (all) array.insert(array.end(), width, 1);
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
      const uint32_t same = j < tables ? j : j - tables + again_from, *row = sequence(plain).row(same);
      ASSERT_TRUE(std::equal(row, row + 32, sequence(user).row(j))) << j;
    }
    // One word less, and it is no user array any more.
    array.pop_back();
    EXPECT_EQ(status_of_new_stream(id, array), dim > tables ? VXS_STATUS_BAD_ARGUMENT : VXS_STATUS_OK);
  }
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
  EXPECT_EQ(__vxsLeapfrogStream(stream.get(), 0, one_dimension), VXS_STATUS_NO_LEAPFROG);
}

TEST(QuasiRandom, RefusedStreamsAnswerNoNumbers) {
  for (const auto &bound : {std::pair{sobol_id, 41u}, {niederreiter_id, 319u}}) {
    const uint32_t id = bound.first;
    const Words array = {bound.second, 1, 1, 0}, large = user_directions(400);
    EXPECT_EQ(allocations_survived([&] { return status_of_new_stream(id, large); }, VXS_STATUS_NO_MEMORY), 3);
    StreamState *refused = nullptr;
    EXPECT_EQ(__vxsNewStreamEx(&refused, id, 4, array.data()), VXS_STATUS_BAD_ARGUMENT);
    const Stream stream(refused);
    EXPECT_EQ(payload(stream), std::string(payload(stream).size(), 0));
    expect_refusals(stream);
  }
}

// Streams of more dimensions than the record holds own their rows: a copy goes on when the first is gone.
// With a chunk of another size, or without it, a file is refused.
TEST(QuasiRandom, LargeStreamsNeedTheirChunk) {
  const std::string file = testing::TempDir() + "qkr_large_" + std::to_string(getpid());
  for (const auto &[id, dim] : {std::pair{sobol_id, 41u}, {sobol_id, 500u}, {niederreiter_id, 319u}}) {
    Stream first = stream_of_dimensions(id, dim);
    draw_words(first, 3 * static_cast<int32_t>(dim) + 7);
    const Stream copy = copy_of(first);
    const Words words = draw_words(first, 10000);
    first.reset();
    EXPECT_EQ(draw_words(copy, 10000), words);

    StreamState *none = nullptr;
    copy->chunks->size -= 4;
    save(copy, file);
    EXPECT_EQ(__vxsLoadStreamF(&none, file.c_str()), VXS_STATUS_FILE_FORMAT);
    __vxsDeleteChunks(copy.get());
    save(copy, file);
    EXPECT_EQ(__vxsLoadStreamF(&none, file.c_str()), VXS_STATUS_FILE_FORMAT);
    expect_refusals(copy);
  }
  remove(file.c_str());
}

TEST(QuasiRandom, StatesMoveWhereTheyFit) {
  const struct {
    uint32_t from, from_dim, to, to_dim;
    bool fits;
  } rows[] = {{sobol_id, 40, sobol_id, 40, true},
              {sobol_id, 41, sobol_id, 41, true},
              {sobol_id, 60, sobol_id, 50, false},
              {sobol_id, 50, sobol_id, 60, false},
              {sobol_id, 60, sobol_id, 3, false},
              {sobol_id, 3, sobol_id, 60, false},
              {sobol_id, 350, niederreiter_id, 350, false},
              {niederreiter_id, 350, niederreiter_id, 319, false},
              {niederreiter_id, 319, niederreiter_id, 319, true},
              {0x800000, 1, sobol_id, 60, false}};
  for (const auto &row : rows) {
    SCOPED_TRACE(testing::Message() << row.from_dim << " to " << row.to_dim);
    const Stream from = stream_of_dimensions(row.from, row.from_dim),
                 to = stream_of_dimensions(row.to, row.to_dim), before = copy_of(to);
    draw_words(from, 100);
    EXPECT_EQ(__vxsCopyStreamState(to.get(), from.get()),
              row.fits ? VXS_STATUS_OK : VXS_STATUS_OTHER_GENERATOR);
    EXPECT_EQ(draw_words(to, 5000), draw_words(row.fits ? from : before, 5000));
  }
}

// The tables hold eight initial values, of which a polynomial of higher degree leaves none even.
TEST(QuasiRandom, UserPolynomialOfHighDegree) {
  const Stream s = new_stream(sobol_id, {2, 1, 1, 0x80000009});
  for (int c = 0; c < 32; ++c) EXPECT_EQ(std::countr_zero(sequence(s).row(1)[c]), 31 - c);
  const Stream none = new_stream(niederreiter_id, {2, 1, 1, 1, 0});
  EXPECT_EQ(draw_words(none, 100), Words(100, 0));
}

// From one dimension to another: from the point after the next one; to the same one: nothing happens.
TEST(QuasiRandom, LeapfrogOfLeapfrog) {
  const uint32_t dim = 5;
  const Words all = draw_words(new_stream(niederreiter_id, {dim}), 100);
  for (uint32_t k = 0; k < dim; ++k) {
    const uint32_t other = (k + 2) % dim;
    const Stream stream = new_stream(niederreiter_id, {dim});
    for (const auto &[dimension, next] : {std::pair{k, k}, {k, k + dim}, {other, other + 3 * dim}}) {
      EXPECT_EQ(__vxsLeapfrogStream(stream.get(), int32_t(dimension), one_dimension), VXS_STATUS_OK);
      EXPECT_EQ(draw_words(stream, 1)[0], all[next]) << k;
    }
  }
}

TEST(QuasiRandom, ImpossibleMovesLeaveTheStreamAlone) {
  for (const uint32_t id : {sobol_id, niederreiter_id}) {
    const Stream stream = new_stream(id, {3});
    draw_words(stream, 4);
    const std::string before = payload(stream);
    for (const auto &[stride, index] : {std::pair{3, 0}, {one_dimension, 3}, {one_dimension, -1}})
      EXPECT_EQ(__vxsLeapfrogStream(stream.get(), index, stride), VXS_STATUS_NO_LEAPFROG);
    for (const int32_t count : {0, -1})
      EXPECT_EQ(__vxsSkipAheadStream(stream.get(), count), VXS_STATUS_NO_SKIP_AHEAD);
    EXPECT_EQ(payload(stream), before);
  }
}

}  // namespace
