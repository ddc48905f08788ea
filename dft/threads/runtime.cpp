// Finds the OpenMP runtime. It is no dependency of the library: a program that brings one with it, at
// whatever version, shares it, so that there are not two of them; otherwise libomp.so.5 is loaded; and where
// that is missing everything runs on the caller's thread.
#include "dft/threads/runtime.h"

#include <dlfcn.h>
#include <pthread.h>
#include <type_traits>

#include "service/forks.h"

namespace qkr::dft {
namespace {

struct Found {
  OpenMP entries;
  bool complete;
};

Found look_up(void *library) {
  Found found = {{}, true};
  const auto entry = [&](const char *name, auto &pointer) {
    void *symbol = dlsym(library, name);
    found.complete = found.complete && symbol;
    pointer = reinterpret_cast<std::remove_reference_t<decltype(pointer)>>(symbol);
  };
  OpenMP &openmp = found.entries;
  entry("__kmpc_global_thread_num", openmp.__kmpc_global_thread_num);
  entry("__kmpc_ok_to_fork", openmp.__kmpc_ok_to_fork);
  entry("__kmpc_fork_call", openmp.__kmpc_fork_call);
  entry("__kmpc_serialized_parallel", openmp.__kmpc_serialized_parallel);
  entry("__kmpc_end_serialized_parallel", openmp.__kmpc_end_serialized_parallel);
  entry("__kmpc_for_static_init_4", openmp.__kmpc_for_static_init_4);
  entry("__kmpc_for_static_fini", openmp.__kmpc_for_static_fini);
  entry("__kmpc_barrier", openmp.__kmpc_barrier);
  entry("__kmpc_critical", openmp.__kmpc_critical);
  entry("__kmpc_end_critical", openmp.__kmpc_end_critical);
  entry("omp_in_parallel_", openmp.omp_in_parallel_);
  entry("omp_get_max_threads_", openmp.omp_get_max_threads_);
  return found;
}

// Set once, by whichever thread comes first.
pthread_once_t once = PTHREAD_ONCE_INIT;
bool begun;
OpenMP loaded;
const OpenMP *chosen, *chosen_by_parent;

// The runtime looks after forks from its first call on. A fork that comes before may leave it half made in
// the child, with locks that nobody opens. Such a child never calls it: it lacks the second handler, which
// is entered after the runtime's own.
void load() {
  if (begun) return;  // in such a child
  begun = true;
  call_in_child([] {
    chosen_by_parent = chosen;
    chosen = nullptr;
  });
  Found found = look_up(RTLD_DEFAULT);
  if (!found.complete)
    if (void *library = dlopen("libomp.so.5", RTLD_NOW | RTLD_GLOBAL)) found = look_up(library);
  if (!found.complete) return;
  found.entries.omp_in_parallel_();
  loaded = found.entries;
  chosen = &loaded;
  call_in_child([] { chosen = chosen_by_parent; });
}

}  // namespace

const OpenMP *openmp_runtime() {
  pthread_once(&once, load);
  return chosen;
}

void force_runtime(const OpenMP *runtime) {
  openmp_runtime();
  chosen = runtime;
}

}  // namespace qkr::dft
