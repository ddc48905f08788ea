#include "random/parameters.h"

#include <algorithm>
#include <cmath>

namespace qkr::random {

Parameters::~Parameters() {
  for (PyArrayObject *array : arrays) Py_XDECREF(array);
}

bool Parameters::read(PyObject *const *arguments) {
  for (int k = 0; k < distribution.count; ++k) {
    const Parameter &parameter = distribution.parameters[k];
    if (arguments[k] ? !read_one(k, arguments[k]) : std::isnan(numbers[k] = parameter.value)) {
      if (!arguments[k])
        PyErr_Format(PyExc_TypeError, "%s() needs the argument '%s'", distribution.name, parameter.name);
      return false;
    }
  }
  // Every combination that a result will meet.
  const char *complaint = nullptr;
  npy_intp size = 1;
  for (int d = 0; d < dimensions_; ++d) size *= shape_[d];
  PyThreadState *thread = size >= many ? PyEval_SaveThread() : nullptr;
  for_runs(dimensions_, shape_, [&](npy_intp, npy_intp, const double *p) {
    complaint = distribution.check(p);
    return complaint != nullptr;
  });
  if (thread) PyEval_RestoreThread(thread);
  if (complaint) PyErr_Format(PyExc_ValueError, "%s: %s", distribution.name, complaint);
  return !complaint;
}

// A number is what makes a float; all other sequences and arrays are arrays.
bool Parameters::read_one(int k, PyObject *argument) {
  const bool is_array = PyArray_Check(argument)
                            ? PyArray_NDIM(reinterpret_cast<PyArrayObject *>(argument)) > 0
                            : PySequence_Check(argument) && !PyUnicode_Check(argument) &&
                                  !PyBytes_Check(argument) && !PyArray_IsScalar(argument, Generic);
  if (!is_array) {
    numbers[k] = PyFloat_AsDouble(argument);
    return numbers[k] != -1.0 || !PyErr_Occurred();
  }
  arrays[k] = reinterpret_cast<PyArrayObject *>(
      PyArray_FROM_OTF(argument, NPY_DOUBLE, NPY_ARRAY_CARRAY | NPY_ARRAY_ENSURECOPY));
  return arrays[k] && widen(arrays[k]);
}

// Broadcasts the common shape and that of an array.
bool Parameters::widen(PyArrayObject *array) {
  const int dimensions = PyArray_NDIM(array);
  for (int d = dimensions_; d < dimensions; ++d) {
    std::copy_backward(shape_, shape_ + d, shape_ + d + 1);
    shape_[0] = 1;
  }
  dimensions_ = std::max(dimensions_, dimensions);
  for (int d = 0; d < dimensions; ++d) {
    npy_intp &common = shape_[dimensions_ - dimensions + d];
    const npy_intp own = PyArray_DIM(array, d);
    if (common != own && common != 1 && own != 1) {
      PyErr_Format(PyExc_ValueError, "%s: the shapes of the parameters do not fit each other",
                   distribution.name);
      return false;
    }
    if (common == 1) common = own;
  }
  return true;
}

bool Parameters::fit(int dimensions, const npy_intp *shape) const {
  bool fits = dimensions_ <= dimensions;
  for (int d = 1; fits && d <= dimensions_; ++d) {
    fits = shape_[dimensions_ - d] == 1 || shape_[dimensions_ - d] == shape[dimensions - d];
  }
  if (!fits) {
    PyErr_Format(PyExc_ValueError, "%s: the shapes of the parameters do not fit that of the result",
                 distribution.name);
  }
  return fits;
}

bool Parameters::only_arrays_are(int one, int other) const {
  for (int k = 0; k < distribution.count; ++k) {
    if (arrays[k] && k != one && k != other) return false;
  }
  return arrays[one] || arrays[other];
}

// Bytes from one element to the next along a dimension, counted from the last; 0 where there is one.
npy_intp Parameters::stride(int k, int from_last) const {
  const PyArrayObject *array = arrays[k];
  if (!array) return 0;
  const int d = PyArray_NDIM(array) - 1 - from_last;
  return d < 0 || PyArray_DIM(array, d) == 1 ? 0 : PyArray_STRIDE(array, d);
}

}  // namespace qkr::random
