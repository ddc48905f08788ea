// The tables of Sobol's and Niederreiter's sequences, by the properties that make them valid.
#include <algorithm>
#include <bit>

#include "streams/quasi/digital_sequence.h"
#include "streams/tables/tables.h"
#include "tests/streams/stream.h"

namespace {

using namespace qkr;

uint32_t remainder(uint32_t dividend, uint32_t divisor) {
  while (std::bit_width(dividend) >= std::bit_width(divisor))
    dividend ^= divisor << (std::bit_width(dividend) - std::bit_width(divisor));
  return dividend;
}

TEST(QuasiRandomTables, NiederreiterTableHoldsAllIrreduciblePolynomials) {
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

TEST(QuasiRandomTables, SobolTable) {
  for (int j = 0; j < 39; ++j) {
    const uint32_t p = sobol::polynomials[j], e = static_cast<uint32_t>(sobol::degrees[j]);
    EXPECT_EQ(e, std::bit_width(p) - 1u);
    uint32_t power = 1, order = 0;  // p is primitive: x has the order 2^e - 1
    do power = remainder(power << 1, p), ++order;
    while (power != 1 && order < 1u << e);
    EXPECT_EQ(order, (1u << e) - 1) << p;
    for (uint32_t k = 0; k < 8; ++k) {
      EXPECT_EQ(sobol::initial_values[j][k] & 1, 1u) << j << ' ' << k;
      EXPECT_LT(sobol::initial_values[j][k], 2u << k) << j << ' ' << k;
    }
  }
  EXPECT_EQ(sobol::polynomials[39], 0u);
}

// Generator matrices row by row, with one bit of a recurrence after the other.
TEST(QuasiRandomTables, NiederreiterDirectionsFollowTheDefinition) {
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
