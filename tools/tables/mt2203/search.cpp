// Makes rows of the parameter table of MT2203, as "member,matrixA,maskB,maskC,defect":
//
//   mt2203_search FIRST LAST          rows of members FIRST to LAST, each from a seed of its own
//   mt2203_search table < rows.csv    the table, streams/tables/mt2203.cpp, its masks adjusted
//
// A row's matrixA has its top bit set and 2 * member + 1 as its low half, which makes all rows different; the
// bits between are drawn until the characteristic polynomial is irreducible (about one in 1100 is). The
// masks come from a beam search, bit by bit as the leading output bits come to depend on them, and from
// climbing by single bits; the measure is the defect of equidistribution. A row takes about a second.
//
// The masks that the dynamic creation of M. Matsumoto and T. Nishimura (2000) finds repeat often: the family
// has 786 values of maskB and 344 of maskC. The table replaces the rarest masks by frequent ones that serve
// the row as well, and changes single bits of masks that rows share, until there are just so many.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <vector>

#include "tools/tables/mt2203/equidistribution.h"

using namespace mt2203;

namespace {

constexpr int members = 1024, largest_defect = 716;
constexpr size_t values_of_b = 786, values_of_c = 344;
constexpr int first_bit_b = 7, first_bit_c = 15;  // the tempering shifts: lower mask bits have no effect

struct Row {
  int member;
  Parameters parameters;
  int defect;
};

// Rows that are given, not searched.
constexpr struct {
  int member;
  Parameters parameters;
} given[] = {{0, {0xaf81055f, 0xdd7eef80, 0xefd78000}},    {1, {0x832604e1, 0x66ad7f80, 0xebd58000}},
             {2, {0x92f70739, 0x656d7780, 0xefc50000}},    {511, {0xfdee01ff, 0x8ab47780, 0xefd70000}},
             {1022, {0xb9d00987, 0xd2f4ef80, 0xefb78000}}, {1023, {0xe1b6093f, 0x9d326e80, 0xefd58000}}};

const Parameters *given_row(int member) {
  for (const auto &row : given) {
    if (row.member == member) return &row.parameters;
  }
  return nullptr;
}

// SplitMix64: G. L. Steele, D. Lea and C. H. Flood, OOPSLA 2014.
uint64_t next_random(uint64_t &state) {
  uint64_t z = state += 0x9e3779b97f4a7c15u;
  z = (z ^ z >> 30) * 0xbf58476d1ce4e5b9u;
  z = (z ^ z >> 27) * 0x94d049bb133111ebu;
  return z ^ z >> 31;
}

// Products modulo an irreducible polynomial of small degree, given with its leading term.
uint32_t multiply_modulo(uint32_t a, uint32_t b, uint32_t modulus) {
  const uint32_t top = std::bit_floor(modulus);
  uint32_t product = 0;
  for (; b; b >>= 1) {
    if (b & 1) product ^= a;
    a <<= 1;
    if (a & top) a ^= modulus;
  }
  return product;
}

// What evaluates characteristic polynomials at a root of each irreducible polynomial up to degree 10.
struct SmallFactors {
  struct Root {
    uint32_t modulus, full, shortened;  // t^69 + t^34 and t^68 + t^33
  };
  std::vector<Root> roots;

  SmallFactors() {
    for (uint32_t modulus = 2; modulus < 1u << 11; ++modulus) {
      bool irreducible = true;
      for (const Root &root : roots) irreducible = irreducible && remainder(modulus, root.modulus) != 0;
      if (!irreducible) continue;
      uint32_t powers[words + 1] = {remainder(1, modulus)};
      for (int k = 1; k <= words; ++k)
        powers[k] = multiply_modulo(powers[k - 1], remainder(2, modulus), modulus);
      roots.push_back({modulus, powers[words] ^ powers[middle], powers[words - 1] ^ powers[middle - 1]});
    }
  }
  static uint32_t remainder(uint32_t a, uint32_t modulus) {
    while (std::bit_width(a) >= std::bit_width(modulus)) {
      a ^= modulus << (std::bit_width(a) - std::bit_width(modulus));
    }
    return a;
  }
  bool divide(uint32_t twist) const {
    for (const Root &root : roots) {
      uint32_t value = remainder(1, root.modulus);
      for (int i = 0; i < 32; ++i) {
        value = multiply_modulo(i < lower_bits ? root.shortened : root.full, value, root.modulus);
        value ^= remainder(twist >> i & 1, root.modulus);
      }
      if (value == 0) return true;
    }
    return false;
  }
};

template <class By>
uint32_t find_twist(int member, uint64_t &random) {
  static const SmallFactors small_factors;
  for (;;) {
    const auto drawn = static_cast<uint32_t>(next_random(random)) & 0xffff0000u;
    const uint32_t twist = 0x80000000u | drawn | (2u * member + 1);
    if (small_factors.divide(twist)) continue;
    const Field<By> field{characteristic_polynomial(twist)};
    if (field.has_no_small_factor(18) && field.irreducible()) return twist;
  }
}

// The leading v bits of the output depend on the bits 32 - v and up of both masks, and on the bits of maskB
// 15 places further down: each v brings up to three mask bits more.
Parameters beam_search(uint32_t twist) {
  constexpr size_t width = 8;
  struct Candidate {
    Parameters parameters;
    int defect;
  };
  std::vector<Candidate> beam{{{twist, 0, 0}, 0}};
  for (int v = 1; v <= 32 - first_bit_c; ++v) {
    const int bit = 32 - v;
    const uint32_t c = 1u << bit, b = bit >= first_bit_b + 10 ? 1u << bit : 0;
    const uint32_t low_b = bit - 15 >= first_bit_b ? 1u << (bit - 15) : 0;
    std::vector<Candidate> children;
    for (const Candidate &parent : beam) {
      for (uint32_t choice_c : {c, 0u}) {
        for (uint32_t choice_b : {b, 0u}) {
          for (uint32_t choice_low : {low_b, 0u}) {
            Candidate child = parent;
            child.parameters.mask_c |= choice_c;
            child.parameters.mask_b |= choice_b | choice_low;
            children.push_back(child);
            if (low_b == 0) break;
          }
          if (b == 0) break;
        }
      }
    }
    for (Candidate &child : children)
      child.defect += degree / v - Equidistribution(child.parameters).dimension(v);
    std::stable_sort(children.begin(), children.end(),
                     [](const Candidate &x, const Candidate &y) { return x.defect < y.defect; });
    if (children.size() > width) children.resize(width);
    beam = children;
  }
  return beam.front().parameters;
}

// Takes the first single bit that lowers the defect, until none does.
int climb(Parameters &parameters) {
  int defect = Equidistribution(parameters).defect();
  for (int since_gain = 0, bit = 0; since_gain < 64; ++since_gain, bit = (bit + 1) % 64) {
    Parameters changed = parameters;
    if (bit < 32 ? bit < first_bit_b : bit - 32 < first_bit_c) continue;
    (bit < 32 ? changed.mask_b : changed.mask_c) ^= 1u << (bit % 32);
    const int reached = Equidistribution(changed).defect(defect);
    if (reached < defect) parameters = changed, defect = reached, since_gain = 0;
  }
  return defect;
}

template <class By>
Row find_row(int member) {
  if (const Parameters *parameters = given_row(member)) {
    return {member, *parameters, Equidistribution(*parameters).defect()};
  }
  uint64_t random = member;
  for (;;) {
    Parameters parameters = beam_search(find_twist<By>(member, random));
    const int defect = climb(parameters);
    if (defect <= largest_defect) return {member, parameters, defect};
  }
}

void print(const Row &row) {
  printf("%d,%08x,%08x,%08x,%d\n", row.member, row.parameters.twist, row.parameters.mask_b,
         row.parameters.mask_c, row.defect);
  fflush(stdout);
}

// Rows of the rarest values of a mask turn to the most frequent value that keeps their defect within bounds,
// until `kept` values are left.
void share(std::vector<Row> &rows, uint32_t Parameters::*mask, size_t kept) {
  std::map<uint32_t, int> uses;
  for (const Row &row : rows) ++uses[row.parameters.*mask];
  std::vector<Row *> by_rarity;
  for (Row &row : rows) {
    if (!given_row(row.member)) by_rarity.push_back(&row);
  }
  std::stable_sort(by_rarity.begin(), by_rarity.end(), [&](const Row *x, const Row *y) {
    return uses[x->parameters.*mask] < uses[y->parameters.*mask];
  });
  for (Row *row : by_rarity) {
    if (uses.size() <= kept) return;
    const uint32_t old = row->parameters.*mask;
    std::vector<std::pair<int, uint32_t>> by_frequency;
    for (const auto &[value, count] : uses) {
      if (value != old) by_frequency.push_back({-count, value});
    }
    std::sort(by_frequency.begin(), by_frequency.end());
    for (const auto &[count, value] : by_frequency) {
      Parameters changed = row->parameters;
      changed.*mask = value;
      const int defect = Equidistribution(changed).defect(largest_defect);
      if (defect > largest_defect) continue;
      row->parameters = changed, row->defect = defect;
      ++uses[value];
      if (--uses[old] == 0) uses.erase(old);
      break;
    }
  }
}

// The other way round: rows that share a mask change one bit of it, while there are fewer values than
// `wanted`.
void part(std::vector<Row> &rows, uint32_t Parameters::*mask, size_t wanted) {
  std::map<uint32_t, int> uses;
  for (const Row &row : rows) ++uses[row.parameters.*mask];
  for (Row &row : rows) {
    const uint32_t old = row.parameters.*mask;
    if (given_row(row.member) || uses[old] == 1) continue;
    for (int bit = 0; bit < 32 && uses.size() < wanted && row.parameters.*mask == old; ++bit) {
      Parameters changed = row.parameters;
      changed.*mask ^= 1u << bit;
      if (bit < first_bit_b || uses.count(changed.*mask)) continue;
      const int defect = Equidistribution(changed).defect(largest_defect);
      if (defect > largest_defect) continue;
      row.parameters = changed, row.defect = defect;
      ++uses[changed.*mask], --uses[old];
    }
  }
}

int print_table() {
  std::vector<Row> rows;
  Row row;
  while (scanf("%d,%x,%x,%x,%d ", &row.member, &row.parameters.twist, &row.parameters.mask_b,
               &row.parameters.mask_c, &row.defect) == 5) {
    rows.push_back(row);
  }
  if (rows.size() != members) return fprintf(stderr, "%zu rows\n", rows.size()), 1;
  share(rows, &Parameters::mask_c, values_of_c);
  share(rows, &Parameters::mask_b, values_of_b);
  part(rows, &Parameters::mask_b, values_of_b);
  printf("// Made by tools/tables/mt2203/search.cpp; do not edit.\n#include \"streams/tables/tables.h\"\n\n");
  printf("namespace qkr::mt2203 {\n\nconst uint32_t parameters[%d][3] = {\n", members);
  for (const Row &shared : rows) {
    const Parameters &parameters = shared.parameters;
    printf("    {0x%08x, 0x%08x, 0x%08x},\n", parameters.twist, parameters.mask_b, parameters.mask_c);
  }
  printf("};\n\n}  // namespace qkr::mt2203\n");
  return 0;
}

}  // namespace

int main(int count, char **arguments) {
  if (count == 2 && strcmp(arguments[1], "table") == 0) return print_table();
  if (count != 3) return fprintf(stderr, "usage: %s FIRST LAST | table < rows.csv\n", arguments[0]), 2;
  const bool fast = __builtin_cpu_supports("pclmul");
  for (int member = atoi(arguments[1]); member <= atoi(arguments[2]); ++member) {
    print(fast ? find_row<ByInstruction>(member) : find_row<ByShifts>(member));
  }
}
