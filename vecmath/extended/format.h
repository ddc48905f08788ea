// The extended format: 64 bits of mantissa, the leading one included, and an exponent biased by 16383.
// Between it and two doubles: a number splits without loss as long as a double holds its exponent, and two
// doubles join by one addition, the only one that rounds.
#pragma once

#include "vecmath/extended/double_double.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct ExtendedFields {
  uint64_t mantissa;
  uint16_t sign_and_exponent;
};
union Extended {
  long double value;
  ExtendedFields fields;
};

QKR_INLINE ExtendedFields fields_of(long double x) {
  Extended e;
  e.value = x;
  return e.fields;
}
QKR_INLINE long double extended(uint64_t mantissa, int sign_and_exponent) {
  Extended e;
  e.fields = {mantissa, (uint16_t)sign_and_exponent};
  return e.value;
}

constexpr int extended_bias = 16383, extended_infinity = 0x7FFF;

QKR_INLINE int biased_exponent(long double x) { return fields_of(x).sign_and_exponent & 0x7FFF; }
QKR_INLINE bool is_negative(long double x) { return fields_of(x).sign_and_exponent >> 15; }
QKR_INLINE bool is_finite(long double x) { return biased_exponent(x) != extended_infinity; }

// 2^k, if it is a normal number.
QKR_INLINE long double power_of_two(int k) { return extended((uint64_t)1 << 63, k + extended_bias); }

// x 2^k, rounded once, for 1/2 <= |x| <= 2 and k from -16500 to 16384.
QKR_INLINE long double times_power_of_two(long double x, int k) {
  const int first = k / 2;
  return x * power_of_two(first) * power_of_two(k - first);
}

// x = m 2^exponent with 1 <= |m| < 2, x finite and not zero.
struct Normalized {
  long double m;
  int exponent;
};
QKR_INLINE Normalized normalized(long double x) {
  const bool is_subnormal = biased_exponent(x) == 0;
  const ExtendedFields f = fields_of(is_subnormal ? x * 0x1p64L : x);
  const int exponent = (f.sign_and_exponent & 0x7FFF) - extended_bias;
  return {extended(f.mantissa, (f.sign_and_exponent & 0x8000) | extended_bias),
          is_subnormal ? exponent - 64 : exponent};
}

QKR_INLINE DoubleDouble<double> split(long double x) {
  const double hi = (double)x;
  return {hi, (double)(x - hi)};
}
QKR_INLINE long double join(DoubleDouble<double> x) { return (long double)x.hi + x.lo; }

// Keeps a value from the compiler's knowledge, where an operation on it must happen for its event.
QKR_INLINE long double at_run_time(long double x) {
  asm volatile("" : "+t"(x));
  return x;
}
// A result beyond the format, or too small for it, with the event.
QKR_INLINE long double overflow(bool negative) {
  const long double huge = at_run_time(0x1p16383L);
  return (negative ? -huge : huge) * huge;
}
QKR_INLINE long double underflow() {
  const long double tiny = at_run_time(0x1p-16382L);
  return tiny * tiny;
}
// x, and the event of an inexact result.
QKR_INLINE long double inexact(long double x) {
  at_run_time(at_run_time(1.0L) + 0x1p-16000L);
  return x;
}
QKR_INLINE long double invalid() { return at_run_time(0.0L) / at_run_time(0.0L); }

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
