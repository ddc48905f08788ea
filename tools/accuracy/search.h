#pragma once

#include "tests/support/measure.h"

namespace qkr::tests {

// The worst result that is a normal number, by an adaptive search from `runs` different samples.
template <class T>
Worst<T> search(const VectorFunction<T> &f, int runs);

}  // namespace qkr::tests
