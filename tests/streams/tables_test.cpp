// The properties that make the rows of MT2203 valid, whose search takes too long to be run again, and the
// directions that Niederreiter's polynomials lead to. GSL has those of Sobol.
#include "streams/tables/tables.h"

#include <algorithm>
#include <bit>
#include <set>

#include "streams/quasi/digital_sequence.h"
#include "tests/streams/stream.h"
#include "tools/tables/mt2203/equidistribution.h"

namespace {

using namespace qkr;

::mt2203::Parameters row(int member) {
  const uint32_t *words = qkr::mt2203::parameters[member];
  return {words[0], words[1], words[2]};
}

// An irreducible characteristic polynomial of degree 2203 is primitive: the period is 2^2203 - 1. Of the
// defects of equidistribution, the given rows have 699 to 711, random masks about 2900.
TEST(Mt2203Table, HasFullPeriodsAndEquidistributedBits) {
  const uint32_t given[][4] = {{0, 0xaf81055f, 0xdd7eef80, 0xefd78000},
                               {1, 0x832604e1, 0x66ad7f80, 0xebd58000},
                               {1023, 0xe1b6093f, 0x9d326e80, 0xefd58000}};
  for (const auto &words : given)
    EXPECT_TRUE(std::equal(words + 1, words + 4, qkr::mt2203::parameters[words[0]])) << words[0];
  const int every = __builtin_cpu_supports("pclmul") ? 1 : 64;  // 3 ms each, or 40 ms without the instruction
  std::set<uint32_t> different;
  for (int member = 0; member < qkr::mt2203::members; ++member) {
    different.insert(row(member).twist);
    if (member % every == 0) {
      EXPECT_TRUE(::mt2203::irreducible(row(member).twist)) << member;
    }
    if (member % 33 == 0) {
      EXPECT_LE(::mt2203::Equidistribution(row(member)).defect(), 716) << member;
    }
  }
  EXPECT_EQ(different.size(), qkr::mt2203::members);
  EXPECT_FALSE(::mt2203::irreducible(row(7).twist ^ 1)) << "the test tells them apart";
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
