// Columns one a lane give the bits of one line after the other through the engine, whatever their number, and
// touch nothing beyond them.
#include "dft/codelets/columns.h"

#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <qkr/sigfft.h>
#include <random>
#include <vector>

#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

using Columns = void (*)(int, const void *, ptrdiff_t, void *, ptrdiff_t, int64_t, double);

template <class T>
struct Engine;
template <>
struct Engine<float> {
  using Number = zpr32fc;
  static constexpr Columns columns[] = {dft_columns_backward_32fc, dft_columns_forward_32fc};
  static void line(bool forward, int order, Number *line) {
    zprsFFTSpec_C_32fc *plan = nullptr;
    ASSERT_EQ(w6_zprsFFTInitAlloc_C_32fc(&plan, order, 8, 0), zprStsNoErr);
    (forward ? w6_zprsFFTFwd_CToC_32fc : w6_zprsFFTInv_CToC_32fc)(line, line, plan, nullptr);
    w6_zprsFFTFree_C_32fc(plan);
  }
};
template <>
struct Engine<double> {
  using Number = zpr64fc;
  static constexpr Columns columns[] = {dft_columns_backward_64fc, dft_columns_forward_64fc};
  static void line(bool forward, int order, Number *line) {
    zprsFFTSpec_C_64fc *plan = nullptr;
    ASSERT_EQ(w6_zprsFFTInitAlloc_C_64fc(&plan, order, 8, 0), zprStsNoErr);
    (forward ? w6_zprsFFTFwd_CToC_64fc : w6_zprsFFTInv_CToC_64fc)(line, line, plan, nullptr);
    w6_zprsFFTFree_C_64fc(plan);
  }
};

template <class T>
class ColumnTest : public testing::Test {};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(ColumnTest, Precisions);

TYPED_TEST(ColumnTest, BitsOfTheEngine) {
  using T = TypeParam;
  using Number = typename Engine<T>::Number;
  std::mt19937 engine(5);
  std::uniform_real_distribution<T> uniform(-1, 1);
  const T special[] = {0, T(-0.0), std::numeric_limits<T>::infinity(), std::numeric_limits<T>::denorm_min()};
  for (int order = 0; order <= dft::largest_column_order; ++order)
    for (const int count : {1, 2, 3, 4, 5, 7, 8, 9, 17})
      for (const int gap : {0, 3})
        for (const bool forward : {true, false})
          for (const T scale : {T(1), T(0.3)}) {
            const int rows = 1 << order, stride = count + gap;
            const size_t size = static_cast<size_t>(rows - 1) * stride + count;
            std::vector<Number> x(size), expected(size);
            for (size_t i = 0; i < size; ++i)
              x[i] = {i % 7 == 3 && order < 5 ? special[i % 4] : uniform(engine),
                      i % 5 == 2 ? T(-0.0) : uniform(engine)};
            for (int c = 0; c < count; ++c) {
              std::vector<Number> line(rows);
              for (int j = 0; j < rows; ++j) line[j] = x[j * stride + c];
              Engine<T>::line(forward, order, line.data());
              for (int j = 0; j < rows; ++j) {
                Number &y = expected[j * stride + c] = line[j];
                if (scale != 1) y.re *= scale, y.im *= scale;
              }
            }
            for_each_level([&](const char *level) {
              for (const Edge edge : {Edge::end, Edge::start}) {
                SCOPED_TRACE(testing::Message()
                             << level << " order " << order << " count " << count << " stride " << stride
                             << " forward " << forward << " scale " << scale);
                Guarded<Number> source(size, edge), target(size, edge);
                std::memcpy(source.data(), x.data(), size * sizeof(Number));
                std::memcpy(target.data(), x.data(), size * sizeof(Number));
                const auto check = [&](const Number *y) {
                  for (int j = 0; j < rows; ++j)
                    for (int c = 0; c < count; ++c) {
                      const size_t i = j * stride + c;
                      const bool nan = expected[i].re != expected[i].re || expected[i].im != expected[i].im;
                      ASSERT_TRUE(nan || std::memcmp(&y[i], &expected[i], sizeof(Number)) == 0)
                          << "row " << j << " column " << c;
                    }
                };
                Engine<T>::columns[forward](order, source.data(), 2 * stride, target.data(), 2 * stride,
                                            count, scale);
                check(target.data());
                Engine<T>::columns[forward](order, source.data(), 2 * stride, source.data(), 2 * stride,
                                            count, scale);
                check(source.data());
                for (int j = 0; j + 1 < rows; ++j)
                  for (int c = count; c < stride; ++c)
                    ASSERT_EQ(std::memcmp(&source.data()[j * stride + c], &x[j * stride + c], sizeof(Number)),
                              0);
              }
            });
            if (testing::Test::HasFatalFailure()) return;
          }
}

}  // namespace
}  // namespace qkr::tests
