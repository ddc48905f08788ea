// Codelets give the bits of the engine's transforms, in place and from one array to another, and touch
// nothing beyond their numbers.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <qkr/sigfft.h>
#include <random>
#include <vector>

#include "dft/codelets/lines.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

template <class T>
struct Engine;
#define QKR_TEST_ENGINE(T, C, R)                                                                           \
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
QKR_TEST_ENGINE(float, 32fc, 32f)
QKR_TEST_ENGINE(double, 64fc, 64f)

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
