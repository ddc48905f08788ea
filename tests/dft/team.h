// A runtime of the kind of OpenMP made of standard threads, which the thread sanitizer understands, with as
// many members as a test asks for.
#pragma once

#include "dft/threads/runtime.h"

namespace qkr::tests {

struct Team {
  int32_t threads = 1;       // what omp_get_max_threads_ answers, and the members of a team
  bool may_fork = true;      // what __kmpc_ok_to_fork answers
  bool in_parallel = false;  // what omp_in_parallel_ answers
  int forks = 0, serialized = 0;
};
extern Team team;

// The library decides to run parallel, on `team`; until the object goes.
class WithTeam {
  int32_t serial_before_;

 public:
  explicit WithTeam(int32_t threads);
  ~WithTeam();
};

extern const dft::OpenMP standard_threads;

}  // namespace qkr::tests
