// Python and NumPy, for the files of an extension. One file of each defines QKR_IMPORTS_NUMPY and calls
// import_array() (and import_umath()); the others share its table of functions.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#define PY_ARRAY_UNIQUE_SYMBOL qkr_array_api
#define PY_UFUNC_UNIQUE_SYMBOL qkr_ufunc_api
#ifndef QKR_IMPORTS_NUMPY
#define NO_IMPORT_ARRAY
#define NO_IMPORT_UFUNC
#endif
#include <numpy/arrayobject.h>
#include <numpy/ufuncobject.h>
