// Decisions that the environment makes, each in a fresh process.
#include <gtest/gtest.h>
#include <vector>

#include "service/internal.h"
#include "tests/support/child.h"

using namespace qkr;

namespace {

// As the library was loaded, before any test has run.
const int32_t loaded[] = {environment_read, cache_disabled, serial_decision};

using Rows = std::vector<std::pair<Environment, int>>;

template <typename Function>
void check(const Rows &rows, Function decision) {
  for (const auto &[environment, expected] : rows) {
    const auto decided = [&] {
      environment_read = cache_disabled = serial_decision = -1;
      return decision();
    };
    EXPECT_EQ(in_child(environment, decided), expected) << testing::PrintToString(environment);
  }
}

}  // namespace

TEST(Environment, NothingIsDecidedAtLoad) {
  for (const int32_t value : loaded) EXPECT_EQ(value, -1);
}

TEST(Environment, SerialOrParallel) {
  const Rows rows = {
      {{}, 1},
      {{{"OMP_NUM_THREADS", "1"}}, 0},
      {{{"omp_num_threads", "8"}}, 0},
      {{{"OMP_NUM_THREADS", ""}}, 1},
      {{{"OMP_NUM_THREADS", ""}, {"omp_num_threads", "8"}}, 1},
      {{{"QKR_SERIAL", "Yes"}}, 0},
      {{{"OMP_NUM_THREADS", "8"}, {"QKR_SERIAL", ""}}, 0},
      {{{"omp_num_threads", "8"}, {"QKR_SERIAL", "yes"}}, 1},
      {{{"omp_num_threads", "8"}, {"QKR_SERIAL", "YES"}}, 1},
      {{{"OMP_NUM_THREADS", "8"}, {"QKR_SERIAL", "NO"}}, 0},
  };
  check(rows, qkr_serv_in_serial);
}

TEST(Environment, SettersCountUntilTheDecision) {
  check({{{}, 0}}, [] { return qkr_serv_set_parallel() ? 100 : qkr_serv_in_serial(); });
  check({{{{"OMP_NUM_THREADS", "2"}}, 1}}, [] { return qkr_serv_set_serial() ? 100 : qkr_serv_in_serial(); });
  check({{{}, 11}}, [] {
    const int before = qkr_serv_in_serial();
    qkr_serv_set_parallel();
    return 10 * (getenv("QKR_SERIAL") == std::string("NO")) + (qkr_serv_in_serial() == before);
  });
}

// Each of the three calls may be the first.
TEST(Environment, CacheSwitches) {
  const auto cached = []() -> int {
    qkr_serv_deallocate(qkr_serv_allocate(100));
    return thread_cache.count == 1;
  };
  const auto freed = []() -> int {
    qkr_serv_freebuffers();
    return cache_disabled != 1;
  };
  const auto given_back = []() -> int {
    qkr_serv_deallocate(malloc(100));
    setenv("QKR_MM_DISABLE", "1", 1);  // too late
    return QKR_read_env() == 0 && environment_read == 1 && cache_disabled != 1;
  };
  for (int (*const decision)() : {+cached, +freed, +given_back})
    check({{{}, 1},
           {{{"QKR_DISABLE_FAST_MM", ""}, {"QKR_MM_DISABLE", ""}}, 1},
           {{{"QKR_DISABLE_FAST_MM", "1"}}, 0},
           {{{"QKR_DISABLE_FAST_MM", ""}, {"QKR_MM_DISABLE", "no"}}, 0}},
          decision);
}
