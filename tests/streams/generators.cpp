#include "tests/streams/generators.h"

#include <algorithm>
#include <array>
#include <bit>
#include <deque>
#include <random>

#include "streams/quasi/digital_sequence.h"
#include "streams/tables/tables.h"

namespace qkr::tests {
namespace {

uint32_t member_of(uint32_t id) { return id < 0x100000 ? id - 4 : id & 0xfffff; }

Steps mcg31m1(const Generator &generator, const Stream &) {
  return [x = uint64_t{generator.seeds[0]}](uint32_t *words) mutable {
    *words = static_cast<uint32_t>(x);
    x = x * 1132489760 % 0x7fffffff;
  };
}

Steps mcg59(const Generator &generator, const Stream &) {
  return [x = generator.seeds[0] + (uint64_t{generator.seeds[1]} << 32)](uint32_t *words) mutable {
    std::memcpy(words, &x, sizeof x);
    x = static_cast<uint64_t>(static_cast<unsigned __int128>(x) * 302875106592253 % (uint64_t{1} << 59));
  };
}

Steps wichmann_hill(const Generator &generator, const Stream &) {
  return [x = generator.seeds, k = member_of(generator.id)](uint32_t *words) mutable {
    for (size_t j = 0; j < 4; ++j) {
      words[j] = x[j];
      x[j] = x[j] * uint64_t{wichmann_hill::multipliers[k][j]} % wichmann_hill::moduli[k][j];
    }
  };
}

Steps r250(const Generator &generator, const Stream &) {
  std::deque<uint32_t> past;
  uint32_t x = generator.seeds[0];
  for (int k = 0; k < 250; ++k) past.push_back(x *= 69069);
  for (int k = 0; k < 32; ++k) past[3 + 7 * k] = (past[3 + 7 * k] & (0xffffffff >> k)) | (0x80000000 >> k);
  return [past](uint32_t *words) mutable {
    past.push_back(*words = past[0] ^ past[103]);
    past.pop_front();
  };
}

Steps mrg32k3a(const Generator &generator, const Stream &) {
  return [s = std::vector<int64_t>(generator.seeds.begin(), generator.seeds.end())](uint32_t *words) mutable {
    const auto residue = [](int64_t n, int64_t m) { return (n % m + m) % m; };
    const int64_t p = residue(1403580 * s[1] - 810728 * s[0], 4294967087);
    const int64_t q = residue(527612 * s[5] - 1370589 * s[3], 4294944443);
    s = {s[1], s[2], p, s[4], s[5], q};
    *words = static_cast<uint32_t>(p > q ? p - q : p - q + 4294967087);
  };
}

// x[k + n] = x[k + m] ^ the twist of the upper bits of x[k] and the lower ones of x[k + 1], tempered.
struct Twister {
  size_t n, m;
  uint32_t lower, a;
  int shift;
  uint32_t b, c;

  Steps operator()(const Seeds &seeds) const {
    std::deque<uint32_t> x = {19650218};
    const auto mix = [&](size_t i, uint32_t factor) {
      const uint32_t before = x[i == 0 ? n - 1 : i - 1];
      return (before ^ (before >> 30)) * factor;
    };
    for (size_t i = 1; i < n; ++i) x.push_back(mix(i, 1812433253) + static_cast<uint32_t>(i));
    size_t i = 1;
    const auto next = [&] {
      if (++i == n) x[0] = x[n - 1], i = 1;
    };
    for (size_t k = 0, j = 0; k < std::max(n, seeds.size()); ++k, next()) {
      x[i] = (x[i] ^ mix(i, 1664525)) + seeds[j] + static_cast<uint32_t>(j);
      j = (j + 1) % seeds.size();
    }
    for (size_t k = 0; k < n - 1; ++k, next()) x[i] = (x[i] ^ mix(i, 1566083941)) - static_cast<uint32_t>(i);
    x[0] = 0x80000000;
    return [*this, x](uint32_t *words) mutable {
      const uint32_t joined = (x[0] & ~lower) | (x[1] & lower);
      uint32_t v = x[m] ^ (joined >> 1) ^ (x[1] & 1 ? a : 0);
      x.push_back(v);
      x.pop_front();
      v ^= v >> shift;
      v ^= (v << 7) & b;
      v ^= (v << 15) & c;
      *words = v ^ (v >> 18);
    };
  }
};

Steps mt19937(const Generator &generator, const Stream &) {
  return Twister{624, 397, 0x7fffffff, 0x9908b0df, 11, 0x9d2c5680, 0xefc60000}(generator.seeds);
}

Steps mt2203(const Generator &generator, const Stream &) {
  const uint32_t *row = mt2203::parameters[member_of(generator.id)];
  return Twister{69, 34, 31, row[0], 12, row[1], row[2]}(generator.seeds);
}

// Component j of the point with index i is the exclusive or of the direction numbers that the Gray code of i
// selects. The numbers and the place in the sequence are those of the stream.
Steps digital_sequence(const Generator &, const Stream &stream) {
  const bool is_sobol = stream->brng == 277 || stream->brng >> 20 == 6;
  const Sequence s = is_sobol ? sequence_of<Sobol>(stream.get()) : sequence_of<Niederreiter>(stream.get());
  return [rows = Words(s.row(0), s.row(s.position->dim)), at = *s.position](uint32_t *words) mutable {
    const int32_t j = at.only_dim >= 0 ? at.only_dim : at.pending ? at.dim - at.pending : 0;
    *words = 0;
    for (uint32_t gray = at.seq ^ (at.seq >> 1); gray != 0; gray &= gray - 1)
      *words ^= rows[row_stride * j + std::countr_zero(gray)];
    at.pending = at.dim - 1 - j;
    if (at.only_dim >= 0 || at.pending == 0) ++at.seq;
  };
}

Steps philox4x32(const Generator &generator, const Stream &) {
  Seeds seeds = generator.seeds;
  seeds.resize(6);
  return [seeds, x = std::array<uint32_t, 4>{}, used = 4u](uint32_t *words) mutable {
    if (used == 4) {
      uint32_t key[2] = {seeds[0], seeds[1]};
      std::copy_n(&seeds[2], 4, x.begin());
      for (int round = 0; round < 10; ++round, key[0] += 0x9e3779b9, key[1] += 0xbb67ae85) {
        const uint64_t p = uint64_t{0xd2511f53} * x[0], q = uint64_t{0xcd9e8d57} * x[2];
        x = {static_cast<uint32_t>(q >> 32) ^ x[1] ^ key[0], static_cast<uint32_t>(q),
             static_cast<uint32_t>(p >> 32) ^ x[3] ^ key[1], static_cast<uint32_t>(p)};
      }
      for (size_t j = 2; j < 6 && ++seeds[j] == 0; ++j) {
      }
      used = 0;
    }
    *words = x[used++];
  };
}

using enum Partition;
constexpr Family mcg31m1_family = {all, true, mcg31m1}, mcg59_family = {all, true, mcg59},
                 wh_family = {all, true, wichmann_hill}, r250_family = {none, false, r250},
                 mrg32k3a_family = {none, true, mrg32k3a}, mt19937_family = {none, false, mt19937},
                 mt2203_family = {none, false, mt2203}, philox_family = {none, true, philox4x32};

}  // namespace

constinit const Family digital_sequences = {one_dimension, true, digital_sequence};

Seeds user_directions(uint32_t dim) {
  Seeds array = {dim, 1, 4};
  std::mt19937 random(dim);
  std::generate_n(std::back_inserter(array), 32 * dim, random);
  return array;
}

const std::vector<Generator> &all_generators() {
  constexpr uint32_t m1 = 4294967087, m2 = 4294944443;
  static const std::vector<Generator> generators = {
      {"MCG31M1", 0x100000, {777}, mcg31m1_family},
      {"MCG31M1, largest seed", 0, {0x7ffffffe}, mcg31m1_family},
      {"R250", 0x200000, {777}, r250_family},
      {"MRG32K3A", 0x300000, {1, 20, 300, 4000, 5, 6}, mrg32k3a_family},
      {"MRG32K3A, largest seeds", 2, {m1 - 1, m1 - 1, m1 - 1, m2 - 1, m2 - 1, m2 - 1}, mrg32k3a_family},
      {"MCG59", 0x400000, {123456789, 0x07654321}, mcg59_family},
      {"WH 0", 0x500000, {1, 22, 333, 4444}, wh_family},
      {"WH 136 by legacy id", 140, {9, 9, 9, 9}, wh_family},
      {"WH 272", 0x500110, {16766362, 16766358, 1, 16766230}, wh_family},
      {"MT19937", 0x800000, {0x123, 0x234, 0x345, 0x456}, mt19937_family},
      {"MT2203 0", 0x900000, {1}, mt2203_family},
      {"MT2203 1023, many seeds", 0x9003ff, user_directions(3), mt2203_family},
      {"Philox", philox, {777, 5}, philox_family},
      {"Philox, counter before its halves wrap", philox, {1, 2, 0u - 99, ~0u, ~0u, 7}, philox_family},
      {"Sobol 1", 0x600000, {1}, digital_sequences},
      {"Sobol 3", 0x600000, {3}, digital_sequences},
      {"Sobol 40", 0x600000, {40}, digital_sequences},
      {"Sobol 41 of a user", 0x600000, user_directions(41), digital_sequences},
      {"Niederr 7", 0x700000, {7}, digital_sequences},
      {"Niederr 318", 0x700000, {318}, digital_sequences}};
  return generators;
}

}  // namespace qkr::tests
