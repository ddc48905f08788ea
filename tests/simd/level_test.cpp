// The choice of the vector width, in fresh processes: it is made once.
#include "simd/level.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "tests/support/child.h"

using qkr::Level;

namespace {

int level_chosen_with(const Environment &environment) {
  return in_child(environment, [] {
    qkr::chosen_level = -1;
    const int chosen = static_cast<int>(qkr::level());
    setenv("QKR_LEVEL", chosen ? "sse2" : "avx2", 1);  // too late
    return static_cast<int>(qkr::level()) == chosen ? chosen : 100;
  });
}

}  // namespace

TEST(Level, EnvironmentLowersButNeverRaises) {
  const int widest = static_cast<int>(qkr::supported_level());
  const struct {
    Environment environment;
    int expected;
  } rows[] = {
      {{}, widest},
      {{{"QKR_LEVEL", "sse2"}}, 0},
      {{{"QKR_LEVEL", "avx2"}}, std::min(1, widest)},
      {{{"QKR_LEVEL", "avx512"}}, std::min(2, widest)},
      {{{"QKR_LEVEL", "avx1024"}}, widest},
      {{{"QKR_LEVEL", "SSE2"}}, widest},
      {{{"QKR_LEVEL", ""}}, widest},
  };
  for (const auto &row : rows)
    EXPECT_EQ(level_chosen_with(row.environment), row.expected)
        << (row.environment.empty() ? "unset" : row.environment.at("QKR_LEVEL"));
}
