// The module _fft: transforms of arrays that qkr/fft.py has made ready.
#define QKR_IMPORTS_NUMPY
#include <algorithm>
#include <cstring>

#include "fft/plans.h"
#include "fft/transform.h"
#include "numpy_api.h"

namespace qkr::fft {
namespace {

// Numbers from which on the GIL is released: a few microseconds.
constexpr npy_intp many = 500;

PyObject *set_error(int32_t code) {
  switch (code) {
    case DFTX_MEMORY_ERROR:
      PyErr_SetString(PyExc_MemoryError, "the transform is too large, or there is not enough memory");
      return nullptr;
    case DFTX_UNIMPLEMENTED:
      return PyErr_Format(PyExc_NotImplementedError, "transform: code %d", code);
    default:
      return PyErr_Format(PyExc_RuntimeError, "transform: code %d", code);
  }
}

bool read_axes(PyObject *tuple, int *axes, int *count) {
  *count = static_cast<int>(PyTuple_GET_SIZE(tuple));
  for (int k = 0; k < *count; ++k) axes[k] = static_cast<int>(PyLong_AsLong(PyTuple_GET_ITEM(tuple, k)));
  return !PyErr_Occurred();
}

bool is_double(PyArrayObject *array) {
  return PyArray_TYPE(array) == NPY_DOUBLE || PyArray_TYPE(array) == NPY_CDOUBLE;
}

// run(input, output, axes, forward, forward_scale, backward_scale, workers, together): dense arrays; the
// same one for a complex transform, which is done in place. As many axes as `together` are transformed at a
// time, by workers that share what is beside them; 0 workers leave it to the library whether it forks a team.
PyObject *run(PyObject *, PyObject *const *arguments, Py_ssize_t) {
  auto *input = reinterpret_cast<PyArrayObject *>(arguments[0]);
  auto *output = reinterpret_cast<PyArrayObject *>(arguments[1]);
  int axes[most_axes];
  Request request = {};
  if (!read_axes(arguments[2], axes, &request.axis_count)) return nullptr;
  request.kind = !PyArray_ISCOMPLEX(input)    ? Kind::real_forward
                 : !PyArray_ISCOMPLEX(output) ? Kind::real_backward
                                              : Kind::complex;
  request.forward = arguments[3] == Py_True;
  request.is_double = is_double(output);
  request.forward_scale = PyFloat_AsDouble(arguments[4]);
  request.backward_scale = PyFloat_AsDouble(arguments[5]);
  request.workers = static_cast<int>(PyLong_AsLong(arguments[6]));
  const int together = static_cast<int>(PyLong_AsLong(arguments[7]));
  if (PyErr_Occurred()) return nullptr;
  request.dimensions = PyArray_NDIM(output);
  request.input_shape = PyArray_DIMS(input);
  request.output_shape = PyArray_DIMS(output);
  request.input = PyArray_BYTES(input);
  request.output = PyArray_BYTES(output);

  int32_t code = 0;
  PyThreadState *thread =
      std::max(PyArray_SIZE(input), PyArray_SIZE(output)) >= many ? PyEval_SaveThread() : nullptr;
  // The last axes first; those of a real signal from its half spectrum are all that is left.
  for (int left = request.axis_count; left > 0 && !code;) {
    const int group = std::min(left, together);
    left -= group;
    request.axes = axes + left;
    request.axis_count = group;
    code = transform(request);
    request.forward_scale = request.backward_scale = 1;
    request.kind = Kind::complex;
    request.input_shape = request.output_shape;
  }
  if (thread) PyEval_RestoreThread(thread);
  if (code) return set_error(code);
  Py_RETURN_NONE;
}

// The quick way of qkr.fft.fft(x), ifft(x), rfft(x) and irfft(x, n) along the last axis of a dense array,
// with nothing else asked for: quick(x, n, kind) returns the result, or None where qkr/fft.py has more to do.
enum QuickKind { quick_fft, quick_ifft, quick_rfft, quick_irfft };

PyObject *quick(PyObject *, PyObject *const *arguments, Py_ssize_t) {
  auto *x = reinterpret_cast<PyArrayObject *>(arguments[0]);
  const long kind = PyLong_AsLong(arguments[2]);
  if (!PyArray_CheckExact(arguments[0]) || !PyArray_ISCARRAY_RO(x) || PyArray_NDIM(x) == 0 ||
      PyArray_SIZE(x) == 0) {
    Py_RETURN_NONE;
  }
  const int type = PyArray_TYPE(x), last = PyArray_NDIM(x) - 1;
  const bool real = type == NPY_DOUBLE || type == NPY_FLOAT,
             complex = type == NPY_CDOUBLE || type == NPY_CFLOAT;
  const bool serves = kind == quick_fft ? real || complex : kind == quick_rfft ? real : complex;
  const npy_intp length = PyArray_DIM(x, last);
  const npy_intp usual = kind == quick_irfft ? 2 * (length - 1) : length;
  const npy_intp points = arguments[1] == Py_None           ? usual
                          : PyLong_CheckExact(arguments[1]) ? PyLong_AsSsize_t(arguments[1])
                                                            : 0;
  PyErr_Clear();  // of a number beyond all lengths
  const bool fits = kind == quick_irfft ? points > 0 && points / 2 + 1 == length : points == length;
  if (!serves || !fits) Py_RETURN_NONE;

  const bool doubles = is_double(x);
  npy_intp shape[NPY_MAXDIMS];
  std::copy_n(PyArray_DIMS(x), last + 1, shape);
  shape[last] = kind == quick_rfft ? points / 2 + 1 : points;
  const int result_type = kind == quick_irfft ? (doubles ? NPY_DOUBLE : NPY_FLOAT)
                          : doubles           ? NPY_CDOUBLE
                                              : NPY_CFLOAT;
  auto *out = reinterpret_cast<PyArrayObject *>(PyArray_SimpleNew(last + 1, shape, result_type));
  if (!out) return nullptr;

  Request request = {};
  request.kind = real ? Kind::real_forward : kind == quick_irfft ? Kind::real_backward : Kind::complex;
  request.forward = kind == quick_fft || kind == quick_rfft;
  request.is_double = doubles;
  request.forward_scale = 1;
  request.backward_scale = 1.0 / static_cast<double>(points);
  request.dimensions = last + 1;
  request.input_shape = PyArray_DIMS(x);
  request.output_shape = PyArray_DIMS(out);
  request.axis_count = 1;
  request.axes = &last;
  request.input = PyArray_BYTES(x);
  request.output = PyArray_BYTES(out);
  PyThreadState *thread = PyArray_SIZE(x) >= many ? PyEval_SaveThread() : nullptr;
  if (request.kind == Kind::complex)
    memcpy(request.output, request.input, static_cast<size_t>(PyArray_NBYTES(x)));
  const int32_t code = transform(request);
  if (real && kind == quick_fft && !code) complete(doubles, last + 1, shape, 1, &last, request.output);
  if (thread) PyEval_RestoreThread(thread);
  if (!code) return reinterpret_cast<PyObject *>(out);
  Py_DECREF(out);
  return set_error(code);
}

// complete(spectrum, axes): the second half of a spectrum of real numbers, from its first.
PyObject *complete_spectrum(PyObject *, PyObject *const *arguments, Py_ssize_t) {
  auto *spectrum = reinterpret_cast<PyArrayObject *>(arguments[0]);
  int axes[most_axes], count;
  if (!read_axes(arguments[1], axes, &count)) return nullptr;
  PyThreadState *thread = PyArray_SIZE(spectrum) >= many ? PyEval_SaveThread() : nullptr;
  complete(is_double(spectrum), PyArray_NDIM(spectrum), PyArray_DIMS(spectrum), count, axes,
           PyArray_BYTES(spectrum));
  if (thread) PyEval_RestoreThread(thread);
  Py_RETURN_NONE;
}

PyObject *get_cache_state(PyObject *, PyObject *) {
  const CacheState state = cache_state();
  return Py_BuildValue("nnnn", state.plans, state.most_plans, state.points, state.most_points);
}

PyObject *set_cache_limits(PyObject *, PyObject *arguments) {
  Py_ssize_t plans, points;
  if (!PyArg_ParseTuple(arguments, "nn", &plans, &points)) return nullptr;
  limit_cache(static_cast<size_t>(plans), static_cast<size_t>(points));
  Py_RETURN_NONE;
}

PyCFunction fast(PyObject *(*function)(PyObject *, PyObject *const *, Py_ssize_t)) {
  return reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(function));
}

PyMethodDef methods[] = {
    {"quick", fast(quick), METH_FASTCALL, nullptr},
    {"run", fast(run), METH_FASTCALL, nullptr},
    {"complete", fast(complete_spectrum), METH_FASTCALL, nullptr},
    {"cache_state", get_cache_state, METH_NOARGS, nullptr},
    {"limit_cache", set_cache_limits, METH_VARARGS, nullptr},
    {},
};

PyModuleDef definition = {PyModuleDef_HEAD_INIT, "_fft", "Fourier transforms.", -1, methods};

}  // namespace
}  // namespace qkr::fft

PyMODINIT_FUNC PyInit__fft() {
  import_array();
  if (!qkr::fft::keep_cache_whole_in_forks()) return PyErr_NoMemory();
  return PyModule_Create(&qkr::fft::definition);
}
