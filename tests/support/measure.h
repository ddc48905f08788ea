// The largest and the mean error of a function over many inputs, on all processors.
#pragma once

#include <cmath>

#include "tests/support/vector_functions.h"

namespace qkr::tests {

template <class E>
struct Worst {
  double error = 0;
  E a = {}, b = {};  // where it was found
};

// Of a function over elements E, real or complex.
template <class E>
struct Errors {
  Worst<E> normal;     // of the results that are normal numbers, infinities or NaNs: what a contract bounds
  Worst<E> subnormal;  // of subnormal and zero results, in subnormal spacings
  double sum = 0;
  uint64_t points = 0;  // parts of results, of complex functions
  // The largest difference seen between quick reference and MPFR. Wherever the quick one comes near the
  // largest error MPFR decides, so the largest errors are sound as long as this is small.
  double reference_gap = 0;

  double mean() const { return points ? sum / static_cast<double>(points) : 0; }
  template <class T>
  Worst<E> &worst_beside(T computed) {
    return std::fabs(computed) < std::numeric_limits<T>::min() ? subnormal : normal;
  }
  template <class T>
  void note(T computed, const Worst<E> &found) {
    sum += found.error;
    if (Worst<E> &worst = worst_beside(computed); !(found.error <= worst.error)) worst = found;
  }
  void join(const Errors &other) {
    sum += other.sum;
    points += other.points;
    reference_gap = std::fmax(reference_gap, other.reference_gap);
    if (!(other.normal.error <= normal.error)) normal = other.normal;
    if (!(other.subnormal.error <= subnormal.error)) subnormal = other.subnormal;
  }
};

// What every function promises for results below the normal range.
constexpr double subnormal_bound = 1;

// How far a quick reference may be off.
template <class T>
constexpr double reference_tolerance = sizeof(T) == 8 ? 2e-3 : 1e-6;

// Around every notable point, then `points` samples; the same ones in every run.
template <class T>
Errors<T> measure(const VectorFunction<T> &f, uint64_t points);

// Every float in the range of a function of one input.
Errors<float> measure_all(const VectorFunction<float> &f);

}  // namespace qkr::tests
