#include "tests/streams/generators.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <deque>
#include <numeric>

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
// selects; the numbers themselves are those of the stream.
Steps digital_sequence(const Generator &generator, const Stream &stream) {
  const size_t dimensions = generator.seeds[0], room = generator.id == 0x600000 ? 40 : 318;
  const std::string bytes = payload(stream);
  std::vector<uint32_t> v(dimensions * 33);
  std::memcpy(v.data(), bytes.data() + 16 + 4 * room, 4 * v.size());
  return [=, i = uint32_t{1}, j = size_t{0}](uint32_t *words) mutable {
    *words = 0;
    for (uint32_t gray = i ^ (i >> 1); gray != 0; gray &= gray - 1)
      *words ^= v[33 * j + std::countr_zero(gray)];
    if (++j == dimensions) j = 0, ++i;
  };
}

template <class T>
T by_31_bits(const Generator &, const uint32_t *words, T a, T b) {
  const T scale = static_cast<T>((b - a) / 2147483647.0);
  return static_cast<T>(*words) * scale + a;
}
template <class T>
T by_59_bits(const Generator &, const uint32_t *words, T a, T b) {
  uint64_t x;
  std::memcpy(&x, words, sizeof x);
  return static_cast<T>(static_cast<double>(x) * std::ldexp(static_cast<double>(b) - a, -59) + a);
}
template <class T>
T by_fractions(const Generator &generator, const uint32_t *words, T a, T b) {
  double u = 0;
  for (int j = 3; j >= 0; --j) u += words[j] * (1.0 / wichmann_hill::moduli[member_of(generator.id)][j]);
  return static_cast<T>((u - std::trunc(u)) * (static_cast<double>(b) - a) + a);
}
template <class T>
T by_32_bits(const Generator &, const uint32_t *words, T a, T b) {
  return static_cast<T>(*words * std::ldexp(static_cast<double>(b) - a, -32) + a);
}
// The difference of the ends in their own precision.
template <class T>
T by_32_bits_narrow(const Generator &, const uint32_t *words, T a, T b) {
  return static_cast<T>(*words * std::ldexp(static_cast<double>(b - a), -32) + a);
}
template <class T>
T by_modulus(const Generator &, const uint32_t *words, T a, T b) {
  return static_cast<T>(*words * ((static_cast<double>(b) - a) / 4294967087.0) + a);
}

#define REALS(form) form<double>, form<float>

}  // namespace

const std::vector<Generator> &all_generators() {
  using enum Partition;
  static const std::vector<Generator> generators = {
      {"MCG31M1", 0x100000, {777}, all, true, true, mcg31m1, REALS(by_31_bits)},
      {"MCG31M1, largest seed", 0, {0x7ffffffe}, all, true, true, mcg31m1, REALS(by_31_bits)},
      {"R250", 0x200000, {777}, none, false, true, r250, REALS(by_32_bits)},
      {"MRG32K3A", 0x300000, {1, 20, 300, 4000, 5, 6}, none, true, true, mrg32k3a, REALS(by_modulus)},
      {"MRG32K3A, largest seeds",
       2,
       {4294967086, 4294967086, 4294967086, 4294944442, 4294944442, 4294944442},
       none,
       true,
       true,
       mrg32k3a,
       REALS(by_modulus)},
      {"MCG59", 0x400000, {123456789, 0x07654321}, all, true, true, mcg59, REALS(by_59_bits)},
      {"WH 0", 0x500000, {1, 22, 333, 4444}, all, true, true, wichmann_hill, REALS(by_fractions)},
      {"WH 136 by legacy id", 140, {9, 9, 9, 9}, all, true, true, wichmann_hill, REALS(by_fractions)},
      {"WH 272",
       0x500110,
       {16766362, 16766358, 1, 16766230},
       all,
       true,
       true,
       wichmann_hill,
       REALS(by_fractions)},
      {"MT19937", 0x800000, {0x123, 0x234, 0x345, 0x456}, none, false, true, mt19937, REALS(by_32_bits)},
      {"MT2203 0", 0x900000, {1}, none, false, true, mt2203, REALS(by_32_bits_narrow)},
      {"MT2203 1023", 0x9003ff, Seeds(100, 7), none, false, true, mt2203, REALS(by_32_bits_narrow)},
      {"Sobol 1", 0x600000, {1}, one_dimension, true, false, digital_sequence, REALS(by_32_bits_narrow)},
      {"Sobol 3", 0x600000, {3}, one_dimension, true, false, digital_sequence, REALS(by_32_bits_narrow)},
      {"Sobol 40", 0x600000, {40}, one_dimension, true, false, digital_sequence, REALS(by_32_bits_narrow)},
      {"Niederr 7", 0x700000, {7}, one_dimension, true, false, digital_sequence, REALS(by_32_bits_narrow)},
      {"Niederr 318",
       0x700000,
       {318},
       one_dimension,
       true,
       false,
       digital_sequence,
       REALS(by_32_bits_narrow)}};
  return generators;
}

}  // namespace qkr::tests
