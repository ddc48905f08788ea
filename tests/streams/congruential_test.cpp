// Seeds and multipliers of the congruential generators, the powers behind their jumps, the Wichmann-Hill
// table.
#include <cmath>
#include <numeric>
#include <qkr/streams_generators.h>
#include <random>
#include <set>

#include "streams/tables/tables.h"
#include "tests/streams/stream.h"

namespace {

using namespace qkr;
using namespace qkr::tests;

template <class T>
std::vector<T> payload_as(const Stream &stream) {
  const std::string bytes = payload(stream);
  std::vector<T> values(bytes.size() / sizeof(T));
  std::memcpy(values.data(), bytes.data(), bytes.size());
  return values;
}

TEST(Congruential, SeedsAreReducedAndNeverZero) {
  const struct {
    uint32_t id;
    Seeds seeds;
    std::vector<uint64_t> x;
  } rows[] = {{0x100000, {}, {1}},
              {0x100000, {0}, {1}},
              {0x100000, {0x7fffffff}, {1}},
              {0x100000, {0x80000000}, {1}},
              {0x100000, {0xffffffff}, {1}},
              {0x100000, {0x80000001, 5}, {2}},
              {0x400000, {}, {1}},
              {0x400000, {0}, {1}},
              {0x400000, {0xffffffff}, {0xffffffff}},
              {0x400000, {0, 0x08000000}, {1}},
              {0x400000, {7, 0xffffffff, 9}, {0x7ffffff00000007}},
              {0x500000, {}, {1, 1, 1, 1}},
              {0x500000, {5}, {5, 1, 1, 1}},
              {0x500000, {16770647, 16770644, 0, 0xffffffff, 8}, {1, 1, 1, 0xffffffff % 16770617}}};
  for (const auto &row : rows) {
    const Stream stream = new_stream(row.id, row.seeds);
    if (row.id == 0x400000) {
      EXPECT_EQ(payload_as<uint64_t>(stream), (std::vector<uint64_t>{row.x[0], 302875106592253}));
    } else {
      const auto words = payload_as<uint32_t>(stream);
      for (size_t j = 0; j < row.x.size(); ++j) EXPECT_EQ(words[j], row.x[j]) << row.id << " " << j;
    }
  }
}

TEST(Congruential, ANegativeCountGivesWHFourSeeds) {
  StreamState *stream = nullptr;
  const uint32_t seeds[] = {2, 3, 4, 5};
  EXPECT_EQ(__vxsNewStreamEx(&stream, 0x500000, -1, seeds), VXS_STATUS_OK);
  EXPECT_EQ(draw_words(Stream(stream), 1), (std::vector<uint32_t>{2, 3, 4, 5}));
}

TEST(Congruential, PowersAreRepeatedProducts) {
  std::mt19937_64 engine(5);
  for (int round = 0; round < 200; ++round) {
    const uint64_t base = engine(), modulus = engine() % 0xfffffffe + 1;
    const int32_t exponent = static_cast<int32_t>(engine() % 300);
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

bool is_prime(uint32_t n) {
  for (uint32_t d = 2; d * d <= n; ++d)
    if (n % d == 0) return false;
  return n > 1;
}

bool is_primitive_root(uint32_t a, uint32_t m) {
  const auto is_one = [&](uint32_t factor) {
    return __vxsiPowMod(a, static_cast<int32_t>((m - 1) / factor), m) == 1;
  };
  uint32_t rest = m - 1;
  for (uint32_t d = 2; d * d <= rest; ++d) {
    if (rest % d != 0) continue;
    if (is_one(d)) return false;
    while (rest % d == 0) rest /= d;
  }
  return rest == 1 || !is_one(rest);
}

// So each component runs through all m - 1 residues, and the four together through the product of the m - 1
// divided by 8.
TEST(WichmannHill, EveryMemberHasItsFullPeriod) {
  std::set<uint32_t> moduli;
  for (int k = 0; k < wichmann_hill::members; ++k) {
    for (int j = 0; j < 4; ++j) {
      const uint32_t m = wichmann_hill::moduli[k][j], a = wichmann_hill::multipliers[k][j];
      EXPECT_TRUE(is_prime(m) && m < 1u << 24) << k;
      EXPECT_TRUE(a >= 112 && a <= 127 && is_primitive_root(a, m)) << k;
      EXPECT_EQ(wichmann_hill::inverse_moduli[k][j], 1.0 / m) << k;
      for (int i = 0; i < j; ++i) {
        EXPECT_EQ(std::gcd((m - 1) / 2, (wichmann_hill::moduli[k][i] - 1) / 2), 1u) << k;
        EXPECT_NE(wichmann_hill::multipliers[k][i], a) << k;
      }
      moduli.insert(m);
    }
  }
  EXPECT_EQ(moduli.size(), 4u * wichmann_hill::members);
  EXPECT_EQ(*moduli.begin(), 16718909u);
  EXPECT_EQ(*moduli.rbegin(), 16776971u);
  const struct {
    int member;
    uint32_t m[4];
    uint8_t a[4];
  } known[] = {{0, {16770647, 16770643, 16770623, 16770617}, {125, 117, 127, 126}},
               {1, {16770311, 16770283, 16770263, 16770209}, {127, 126, 125, 123}},
               {136, {16758587, 16758571, 16758563, 16758527}, {126, 127, 125, 124}},
               {272, {16766363, 16766359, 16766327, 16766231}, {126, 127, 125, 124}}};
  for (const auto &row : known) {
    EXPECT_EQ(memcmp(row.m, wichmann_hill::moduli[row.member], sizeof row.m), 0) << row.member;
    EXPECT_EQ(memcmp(row.a, wichmann_hill::multipliers[row.member], sizeof row.a), 0) << row.member;
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
  EXPECT_EQ(__vxsdLn(0.0), -inf);
  EXPECT_EQ(__vxsdLn(-0.0), -inf);
  EXPECT_EQ(__vxsdLn(inf), inf);
  EXPECT_EQ(__vxsdLn(1), 0);
  for (const double x : {-1.0, -inf, -0x1p-1074, nan}) EXPECT_TRUE(std::isnan(__vxsdLn(x))) << x;
  EXPECT_EQ(__vxssLn(2.0f), static_cast<float>(std::log(2.0)));
  EXPECT_EQ(__vxsdSqrt(0.0), 0);
  EXPECT_EQ(__vxsdSqrt(0x1p100), 0x1p50);
  EXPECT_FALSE(std::signbit(__vxsdFloor(0.0)) || std::signbit(__vxsdFloor(0.5)));
  EXPECT_TRUE(std::signbit(__vxsdFloor(-0.0)));
  EXPECT_EQ(__vxsdFloor(-0x1p-1074), -1);
  EXPECT_EQ(__vxsdFloor(-inf), -inf);
  EXPECT_TRUE(std::isnan(__vxsdFloor(nan)));
}

}  // namespace
