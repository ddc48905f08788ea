// The OpenMP runtime: LLVM's, found when a program first commits a transform that may run on several threads.
#pragma once

#include <stdint.h>

namespace qkr::dft {

// Where a parallel region stands in the source, for the runtime's debugging.
struct Location {
  int32_t reserved, flags, unused[2];
  const char *source;
};
constexpr int32_t from_c = 2;  // of `flags`
using CriticalName = int32_t[8];
using Region = void (*)(int32_t *thread, int32_t *member, ...);

// The runtime's entries, under its own names.
struct OpenMP {
  int32_t (*__kmpc_global_thread_num)(Location *);
  int32_t (*__kmpc_ok_to_fork)(Location *);
  void (*__kmpc_fork_call)(Location *, int32_t arguments, Region, ...);
  void (*__kmpc_serialized_parallel)(Location *, int32_t thread);
  void (*__kmpc_end_serialized_parallel)(Location *, int32_t thread);
  void (*__kmpc_for_static_init_4)(Location *, int32_t thread, int32_t schedule, int32_t *last,
                                   int32_t *lower, int32_t *upper, int32_t *stride, int32_t increment,
                                   int32_t chunk);
  void (*__kmpc_for_static_fini)(Location *, int32_t thread);
  void (*__kmpc_barrier)(Location *, int32_t thread);
  void (*__kmpc_critical)(Location *, int32_t thread, CriticalName *);
  void (*__kmpc_end_critical)(Location *, int32_t thread, CriticalName *);
  int32_t (*omp_in_parallel_)();
  int32_t (*omp_get_max_threads_)();
};

// The runtime, or null where there is none.
const OpenMP *openmp_runtime();

// Tests: this runtime, or none, from now on.
void force_runtime(const OpenMP *runtime);

}  // namespace qkr::dft
