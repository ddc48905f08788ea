// Functions of one number.
#include <cmath>
#include <gtest/gtest.h>
#include <qkr/vecmath.h>

#include "tests/support/samples.h"

namespace {

using namespace qkr::tests;

template <class T>
T square_root(T x) {
  return either<T>(_vxmdsqrt_scalar, _vxmssqrt_scalar)(x);
}

template <class T>
class ScalarFunctions : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(ScalarFunctions, Elements);

// The processor's own roots are correctly rounded.
TYPED_TEST(ScalarFunctions, SquareRootStaysWithinItsError) {
  using T = TypeParam;
  qkr::tests::Random random{1};
  int64_t worst = 0;
  for (int i = 0; i < 200'000; ++i) {
    const T x = from_pattern<T>(static_cast<Pattern<T>>(random()) >> 1);
    if (std::isfinite(x)) worst = std::max(worst, std::abs(rank(square_root(x)) - rank(std::sqrt(x))));
  }
  EXPECT_LE(worst, either<T>(3, 1));
  for (const T x : {T(0), T(-0.0), T(4), T(0x1p-126), T(INFINITY)})
    EXPECT_EQ(pattern_of(square_root(x)), pattern_of(std::sqrt(x))) << x;
  const auto domain = either<T>(0x7FF8A5A55A5A5A5A, 0xFFC00000u),
             nan = either<T>(0x7FF4000000000001, 0x7FA00001u);
  for (const T x : {T(-INFINITY), T(-1), -std::numeric_limits<T>::denorm_min()})
    EXPECT_EQ(pattern_of(square_root(x)), domain) << x;
  EXPECT_EQ(pattern_of(square_root(from_pattern<T>(nan))), nan | either<T>(0x0008000000000000, 0x00400000u));
}

// The worst float, whose error the documentation promises to be below 0.61 ulp; ends of the doubles.
TEST(ScalarSqrt, KeepsItsBound) {
  const float x = from_pattern<float>(0x00005A43u), root = square_root(x);
  const double ulp = std::nextafter(root, 1.0f) - root;
  EXPECT_NEAR(std::fabs(root - std::sqrt(static_cast<double>(x))) / ulp, 0.60208, 1e-5);
  EXPECT_EQ(square_root(0x1p-1074), 0x1p-537);
  EXPECT_EQ(square_root(0x1p1000), 0x1p500);
}

TYPED_TEST(ScalarFunctions, AbsClearsTheSignOfAnything) {
  using T = TypeParam;
  for (const T x : {T(-0.0), T(-1.5), T(2), T(-INFINITY), -std::numeric_limits<T>::quiet_NaN()})
    EXPECT_EQ(pattern_of(either<T>(_vxm_dabs_scalar, _vxm_sabs_scalar)(x)), pattern_of(std::fabs(x)));
  EXPECT_EQ(dll_cpu_version(), 0);
}

}  // namespace
