// The module _ufuncs: makes a ufunc of each row.
#define QKR_IMPORTS_NUMPY
#include "numpy_api.h"
#include "ufuncs/shortcut.h"
#include "ufuncs/table.h"

namespace qkr::ufuncs {
namespace {

// What PyUFunc_FromFuncAndData() keeps pointers to.
struct Storage {
  PyUFuncGenericFunction loops[4];
  void *data[4];
  char types[4 * 3];
};

char type_number(char letter) {
  return letter == 'f' ? NPY_FLOAT : letter == 'd' ? NPY_DOUBLE : letter == 'F' ? NPY_CFLOAT : NPY_CDOUBLE;
}

PyObject *make(Row &row, Storage &storage) {
  char *type = storage.types;
  for (int i = 0; i < row.count; ++i) {
    storage.loops[i] = row.variants[i].loop;
    storage.data[i] = &row.variants[i];
    for (int k = 0; k < row.inputs + row.outputs; ++k) *type++ = type_number(row.variants[i].type);
  }
  PyObject *made = PyUFunc_FromFuncAndData(storage.loops, storage.data, storage.types, row.count, row.inputs,
                                           row.outputs, row.identity, row.name, row.docstring, 0);
  if (!made) return nullptr;
  add_shortcut(reinterpret_cast<PyUFuncObject *>(made));
  return made;
}

int execute(PyObject *module) {
  static Storage storage[64];
  Storage *next = storage;
  for (Row &row : table()) {
    PyObject *ufunc = make(row, *next++);
    if (!ufunc) return -1;
    const int failed = PyModule_AddObjectRef(module, row.name, ufunc);
    Py_DECREF(ufunc);
    if (failed) return -1;
  }
  return 0;
}

PyModuleDef definition = {PyModuleDef_HEAD_INIT, "_ufuncs", "Vector functions as NumPy ufuncs.", -1};

}  // namespace
}  // namespace qkr::ufuncs

PyMODINIT_FUNC PyInit__ufuncs() {
  import_array();
  import_umath();
  PyObject *module = PyModule_Create(&qkr::ufuncs::definition);
  if (module && qkr::ufuncs::execute(module)) Py_CLEAR(module);
  return module;
}
