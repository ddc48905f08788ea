// Whole transforms: batches of one to three dimensions, on a team or alone.
#pragma once

#include "dft/drivers/lines.h"
#include "dft/threads/team.h"

namespace qkr::dft {

template <class T>
int32_t complex_transforms(const DftDescriptor *head, Direction direction, T *data, int64_t count,
                           const Workers &workers);

// From `input` to `output`, which are the same or apart.
template <class T>
int32_t real_transforms(const DftDescriptor *head, Direction direction, const T *input, T *output,
                        int64_t count, const Workers &workers);

// A real transform of two or three dimensions with a complex half spectrum, and of two in a packed format.
template <class T>
int32_t half_spectrum_transform(const DftDescriptor *head, Direction direction, const T *input, T *output,
                                const Workers &workers);
template <class T>
int32_t packed_transform(const DftDescriptor *head, Direction direction, const T *input, T *output,
                         const Workers &workers);

// Items first to last - 1 of a grid of `inner` by whatever: body(outer, inner first, inner last) for each
// run.
template <class Body>
int32_t for_each_run(int64_t first, int64_t last, int64_t inner, Body body) {
  while (first < last) {
    const int64_t outer = first / inner, start = first % inner, end = start + (last - first);
    const int64_t stop = end < inner ? end : inner;
    if (const int32_t code = body(outer, start, stop)) return code;
    first += stop - start;
  }
  return DFTX_NO_ERROR;
}

// Several transforms are shared out whole; a single one shares out its passes.
template <class Single>
int32_t batch(const Workers &workers, int64_t count, const Single &single) {
  if (count == 1) return single(0, workers);
  return share(workers, count, [&](int64_t first, int64_t last, uint8_t *work) {
    for (int64_t t = first; t < last; ++t)
      if (const int32_t code = single(t, Workers::alone(work))) return code;
    return static_cast<int32_t>(DFTX_NO_ERROR);
  });
}

}  // namespace qkr::dft
