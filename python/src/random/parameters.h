// The parameters of a draw: numbers, or arrays that broadcast together and over the shape of its result.
#pragma once

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
int32_t Parameters::for_runs(int dimensions, const npy_intp *shape, Call call) const {
  npy_intp size = 1, place[NPY_MAXDIMS];
  for (int d = 0; d < dimensions; ++d) {
    size *= shape[d];
    place[d] = 0;
  }
  if (!size) return 0;
  if (!dimensions_) return call(npy_intp{0}, size, numbers);

  const int count = distribution.count, rows = dimensions - 1;  // a row: the last dimension
  const npy_intp length = shape[rows];
  double current[most_parameters], p[most_parameters];
  const char *at[most_parameters];
  bool varies = false;  // along a row
  for (int k = 0; k < count; ++k) {
    at[k] = arrays[k] ? PyArray_BYTES(arrays[k]) : reinterpret_cast<const char *>(&numbers[k]);
    varies = varies || stride(k, 0);
  }
  npy_intp first = 0, end = 0;
  for (int d = 0; d >= 0;) {
    for (npy_intp i = 0; i < length; i += varies ? 1 : length) {
      for (int k = 0; k < count; ++k) memcpy(&p[k], at[k] + i * stride(k, 0), sizeof(double));
      if (end > first && memcmp(p, current, count * sizeof(double))) {
        if (const int32_t status = call(first, end - first, current)) return status;
        first = end;
      }
      memcpy(current, p, sizeof(p));
      end += varies ? 1 : length;
    }
    // To the next row.
    for (d = rows - 1; d >= 0; --d) {
      const bool wraps = ++place[d] == shape[d];
      if (wraps) place[d] = 0;
      for (int k = 0; k < count; ++k) at[k] += (wraps ? 1 - shape[d] : 1) * stride(k, rows - d);
      if (!wraps) break;
    }
  }
  return call(first, end - first, current);
}

}  // namespace qkr::random
