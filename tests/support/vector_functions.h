// What the accuracy tool and the tests of results know about each vector function. A new function joins all
// of them by one row in vector_functions.cpp.
#pragma once

#include <limits>
#include <mpfr.h>
#include <stdint.h>
#include <string_view>
#include <type_traits>
#include <vector>

#include "vecmath/frame/contract.h"

namespace qkr::tests {

// What differs between doubles and floats, in a row that serves both.
template <class T, class Double, class Single>
constexpr auto either(Double in_double, Single in_single) {
  if constexpr (sizeof(T) == 8) return in_double;
  else return in_single;
}

// A vector function of one of four shapes over elements T; b is read and q written only where the shape has
// them, and of b only the first where one number serves all elements.
template <class T>
struct Entry {
  void (*unary)(int32_t, const T *, T *) = nullptr;
  void (*binary)(int32_t, const T *, const T *, T *) = nullptr;
  void (*with_number)(int32_t, const T *, T, T *) = nullptr;
  void (*two_results)(int32_t, const T *, T *, T *) = nullptr;

  Entry() = default;
  Entry(void (*f)(int32_t, const T *, T *)) : unary(f) {}
  Entry(void (*f)(int32_t, const T *, const T *, T *)) : binary(f) {}
  Entry(void (*f)(int32_t, const T *, T, T *)) : with_number(f) {}
  Entry(void (*f)(int32_t, const T *, T *, T *)) : two_results(f) {}

  explicit operator bool() const { return unary || binary || with_number || two_results; }
  int inputs() const { return binary || with_number ? 2 : 1; }
  int results() const { return two_results ? 2 : 1; }
  void operator()(int32_t n, const T *a, const T *b, T *r, T *q = nullptr) const {
    if (unary) unary(n, a, r);
    else if (binary) binary(n, a, b, r);
    else if (with_number) with_number(n, a, b[0], r);
    else two_results(n, a, r, q);
  }
};

// A function of one number or of two.
template <class Unary, class Binary>
struct OneOrTwo {
  Unary *unary = nullptr;
  Binary *binary = nullptr;

  OneOrTwo() = default;
  OneOrTwo(Unary *f) : unary(f) {}
  OneOrTwo(Binary *f) : binary(f) {}
  explicit operator bool() const { return unary || binary; }
  template <class Number>
  Number operator()(Number a, Number b) const {
    return binary ? binary(a, b) : unary(a);
  }
  // Into a number of many bits.
  template <class Result, class Number, class Rounding>
  void operator()(Result r, Number a, Number b, Rounding rounding) const {
    if (binary) binary(r, a, b, rounding);
    else unary(r, a, rounding);
  }
};

// The function in MPFR.
using Exact =
    OneOrTwo<int(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t), int(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t)>;

// The function in the C library's next wider format: right to about a thousandth of an ulp of T, and fast.
template <class T>
using Wider = std::conditional_t<sizeof(T) == 8, long double, double>;
template <class T>
using Quick = OneOrTwo<Wider<T>(Wider<T>), Wider<T>(Wider<T>, Wider<T>)>;

template <class T>
struct Range {
  static constexpr T largest = std::numeric_limits<T>::max();
  T low = -largest, high = largest;
};

// Whose rounding and subnormal handling a function computes under.
enum class Rounding { own, callers };

template <class T>
struct VectorFunction {
  const char *name;
  Entry<T> entry, low;    // low: the entry of the lower-accuracy name, where there is one
  Exact exact[2];         // of each result
  Quick<T> quick[2];      // may be left out: then MPFR serves alone
  Range<T> a, b;          // finite inputs with finite results, and some way beyond
  std::vector<T> points;  // inputs where the treatment changes
  T period = 0;           // the treatment also changes at multiples of half of this
  Rounding rounding = Rounding::own;
  const char *reported = name;  // the name that an error record carries
};

// All functions of doubles, of floats.
template <class T>
const std::vector<VectorFunction<T>> &vector_functions();

// Null if there is none of that name.
template <class T>
const VectorFunction<T> *find_function(std::string_view name) {
  for (const auto &f : vector_functions<T>())
    if (name == f.name) return &f;
  return nullptr;
}

// What the function's source promises; null for one that has to round correctly.
const Contract *find_contract(std::string_view name);

// The error that is allowed, in ulp.
double error_bound(std::string_view name);

}  // namespace qkr::tests
