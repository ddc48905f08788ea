#include "tests/support/big.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qkr::tests {

double error_in_ulp(long double computed, const Big &exact, int digits, int least, int most) {
  if (std::isnan(computed)) return INFINITY;
  if (exact.zero()) return computed == 0 ? 0 : INFINITY;
  if (!mpfr_number_p(exact.get())) return computed == mpfr_get_d(exact.get(), MPFR_RNDN) ? 0 : INFINITY;
  Big work;
  if (std::isinf(computed)) {
    mpfr_set_prec(work.get(), digits);
    mpfr_set(work.get(), exact.get(), MPFR_RNDN);
    return mpfr_get_exp(work.get()) > most && std::signbit(computed) == exact.negative() ? 0 : INFINITY;
  }
  mpfr_set_ld(work.get(), computed, MPFR_RNDN);
  mpfr_sub(work.get(), work.get(), exact.get(), MPFR_RNDN);
  const auto exponent = std::clamp<long>(mpfr_get_exp(exact.get()), least, most);
  mpfr_mul_2si(work.get(), work.get(), digits - exponent, MPFR_RNDN);
  return std::fabs(mpfr_get_d(work.get(), MPFR_RNDN));
}
template <class T>
double error_in_ulp(T computed, const Big &exact) {
  using Format = std::numeric_limits<T>;
  return error_in_ulp(computed, exact, Format::digits, Format::min_exponent, Format::max_exponent);
}
template double error_in_ulp(double, const Big &);
template double error_in_ulp(float, const Big &);
template double error_in_ulp(long double, const Big &);

}  // namespace qkr::tests
