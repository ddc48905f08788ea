// Abstract streams: what is read of the buffer, what the callback is told, and what it may not report.
#include <functional>
#include <qkr/streams_abstract.h>
#include <random>
#include <tuple>

#include "tests/streams/stream.h"

namespace {

using namespace qkr::tests;

// What a callback saw, and how it is to answer.
struct Script {
  std::function<int32_t(int32_t, int32_t)> store = [](int32_t needed, int32_t) { return needed; };
  int calls = 0;
  int32_t size, count, free, position;
  uint32_t next = 0;  // the numbers are 0, 1, 2, ...
};
Script script;

template <class T>
int32_t update(StreamState *, int32_t *size, T *buffer, int32_t *count, int32_t *free, int32_t *position) {
  script.size = *size, script.count = *count, script.free = *free, script.position = *position;
  ++script.calls;
  const int32_t stored = script.store(*count, *free);
  for (int32_t i = 0; i < stored && i < *free; ++i)
    buffer[(*position + i) % *size] = static_cast<T>(script.next++);
  *size = *count = *free = *position = -99;  // only copies
  return stored;
}

Stream made_of(std::vector<uint32_t> &buffer) {
  script = {};
  return made([&](StreamState **out) {
    return __vxsiNewAbstractStream(out, int32_t(buffer.size()), buffer.data(), update<uint32_t>);
  });
}

TEST(AbstractStream, ReadsWhatTheCallbackStores) {
  std::vector<uint32_t> buffer(7, 1000);
  const Stream stream = made_of(buffer);
  std::mt19937 engine(1);
  script.store = [&](int32_t, int32_t free) { return 1 + static_cast<int32_t>(engine() % free); };
  uint32_t expected = 0;
  for (int round = 0; round < 2000; ++round)
    for (const uint32_t word : draw_words(stream, static_cast<int32_t>(engine() % 20)))
      ASSERT_EQ(word, expected++);
  EXPECT_GT(script.calls, 1000);
}

TEST(AbstractStream, TellsTheCallbackWhatIsNeeded) {
  std::vector<uint32_t> buffer(8);
  const Stream stream = made_of(buffer);
  script.store = [](int32_t needed, int32_t free) { return script.calls == 1 ? needed : free; };
  const struct {
    int32_t draw, calls, count, position;  // of the last call
  } rows[] = {{3, 1, 3, 0},                // as many as needed
              {2, 2, 2, 3},                // 2 read, 6 kept
              {6, 2, 2, 3},                // exactly what is left, across the end
              {8, 3, 8, 3},                // all of the buffer
              {20, 6, 4, 3}};              // 8, 8, 4
  for (const auto &row : rows) {
    draw_words(stream, row.draw);
    EXPECT_EQ((std::tuple{script.calls, script.size, script.count, script.free, script.position}),
              (std::tuple{row.calls, 8, row.count, 8, row.position}))
        << row.draw;
  }
}

// Its numbers are those of the buffer, mapped from its bounds to the range asked for; entries of other types
// refuse it, and so does what would move it.
template <class T, class Construct, class... Bounds>
void expect_own_type_only(uint32_t id, Construct construct, std::vector<T> expected, Bounds... bounds) {
  script = {};
  std::vector<T> buffer(3);
  const Stream stream =
      made([&](auto out) { return construct(out, 3, buffer.data(), bounds..., update<T>); });
  ASSERT_EQ(stream->brng, id);
  const BrngRecord generator = generator_of(stream);
  const auto expect_status = [](bool own, int32_t status) {
    EXPECT_EQ(status, own ? VXS_STATUS_OK : VXS_STATUS_OTHER_TYPE);
  };
  uint32_t words[5];
  double doubles[5];
  float singles[5];
  expect_status(std::is_same_v<T, uint32_t>, generator.iBrng(stream.get(), 5, words));
  expect_status(std::is_same_v<T, double>, generator.dBrng(stream.get(), 5, doubles, -1, 3));
  expect_status(std::is_same_v<T, float>, generator.sBrng(stream.get(), 5, singles, -1, 3));
  if constexpr (std::is_same_v<T, uint32_t>) EXPECT_EQ((std::vector<T>(words, words + 5)), expected);
  else if constexpr (std::is_same_v<T, double>) EXPECT_EQ((std::vector<T>(doubles, doubles + 5)), expected);
  else EXPECT_EQ((std::vector<T>(singles, singles + 5)), expected);
  EXPECT_EQ(__vxsLeapfrogStream(stream.get(), 0, 1), VXS_STATUS_NO_LEAPFROG);
  EXPECT_EQ(__vxsSkipAheadStream(stream.get(), 1), VXS_STATUS_NO_SKIP_AHEAD);
  EXPECT_EQ(generator.InitStream(3, stream.get(), 0, nullptr), VXS_STATUS_BAD_METHOD);
}
TEST(AbstractStream, IsReadInItsOwnTypeOnly) {
  expect_own_type_only<uint32_t>(0xa00000, __vxsiNewAbstractStream, {0, 1, 2, 3, 4});
  expect_own_type_only<double>(0xb00000, __vxsdNewAbstractStream, {-2, -1.5, -1, -0.5, 0}, 2.0, 10.0);
  expect_own_type_only<float>(0xc00000, __vxssNewAbstractStream, {-2, -1.5, -1, -0.5, 0}, 2.0f, 10.0f);
}

TEST(AbstractStream, RefusesImpossibleCounts) {
  std::vector<uint32_t> buffer(5);
  const Stream stream = made_of(buffer);
  const BrngRecord generator = generator_of(stream);
  std::vector<uint32_t> words(9);
  const struct {
    int32_t stored, status;
  } rows[] = {{-1, VXS_STATUS_BAD_UPDATE},
              {6, VXS_STATUS_BAD_UPDATE},
              {INT32_MIN, VXS_STATUS_BAD_UPDATE},
              {0, VXS_STATUS_NO_NUMBERS},
              {5, VXS_STATUS_OK}};
  for (const auto &row : rows) {
    script.store = [&](int32_t, int32_t) { return row.stored; };
    EXPECT_EQ(generator.iBrng(stream.get(), 1, words.data()), row.status) << row.stored;
  }
  // Numbers that came before the failure are out and not read again.
  script.store = [](int32_t, int32_t) { return 0; };
  EXPECT_EQ(generator.iBrng(stream.get(), 9, words.data()), VXS_STATUS_NO_NUMBERS);
  EXPECT_EQ(words[3], words[0] + 3);
  script.store = [](int32_t, int32_t) { return 1; };
  EXPECT_EQ(draw_words(stream, 1)[0], words[3] + 1);
}

TEST(AbstractStream, ConstructorsCheckTheirArguments) {
  StreamState *const before = reinterpret_cast<StreamState *>(8);
  StreamState *s = before;
  uint32_t i[1];
  double d[1];
  float f[1];
  int row = 0;
  for (const int32_t status :
       {__vxsiNewAbstractStream(&s, 0, i, update<uint32_t>),
        __vxsiNewAbstractStream(&s, -1, i, update<uint32_t>),
        __vxsiNewAbstractStream(&s, 1, nullptr, update<uint32_t>), __vxsiNewAbstractStream(&s, 1, i, nullptr),
        __vxsdNewAbstractStream(&s, 0, d, 0, 1, update<double>),
        __vxsdNewAbstractStream(&s, 1, nullptr, 0, 1, update<double>),
        __vxsdNewAbstractStream(&s, 1, d, 0, 1, nullptr),
        __vxsdNewAbstractStream(&s, 1, d, 1, 1, update<double>),
        __vxssNewAbstractStream(&s, 1, f, 2, 1, update<float>),
        __vxssNewAbstractStream(&s, 1, f, 0, __builtin_nanf(""), update<float>)})
    EXPECT_EQ(status, VXS_STATUS_BAD_ARGUMENT) << row++;
  EXPECT_EQ(s, before);
}

}  // namespace
