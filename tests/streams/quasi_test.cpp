// Sobol's and Niederreiter's sequences: against GSL and Boost, by user arrays, streams of many dimensions.
#include <boost/random/niederreiter_base2.hpp>
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

constexpr uint32_t sobol_id = QKR_SOBOL, niederreiter_id = QKR_NIEDERREITER;

// GSL keeps 30 bits.
TEST(QuasiRandom, SobolIsThatOfGsl) {
  const Stream ours = new_stream(sobol_id, {40}), few = new_stream(277, {40});
  EXPECT_EQ(draw_words(few, 400), draw_words(copy_of(ours), 400));
  gsl_qrng *theirs = gsl_qrng_alloc(gsl_qrng_sobol, 40);
  double point[40];
  for (int i = 0; i < 20000; ++i) {
    gsl_qrng_get(theirs, point);
    for (int j = 0; const uint32_t word : draw_words(ours, 40))
      ASSERT_EQ(word >> 2, std::ldexp(point[j++], 30)) << i;
  }
  gsl_qrng_free(theirs);
}

TEST(QuasiRandom, NiederreiterIsThatOfBoost) {
  const Stream ours = new_stream(niederreiter_id, {318}), few = new_stream(278, {318});
  EXPECT_EQ(draw_words(few, 400), draw_words(copy_of(ours), 400));
  boost::random::niederreiter_base2_engine<uint64_t, 64> theirs(318);  // with 32 bits the last are wrong
  for (const uint64_t skipped : {0u, 1u << 20, 1u << 30, 1u << 31}) {
    qkr_skip_ahead(ours, 318 * skipped);
    theirs.discard(318 * skipped);
    for (const uint32_t word : draw_words(ours, 318 * 1000)) ASSERT_EQ(word, theirs() >> 32) << skipped;
  }
}

TEST(QuasiRandom, DimensionOfParameters) {
  const struct {
    uint32_t id;
    Words params;
    uint32_t dim;
  } rows[] = {{sobol_id, {}, 1},
              {sobol_id, {40}, 40},
              {sobol_id, {41}, 1},
              {sobol_id, {~0u, 1, 1, 0}, 1},
              {sobol_id, {5, 1}, 5},           // too short for an array
              {sobol_id, {5, 2, 4, 0}, 5},     // not marked as one
              {sobol_id, {2, 1, 5, 7, 7}, 2},  // no such kind
              {niederreiter_id, {318}, 318},
              {niederreiter_id, {4, 1, 2, 2, 3, 7, 11}, 4}};
  for (const auto &row : rows)
    EXPECT_EQ(payload(new_stream(row.id, row.params)), payload(new_stream(row.id, {row.dim}))) << &row - rows;
}

const uint32_t *directions(const Stream &stream, uint32_t j) {
  const auto id = stream->brng;
  return (id == sobol_id ? sequence_of<Sobol>(stream) : sequence_of<Niederreiter>(stream))
      .row(static_cast<int32_t>(j));
}

// A user's array is made of the tables, which begin again where they end; dimension 1 of Sobol is not in
// them.
uint32_t dimension_in_tables(uint32_t id, uint32_t j) {
  return id == niederreiter_id ? j % 318 : j == 0 ? 0 : 1 + (j - 1) % 39;
}
Words user_array(uint32_t id, uint32_t kind, uint32_t dim) {
  const bool is_sobol = id == sobol_id, all = kind == 4 || kind == 11 || !is_sobol;
  const Stream tables = new_stream(id, {is_sobol ? 40u : 318u});
  Words array = {dim, 1, kind}, initial;
  for (uint32_t i = all ? 0 : 1; i < dim; ++i) {
    const uint32_t j = dimension_in_tables(id, i), polynomial_x = 2;
    if (kind == 4) array.insert(array.end(), directions(tables, j), directions(tables, j) + 32);
    else if (!is_sobol) array.push_back(niederreiter::polynomials[j]);
    else if (kind != 2) array.push_back(j ? sobol::polynomials[j - 1] : polynomial_x);
    for (uint32_t k = 0; k < 9; ++k)
      initial.push_back(j == 0 ? 1 : k < 8 ? sobol::initial_values[(j - 1) % 39][k] : 0);
  }
  if (is_sobol && kind != 1 && kind != 4) {
    array.push_back(9);  // words for each dimension
    array.insert(array.end(), initial.begin(), initial.end());
  }
  return array;
}

TEST(QuasiRandom, UserArrays) {
  const uint32_t rows[][3] = {{sobol_id, 1, 2},          {sobol_id, 1, 40},         {sobol_id, 2, 40},
                              {sobol_id, 3, 1},          {sobol_id, 3, 40},         {sobol_id, 4, 40},
                              {sobol_id, 11, 40},        {sobol_id, 3, 41},         {sobol_id, 4, 41},
                              {sobol_id, 11, 79},        {niederreiter_id, 1, 318}, {niederreiter_id, 4, 318},
                              {niederreiter_id, 1, 319}, {niederreiter_id, 4, 400}};
  for (const auto &row : rows) {
    const uint32_t id = row[0], kind = row[1], dim = row[2];
    SCOPED_TRACE(testing::Message() << id << ' ' << kind << ' ' << dim);
    const uint32_t in_tables = id == sobol_id ? 40 : 318;
    Words array = user_array(id, kind, dim);
    const Stream user = new_stream(id, array), plain = new_stream(id, {in_tables});
    EXPECT_EQ(__vxsGetNumChunks(user), dim > in_tables);
    for (uint32_t j = 0; j < dim; ++j) {
      const uint32_t *expected = directions(plain, dimension_in_tables(id, j));
      ASSERT_TRUE(std::equal(expected, expected + 32, directions(user, j))) << j;
    }
    // One word less, and it is no user array any more.
    array.pop_back();
    const auto size = static_cast<int32_t>(array.size());
    EXPECT_EQ(status_of([&](auto out) { return __vxsNewStreamEx(out, id, size, array.data()); }),
              dim > in_tables ? VXS_STATUS_BAD_ARGUMENT : VXS_STATUS_OK);
  }
  // The tables hold eight initial values, of which a polynomial of higher degree leaves none even.
  const Stream s = new_stream(sobol_id, {2, 1, 1, 0x80000009});
  for (int c = 0; c < 32; ++c) EXPECT_EQ(std::countr_zero(directions(s, 1)[c]), 31 - c);
  EXPECT_EQ(draw_words(new_stream(niederreiter_id, {2, 1, 1, 1, 0}), 100), Words(100, 0));
}

// A stream that was refused, or has lost its chunk, tells so at every use; no file brings one that has lost
// it, or has one of another size.
TEST(QuasiRandom, LargeStreamsNeedTheirChunk) {
  const std::string file = testing::TempDir() + "qkr_large_" + std::to_string(getpid());
  const auto expect_unusable = [&](const Stream &stream) {
    const BrngRecord generator = generator_of(stream);
    uint32_t word;
    double real;
    float single;
    for (const int32_t status : {generator.iBrng(stream, 1, &word), generator.dBrng(stream, 1, &real, 0, 1),
                                 generator.sBrng(stream, 1, &single, 0, 1)})
      EXPECT_EQ(status, VXS_STATUS_BAD_ARGUMENT);
    for (const int32_t status : {__vxsSkipAheadStream(stream, 1), qkr_skip_ahead(stream, 1)})
      EXPECT_EQ(status, VXS_STATUS_NO_SKIP_AHEAD);
    EXPECT_EQ(__vxsLeapfrogStream(stream, 0, QKR_ONE_DIMENSION), VXS_STATUS_NO_LEAPFROG);
  };
  for (const auto &[id, dim] : {std::pair{sobol_id, 41u}, {niederreiter_id, 319u}}) {
    const Stream stream = new_stream(id, user_directions(dim));
    const auto expect_file_refused = [&] {
      save(stream, file);
      EXPECT_EQ(status_of([&](auto out) { return __vxsLoadStreamF(out, file.c_str()); }),
                VXS_STATUS_FILE_FORMAT);
    };
    stream->chunks->size -= 4;
    expect_file_refused();
    __vxsDeleteChunks(stream);
    expect_file_refused();
    expect_unusable(stream);

    StreamState *refused = nullptr;
    const Words array = {dim, 1, 1, 0};
    EXPECT_EQ(__vxsNewStreamEx(&refused, id, 4, array.data()), VXS_STATUS_BAD_ARGUMENT);
    expect_unusable(Stream(refused));
  }
  remove(file.c_str());
}

// Of one dimension from the first component on that was not given out. From one to another: from the point
// after the next one; to the same one: nothing happens. A skip follows the numbers.
TEST(QuasiRandom, LeapfrogsByDimension) {
  constexpr uint32_t dim = 5;
  const Words all = draw_words(new_stream(sobol_id, {dim}), 100);
  for (uint32_t before = 0; before < dim; ++before)
    for (uint32_t k = 0; k < dim; ++k) {
      const Stream stream = new_stream(sobol_id, {dim});
      draw_words(stream, static_cast<int32_t>(before));
      const auto expect_next = [&](uint32_t dimension, uint32_t point) {
        EXPECT_EQ(__vxsLeapfrogStream(stream, int32_t(dimension), QKR_ONE_DIMENSION), VXS_STATUS_OK);
        EXPECT_EQ(draw_words(stream, 1)[0], all[dim * point + dimension]) << before << ", " << k;
      };
      const uint32_t point = k < before;
      expect_next(k, point);
      expect_next(k, point + 1);
      EXPECT_EQ(qkr_skip_ahead(stream, (uint64_t{7} << 32) + 5), VXS_STATUS_OK);
      expect_next(k, point + 7);
      expect_next((k + 2) % dim, point + 9);
    }
}

}  // namespace
