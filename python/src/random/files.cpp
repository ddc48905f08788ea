// Streams to bytes and files, and back: the bytes are those of a stream file.
#include <cstdio>
#include <cstdlib>
#include <qkr/streams_files.h>

#include "random/stream.h"

namespace qkr::random {

PyObject *to_bytes(PyObject *object, PyObject *) {
  Stream *self = ready(object);
  if (!self) return nullptr;
  const Guard guard(self);
  char *bytes = nullptr;
  size_t size = 0;
  FILE *file = open_memstream(&bytes, &size);
  if (!file) return PyErr_NoMemory();
  StreamFileHeader header;
  int32_t status = VXS_STATUS_OK;
  __vxsFillInFileHeader(&status, &header, self->state);
  __vxsWriteFileHeaderToFile(&status, file, &header);
  __vxsWriteStreamStateToFile(&status, file, &header, self->state);
  __vxsWriteChunksToFile(&status, file, &header, self->state);
  __vxsCloseFile(&status, &file);
  PyObject *result =
      status ? set_error(status) : PyBytes_FromStringAndSize(bytes, static_cast<Py_ssize_t>(size));
  free(bytes);
  return result;
}

PyObject *from_bytes(PyObject *object, PyObject *argument) {
  auto *self = reinterpret_cast<Stream *>(object);
  char *bytes;
  Py_ssize_t size;
  if (PyBytes_AsStringAndSize(argument, &bytes, &size)) return nullptr;
  FILE *file = size ? fmemopen(bytes, static_cast<size_t>(size), "rb") : nullptr;
  if (!file) return set_error(VXS_STATUS_FILE_READ);
  StreamFileHeader header;
  StreamState *state = nullptr;
  int32_t status = VXS_STATUS_OK;
  __vxsReadFileHeaderFromFile(&status, file, &header);
  __vxsValidateHeader(&status, &header);
  __vxsCreateStream(&status, &header, &state);
  __vxsReadStreamStateFromFile(&status, file, &header, state);
  __vxsReadChunksFromFile(&status, file, &header, state);
  __vxsCloseFile(&status, &file);
  __vxsDeallocateStream(&status, &state);
  if (status) return set_error(status);
  const Guard guard(self);
  if (!adopt(self, state)) return nullptr;
  Py_RETURN_NONE;
}

PyObject *save(PyObject *object, PyObject *path) {
  Stream *self = ready(object);
  PyObject *name;
  if (!self || !PyUnicode_FSConverter(path, &name)) return nullptr;
  int32_t status;
  {
    const Guard guard(self);
    Py_BEGIN_ALLOW_THREADS;
    status = __vxsSaveStreamF(self->state, PyBytes_AS_STRING(name), -1);
    Py_END_ALLOW_THREADS;
  }
  Py_DECREF(name);
  if (status) return set_error(status);
  Py_RETURN_NONE;
}

PyObject *load(PyObject *object, PyObject *path) {
  auto *self = reinterpret_cast<Stream *>(object);
  PyObject *name;
  if (!PyUnicode_FSConverter(path, &name)) return nullptr;
  StreamState *state = nullptr;
  int32_t status;
  Py_BEGIN_ALLOW_THREADS;
  status = __vxsLoadStreamF(&state, PyBytes_AS_STRING(name));
  Py_END_ALLOW_THREADS;
  Py_DECREF(name);
  if (status) return set_error(status);
  const Guard guard(self);
  if (!adopt(self, state)) return nullptr;
  Py_RETURN_NONE;
}

}  // namespace qkr::random
