// Draws whose parameters are arrays, and the generator's own words. The callers in qkr/random.py bring
// arrays of the right type, dense and of matching sizes.
#include <algorithm>
#include <qkr/distributions.h>

#include "random/stream.h"

namespace qkr::random {
namespace {

PyObject *finish(int32_t status) {
  if (status) return set_error(status);
  Py_RETURN_NONE;
}

}  // namespace

// _normal_vectors(out, mean, triangle): `out` of n by d numbers.
PyObject *normal_vectors(PyObject *object, PyObject *arguments) {
  Stream *self = ready(object);
  PyArrayObject *out, *mean, *triangle;
  if (!self || !PyArg_ParseTuple(arguments, "O!O!O!", &PyArray_Type, &out, &PyArray_Type, &mean,
                                 &PyArray_Type, &triangle)) {
    return nullptr;
  }
  const auto d = static_cast<int32_t>(PyArray_SIZE(mean));
  const npy_intp n = d ? PyArray_SIZE(out) / d : 0, longest_piece = 1 << 30;
  const bool is_double = PyArray_TYPE(out) == NPY_DOUBLE;
  int32_t status = 0;
  {
    const Guard guard(self);
    Py_BEGIN_ALLOW_THREADS;
    for (npy_intp done = 0; done < n && status == 0; done += longest_piece) {
      const auto count = static_cast<int32_t>(std::min(longest_piece, n - done));
      const auto draw = [&]<class T>(auto function, T *numbers) {
        return function(1, self->state, count, numbers + done * d, d, 0, static_cast<T *>(PyArray_DATA(mean)),
                        static_cast<T *>(PyArray_DATA(triangle)));
      };
      status = is_double ? draw(_vxsdRngGaussianMV, static_cast<double *>(PyArray_DATA(out)))
                         : draw(_vxssRngGaussianMV, static_cast<float *>(PyArray_DATA(out)));
    }
    Py_END_ALLOW_THREADS;
  }
  return finish(status);
}

// _poisson_each(out, means): `out` of int32, `means` of float64.
PyObject *poisson_each(PyObject *object, PyObject *arguments) {
  Stream *self = ready(object);
  PyArrayObject *out, *means;
  if (!self || !PyArg_ParseTuple(arguments, "O!O!", &PyArray_Type, &out, &PyArray_Type, &means))
    return nullptr;
  const npy_intp n = PyArray_SIZE(out), longest_piece = 1 << 30;
  auto *numbers = static_cast<int32_t *>(PyArray_DATA(out));
  const auto *mean = static_cast<const double *>(PyArray_DATA(means));
  int32_t status = 0;
  {
    const Guard guard(self);
    Py_BEGIN_ALLOW_THREADS;
    for (npy_intp done = 0; done < n && status == 0; done += longest_piece) {
      const auto count = static_cast<int32_t>(std::min(longest_piece, n - done));
      status = _vxsiRngPoissonV(0, self->state, count, numbers + done, mean + done);
    }
    Py_END_ALLOW_THREADS;
  }
  return finish(status);
}

// _raw_words(out, n): `n` of the generator's integers into the bytes of `out`.
PyObject *raw_words(PyObject *object, PyObject *arguments) {
  Stream *self = ready(object);
  PyArrayObject *out;
  int n;
  if (!self || !PyArg_ParseTuple(arguments, "O!i", &PyArray_Type, &out, &n)) return nullptr;
  int32_t status;
  {
    const Guard guard(self);
    Py_BEGIN_ALLOW_THREADS;
    status = _vxsiRngUniformBits(0, self->state, n, static_cast<uint32_t *>(PyArray_DATA(out)));
    Py_END_ALLOW_THREADS;
  }
  return finish(status);
}

// How the generator hands out integers: bytes of each, and significant bits.
PyObject *word_size(PyObject *object, void *) {
  Stream *self = ready(object);
  BrngRecord record = {};
  if (!self) return nullptr;
  const int32_t status = __vxsGetBrngProperties(static_cast<int32_t>(self->state->brng), &record);
  return status ? set_error(status) : Py_BuildValue("ii", record.WordSize, record.Bits);
}

}  // namespace qkr::random
