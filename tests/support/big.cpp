#include "tests/support/big.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qkr::tests {

template <class T>
double error_in_ulp(T computed, const Big &exact) {
  using Format = std::numeric_limits<T>;
  if (isnan(exact) || std::isnan(computed)) return isnan(exact) && std::isnan(computed) ? 0 : INFINITY;
  if (isinf(exact) || exact == 0) return exact == computed ? 0 : INFINITY;
  if (std::isinf(computed)) return static_cast<T>(exact) == computed ? 0 : INFINITY;
  const auto exponent =
      std::clamp<long>(mpfr_get_exp(raw(exact)), Format::min_exponent, Format::max_exponent);
  return static_cast<double>(ldexp(abs(computed - exact), static_cast<int>(Format::digits - exponent)));
}
template double error_in_ulp(double, const Big &);
template double error_in_ulp(float, const Big &);
template double error_in_ulp(long double, const Big &);

}  // namespace qkr::tests
