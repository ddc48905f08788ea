// Rounding family and Modf against the C library, in every rounding mode, with and without
// denormals-are-zero.
#include <cfenv>
#include <cmath>
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include "tests/support/levels.h"
#include "tests/support/samples.h"

namespace {

using namespace qkr::tests;

template <class T>
class Rounding : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(Rounding, Elements);

// Those that have no name of lower accuracy.
template <class T>
std::vector<VectorFunction<T>> roundings() {
  std::vector<VectorFunction<T>> all = vector_functions<T>();
  std::erase_if(all, [](const auto &f) { return std::string_view(f.name).ends_with("_HA"); });
  return all;
}

// Halves, neighbours of integers and of the largest fractions, subnormals, infinities, and every exponent at
// random.
template <class T>
std::vector<T> arguments() {
  using Format = std::numeric_limits<T>;
  std::vector<T> x = {0, Format::denorm_min(), Format::min(), Format::infinity(), Format::quiet_NaN()};
  for (T base : {0.5, 1.0, 1.5, 2.0, 2.5, 3.5, 1e5, 2097152.0, 4194304.0, 8388608.0, 0x1p51, 0x1p52, 0x1p53})
    for (T offset : {-0.5, 0.0, 0.5})
      for (int step : {-1, 0, 1}) x.push_back(of_rank<T>(rank(T(base + offset)) + step));
  Random random{1};
  while (x.size() < 20'000)
    if (const T any = from_pattern<T>(static_cast<Pattern<T>>(random())); any == any) x.push_back(any);
  for (size_t i = x.size(); i-- > 0;) x.push_back(-x[i]);
  return x;
}

// Runs `body` at every level, in every rounding mode, with subnormals on and off.
template <class Body>
void everywhere(Body body) {
  for_each_level([&](const char *level) {
    for (int direction : {FE_TONEAREST, FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO})
      for (unsigned flush : {0u, 0x8040u}) {
        SCOPED_TRACE(testing::Message() << level << ", direction " << direction << ", flush " << flush);
        body(direction, flush);
      }
  });
}

// Calls under the given settings; returns the exceptions raised.
template <class Call>
unsigned under(int direction, unsigned flush, Call call) {
  std::fesetround(direction);
  const unsigned saved = _mm_getcsr();
  _mm_setcsr((saved & ~0x3Fu) | flush);
  call();
  const unsigned raised = _mm_getcsr() & 0x3D;  // IEEE 754 knows no exception for a subnormal operand
  _mm_setcsr(saved);
  std::fesetround(FE_TONEAREST);
  return raised;
}

TYPED_TEST(Rounding, AgreesWithTheLibrary) {
  using T = TypeParam;
  const std::vector<T> x = arguments<T>();
  const auto n = static_cast<int32_t>(x.size());
  everywhere([&](int direction, unsigned flush) {
    for (const auto &f : roundings<T>()) {
      std::vector<T> r = x, q(n);  // in place
      const unsigned raised =
          under(direction, flush, [&] { f.entry(n, r.data(), nullptr, r.data(), q.data()); });
      EXPECT_EQ(sizeof(T) == 8 ? raised : 0u, 0u) << f.name;
      under(direction, 0, [&] {
        for (int32_t i = 0; i < n; ++i)
          for (int k = 0; k < f.entry.results(); ++k) {
            const T computed = k == 0 ? r[i] : q[i], expected = static_cast<T>(f.quick[k].unary(x[i]));
            ASSERT_EQ(pattern_of(computed), pattern_of(expected))
                << f.name << " of " << x[i] << " gives " << computed;
          }
      });
    }
  });
}

// Raises invalid in double only: floats pass as they are.
TYPED_TEST(Rounding, SignallingNaN) {
  using T = TypeParam;
  constexpr Pattern<T> signalling = either<T>(0x7FF4000000000001, 0x7FA00001u);
  everywhere([&](int direction, unsigned flush) {
    for (const T x : {from_pattern<T>(signalling), -from_pattern<T>(signalling)})
      for (const auto &f : roundings<T>()) {
        if (f.entry.two_results) continue;
        T r = 0;
        const unsigned raised = under(direction, flush, [&] { f.entry(1, &x, nullptr, &r); });
        EXPECT_EQ(sizeof(T) == 8 ? raised : FE_INVALID, unsigned{FE_INVALID}) << f.name;
        EXPECT_EQ(pattern_of(r), pattern_of(x) | either<T>(0x0008000000000000, 0u)) << f.name;
      }
  });
}

}  // namespace
