// All basic generators, each beside its definition in a few lines. A generator joins the tests with one row.
#pragma once

#include <functional>

#include "tests/streams/stream.h"

namespace qkr::tests {

// Gives the words of one number, and goes on to the next.
using Steps = std::function<void(uint32_t *words)>;

enum class Partition { none, all, one_dimension };  // leapfrog

struct Generator {
  const char *name;
  uint32_t id;
  Seeds seeds;
  Partition leapfrog;
  bool skips_ahead;
  bool random;  // not quasi-random
  Steps (*definition)(const Generator &generator, const Stream &stream);
  double (*real)(const Generator &generator, const uint32_t *words, double a, double b);
  float (*single)(const Generator &generator, const uint32_t *words, float a, float b);
};

const std::vector<Generator> &all_generators();

// Its name in a parameterised test.
inline std::string test_name(const testing::TestParamInfo<Generator> &row) {
  std::string name;
  for (const char *c = row.param.name; *c; ++c)
    if (std::isalnum(static_cast<unsigned char>(*c))) name += *c;
  return name;
}

inline void PrintTo(const Generator &generator, std::ostream *out) { *out << generator.name; }

}  // namespace qkr::tests
