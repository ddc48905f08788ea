// Abstract streams: what is read of the buffer, what the callback is told, and what it may not report.
#include <functional>
#include <qkr/streams_abstract.h>
#include <random>

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

template <class T>
StreamState *made_of(std::vector<T> &buffer) {
  script = {};
  StreamState *stream = nullptr;
  const auto size = static_cast<int32_t>(buffer.size());
  int32_t status;
  if constexpr (std::is_same_v<T, uint32_t>)
    status = __vxsiNewAbstractStream(&stream, size, buffer.data(), update<T>);
  else if constexpr (std::is_same_v<T, double>)
    status = __vxsdNewAbstractStream(&stream, size, buffer.data(), 0, 8, update<T>);
  else status = __vxssNewAbstractStream(&stream, size, buffer.data(), 0, 8, update<T>);
  EXPECT_EQ(status, VXS_STATUS_OK);
  return stream;
}

TEST(AbstractStream, ReadsWhatTheCallbackStores) {
  std::vector<uint32_t> buffer(7, 1000);
  const Stream stream(made_of(buffer));
  std::mt19937 engine(1);
  uint32_t expected = 0;
  for (int round = 0; round < 2000; ++round) {
    script.store = [&](int32_t, int32_t free) { return 1 + static_cast<int32_t>(engine() % free); };
    for (const uint32_t word : draw_words(stream, static_cast<int32_t>(engine() % 20)))
      ASSERT_EQ(word, expected++);
  }
  EXPECT_GT(script.calls, 1000);
}

TEST(AbstractStream, TellsTheCallbackWhatIsNeeded) {
  std::vector<uint32_t> buffer(8);
  const Stream stream(made_of(buffer));
  draw_words(stream, 3);
  EXPECT_EQ(script.calls, 1);
  EXPECT_EQ(script.size, 8);
  EXPECT_EQ(script.count, 3);
  EXPECT_EQ(script.free, 8);
  EXPECT_EQ(script.position, 0);

  script.store = [](int32_t, int32_t free) { return free; };
  draw_words(stream, 2);  // 2 read, 6 kept
  EXPECT_EQ(script.position, 3);
  EXPECT_EQ(script.count, 2);
  draw_words(stream, 6);  // exactly what is left, across the end
  EXPECT_EQ(script.calls, 2);
  draw_words(stream, 20);
  EXPECT_EQ(script.calls, 5);
  EXPECT_EQ(script.count, 4);  // 8, 8, 4
  EXPECT_EQ(draw_words(stream, 1)[0], 31u);
}

template <class T>
void maps_to_the_range_asked_for() {
  std::vector<T> buffer(3);
  const Stream stream(made_of(buffer));
  std::vector<T> numbers;
  if constexpr (sizeof(T) == 8) numbers = draw_doubles(stream, 5, -1, 3);
  else numbers = draw_singles(stream, 5, -1, 3);
  EXPECT_EQ(numbers, (std::vector<T>{-1, -0.5, 0, 0.5, 1}));
}
TEST(AbstractStream, MapsDoubles) { maps_to_the_range_asked_for<double>(); }
TEST(AbstractStream, MapsSingles) { maps_to_the_range_asked_for<float>(); }

template <class T>
void refuses(uint32_t id, bool i, bool d, bool s) {
  std::vector<T> buffer(4);
  const Stream stream(made_of(buffer));
  EXPECT_EQ(stream->brng, id);
  const BrngRecord generator = generator_of(stream);
  uint32_t word;
  double real;
  float single;
  const auto expected = [](bool reads) { return reads ? VXS_STATUS_OK : VXS_STATUS_OTHER_TYPE; };
  EXPECT_EQ(generator.iBrng(stream.get(), 1, &word), expected(i));
  EXPECT_EQ(generator.dBrng(stream.get(), 1, &real, 0, 1), expected(d));
  EXPECT_EQ(generator.sBrng(stream.get(), 1, &single, 0, 1), expected(s));
  EXPECT_EQ(__vxsLeapfrogStream(stream.get(), 0, 1), VXS_STATUS_NO_LEAPFROG);
  EXPECT_EQ(__vxsSkipAheadStream(stream.get(), 1), VXS_STATUS_NO_SKIP_AHEAD);
  EXPECT_EQ(generator.InitStream(3, stream.get(), 0, nullptr), VXS_STATUS_BAD_METHOD);
}
TEST(AbstractStream, IsReadInItsOwnTypeOnly) {
  refuses<uint32_t>(0xa00000, true, false, false);
  refuses<double>(0xb00000, false, true, false);
  refuses<float>(0xc00000, false, false, true);
}

TEST(AbstractStream, RefusesImpossibleCounts) {
  std::vector<uint32_t> buffer(5);
  const Stream stream(made_of(buffer));
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
  const int32_t refused[] = {__vxsiNewAbstractStream(&s, 0, i, update<uint32_t>),
                             __vxsiNewAbstractStream(&s, -1, i, update<uint32_t>),
                             __vxsiNewAbstractStream(&s, 1, nullptr, update<uint32_t>),
                             __vxsiNewAbstractStream(&s, 1, i, nullptr),
                             __vxsdNewAbstractStream(&s, 0, d, 0, 1, update<double>),
                             __vxsdNewAbstractStream(&s, 1, nullptr, 0, 1, update<double>),
                             __vxsdNewAbstractStream(&s, 1, d, 0, 1, nullptr),
                             __vxsdNewAbstractStream(&s, 1, d, 1, 1, update<double>),
                             __vxssNewAbstractStream(&s, 1, f, 2, 1, update<float>),
                             __vxssNewAbstractStream(&s, 1, f, 0, __builtin_nanf(""), update<float>)};
  for (const int32_t status : refused) EXPECT_EQ(status, VXS_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(s, before);
}

TEST(AbstractStream, NeedsItsBuffer) {
  std::vector<double> buffer(3);
  const Stream stream(made_of(buffer));
  double *const none = nullptr;
  memcpy(reinterpret_cast<char *>(stream.get()) + 48, &none, sizeof none);
  double number;
  EXPECT_EQ(generator_of(stream).dBrng(stream.get(), 1, &number, 0, 1), VXS_STATUS_NULL_POINTER);
}

}  // namespace
