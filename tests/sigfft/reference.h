// FFTW's transforms in long double, and in the precision under test, to compare with.
#pragma once

#include <vector>

#include "engines.h"

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

// The spectrum of the real parts, from that of complex numbers.
LongNumbers real_spectrum(const LongNumbers &exact);

// The numbers that a format holds of such a spectrum of n points.
template <class T>
std::vector<T> in_format(const LongNumbers &spectrum, Format format, size_t n) {
  std::vector<T> y(spectrum.begin(), spectrum.end());
  if (format == ccs) return y;
  y.erase(y.begin() + 1);
  if (n % 2) return y;
  y.pop_back();  // the imaginary part of the last
  if (format == perm) y.insert(y.begin() + 1, y.back()), y.pop_back();
  return y;
}

}  // namespace qkr::tests
