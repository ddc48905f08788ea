// Real and complex numbers of many bits, over MPFR, for references that are written as formulas.
#pragma once

#include <mpfr.h>
#include <utility>

namespace qkr::tests {

class Big {
 public:
  static constexpr int precision = 320;

  Big() { mpfr_init2(x_, precision), mpfr_set_zero(x_, 1); }
  Big(double x) : Big() { mpfr_set_d(x_, x, MPFR_RNDN); }
  Big(long double x) : Big() { mpfr_set_ld(x_, x, MPFR_RNDN); }
  Big(const Big &other) : Big() { mpfr_set(x_, other.x_, MPFR_RNDN); }
  Big &operator=(const Big &other) { return mpfr_set(x_, other.x_, MPFR_RNDN), *this; }
  ~Big() { mpfr_clear(x_); }

  mpfr_ptr get() { return x_; }
  mpfr_srcptr get() const { return x_; }
  bool negative() const { return mpfr_signbit(x_); }
  bool zero() const { return mpfr_zero_p(x_); }

 private:
  mpfr_t x_;
};

template <auto f>
Big apply(const Big &a) {
  Big r;
  f(r.get(), a.get(), MPFR_RNDN);
  return r;
}
template <auto f>
Big apply(const Big &a, const Big &b) {
  Big r;
  f(r.get(), a.get(), b.get(), MPFR_RNDN);
  return r;
}
inline Big operator+(const Big &a, const Big &b) { return apply<mpfr_add>(a, b); }
inline Big operator-(const Big &a, const Big &b) { return apply<mpfr_sub>(a, b); }
inline Big operator*(const Big &a, const Big &b) { return apply<mpfr_mul>(a, b); }
inline Big operator/(const Big &a, const Big &b) { return apply<mpfr_div>(a, b); }
inline Big operator-(const Big &a) { return apply<mpfr_neg>(a); }
inline bool operator<(const Big &a, const Big &b) { return mpfr_less_p(a.get(), b.get()); }
inline Big abs(const Big &a) { return apply<mpfr_abs>(a); }
inline Big sqrt(const Big &a) { return apply<mpfr_sqrt>(a); }
inline Big square(const Big &a) { return apply<mpfr_sqr>(a); }
inline Big with_sign_of(const Big &sign, const Big &a) { return sign.negative() ? -a : a; }

struct BigComplex {
  Big re, im;
};

// The error of a computed result in units in the last place of the exact one, of `digits` bits and exponents
// from `least` on. Infinite for anything but a number near it, except an infinity where it rounds to one.
double error_in_ulp(long double computed, const Big &exact, int digits, int least, int most);
template <class T>
double error_in_ulp(T computed, const Big &exact);

}  // namespace qkr::tests
