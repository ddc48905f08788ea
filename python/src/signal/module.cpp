// The module _signal: convolution of arrays that qkr/signal.py has made ready, by the library's tasks.
#define QKR_IMPORTS_NUMPY
#include <cstdint>
#include <qkr/convcorr.h>

#include "numpy_api.h"

namespace qkr::signal {
namespace {

constexpr int most_dimensions = 7;  // of a task

PyObject *set_error(int32_t status) {
  switch (status) {
    case VXS_CC_ERROR_MEM:
    case VXS_CC_ERROR_ALLOC:
    case VXS_CC_ERROR_FFT:
      return PyErr_NoMemory();
    default:
      return PyErr_Format(PyExc_RuntimeError, "convolution: status %d", status);
  }
}

// An array as a task wants it: its convolved axes, the last one first, and where its first element in
// memory is.
struct Operand {
  char *data;
  int32_t shape[most_dimensions], strides[most_dimensions];
  npy_intp loop_strides[NPY_MAXDIMS];  // bytes, of the other axes; 0 along one that is repeated
};

bool fits(npy_intp number) { return number >= -INT32_MAX && number <= INT32_MAX; }

// @return whether its numbers fit into the library's
bool describe(PyArrayObject *array, int dims, const int *axes, int loops, const int *loop_axes,
              Operand *operand) {
  operand->data = PyArray_BYTES(array);
  bool all_fit = true;
  for (int d = 0; d < dims; ++d) {
    const int axis = axes[dims - 1 - d];
    const npy_intp length = PyArray_DIM(array, axis), bytes = PyArray_STRIDE(array, axis);
    all_fit &= fits(length) && fits(bytes / PyArray_ITEMSIZE(array));
    operand->shape[d] = static_cast<int32_t>(length);
    operand->strides[d] = static_cast<int32_t>(bytes / PyArray_ITEMSIZE(array));
    if (bytes < 0) operand->data += (length - 1) * bytes;  // tasks count a negative stride from the other end
  }
  for (int k = 0; k < loops; ++k) {
    const int axis = loop_axes[k];
    operand->loop_strides[k] = PyArray_DIM(array, axis) == 1 ? 0 : PyArray_STRIDE(array, axis);
  }
  return all_fit;
}

// convolve(x, y, z, axes, start, by_transform): aligned arrays of one real type. z holds, along each of
// `axes`, the results from `start` on; x and y may have length 1 along other axes.
PyObject *convolve(PyObject *, PyObject *arguments) {
  PyArrayObject *x, *y, *z;
  PyObject *axis_tuple, *start_tuple;
  int by_transform;
  if (!PyArg_ParseTuple(arguments, "O!O!O!O!O!p", &PyArray_Type, &x, &PyArray_Type, &y, &PyArray_Type, &z,
                        &PyTuple_Type, &axis_tuple, &PyTuple_Type, &start_tuple, &by_transform)) {
    return nullptr;
  }
  const int ndim = PyArray_NDIM(z), dims = static_cast<int>(PyTuple_GET_SIZE(axis_tuple));
  if (dims < 1 || dims > most_dimensions) {
    PyErr_Format(PyExc_ValueError, "convolution of 1 to %d dimensions, not of %d", most_dimensions, dims);
    return nullptr;
  }
  int axes[most_dimensions], loop_axes[NPY_MAXDIMS], loops = 0;
  int32_t start[most_dimensions];
  bool convolved[NPY_MAXDIMS] = {};
  for (int d = 0; d < dims; ++d) {
    axes[d] = static_cast<int>(PyLong_AsLong(PyTuple_GET_ITEM(axis_tuple, d)));
    start[dims - 1 - d] = static_cast<int32_t>(PyLong_AsLong(PyTuple_GET_ITEM(start_tuple, d)));
    if (PyErr_Occurred()) return nullptr;
    convolved[axes[d]] = true;
  }
  npy_intp steps = 1;
  for (int k = 0; k < ndim; ++k) {
    if (convolved[k]) continue;
    loop_axes[loops++] = k;
    steps *= PyArray_DIM(z, k);
  }
  Operand operands[3];
  if (!describe(x, dims, axes, loops, loop_axes, &operands[0]) ||
      !describe(y, dims, axes, loops, loop_axes, &operands[1]) ||
      !describe(z, dims, axes, loops, loop_axes, &operands[2])) {
    PyErr_SetString(PyExc_ValueError, "convolution: an array is too long");
    return nullptr;
  }
  auto &[ox, oy, oz] = operands;

  int32_t status;
  Py_BEGIN_ALLOW_THREADS;
  ConvCorrTask *task = nullptr;
  status = __vxsNewTask(&task, VXS_CC_CONVOLUTION, 0, by_transform ? VXS_CC_FFT : VXS_CC_DIRECT, 0,
                        PyArray_TYPE(z) == NPY_DOUBLE ? VXS_CC_DOUBLE : VXS_CC_SINGLE, dims, ox.shape,
                        oy.shape, oz.shape);
  if (!status) status = __vxsEditTask(task, VXS_CC_PARAM_START, start);
  npy_intp index[NPY_MAXDIMS] = {};
  for (npy_intp step = 0; step < steps && !status; ++step) {
    status = __vxsExec(task, ox.data, ox.strides, oy.data, oy.strides, oz.data, oz.strides);
    for (int k = loops - 1; k >= 0; --k) {
      const npy_intp length = PyArray_DIM(z, loop_axes[k]);
      const bool next = ++index[k] < length;
      for (Operand &operand : operands) operand.data += (next ? 1 : 1 - length) * operand.loop_strides[k];
      if (next) break;
      index[k] = 0;
    }
  }
  __vxsDeleteTask(&task);
  Py_END_ALLOW_THREADS;
  if (status) return set_error(status);
  Py_RETURN_NONE;
}

PyMethodDef methods[] = {{"convolve", convolve, METH_VARARGS, nullptr}, {}};

PyModuleDef definition = {PyModuleDef_HEAD_INIT, "_signal", "Convolution.", -1, methods};

}  // namespace
}  // namespace qkr::signal

PyMODINIT_FUNC PyInit__signal() {
  import_array();
  return PyModule_Create(&qkr::signal::definition);
}
