// Generator ids, registration, the life of a stream, chunks.
#include <cstdlib>
#include <tuple>

#include "streams/internal.h"
#include "tests/streams/stream.h"

namespace {

using namespace qkr;
using namespace qkr::tests;

TEST(Registry, ResolvesIds) {
  constexpr int32_t unknown = VXS_STATUS_BAD_GENERATOR;
  const struct {
    int32_t id, row, member, status;  // an id below 2^20 is a legacy one
  } rows[] = {{0, 0, 0, 0},
              {3, 3, 0, 0},
              {4, 4, 0, 0},
              {5, 4, 1, 0},
              {276, 4, 272, 0},
              {277, 277, 0, 0},
              {278, 278, 0, 0},
              {279, 279, 0, unknown},
              {0xfffff, 0xfffff, 0, unknown},
              {-1, -1, 0, 0},
              {0x100000, 0, 0, 0},
              {0x100001, 0, 1, unknown},
              {0x500110, 4, 272, 0},
              {0x500111, 4, 273, unknown},
              {0x9003ff, 8, 1023, 0},
              {0x900400, 8, 1024, unknown},
              {0xa00001, 9, 1, unknown},
              {0xc00000, 11, 0, 0},
              {0x1f000000, 495, 0, unknown},
              {0x7fffffff, 0x7fe, 0xfffff, unknown}};
  for (const auto &expected : rows) {
    int32_t row, member;
    const BrngRecord *table = __vxsGetBrngBaseOffset(expected.id, &row, &member);
    EXPECT_EQ(table, expected.id < 0x100000 ? legacy_generators.rows : current_generators) << expected.id;
    EXPECT_EQ((std::tuple{row, member, __vxsIsBrngValid(table, row, member)}),
              (std::tuple{expected.row, expected.member, expected.status}))
        << expected.id;
  }
}

TEST(Registry, DescribesGenerators) {
  const struct {
    std::vector<int32_t> ids;
    int32_t state_size, seed_words, includes_zero, word_size, bits;
  } rows[] = {{{0x100000, 0}, 24, 1, 0, 4, 31},
              {{0x200000, 1}, 1024, 252, 1, 4, 32},
              {{0x300000, 2}, 40, 6, 1, 4, 32},
              {{0x400000, 3}, 32, 1, 0, 8, 59},
              {{0x500000, 4, 276}, 48, 4, 1, 16, 24},
              {{0x600000, 277}, 5472, 1324, 0, 4, 32},
              {{0x700000, 278}, 43280, 10498, 0, 4, 32},
              {{0x800000}, 2520, 625, 1, 4, 32},
              {{0x900000, 0x9003ff}, 312, 70, 1, 4, 32},
              {{0xa00000}, 48, 0, 1, 4, 32},
              {{0xb00000}, 64, 0, 1, 4, 32},
              {{0xc00000}, 56, 0, 1, 4, 32}};
  for (const auto &expected : rows)
    for (const int32_t id : expected.ids) {
      BrngRecord record;
      ASSERT_EQ(__vxsGetBrngProperties(id, &record), VXS_STATUS_OK) << id;
      EXPECT_EQ(
          (std::tuple{record.StateSize, record.SeedWords, record.IncludesZero, record.WordSize, record.Bits}),
          (std::tuple{expected.state_size, expected.seed_words, expected.includes_zero, expected.word_size,
                      expected.bits}))
          << id;
    }
  for (int32_t row = 4; row < 277; ++row)
    EXPECT_EQ(memcmp(&legacy_generators.rows[row], &current_generators[4], sizeof(BrngRecord)), 0) << row;
  BrngRecord untouched = {};
  EXPECT_EQ(__vxsGetBrngProperties(0x900400, &untouched), VXS_STATUS_BAD_GENERATOR);
  EXPECT_EQ(untouched.StateSize, 0);
}

// Counts upwards; the seed words and the methods that it was asked for are in the record.
struct Counter {
  int32_t method, n;
  uint32_t next;
};
int32_t init_counter(int32_t method, StreamState *stream, int32_t n, const void *params) {
  payload_of<Counter>(stream) = {method, n, params ? *static_cast<const uint32_t *>(params) : 0};
  return method == VXS_INIT_SEED && n == 0 ? -77 : VXS_STATUS_OK;
}
int32_t count(StreamState *stream, int32_t n, uint32_t *out) {
  for (int32_t i = 0; i < n; ++i) out[i] = payload_of<Counter>(stream).next++;
  return VXS_STATUS_OK;
}
int32_t no_doubles(StreamState *, int32_t, double *, double, double) { return -78; }
int32_t no_singles(StreamState *, int32_t, float *, float, float) { return -79; }

TEST(Registry, TakesUserGenerators) {
  const BrngRecord counter = {16 + sizeof(Counter), 3, 1, 4, 32, init_counter, no_singles, no_doubles, count};
  const struct {
    int32_t BrngRecord::*field;
    int32_t value, status;
  } faults[] = {{&BrngRecord::Bits, 0, VXS_STATUS_BAD_BITS},
                {&BrngRecord::SeedWords, 0, VXS_STATUS_BAD_SEED_WORDS},
                {&BrngRecord::WordSize, 2, VXS_STATUS_BAD_WORD_SIZE},
                {&BrngRecord::StateSize, -1, VXS_STATUS_BAD_STATE_SIZE}};
  // Each fault is noticed before those that came before it in the table.
  BrngRecord without_words = counter;
  without_words.iBrng = nullptr;
  BrngRecord bad = without_words;
  for (const auto &fault : faults) {
    bad.*fault.field = fault.value;
    EXPECT_EQ(__vxsRegisterBrng(&bad), fault.status);
  }
  BrngRecord without_doubles = counter, without_singles = counter, without_init = counter;
  without_doubles.dBrng = nullptr;
  without_singles.sBrng = nullptr;
  without_init.InitStream = nullptr;
  for (const BrngRecord &incomplete : {without_words, without_doubles, without_singles, without_init})
    EXPECT_EQ(__vxsRegisterBrng(&incomplete), VXS_STATUS_NULL_POINTER);

  const int32_t rows = __vxsGetNumRegBrngs(), id = (rows + 1) << 20;
  ASSERT_EQ(rows, 12 + (rows > 12));  // Philox may be there
  ASSERT_EQ(__vxsRegisterBrng(&counter), id);
  EXPECT_EQ(__vxsGetNumRegBrngs(), rows + 1);
  const Stream stream = new_stream(static_cast<uint32_t>(id), {41});
  EXPECT_EQ(draw_words(stream, 3), (std::vector<uint32_t>{41, 42, 43}));
  double number;
  EXPECT_EQ(generator_of(stream).dBrng(stream.get(), 1, &number, 0, 1), -78);

  // What reaches InitStream of the generic operations.
  const Counter &seen = payload_of<Counter>(stream.get());
  EXPECT_EQ(__vxsLeapfrogStream(stream.get(), 5, 9), VXS_STATUS_OK);
  EXPECT_TRUE(seen.method == VXS_INIT_LEAPFROG && seen.n == 9 && seen.next == 5);
  EXPECT_EQ(__vxsSkipAheadStream(stream.get(), (int64_t{1} << 32) + 12), VXS_STATUS_OK);
  EXPECT_TRUE(seen.method == VXS_INIT_SKIP_AHEAD && seen.n == 12 && seen.next == 0);
  EXPECT_EQ(qkr_skip_ahead(stream.get(), INT32_MAX), VXS_STATUS_OK);
  EXPECT_TRUE(seen.method == VXS_INIT_SKIP_AHEAD && seen.n == INT32_MAX && seen.next == 0);
  EXPECT_EQ(qkr_skip_ahead(stream.get(), (uint64_t{1} << 40) + 12), VXS_STATUS_OK);
  EXPECT_TRUE(seen.method == QKR_INIT_SKIP_AHEAD_64 && seen.n == 0 && seen.next == 12);

  // A stream stays the caller's when seeding fails.
  StreamState *unseeded = nullptr;
  EXPECT_EQ(__vxsNewStreamEx(&unseeded, static_cast<uint32_t>(id), 0, nullptr), -77);
  ASSERT_NE(unseeded, nullptr);
  __vxsDeleteStream(&unseeded);

  // A record that says nothing of its size still gets a head.
  BrngRecord headless = counter;
  headless.StateSize = 0;
  headless.InitStream = [](int32_t, StreamState *, int32_t, const void *) { return 0; };
  ASSERT_EQ(__vxsRegisterBrng(&headless), id + 0x100000);
  const Stream head = new_stream(static_cast<uint32_t>(id) + 0x100000, {}), copy = copy_of(head);
  EXPECT_EQ(__vxsCopyStreamState(copy.get(), head.get()), VXS_STATUS_OK);
}

// A state that no file holds is refused before there is a file.
TEST(Registry, SizesThatCannotBeSaved) {
  const auto nothing = [](int32_t, StreamState *, int32_t, const void *) { return 0; };
  for (const auto &[size, status] : {std::pair{0, VXS_STATUS_BAD_STATE_SIZE},
                                     {8, VXS_STATUS_BAD_STATE_SIZE},
                                     {15, VXS_STATUS_BAD_STATE_SIZE},
                                     {16, VXS_STATUS_FILE_WRITE},
                                     {17, VXS_STATUS_OK},
                                     {65551, VXS_STATUS_OK},
                                     {65552, VXS_STATUS_BAD_STATE_SIZE},
                                     {INT32_MAX, VXS_STATUS_BAD_STATE_SIZE}}) {
    const BrngRecord generator = {size, 3, 1, 4, 32, nothing, no_singles, no_doubles, count};
    const int32_t id = __vxsRegisterBrng(&generator);
    ASSERT_GT(id, 0);
    StreamState small = {static_cast<uint32_t>(id), 1, nullptr};  // nothing behind it is read if refused
    const Stream stream = status == VXS_STATUS_BAD_STATE_SIZE ? nullptr : new_stream(small.brng, {});
    EXPECT_EQ(__vxsSaveStreamF(stream ? stream.get() : &small, "/dev/null", -1), status) << size;
    if (size < INT32_MAX) copy_of(new_stream(small.brng, {}));
  }
}

TEST(Stream, IsMadeOfKnownGeneratorsAndDeletedOnce) {
  for (const uint32_t id :
       {279u, 0x500111u, 0x900400u, 0xa00000u, 0xa00001u, 0xb00000u, 0xc00000u, 0x20000000u}) {
    StreamState *const before = reinterpret_cast<StreamState *>(8);
    StreamState *stream = before;
    EXPECT_EQ(__vxsNewStreamEx(&stream, id, 0, nullptr), VXS_STATUS_BAD_GENERATOR) << id;
    EXPECT_EQ(stream, before);
  }
  StreamState *stream = new_stream(0, {1}).release();
  EXPECT_EQ(__vxsDeleteStream(&stream), VXS_STATUS_OK);
  EXPECT_EQ(stream, nullptr);
  EXPECT_EQ(__vxsDeleteStream(&stream), VXS_STATUS_NULL_POINTER);
}

TEST(Chunks, TheNewestComesFirst) {
  const Stream stream = new_stream(0, {1});
  EXPECT_EQ(__vxsSearchChunk(stream.get(), 2), nullptr);
  void *first = malloc(1), *second = malloc(2), *third = malloc(3);
  __vxsAddChunk(stream.get(), 2, first, 1);
  __vxsAddChunk(stream.get(), 7, second, 2);
  EXPECT_EQ(__vxsSearchChunk(stream.get(), 2), first);
  __vxsAddChunk(stream.get(), 2, third, 3);
  EXPECT_EQ(__vxsSearchChunk(stream.get(), 2), third);
  EXPECT_EQ(__vxsSearchChunk(stream.get(), 7), second);
  EXPECT_EQ(__vxsGetNumChunks(stream.get()), 3);
  EXPECT_EQ(stream->chunks->size, 3u);
  __vxsDeleteChunks(stream.get());
  EXPECT_EQ(__vxsGetNumChunks(stream.get()), 0);
  EXPECT_EQ(stream->chunks, nullptr);
  __vxsDeleteChunks(stream.get());
}

}  // namespace
