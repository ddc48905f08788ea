// Sharing out the items of one step of a transform (transforms, rows, columns) among the threads of a team.
#pragma once

#include "dft/descriptor/record.h"

namespace qkr::dft {

// Who works, and where: thread i has the slice of `work` at i * slice.
struct Workers {
  int32_t threads;
  uint8_t *work;
  ptrdiff_t slice;

  static Workers alone(uint8_t *work) { return {1, work, 0}; }
};

// Items first to last - 1 of a step, on memory of one thread; a code.
using Piece = int32_t (*)(const void *step, int64_t first, int64_t last, uint8_t *work);

// Runs all items on a team of the OpenMP runtime, or on this thread where the runtime wants no fork. The
// first failure that is noticed is the answer; the other pieces of the step run all the same.
int32_t fork_team(const Workers &workers, int64_t items, Piece piece, const void *step);

// piece(first, last, work) for all items, whole or in chunks.
template <class Step>
int32_t share(const Workers &workers, int64_t items, const Step &step) {
  if (items < 1) return DFTX_NO_ERROR;
  if (workers.threads < 2) return step(int64_t{0}, items, workers.work);
  return fork_team(
      workers, items,
      [](const void *opaque, int64_t first, int64_t last, uint8_t *work) {
        return (*static_cast<const Step *>(opaque))(first, last, work);
      },
      &step);
}

}  // namespace qkr::dft
