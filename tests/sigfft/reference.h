// FFTW's transforms in long double, and in the precision under test, to compare with.
#pragma once

#include <vector>

namespace qkr::tests {

using LongNumbers = std::vector<long double>;  // interleaved

LongNumbers exact_transform(const LongNumbers &x, bool forward);

std::vector<double> fftw_transform(const std::vector<double> &x, bool forward);
std::vector<float> fftw_transform(const std::vector<float> &x, bool forward);

// Root of the sum of squares of the differences, divided by that of the exact numbers.
template <class T>
double relative_error(const std::vector<T> &x, const LongNumbers &exact);
extern template double relative_error(const std::vector<double> &, const LongNumbers &);
extern template double relative_error(const std::vector<float> &, const LongNumbers &);

}  // namespace qkr::tests
