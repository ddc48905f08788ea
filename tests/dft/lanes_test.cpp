// Lines one a lane, columns and contiguous ones, get the bits of one line after the other through the engine,
// whatever their number, and nothing beyond them is touched.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

#include "dft/codelets/columns.h"
#include "dft/codelets/real_rows.h"
#include "tests/dft/engine.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

using Columns = void (*)(int, const void *, ptrdiff_t, void *, ptrdiff_t, int64_t, double);
using Rows = int64_t (*)(int, const void *, ptrdiff_t, void *, ptrdiff_t, int64_t, double);

using RealRows = int64_t (*)(int, const void *, ptrdiff_t, void *, ptrdiff_t, int64_t, bool, double);

template <class T>
struct Lanes;
#define QKR_LANES(T, C, R)                                                                           \
  template <>                                                                                        \
  struct Lanes<T> {                                                                                  \
    static constexpr Columns columns[] = {dft_columns_backward_##C, dft_columns_forward_##C};        \
    static constexpr Rows rows[] = {dft_rows_backward_##C, dft_rows_forward_##C};                    \
    static constexpr RealRows real_rows[] = {dft_real_rows_backward_##R, dft_real_rows_forward_##R}; \
  };
QKR_LANES(float, 32fc, 32f)
QKR_LANES(double, 64fc, 64f)

struct Case {
  int order, count;
  ptrdiff_t step;  // in numbers, from line to line of rows, or from element to element of columns
  bool in_columns, forward;
  double scale;
};

// Element j of line i, its real part.
size_t place(const Case &c, int i, int j) {
  return static_cast<size_t>(c.in_columns ? j * c.step + 2 * i : i * c.step + 2 * j);
}

// Lines `first` on transformed by the engine.
template <class T>
std::vector<T> by_engine(const Case &c, std::vector<T> x, int lines) {
  const int length = 1 << c.order;
  std::vector<T> line(2 * length);
  for (int i = 0; i < lines; ++i) {
    for (int j = 0; j < length; ++j) std::memcpy(&line[2 * j], &x[place(c, i, j)], 2 * sizeof(T));
    Engine<T>::complex(c.forward, c.order, line.data());
    for (T &number : line)
      if (c.scale != 1) number *= static_cast<T>(c.scale);
    for (int j = 0; j < length; ++j) std::memcpy(&x[place(c, i, j)], &line[2 * j], 2 * sizeof(T));
  }
  return x;
}

// The same bits, or both no number: of what sign is not said.
template <class T>
void expect_same(const T *y, const std::vector<T> &expected) {
  for (size_t i = 0; i < expected.size(); ++i) {
    const bool both_nan = y[i] != y[i] && expected[i] != expected[i];
    ASSERT_TRUE(both_nan || std::memcmp(&y[i], &expected[i], sizeof(T)) == 0) << "number " << i;
  }
}

// Ordinary numbers, and now and then a zero of either sign, an infinity, a tiny one.
template <class T>
std::vector<T> numbers(size_t count, bool special) {
  static std::mt19937 engine(5);
  std::uniform_real_distribution<T> uniform(-1, 1);
  const T rare[] = {0, T(-0.0), std::numeric_limits<T>::infinity(), std::numeric_limits<T>::denorm_min()};
  std::vector<T> x(count);
  for (size_t i = 0; i < count; ++i)
    x[i] = special && i % 13 == 3 ? rare[i / 13 % 4] : i % 11 == 2 ? T(-0.0) : uniform(engine);
  return x;
}

template <class T>
void expect_lines(const Case &c) {
  const size_t size = place(c, c.count - 1, (1 << c.order) - 1) + 2;
  const std::vector<T> x = numbers<T>(size, c.order < 5);
  for_each_level([&](const char *level) {
    for (const Edge edge : {Edge::end, Edge::start})
      for (const bool in_place : {true, false}) {
        SCOPED_TRACE(testing::Message()
                     << level << (c.in_columns ? " columns" : " rows") << " order " << c.order << " count "
                     << c.count << " step " << c.step << " forward " << c.forward << " scale " << c.scale
                     << " in place " << in_place);
        Guarded<T> source(size, edge), target(size, edge);
        std::memcpy(source.data(), x.data(), size * sizeof(T));
        std::memcpy(target.data(), x.data(), size * sizeof(T));
        T *const y = in_place ? source.data() : target.data();
        int64_t done = c.count;
        if (c.in_columns)
          Lanes<T>::columns[c.forward](c.order, source.data(), c.step, y, c.step, c.count, c.scale);
        else done = Lanes<T>::rows[c.forward](c.order, source.data(), c.step, y, c.step, c.count, c.scale);
        // As many as fill registers.
        ASSERT_TRUE(done <= c.count && c.count - done < static_cast<int64_t>(64 / (2 * sizeof(T))));
        expect_same(y, by_engine(c, x, static_cast<int>(done)));
        if (!in_place) expect_same(source.data(), x);
      }
  });
}

// Real lines, in one array or from one to another.
template <class T>
void expect_real_lines(int order, int count, int gap, bool forward, bool has_last, double scale) {
  const int n = 1 << order, spectrum = n + 2 * has_last;
  const int read = forward ? n : spectrum, written = forward ? spectrum : n;
  const ptrdiff_t step = spectrum + gap;
  const size_t size = static_cast<size_t>((count - 1) * step + spectrum);
  const std::vector<T> x = numbers<T>(size, order < 5);
  for_each_level([&](const char *level) {
    for (const Edge edge : {Edge::end, Edge::start})
      for (const bool in_place : {true, false}) {
        SCOPED_TRACE(testing::Message() << level << " real order " << order << " count " << count << " gap "
                                        << gap << " forward " << forward << " CCS " << has_last << " scale "
                                        << scale << " in place " << in_place);
        Guarded<T> source(size, edge), target(size, edge);
        std::memcpy(source.data(), x.data(), size * sizeof(T));
        std::memcpy(target.data(), x.data(), size * sizeof(T));
        T *const y = in_place ? source.data() : target.data();
        const int64_t done =
            Lanes<T>::real_rows[forward](order, source.data(), step, y, step, count, has_last, scale);
        ASSERT_TRUE(done <= count && count - done < static_cast<int64_t>(64 / (2 * sizeof(T))));
        std::vector<T> expected = x, line(spectrum);
        for (int64_t i = 0; i < done; ++i) {
          std::copy_n(x.data() + i * step, read, line.data());
          Engine<T>::real(forward, order, has_last ? DFTX_CCS_FORMAT : DFTX_PERM_FORMAT, line.data());
          for (int j = 0; j < n + (forward && has_last); ++j)
            if (scale != 1) line[j] *= static_cast<T>(scale);
          std::copy_n(line.data(), written, expected.data() + i * step);
        }
        expect_same(y, expected);
        if (!in_place) expect_same(source.data(), x);
      }
  });
}

template <class T>
class LaneTest : public testing::Test {};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(LaneTest, Precisions);

TYPED_TEST(LaneTest, BitsOfTheEngine) {
  for (int order = 0; order <= dft::largest_column_order; ++order)
    for (const int count : {1, 2, 3, 4, 5, 7, 8, 9, 17})
      for (const int gap : {0, 5})
        for (const bool forward : {true, false})
          for (const double scale : {1.0, 0.3}) {
            expect_lines<TypeParam>({order, count, 2 * count + gap, true, forward, scale});
            if (order >= 1 && order <= dft::largest_row_order)
              expect_lines<TypeParam>({order, count, (2 << order) + gap, false, forward, scale});
            if (testing::Test::HasFatalFailure()) return;
          }
}

TYPED_TEST(LaneTest, BitsOfTheEngineForRealLines) {
  for (int order = 2; order <= dft::largest_row_order; ++order)
    for (const int count : {1, 3, 4, 8, 17})
      for (const int gap : {0, 3})
        for (const bool forward : {true, false})
          for (const bool has_last : {true, false})
            for (const double scale : {1.0, 0.3}) {
              expect_real_lines<TypeParam>(order, count, gap, forward, has_last, scale);
              if (testing::Test::HasFatalFailure()) return;
            }
}

}  // namespace
}  // namespace qkr::tests
