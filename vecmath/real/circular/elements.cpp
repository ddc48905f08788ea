// The per-element routines of the circular functions: an infinity is reported, anything else goes to a scalar
// core.
#include "vecmath/errors/gate.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/circular/cores.h"

using namespace qkr;

namespace {

constexpr uint64_t indefinite_double = 0xFFF8000000000000;
constexpr uint32_t indefinite_single = 0xFFC00000;

uint32_t high_word_magnitude(double x) {
  return (uint32_t)(__builtin_bit_cast(uint64_t, x) >> 32) & 0x7FFFFFFF;
}

void report(int32_t i, const double *a, double *r1, double *r2, const char *name) {
  report_error(1, i, a, a, r1, r2, name);
}
void report(int32_t i, const float *a, float *r1, float *r2, const char *name) {
  report_error(1, i, a, a, r1, r2, name);
}

// Stores core(a[i]) by way of `store`; r1 and r2 are the results in the record of a report.
template <class Store>
void element(int32_t i, const double *a, double *r1, double *r2, const char *name, Store store) {
  const uint32_t magnitude = high_word_magnitude(a[i]);
  if (magnitude < 0x7FF00000) return store(a[i]);
  r1[i] = r2[i] = __builtin_bit_cast(double, indefinite_double);
  if (magnitude == 0x7FF00000) report(i, a, r1, r2, name);
}
template <class Store>
void element(int32_t i, const float *a, float *r1, float *r2, const char *name, Store store) {
  if (__builtin_fabsf(a[i]) != infinity_single) return store(a[i]);
  r1[i] = r2[i] = __builtin_bit_cast(float, indefinite_single);
  report(i, a, r1, r2, name);
}

}  // namespace

#define QKR_ONE_RESULT(letter, T, function, core)                                                            \
  extern "C" void _vxm##letter##function##_SC(int32_t i, const T *a, T *r, const void *, const char *name) { \
    element(i, a, r, r, name, [&](double x) { r[i] = (T)core(x); });                                         \
  }                                                                                                          \
  QKR_ENTRY_POINTS(letter, T, function, _HA)                                                                 \
  QKR_ENTRY_POINTS(letter, T, function, _LA)                                                                 \
  QKR_ENTRY_POINTS(letter, T, function, _A11)
#define QKR_ENTRY_POINTS(letter, T, function, suffix)                                \
  extern "C" void _vxm##letter##function##_SC##suffix(int32_t i, const T *a, T *r) { \
    _vxm##letter##function##_SC(i, a, r, nullptr, #letter #function #suffix);        \
  }

// A tangent argument whose high word is 0 is returned as it is.
static double tangent(double x) { return high_word_magnitude(x) == 0 ? x : tangent_of_any(x); }

QKR_ONE_RESULT(d, double, Sin, sine_of_any)
QKR_ONE_RESULT(d, double, Cos, cosine_of_any)
QKR_ONE_RESULT(d, double, Tan, tangent)
QKR_ONE_RESULT(s, float, Sin, sine_of_any)
QKR_ONE_RESULT(s, float, Cos, cosine_of_any)
QKR_ONE_RESULT(s, float, Tan, tangent)

#define QKR_SINCOS(letter, T)                                                                      \
  extern "C" void _vxm##letter##SinCos_SC(int32_t i, const T *a, T *r1, T *r2, const char *name) { \
    element(i, a, r1, r2, name, [&](double x) {                                                    \
      double sine, cosine;                                                                         \
      sine_and_cosine_of_any(x, &sine, &cosine);                                                   \
      r1[i] = (T)sine, r2[i] = (T)cosine;                                                          \
    });                                                                                            \
  }                                                                                                \
  QKR_SINCOS_ENTRY_POINTS(letter, T, _HA)                                                          \
  QKR_SINCOS_ENTRY_POINTS(letter, T, _LA)                                                          \
  QKR_SINCOS_ENTRY_POINTS(letter, T, _A11)
#define QKR_SINCOS_ENTRY_POINTS(letter, T, suffix)                                       \
  extern "C" void _vxm##letter##SinCos_SC##suffix(int32_t i, const T *a, T *r1, T *r2) { \
    _vxm##letter##SinCos_SC(i, a, r1, r2, #letter "SinCos" #suffix);                     \
  }
QKR_SINCOS(d, double)
QKR_SINCOS(s, float)
