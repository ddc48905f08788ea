// The ufuncs, one row each.
#pragma once

#include <span>

#include "ufuncs/loop.h"

namespace qkr::ufuncs {

struct Row {
  const char *name, *docstring;
  int inputs, outputs, identity;
  int count;            // of variants
  Variant variants[4];  // in NumPy's order of preference: narrower elements first
};

std::span<Row> table();

}  // namespace qkr::ufuncs
