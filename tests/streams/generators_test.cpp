// Every generator against its definition: in blocks of any size, skipped, split, at every vector width.
#include "tests/streams/generators.h"

#include <random>
#include <set>

#include "streams/quasi/digital_sequence.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace {

using namespace qkr::tests;

// The words by definition, from where the stream is.
struct Expected {
  Steps steps;
  size_t words_each;
  Expected(const Generator &generator, const Stream &stream)
      : steps(generator.definition(stream, generator.seeds)), words_each(generator_of(stream).WordSize / 4) {}

  Words words(int32_t n) {
    Words all(n * words_each);
    for (int32_t i = 0; i < n; ++i) steps(&all[i * words_each]);
    return all;
  }
};

std::string state_of(const Stream &stream) {
  std::string bytes = payload(stream);
  for (const StreamChunk *chunk = stream->chunks; chunk; chunk = chunk->next)
    bytes.append(static_cast<const char *>(chunk->data), chunk->size);
  return bytes;
}

// Reals at once, and one by one from a lower end that is the same number.
template <class T, class Entry>
void expect_same_alone(Entry entry, const Stream &stream, const Stream &stepwise, int32_t n, T a, T same,
                       T b) {
  std::vector<T> alone(n);
  for (T &number : alone) entry(stepwise.get(), 1, &number, same, b);
  EXPECT_EQ(drawn_by<T>(entry, stream, n, n, a, b), alone);
}

// Blocks of random length and form from where the stream is, and after each block the state of a stream that
// took one step at a time. What reals are made of the words, draws_digest.txt records.
void expect_definition_followed(const Generator &generator, const Stream &from, int32_t numbers) {
  for_each_level([&](const char *level) {
    const Stream stream = copy_of(from), stepwise = copy_of(from);
    const BrngRecord record = generator_of(stream);
    Expected expected(generator, stream);
    std::mt19937 engine(2026);
    for (int32_t total = 0, n; total < numbers; total += n) {
      const uint32_t choice = engine();
      n = static_cast<int32_t>(engine() % (choice % 8 == 0 ? 40000 : choice % 4 == 0 ? 2000 : 90));
      SCOPED_TRACE(testing::Message() << level << ", " << n << " numbers after " << total);
      const uint32_t form = engine() % 5;
      const Words words = expected.words(n);
      uint32_t word[4];
      if (form == 0) {
        for (int32_t i = 0; i < n; ++i) record.iBrng(stepwise.get(), 1, word);
        EXPECT_EQ(draw_words(stream, n), words);
      }
      // From 0 to a power of two has a way of its own, which -0 does not take.
      if (form == 1) expect_same_alone(record.dBrng, stream, stepwise, n, -1.5, -1.5, 2.3);
      if (form == 2) expect_same_alone(record.sBrng, stream, stepwise, n, -1.1f, -1.1f, 1e3f);
      if (form == 3) expect_same_alone(record.dBrng, stream, stepwise, n, 0.0, -0.0, 0.25);
      if (form == 4) expect_same_alone(record.sBrng, stream, stepwise, n, 0.0f, -0.0f, 0.25f);
      ASSERT_EQ(state_of(stream), state_of(stepwise));
    }
  });
}

class EveryGenerator : public testing::TestWithParam<Generator> {
 protected:
  const Generator &generator = GetParam();
};
INSTANTIATE_TEST_SUITE_P(, EveryGenerator, testing::ValuesIn(all_generators()));

TEST_P(EveryGenerator, FollowsItsDefinitionInAnyBlocks) {
  expect_definition_followed(generator, generator.start(), 1000000);
}

// No numbers write none; what a generator cannot do, it refuses.
TEST_P(EveryGenerator, StaysWhereItIs) {
  const Stream stream = generator.start();
  draw_words(stream, 4);
  const std::string before = payload(stream);
  const BrngRecord record = generator_of(stream);
  StreamState *const s = stream.get();
  for (const int32_t n : {0, -1, INT32_MIN}) {
    EXPECT_EQ(record.iBrng(s, n, nullptr), VXS_STATUS_OK);
    EXPECT_EQ(record.dBrng(s, n, nullptr, 0, 1), VXS_STATUS_OK);
    EXPECT_EQ(record.sBrng(s, n, nullptr, 0, 1), VXS_STATUS_OK);
  }
  for (const int32_t method : {3, 1000, -1, INT32_MIN})
    EXPECT_EQ(record.InitStream(method, s, 1, nullptr), VXS_STATUS_BAD_METHOD);

  const bool by_dimension = generator.moves == Moves::by_dimension, skips = generator.moves != Moves::none;
  const int32_t of_skips = skips ? VXS_STATUS_OK : VXS_STATUS_NO_SKIP_AHEAD;
  EXPECT_EQ(qkr_skip_ahead(s, 0), of_skips);
  for (const int64_t count : {int64_t{0}, int64_t{1} << 32})  // of which the low 32 bits count
    EXPECT_EQ(__vxsSkipAheadStream(s, count), by_dimension ? VXS_STATUS_NO_SKIP_AHEAD : of_skips);
  if (by_dimension || !skips) {
    EXPECT_EQ(__vxsSkipAheadStream(s, -1), VXS_STATUS_NO_SKIP_AHEAD);
  }
  if (!skips) {
    EXPECT_EQ(qkr_skip_ahead(s, uint64_t{1} << 40), VXS_STATUS_NO_SKIP_AHEAD);
  }
  const auto dimensions = static_cast<int32_t>(generator.seeds[0]);
  for (const auto &[stride, index] :
       {std::pair{3, 0}, {QKR_ONE_DIMENSION, dimensions}, {QKR_ONE_DIMENSION, -1}})
    if (generator.moves != Moves::apart) {
      EXPECT_EQ(__vxsLeapfrogStream(s, index, stride), VXS_STATUS_NO_LEAPFROG);
    }
  EXPECT_EQ(payload(stream), before);
}

TEST_P(EveryGenerator, SkipsWhatItWouldDraw) {
  if (generator.moves == Moves::none) return;
  const Stream drawn = generator.start(), skipped = copy_of(drawn), skipped_64 = copy_of(drawn);
  for (const int32_t count : {4, 1, 2, 3, 9, 41, 82, 1000, 123457, 1}) {
    draw_words(drawn, count);
    EXPECT_EQ(__vxsSkipAheadStream(skipped.get(), count), VXS_STATUS_OK);
    EXPECT_EQ(qkr_skip_ahead(skipped_64.get(), static_cast<uint64_t>(count)), VXS_STATUS_OK);
    ASSERT_EQ(payload(skipped), payload(drawn)) << count;
    ASSERT_EQ(payload(skipped_64), payload(drawn)) << count;
  }
  // Further than anybody draws: each count as two halves, from those that were drawn upward.
  for (uint64_t half = 61729; half >> 63 == 0; half *= 2) {
    for (int i = 0; i < 2; ++i) EXPECT_EQ(qkr_skip_ahead(skipped.get(), half), VXS_STATUS_OK);
    EXPECT_EQ(qkr_skip_ahead(skipped_64.get(), 2 * half), VXS_STATUS_OK);
    ASSERT_EQ(payload(skipped_64), payload(skipped)) << half;
    if (2 * half > INT32_MAX) continue;
    EXPECT_EQ(__vxsSkipAheadStream(drawn.get(), static_cast<int64_t>(2 * half)), VXS_STATUS_OK);
    ASSERT_EQ(payload(drawn), payload(skipped)) << half;
  }
}

// Splits of splits: every 14000th number in the end.
TEST_P(EveryGenerator, Leapfrogs) {
  if (generator.moves != Moves::apart) return;
  const Stream stream = generator.start();
  Expected expected(generator, stream);
  EXPECT_EQ(draw_words(stream, 5), expected.words(5));
  int32_t apart = 1;
  for (const auto &[index, stride] : {std::pair{0, 1}, {1, 2}, {6, 7}, {999, 1000}}) {
    ASSERT_EQ(__vxsLeapfrogStream(stream.get(), index, stride), VXS_STATUS_OK);
    expected.words(apart * index);
    apart *= stride;
    EXPECT_EQ(__vxsSkipAheadStream(stream.get(), 3), VXS_STATUS_OK);
    expected.words(3 * apart);
    Words kept;
    for (int32_t i = 0; i < 100; ++i) {
      const Words row = expected.words(apart);
      kept.insert(kept.end(), row.begin(), row.begin() + ptrdiff_t(expected.words_each));
    }
    EXPECT_EQ(draw_words(stream, 100), kept) << stride;
  }
}

// Further numbers of dimensions, and places in the sequence: inside a point, in one dimension only, and
// before the index wraps.
TEST(DigitalSequences, FollowTheirDefinitionFromAnywhere) {
  constexpr int32_t sobol = QKR_SOBOL, niederreiter = QKR_NIEDERREITER, all = -1, wrapping = -1;
  // Generator, dimensions, how many numbers are skipped, the only dimension.
  const int32_t rows[][4] = {{sobol, 2, 0, all},
                             {sobol, 4, 1, all},
                             {sobol, 5, 7, all},
                             {sobol, 8, 1 << 30, all},
                             {sobol, 9, 0, all},
                             {sobol, 16, 17, all},
                             {sobol, 17, 0, all},
                             {sobol, 60, 1000, all},
                             {sobol, 1, wrapping, all},
                             {sobol, 13, wrapping, all},
                             {sobol, 13, 777, 3},
                             {sobol, 41, 1 << 29, 40},
                             {sobol, 41, wrapping, all},
                             {niederreiter, 3, 0, all},
                             {niederreiter, 100, 12345, all},
                             {niederreiter, 318, 5000, 317},
                             {niederreiter, 318, wrapping, 1},
                             {niederreiter, 350, 100, all}};
  for (const auto &[generator, dim, skipped, only] : rows) {
    const auto id = static_cast<uint32_t>(generator), dimensions = static_cast<uint32_t>(dim);
    SCOPED_TRACE(testing::Message() << std::hex << id << std::dec << ", " << dim << " dimensions");
    const bool by_tables = dim <= (generator == sobol ? 40 : 318);
    const Seeds seeds = by_tables ? Seeds{dimensions} : user_directions(dimensions);
    const Stream stream = new_stream(id, seeds);
    const uint64_t before_end = uint64_t{dimensions} * (0u - 40) + dimensions / 2;
    qkr_skip_ahead(stream.get(), skipped == wrapping ? before_end : static_cast<uint64_t>(skipped));
    if (only >= 0) __vxsLeapfrogStream(stream.get(), only, QKR_ONE_DIMENSION);
    expect_definition_followed({"", id, seeds, Moves::by_dimension, digital_sequence}, stream, 30000);
  }
}

// 2^31 - 1 numbers, where counting reaches the end of its range: the last of them, and the state behind them,
// are those of a stream that got there in other ways.
TEST(LongDraws, ReachTheLargestCount) {
  constexpr int32_t most = INT32_MAX, last = 1000;
  const Repeated memory(size_t{16} * most);
  if (!memory.data()) GTEST_SKIP() << "no addresses";
  const auto expect_same = [&](const Generator &generator, size_t size, auto draw) {
    const Stream stream = generator.start(), other = generator.start();
    ASSERT_EQ(draw(stream, most), VXS_STATUS_OK);
    const char *const end = memory.data() + size * most;
    const std::string numbers(end - size * last, end);
    int32_t left = most - last;
    if (generator.moves != Moves::none) EXPECT_EQ(__vxsSkipAheadStream(other.get(), left), VXS_STATUS_OK);
    else
      for (int32_t n; left > 0; left -= n) draw(other, n = std::min(left, 1 << 20));
    ASSERT_EQ(draw(other, last), VXS_STATUS_OK);
    EXPECT_EQ(numbers, std::string(memory.data(), size * last)) << generator.name;
    EXPECT_EQ(payload(stream), payload(other)) << generator.name;
  };
  const std::set<std::string> chosen = {"MCG31M1", "R250",     "MRG32K3A", "MCG59",   "WH 0",
                                        "Sobol 3", "Sobol 40", "MT19937",  "MT2203 0"};
  for (const Generator &generator : all_generators()) {
    if (!chosen.contains(generator.name)) continue;
    const BrngRecord record = generator_of(generator.start());
    expect_same(generator, record.WordSize, [&](const Stream &from, int32_t n) {
      return record.iBrng(from.get(), n, reinterpret_cast<uint32_t *>(memory.data()));
    });
    if (record.WordSize == 16)  // the others make reals of their words
      expect_same(generator, sizeof(float), [&](const Stream &from, int32_t n) {
        return record.sBrng(from.get(), n, reinterpret_cast<float *>(memory.data()), 0, 1);
      });
  }
}

}  // namespace
