// Logarithms of factorials.
#pragma once

#include "distributions/internal.h"
#include "simd/simd.h"

extern "C" const double _vxsdLogFactTab[16], _vxsdLogConstTab[5];  // ln 0! to ln 15!; see stirling.cpp

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// What ln Gamma(x) is above (x - 1/2) ln x - x + ln sqrt(2 pi): Stirling's series, with an error below that
// of its next term, 0.0019 x^-11.
inline double stirling_rest(double x) {
  const double y = 1.0 / x, s = y * y;
  return y * (1.0 / 12 - s * (1.0 / 360 - s * (1.0 / 1260 - s * (1.0 / 1680 - s * (1.0 / 1188)))));
}

// ln x!, x a whole number.
inline double ln_factorial(double x) {
  if (x < 16.0) return _vxsdLogFactTab[x > 0.0 ? static_cast<int32_t>(x) : 0];
  const double y = 1.0 / x;
  return (x + 0.5) * ln(x) - x + _vxsdLogConstTab[0] +
         y * (_vxsdLogConstTab[1] - _vxsdLogConstTab[2] * y * y);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
