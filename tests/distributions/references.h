// Every continuous distribution beside its definition: one number at a time, from the same uniform numbers,
// in long double arithmetic but for what decides between branches.
#pragma once

#include <functional>

#include "tests/distributions/recorded_stream.h"
#include "tests/support/distribution_cases.h"

namespace qkr::tests {

struct Number {
  long double value;
  long double magnitude;  // of what was rounded on the way
};

// The next number of a case.
template <class T>
using Definition = std::function<Number(Cursor<T> &u)>;
template <class T>
Definition<T> definition_of(const Case &a_case);

}  // namespace qkr::tests
