// Special inputs of the vector functions, with their results and reports.
#pragma once

#include "tests/support/samples.h"

namespace qkr::tests {

struct Accurate {};  // within the function's bound of the exact result
constexpr Accurate accurate;

// A result with this very pattern, or an accurate one.
template <class T>
struct Expected {
  bool is_accurate = false;
  Pattern<T> pattern = 0;
  Expected(Accurate) : is_accurate(true) {}
  Expected(T value) : pattern(pattern_of(value)) {}
};

template <class T>
struct Special {
  const char *function;
  T a, b;  // b: 0 where the function has one input
  Expected<T> result;
  int32_t status;
  Expected<T> second_result = accurate;  // where the function has two
};

template <class T>
std::vector<Special<T>> special_values();

}  // namespace qkr::tests
