// Every generator against its definition: in blocks of any size, skipped, split, at every vector width.
#include "tests/streams/generators.h"

#include <random>
#include <set>

#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace {

using namespace qkr::tests;

// The words of the next n numbers.
Words next_words(const Steps &definition, int32_t n, uint32_t words_each) {
  Words words(n * words_each);
  for (size_t i = 0; i < words.size(); i += words_each) definition(&words[i]);
  return words;
}

// Reals at once, and one by one from a lower end that is the same number.
template <class T, class Entry>
void expect_same_alone(Entry entry, const Stream &stream, const Stream &stepwise, int32_t n, T a, T same,
                       T b) {
  std::vector<T> alone(n);
  for (T &number : alone) entry(stepwise, 1, &number, same, b);
  EXPECT_EQ(drawn_by<T>(entry, stream, n, n, a, b), alone);
}

// Blocks of random length and form from where the stream is, and after each block the state of a stream that
// took one step at a time. What reals are made of the words, draws_digest.txt records.
void expect_definition_followed(const Generator &generator, const Stream &from, int32_t numbers) {
  for_each_level([&](const char *level) {
    const Stream stream = copy_of(from), stepwise = copy_of(from);
    const BrngRecord record = generator_of(stream);
    const Steps definition = generator.definition(stream, generator.seeds);
    std::mt19937 engine(2026);
    for (int32_t total = 0, n; total < numbers; total += n) {
      const uint32_t choice = engine(), form = engine() % 5;
      n = static_cast<int32_t>(engine() % (choice % 8 == 0 ? 40000 : choice % 4 == 0 ? 2000 : 90));
      SCOPED_TRACE(testing::Message() << level << ", " << n << " numbers after " << total);
      const Words words = next_words(definition, n, record.WordSize / 4);
      uint32_t word[4];
      if (form == 0) {
        for (int32_t i = 0; i < n; ++i) record.iBrng(stepwise, 1, word);
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
  const Stream stream = generator.start();
  const BrngRecord record = generator_of(stream);
};
INSTANTIATE_TEST_SUITE_P(, EveryGenerator, testing::ValuesIn(all_generators()));

TEST_P(EveryGenerator, FollowsItsDefinitionInAnyBlocks) {
  expect_definition_followed(generator, stream, 1000000);
}

// No numbers write none; what a generator cannot do, it refuses.
TEST_P(EveryGenerator, StaysWhereItIs) {
  draw_words(stream, 4);
  const std::string before = state_of(stream);
  for (const int32_t n : {0, -1, INT32_MIN}) {
    EXPECT_EQ(record.iBrng(stream, n, nullptr), VXS_STATUS_OK);
    EXPECT_EQ(record.dBrng(stream, n, nullptr, 0, 1), VXS_STATUS_OK);
    EXPECT_EQ(record.sBrng(stream, n, nullptr, 0, 1), VXS_STATUS_OK);
  }
  EXPECT_EQ(record.InitStream(3, stream, 1, nullptr), VXS_STATUS_BAD_METHOD);
  if (generator.moves == Moves::none) {
    EXPECT_EQ(qkr_skip_ahead(stream, 1ul << 40), VXS_STATUS_NO_SKIP_AHEAD);
  }
  if (generator.moves == Moves::none || generator.moves == Moves::by_dimension) {
    for (const int64_t count : {0l, -1l, 1l << 32})  // of which the low 32 bits count
      EXPECT_EQ(__vxsSkipAheadStream(stream, count), VXS_STATUS_NO_SKIP_AHEAD) << count;
  }
  if (generator.moves != Moves::apart) {
    const auto dimensions = static_cast<int32_t>(generator.seeds[0]);
    for (const auto &[stride, index] :
         {std::pair{3, 0}, {QKR_ONE_DIMENSION, dimensions}, {QKR_ONE_DIMENSION, -1}})
      EXPECT_EQ(__vxsLeapfrogStream(stream, index, stride), VXS_STATUS_NO_LEAPFROG);
  }
  EXPECT_EQ(state_of(stream), before);
}

// Counts that were drawn; then twice as many each time, as two halves, further than anybody draws.
TEST_P(EveryGenerator, SkipsWhatItWouldDraw) {
  if (generator.moves == Moves::none) return;
  const Stream skipped = copy_of(stream), skipped_64 = copy_of(stream);
  const auto skip = [&](uint64_t count) {
    EXPECT_EQ(qkr_skip_ahead(skipped_64, count), VXS_STATUS_OK);
    if (count == 0 || count > INT32_MAX) return;
    EXPECT_EQ(__vxsSkipAheadStream(skipped, static_cast<int64_t>(count)), VXS_STATUS_OK);
    ASSERT_EQ(state_of(skipped), state_of(skipped_64)) << count;
  };
  for (const int32_t count : {0, 4, 1, 2, 3, 9, 41, 82, 1000, 123457, 1}) {
    draw_words(stream, count);
    skip(static_cast<uint64_t>(count));
    ASSERT_EQ(state_of(skipped_64), state_of(stream)) << count;
  }
  for (uint64_t half = 61729; half >> 63 == 0; half *= 2) {
    for (int i = 0; i < 2; ++i) EXPECT_EQ(qkr_skip_ahead(stream, half), VXS_STATUS_OK);
    skip(2 * half);
    ASSERT_EQ(state_of(skipped_64), state_of(stream)) << half;
  }
}

// Splits of splits: every 14000th number in the end.
TEST_P(EveryGenerator, Leapfrogs) {
  if (generator.moves != Moves::apart) return;
  const Steps definition = generator.definition(stream, generator.seeds);
  const uint32_t words_each = record.WordSize / 4;
  int32_t apart = 1;
  for (const auto &[index, stride] : {std::pair{0, 1}, {1, 2}, {6, 7}, {999, 1000}}) {
    ASSERT_EQ(__vxsLeapfrogStream(stream, index, stride), VXS_STATUS_OK);
    EXPECT_EQ(__vxsSkipAheadStream(stream, 3), VXS_STATUS_OK);
    next_words(definition, apart * (index + 3 * stride), words_each);
    apart *= stride;
    Words kept;
    for (int32_t i = 0; i < 100; ++i) {
      const Words row = next_words(definition, apart, words_each);
      kept.insert(kept.end(), row.begin(), row.begin() + words_each);
    }
    EXPECT_EQ(draw_words(stream, 100), kept) << stride;
  }
}

// All numbers of dimensions that have a way of their own, from inside a point, before the index wraps, and in
// one dimension only.
TEST(DigitalSequences, FollowTheirDefinitionFromAnywhere) {
  for (const uint32_t id : {QKR_SOBOL, QKR_NIEDERREITER})
    for (const uint32_t dim : {1, 2, 3, 4, 5, 7, 8, 9, 13, 16, 17, 60, 317, 350}) {
      const bool by_tables = dim <= (id == QKR_SOBOL ? 40 : 318);
      const Seeds seeds = by_tables ? Seeds{dim} : user_directions(dim);
      const Generator generator = {"", id, seeds, Moves::by_dimension, digital_sequence};
      for (const uint64_t skipped : {0ul, (1ul << 30) + dim / 3, dim * (0u - 40ul) + dim / 2})
        for (const bool only_last : {false, true}) {
          SCOPED_TRACE(testing::Message() << id << ", " << dim << " dimensions, skipped " << skipped);
          const Stream stream = generator.start();
          qkr_skip_ahead(stream, skipped);
          if (only_last) __vxsLeapfrogStream(stream, static_cast<int32_t>(dim) - 1, QKR_ONE_DIMENSION);
          expect_definition_followed(generator, stream, 10000);
        }
    }
}

// 2^31 - 1 numbers, where counting reaches the end of its range, and as many in two draws. WH alone does not
// make its reals of words.
TEST(LongDraws, ReachTheLargestCount) {
  constexpr int32_t most = INT32_MAX, last = 1000;
  const Repeated memory(size_t{16} * most);
  if (!memory.data()) GTEST_SKIP() << "no addresses";
  // The last numbers, and the state behind them.
  const auto end_of = [&](const Generator &generator, bool words, std::initializer_list<int32_t> draws) {
    const Stream stream = generator.start();
    const BrngRecord record = generator_of(stream);
    for (const int32_t n : draws)
      words ? record.iBrng(stream, n, reinterpret_cast<uint32_t *>(memory.data()))
            : record.sBrng(stream, n, reinterpret_cast<float *>(memory.data()), 0, 1);
    const size_t size = words ? record.WordSize : sizeof(float);
    return std::string(memory.data() + size * (draws.end()[-1] - last), size * last) + state_of(stream);
  };
  for (const Generator &generator : all_generators())
    for (const bool words : {true, false})
      if (generator.id >= QKR_MCG31M1 && (words || generator.id == QKR_WH(0))) {
        EXPECT_TRUE(end_of(generator, words, {most}) == end_of(generator, words, {most - last, last}))
            << generator.name;
      }
}

}  // namespace
