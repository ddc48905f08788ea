// The properties that make a row of MT2203's table valid.
#include <gtest/gtest.h>
#include <set>

#include "streams/tables/tables.h"
#include "tools/tables/mt2203/equidistribution.h"

namespace {

constexpr int members = 1024;

mt2203::Parameters row(int member) {
  const uint32_t *words = qkr::mt2203::parameters[member];
  return {words[0], words[1], words[2]};
}

TEST(Mt2203Table, GivenRowsStandInTheirPlaces) {
  const struct {
    int member;
    uint32_t matrix, mask_b, mask_c;
  } given[] = {{0, 0xaf81055f, 0xdd7eef80, 0xefd78000},    {1, 0x832604e1, 0x66ad7f80, 0xebd58000},
               {2, 0x92f70739, 0x656d7780, 0xefc50000},    {511, 0xfdee01ff, 0x8ab47780, 0xefd70000},
               {1022, 0xb9d00987, 0xd2f4ef80, 0xefb78000}, {1023, 0xe1b6093f, 0x9d326e80, 0xefd58000}};
  for (const auto &expected : given) {
    const mt2203::Parameters actual = row(expected.member);
    EXPECT_EQ(actual.twist, expected.matrix) << expected.member;
    EXPECT_EQ(actual.mask_b, expected.mask_b) << expected.member;
    EXPECT_EQ(actual.mask_c, expected.mask_c) << expected.member;
  }
}

// An irreducible characteristic polynomial of degree 2203 is primitive: the period is 2^2203 - 1.
TEST(Mt2203Table, CharacteristicPolynomialsAreIrreducibleAndDiffer) {
  const int every = __builtin_cpu_supports("pclmul") ? 1 : 64;  // 3 ms each, or 40 ms without the instruction
  std::set<uint32_t> different;
  for (int member = 0; member < members; ++member) {
    different.insert(row(member).twist);
    if (member % every != 0) continue;
    EXPECT_TRUE(mt2203::irreducible(row(member).twist)) << member;
  }
  EXPECT_EQ(different.size(), members);
}

TEST(Mt2203Table, ReducibleAndIrreduciblePolynomialsAreToldApart) {
  using mt2203::ByInstruction, mt2203::ByShifts, mt2203::Field;
  const auto polynomial = mt2203::characteristic_polynomial;
  EXPECT_TRUE(Field<ByShifts>{polynomial(row(7).twist)}.irreducible());
  for (uint32_t bit : {1u, 2u, 4u, 1u << 30}) {
    EXPECT_FALSE(mt2203::irreducible(row(7).twist ^ bit)) << bit;
  }
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
  for (int member = 0; member < members; member += 33) {
    EXPECT_LE(mt2203::Equidistribution(row(member)).defect(), largest_defect) << member;
  }
  EXPECT_GT(mt2203::Equidistribution({row(0).twist, 0, 0}).defect(), 4000) << "without tempering";
}

TEST(Mt2203Table, MasksRepeat) {
  std::set<uint32_t> b, c;
  for (int member = 0; member < members; ++member) b.insert(row(member).mask_b), c.insert(row(member).mask_c);
  EXPECT_EQ(b.size(), 786u);
  EXPECT_EQ(c.size(), 344u);
}

}  // namespace
