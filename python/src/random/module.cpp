// The module _random: the types Stream and Lock.
#define QKR_IMPORTS_NUMPY
#include <cstring>
#include <iterator>
#include <qkr/streams.h>
#include <qkr/streams_files.h>
#include <qkr/streams_generators.h>

#include "random/stream.h"

namespace qkr::random {
namespace {

PyTypeObject *lock_type, *stream_type;

PyObject *new_lock(PyTypeObject *type, PyObject *, PyObject *) {
  auto *self = reinterpret_cast<Lock *>(type->tp_alloc(type, 0));
  if (!self) return nullptr;
  self->lock = PyThread_allocate_lock();
  if (self->lock) return reinterpret_cast<PyObject *>(self);
  Py_DECREF(self);
  return PyErr_NoMemory();
}

void free_lock(PyObject *object) {
  PyTypeObject *type = Py_TYPE(object);
  PyThread_type_lock lock = reinterpret_cast<Lock *>(object)->lock;
  if (lock) PyThread_free_lock(lock);
  type->tp_free(object);
  Py_DECREF(type);
}

PyObject *acquire(PyObject *object, PyObject *) {
  PyThread_type_lock lock = reinterpret_cast<Lock *>(object)->lock;
  Py_BEGIN_ALLOW_THREADS;
  PyThread_acquire_lock(lock, WAIT_LOCK);
  Py_END_ALLOW_THREADS;
  Py_RETURN_TRUE;
}

PyObject *release(PyObject *object, PyObject *) {
  PyThread_type_lock lock = reinterpret_cast<Lock *>(object)->lock;
  if (PyThread_acquire_lock(lock, NOWAIT_LOCK)) {
    PyThread_release_lock(lock);
    PyErr_SetString(PyExc_RuntimeError, "release of a lock that nobody holds");
    return nullptr;
  }
  PyThread_release_lock(lock);
  Py_RETURN_NONE;
}

PyMethodDef lock_methods[] = {
    {"acquire", acquire, METH_NOARGS, "Waits for the lock and takes it."},
    {"release", release, METH_VARARGS, "Gives the lock back."},
    {"__enter__", acquire, METH_NOARGS, nullptr},
    {"__exit__", release, METH_VARARGS, nullptr},
    {},
};

PyType_Slot lock_slots[] = {
    {Py_tp_doc, const_cast<char *>("Lock()\n--\n\nA lock that a draw takes without calling Python.")},
    {Py_tp_new, reinterpret_cast<void *>(new_lock)},
    {Py_tp_dealloc, reinterpret_cast<void *>(free_lock)},
    {Py_tp_methods, lock_methods},
    {},
};
PyType_Spec lock_spec = {"qkr._random.Lock", sizeof(Lock), 0, Py_TPFLAGS_DEFAULT, lock_slots};

PyObject *new_stream(PyTypeObject *type, PyObject *, PyObject *) {
  auto *self = reinterpret_cast<Stream *>(type->tp_alloc(type, 0));
  if (!self) return nullptr;
  self->lock = reinterpret_cast<Lock *>(new_lock(lock_type, nullptr, nullptr));
  if (self->lock) return reinterpret_cast<PyObject *>(self);
  Py_DECREF(self);
  return nullptr;
}

void free_stream(PyObject *object) {
  PyTypeObject *type = Py_TYPE(object);
  auto *self = reinterpret_cast<Stream *>(object);
  if (self->state) __vxsDeleteStream(&self->state);
  Py_XDECREF(self->lock);
  type->tp_free(object);
  Py_DECREF(type);
}

// Stream(generator, words): `words` is an array of unsigned 32-bit numbers.
int init_stream(PyObject *object, PyObject *arguments, PyObject *) {
  unsigned int generator;
  PyObject *seed;
  if (!PyArg_ParseTuple(arguments, "IO", &generator, &seed)) return -1;
  auto *words =
      reinterpret_cast<PyArrayObject *>(PyArray_FROMANY(seed, NPY_UINT32, 1, 1, NPY_ARRAY_CARRAY_RO));
  if (!words) return -1;
  StreamState *state = nullptr;
  const int32_t status =
      __vxsNewStreamEx(&state, generator, static_cast<int32_t>(PyArray_SIZE(words)), PyArray_DATA(words));
  Py_DECREF(words);
  if (status) {
    if (state) __vxsDeleteStream(&state);
    set_error(status);
    return -1;
  }
  auto *self = reinterpret_cast<Stream *>(object);
  const Guard guard(self);
  return adopt(self, state) ? 0 : -1;
}

// _copy_from(other): a copy of the other's stream takes the place of this one's.
PyObject *copy_from(PyObject *object, PyObject *source) {
  if (!PyObject_TypeCheck(source, stream_type)) {
    PyErr_SetString(PyExc_TypeError, "not a stream");
    return nullptr;
  }
  Stream *other = ready(source);
  if (!other) return nullptr;
  StreamState *copy = nullptr;
  int32_t status;
  {
    const Guard guard(other);
    status = __vxsCopyStream(&copy, other->state);
  }
  if (status) return set_error(status);
  auto *self = reinterpret_cast<Stream *>(object);
  const Guard guard(self);
  if (!adopt(self, copy)) return nullptr;
  Py_RETURN_NONE;
}

PyObject *skip(PyObject *object, PyObject *argument) {
  Stream *self = ready(object);
  if (!self) return nullptr;
  const unsigned long long count = PyLong_AsUnsignedLongLong(argument);
  if (count == static_cast<unsigned long long>(-1) && PyErr_Occurred()) {
    if (!PyErr_ExceptionMatches(PyExc_OverflowError)) return nullptr;
    PyErr_SetString(PyExc_ValueError, "a stream skips from 0 to 2**64 - 1 numbers");
    return nullptr;
  }
  const Guard guard(self);
  const int32_t status = qkr_skip_ahead(self->state, count);
  if (status) return set_error(status);
  Py_RETURN_NONE;
}

PyObject *leapfrog(PyObject *object, PyObject *arguments) {
  Stream *self = ready(object);
  int k, count;
  if (!self || !PyArg_ParseTuple(arguments, "ii", &k, &count)) return nullptr;
  if (count < 1 || k < 0 || k >= count) {
    PyErr_SetString(PyExc_ValueError, "leapfrog: stream k of n streams has k from 0 to n - 1");
    return nullptr;
  }
  const Guard guard(self);
  const int32_t status = __vxsLeapfrogStream(self->state, k, count);
  if (status) return set_error(status);
  Py_RETURN_NONE;
}

PyObject *get_generator(PyObject *object, void *) {
  Stream *self = ready(object);
  return self ? PyLong_FromUnsignedLong(self->state->brng) : nullptr;
}

PyObject *get_lock(PyObject *object, void *) {
  return Py_NewRef(reinterpret_cast<PyObject *>(reinterpret_cast<Stream *>(object)->lock));
}

const PyMethodDef methods[] = {
    {"skip", skip, METH_O,
     "skip($self, n, /)\n--\n\nPasses over `n` numbers, below 2**64.\n\nNotes\n-----\nThe C function: qkr_skip_ahead."},
    {"leapfrog", leapfrog, METH_VARARGS,
     "leapfrog($self, k, n, /)\n--\n\nKeeps numbers k, k + n, k + 2 n, ... of the sequence: one of `n` streams that "
     "divide it.\n\nNotes\n-----\nThe C function: __vxsLeapfrogStream."},
    {"save", save, METH_O,
     "save($self, path, /)\n--\n\nWrites the stream to a file, which `load` and C programs read.\n\nNotes\n-----\nThe C "
     "function: __vxsSaveStreamF."},
    {"_load", load, METH_O, nullptr},
    {"_copy_from", copy_from, METH_O, nullptr},
    {"_to_bytes", to_bytes, METH_NOARGS, nullptr},
    {"_from_bytes", from_bytes, METH_O, nullptr},
    {"_normal_vectors", normal_vectors, METH_VARARGS, nullptr},
    {"_poisson_each", poisson_each, METH_VARARGS, nullptr},
    {"_raw_words", raw_words, METH_VARARGS, nullptr},
};

PyGetSetDef properties[] = {
    {"generator_id", get_generator, nullptr, "The generator's number in the library's registry."},
    {"word_size", word_size, nullptr,
     "Bytes of the generator's integers, and how many of their bits are random."},
    {"lock", get_lock, nullptr, "Held by whoever draws; NumPy's Generator takes it."},
    {"capsule", capsule, nullptr, "What numpy.random.Generator draws from."},
    {},
};

// The methods above and those of the distributions, for the life of the process.
PyMethodDef *all_methods() {
  static PyMethodDef all[64];
  int count;
  const PyMethodDef *distributions = distribution_methods(&count);
  memcpy(all, methods, sizeof methods);
  memcpy(all + std::size(methods), distributions, static_cast<size_t>(count) * sizeof(PyMethodDef));
  return all;
}

PyType_Slot stream_slots[] = {
    {Py_tp_doc, const_cast<char *>("Stream(generator, words)\n--\n\nA random stream of the library.")},
    {Py_tp_new, reinterpret_cast<void *>(new_stream)},
    {Py_tp_init, reinterpret_cast<void *>(init_stream)},
    {Py_tp_dealloc, reinterpret_cast<void *>(free_stream)},
    {Py_tp_methods, all_methods()},
    {Py_tp_getset, properties},
    {},
};
PyType_Spec stream_spec = {"qkr._random.Stream", sizeof(Stream), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE,
                           stream_slots};

PyModuleDef definition = {PyModuleDef_HEAD_INIT, "_random", "Random streams.", -1};

// Registers Philox, which has no fixed number.
int add_philox(PyObject *module) {
  const int32_t generator = qkr_philox();
  if (generator > 0) return PyModule_AddIntConstant(module, "philox", generator);
  set_error(generator);
  return -1;
}

int execute(PyObject *module) {
  lock_type = reinterpret_cast<PyTypeObject *>(PyType_FromSpec(&lock_spec));
  stream_type = reinterpret_cast<PyTypeObject *>(PyType_FromSpec(&stream_spec));
  return !lock_type || !stream_type || PyModule_AddType(module, lock_type) ||
         PyModule_AddType(module, stream_type) || add_philox(module);
}

}  // namespace

Stream *ready(PyObject *object) {
  auto *self = reinterpret_cast<Stream *>(object);
  if (self->state) return self;
  PyErr_SetString(PyExc_RuntimeError, "the stream was never initialised");
  return nullptr;
}

PyObject *set_error(int32_t status) {
  static const struct {
    int32_t status;
    PyObject *exception;
    const char *text;
  } rows[] = {
      {VXS_STATUS_BAD_METHOD, PyExc_ValueError, "no such method"},
      {VXS_STATUS_BAD_ARGUMENT, PyExc_ValueError, "a parameter out of its range"},
      {VXS_STATUS_NULL_POINTER, PyExc_ValueError, "the stream is not connected to numbers"},
      {VXS_STATUS_BAD_GENERATOR, PyExc_ValueError, "no such generator, or no such member of its family"},
      {VXS_STATUS_NO_LEAPFROG, PyExc_NotImplementedError, "this generator does not leapfrog"},
      {VXS_STATUS_NO_SKIP_AHEAD, PyExc_NotImplementedError, "this generator does not skip ahead"},
      {VXS_STATUS_FILE_CLOSE, PyExc_OSError, "the stream file could not be closed"},
      {VXS_STATUS_FILE_OPEN, PyExc_OSError, "the stream file could not be opened"},
      {VXS_STATUS_FILE_WRITE, PyExc_OSError, "the stream file could not be written"},
      {VXS_STATUS_FILE_READ, PyExc_OSError, "the stream file could not be read, or ends early"},
      {VXS_STATUS_FILE_FORMAT, PyExc_ValueError, "not a valid stream file"},
      {VXS_STATUS_FILE_VERSION, PyExc_ValueError, "a stream file of an unknown version"},
  };
  if (status == VXS_STATUS_NO_MEMORY) return PyErr_NoMemory();
  for (const auto &row : rows) {
    if (row.status == status) return PyErr_Format(row.exception, "%s (status %d)", row.text, status);
  }
  return PyErr_Format(PyExc_RuntimeError, "random stream: status %d", status);
}

}  // namespace qkr::random

PyMODINIT_FUNC PyInit__random() {
  import_array();
  PyObject *module = PyModule_Create(&qkr::random::definition);
  if (module && qkr::random::execute(module)) Py_CLEAR(module);
  return module;
}
