// The type Stream: a random stream of the library, its lock, and its face towards NumPy's Generator.
#pragma once

#include <numpy/random/bitgen.h>
#include <qkr/streams.h>

#include "numpy_api.h"

namespace qkr::random {

// A lock with the methods of Python's own, which a draw takes without calling Python. NumPy's Generator,
// which draws without the GIL, takes the same one.
struct Lock {
  PyObject_HEAD PyThread_type_lock lock;
};

// Words that NumPy's Generator has not yet taken. They are a chunk of the stream, so that they are copied,
// saved and loaded with it.
struct Words {
  static constexpr uint32_t chunk_id = 0x71726b00;  // beyond the library's own
  static constexpr uint32_t length = 512;
  uint32_t taken;  // so many of them
  uint32_t word[length];
};

struct Stream {
  PyObject_HEAD StreamState *state;
  Lock *lock;
  Words *words;  // in a chunk of `state`, or null before the capsule is asked for
  bitgen_t generator;
};

// The stream of an object; null, with an exception set, if it was never initialised.
Stream *ready(PyObject *object);

// Holds a stream for one thread. Waiting for another thread releases the GIL.
class Guard {
 public:
  explicit Guard(Stream *stream) : lock(stream->lock->lock) {
    if (PyThread_acquire_lock(lock, NOWAIT_LOCK)) return;
    Py_BEGIN_ALLOW_THREADS;
    PyThread_acquire_lock(lock, WAIT_LOCK);
    Py_END_ALLOW_THREADS;
  }
  ~Guard() { PyThread_release_lock(lock); }
  Guard(const Guard &) = delete;
  Guard &operator=(const Guard &) = delete;

 private:
  PyThread_type_lock lock;
};

// Sets the Python exception that belongs to a status of the library; returns null.
PyObject *set_error(int32_t status);

// Methods and properties, a file each.
PyObject *capsule(PyObject *self, void *);                      // numpy_generator.cpp
PyObject *to_bytes(PyObject *self, PyObject *);                 // files.cpp
PyObject *from_bytes(PyObject *self, PyObject *);               // files.cpp
PyObject *save(PyObject *self, PyObject *path);                 // files.cpp
PyObject *load(PyObject *self, PyObject *path);                 // files.cpp
PyMethodDef *distribution_methods(int *count);                  // distributions.cpp
PyObject *normal_vectors(PyObject *self, PyObject *arguments);  // arrays.cpp
PyObject *poisson_each(PyObject *self, PyObject *arguments);    // arrays.cpp
PyObject *raw_words(PyObject *self, PyObject *arguments);       // arrays.cpp
PyObject *word_size(PyObject *self, void *);                    // arrays.cpp

// Gives the stream to `self` in place of its own and finds its words. Where NumPy's Generator draws from
// `self`, it gets words, and if there is no memory for them, `state` is deleted. @return whether that
// worked
bool adopt(Stream *self, StreamState *state);

}  // namespace qkr::random
