#include "tests/support/oracle.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string.h>

namespace qkr::tests {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// The exponent of the unit in the last place of T for a number in [2^e, 2^(e + 1)).
template <class T>
constexpr int ulp_exponent(int e) {
  using Format = std::numeric_limits<T>;
  return std::clamp(e, Format::min_exponent - 1, Format::max_exponent - 1) - (Format::digits - 1);
}

// From here on numbers round to infinity.
template <class T>
constexpr Wider<T> overflow_from =
    Wider<T>(std::numeric_limits<T>::max()) + Wider<T>(std::numeric_limits<T>::max()) *
                                                  std::numeric_limits<T>::epsilon() / 4;

// The exponent of a number, and one less for a power of two: the exact value may lie below it.
int lower_exponent(double x) {
  const uint64_t pattern = std::bit_cast<uint64_t>(x);
  const int exponent = static_cast<int>(pattern >> 52 & 0x7FF) - 1023;
  return pattern << 12 ? exponent : exponent - 1;
}
int lower_exponent(long double x) {
  uint64_t fraction;
  uint16_t head;
  memcpy(&fraction, &x, sizeof fraction);
  memcpy(&head, reinterpret_cast<const char *>(&x) + sizeof fraction, sizeof head);
  const int exponent = (head & 0x7FFF) - 16383;
  return fraction << 1 ? exponent : exponent - 1;
}

// 2^-k for the ulp exponents k of T.
template <class T>
struct InverseUlps {
  static constexpr int first = ulp_exponent<T>(-100000), last = ulp_exponent<T>(100000);
  Wider<T> of[last - first + 1];
  InverseUlps() {
    for (int k = first; k <= last; ++k) of[k - first] = std::ldexp(Wider<T>(1), -k);
  }
};
template <class T>
const InverseUlps<T> inverse_ulps;

}  // namespace

template <class T>
Oracle<T>::Oracle() {
  constexpr int precision = 128;
  for (mpfr_ptr number : {x_, y_, exact_, largest_}) mpfr_init2(number, precision);
  mpfr_set_ld(largest_, overflow_from<T>, MPFR_RNDN);
}

template <class T>
Oracle<T>::~Oracle() {
  for (mpfr_ptr number : {x_, y_, exact_, largest_}) mpfr_clear(number);
  mpfr_free_cache2(MPFR_FREE_LOCAL_CACHE);
}

template <class T>
double Oracle<T>::error(const VectorFunction<T> &f, int result, T a, T b, T computed) {
  mpfr_set_d(x_, a, MPFR_RNDN);
  if (const Exact &exact = f.exact[result]; exact.binary) {
    mpfr_set_d(y_, b, MPFR_RNDN);
    exact.binary(exact_, x_, y_, MPFR_RNDN);
  } else {
    exact.unary(exact_, x_, MPFR_RNDN);
  }
  if (std::isnan(computed) || mpfr_nan_p(exact_))
    return std::isnan(computed) && mpfr_nan_p(exact_) ? 0 : infinity;
  if (std::isinf(computed)) {
    const bool right = mpfr_cmpabs(exact_, largest_) >= 0 && (mpfr_sgn(exact_) < 0) == (computed < 0);
    return right ? 0 : infinity;
  }
  if (mpfr_inf_p(exact_)) return infinity;
  const int e = mpfr_zero_p(exact_) ? std::numeric_limits<T>::min_exponent - 1 : mpfr_get_exp(exact_) - 1;
  mpfr_sub_d(exact_, exact_, computed, MPFR_RNDN);
  mpfr_mul_2si(exact_, exact_, -ulp_exponent<T>(e), MPFR_RNDN);
  return std::fabs(mpfr_get_d(exact_, MPFR_RNDN));
}

template <class T>
double quick_error(const Quick<T> &quick, T a, T b, T computed) {
  const Wider<T> exact = quick.binary ? quick.binary(a, b) : quick.unary(a);
  if (std::isnan(computed) || std::isnan(exact))
    return std::isnan(computed) && std::isnan(exact) ? 0 : infinity;
  if (std::isinf(computed))
    return std::fabs(exact) >= overflow_from<T> && computed == std::copysign(infinity, exact) ? 0 : infinity;
  const int k = ulp_exponent<T>(lower_exponent(exact));
  return static_cast<double>(std::fabs(computed - exact) * inverse_ulps<T>.of[k - InverseUlps<T>::first]);
}

template class Oracle<double>;
template class Oracle<float>;
template double quick_error(const Quick<double> &, double, double, double);
template double quick_error(const Quick<float> &, float, float, float);

}  // namespace qkr::tests
