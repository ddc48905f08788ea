// All basic generators, each beside its definition in a few lines. A generator joins the tests with one row.
#pragma once

#include <functional>
#include <qkr/streams_generators.h>

#include "tests/streams/stream.h"

namespace qkr::tests {

struct Generator;

// Gives the words of one number, and goes on to the next.
using Steps = std::function<void(uint32_t *words)>;

enum class Partition { none, all, one_dimension };  // leapfrog

struct Family {
  Partition leapfrog;
  bool skips_ahead;
  Steps (*definition)(const Generator &generator, const Stream &stream);
};

constexpr uint32_t philox = ~0u;  // in place of its id, which it gets when it is first used

struct Generator {
  const char *name;
  uint32_t id;
  Seeds seeds;
  Family family;

  uint32_t registered_id() const { return id == philox ? static_cast<uint32_t>(qkr_philox()) : id; }
  Stream start() const { return new_stream(registered_id(), seeds); }
  bool is_quasi_random() const { return family.leapfrog == Partition::one_dimension; }
};

const std::vector<Generator> &all_generators();

// A user's array of direction numbers for `dim` dimensions of a quasi-random generator.
Seeds user_directions(uint32_t dim);

extern const Family digital_sequences;

// Its name in a parameterised test.
inline std::string test_name(const testing::TestParamInfo<Generator> &row) {
  std::string name;
  for (const char *c = row.param.name; *c; ++c)
    if (std::isalnum(static_cast<unsigned char>(*c))) name += *c;
  return name;
}

inline void PrintTo(const Generator &generator, std::ostream *out) { *out << generator.name; }

}  // namespace qkr::tests
