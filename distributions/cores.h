// The formulas of vector functions, for loops that put several of them together, and for single numbers:
// they give the bits of the functions themselves. V is a vector of T or T.
#pragma once

#include "distributions/internal.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/circular/circular_single.h"
#include "vecmath/real/circular/sine_double.h"
#include "vecmath/real/logarithm/natural_double.h"
#include "vecmath/real/logarithm/natural_single.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// ln: of positive normal numbers; sines and cosines: of angles within a turn.
template <class T>
struct Cores;
template <>
struct Cores<double> {
  template <class V>
  QKR_INLINE static V ln(V x) {
    const Pair<V> log = logarithm_sum<NaturalDouble>(x);
    return log.second + log.first;
  }
  template <class V>
  QKR_INLINE static V sine(V x) {
    return sine_or_cosine<0>(x);
  }
  template <class V>
  QKR_INLINE static Pair<V> sine_and_cosine_of(V x) {
    return sine_and_cosine(x);
  }
};
template <>
struct Cores<float> {
  template <class V>
  QKR_INLINE static V ln(V x) {
    return NaturalSingle::logarithm(x, 0.0f);
  }
  template <class V>
  QKR_INLINE static V sine(V x) {
    return sine_of_single(x, x, 0.0);
  }
  template <class V>
  QKR_INLINE static Pair<V> sine_and_cosine_of(V x) {
    return sine_and_cosine_of_single(x);
  }
};

// Whether the caller's floating-point environment is the one that vector functions set: they need not be
// called for its sake.
QKR_INLINE bool environment_is_default() { return !(_mm_getcsr() & SseEnvironment::controls); }

// Of a uniform number: not 0, whose logarithm is the floor.
template <class T>
QKR_INLINE bool has_logarithm(T u) {
  return u >= smallest_normal<T> && u <= T(1);
}

// The logarithm of one number, of 0 the floor.
template <class T>
QKR_NOINLINE T ln_by_function(T x) {
  with_finite_logarithms<T, ActsOn::singularities>([&] {
    Precision<T>::ln(1, &x, &x);
    return VXS_STATUS_OK;
  });
  return x;
}
template <class T>
QKR_INLINE T finite_ln(T x) {
  return x >= smallest_normal<T> && x <= largest<T> ? Cores<T>::ln(x) : ln_by_function(x);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
