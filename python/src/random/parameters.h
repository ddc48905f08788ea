// The parameters of a draw: numbers, or arrays that broadcast together and over the shape of its result.
#pragma once

#include <algorithm>
#include <bit>
#include <cstring>

#include "random/draw.h"

namespace qkr::random {

class Parameters {
 public:
  explicit Parameters(const Distribution &of) : distribution(of) {}
  ~Parameters();
  Parameters(const Parameters &) = delete;
  Parameters &operator=(const Parameters &) = delete;

  // Takes in the arguments, null where there is none. @return false with an exception set
  bool read(PyObject *const *arguments);
  // Whether an array can be filled; an exception is set if not. Without arrays any can.
  bool fit(int dimensions, const npy_intp *shape) const;

  // What the arrays broadcast to; no dimensions if all are numbers.
  int dimensions() const { return dimensions_; }
  const npy_intp *shape() const { return shape_; }

  // Those that are numbers.
  const double *values() const { return numbers; }
  // Whether there are arrays, and none but those of two places.
  bool only_arrays_are(int one, int other) const;

  // call(first, length, at, step) for the rows, along the last dimension, of an array of a shape that fits
  // and is not empty: where the parameters of element `first` stand, and how many bytes from one to the next.
  template <class Call>
  int32_t for_rows(int dimensions, const npy_intp *shape, Call call) const;

  // call(first, count, p) for the runs of equal parameters in an array of a shape that fits, in C order; a
  // call that does not return 0 ends it.
  template <class Call>
  int32_t for_runs(int dimensions, const npy_intp *shape, Call call) const;

 private:
  bool read_one(int k, PyObject *argument);
  bool widen(PyArrayObject *array);
  npy_intp stride(int k, int from_last) const;

  const Distribution &distribution;
  double numbers[most_parameters] = {};         // of those that are no arrays
  PyArrayObject *arrays[most_parameters] = {};  // copies, which no other thread writes to
  int dimensions_ = 0;
  npy_intp shape_[NPY_MAXDIMS];  // of so many
};

template <class Call>
int32_t Parameters::for_rows(int dimensions, const npy_intp *shape, Call call) const {
  const int rows = dimensions - 1;
  const npy_intp length = shape[rows];
  npy_intp place[NPY_MAXDIMS] = {}, step[most_parameters];
  const char *at[most_parameters];
  for (int k = 0; k < most_parameters; ++k) {
    at[k] = arrays[k] ? PyArray_BYTES(arrays[k]) : reinterpret_cast<const char *>(&numbers[k]);
    step[k] = stride(k, 0);
  }
  for (npy_intp first = 0;; first += length) {
    if (const int32_t status = call(first, length, at, step)) return status;
    int d = rows - 1;
    for (; d >= 0; --d) {
      const bool wraps = ++place[d] == shape[d];
      if (wraps) place[d] = 0;
      for (int k = 0; k < most_parameters; ++k) at[k] += (wraps ? 1 - shape[d] : 1) * stride(k, rows - d);
      if (!wraps) break;
    }
    if (d < 0) return 0;
  }
}

template <class Call>
int32_t Parameters::for_runs(int dimensions, const npy_intp *shape, Call call) const {
  npy_intp size = 1;
  for (int d = 0; d < dimensions; ++d) size *= shape[d];
  if (!size) return 0;
  if (!dimensions_) return call(npy_intp{0}, size, numbers);

  double current[most_parameters] = {}, p[most_parameters];
  npy_intp begin = 0, end = 0;
  const auto next = [&](const char *const *at, const npy_intp *step, npy_intp i) {
    uint64_t difference = 0;
    for (int k = 0; k < most_parameters; ++k) {
      memcpy(&p[k], at[k] + i * step[k], sizeof(double));
      difference |= std::bit_cast<uint64_t>(p[k]) ^ std::bit_cast<uint64_t>(current[k]);
    }
    return difference != 0;
  };
  const int32_t status = for_rows(
      dimensions, shape, [&](npy_intp, npy_intp length, const char *const *at, const npy_intp *step) {
        const bool varies = std::any_of(step, step + most_parameters, [](npy_intp s) { return s != 0; });
        for (npy_intp i = 0; i < length; i += varies ? 1 : length) {
          if (next(at, step, i) && end > begin) {
            if (const int32_t failed = call(begin, end - begin, current)) return failed;
            begin = end;
          }
          std::copy_n(p, most_parameters, current);
          end += varies ? 1 : length;
        }
        return int32_t{0};
      });
  return status ? status : call(begin, end - begin, current);
}

}  // namespace qkr::random
