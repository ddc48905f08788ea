#include "tests/support/oracle.h"

#include <algorithm>
#include <cmath>

namespace qkr::tests {

template <class T>
Oracle<T>::Oracle() {
  for (Big *number : {&a_, &b_, &exact_}) mpfr_set_prec(number->get(), 128);
}

template <class T>
double Oracle<T>::error(const VectorFunction<T> &f, int result, T a, T b, T computed) {
  mpfr_set_d(a_.get(), a, MPFR_RNDN);
  mpfr_set_d(b_.get(), b, MPFR_RNDN);
  const Exact &exact = f.exact[result];
  if (exact.binary) exact.binary(exact_.get(), a_.get(), b_.get(), MPFR_RNDN);
  else exact.unary(exact_.get(), a_.get(), MPFR_RNDN);
  return std::isnan(computed) && mpfr_nan_p(exact_.get()) ? 0 : error_in_ulp(computed, exact_);
}

template <class T>
double quick_error(const Quick<T> &quick, T a, T b, T computed) {
  using Format = std::numeric_limits<T>;
  const Wider<T> exact = quick.binary ? quick.binary(a, b) : quick.unary(a);
  if (std::isnan(computed) && std::isnan(exact)) return 0;
  if (std::isnan(computed) || std::isnan(exact)) return INFINITY;
  if (std::isinf(computed)) return static_cast<T>(exact) == computed ? 0 : INFINITY;
  int exponent = 0;
  const bool power_of_two =
      std::fabs(std::frexp(exact, &exponent)) == 0.5;  // the exact value may lie below it
  if (exact == 0) exponent = Format::min_exponent;
  const int place = std::clamp(exponent - power_of_two, Format::min_exponent, Format::max_exponent);
  return static_cast<double>(std::ldexp(std::fabs(computed - exact), Format::digits - place));
}

template class Oracle<double>;
template class Oracle<float>;
template double quick_error(const Quick<double> &, double, double, double);
template double quick_error(const Quick<float> &, float, float, float);

}  // namespace qkr::tests
