// The properties that make the rows of MT2203, WH and Niederreiter valid. GSL has the direction numbers of
// Sobol.
#include "streams/tables/tables.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <qkr/streams_generators.h>
#include <set>
#include <tuple>

#include "streams/quasi/digital_sequence.h"
#include "tests/streams/stream.h"
#include "tools/tables/mt2203/equidistribution.h"

namespace {

mt2203::Parameters row(int member) {
  const uint32_t *words = qkr::mt2203::parameters[member];
  return {words[0], words[1], words[2]};
}

TEST(Mt2203Table, GivenRowsStandInTheirPlaces) {
  const struct {
    int member;
    mt2203::Parameters parameters;
  } given[] = {{0, {0xaf81055f, 0xdd7eef80, 0xefd78000}},    {1, {0x832604e1, 0x66ad7f80, 0xebd58000}},
               {2, {0x92f70739, 0x656d7780, 0xefc50000}},    {511, {0xfdee01ff, 0x8ab47780, 0xefd70000}},
               {1022, {0xb9d00987, 0xd2f4ef80, 0xefb78000}}, {1023, {0xe1b6093f, 0x9d326e80, 0xefd58000}}};
  for (const auto &[member, parameters] : given) {
    const mt2203::Parameters actual = row(member);
    EXPECT_EQ(std::tie(actual.twist, actual.mask_b, actual.mask_c),
              std::tie(parameters.twist, parameters.mask_b, parameters.mask_c))
        << member;
  }
}

// An irreducible characteristic polynomial of degree 2203 is primitive: the period is 2^2203 - 1.
TEST(Mt2203Table, CharacteristicPolynomialsAreIrreducibleAndDiffer) {
  const int every = __builtin_cpu_supports("pclmul") ? 1 : 64;  // 3 ms each, or 40 ms without the instruction
  std::set<uint32_t> different;
  for (int member = 0; member < qkr::mt2203::members; ++member) {
    different.insert(row(member).twist);
    if (member % every != 0) continue;
    EXPECT_TRUE(mt2203::irreducible(row(member).twist)) << member;
  }
  EXPECT_EQ(different.size(), qkr::mt2203::members);
  EXPECT_FALSE(mt2203::irreducible(row(7).twist ^ 1)) << "the test tells them apart";
}

// Ties the polynomial to the words that a sequence makes: it cancels any bit of them.
TEST(Mt2203Table, CharacteristicPolynomialCancelsTheSequence) {
  const uint32_t twist = row(511).twist;
  const mt2203::Residue f = mt2203::characteristic_polynomial(twist);
  mt2203::Sequence sequence;
  sequence.set_unit();
  uint32_t sum = 0;
  for (int i = 0; i <= mt2203::degree; ++i) {
    const int at = i + mt2203::padding;
    const uint32_t word = sequence.step(twist);
    if (i == mt2203::degree || (f[at / 64] >> (at % 64) & 1)) sum ^= word;
  }
  EXPECT_EQ(sum, 0u);
}

// The given rows have 699 to 711, random masks about 2900.
TEST(Mt2203Table, LeadingBitsAreEquidistributed) {
  constexpr int largest_defect = 716;
  for (int member = 0; member < qkr::mt2203::members; member += 33) {
    EXPECT_LE(mt2203::Equidistribution(row(member)).defect(), largest_defect) << member;
  }
  EXPECT_GT(mt2203::Equidistribution({row(0).twist, 0, 0}).defect(), 4000) << "without tempering";
}

using namespace qkr;

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
}

uint32_t remainder(uint32_t dividend, uint32_t divisor) {
  while (std::bit_width(dividend) >= std::bit_width(divisor))
    dividend ^= divisor << (std::bit_width(dividend) - std::bit_width(divisor));
  return dividend;
}

TEST(NiederreiterTable, HoldsAllIrreduciblePolynomials) {
  const uint32_t *end = niederreiter::polynomials;
  for (uint32_t p = 2; p <= 3047; ++p) {
    const bool irreducible = std::none_of(niederreiter::polynomials, end,
                                          [p](uint32_t divisor) { return remainder(p, divisor) == 0; });
    if (!irreducible) continue;
    EXPECT_EQ(*end, p);
    EXPECT_EQ(niederreiter::degrees[end - niederreiter::polynomials], std::bit_width(p) - 1);
    ++end;
  }
  EXPECT_EQ(end, niederreiter::polynomials + 318);
}

// Generator matrices row by row, with one bit of a recurrence after the other.
TEST(NiederreiterTable, DirectionsFollowTheDefinition) {
  const tests::Stream stream = tests::new_stream(0x700000, {318});
  for (int32_t j = 0; j < 318; ++j) {
    const uint32_t p = niederreiter::polynomials[j];
    const int e = std::bit_width(p) - 1;
    std::vector<int> b = {1};
    uint32_t expected[32] = {};
    for (int r = 0, q = 0; r < 32; q += e) {
      std::vector<int> product(q + e + 1), w(q + e + 32);
      for (int i = 0; i <= q; ++i)
        for (int k = 0; k <= e; ++k) product[i + k] ^= b[i] & static_cast<int>(p >> k & 1);
      b = product;
      std::fill_n(w.begin() + q, e, 1);
      for (int t = q + e; t <= e + 30; ++t)
        for (int i = 0; i < q + e; ++i) w[t] ^= b[i] & w[t - (q + e) + i];
      for (int u = 0; u < e && r < 32; ++u, ++r)
        for (int c = 0; c < 32; ++c) expected[c] |= static_cast<uint32_t>(w[u + c]) << (31 - r);
    }
    EXPECT_TRUE(std::equal(expected, expected + 32, sequence_of<Niederreiter>(stream.get()).row(j))) << j;
  }
}

}  // namespace
