// Tables of the bit reversal.
#include "sigfft/plan/plan_tables.h"
#include "simd/simd.h"

namespace qkr::sigfft {

uint32_t *fill_reversal(int order, uint32_t *table) {
  if (order < 2) return table;
  constexpr size_t together = sizeof(sse2::u32) / sizeof(uint32_t);
  const size_t quarter = size_t{1} << (order - 2);
  ReversedCounter reversed(order - 2);
  for (size_t j = 0; j < quarter && j < together; ++j, reversed.next())
    table[j] = (uint32_t)(2 * reversed.value());
  // With the next bit of j set, the same once more and the next lower bit.
  for (size_t done = together, bit = quarter / together; done < quarter; done *= 2, bit /= 2)
    for (size_t j = 0; j < done; j += together) {
      sse2::u32 values;
      sse2::load(table + j, values);
      sse2::store(table + done + j, values + (uint32_t)bit);
    }
  table[quarter] = 0;
  return align16(table + quarter + 1);
}

uint32_t *fill_reversal_pairs(int order, uint32_t *table) {
  if (order < 2) return table;
  const size_t quarter = size_t{1} << (order - 2);
  size_t front = 0, back = quarter;
  ReversedCounter reversed(order - 2);
  for (size_t j = 1; j < quarter; ++j) {
    reversed.next();
    const size_t r = reversed.value();
    // Whether j < r cannot be foreseen: what is no pair is written too, and overwritten. The last j stays,
    // and fills the one place that is not behind all pairs.
    table[front] = (uint32_t)(4 * j), table[front + 1] = (uint32_t)(4 * r);
    front += j < r ? 2 : 0;
    if (j == r) table[--back] = (uint32_t)(4 * j);
  }
  table[front] = 0;  // the one place between the pairs and those that stay
  table[quarter] = 0;
  return align16(table + quarter + 1);
}

uint32_t *fill_reversal_tiles(int order, int bits, uint32_t *table) {
  const size_t groups = size_t{1} << (order - 2 * bits);
  ReversedCounter reversed(order - 2 * bits);
  for (size_t j = 0; j < groups; ++j, reversed.next()) table[j] = (uint32_t)(reversed.value() << bits);
  return fill_reversal_pairs(2 * bits, table + groups);
}

}  // namespace qkr::sigfft
