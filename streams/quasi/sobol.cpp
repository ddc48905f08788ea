// Direction numbers of Sobol's sequence. I. M. Sobol, USSR Computational Mathematics and Mathematical Physics
// 7 (1967) 86; polynomials and initial values of P. Bratley and B. L. Fox, Algorithm 659, ACM Transactions on
// Mathematical Software 14 (1988) 88.
//
// Dimension j has a primitive polynomial of degree e and odd numbers m[0..31], e of them given. The others
// follow: m[k] = 2^e m[k-e] ^ m[k-e], and one term more for each coefficient. Direction number k is m[k]
// 2^(31-k).
#include "streams/generators/generator.h"
#include "streams/quasi/digital_sequence_setup.h"
#include "streams/tables/tables.h"

namespace qkr {
namespace {

enum Kind : uint32_t {
  user_polynomials = 1,
  user_initial_values = 2,
  user_tables = 3,       // polynomials and initial values, from dimension 2 on
  user_directions = 4,   // the direction numbers themselves
  all_user_tables = 11,  // polynomials and initial values of every dimension
};

constexpr int32_t table_width = sizeof sobol::initial_values[0] / sizeof sobol::initial_values[0][0];

// Where the polynomials and the initial values of some dimensions stand.
struct Tables {
  const uint32_t *polynomials;
  const uint32_t *initial_values;
  size_t width;  // words from one dimension's initial values to the next
};

void first_dimension(uint32_t *row) {
  for (int k = 0; k < direction_numbers; ++k) row[k] = 0x80000000u >> k;
}

// Values that the tables do not hold, for a polynomial of high degree, are 1.
void fill_row(uint32_t *row, uint32_t polynomial, const uint32_t *initial_values, size_t count) {
  const int32_t degree = degree_of(polynomial);
  uint32_t m[direction_numbers] = {};
  for (int k = 0; k < direction_numbers; ++k) {
    if (k < degree) {
      m[k] = static_cast<size_t>(k) < count ? initial_values[k] : 1;
    } else {
      m[k] = m[k - degree];
      for (int i = 0; i < degree; ++i) {
        if (polynomial >> i & 1) m[k] ^= m[k - degree + i] << (degree - i);
      }
    }
    row[k] = m[k] << (31 - k);
  }
}

void fill_from(const Sequence &s, int32_t first, Tables tables) {
  for (int32_t j = 0; j < first; ++j) first_dimension(s.row(j));
  for (int32_t j = first; j < s.position->dim; ++j) {
    fill_row(s.row(j), *tables.polynomials++, tables.initial_values, tables.width);
    tables.initial_values += tables.width;
  }
}

void fill_default_rows(const Sequence &s) {
  fill_from(s, 1, {sobol::polynomials, sobol::initial_values[0], table_width});
}

bool is_valid_array(int32_t n, const uint32_t *params) {
  if (n < 4 || params[1] != user_array_mark) return false;
  const uint64_t words = static_cast<uint64_t>(n), dim = params[0];
  switch (params[2]) {
    case user_polynomials:
      return dim <= Sobol::largest_dim && words >= dim + 2;
    case user_initial_values:
      return dim <= Sobol::largest_dim && words >= (dim - 1) * params[3] + 4;
    case user_tables:
      return words >= dim + 3 && words >= (dim - 1) * (params[dim + 2] + 1ull) + 4;
    case user_directions:
      return words >= dim * direction_numbers + 3;
    case all_user_tables:
      return words >= dim + 4 && words >= dim * (params[dim + 3] + 1ull) + 4;
    default:
      return false;
  }
}

void fill_user_rows(const Sequence &s, const uint32_t *params) {
  const uint32_t dim = params[0], kind = params[2], *words = params + 3;
  const int32_t first = kind == all_user_tables ? 0 : 1;
  const uint32_t *behind_polynomials = words + dim - first;
  switch (kind) {
    case user_polynomials:
      return fill_from(s, first, {words, sobol::initial_values[0], table_width});
    case user_initial_values:
      return fill_from(s, first, {sobol::polynomials, words + 1, words[0]});
    case user_directions:
      return copy_rows(s, words);
    default:
      return fill_from(s, first, {words, behind_polynomials + 1, behind_polynomials[0]});
  }
}

struct SobolRows : Sobol {
  static constexpr auto default_rows = fill_default_rows;
  static constexpr auto is_valid = is_valid_array;
  static constexpr auto user_rows = fill_user_rows;
};

}  // namespace
}  // namespace qkr

namespace qkr::QKR_SIMD_LEVEL {
using SobolMethods = SequenceMethods<SobolRows>;
}
QKR_INIT_STREAM(__vxsBRngSobolInitStream, SobolMethods)
