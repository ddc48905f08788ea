// A vector function is its kernel and one row, in which its names stand whole:
//
//   QKR_FUNCTION(_vxmdExp_HA, _vxmdExp_50, double, 0.53, -0x1.6c69c98ccaf31p+0, ExpDouble)
//
// name, lower-accuracy name (which forwards), element, the largest error in ulp and where it was found (see
// contract.h), kernel. A row makes the exported entries, with the choice of level, and the routine for single
// special elements, which only the baseline compiles. Shapes:
//
//   QKR_FUNCTION              r[i] from a[i]
//   QKR_FUNCTION_OF_TWO       r[i] from a[i] and b[i]
//   QKR_FUNCTION_OF_NUMBER    r[i] from a[i] and a number b
//   QKR_FUNCTION_TO_TWO       r1[i] and r2[i] from a[i]
//
// Where the result is the exact one, correctly rounded, QKR_ROUNDED_FUNCTION and QKR_ROUNDED_FUNCTION_OF_TWO
// leave out error and worst input.
#pragma once

#include <qkr/vecmath.h>

#include "simd/entry.h"
#include "vecmath/frame/contract.h"
#include "vecmath/frame/groups.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Passes element i with a status to the error gate.
QKR_INLINE void report(int32_t status, ptrdiff_t i, Arrays<double> v, const char *name) {
  report_error(status, i, v.a, v.b ? v.b : v.a, v.r, v.q ? v.q : v.r, name);
}
QKR_INLINE void report(int32_t status, ptrdiff_t i, Arrays<float> v, const char *name) {
  report_error(status, i, v.a, v.b ? v.b : v.a, v.r, v.q ? v.q : v.r, name);
}

// Element i by itself: the result is stored before the report.
template <class K, class T = typename K::Element>
QKR_INLINE void treat(ptrdiff_t i, Arrays<T> v, const char *name) {
  if constexpr (requires { K::treat(i, v); }) {
    K::treat(i, v);
  } else if constexpr (has_special<K>) {
    const auto outcome = [&]() -> Outcome<T> {
      if constexpr (K::inputs == 1) return K::scalar(v.a[i]);
      else return K::scalar(v.a[i], v.b[i]);
    }();
    v.r[i] = outcome.result;
    if (outcome.status) report(outcome.status, i, v, name);
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
#define QKR_ONLY_BASELINE(...) __VA_ARGS__
#else
#define QKR_ONLY_BASELINE(...)
#endif

// The routine name_alone for special elements.
#define QKR_ALONE(name, T, ...)                \
  namespace qkr::sse2 {                        \
  void name##_alone(ptrdiff_t i, Arrays<T> v); \
  }                                            \
  QKR_ONLY_BASELINE(                           \
      void qkr::sse2::name##_alone(ptrdiff_t i, Arrays<T> v) { treat<__VA_ARGS__>(i, v, #name); })

#define QKR_LOW_NAME(name, low_name, parameters, arguments) \
  QKR_ONLY_BASELINE(extern "C" void low_name parameters { name arguments; })

#define QKR_ROUNDED_FUNCTION(name, low_name, T, ...)                   \
  QKR_ALONE(name, T, __VA_ARGS__)                                      \
  QKR_ENTRY(name, (int32_t n, const T *a, T *r), (n, a, r)) {          \
    run<__VA_ARGS__, sse2::name##_alone>(n, {a, nullptr, r, nullptr}); \
  }                                                                    \
  QKR_LOW_NAME(name, low_name, (int32_t n, const T *a, T *r), (n, a, r))

#define QKR_ROUNDED_FUNCTION_OF_TWO(name, low_name, T, ...)                  \
  QKR_ALONE(name, T, __VA_ARGS__)                                            \
  QKR_ENTRY(name, (int32_t n, const T *a, const T *b, T *r), (n, a, b, r)) { \
    run<__VA_ARGS__, sse2::name##_alone>(n, {a, b, r, nullptr});             \
  }                                                                          \
  QKR_LOW_NAME(name, low_name, (int32_t n, const T *a, const T *b, T *r), (n, a, b, r))

#define QKR_FUNCTION(name, low_name, T, bound, worst, ...) \
  QKR_CONTRACT(name, bound, worst);                        \
  QKR_ROUNDED_FUNCTION(name, low_name, T, __VA_ARGS__)

#define QKR_FUNCTION_OF_TWO(name, low_name, T, bound, worst, ...) \
  QKR_CONTRACT(name, bound, worst);                               \
  QKR_ROUNDED_FUNCTION_OF_TWO(name, low_name, T, __VA_ARGS__)

// The record of a special element finds its second input by index, also where all elements share one.
#define QKR_FUNCTION_OF_NUMBER(name, low_name, T, bound, worst, ...)             \
  QKR_CONTRACT(name, bound, worst);                                              \
  namespace qkr::sse2 {                                                          \
  void name##_alone(ptrdiff_t i, Arrays<T> v);                                   \
  }                                                                              \
  QKR_ONLY_BASELINE(void qkr::sse2::name##_alone(ptrdiff_t i, Arrays<T> v) {     \
    const T *seen_at_i = (const T *)((uintptr_t)v.b - (uintptr_t)i * sizeof(T)); \
    treat<__VA_ARGS__>(i, {v.a, seen_at_i, v.r, v.q}, #name);                    \
  })                                                                             \
  QKR_ENTRY(name, (int32_t n, const T *a, T b, T *r), (n, a, b, r)) {            \
    run<__VA_ARGS__, sse2::name##_alone>(n, {a, &b, r, nullptr});                \
  }                                                                              \
  QKR_LOW_NAME(name, low_name, (int32_t n, const T *a, T b, T *r), (n, a, b, r))

#define QKR_FUNCTION_TO_TWO(name, low_name, T, bound, worst, ...)          \
  QKR_CONTRACT(name, bound, worst);                                        \
  QKR_ALONE(name, T, __VA_ARGS__)                                          \
  QKR_ENTRY(name, (int32_t n, const T *a, T *r1, T *r2), (n, a, r1, r2)) { \
    run<__VA_ARGS__, sse2::name##_alone>(n, {a, nullptr, r1, r2});         \
  }                                                                        \
  QKR_LOW_NAME(name, low_name, (int32_t n, const T *a, T *r1, T *r2), (n, a, r1, r2))
