// Every generator against its definition: in blocks of any size, split, moved, at every vector width.
#include "tests/streams/generators.h"

#include <random>

#include "streams/quasi/digital_sequence.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace {

using namespace qkr::tests;

// The words by definition.
struct Expected {
  const Generator &generator;
  Steps steps;
  size_t words_each;
  Expected(const Generator &of, const Stream &stream)
      : generator(of),
        steps(of.family.definition(of, stream)),
        words_each(generator_of(stream).WordSize / 4) {}

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

// One number after the other by an entry of the generator.
template <class T, class Entry, class... Ends>
std::vector<T> one_by_one(Entry entry, const Stream &stream, int32_t n, Ends... ends) {
  std::vector<T> numbers(n);
  for (T &number : numbers) entry(stream.get(), 1, &number, ends...);
  return numbers;
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
      if (form == 0) {
        uint32_t single[4];
        for (int32_t i = 0; i < n; ++i) record.iBrng(stepwise.get(), 1, single);
        ASSERT_EQ(draw_words(stream, n), words);
      } else if (form == 1) {
        ASSERT_EQ(draw_doubles(stream, n, -1.5, 2.3),
                  one_by_one<double>(record.dBrng, stepwise, n, -1.5, 2.3));
      } else if (form == 2) {
        ASSERT_EQ(draw_singles(stream, n, -1.1f, 1e3f),
                  one_by_one<float>(record.sBrng, stepwise, n, -1.1f, 1e3f));
      } else if (form == 3) {  // from 0 to a power of two has a way of its own, which -0 does not take
        ASSERT_EQ(draw_doubles(stream, n, 0, 0.25),
                  one_by_one<double>(record.dBrng, stepwise, n, -0.0, 0.25));
      } else {
        ASSERT_EQ(draw_singles(stream, n, 0, 0.25f),
                  one_by_one<float>(record.sBrng, stepwise, n, -0.0f, 0.25f));
      }
      ASSERT_EQ(state_of(stream), state_of(stepwise));
    }
  });
}

class EveryGenerator : public testing::TestWithParam<Generator> {
 protected:
  const Generator &generator = GetParam();
};

TEST_P(EveryGenerator, FollowsItsDefinitionInAnyBlocks) {
  expect_definition_followed(generator, generator.start(), 1000000);
}

TEST_P(EveryGenerator, NeitherWritesNorMovesForNoNumbersOrUnknownMethods) {
  const Stream stream = generator.start();
  draw_words(stream, 5);
  const std::string before = payload(stream);
  const BrngRecord record = generator_of(stream);
  for (int32_t n : {0, -1, -1000000}) {
    EXPECT_EQ(record.iBrng(stream.get(), n, nullptr), VXS_STATUS_OK);
    EXPECT_EQ(record.dBrng(stream.get(), n, nullptr, 0, 1), VXS_STATUS_OK);
    EXPECT_EQ(record.sBrng(stream.get(), n, nullptr, 0, 1), VXS_STATUS_OK);
  }
  for (int32_t method : {3, 1000, -1, INT32_MIN})
    EXPECT_EQ(record.InitStream(method, stream.get(), 1, nullptr), VXS_STATUS_BAD_METHOD);
  EXPECT_EQ(payload(stream), before);
}

TEST_P(EveryGenerator, SkipsAhead) {
  for (int32_t before : {0, 1, 4, 41})
    for (int32_t count : {1, 2, 3, 9, 82, 1000, 123457}) {
      const Stream stream = generator.start(), walked = generator.start();
      Expected expected(generator, stream);
      draw_words(stream, before);
      draw_words(walked, before);
      if (generator.family.skips_ahead) {
        EXPECT_EQ(__vxsSkipAheadStream(stream.get(), count), VXS_STATUS_OK);
        draw_words(walked, count);
        expected.words(before + count);
        EXPECT_EQ(payload(stream), payload(walked)) << before << ", " << count;
        EXPECT_EQ(draw_words(stream, 1000), expected.words(1000)) << before << ", " << count;
      } else {
        EXPECT_EQ(__vxsSkipAheadStream(stream.get(), count), VXS_STATUS_NO_SKIP_AHEAD);
        EXPECT_EQ(payload(stream), payload(walked));
      }
    }
}

TEST_P(EveryGenerator, SkipsAnyCount) {
  constexpr uint64_t whole = 0x7fffffff;
  const Stream at_once = generator.start(), in_parts = generator.start();
  draw_words(at_once, 3);
  draw_words(in_parts, 3);
  if (!generator.family.skips_ahead) {
    const std::string unmoved = payload(at_once);
    for (const uint64_t count : {uint64_t{0}, uint64_t{7}, uint64_t{1} << 40})
      EXPECT_EQ(qkr_skip_ahead(at_once.get(), count), VXS_STATUS_NO_SKIP_AHEAD);
    EXPECT_EQ(payload(at_once), unmoved);
    return;
  }
  EXPECT_EQ(qkr_skip_ahead(at_once.get(), 0), VXS_STATUS_OK);
  EXPECT_EQ(payload(at_once), payload(in_parts));
  EXPECT_EQ(qkr_skip_ahead(at_once.get(), 7 * whole + 12345), VXS_STATUS_OK);
  for (const int32_t part : {0x40000000, 0x3fffffff, 12345})
    EXPECT_EQ(__vxsSkipAheadStream(in_parts.get(), part), VXS_STATUS_OK);
  for (int i = 0; i < 6; ++i) __vxsSkipAheadStream(in_parts.get(), whole);
  EXPECT_EQ(payload(at_once), payload(in_parts));
  // Only the low 32 bits count here. Where a skip of 0 is refused, this one is.
  EXPECT_EQ(__vxsSkipAheadStream(in_parts.get(), int64_t{1} << 32), __vxsSkipAheadStream(in_parts.get(), 0));
  EXPECT_EQ(payload(at_once), payload(in_parts));
  // Counts of 64 bits, as sums of some that are tried above.
  uint64_t sum = 0;
  for (uint64_t part = 5 * whole; sum + part > sum; sum += part, part *= 3)
    EXPECT_EQ(qkr_skip_ahead(in_parts.get(), part), VXS_STATUS_OK);
  EXPECT_GT(sum, uint64_t{1} << 62);
  EXPECT_EQ(qkr_skip_ahead(at_once.get(), sum), VXS_STATUS_OK);
  EXPECT_EQ(payload(at_once), payload(in_parts));
}

TEST_P(EveryGenerator, Leapfrogs) {
  constexpr int32_t n = 1000, one_dimension = 0x7fffffff;
  const bool is_quasi_random = generator.is_quasi_random();
  const auto dimensions = static_cast<int32_t>(generator.seeds[0]);
  std::vector<std::pair<int32_t, int32_t>> splits = {{1, 0}, {2, 1}, {7, 3}, {1000, 999}};
  if (is_quasi_random) splits = {{one_dimension, 0}, {one_dimension, dimensions - 1}};
  for (const int32_t before : {0, 1, 5})
    for (const auto &[stride, index] : splits) {
      SCOPED_TRACE(testing::Message() << before << ", " << stride << ", " << index);
      const Stream stream = generator.start();
      Expected expected(generator, stream);
      draw_words(stream, before);
      expected.words(before);
      if (generator.family.leapfrog == Partition::none) {
        const std::string unmoved = payload(stream);
        EXPECT_EQ(__vxsLeapfrogStream(stream.get(), index, stride), VXS_STATUS_NO_LEAPFROG);
        EXPECT_EQ(payload(stream), unmoved);
        continue;
      }
      ASSERT_EQ(__vxsLeapfrogStream(stream.get(), index, stride), VXS_STATUS_OK);
      // Of a quasi-random sequence: from the first component of that index not given out.
      expected.words(is_quasi_random ? (index + dimensions - before % dimensions) % dimensions : index);
      Words kept;
      for (int32_t i = 0; i < n; ++i) {
        const Words row = expected.words(is_quasi_random ? dimensions : stride);
        kept.insert(kept.end(), row.begin(), row.begin() + ptrdiff_t(expected.words_each));
      }
      EXPECT_EQ(draw_words(stream, n), kept);
    }
}

INSTANTIATE_TEST_SUITE_P(, EveryGenerator, testing::ValuesIn(all_generators()), test_name);

// What is known of the sequences as a whole.
TEST(Skips, OfWholePeriods) {
  const struct {
    const char *name;
    uint32_t id;
    uint64_t period;
  } rows[] = {{"MCG31M1", QKR_MCG31M1, 0x7ffffffe}, {"MCG59", QKR_MCG59, uint64_t{1} << 57}};
  for (const auto &row : rows) {
    const Stream stream = new_stream(row.id, {777});
    const std::string start = payload(stream);
    EXPECT_EQ(qkr_skip_ahead(stream.get(), row.period / 2), VXS_STATUS_OK);
    EXPECT_NE(payload(stream), start) << row.name;
    EXPECT_EQ(qkr_skip_ahead(stream.get(), row.period + row.period / 2), VXS_STATUS_OK);
    EXPECT_EQ(payload(stream), start) << row.name;
  }
  // One dimension of points: a number is a point, and a skip follows the numbers.
  const Stream skipped = new_stream(QKR_SOBOL, {5}), drawn = new_stream(QKR_SOBOL, {5});
  for (const Stream *stream : {&skipped, &drawn}) __vxsLeapfrogStream(stream->get(), 3, QKR_ONE_DIMENSION);
  EXPECT_EQ(qkr_skip_ahead(skipped.get(), 1003), VXS_STATUS_OK);
  draw_words(drawn, 1003);
  EXPECT_EQ(draw_words(skipped, 50), draw_words(drawn, 50));
  EXPECT_EQ(qkr_skip_ahead(skipped.get(), (uint64_t{7} << 32) + 1), VXS_STATUS_OK);
  draw_words(drawn, 1);
  EXPECT_EQ(draw_words(skipped, 50), draw_words(drawn, 50));
}

// Further numbers of dimensions, and places in the sequence: inside a point, in one dimension only, and
// before the index wraps.
TEST(DigitalSequences, FollowTheirDefinitionFromAnywhere) {
  constexpr uint32_t sobol = 0x600000, niederreiter = 0x700000;
  const struct {
    uint32_t id, dim;
    int32_t skipped = 0, only = -1;
    bool wraps = false;
  } rows[] = {{sobol, 2},
              {sobol, 4, 1},
              {sobol, 5, 7},
              {sobol, 8, 1 << 30},
              {sobol, 9},
              {sobol, 16, 17},
              {sobol, 17},
              {sobol, 60, 1000},
              {sobol, 1, 0, -1, true},
              {sobol, 13, 20, -1, true},
              {sobol, 13, 777, 3},
              {sobol, 41, 1 << 29, 40},
              {sobol, 41, 30, -1, true},
              {niederreiter, 3},
              {niederreiter, 100, 12345},
              {niederreiter, 318, 5000, 317},
              {niederreiter, 318, 0, 1, true},
              {niederreiter, 350, 100}};
  for (const auto &row : rows) {
    SCOPED_TRACE(testing::Message() << std::hex << row.id << std::dec << ", " << row.dim << " dimensions");
    const bool by_tables = row.dim <= (row.id == sobol ? 40 : 318);
    const Generator generator = {"", row.id, by_tables ? Seeds{row.dim} : user_directions(row.dim),
                                 digital_sequences};
    const Stream stream = generator.start();
    if (row.skipped) __vxsSkipAheadStream(stream.get(), row.skipped);
    const auto &position = qkr::payload_of<qkr::SequencePosition>(stream.get());
    while (row.wraps && position.seq < 0u - 40) {
      const uint64_t left = uint64_t{row.dim} * (0u - 40 - position.seq);
      ASSERT_EQ(__vxsSkipAheadStream(stream.get(), std::min<int64_t>(left, 0x7fffffff)), VXS_STATUS_OK);
    }
    if (row.only >= 0) __vxsLeapfrogStream(stream.get(), row.only, 0x7fffffff);
    expect_definition_followed(generator, stream, 30000);
  }
}

// 2^31 - 1 numbers, where counting reaches the end of its range: the last of them, and the state behind them,
// are those of a stream that got there in other ways.
TEST(LongDraws, ReachTheLargestCount) {
  constexpr int32_t most = INT32_MAX, last = 1000;
  const Repeated memory(size_t{16} * most);
  if (!memory.data()) GTEST_SKIP() << "no addresses";
  const auto expect_same = [&](const Generator &generator, size_t size, auto draw) {
    SCOPED_TRACE(generator.name);
    const Stream stream = generator.start(), other = generator.start();
    ASSERT_EQ(draw(stream, most), VXS_STATUS_OK);
    const char *const end = memory.data() + size * most;
    const std::string numbers(end - size * last, end);
    int32_t left = most - last;
    if (generator.family.skips_ahead) EXPECT_EQ(__vxsSkipAheadStream(other.get(), left), VXS_STATUS_OK);
    else
      for (int32_t n; left > 0; left -= n) draw(other, n = std::min(left, 1 << 20));
    ASSERT_EQ(draw(other, last), VXS_STATUS_OK);
    EXPECT_EQ(numbers, std::string(memory.data(), size * last));
    EXPECT_EQ(payload(stream), payload(other));
  };
  const std::string chosen[] = {"MCG31M1", "R250",     "MRG32K3A", "MCG59",   "WH 0",
                                "Sobol 3", "Sobol 40", "MT19937",  "MT2203 0"};
  for (const Generator &generator : all_generators()) {
    if (std::find(std::begin(chosen), std::end(chosen), generator.name) == std::end(chosen)) continue;
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
