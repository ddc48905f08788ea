// A team of the OpenMP runtime, forked through the entries that a compiler would call.
#include "dft/threads/team.h"

#include "dft/threads/runtime.h"

namespace qkr::dft {
namespace {

struct SharedStep {
  const OpenMP *openmp;
  const Workers *workers;
  int64_t items;
  Piece piece;
  const void *step;
  int32_t status;  // of the first failure
};

Location location = {0, from_c, {0, 0}, ";dft;fork_team;0;0;;"};
CriticalName merging;
constexpr int32_t static_whole = 34;  // schedule: one run of iterations for each thread

// Chunks of equal size, one for each thread; a late chunk may be empty.
void run_chunk(SharedStep &shared, int32_t i, int32_t thread) {
  const Workers &workers = *shared.workers;
  const int64_t chunk = (shared.items - 1) / workers.threads + 1;
  const int64_t first = i * chunk, last = first + chunk < shared.items ? first + chunk : shared.items;
  if (first >= last) return;
  const int32_t code = shared.piece(shared.step, first, last, workers.work + i * workers.slice);
  if (!code) return;
  shared.openmp->__kmpc_critical(&location, thread, &merging);
  if (!shared.status) shared.status = code;
  shared.openmp->__kmpc_end_critical(&location, thread, &merging);
}

void region(int32_t *thread, int32_t *, SharedStep *shared) {
  const OpenMP &openmp = *shared->openmp;
  int32_t last = 0, lower = 0, upper = shared->workers->threads - 1, stride = 1;
  const int32_t end = upper;
  openmp.__kmpc_for_static_init_4(&location, *thread, static_whole, &last, &lower, &upper, &stride, 1, 1);
  if (upper > end) upper = end;
  for (int32_t i = lower; i <= upper; ++i) run_chunk(*shared, i, *thread);
  openmp.__kmpc_for_static_fini(&location, *thread);
  openmp.__kmpc_barrier(&location, *thread);
}

}  // namespace

int32_t fork_team(const Workers &workers, int64_t items, Piece piece, const void *step) {
  const OpenMP *openmp = openmp_runtime();
  SharedStep shared = {openmp, &workers, items, piece, step, DFTX_NO_ERROR};
  if (openmp->__kmpc_ok_to_fork(&location)) {
    openmp->__kmpc_fork_call(&location, 1, reinterpret_cast<Region>(region), &shared);
  } else {
    int32_t thread = openmp->__kmpc_global_thread_num(&location), member = 0;
    openmp->__kmpc_serialized_parallel(&location, thread);
    region(&thread, &member, &shared);
    openmp->__kmpc_end_serialized_parallel(&location, thread);
  }
  return shared.status;
}

}  // namespace qkr::dft
