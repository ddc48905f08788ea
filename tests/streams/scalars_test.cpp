// Functions of one number or of small matrices: powers modulo m, logarithm, root and floor.
#include <array>
#include <cmath>
#include <qkr/streams_generators.h>
#include <random>

#include "tests/streams/stream.h"

namespace {

// Beside pow() of Python. A base of 2^31 and more is folded once, to 32 bits.
TEST(ModularPowers, AreThoseOfWholeNumbers) {
  EXPECT_EQ(__vxsiPowMod(3000000001, 54321, 4000000007), 3537297332u);
  EXPECT_EQ(__vxsiPowMod2P31M1(2147471301, -1), 1519960683u);  // the bits of the exponent count: 2^32 - 1
  EXPECT_EQ(__vxsiPowMod2P59(123456789123456789, 54321), 504861794924628565u);
  EXPECT_EQ(__vxsiPowMod2P31M1(0xffffffff, 1), 0x80000000u - 0x7fffffff);
}

// The skips of MRG32K3A try products; here they are done in place, and powers.
TEST(ModularMatrix, ProductsAndPowers) {
  using Matrix = std::array<uint32_t, 9>;
  constexpr uint32_t modulus = 4294967087, most = modulus - 1;
  Matrix matrix = {most, most, most, 2, 0, most, 1, most, 7}, square = matrix, power;
  __vxsiMatr3x3MulMod(square.data(), square.data(), square.data(), modulus);
  EXPECT_EQ(square, (Matrix{most - 1, 2, most - 4, most - 2, most, most - 8, 4, most - 7, 49}));
  __vxsiMatr3x3MulMod(matrix.data(), square.data(), square.data(), modulus);
  __vxsiMatr3x3PowMod(matrix.data(), power.data(), modulus, 3);
  EXPECT_EQ(power, square);
  // z[n] = 2 z[n-1] + 3 z[n-2] + 5 z[n-3] from 1, 1, 1: 10, 28, 91, 316.
  const uint32_t coefficients[3] = {2, 3, 5};
  uint32_t z[3] = {1, 1, 1};
  __vxsiVect3PowMod(z, coefficients, 101, 4);
  EXPECT_TRUE(z[0] == 28 && z[1] == 91 && z[2] == 316 % 101);
}

TEST(ScalarFunctions, StayWithinTheirErrors) {
  std::mt19937_64 engine(3);
  const auto ulps = [](double got, long double right) {
    const double rounded = std::fabs(static_cast<double>(right));
    return static_cast<double>(std::fabs(got - right) / (std::nextafter(rounded, HUGE_VAL) - rounded));
  };
  for (int i = 0; i < 1000000; ++i) {
    const uint64_t random = engine();
    double x = __builtin_bit_cast(double, random >> 1);
    if (i % 3 == 1) x = 1 + std::ldexp(static_cast<double>(static_cast<int64_t>(random)), -64 - i % 17);
    if (i % 3 == 2) x = std::ldexp(static_cast<double>(random), -63);
    if (!std::isfinite(x) || x == 1 || x <= 0) continue;
    ASSERT_LT(ulps(__vxsdLn(x), std::log(static_cast<long double>(x))), 1) << x;
    ASSERT_TRUE(!std::isnormal(x) || ulps(__vxsdSqrt(x), std::sqrt(static_cast<long double>(x))) < 3) << x;
    ASSERT_EQ(__vxsdFloor(-x), std::floor(-x)) << x;
  }
  const auto is_same = [](double x, double y) {
    return x == y ? std::signbit(x) == std::signbit(y) : std::isnan(x) && std::isnan(y);
  };
  for (const double x : {0.0, -0.0, 1.0, -1.0, 2.5, -0x1p-1074, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    EXPECT_PRED2(is_same, __vxsdLn(x), std::log(x)) << x;
    EXPECT_PRED2(is_same, __vxsdFloor(x), std::floor(x)) << x;
  }
  EXPECT_EQ(__vxsdSqrt(0), 0);
  EXPECT_EQ(__vxssLn(2.0f), static_cast<float>(std::log(2.0)));
}

}  // namespace
