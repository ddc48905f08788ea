// The shortcut computes at once what has no error. If an element has one, the call starts anew on NumPy's
// way, which asks np.errstate; so it is for results that do not overwrite their inputs.
#include "ufuncs/shortcut.h"

#include <algorithm>

#include "ufuncs/loop.h"

namespace qkr::ufuncs {
namespace {

// Beyond this, NumPy's way costs little beside the computation.
constexpr npy_intp too_many = 16384;
// As in NumPy: from so many elements on the GIL is released.
constexpr npy_intp many = 500;

vectorcallfunc usual_way;

bool is_plain(PyObject *object) {
  auto *array = reinterpret_cast<PyArrayObject *>(object);
  return PyArray_CheckExact(object) && PyArray_IS_C_CONTIGUOUS(array) && PyArray_ISBEHAVED_RO(array);
}

bool is_like(PyArrayObject *first, PyObject *object) {
  auto *array = reinterpret_cast<PyArrayObject *>(object);
  return is_plain(object) && PyArray_TYPE(array) == PyArray_TYPE(first) &&
         PyArray_NDIM(array) == PyArray_NDIM(first) &&
         std::equal(PyArray_DIMS(first), PyArray_DIMS(first) + PyArray_NDIM(first), PyArray_DIMS(array));
}

bool overlaps(PyArrayObject *a, PyArrayObject *b) {
  return PyArray_BYTES(a) < PyArray_BYTES(b) + PyArray_NBYTES(b) &&
         PyArray_BYTES(b) < PyArray_BYTES(a) + PyArray_NBYTES(a);
}

const Variant *variant_of(PyUFuncObject *ufunc, int type) {
  for (int i = 0; i < ufunc->ntypes; ++i) {
    if (ufunc->types[i * ufunc->nargs] == type) return static_cast<const Variant *>(ufunc->data[i]);
  }
  return nullptr;
}

// The results, new or given, of one array or a tuple; null, without an exception, if the shortcut does not
// serve.
PyObject *compute(PyUFuncObject *ufunc, PyObject *const *arguments, Py_ssize_t count) {
  if (count != ufunc->nin && count != ufunc->nargs) return nullptr;
  auto *first = reinterpret_cast<PyArrayObject *>(arguments[0]);
  if (!is_plain(arguments[0])) return nullptr;
  const npy_intp n = PyArray_SIZE(first);
  if (PyArray_NDIM(first) == 0 || n == 0 || n >= too_many) return nullptr;
  const Variant *variant = variant_of(ufunc, PyArray_TYPE(first));
  if (!variant) return nullptr;
  for (Py_ssize_t k = 1; k < count; ++k) {
    if (!is_like(first, arguments[k])) return nullptr;
  }

  char *data[3];
  PyObject *results[2] = {};
  for (int k = 0; k < ufunc->nin; ++k)
    data[k] = PyArray_BYTES(reinterpret_cast<PyArrayObject *>(arguments[k]));
  for (int k = ufunc->nin; k < ufunc->nargs; ++k) {
    PyObject *&result = results[k - ufunc->nin];
    if (count == ufunc->nin) {
      result = PyArray_SimpleNew(PyArray_NDIM(first), PyArray_DIMS(first), PyArray_TYPE(first));
      if (!result) PyErr_Clear();
    } else {
      auto *array = reinterpret_cast<PyArrayObject *>(arguments[k]);
      bool serves = PyArray_ISWRITEABLE(array);
      for (int other = 0; other < k; ++other) {
        serves &= !overlaps(array, reinterpret_cast<PyArrayObject *>(arguments[other]));
      }
      result = serves ? Py_NewRef(arguments[k]) : nullptr;
    }
    if (!result) break;
    data[k] = PyArray_BYTES(reinterpret_cast<PyArrayObject *>(result));
  }

  bool complete = results[ufunc->nout - 1];
  if (complete) {
    PyThreadState *thread = n >= many ? PyEval_SaveThread() : nullptr;
    complete = variant->dense(*variant, n, data);
    if (thread) PyEval_RestoreThread(thread);
  }
  if (complete && ufunc->nout == 1) return results[0];
  PyObject *pair = complete ? PyTuple_Pack(2, results[0], results[1]) : nullptr;
  Py_XDECREF(results[0]);
  Py_XDECREF(results[1]);
  return pair;
}

PyObject *call(PyObject *ufunc, PyObject *const *arguments, size_t flags, PyObject *names) {
  PyObject *result =
      names ? nullptr
            : compute(reinterpret_cast<PyUFuncObject *>(ufunc), arguments, PyVectorcall_NARGS(flags));
  if (result || PyErr_Occurred()) return result;
  return usual_way(ufunc, arguments, flags, names);
}

}  // namespace

void add_shortcut(PyUFuncObject *ufunc) {
  usual_way = ufunc->vectorcall;
  ufunc->vectorcall = call;
}

}  // namespace qkr::ufuncs
