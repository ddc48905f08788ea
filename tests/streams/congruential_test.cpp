// The powers behind the jumps of congruential generators, and functions of one number.
#include <cmath>
#include <qkr/streams_generators.h>
#include <random>

#include "tests/streams/stream.h"

namespace {

using namespace qkr;
using namespace qkr::tests;

TEST(Congruential, PowersAreRepeatedProducts) {
  std::mt19937_64 engine(5);
  for (int round = 0; round < 200; ++round) {
    const uint64_t base = engine(), modulus = engine() % 0xfffffffe + 1;
    const auto exponent = static_cast<int32_t>(engine() % 300);
    uint64_t general = 1, mersenne = 1, binary = 1;
    for (int32_t i = 0; i < exponent; ++i) {
      general = general * static_cast<uint32_t>(base) % modulus;
      mersenne = mersenne * (base & 0x3fffffff) % 0x7fffffff;
      binary = binary * base & 0x7ffffffffffffff;
    }
    EXPECT_EQ(__vxsiPowMod(static_cast<uint32_t>(base), exponent, static_cast<uint32_t>(modulus)), general);
    EXPECT_EQ(__vxsiPowMod2P31M1(base & 0x3fffffff, exponent), mersenne);
    EXPECT_EQ(__vxsiPowMod2P59(base, exponent), binary);
  }
  // No residues from bases of 2^31 and above: products are folded once, to 32 bits.
  for (const uint32_t base : {0x7fffffffu, 0x80000000u, 0x80000001u, 0xdeadbeefu, 0xffffffffu}) {
    const auto fold = [](uint64_t product) {
      const auto sum = static_cast<uint32_t>((product & 0x7fffffff) + (product >> 31));
      return sum >= 0x7fffffff ? sum - 0x7fffffff : sum;
    };
    EXPECT_EQ(__vxsiPowMod2P31M1(base, 0), 1u);
    EXPECT_EQ(__vxsiPowMod2P31M1(base, 1), fold(base));
    EXPECT_EQ(__vxsiPowMod2P31M1(base, 2), fold(fold(uint64_t{base} * base)));
  }
  EXPECT_NE(__vxsiPowMod2P31M1(0xffffffff, 2), 1u);  // its residue is
  EXPECT_EQ(__vxsiPowMod(7, 0, 1), 1u);
  EXPECT_EQ(__vxsiPowMod2P31M1(7, 0x7ffffffe), 1u);  // Fermat
}

TEST(Congruential, LeapfrogOfLeapfrog) {
  for (const uint32_t id : {0x100000u, 0x400000u, 0x500007u}) {
    const Stream plain = new_stream(id, {12345, 6, 7, 8}), split = copy_of(plain);
    EXPECT_EQ(__vxsLeapfrogStream(split.get(), 1, 3), VXS_STATUS_OK);  // 1, 4, 7, 10, ...
    EXPECT_EQ(__vxsLeapfrogStream(split.get(), 2, 5), VXS_STATUS_OK);  // 7, 22, 37, ...
    EXPECT_EQ(__vxsSkipAheadStream(split.get(), 10), VXS_STATUS_OK);   // 157, ...
    EXPECT_EQ(__vxsSkipAheadStream(plain.get(), 157), VXS_STATUS_OK);
    EXPECT_EQ(draw_words(split, 1), draw_words(plain, 1)) << id;
  }
}

TEST(ScalarFunctions, StayWithinTheirErrors) {
  std::mt19937_64 engine(3);
  double worst_ln = 0, worst_sqrt = 0;
  const auto ulps = [](double got, long double right) {
    const double rounded = std::fabs(static_cast<double>(right));
    const long double ulp = std::nextafter(rounded, HUGE_VAL) - rounded;
    return static_cast<double>(std::fabs(got - right) / ulp);
  };
  for (int i = 0; i < 1000000; ++i) {
    const uint64_t random = engine();
    double x = __builtin_bit_cast(double, random >> 1);
    if (i % 3 == 1) x = 1 + std::ldexp(static_cast<double>(static_cast<int64_t>(random)), -64 - i % 17);
    if (i % 3 == 2) x = std::ldexp(static_cast<double>(random), -63);
    if (!std::isfinite(x) || x == 1 || x <= 0) continue;
    worst_ln = std::max(worst_ln, ulps(__vxsdLn(x), std::log(static_cast<long double>(x))));
    if (std::isnormal(x)) worst_sqrt = std::max(worst_sqrt, ulps(__vxsdSqrt(x), std::sqrt((long double)x)));
    const double signed_x = random & 1 ? -x : x;
    EXPECT_EQ(__vxsdFloor(signed_x), std::floor(signed_x)) << signed_x;
  }
  EXPECT_LT(worst_ln, 1);
  EXPECT_LT(worst_sqrt, 3);
  EXPECT_GT(worst_ln + worst_sqrt, 0.5);  // they were measured
}

TEST(ScalarFunctions, SpecialValues) {
  const double inf = HUGE_VAL, nan = std::nan("");
  const struct {
    double (*function)(double);
    double argument, value;
  } rows[] = {{__vxsdLn, 0.0, -inf},       {__vxsdLn, -0.0, -inf},
              {__vxsdLn, inf, inf},        {__vxsdLn, 1, 0},
              {__vxsdLn, -1, nan},         {__vxsdLn, -inf, nan},
              {__vxsdLn, -0x1p-1074, nan}, {__vxsdLn, nan, nan},
              {__vxsdSqrt, 0, 0},          {__vxsdSqrt, 0x1p100, 0x1p50},
              {__vxsdFloor, 0.0, 0.0},     {__vxsdFloor, 0.5, 0.0},
              {__vxsdFloor, -0.0, -0.0},   {__vxsdFloor, -0x1p-1074, -1},
              {__vxsdFloor, -inf, -inf},   {__vxsdFloor, nan, nan}};
  for (const auto &[function, argument, value] : rows) {
    const double found = function(argument);
    EXPECT_TRUE(std::isnan(value) ? std::isnan(found)
                                  : found == value && std::signbit(found) == std::signbit(value))
        << argument << " gives " << found << ", not " << value;
  }
  EXPECT_EQ(__vxssLn(2.0f), static_cast<float>(std::log(2.0)));
}

}  // namespace
