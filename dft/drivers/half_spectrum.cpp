// Real transforms of two and three dimensions with a complex half spectrum.
//
// Forward, the rows become half spectra in the output, whose columns are then transformed in place. Backward
// is the mirror. In one array it works in place as well. With an array of its own, which has room for the
// real numbers only, the columns go from the input straight to the rows of the output, in the order of
// DFTX_PERM_FORMAT; there is no room for the imaginary parts of X[0] and X[H] there, which are zero once all
// columns are done: those two planes are transformed in a scratch.
#include "dft/drivers/scratch.h"
#include "dft/drivers/transforms.h"

namespace qkr::dft {
namespace {

// Steps from one element to the next in each dimension, in single numbers.
struct Steps {
  ptrdiff_t along[largest_dimension];
};

struct Shape {
  const DftDescriptor *head;

  int64_t length(int dimension) const { return dimension < head->dimension ? head[dimension].length : 1; }
  int64_t half() const { return length(0) / 2 + 1; }
  int64_t rows_of_all() const { return length(1) * length(2); }
  Steps steps(int width, int32_t DftDescriptor::*stride) const {
    Steps steps = {};
    for (int i = 0; i < head->dimension; ++i) steps.along[i] = ptrdiff_t{width} * head[i].*stride;
    return steps;
  }
  // Columns along the last dimension that lie side by side: those of all rows where there is no gap between.
  int64_t run_of_columns(const Steps &steps) const {
    return steps.along[1] == half() * steps.along[0] ? half() * length(1) : half();
  }
  // Of a dense half spectrum.
  Steps dense() const { return {{2, 2 * half(), 2 * half() * length(1)}}; }

  RealTransform rows(Direction direction, LineTransform line, int32_t format) const {
    return {head, line, direction, format, spectrum_numbers(format, length(0))};
  }
};

template <class T>
struct Forward : Shape {
  const T *input;
  T *output;
  Steps in, out;

  int32_t columns(T *base, int along, int64_t first, int64_t last, uint8_t *work) const {
    return transform_complex_lines<T>(head + along, forward, {base, out.along[along], out.along[0]},
                                      {base, out.along[along], out.along[0]}, first, last, work);
  }

  int32_t slice(int64_t i2, const Workers &workers) const {
    const RealTransform row = rows(forward, head->real_line[forward], DFTX_CCS_FORMAT);
    T *base = output + i2 * out.along[2];
    int32_t code = share(workers, length(1), [&](int64_t first, int64_t last, uint8_t *work) {
      return transform_real_lines<T>(row, {input + i2 * in.along[2], in.along[0], in.along[1]},
                                     {base, out.along[0], out.along[1]}, first, last, work);
    });
    if (!code && length(1) > 1)
      code = share(workers, half(), [&](int64_t first, int64_t last, uint8_t *work) {
        return columns(base, 1, first, last, work);
      });
    return code;
  }

  int32_t transform(const Workers &workers) const {
    if (length(2) == 1) return slice(0, workers);
    const int32_t code =
        batch(workers, length(2), [&](int64_t i2, const Workers &who) { return slice(i2, who); });
    if (code) return code;
    return share(workers, half() * length(1), [&](int64_t first, int64_t last, uint8_t *work) {
      return for_each_run(first, last, run_of_columns(out), [&](int64_t i1, int64_t start, int64_t stop) {
        return columns(output + i1 * out.along[1], 2, start, stop, work);
      });
    });
  }
};

// In one array: complex columns, the last dimension first, then the rows.
template <class T>
struct BackwardInPlace : Shape {
  T *data;
  Steps steps;

  int32_t columns(T *base, int along, int64_t first, int64_t last, uint8_t *work) const {
    return transform_complex_lines<T>(head + along, backward, {base, steps.along[along], 2},
                                      {base, steps.along[along], 2}, first, last, work);
  }
  int32_t slice(int64_t i2, const Workers &workers) const {
    T *base = data + i2 * steps.along[2];
    int32_t code = DFTX_NO_ERROR;
    if (length(1) > 1)
      code = share(workers, half(), [&](int64_t first, int64_t last, uint8_t *work) {
        return columns(base, 1, first, last, work);
      });
    if (code) return code;
    const RealTransform row = rows(backward, head->real_line[backward], DFTX_CCS_FORMAT);
    return share(workers, length(1), [&](int64_t first, int64_t last, uint8_t *work) {
      return transform_real_lines<T>(row, {base, 2, steps.along[1]}, {base, 1, steps.along[1]}, first, last,
                                     work);
    });
  }
  int32_t transform(const Workers &workers) const {
    if (length(2) == 1) return slice(0, workers);
    const int32_t code = share(workers, half() * length(1), [&](int64_t first, int64_t last, uint8_t *work) {
      return for_each_run(first, last, run_of_columns(steps), [&](int64_t i1, int64_t start, int64_t stop) {
        return columns(data + i1 * steps.along[1], 2, start, stop, work);
      });
    });
    if (code) return code;
    return batch(workers, length(2), [&](int64_t i2, const Workers &who) { return slice(i2, who); });
  }
};

// With an array of its own.
template <class T>
struct BackwardApart : Shape {
  const T *input;
  T *output;
  Steps in, out;

  bool is_even() const { return length(0) % 2 == 0; }
  int64_t planes() const { return is_even() ? 2 : 1; }        // X[0] and, of even lengths, X[H]
  int64_t pairs() const { return (length(0) - 1) / 2; }       // X[1], X[2], ...
  ptrdiff_t first_pair() const { return is_even() ? 2 : 1; }  // its place in a row of DFTX_PERM_FORMAT

  // One of the planes, dense in a scratch; the real parts go to the first or second number of each row.
  int32_t plane(int64_t which, uint8_t *work) const {
    const int64_t rows = length(1), slices = length(2);
    const Scratch<T> scratch(2 * rows_of_all());
    T *numbers = scratch.numbers;
    if (!numbers) return DFTX_MEMORY_ERROR;
    const T *source = input + which * (length(0) / 2) * in.along[0];
    for (int64_t i2 = 0; i2 < slices; ++i2)
      take_pairs<T>(2 * rows, {source + i2 * in.along[2], in.along[1], 0}, 0, numbers + 2 * i2 * rows);
    const auto lines = [&](int along, ptrdiff_t stride, ptrdiff_t distance, int64_t count) {
      if (length(along) == 1) return static_cast<int32_t>(DFTX_NO_ERROR);
      return transform_complex_lines<T>(head + along, backward, {numbers, stride, distance},
                                        {numbers, stride, distance}, 0, count, work);
    };
    int32_t code = lines(2, 2 * rows, 2, rows);
    if (!code) code = lines(1, 2, 2 * rows, slices);
    T *target = output + which * out.along[0];
    for (int64_t i2 = 0; i2 < slices; ++i2)
      copy_numbers(rows, numbers + 2 * i2 * rows, 2, target + i2 * out.along[2], out.along[1]);
    return code;
  }

  Place<const T> spectrum_columns(int along, ptrdiff_t offset) const {
    return {input + in.along[0] + offset, in.along[along], in.along[0]};
  }
  Place<T> packed_columns(int along, ptrdiff_t offset) const {
    return {output + first_pair() * out.along[0] + offset, out.along[along], 2 * out.along[0], out.along[0]};
  }

  // Planes and columns, from the input to the output, along the last dimension.
  int32_t first_pass(const Workers &workers) const {
    const int last_dimension = head->dimension - 1;
    const int64_t rows = last_dimension == 2 ? length(1) : 1;
    return share(workers, planes() + rows * pairs(), [&](int64_t first, int64_t last, uint8_t *work) {
      for (; first < last && first < planes(); ++first)
        if (const int32_t code = plane(first, work)) return code;
      if (pairs() == 0) return static_cast<int32_t>(DFTX_NO_ERROR);
      return for_each_run(
          first - planes(), last - planes(), pairs(), [&](int64_t i1, int64_t start, int64_t stop) {
            return transform_complex_lines<T>(
                head + last_dimension, backward, spectrum_columns(last_dimension, i1 * in.along[1]),
                packed_columns(last_dimension, i1 * out.along[1]), start, stop, work);
          });
    });
  }

  // Rows of the output, after the columns of three dimensions that are left.
  int32_t slice(int64_t i2, const Workers &workers) const {
    const ptrdiff_t offset = i2 * out.along[2];
    int32_t code = DFTX_NO_ERROR;
    if (head->dimension == 3 && length(1) > 1)
      code = share(workers, pairs(), [&](int64_t first, int64_t last, uint8_t *work) {
        const Place<T> place = packed_columns(1, offset);
        return transform_complex_lines<T>(head + 1, backward,
                                          {place.base, place.stride, place.distance, place.imaginary}, place,
                                          first, last, work);
      });
    if (code) return code;
    const RealTransform row = rows(backward, head->real_line_of_perm, DFTX_PERM_FORMAT);
    T *base = output + offset;
    const ptrdiff_t step = out.along[0];
    return share(workers, length(1), [&](int64_t first, int64_t last, uint8_t *work) {
      return transform_real_lines<T>(row, {base, 2 * step, out.along[1], step}, {base, step, out.along[1]},
                                     first, last, work);
    });
  }

  int32_t transform(const Workers &workers) const {
    const int32_t code = first_pass(workers);
    if (code) return code;
    return batch(workers, length(2), [&](int64_t i2, const Workers &who) { return slice(i2, who); });
  }
};

// Whether each row of real numbers lies where its spectrum does.
bool share_rows(const Shape &shape, const Steps &real, const Steps &complex) {
  bool same = real.along[0] == 1 && complex.along[0] == 2;
  for (int i = 1; i < shape.head->dimension; ++i) same = same && real.along[i] == complex.along[i];
  return same;
}

}  // namespace

// Where input and output are one array in which rows and their spectra lie apart, the input is copied first.
template <class T>
int32_t half_spectrum_transform(const DftDescriptor *head, Direction direction, const T *input, T *output,
                                const Workers &workers) {
  const Shape shape = {head};
  const int width = direction == forward ? 1 : 2;
  Steps in = shape.steps(width, &DftDescriptor::input_stride);
  const Steps out = shape.steps(3 - width, &DftDescriptor::output_stride);
  const bool in_place =
      input == output && (direction == forward ? share_rows(shape, in, out) : share_rows(shape, out, in));
  const bool copies = input == output && !in_place;
  const Scratch<T> copy(copies ? 2 * shape.half() * shape.rows_of_all() : 0);
  if (copies) {
    if (!copy.numbers) return DFTX_MEMORY_ERROR;
    const Steps dense = shape.dense();
    for (int64_t i2 = 0; i2 < shape.length(2); ++i2)
      for (int64_t i1 = 0; i1 < shape.length(1); ++i1) {
        const T *from = input + i1 * in.along[1] + i2 * in.along[2];
        T *to = copy.numbers + i1 * dense.along[1] + i2 * dense.along[2];
        if (direction == forward) copy_numbers(shape.length(0), from, in.along[0], to, 1);
        else copy_pairs(2 * shape.half(), from, in.along[0], 1, to, 2, 1);
      }
    in = dense;
    if (direction == forward) in.along[0] = 1;
    input = copy.numbers;
  }
  if (direction == forward) return Forward<T>{shape, input, output, in, out}.transform(workers);
  if (in_place) return BackwardInPlace<T>{shape, output, in}.transform(workers);
  return BackwardApart<T>{shape, input, output, in, out}.transform(workers);
}

template int32_t half_spectrum_transform(const DftDescriptor *, Direction, const float *, float *,
                                         const Workers &);
template int32_t half_spectrum_transform(const DftDescriptor *, Direction, const double *, double *,
                                         const Workers &);

}  // namespace qkr::dft
