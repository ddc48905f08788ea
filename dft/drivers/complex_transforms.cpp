// Complex transforms. Two dimensions are a pass over the rows and one over the columns; three are that for
// each slice, and a pass over the columns through the slices.
#include "dft/drivers/transforms.h"

namespace qkr::dft {
namespace {

template <class T>
struct Grid {
  const DftDescriptor *head;
  Direction direction;

  ptrdiff_t step(int dimension) const { return 2 * ptrdiff_t{head[dimension].input_stride}; }
  int64_t length(int dimension) const { return dimension < head->dimension ? head[dimension].length : 1; }

  // Lines first to last - 1 along one dimension, side by side along another.
  int32_t lines(T *base, int along, int beside, int64_t first, int64_t last, uint8_t *work) const {
    const Place<T> place = {base, step(along), step(beside)};
    return transform_complex_lines<T>(head + along, direction, {base, place.stride, place.distance}, place,
                                      first, last, work);
  }

  int32_t slice(T *base, const Workers &workers) const {
    int32_t code = share(workers, length(1), [&](int64_t first, int64_t last, uint8_t *work) {
      return lines(base, 0, 1, first, last, work);
    });
    if (!code && length(1) > 1)
      code = share(workers, length(0), [&](int64_t first, int64_t last, uint8_t *work) {
        return lines(base, 1, 0, first, last, work);
      });
    return code;
  }

  int32_t transform(T *base, const Workers &workers) const {
    if (length(2) == 1) return slice(base, workers);
    const int32_t code = share(workers, length(2), [&](int64_t first, int64_t last, uint8_t *work) {
      for (int64_t i = first; i < last; ++i)
        if (const int32_t failed = slice(base + i * step(2), Workers::alone(work))) return failed;
      return static_cast<int32_t>(DFTX_NO_ERROR);
    });
    if (code) return code;
    // Without gaps between the rows all columns lie side by side.
    const bool dense = step(1) == length(0) * step(0);
    const int64_t run = dense ? length(0) * length(1) : length(0);
    return share(workers, length(0) * length(1), [&](int64_t first, int64_t last, uint8_t *work) {
      return for_each_run(first, last, run, [&](int64_t row, int64_t start, int64_t stop) {
        return lines(base + row * step(1), 2, 0, start, stop, work);
      });
    });
  }
};

}  // namespace

template <class T>
int32_t complex_transforms(const DftDescriptor *head, Direction direction, T *data, int64_t count,
                           const Workers &workers) {
  const ptrdiff_t distance = 2 * ptrdiff_t{head->configuration.input_distance};
  if (head->dimension == 1) {
    const Place<T> place = {data, 2 * ptrdiff_t{head->input_stride}, distance};
    return share(workers, count, [&](int64_t first, int64_t last, uint8_t *work) {
      return transform_complex_lines<T>(head, direction, {data, place.stride, distance}, place, first, last,
                                        work);
    });
  }
  const Grid<T> grid = {head, direction};
  return batch(workers, count,
               [&](int64_t t, const Workers &who) { return grid.transform(data + t * distance, who); });
}

template int32_t complex_transforms(const DftDescriptor *, Direction, float *, int64_t, const Workers &);
template int32_t complex_transforms(const DftDescriptor *, Direction, double *, int64_t, const Workers &);

}  // namespace qkr::dft
