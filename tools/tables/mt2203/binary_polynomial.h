// Polynomials over the field of two elements, as far as the characteristic polynomial of a small Mersenne
// twister needs them. M. Matsumoto and T. Nishimura, "Mersenne Twister", ACM TOMACS 8 (1998) 3; "Dynamic
// creation of pseudorandom number generators", Monte Carlo and Quasi-Monte Carlo Methods 1998 (2000) 56.
#pragma once

#include <array>
#include <bit>
#include <bitset>
#include <cstdint>
#include <utility>
#include <wmmintrin.h>

namespace mt2203 {

// The recurrence x[i + words] = x[i + middle] ^ twist(upper bits of x[i], lower bits of x[i + 1]).
constexpr int words = 69, middle = 34, lower_bits = 5, degree = 32 * words - lower_bits;
constexpr uint32_t lower_mask = (1u << lower_bits) - 1;
static_assert(degree == 2203, "2^2203 - 1 is prime: an irreducible polynomial of this degree is primitive");

// Residues have 35 words of 64 bits. They are kept modulo F = f t^37, whose leading term t^2240 begins a
// word; reduction modulo f itself comes last.
constexpr int residue_words = 35, padding = 64 * residue_words - degree;
using Residue = std::array<uint64_t, residue_words>;

// F without its leading term. Below that lies a gap of 68 zero coefficients, so that one word at a time can
// be folded down without a quotient.
inline Residue characteristic_polynomial(uint32_t twist) {
  std::bitset<64 * residue_words + 1> f(1);
  for (int i = 0; i < 32; ++i) {
    const int short_by = i < lower_bits;
    f = (f << (words - short_by)) ^ (f << (middle - short_by));
    f[0] = f[0] ^ (twist >> i & 1);
  }
  f <<= padding;
  f[64 * residue_words] = false;
  Residue result{};
  for (int i = 0; i < 64 * residue_words; ++i) result[i / 64] |= uint64_t{f[i]} << (i % 64);
  return result;
}

#define MT2203_CLMUL __attribute__((target("pclmul")))

struct Product {
  uint64_t low, high;
};

// a * b without carries, and target += word * f: by the instruction, and by shifts for processors without it.
struct ByShifts {
  static Product multiply(uint64_t a, uint64_t b) {
    unsigned __int128 product = 0;
    for (; b; b &= b - 1) product ^= (unsigned __int128)a << std::countr_zero(b);
    return {(uint64_t)product, (uint64_t)(product >> 64)};
  }
  static void fold(uint64_t word, const Residue &f, uint64_t *target) {
    uint64_t carry = 0;
    for (int j = 0; j < residue_words; ++j) {
      const Product product = multiply(word, f[j]);
      target[j] ^= product.low ^ carry;
      carry = product.high;
    }
  }
};
struct ByInstruction {
  MT2203_CLMUL static Product multiply(uint64_t a, uint64_t b) {
    const __m128i product =
        _mm_clmulepi64_si128(_mm_cvtsi64_si128((int64_t)a), _mm_cvtsi64_si128((int64_t)b), 0);
    return {(uint64_t)_mm_cvtsi128_si64(product),
            (uint64_t)_mm_cvtsi128_si64(_mm_unpackhi_epi64(product, product))};
  }
  // Two words at a time, and the last one by itself.
  MT2203_CLMUL static void fold(uint64_t word, const Residue &f, uint64_t *target) {
    const __m128i factor = _mm_cvtsi64_si128((int64_t)word);
    __m128i carry = _mm_setzero_si128();
    int j = 0;
    for (; j + 2 <= residue_words; j += 2) {
      const __m128i pair = _mm_loadu_si128((const __m128i *)&f[j]);
      const __m128i low = _mm_clmulepi64_si128(factor, pair, 0x00);
      const __m128i high = _mm_clmulepi64_si128(factor, pair, 0x10);
      __m128i *sum = (__m128i *)&target[j];
      const __m128i added = _mm_xor_si128(_mm_xor_si128(low, carry), _mm_slli_si128(high, 8));
      _mm_storeu_si128(sum, _mm_xor_si128(_mm_loadu_si128(sum), added));
      carry = _mm_srli_si128(high, 8);
    }
    target[j] ^= (uint64_t)_mm_cvtsi128_si64(carry) ^ multiply(word, f[j]).low;
  }
};
static_assert(residue_words % 2 == 1);

template <class By>
struct Field {
  Residue f;  // as from characteristic_polynomial

  MT2203_CLMUL Residue reduce(std::array<uint64_t, 2 * residue_words> &wide) const {
    for (int k = 2 * residue_words - 1; k >= residue_words; --k) {
      By::fold(wide[k], f, &wide[k - residue_words]);
    }
    Residue low;
    for (int k = 0; k < residue_words; ++k) low[k] = wide[k];
    return low;
  }

  MT2203_CLMUL Residue square(const Residue &a) const {
    std::array<uint64_t, 2 * residue_words> wide;
    for (int k = 0; k < residue_words; ++k) {
      const Product product = By::multiply(a[k], a[k]);
      wide[2 * k] = product.low, wide[2 * k + 1] = product.high;
    }
    return reduce(wide);
  }

  MT2203_CLMUL Residue multiply(const Residue &a, const Residue &b) const {
    std::array<uint64_t, 2 * residue_words> wide{};
    for (int i = 0; i < residue_words; ++i) {
      for (int j = 0; j < residue_words; ++j) {
        const Product product = By::multiply(a[i], b[j]);
        wide[i + j] ^= product.low, wide[i + j + 1] ^= product.high;
      }
    }
    return reduce(wide);
  }

  // Whether f has no factor of degree at most `highest`: gcd(f, product of all t^(2^k) - t) = 1. Rules out
  // nearly all that are reducible, at a hundredth of the cost of the full test.
  bool has_no_small_factor(int highest) const {
    Residue power{2}, product{1};
    for (int k = 1; k <= highest; ++k) {
      power = square(power);
      power[0] ^= 2;
      product = multiply(product, power);
      power[0] ^= 2;
    }
    return coprime(product);
  }

  // f is irreducible if and only if it divides t^(2^p) - t but has neither t nor t + 1 as a factor: the
  // degrees of its factors divide the prime p, and no factor repeats.
  bool irreducible() const {
    Residue power{2};
    for (int k = 0; k < degree; ++k) power = square(power);
    power[0] ^= 2;
    const uint64_t top = power.back() >> (64 - padding);
    // top * t^2203 = top * (f t^37 - t^2240) / t^37: shift the folded words down by 37.
    Residue folded{};
    By::fold(top, f, folded.data());
    power.back() ^= top << (64 - padding);
    uint64_t rest = 0;
    for (int k = 0; k < residue_words; ++k) {
      const uint64_t above = k + 1 < residue_words ? folded[k + 1] : 0;
      rest |= power[k] ^ (folded[k] >> padding | above << (64 - padding));
    }
    return rest == 0 && has_no_linear_factor();
  }

  bool has_no_linear_factor() const {
    int terms = 1;
    for (uint64_t word : f) terms += std::popcount(word);
    return (f[0] >> padding & 1) && terms % 2 == 1;
  }

 private:
  // Euclid's algorithm on f and the residue modulo f.
  bool coprime(const Residue &residue) const {
    using Polynomial = std::bitset<64 * residue_words + 1>;
    const auto unpack = [](const Residue &r) {
      Polynomial p;
      for (int i = 0; i < 64 * residue_words; ++i) p[i] = r[i / 64] >> (i % 64) & 1;
      return p;
    };
    Polynomial a = unpack(f) >> padding, b = unpack(residue);
    a[degree] = true;
    int of_a = degree, of_b = 64 * residue_words;
    const auto lower = [](const Polynomial &p, int &from) {
      while (from >= 0 && !p[from]) --from;
    };
    for (lower(b, of_b); of_b >= 0;) {
      if (of_a < of_b) std::swap(a, b), std::swap(of_a, of_b);
      a ^= b << (of_a - of_b);
      lower(a, of_a);
      if (of_a < 0) std::swap(a, b), std::swap(of_a, of_b);
    }
    return of_a == 0;
  }
};

#undef MT2203_CLMUL

inline bool irreducible(uint32_t twist) {
  const Residue f = characteristic_polynomial(twist);
  return __builtin_cpu_supports("pclmul") ? Field<ByInstruction>{f}.irreducible()
                                          : Field<ByShifts>{f}.irreducible();
}

}  // namespace mt2203
