#include "tests/streams/generators.h"

#include <Random123/philox.h>
#include <algorithm>
#include <bit>
#include <deque>
#include <random>
#include <sstream>

#include "streams/quasi/digital_sequence.h"
#include "streams/tables/tables.h"

namespace qkr::tests {
namespace {

uint32_t member_of(const Stream &stream) {
  return stream->brng < 0x100000 ? stream->brng - 4 : stream->brng & 0xfffff;
}

template <class Word, uint64_t multiplier, uint64_t modulus>
Steps congruential(const Stream &, Seeds seeds) {
  uint64_t x = 0;
  std::memcpy(&x, seeds.data(), sizeof(Word));
  return [x](uint32_t *words) mutable {
    std::memcpy(words, &x, sizeof(Word));
    x = static_cast<uint64_t>(static_cast<unsigned __int128>(x) * multiplier % modulus);
  };
}
constexpr auto mcg31m1 = congruential<uint32_t, 1132489760, 0x7fffffff>;
constexpr auto mcg59 = congruential<uint64_t, 302875106592253, uint64_t{1} << 59>;

Steps wichmann_hill(const Stream &stream, Seeds seeds) {
  return [x = seeds, k = member_of(stream)](uint32_t *words) mutable {
    std::copy(x.begin(), x.end(), words);
    for (size_t j = 0; j < 4; ++j)
      x[j] = x[j] * uint64_t{wichmann_hill::multipliers[k][j]} % wichmann_hill::moduli[k][j];
  };
}

Steps r250(const Stream &, Seeds seeds) {
  std::deque<uint32_t> past;
  uint32_t x = seeds[0];
  for (int k = 0; k < 250; ++k) past.push_back(x *= 69069);
  for (int k = 0; k < 32; ++k) past[3 + 7 * k] = (past[3 + 7 * k] & (0xffffffff >> k)) | (0x80000000 >> k);
  return [past](uint32_t *words) mutable {
    past.push_back(*words = past[0] ^ past[103]);
    past.pop_front();
  };
}

Steps mrg32k3a(const Stream &, Seeds seeds) {
  return [s = std::vector<int64_t>(seeds.begin(), seeds.end())](uint32_t *words) mutable {
    const auto residue = [](int64_t n, int64_t m) { return (n % m + m) % m; };
    const int64_t p = residue(1403580 * s[1] - 810728 * s[0], 4294967087);
    const int64_t q = residue(527612 * s[5] - 1370589 * s[3], 4294944443);
    s = {s[1], s[2], p, s[4], s[5], q};
    *words = static_cast<uint32_t>(p > q ? p - q : p - q + 4294967087);
  };
}

// The standard library's twister, from the words and the index of the stream: published numbers tell how they
// follow from seeds.
template <size_t n, size_t m, size_t r, uint32_t a, size_t u, uint32_t b, uint32_t c>
Steps twister(const Stream &stream, Seeds) {
  std::stringstream state;
  for (size_t k = 0; k <= n; ++k) state << state_words(stream)[k] << ' ';
  std::mersenne_twister_engine<uint32_t, 32, n, m, r, a, u, ~0u, 7, b, 15, c, 18, 1812433253> engine;
  state >> engine;
  return [engine](uint32_t *words) mutable { *words = engine(); };
}
constexpr auto mt19937 = twister<624, 397, 31, 0x9908b0df, 11, 0x9d2c5680, 0xefc60000>;
constexpr auto mt2203_first = twister<69, 34, 5, 0xaf81055f, 12, 0xdd7eef80, 0xefd78000>;
constexpr auto mt2203_last = twister<69, 34, 5, 0xe1b6093f, 12, 0x9d326e80, 0xefd58000>;

// By Random123, of the authors of Philox.
Steps philox_of_authors(const Stream &, Seeds seeds) {
  using Block = r123::Philox4x32;
  seeds.resize(6);
  const Block::key_type key = {{seeds[0], seeds[1]}};
  Block::ctr_type counter = {{seeds[2], seeds[3], seeds[4], seeds[5]}}, x;
  return [=, used = 4](uint32_t *words) mutable {
    if (used == 4) x = Block()(counter, key), counter.incr(), used = 0;
    *words = x[used++];
  };
}

}  // namespace

// Component j of the point with index i is the exclusive or of the direction numbers that the Gray code of i
// selects.
Steps digital_sequence(const Stream &stream, Seeds) {
  const bool is_sobol = stream->brng == 277 || stream->brng >> 20 == 6;
  const Sequence s = is_sobol ? sequence_of<Sobol>(stream) : sequence_of<Niederreiter>(stream);
  return [rows = Words(s.row(0), s.row(s.position->dim)), at = *s.position](uint32_t *words) mutable {
    const int32_t j = at.only_dim >= 0 ? at.only_dim : at.pending ? at.dim - at.pending : 0;
    *words = 0;
    for (uint32_t gray = at.seq ^ (at.seq >> 1); gray != 0; gray &= gray - 1)
      *words ^= rows[row_stride * j + std::countr_zero(gray)];
    at.pending = at.dim - 1 - j;
    if (at.only_dim >= 0 || at.pending == 0) ++at.seq;
  };
}

Seeds user_directions(uint32_t dim) {
  Seeds array = {dim, 1, 4};
  std::mt19937 random(dim);
  std::generate_n(std::back_inserter(array), 32 * dim, random);
  return array;
}

const std::vector<Generator> &all_generators() {
  using enum Moves;
  constexpr uint32_t m1 = 4294967087, m2 = 4294944443, sobol = 0x600000, niederreiter = 0x700000;
  static const auto philox = static_cast<uint32_t>(qkr_philox());
  static const std::vector<Generator> generators = {
      {"MCG31M1", 0x100000, {777}, apart, mcg31m1},
      {"MCG31M1, largest seed", 0, {0x7ffffffe}, apart, mcg31m1},
      {"R250", 0x200000, {777}, none, r250},
      {"MRG32K3A", 0x300000, {1, 20, 300, 4000, 5, 6}, ahead, mrg32k3a},
      {"MRG32K3A, largest seeds", 2, {m1 - 1, m1 - 1, m1 - 1, m2 - 1, m2 - 1, m2 - 1}, ahead, mrg32k3a},
      {"MCG59", 0x400000, {123456789, 0x07654321}, apart, mcg59},
      {"WH 0", 0x500000, {1, 22, 333, 4444}, apart, wichmann_hill},
      {"WH 136 by legacy id", 140, {9, 9, 9, 9}, apart, wichmann_hill},
      {"WH 272", 0x500110, {16766362, 16766358, 1, 16766230}, apart, wichmann_hill},
      {"MT19937", 0x800000, {0x123, 0x234, 0x345, 0x456}, none, mt19937},
      {"MT2203 0", 0x900000, {1}, none, mt2203_first},
      {"MT2203 1023, many seeds", 0x9003ff, user_directions(3), none, mt2203_last},
      {"Philox", philox, {777, 5}, ahead, philox_of_authors},
      {"Philox, counter before its halves wrap",
       philox,
       {1, 2, 0u - 99, ~0u, ~0u, 7},
       ahead,
       philox_of_authors},
      {"Sobol 1", sobol, {1}, by_dimension, digital_sequence},
      {"Sobol 3", sobol, {3}, by_dimension, digital_sequence},
      {"Sobol 40", sobol, {40}, by_dimension, digital_sequence},
      {"Sobol 41 of a user", sobol, user_directions(41), by_dimension, digital_sequence},
      {"Niederr 7", niederreiter, {7}, by_dimension, digital_sequence},
      {"Niederr 318", niederreiter, {318}, by_dimension, digital_sequence}};
  return generators;
}

}  // namespace qkr::tests
