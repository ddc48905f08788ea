// Codelets give the bits of the engine's transforms, in place and from one array to another, and touch
// nothing beyond their numbers.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

#include "dft/codelets/lines.h"
#include "tests/dft/engine.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

// Ordinary numbers, and now and then a zero of either sign, an infinity, a tiny one.
template <class T>
std::vector<T> line_of(size_t count, bool special) {
  static std::mt19937 engine(3);
  std::uniform_real_distribution<T> uniform(-1, 1);
  const T rare[] = {0, T(-0.0), std::numeric_limits<T>::infinity(), std::numeric_limits<T>::denorm_min()};
  std::vector<T> line(count);
  for (size_t i = 0; i < count; ++i) line[i] = special && i % 5 == 2 ? rare[i / 5 % 4] : uniform(engine);
  return line;
}

// The same bits, or both no number: of what sign is not said.
template <class T>
bool same(const T *a, const std::vector<T> &b, size_t count) {
  for (size_t i = 0; i < count; ++i)
    if (memcmp(&a[i], &b[i], sizeof(T)) != 0 && !(a[i] != a[i] && b[i] != b[i])) return false;
  return true;
}

// `written` numbers come out, and `read` go in.
template <class T>
void expect_codelet(dft::LineTransform codelet, const std::vector<T> &input, size_t read,
                    const std::vector<T> &expected, size_t written) {
  const DftDescriptor record = {};
  for (const Edge edge : {Edge::end, Edge::start}) {
    Guarded<T> from(read, edge), to(written, edge), both(std::max(read, written), edge);
    std::copy_n(input.data(), read, from.data());
    std::copy_n(input.data(), read, both.data());
    ASSERT_EQ(codelet(from.data(), to.data(), &record, nullptr), DFTX_NO_ERROR);
    ASSERT_EQ(codelet(both.data(), both.data(), &record, nullptr), DFTX_NO_ERROR);
    EXPECT_TRUE(same(from.data(), input, read));
    EXPECT_TRUE(same(to.data(), expected, written));
    EXPECT_TRUE(same(both.data(), expected, written));
  }
}

template <class T>
class CodeletTest : public testing::Test {};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(CodeletTest, Precisions);

TYPED_TEST(CodeletTest, BitsOfTheEngine) {
  using T = TypeParam;
  constexpr bool in_double = sizeof(T) == 8;
  for_each_level([&](const char *level) {
    for (int order = 1; order <= dft::largest_codelet_order; ++order)
      for (const bool forward : {true, false})
        for (const bool special : {false, true}) {
          SCOPED_TRACE(testing::Message() << level << " order " << order << " forward " << forward);
          const size_t n = size_t{1} << order;
          const std::vector<T> line = line_of<T>(2 * n, special);
          std::vector<T> expected = line;
          Engine<T>::complex(forward, order, expected.data());
          expect_codelet(dft_complex_codelet(in_double, forward, order), line, 2 * n, expected, 2 * n);
          for (const int32_t format : {DFTX_CCS_FORMAT, DFTX_PACK_FORMAT, DFTX_PERM_FORMAT}) {
            SCOPED_TRACE(format);
            const size_t spectrum = format == DFTX_CCS_FORMAT ? n + 2 : n;
            expected = line;
            Engine<T>::real(forward, order, format, expected.data());
            expect_codelet(dft_real_codelet(in_double, forward, order, format), line, forward ? n : spectrum,
                           expected, forward ? spectrum : n);
          }
        }
  });
}

}  // namespace
}  // namespace qkr::tests
