// What the accuracy tool and the tests know about each complex function, and about the functions of one
// extended number beneath them.
#pragma once

#include <functional>
#include <qkr/vecmath_complex.h>

#include "tests/support/big.h"
#include "tests/support/measure.h"
#include "tests/support/samples.h"

namespace qkr::tests {

// z and, where the function takes two, w.
struct Operands {
  double x, y, u = 0, v = 0;
};

// Draws inputs of one kind; float functions round them.
using Region = std::function<Operands(Random &random)>;

template <class E>
struct ComplexFunction {
  const char *name;
  Entry<E> entry, low;
  vxm64fc (*scalar)(vxm64fc z, vxm64fc w);
  OneOrTwo<int(mpc_ptr, mpc_srcptr, mpc_rnd_t), int(mpc_ptr, mpc_srcptr, mpc_srcptr, mpc_rnd_t)> exact;
  std::vector<Region> regions;
};

template <class E>
const std::vector<ComplexFunction<E>> &complex_functions();

// Any kind of input, special ones too.
Operands any_operands(Random &random);

// Numbers at which functions have special values or change their ways, of both signs.
const std::vector<double> &notable_numbers();

template <class E>
using PartOf = decltype(E::re);
template <class E>
E rounded_element(double re, double im) {
  return {static_cast<PartOf<E>>(re), static_cast<PartOf<E>>(im)};
}

// The errors of both parts of a computed f(z) or f(z, w).
template <class E>
void note_errors(const ComplexFunction<E> &f, E z, E w, E computed, Errors<E> &errors);

// At `points` samples of a region.
template <class E>
Errors<E> measure(const ComplexFunction<E> &f, const Region &region, int points);

// Of one extended number; of atan2 the first operand is the ordinate.
struct ExtendedFunction {
  const char *name;
  Quick<double> entry;
  Exact exact;
  double bound;
  struct Range {
    long double low, high;
    bool of_exponents = false;  // of both signs, and the exponents are equally likely
    long double centre = 0;
  };
  std::vector<Range> ranges;
};
const std::vector<ExtendedFunction> &extended_functions();

Errors<long double> measure(const ExtendedFunction &f, int points);

}  // namespace qkr::tests
