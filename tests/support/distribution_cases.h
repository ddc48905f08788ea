// The distributions with the parameters that they are tried with, on both sides of each border between
// methods: one list for the comparison with definitions, the statistical tests and the accuracy tool.
#pragma once

#include <cstdint>
#include <functional>
#include <qkr/distributions.h>
#include <string>
#include <vector>

namespace qkr::tests {

struct Case {
  const char *family;              // "Gamma" of _vxsdRngGamma
  std::vector<double> parameters;  // those that follow `out`
  int32_t method = 0;
  bool has_law = true;  // false: single precision is too coarse for the law to be visible
};

// T: double, float or int32_t, for _vxsdRng..., _vxssRng... and _vxsiRng...; parameters are numbers of that
// type.
template <class T>
const std::vector<Case> &cases();

template <class T>
int32_t draw(const Case &a_case, StreamState *stream, int32_t n, T *out);

// "Gamma(0.6, 0, 2)"
template <class T>
std::string name_of(const Case &a_case);

// What the numbers follow before they are rounded.
struct Law {
  std::function<double(double x)> below;               // the probability of less than x
  std::function<double(double p, double q)> quantile;  // p + q = 1: the smaller one counts
  double lowest, highest;                              // nothing lies outside
  bool whole = false;                                  // whole numbers only
};

template <class T>
Law law_of(const Case &a_case);

// A lower triangular factor of some covariance, and a mean, exact in both precisions.
struct Factor {
  int32_t size;
  bool diagonal = false;
  double element(int32_t j, int32_t i) const {  // i <= j
    return i == j ? 1 + 0.25 * (j % 4) : diagonal ? 0 : 0.125 * ((7 * j + 3 * i) % 5 - 2);
  }
  double mean(int32_t j) const { return 0.5 * j - 3; }
  template <class T>
  std::vector<T> means() const {
    std::vector<T> all;
    for (int32_t j = 0; j < size; ++j) all.push_back(T(mean(j)));
    return all;
  }
  // As GaussianMV takes it. `mark` fills what is not to be read.
  template <class T>
  std::vector<T> stored(int32_t storage, T mark = 99) const {
    std::vector<T> t;
    for (int32_t row = 0; row < size; ++row)
      for (int32_t column = 0; column < size; ++column) {
        const int32_t j = storage == 1 ? column : row, i = storage == 1 ? row : column;  // packed by columns
        if (i <= j && (storage != 2 || i == j)) t.push_back(T(element(j, i)));
        else if (storage == 0 || storage > 2) t.push_back(mark);
      }
    return t;
  }
};

}  // namespace qkr::tests
