#include "random/draw.h"

#include <algorithm>
#include <climits>

#include "random/parameters.h"

namespace qkr::random {
namespace {

// The library counts in 32 bits. Draws may be split without changing a number.
constexpr npy_intp longest_piece = npy_intp{1} << 30;

enum { size_place, dtype_place, out_place, own_places };

// Sorts arguments into the parameters and size, dtype, out. @return whether all fit
bool match(const Distribution &d, PyObject *const *arguments, Py_ssize_t count, PyObject *names,
           PyObject **found) {
  static const char *const own[] = {"size", "dtype", "out"};
  const Py_ssize_t places = d.count + own_places;
  if (count > places) {
    PyErr_Format(PyExc_TypeError, "%s() takes at most %zd arguments (%zd given)", d.name, places, count);
    return false;
  }
  std::copy_n(arguments, count, found);
  for (Py_ssize_t k = 0; names && k < PyTuple_GET_SIZE(names); ++k) {
    PyObject *name = PyTuple_GET_ITEM(names, k);
    Py_ssize_t place = 0;
    const auto named = [&] { return place < d.count ? d.parameters[place].name : own[place - d.count]; };
    while (place < places && PyUnicode_CompareWithASCIIString(name, named())) ++place;
    if (place == places || found[place]) {
      PyErr_Format(PyExc_TypeError, "%s() got %s argument '%U'", d.name,
                   place == places ? "an unexpected" : "more than one value of", name);
      return false;
    }
    found[place] = arguments[count + k];
  }
  return true;
}

// The element type that is asked for, as NumPy's number; -1 with an exception set.
int read_type(const Distribution &d, PyObject *dtype) {
  const bool real = d.doubles;
  if (!dtype || dtype == Py_None) return real ? NPY_DOUBLE : NPY_INT64;
  PyArray_Descr *descriptor = nullptr;
  if (!PyArray_DescrConverter(dtype, &descriptor)) return -1;
  const int type = PyArray_ISNBO(descriptor->byteorder) ? descriptor->type_num : -1;
  Py_DECREF(descriptor);
  if (real ? type == NPY_DOUBLE || (type == NPY_FLOAT && d.floats) : type == NPY_INT64 || type == NPY_INT32)
    return type;
  PyErr_Format(PyExc_TypeError, "%s: dtype is %s", d.name,
               !real      ? "int64 or int32"
               : d.floats ? "float64 or float32"
                          : "float64");
  return -1;
}

// The array to fill, new or the caller's; without a size it is that of the parameters.
PyArrayObject *result_array(const Distribution &d, const Parameters &parameters, PyObject *size,
                            PyObject *dtype, PyObject *out) {
  PyArray_Dims shape = {};
  if (size && size != Py_None && !PyArray_IntpConverter(size, &shape)) return nullptr;
  const bool has_shape = size && size != Py_None;
  PyArrayObject *result = nullptr;
  if (!out || out == Py_None) {
    const int type = read_type(d, dtype);
    if (type < 0 || (has_shape && !parameters.fit(shape.len, shape.ptr))) {
      // told
    } else if (has_shape) {
      result = reinterpret_cast<PyArrayObject *>(PyArray_SimpleNew(shape.len, shape.ptr, type));
    } else {
      result = reinterpret_cast<PyArrayObject *>(
          PyArray_SimpleNew(parameters.dimensions(), parameters.shape(), type));
    }
  } else if (!PyArray_Check(out)) {
    PyErr_Format(PyExc_TypeError, "%s: out is no array", d.name);
  } else {
    auto *array = reinterpret_cast<PyArrayObject *>(out);
    const int type =
        read_type(d, dtype && dtype != Py_None ? dtype : reinterpret_cast<PyObject *>(PyArray_DESCR(array)));
    if (type < 0) {
      // told
    } else if (PyArray_TYPE(array) != type || !PyArray_ISCARRAY(array)) {
      PyErr_Format(PyExc_ValueError, "%s: out is to be a writeable C array of the dtype", d.name);
    } else if (has_shape && (shape.len != PyArray_NDIM(array) ||
                             !PyArray_CompareLists(shape.ptr, PyArray_DIMS(array), shape.len))) {
      PyErr_Format(PyExc_ValueError, "%s: size is not that of out", d.name);
    } else if (parameters.fit(PyArray_NDIM(array), PyArray_DIMS(array))) {
      result = reinterpret_cast<PyArrayObject *>(Py_NewRef(out));
    }
  }
  PyDimMem_FREE(shape.ptr);
  return result;
}

template <class T>
int32_t fill(Fill<T> function, StreamState *stream, npy_intp n, T *out, const double *p) {
  int32_t status = 0;
  for (npy_intp done = 0; done < n && status == 0; done += longest_piece) {
    status = function(stream, static_cast<int32_t>(std::min(longest_piece, n - done)), out + done, p);
  }
  return status;
}

// Wider integers, and those with an offset, go through a block that stays in the cache.
int32_t fill(const Distribution &d, StreamState *stream, npy_intp n, int64_t *out, const double *p) {
  constexpr npy_intp block = 2048;
  int32_t numbers[block];
  int32_t status = 0;
  for (npy_intp done = 0; done < n && status == 0; done += block) {
    const npy_intp count = std::min(block, n - done);
    status = d.integers(stream, static_cast<int32_t>(count), numbers, p);
    for (npy_intp i = 0; i < count; ++i) out[done + i] = int64_t{numbers[i]} + d.offset;
  }
  return status;
}

int32_t fill(const Distribution &d, StreamState *stream, npy_intp n, int32_t *out, const double *p) {
  const int32_t status = fill(d.integers, stream, n, out, p);
  if (d.offset) {
    for (npy_intp i = 0; i < n; ++i) out[i] = out[i] < INT_MAX ? out[i] + d.offset : INT_MAX;
  }
  return status;
}

int32_t fill(const Distribution &d, StreamState *stream, npy_intp n, int type, void *out, const double *p) {
  switch (type) {
    case NPY_DOUBLE:
      return fill(d.doubles, stream, n, static_cast<double *>(out), p);
    case NPY_FLOAT:
      return fill(d.floats, stream, n, static_cast<float *>(out), p);
    case NPY_INT64:
      return fill(d, stream, n, static_cast<int64_t *>(out), p);
    default:
      return fill(d, stream, n, static_cast<int32_t *>(out), p);
  }
}

// The numbers of single calls, each of which would scale and shift one: all as standard numbers first.
template <class T>
int32_t fill_scaled(const Distribution &d, Fill<T> function, StreamState *stream,
                    const Parameters &parameters, int dimensions, const npy_intp *shape, npy_intp n, T *out) {
  double standard[most_parameters];
  std::copy_n(parameters.values(), most_parameters, standard);
  standard[d.scale_place] = 1 / d.unit, standard[d.loc_place] = 0;
  if (const int32_t status = fill(function, stream, n, out, standard)) return status;
  const auto value = [](const char *at) { return *reinterpret_cast<const double *>(at); };
  return parameters.for_rows(
      dimensions, shape,
      [=, &d](npy_intp first, npy_intp length, const char *const *at, const npy_intp *step) {
        const char *scale = at[d.scale_place], *loc = at[d.loc_place];
        for (npy_intp i = first; i < first + length; ++i) {
          out[i] = out[i] * static_cast<T>(value(scale) * d.unit) + static_cast<T>(value(loc));
          scale += step[d.scale_place], loc += step[d.loc_place];
        }
        return 0;
      });
}

int32_t fill(const Distribution &d, StreamState *stream, const Parameters &parameters,
             PyArrayObject *result) {
  const int dimensions = PyArray_NDIM(result), type = PyArray_TYPE(result);
  const npy_intp *shape = PyArray_DIMS(result), n = PyArray_SIZE(result);
  char *out = PyArray_BYTES(result);
  if (d.unit && parameters.only_arrays_are(d.scale_place, d.loc_place)) {
    return type == NPY_DOUBLE ? fill_scaled(d, d.doubles, stream, parameters, dimensions, shape, n,
                                            reinterpret_cast<double *>(out))
                              : fill_scaled(d, d.floats, stream, parameters, dimensions, shape, n,
                                            reinterpret_cast<float *>(out));
  }
  return parameters.for_runs(dimensions, shape, [=, &d](npy_intp first, npy_intp run, const double *p) {
    return fill(d, stream, run, type, out + first * PyArray_ITEMSIZE(result), p);
  });
}

}  // namespace

PyObject *draw(const Distribution &d, PyObject *object, PyObject *const *arguments, Py_ssize_t count,
               PyObject *names) {
  PyObject *found[most_parameters + own_places] = {};
  Parameters parameters(d);
  Stream *self = ready(object);
  if (!self || !match(d, arguments, count, names, found) || !parameters.read(found)) return nullptr;
  PyObject *const *own = found + d.count;
  PyArrayObject *result = result_array(d, parameters, own[size_place], own[dtype_place], own[out_place]);
  if (!result) return nullptr;

  const npy_intp n = PyArray_SIZE(result);
  int32_t status = 0;
  if (n > 0) {
    const Guard guard(self);
    PyThreadState *thread = n >= many ? PyEval_SaveThread() : nullptr;
    status = fill(d, self->state, parameters, result);
    if (thread) PyEval_RestoreThread(thread);
  }
  if (status) {
    Py_DECREF(result);
    return set_error(status);
  }
  return own[out_place] && own[out_place] != Py_None ? reinterpret_cast<PyObject *>(result)
                                                     : PyArray_Return(result);
}

}  // namespace qkr::random
