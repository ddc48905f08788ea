// Every generator against its definition: in blocks of any size, split, moved, at every vector width.
#include "tests/streams/generators.h"

#include <random>

#include "tests/support/levels.h"

namespace {

using namespace qkr::tests;

class EveryGenerator : public testing::TestWithParam<Generator> {
 protected:
  const Generator &g = GetParam();
  Stream start() const { return new_stream(g.id, g.seeds); }
};

// The numbers by definition, in the form that the stream is asked for.
struct Expected {
  const Generator &g;
  Steps steps;
  size_t words_each;
  Expected(const Generator &generator, const Stream &stream)
      : g(generator), steps(g.definition(g, stream)), words_each(generator_of(stream).WordSize / 4) {}

  std::vector<uint32_t> words(int32_t n) {
    std::vector<uint32_t> all(n * words_each);
    for (int32_t i = 0; i < n; ++i) steps(&all[i * words_each]);
    return all;
  }
  template <class T, class Form>
  std::vector<T> reals(int32_t n, T a, T b, Form form) {
    const std::vector<uint32_t> drawn = words(n);
    std::vector<T> all(static_cast<size_t>(n));
    for (int32_t i = 0; i < n; ++i) all[i] = form(g, &drawn[i * words_each], a, b);
    return all;
  }
};

// A million numbers in blocks of random length and form, and after each block the state bytes of a stream
// that took one step at a time.
TEST_P(EveryGenerator, FollowsItsDefinitionInAnyBlocks) {
  for_each_level([&](const char *level) {
    const Stream stream = start(), stepwise = copy_of(stream);
    Expected expected(g, stream);
    std::mt19937 engine(2026);
    for (int32_t total = 0, n; total < 1000000; total += n) {
      const uint32_t choice = engine();
      n = static_cast<int32_t>(engine() % (choice % 8 == 0 ? 40000 : choice % 4 == 0 ? 2000 : 90));
      SCOPED_TRACE(testing::Message() << level << ", " << n << " numbers after " << total);
      switch (engine() % 3) {
        case 0:
          ASSERT_EQ(draw_words(stream, n), expected.words(n));
          break;
        case 1:
          ASSERT_EQ(draw_doubles(stream, n, -1.5, 2.3), expected.reals(n, -1.5, 2.3, g.real));
          break;
        default:
          ASSERT_EQ(draw_singles(stream, n, -1.1f, 1e3f), expected.reals(n, -1.1f, 1e3f, g.single));
      }
      const BrngRecord generator = generator_of(stepwise);
      uint32_t words[4];
      for (int32_t i = 0; i < n; ++i) generator.iBrng(stepwise.get(), 1, words);
      ASSERT_EQ(payload(stream), payload(stepwise));
    }
  });
}

TEST_P(EveryGenerator, NeitherWritesNorMovesForNoNumbers) {
  const Stream stream = start();
  draw_words(stream, 5);
  const std::string before = payload(stream);
  const BrngRecord generator = generator_of(stream);
  for (int32_t n : {0, -1, -1000000}) {
    EXPECT_EQ(generator.iBrng(stream.get(), n, nullptr), VXS_STATUS_OK);
    EXPECT_EQ(generator.dBrng(stream.get(), n, nullptr, 0, 1), VXS_STATUS_OK);
    EXPECT_EQ(generator.sBrng(stream.get(), n, nullptr, 0, 1), VXS_STATUS_OK);
  }
  EXPECT_EQ(payload(stream), before);
}

TEST_P(EveryGenerator, SkipsAhead) {
  for (int32_t count : {1, 2, 9, 1000, 123457}) {
    const Stream stream = start();
    const std::string before = payload(stream);
    if (!g.skips_ahead) {
      EXPECT_EQ(__vxsSkipAheadStream(stream.get(), count), VXS_STATUS_NO_SKIP_AHEAD);
      EXPECT_EQ(payload(stream), before);
      continue;
    }
    Expected expected(g, stream);
    EXPECT_EQ(__vxsSkipAheadStream(stream.get(), count), VXS_STATUS_OK);
    expected.words(count);
    EXPECT_EQ(draw_words(stream, 1000), expected.words(1000)) << count;
  }
}

TEST_P(EveryGenerator, LongSkipsAddUp) {
  if (!g.skips_ahead) return;
  const Stream at_once = start(), in_two = start();
  EXPECT_EQ(__vxsSkipAheadStream(at_once.get(), 0x7fffffff), VXS_STATUS_OK);
  EXPECT_EQ(__vxsSkipAheadStream(in_two.get(), 0x40000000), VXS_STATUS_OK);
  EXPECT_EQ(__vxsSkipAheadStream(in_two.get(), 0x3fffffff), VXS_STATUS_OK);
  EXPECT_EQ(draw_words(at_once, 100), draw_words(in_two, 100));
  // Only the low 32 bits count. Where a skip of 0 is refused, it is refused here.
  const std::string before = payload(at_once);
  EXPECT_EQ(__vxsSkipAheadStream(at_once.get(), int64_t{1} << 32), __vxsSkipAheadStream(in_two.get(), 0));
  EXPECT_EQ(payload(at_once), before);
}

TEST_P(EveryGenerator, Leapfrogs) {
  constexpr int32_t n = 1000;
  struct Split {
    int32_t stride, index;
  };
  std::vector<Split> splits = {{1, 0}, {2, 1}, {7, 3}, {1000, 999}};
  const auto dimensions = static_cast<int32_t>(g.seeds[0]);
  if (g.leapfrog == Partition::one_dimension) splits = {{0x7fffffff, 0}, {0x7fffffff, dimensions - 1}};
  for (const Split split : splits) {
    const Stream stream = start();
    const int32_t stride = g.leapfrog == Partition::one_dimension ? dimensions : split.stride;
    Expected expected(g, stream);
    if (g.leapfrog == Partition::none) {
      const std::string before = payload(stream);
      EXPECT_EQ(__vxsLeapfrogStream(stream.get(), split.index, split.stride), VXS_STATUS_NO_LEAPFROG);
      EXPECT_EQ(payload(stream), before);
      continue;
    }
    ASSERT_EQ(__vxsLeapfrogStream(stream.get(), split.index, split.stride), VXS_STATUS_OK);
    expected.words(split.index);
    std::vector<uint32_t> kept;
    for (int32_t i = 0; i < n; ++i) {
      const std::vector<uint32_t> row = expected.words(stride);
      kept.insert(kept.end(), row.begin(), row.begin() + static_cast<ptrdiff_t>(expected.words_each));
    }
    EXPECT_EQ(draw_words(stream, n), kept) << split.stride << ", " << split.index;
  }
}

TEST_P(EveryGenerator, RefusesOtherMethods) {
  const Stream stream = start();
  for (int32_t method : {3, 1000, -1, INT32_MIN})
    EXPECT_EQ(generator_of(stream).InitStream(method, stream.get(), 1, nullptr), VXS_STATUS_BAD_METHOD);
}

INSTANTIATE_TEST_SUITE_P(, EveryGenerator, testing::ValuesIn(all_generators()), test_name);

}  // namespace
