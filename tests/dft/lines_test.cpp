// Codelets, and lines one a lane, get the bits of one line after the other through the engine, in place and
// from one array to another, whatever their number, and touch nothing beyond their numbers.
#include "dft/codelets/lines.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <qkr/dft.h>
#include <qkr/sigfft.h>
#include <random>
#include <vector>

#include "dft/codelets/columns.h"
#include "dft/codelets/real_rows.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

// One line through the engine, in place and unscaled.
template <class T>
struct Engine;
#define QKR_ENGINE(T, C, R)                                                                                \
  template <>                                                                                              \
  struct Engine<T> {                                                                                       \
    static void complex(bool forward, int order, T *line) {                                                \
      zprsFFTSpec_C_##C *plan = nullptr;                                                                   \
      ASSERT_EQ(w6_zprsFFTInitAlloc_C_##C(&plan, order, 8, 0), zprStsNoErr);                               \
      const auto x = reinterpret_cast<zpr##C *>(line);                                                     \
      (forward ? w6_zprsFFTFwd_CToC_##C : w6_zprsFFTInv_CToC_##C)(x, x, plan, nullptr);                    \
      w6_zprsFFTFree_C_##C(plan);                                                                          \
    }                                                                                                      \
    static void real(bool forward, int order, int32_t format, T *line) {                                   \
      static constexpr zprStatus (*entries[][2])(const T *, T *, const zprsFFTSpec_R_##R *, uint8_t *) = { \
          {w6_zprsFFTInv_CCSToR_##R, w6_zprsFFTFwd_RToCCS_##R},                                            \
          {w6_zprsFFTInv_PackToR_##R, w6_zprsFFTFwd_RToPack_##R},                                          \
          {w6_zprsFFTInv_PermToR_##R, w6_zprsFFTFwd_RToPerm_##R}};                                         \
      zprsFFTSpec_R_##R *plan = nullptr;                                                                   \
      ASSERT_EQ(w6_zprsFFTInitAlloc_R_##R(&plan, order, 8, 0), zprStsNoErr);                               \
      entries[format - DFTX_CCS_FORMAT][forward](line, line, plan, nullptr);                               \
      w6_zprsFFTFree_R_##R(plan);                                                                          \
    }                                                                                                      \
  };
QKR_ENGINE(float, 32fc, 32f)
QKR_ENGINE(double, 64fc, 64f)
#undef QKR_ENGINE

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

// The same bits, or both no number: of what sign is not said.
template <class T>
void expect_same(const T *y, const std::vector<T> &expected) {
  for (size_t i = 0; i < expected.size(); ++i) {
    const bool both_nan = y[i] != y[i] && expected[i] != expected[i];
    ASSERT_TRUE(both_nan || std::memcmp(&y[i], &expected[i], sizeof(T)) == 0) << "number " << i;
  }
}

// Ordinary numbers, and one of so many a zero of either sign, an infinity, a tiny one; 0: none.
template <class T>
std::vector<T> numbers(size_t count, size_t special_each) {
  static std::mt19937 engine(5);
  std::uniform_real_distribution<T> uniform(-1, 1);
  const T rare[] = {0, T(-0.0), std::numeric_limits<T>::infinity(), std::numeric_limits<T>::denorm_min()};
  std::vector<T> x(count);
  for (size_t i = 0; i < count; ++i) {
    const bool special = special_each && i % special_each == 2;
    x[i] = special ? rare[i / special_each % 4] : i % 11 == 3 ? T(-0.0) : uniform(engine);
  }
  return x;
}

// call(source, target) reads `read` numbers and writes among `written` ones, which then are those of
// expected(what it returned). All of the numbers before are those of x.
template <class T, class Call, class Expect>
void expect_result(const std::vector<T> &x, size_t read, size_t written, Call call, Expect expected) {
  for_each_level([&](const char *level) {
    for (const Edge edge : {Edge::end, Edge::start})
      for (const bool in_place : {true, false}) {
        SCOPED_TRACE(testing::Message() << level << ", in place " << in_place);
        const size_t first = in_place ? std::max(read, written) : read;
        Guarded<T> source(first, edge), target(written, edge);
        std::copy_n(x.data(), first, source.data());
        std::copy_n(x.data(), written, target.data());
        T *const y = in_place ? source.data() : target.data();
        const int64_t done = call(source.data(), y);
        expect_same(y, expected(done));
        if (!in_place) expect_same(source.data(), std::vector<T>(x.begin(), x.begin() + read));
      }
  });
}

// As many as fill registers.
template <class T>
void expect_nearly_all(int64_t done, int count) {
  ASSERT_TRUE(done <= count && count - done < static_cast<int64_t>(64 / (2 * sizeof(T)))) << done;
}

template <class T>
void expect_lines(const Case &c) {
  SCOPED_TRACE(testing::Message() << (c.in_columns ? " columns" : " rows") << " order " << c.order
                                  << " count " << c.count << " step " << c.step << " forward " << c.forward
                                  << " scale " << c.scale);
  const size_t length = size_t{1} << c.order, size = place(c, c.count - 1, static_cast<int>(length) - 1) + 2;
  const std::vector<T> x = numbers<T>(size, c.order < 5 ? 13 : 0);
  const auto by_engine = [&](int64_t lines) {
    std::vector<T> y = x, line(2 * length);
    for (int i = 0; i < lines; ++i) {
      for (size_t j = 0; j < length; ++j) std::copy_n(&x[place(c, i, j)], 2, &line[2 * j]);
      Engine<T>::complex(c.forward, c.order, line.data());
      for (T &number : line)
        if (c.scale != 1) number *= static_cast<T>(c.scale);
      for (size_t j = 0; j < length; ++j) std::copy_n(&line[2 * j], 2, &y[place(c, i, j)]);
    }
    return y;
  };
  const auto call = [&](T *from, T *to) {
    int64_t done = c.count;
    if (c.in_columns) Lanes<T>::columns[c.forward](c.order, from, c.step, to, c.step, c.count, c.scale);
    else done = Lanes<T>::rows[c.forward](c.order, from, c.step, to, c.step, c.count, c.scale);
    expect_nearly_all<T>(done, c.count);
    return done;
  };
  expect_result(x, size, size, call, by_engine);
}

template <class T>
void expect_real_lines(int order, int count, int gap, bool forward, bool has_last, double scale) {
  SCOPED_TRACE(testing::Message() << "real order " << order << " count " << count << " gap " << gap
                                  << " forward " << forward << " CCS " << has_last << " scale " << scale);
  const int n = 1 << order, spectrum = n + 2 * has_last;
  const ptrdiff_t step = spectrum + gap;
  const size_t size = static_cast<size_t>((count - 1) * step + spectrum);
  const std::vector<T> x = numbers<T>(size, order < 5 ? 13 : 0);
  const auto by_engine = [&](int64_t lines) {
    std::vector<T> y = x, line(spectrum);
    for (int64_t i = 0; i < lines; ++i) {
      std::copy_n(x.data() + i * step, forward ? n : spectrum, line.data());
      Engine<T>::real(forward, order, has_last ? DFTX_CCS_FORMAT : DFTX_PERM_FORMAT, line.data());
      for (int j = 0; j < n + (forward && has_last); ++j)
        if (scale != 1) line[j] *= static_cast<T>(scale);
      std::copy_n(line.data(), forward ? spectrum : n, y.data() + i * step);
    }
    return y;
  };
  const auto call = [&](T *from, T *to) {
    const int64_t done = Lanes<T>::real_rows[forward](order, from, step, to, step, count, has_last, scale);
    expect_nearly_all<T>(done, count);
    return done;
  };
  expect_result(x, size, size, call, by_engine);
}

template <class T>
void expect_codelet(dft::LineTransform codelet, const std::vector<T> &line, size_t read,
                    const std::vector<T> &expected, size_t written) {
  const auto call = [&](T *from, T *to) {
    const DftDescriptor record = {};
    EXPECT_EQ(codelet(from, to, &record, nullptr), DFTX_NO_ERROR);
    return 0;
  };
  expect_result(line, read, written, call,
                [&](int64_t) { return std::vector<T>(expected.begin(), expected.begin() + written); });
}

template <class T>
class Lines : public testing::Test {};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(Lines, Precisions);

TYPED_TEST(Lines, OfCodeletsHaveTheBitsOfTheEngine) {
  using T = TypeParam;
  constexpr bool in_double = sizeof(T) == 8;
  for (int order = 1; order <= dft::largest_codelet_order; ++order)
    for (const bool forward : {true, false})
      for (const size_t special_each : {0, 5}) {
        SCOPED_TRACE(testing::Message() << " order " << order << " forward " << forward);
        const size_t n = size_t{1} << order;
        const std::vector<T> line = numbers<T>(2 * n, special_each);
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
}

TYPED_TEST(Lines, OneALaneHaveTheBitsOfTheEngine) {
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

TYPED_TEST(Lines, OfRealNumbersHaveTheBitsOfTheEngine) {
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
