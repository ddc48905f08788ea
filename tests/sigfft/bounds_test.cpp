// No transform touches memory beyond its arrays and the work buffer that it asked for.
#include <cmath>
#include <gtest/gtest.h>

#include "engines.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

template <class T>
class Bounds : public testing::Test {};
using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(Bounds, Precisions);

constexpr int orders[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 15, 17};

// Calls `check` with each of the arrays against a guarded page at its end, then at its start.
template <class T, class Check>
void for_each_edge(const Functions<T> &f, Kind kind, int order, Check check) {
  const Plan<T> plan(f, kind, order, 4);
  int32_t size = -1;
  ASSERT_EQ(f.plan[kind].get_buffer_size(plan, &size), zprStsNoErr);
  for (const Edge edge : {Edge::end, Edge::start}) {
    Guarded<uint8_t> work(size, edge);
    for_each_level([&](const char *level) {
      SCOPED_TRACE(testing::Message() << f.name << ", order " << order << ", " << level);
      check(edge, (const void *)plan, work.data());
    });
  }
}

TYPED_TEST(Bounds, OfComplexTransforms) {
  using T = TypeParam;
  for (const auto &f : functions<T>)
    for (const int order : orders) {
      const size_t n = size_t{1} << order;
      const auto check_interleaved = [&](Edge edge, const void *plan, uint8_t *work) {
        Guarded<T> src(2 * n, edge), dst(2 * n, edge);
        src.data()[0] = 1;
        for (const bool forward : {false, true}) {
          EXPECT_EQ(f.complex[forward](src.data(), dst.data(), plan, work), zprStsNoErr);
          EXPECT_EQ(f.complex_in_place[forward](dst.data(), plan, work), zprStsNoErr);
          EXPECT_NEAR(dst.data()[0], 1, 1e-6);
        }
      };
      const auto check_split = [&](Edge edge, const void *plan, uint8_t *work) {
        Guarded<T> re(n, edge), im(n, edge), to_re(n, edge), to_im(n, edge);
        re.data()[0] = 1;
        for (const bool forward : {false, true}) {
          EXPECT_EQ(f.split[forward](re.data(), im.data(), to_re.data(), to_im.data(), plan, work),
                    zprStsNoErr);
          EXPECT_EQ(f.split_in_place[forward](to_re.data(), to_im.data(), plan, work), zprStsNoErr);
          EXPECT_NEAR(to_re.data()[0], 1, 1e-6);
        }
      };
      for_each_edge(f, interleaved, order, check_interleaved);
      for_each_edge(f, split, order, check_split);
    }
}

TYPED_TEST(Bounds, OfRealTransforms) {
  using T = TypeParam;
  for (const auto &f : functions<T>)
    for (const int order : orders)
      for (const Format format : {perm, pack, ccs}) {
        const size_t n = size_t{1} << order, in_spectrum = spectrum_size(format, n);
        for_each_edge(f, real, order, [&](Edge edge, const void *plan, uint8_t *work) {
          Guarded<T> x(n, edge), spectrum(in_spectrum, edge), back(n, edge), both(in_spectrum, edge);
          x.data()[0] = both.data()[0] = 1;
          EXPECT_EQ(f.real[true][format](x.data(), spectrum.data(), plan, work), zprStsNoErr);
          EXPECT_EQ(f.real[false][format](spectrum.data(), back.data(), plan, work), zprStsNoErr);
          EXPECT_NEAR(back.data()[0], 1, 1e-6);
          EXPECT_EQ(f.real_in_place[true][format](both.data(), plan, work), zprStsNoErr);
          EXPECT_EQ(f.real_in_place[false][format](both.data(), plan, work), zprStsNoErr);
          EXPECT_NEAR(both.data()[0], 1, 1e-6);
        });
      }
}

}  // namespace
}  // namespace qkr::tests
