// Reduction of any finite extended number modulo pi/2, in integers: its mantissa times those 256 bits of 2/pi
// that tell the quadrant and the rest (M. H. Payne and R. N. Hanek, ACM SIGNUM Newsletter 18 (1983) 19).
#pragma once

#include "vecmath/extended/circular.h"
#include "vecmath/extended/format.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

typedef unsigned __int128 uint128;

// x = quadrant pi/2 + rest with |rest| <= pi/4; of the quadrant only the last two bits count.
struct Quadrant {
  int quadrant;
  DoubleDouble<double> rest;
};

// A fraction of 192 bits, the first word the highest.
struct Fraction {
  uint64_t words[3];
};

// fraction pi/2 for a fraction below 1/2, to 2^-120 of its value.
QKR_INLINE DoubleDouble<double> times_half_pi(Fraction f) {
  constexpr uint64_t half_pi[2] = {0xC90FDAA22168C234u, 0xC4C6628B80DC1CD1u};  // times 2^-63
  auto [first, second, third] = f.words;
  int shift = 0;
  if (first == 0) first = second, second = third, third = 0, shift = 64;
  const int zeros = first ? __builtin_clzll(first) : 0;
  if (zeros)
    first = first << zeros | second >> (64 - zeros), second = second << zeros | third >> (64 - zeros);
  shift += zeros;
  uint128 product = (uint128)first * half_pi[0];
  product += ((uint128)first * half_pi[1] >> 64) + ((uint128)second * half_pi[0] >> 64);
  const auto high = (uint64_t)(product >> 64), low = (uint64_t)product;
  const double unit = real((uint64_t)(1023 - 63 - shift) << 52);  // of the last bit of high
  const double head = (double)(int64_t)(high >> 11) * (2048 * unit),
               tail = (double)(int64_t)((high & 2047) << 52 | low >> 12) * (unit * 0x1p-52);
  return fast_sum(head, tail);
}

// For 1 <= |x|.
inline QKR_NOINLINE Quadrant reduce_large(long double x) {
  const ExtendedFields f = fields_of(x);
  const int exponent = (f.sign_and_exponent & 0x7FFF) - extended_bias - 63;  // |x| = mantissa 2^exponent
  // Bits of 2/pi that only make multiples of 4 are left out.
  const int skipped = exponent < 2 ? 0 : exponent - 2, word = skipped >> 6, offset = skipped & 63;
  uint64_t bits_of_two_over_pi[4];
  for (int i = 0; i < 4; ++i) {
    const uint64_t *const w = &extended::two_over_pi[word + i];
    bits_of_two_over_pi[i] = offset ? w[0] << offset | w[1] >> (64 - offset) : w[0];
  }
  // product[0].product[1]... times 2^(exponent - skipped)
  uint64_t product[5];
  uint128 carry = 0;
  for (int i = 3; i >= 0; --i) {
    carry += (uint128)f.mantissa * bits_of_two_over_pi[i];
    product[i + 1] = (uint64_t)carry;
    carry >>= 64;
  }
  product[0] = (uint64_t)carry;

  const int shift = exponent - skipped;  // at most 2, and at least -63
  const auto shifted = [&](int i) {
    if (shift > 0) return product[i] << shift | product[i + 1] >> (64 - shift);
    if (shift == 0) return product[i];
    return product[i] >> -shift | (i ? product[i - 1] << (64 + shift) : 0);
  };
  int quadrant = (int)(shifted(0) & 3);
  Fraction fraction = {{shifted(1), shifted(2), shifted(3)}};
  const bool beyond_half = fraction.words[0] >> 63;  // then the next quadrant is nearer
  if (beyond_half) {
    ++quadrant;
    for (uint64_t &w : fraction.words) w = ~w;
  }
  const auto rest = times_half_pi(fraction);
  const bool negative = f.sign_and_exponent >> 15;
  return {(negative ? -quadrant : quadrant) & 3, beyond_half != negative ? -rest : rest};
}

// Sine and cosine of the quadrant's angle and what is left.
QKR_INLINE Circular<double> circular_pair_of(const Quadrant &q) {
  auto [sine, cosine] = circular_pair(q.rest);
  if (q.quadrant & 1) {
    const auto old = sine;
    sine = cosine, cosine = -old;
  }
  return q.quadrant & 2 ? Circular<double>{-sine, -cosine} : Circular<double>{sine, cosine};
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
