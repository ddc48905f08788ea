// Generator ids, registration, the life of a stream, chunks.
#include <cstdlib>
#include <tuple>

#include "streams/internal.h"
#include "tests/streams/stream.h"

namespace {

using namespace qkr;
using namespace qkr::tests;

// What callers and stream files rely on.
TEST(Registry, DescribesGenerators) {
  const int32_t records[][6] = {
      // id, size of the state, seed words, zero included, size of a word, bits
      {0x100000, 24, 1, 0, 4, 31},        {0x200000, 1024, 252, 1, 4, 32}, {0x300000, 40, 6, 1, 4, 32},
      {0x400000, 32, 1, 0, 8, 59},        {0x500000, 48, 4, 1, 16, 24},    {0x600000, 5472, 1324, 0, 4, 32},
      {0x700000, 43280, 10498, 0, 4, 32}, {0x800000, 2520, 625, 1, 4, 32}, {0x9003ff, 312, 70, 1, 4, 32},
      {0xa00000, 48, 0, 1, 4, 32},        {0xb00000, 64, 0, 1, 4, 32},     {0xc00000, 56, 0, 1, 4, 32}};
  BrngRecord record;
  for (const auto &[id, state, seeds, zero, word, bits] : records) {
    ASSERT_EQ(__vxsGetBrngProperties(id, &record), VXS_STATUS_OK) << id;
    EXPECT_EQ(
        (std::tuple{record.StateSize, record.SeedWords, record.IncludesZero, record.WordSize, record.Bits}),
        (std::tuple{state, seeds, zero, word, bits}))
        << id;
  }
}

TEST(Registry, LegacyIdsAreThoseOfGenerators) {
  for (int32_t id = 0; id < 279; ++id) {
    const int32_t same = id < 4 ? id : id < 277 ? 4 : id - 272;
    int32_t row, member;
    const BrngRecord *table = __vxsGetBrngBaseOffset(id, &row, &member);
    EXPECT_EQ(memcmp(&table[row], &current_generators[same], sizeof(BrngRecord)), 0) << id;
    EXPECT_EQ(member, same == 4 ? id - 4 : 0);
  }
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
int32_t init_nothing(int32_t, StreamState *, int32_t, const void *) { return VXS_STATUS_OK; }
int32_t count(StreamState *stream, int32_t n, uint32_t *out) {
  for (int32_t i = 0; i < n; ++i) out[i] = payload_of<Counter>(stream).next++;
  return VXS_STATUS_OK;
}
int32_t no_doubles(StreamState *, int32_t, double *, double, double) { return -78; }
int32_t no_singles(StreamState *, int32_t, float *, float, float) { return -79; }
constexpr BrngRecord counter = {16 + sizeof(Counter), 3,          1,          4,    32,
                                init_counter,         no_singles, no_doubles, count};

TEST(Registry, RefusesIncompleteGenerators) {
  // Each fault is noticed before those that came before it in the table.
  BrngRecord bad = counter;
  const auto expect_refused = [&](auto BrngRecord::*field, auto value, int32_t status) {
    bad.*field = value;
    EXPECT_EQ(__vxsRegisterBrng(&bad), status);
  };
  expect_refused(&BrngRecord::iBrng, nullptr, VXS_STATUS_NULL_POINTER);
  bad = counter, expect_refused(&BrngRecord::dBrng, nullptr, VXS_STATUS_NULL_POINTER);
  bad = counter, expect_refused(&BrngRecord::sBrng, nullptr, VXS_STATUS_NULL_POINTER);
  bad = counter, expect_refused(&BrngRecord::InitStream, nullptr, VXS_STATUS_NULL_POINTER);
  expect_refused(&BrngRecord::Bits, 0, VXS_STATUS_BAD_BITS);
  expect_refused(&BrngRecord::SeedWords, 0, VXS_STATUS_BAD_SEED_WORDS);
  expect_refused(&BrngRecord::WordSize, 2, VXS_STATUS_BAD_WORD_SIZE);
  expect_refused(&BrngRecord::StateSize, -1, VXS_STATUS_BAD_STATE_SIZE);
}

TEST(Registry, TakesUserGenerators) {
  const int32_t rows = __vxsGetNumRegBrngs(), id = (rows + 1) << 20;
  ASSERT_EQ(__vxsRegisterBrng(&counter), id);
  EXPECT_EQ(__vxsGetNumRegBrngs(), rows + 1);
  const Stream stream = new_stream(static_cast<uint32_t>(id), {41});
  EXPECT_EQ(draw_words(stream, 3), (Words{41, 42, 43}));
  EXPECT_EQ(generator_of(stream).dBrng(stream, 1, nullptr, 0, 1), -78);
  const auto expect_seen = [&](int32_t status, int32_t method, int32_t n, uint32_t next) {
    const Counter &seen = payload_of<Counter>(stream);
    EXPECT_EQ((std::tuple{status, seen.method, seen.n, seen.next}), (std::tuple{0, method, n, next}));
  };
  StreamState *s = stream;
  expect_seen(__vxsLeapfrogStream(s, 5, 9), VXS_INIT_LEAPFROG, 9, 5);
  expect_seen(__vxsSkipAheadStream(s, (int64_t{1} << 32) + 12), VXS_INIT_SKIP_AHEAD, 12, 0);
  expect_seen(qkr_skip_ahead(s, INT32_MAX), VXS_INIT_SKIP_AHEAD, INT32_MAX, 0);
  expect_seen(qkr_skip_ahead(s, (uint64_t{1} << 40) + 12), QKR_INIT_SKIP_AHEAD_64, 0, 12);

  // A stream stays the caller's when seeding fails.
  StreamState *unseeded = nullptr;
  EXPECT_EQ(__vxsNewStreamEx(&unseeded, static_cast<uint32_t>(id), 0, nullptr), -77);
  EXPECT_EQ(__vxsDeleteStream(&unseeded), VXS_STATUS_OK);
}

// A state that no file holds is refused before there is a file. One smaller than a head still gets a head.
TEST(Registry, SizesThatCannotBeSaved) {
  for (const auto &[size, status] : {std::pair{0, VXS_STATUS_BAD_STATE_SIZE},
                                     {15, VXS_STATUS_BAD_STATE_SIZE},
                                     {16, VXS_STATUS_FILE_WRITE},
                                     {17, VXS_STATUS_OK},
                                     {65551, VXS_STATUS_OK},
                                     {65552, VXS_STATUS_BAD_STATE_SIZE}}) {
    const BrngRecord generator = {size, 3, 1, 4, 32, init_nothing, no_singles, no_doubles, count};
    const auto id = static_cast<uint32_t>(__vxsRegisterBrng(&generator));
    const Stream stream = new_stream(id, {}), copy = copy_of(stream);
    EXPECT_EQ(__vxsSaveStreamF(stream, "/dev/null", -1), status) << size;
    EXPECT_EQ(__vxsCopyStreamState(copy, stream), VXS_STATUS_OK);
  }
}

TEST(Stream, IsMadeOfKnownGeneratorsAndDeletedOnce) {
  StreamState *const before = reinterpret_cast<StreamState *>(8), *stream = before;
  for (const uint32_t id : {279u, 0xfffffu, 0x100001u, 0x500111u, 0x900400u, 0xa00000u, 0xb00000u, 0xc00000u,
                            0x20000000u, 0x7fffffffu})
    EXPECT_EQ(__vxsNewStreamEx(&stream, id, 0, nullptr), VXS_STATUS_BAD_GENERATOR) << id;
  EXPECT_EQ(stream, before);
  stream = new_stream(0, {1}).release();
  EXPECT_EQ(stream->flags, 1);
  EXPECT_EQ(__vxsDeleteStream(&stream), VXS_STATUS_OK);
  EXPECT_EQ(__vxsDeleteStream(&stream), VXS_STATUS_NULL_POINTER);
}

TEST(Chunks, TheNewestComesFirst) {
  const Stream stream = new_stream(0, {1});
  StreamState *s = stream;
  EXPECT_EQ(__vxsSearchChunk(s, 2), nullptr);
  void *const blocks[] = {malloc(1), malloc(2), malloc(3)};
  for (uint32_t k = 0; k < 3; ++k) __vxsAddChunk(s, k == 1 ? 7 : 2, blocks[k], k + 1);
  EXPECT_TRUE(__vxsSearchChunk(s, 2) == blocks[2] && __vxsSearchChunk(s, 7) == blocks[1]);
  EXPECT_EQ(__vxsGetNumChunks(s), 3);
  for (int again = 0; again < 2; ++again) __vxsDeleteChunks(s);
  EXPECT_TRUE(__vxsGetNumChunks(s) == 0 && !s->chunks);
}

}  // namespace
