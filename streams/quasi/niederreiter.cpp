// Direction numbers of Niederreiter's sequence in base 2. H. Niederreiter, Journal of Number Theory 30 (1988)
// 51; P. Bratley, B. L. Fox and H. Niederreiter, ACM Transactions on Modeling and Computer Simulation 2
// (1992) 195.
//
// Dimension j has an irreducible polynomial p of degree e. With each of its powers b = p, p^2, ... goes a
// sequence of bits w that b generates as a linear recurrence. Rows of the 32 x 32 generator matrix are
// windows of 32 bits on w, e of them for each power; direction number c is column c of the matrix, with the
// first row at its top bit.
#include "streams/generators/generator.h"
#include "streams/quasi/digital_sequence_setup.h"
#include "streams/tables/tables.h"

namespace qkr {
namespace {

enum Kind : uint32_t { user_polynomials = 1, user_directions = 4 };

uint64_t carry_less_product(uint64_t a, uint32_t b) {
  uint64_t product = 0;
  for (; b; b &= b - 1) product ^= a << __builtin_ctz(b);
  return product;
}

// Bits 0 to e + 30 of the sequence of b, which has degree q + e: q zeros, then e ones, then the recurrence,
// bit t being the sum of the bits t - (q + e) + i over the terms x^i of b below the highest.
uint64_t recurrence(uint64_t b, int q, int e) {
  const int degree = q + e;
  const uint64_t terms = b ^ 1ull << degree;
  uint64_t w = ((1ull << e) - 1) << q;
  for (int t = degree; t <= e + 30; ++t) {
    w |= static_cast<uint64_t>(__builtin_parityll(w >> (t - degree) & terms)) << t;
  }
  return w;
}

// Bit k of word c and bit c of word k change places, by ever smaller squares beside the diagonal.
void transpose(uint32_t *words) {
  uint32_t low_bits = 0x0000ffff;
  for (int size = 16; size > 0; size /= 2, low_bits ^= low_bits << size) {
    for (int square = 0; square < 32; square += 2 * size) {
      for (uint32_t *a = words + square, *end = a + size; a < end; ++a) {
        const uint32_t change = (*a >> size ^ a[size]) & low_bits;
        *a ^= change << size;
        a[size] ^= change;
      }
    }
  }
}

void fill_row(uint32_t *row, uint32_t polynomial) {
  const int e = degree_of(polynomial);
  memset(row, 0, direction_numbers * sizeof *row);
  if (e == 0) return;  // no sequence comes from a constant
  uint64_t b = 1;
  for (int left = direction_numbers, q = 0; left > 0; q += e) {
    b = carry_less_product(b, polynomial);
    const uint64_t w = recurrence(b, q, e);
    for (int u = 0; u < e && left > 0; ++u) row[--left] = static_cast<uint32_t>(w >> u);
  }
  transpose(row);
}

void fill_from(const Sequence &s, const uint32_t *polynomials) {
  for (int32_t j = 0; j < s.position->dim; ++j) fill_row(s.row(j), polynomials[j]);
}

void fill_default_rows(const Sequence &s) { fill_from(s, niederreiter::polynomials); }

bool is_valid_array(int32_t n, const uint32_t *params) {
  if (n < 3 || params[1] != user_array_mark) return false;
  const uint64_t words = static_cast<uint64_t>(n), dim = params[0];
  switch (params[2]) {
    case user_polynomials:
      return words >= dim + 3;
    case user_directions:
      return words >= dim * direction_numbers + 3;
    default:
      return false;
  }
}

void fill_user_rows(const Sequence &s, const uint32_t *params) {
  const uint32_t *words = params + 3;
  params[2] == user_polynomials ? fill_from(s, words) : copy_rows(s, words);
}

struct NiederreiterRows : Niederreiter {
  static constexpr auto default_rows = fill_default_rows;
  static constexpr auto is_valid = is_valid_array;
  static constexpr auto user_rows = fill_user_rows;
};

}  // namespace
}  // namespace qkr

namespace qkr::QKR_SIMD_LEVEL {
using NiederreiterMethods = SequenceMethods<NiederreiterRows>;
}
QKR_INIT_STREAM(__vxsBRngNiederrInitStream, NiederreiterMethods)
