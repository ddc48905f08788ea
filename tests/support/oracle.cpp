#include "tests/support/oracle.h"

#include <algorithm>
#include <cmath>

namespace qkr::tests {

template <class T>
double Oracle<T>::error(const VectorFunction<T> &f, int result, T a, T b, T computed) {
  const Big x(a), y(b);
  Big exact;
  f.exact[result](raw(exact), raw(x), raw(y), MPFR_RNDN);
  return error_in_ulp(computed, exact);
}

template <class T>
double quick_error(const Quick<T> &quick, T a, T b, T computed) {
  using Format = std::numeric_limits<T>;
  const auto exact = quick(Wider<T>(a), Wider<T>(b));
  if (std::isnan(computed) || std::isnan(exact))
    return std::isnan(computed) == std::isnan(exact) ? 0 : INFINITY;
  if (std::isinf(computed)) return static_cast<T>(exact) == computed ? 0 : INFINITY;
  int exponent = 0;
  const bool power_of_two =
      std::fabs(std::frexp(exact, &exponent)) == 0.5;  // the exact value may lie below it
  const int place = exact == 0
                        ? Format::min_exponent
                        : std::clamp(exponent - power_of_two, Format::min_exponent, Format::max_exponent);
  return static_cast<double>(std::ldexp(std::fabs(computed - exact), Format::digits - place));
}

template struct Oracle<double>;
template struct Oracle<float>;
template double quick_error(const Quick<double> &, double, double, double);
template double quick_error(const Quick<float> &, float, float, float);

}  // namespace qkr::tests
