// Special inputs of the real and complex vector functions, with their results and reports, as data.
#pragma once

#include <cfenv>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

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
  std::string function;
  T a, b = 0;  // b: 0 where the function has one input
  Expected<T> result = accurate;
  int32_t status = 0;
  Expected<T> second_result = accurate;  // where the function has two
};

template <class T>
std::vector<Special<T>> special_values();

// A number, a name of one, a minus before it, a plus or minus behind it for its neighbour: "1-", "-largest".
template <class T>
T value_of(const std::string &word);

// body(function, words of a row), for "functions: row; row; ..." on lines of a text; a line without functions
// goes on with those of the line before.
void for_each_row(const char *text, const std::function<void(const std::string &, std::istream &)> &body);

}  // namespace qkr::tests
