// Rounding family and Modf against the C library, in every rounding mode, with and without
// denormals-are-zero.
#include <bit>
#include <cfenv>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <qkr/vecmath.h>
#include <random>
#include <type_traits>
#include <vector>
#include <xmmintrin.h>

#include "simd/level.h"

namespace {

template <class T>
using Pattern = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;

template <class T>
struct Function {
  const char *name;
  void (*vector)(int32_t, const T *, T *);
  T (*reference)(T);
};

// The C library's own functions: what the compiler puts in place of std::rint errs in the sign of zero.
#define ROUNDING(letter, T, suffix)                                                        \
  const Function<T> functions_##letter[] = {{"Ceil", _vxm##letter##Ceil, ceil##suffix},    \
                                            {"Floor", _vxm##letter##Floor, floor##suffix}, \
                                            {"Round", _vxm##letter##Round, round##suffix}, \
                                            {"Trunc", _vxm##letter##Trunc, trunc##suffix}, \
                                            {"Rint", _vxm##letter##Rint, rint##suffix},    \
                                            {"NearbyInt", _vxm##letter##NearbyInt, nearbyint##suffix}};
ROUNDING(d, double, )
ROUNDING(s, float, f)
const auto &functions_of(double) { return functions_d; }
const auto &functions_of(float) { return functions_s; }

// Halves, neighbours of integers and of the largest fractions, subnormals, infinities, and every exponent at
// random.
template <class T>
std::vector<T> arguments() {
  const T inf = std::numeric_limits<T>::infinity(), tiny = std::numeric_limits<T>::denorm_min();
  std::vector<T> x = {0, tiny, std::numeric_limits<T>::min(), inf, std::numeric_limits<T>::quiet_NaN()};
  for (T base : {0.5, 1.0, 1.5, 2.0, 2.5, 3.5, 1e5, 2097152.0, 4194304.0, 8388608.0, 0x1p51, 0x1p52, 0x1p53})
    for (T offset : {-0.5, 0.0, 0.5}) {
      const T v = base + offset;
      for (T near : {v, std::nextafter(v, inf), std::nextafter(v, -inf)}) x.push_back(near);
    }
  std::mt19937_64 engine(1);
  constexpr int fraction_bits = std::numeric_limits<T>::digits - 1;
  constexpr Pattern<T> exponents = sizeof(T) == 8 ? 2047 : 255;
  for (Pattern<T> exponent = 0; exponent < exponents; ++exponent)
    for (int k = 0; k < 20; ++k) {
      const Pattern<T> fraction = engine() & ((Pattern<T>(1) << fraction_bits) - 1);
      x.push_back(std::bit_cast<T>(exponent << fraction_bits | fraction));
    }
  for (size_t i = x.size(); i-- > 0;) x.push_back(-x[i]);
  return x;
}

template <class T>
bool same(T a, T b) {
  return std::bit_cast<Pattern<T>>(a) == std::bit_cast<Pattern<T>>(b);
}

// Runs `body` at every level, in every rounding mode, with subnormals on and off; the flags are clear before.
template <class Body>
void everywhere(Body body) {
  for (int level = 0; level <= static_cast<int>(qkr::supported_level()); ++level)
    for (int direction : {FE_TONEAREST, FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO})
      for (unsigned flush : {0u, 0x8040u}) {
        SCOPED_TRACE("level " + std::to_string(level) + " direction " + std::to_string(direction) +
                     " flush " + std::to_string(flush));
        qkr::force_level(static_cast<qkr::Level>(level));
        body(direction, flush);
      }
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

template <class T>
class Rounding : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(Rounding, Elements);

TYPED_TEST(Rounding, AgreesWithTheLibrary) {
  using T = TypeParam;
  const std::vector<T> x = arguments<T>();
  everywhere([&](int direction, unsigned flush) {
    for (const auto &f : functions_of(T())) {
      std::vector<T> expected(x.size()), r = x;  // in place
      under(direction, 0, [&] {
        for (size_t i = 0; i < x.size(); ++i) expected[i] = f.reference(x[i]);
      });
      const unsigned raised = under(direction, flush, [&] { f.vector(x.size(), r.data(), r.data()); });
      for (size_t i = 0; i < x.size(); ++i)
        ASSERT_TRUE(same(r[i], expected[i])) << f.name << " of " << x[i] << " gives " << r[i];
      EXPECT_EQ(sizeof(T) == 8 ? raised : 0u, 0u) << f.name;
    }
  });
}

TYPED_TEST(Rounding, ModfAgreesWithTheLibrary) {
  using T = TypeParam;
  const auto call = [](int32_t n, const T *a, T *r1, T *r2) {
    if constexpr (sizeof(T) == 8) _vxmdModf(n, a, r1, r2);
    else _vxmsModf(n, a, r1, r2);
  };
  const std::vector<T> x = arguments<T>();
  everywhere([&](int direction, unsigned flush) {
    std::vector<T> integer(x.size()), fraction = x;
    const unsigned raised =
        under(direction, flush, [&] { call(x.size(), fraction.data(), integer.data(), fraction.data()); });
    for (size_t i = 0; i < x.size(); ++i) {
      T whole;
      const T rest = std::modf(x[i], &whole);
      ASSERT_TRUE(same(integer[i], whole) && same(fraction[i], rest))
          << x[i] << ": " << integer[i] << ", " << fraction[i];
    }
    EXPECT_EQ(sizeof(T) == 8 ? raised : 0u, 0u);
  });
}

// Raises invalid in double only: floats pass as they are.
TEST(RoundingSpecial, SignallingNaN) {
  const uint64_t wide[] = {0x7FF4000000000001, 0xFFF4000000000001};
  const uint32_t narrow[] = {0x7FA00001, 0xFFA00001};
  everywhere([&](int direction, unsigned flush) {
    for (int k = 0; k < 2; ++k) {
      const double x = std::bit_cast<double>(wide[k]);
      const float y = std::bit_cast<float>(narrow[k]);
      for (const auto &f : functions_d) {
        double r = 0;
        EXPECT_EQ(under(direction, flush, [&] { f.vector(1, &x, &r); }), FE_INVALID) << f.name;
        EXPECT_EQ(std::bit_cast<uint64_t>(r), wide[k] | 0x0008000000000000) << f.name;
      }
      for (const auto &f : functions_s) {
        float r = 0;
        f.vector(1, &y, &r);
        EXPECT_EQ(std::bit_cast<uint32_t>(r), narrow[k]) << f.name;
      }
    }
  });
}

}  // namespace
