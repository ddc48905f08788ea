// Logarithm and exponential function where they are near 0 and 1, from functions that lose their digits
// there.
#pragma once

#include "distributions/internal.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// ln(1 + x), x >= -1: the logarithm of the rounded sum, and what the rounding took away from it.
template <class T>
inline void ln_of_one_plus(int32_t n, const T *x, T *__restrict out) {
  for (int32_t i = 0; i < n; ++i) out[i] = T(1) + x[i];
  Precision<T>::ln(n, out, out);
  for (int32_t i = 0; i < n; ++i) {
    const T sum = T(1) + x[i];
    out[i] += sum > T(0.5) ? (x[i] - (sum - T(1))) / sum : T(0);  // further below, sums are exact
  }
}
template <class T>
inline T ln_of_one_plus(T x) {
  T out;
  ln_of_one_plus(1, &x, &out);
  return out;
}

// power = e^x, minus_one = e^x - 1 = tanh(x / 2) (e^x + 1). x may be `power`.
template <class T>
inline void exponential_and_less_one(int32_t n, const T *x, T *power, T *__restrict minus_one) {
  for (int32_t i = 0; i < n; ++i) minus_one[i] = T(0.5) * x[i];
  Precision<T>::tanh(n, minus_one, minus_one);
  Precision<T>::exp(n, x, power);
  for (int32_t i = 0; i < n; ++i) minus_one[i] *= power[i] + T(1);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
