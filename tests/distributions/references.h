// Every distribution beside its definition: one number at a time, from the same uniform numbers, in long
// double arithmetic but for what decides between branches. A distribution joins the tests with one row.
#pragma once

#include <functional>
#include <qkr/distributions.h>
#include <string>
#include <vector>

#include "tests/distributions/recorded_stream.h"

namespace qkr::tests {

struct Number {
  long double value;
  long double magnitude;  // of what was rounded on the way
};

template <class T>
struct Row {
  std::string name;
  std::function<int32_t(StreamState *stream, int32_t n, T *out)> draw;
  std::function<std::function<Number(Cursor<T> &u)>()> definition;
};

// T: double, float, int32_t
template <class T>
const std::vector<Row<T>> &all_rows();

}  // namespace qkr::tests
