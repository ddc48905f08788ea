// A shorter way into a ufunc for small dense arrays of one shape and type, where NumPy's way takes longer
// than the computation.
#pragma once

#include "numpy_api.h"

namespace qkr::ufuncs {

// Calls that the shortcut does not serve go on as they did.
void add_shortcut(PyUFuncObject *ufunc);

}  // namespace qkr::ufuncs
