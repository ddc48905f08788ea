// Abstract streams: what is read of the buffer, what the callback is told, and what it may not report.
#include <functional>
#include <qkr/streams_abstract.h>
#include <random>

#include "tests/streams/stream.h"

namespace {

using namespace qkr::tests;

// The numbers are 0, 1, 2, ...: how many were stored, and how many have been asked for.
int32_t stored, wanted;
std::function<int32_t(int32_t free)> how_many;  // the callback's answer

// Called when all is read that was stored.
template <class T>
int32_t update(StreamState *, int32_t *size, T *buffer, int32_t *count, int32_t *free, int32_t *position) {
  EXPECT_EQ(*free, *size);
  EXPECT_EQ(*count, std::min(wanted - stored, *size));
  EXPECT_EQ(*position, stored % *size);
  const int32_t answer = how_many(*free);
  for (int32_t i = 0; i < answer && answer <= *free; ++i) buffer[(*position + i) % *size] = T(stored++);
  *size = *count = *free = *position = -99;  // only copies
  return answer;
}

template <class T, class Construct, class... Bounds>
Stream made_of(std::vector<T> &buffer, Construct construct, Bounds... bounds) {
  stored = 0;
  how_many = [](int32_t free) { return free; };
  const auto size = static_cast<int32_t>(buffer.size());
  return made([&](auto out) { return construct(out, size, buffer.data(), bounds..., update<T>); });
}

TEST(AbstractStream, ReadsWhatTheCallbackStores) {
  Words buffer(7, 1000);
  const Stream stream = made_of(buffer, __vxsiNewAbstractStream);
  std::mt19937 engine(1);
  how_many = [&](int32_t free) { return 1 + static_cast<int32_t>(engine() % free); };
  uint32_t expected = 0;
  for (int round = 0; round < 2000; ++round) {
    const auto n = static_cast<int32_t>(engine() % 20);
    wanted = static_cast<int32_t>(expected) + n;
    for (const uint32_t word : draw_words(stream, n)) ASSERT_EQ(word, expected++);
  }
}

// Its numbers are those of the buffer, mapped from its bounds to the range asked for; entries of other types
// refuse it, and so does what would move it.
template <class T, class Construct, class... Bounds>
void expect_own_type_only(uint32_t id, Construct construct, std::vector<T> expected, Bounds... bounds) {
  std::vector<T> buffer(3);
  const Stream stream = made_of(buffer, construct, bounds...);
  wanted = 5;
  ASSERT_EQ(stream->brng, id);
  const auto expect_own = [&](int32_t status, const auto *numbers) {
    constexpr bool own = std::is_same_v<decltype(numbers), const T *>;
    EXPECT_EQ(status, own ? VXS_STATUS_OK : VXS_STATUS_OTHER_TYPE);
    if constexpr (own) {
      EXPECT_EQ((std::vector<T>(numbers, numbers + 5)), expected);
    }
  };
  const BrngRecord generator = generator_of(stream);
  uint32_t words[5];
  double doubles[5];
  float singles[5];
  expect_own(generator.iBrng(stream, 5, words), words);
  expect_own(generator.dBrng(stream, 5, doubles, -1, 3), doubles);
  expect_own(generator.sBrng(stream, 5, singles, -1, 3), singles);
  EXPECT_EQ(__vxsLeapfrogStream(stream, 0, 1), VXS_STATUS_NO_LEAPFROG);
  EXPECT_EQ(__vxsSkipAheadStream(stream, 1), VXS_STATUS_NO_SKIP_AHEAD);
  EXPECT_EQ(generator.InitStream(3, stream, 0, nullptr), VXS_STATUS_BAD_METHOD);
}
TEST(AbstractStream, IsReadInItsOwnTypeOnly) {
  expect_own_type_only<uint32_t>(0xa00000, __vxsiNewAbstractStream, {0, 1, 2, 3, 4});
  expect_own_type_only<double>(0xb00000, __vxsdNewAbstractStream, {-2, -1.5, -1, -0.5, 0}, 2.0, 10.0);
  expect_own_type_only<float>(0xc00000, __vxssNewAbstractStream, {-2, -1.5, -1, -0.5, 0}, 2.0f, 10.0f);
}

TEST(AbstractStream, RefusesImpossibleCounts) {
  Words buffer(5), words(9);
  const Stream stream = made_of(buffer, __vxsiNewAbstractStream);
  const auto status_of_draw = [&](int32_t n, int32_t answer) {
    how_many = [=](int32_t) { return answer; };
    return generator_of(stream).iBrng(stream, n, words.data());
  };
  wanted = 1;
  for (const int32_t impossible : {-1, 6, INT32_MIN})
    EXPECT_EQ(status_of_draw(1, impossible), VXS_STATUS_BAD_UPDATE) << impossible;
  EXPECT_EQ(status_of_draw(1, 0), VXS_STATUS_NO_NUMBERS);
  EXPECT_EQ(status_of_draw(1, 5), VXS_STATUS_OK);
  // Numbers that came before a failure are out and not read again.
  wanted = 10;
  EXPECT_EQ(status_of_draw(9, 0), VXS_STATUS_NO_NUMBERS);
  EXPECT_EQ(words[3], 4u);
  wanted = 6;
  EXPECT_EQ(status_of_draw(1, 1), VXS_STATUS_OK);
  EXPECT_EQ(words[0], 5u);
}

TEST(AbstractStream, ConstructorsCheckTheirArguments) {
  StreamState *const before = reinterpret_cast<StreamState *>(8), *s = before;
  uint32_t i[1];
  double d[1];
  float f[1];
  int row = 0;
  for (const int32_t status :
       {__vxsiNewAbstractStream(&s, 0, i, update<uint32_t>),
        __vxsiNewAbstractStream(&s, 1, nullptr, update<uint32_t>), __vxsiNewAbstractStream(&s, 1, i, nullptr),
        __vxsdNewAbstractStream(&s, -1, d, 0, 1, update<double>),
        __vxsdNewAbstractStream(&s, 1, d, 1, 1, update<double>),
        __vxssNewAbstractStream(&s, 1, f, 0, __builtin_nanf(""), update<float>)})
    EXPECT_EQ(status, VXS_STATUS_BAD_ARGUMENT) << row++;
  EXPECT_EQ(s, before);
}

}  // namespace
