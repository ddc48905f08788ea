// Functions of one number or of small matrices: powers modulo m, logarithm, root and floor.
#include <array>
#include <cmath>
#include <qkr/streams_generators.h>
#include <random>

#include "tests/streams/stream.h"

namespace {

TEST(ModularPowers, AreRepeatedProducts) {
  std::mt19937_64 engine(5);
  for (int round = 0; round < 200; ++round) {
    const uint64_t base = engine(), low = base & 0x3fffffff, modulus = engine() % 0xfffffffe + 1;
    const auto exponent = static_cast<int32_t>(engine() % 300);
    uint64_t general = 1, mersenne = 1, binary = 1;
    for (int32_t i = 0; i < exponent; ++i) {
      general = general * static_cast<uint32_t>(base) % modulus;
      mersenne = mersenne * low % 0x7fffffff;
      binary = binary * base & 0x7ffffffffffffff;
    }
    EXPECT_EQ(__vxsiPowMod(static_cast<uint32_t>(base), exponent, static_cast<uint32_t>(modulus)), general);
    EXPECT_EQ(__vxsiPowMod2P31M1(static_cast<uint32_t>(low), exponent), mersenne);
    EXPECT_EQ(__vxsiPowMod2P59(base, exponent), binary);
  }
  // Bases of 2^31 and above: products are folded once, to 32 bits, which are no residues.
  for (const uint32_t base : {0x7fffffffu, 0x80000000u, 0x80000001u, 0xdeadbeefu, 0xffffffffu}) {
    const auto fold = [](uint64_t product) {
      const auto sum = static_cast<uint32_t>((product & 0x7fffffff) + (product >> 31));
      return sum >= 0x7fffffff ? sum - 0x7fffffff : sum;
    };
    EXPECT_EQ(__vxsiPowMod2P31M1(base, 0), 1u);
    EXPECT_EQ(__vxsiPowMod2P31M1(base, 1), fold(base));
    EXPECT_EQ(__vxsiPowMod2P31M1(base, 2), fold(fold(uint64_t{base} * base)));
  }
}

// The skips of MRG32K3A try products and powers; here they are done in place.
TEST(ModularMatrix, ProductsAndPowers) {
  using Matrix = std::array<uint32_t, 9>;
  constexpr uint32_t modulus = 4294967087, most = modulus - 1;
  Matrix matrix = {most, most, most, 2, 0, most, 1, most, 7}, consumed = matrix, square = matrix, cube, power;
  __vxsiMatr3x3MulMod(square.data(), square.data(), square.data(), modulus);
  EXPECT_EQ(square, (Matrix{most - 1, 2, most - 4, most - 2, most, most - 8, 4, most - 7, 49}));
  __vxsiMatr3x3MulMod(matrix.data(), square.data(), cube.data(), modulus);
  uint32_t column[3] = {square[2], square[5], square[8]};
  __vxsiMatr3x3VectMulMod(matrix.data(), column, column, modulus);
  EXPECT_TRUE(column[0] == cube[2] && column[1] == cube[5] && column[2] == cube[8]);
  __vxsiMatr3x3PowMod(consumed.data(), power.data(), modulus, 3);
  EXPECT_EQ(power, cube);
  __vxsiMatr3x3PowMod(matrix.data(), power.data(), modulus, 0);
  EXPECT_EQ(power, (Matrix{1, 0, 0, 0, 1, 0, 0, 0, 1}));
  // z[n] = 2 z[n-1] + 3 z[n-2] + 5 z[n-3] from 1, 1, 1: 10, 28, 91, 316.
  const uint32_t coefficients[3] = {2, 3, 5};
  uint32_t z[3] = {1, 1, 1};
  __vxsiVect3PowMod(z, coefficients, 101, 4);
  EXPECT_TRUE(z[0] == 28 && z[1] == 91 && z[2] == 316 % 101);
}

TEST(ScalarFunctions, StayWithinTheirErrors) {
  std::mt19937_64 engine(3);
  double worst_ln = 0, worst_sqrt = 0;
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
    const auto exact = static_cast<long double>(x);
    worst_ln = std::max(worst_ln, ulps(__vxsdLn(x), std::log(exact)));
    if (std::isnormal(x)) worst_sqrt = std::max(worst_sqrt, ulps(__vxsdSqrt(x), std::sqrt(exact)));
    const double signed_x = random & 1 ? -x : x;
    EXPECT_EQ(__vxsdFloor(signed_x), std::floor(signed_x)) << signed_x;
  }
  EXPECT_LT(worst_ln, 1);
  EXPECT_LT(worst_sqrt, 3);
}

TEST(ScalarFunctions, SpecialValuesAreThoseOfTheCLibrary) {
  for (const double x : {0.0, -0.0, 1.0, -1.0, -0x1p-1074, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    const auto is_same = [](double found, double expected) {
      return std::isnan(expected) ? std::isnan(found)
                                  : found == expected && std::signbit(found) == std::signbit(expected);
    };
    EXPECT_PRED2(is_same, __vxsdLn(x), std::log(x)) << x;
    EXPECT_PRED2(is_same, __vxsdFloor(x), std::floor(x)) << x;
  }
  EXPECT_EQ(__vxsdSqrt(0), 0);
  EXPECT_EQ(__vxsdSqrt(0x1p100), 0x1p50);
  EXPECT_EQ(__vxssLn(2.0f), static_cast<float>(std::log(2.0)));
}

}  // namespace
