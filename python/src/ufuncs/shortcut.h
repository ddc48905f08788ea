/* A shorter way into a ufunc for small dense arrays of one shape and type, where NumPy's way takes longer than the
 * computation. */
#ifndef QKR_PYTHON_UFUNCS_SHORTCUT_H
#define QKR_PYTHON_UFUNCS_SHORTCUT_H

#include "numpy_api.h"

namespace qkr::ufuncs {

/* Calls that the shortcut does not serve go on as they did. */
void add_shortcut(PyUFuncObject *ufunc);

}  // namespace qkr::ufuncs

#endif
