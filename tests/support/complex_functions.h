// What the accuracy tool and the tests know about each complex function, and about the functions of one
// extended number beneath them.
#pragma once

#include <qkr/vecmath_complex.h>
#include <vector>

#include "tests/support/big.h"
#include "tests/support/samples.h"

namespace qkr::tests {

// z and, where the function takes two, w.
struct Operands {
  double x, y, u = 0, v = 0;
};

// Inputs of one kind; float functions round them.
struct Region {
  const char *name;
  Operands (*unturned)(Random &random);
  bool turned = false;  // the parts of z in each other's place

  Operands draw(Random &random) const {
    const Operands z = unturned(random);
    return turned ? Operands{z.y, z.x, z.u, z.v} : z;
  }
};

template <class E>
using ComplexEntry = Entry<E>;

template <class E>
struct ComplexFunction {
  const char *name;
  ComplexEntry<E> entry, low;
  vxm64fc (*scalar)(const Operands &);
  BigComplex (*exact)(const Operands &);
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

struct ComplexWorst {
  double error = 0;
  Operands at = {};
};
struct ComplexErrors {
  ComplexWorst normal, subnormal;  // results below the normal range in subnormal spacings
  double sum = 0;
  uint64_t parts = 0, wrongly_rounded = 0;
};
// Both parts at `points` samples of a region.
template <class E>
ComplexErrors measure(const ComplexFunction<E> &f, const Region &region, int points, bool scalar = false);

// Of one extended number; of atan2 the first operand is the ordinate.
struct ExtendedFunction {
  const char *name;
  long double (*unary)(long double);
  long double (*binary)(long double, long double);
  Big (*exact)(const Big &a, const Big &b);
  double bound;
  struct Range {
    long double low, high;
    bool of_exponents;  // of both signs, and the exponents are equally likely
    long double centre = 0;
  };
  std::vector<Range> ranges;
};
const std::vector<ExtendedFunction> &extended_functions();

struct ExtendedErrors {
  double error = 0;
  long double a = 0, b = 0;
};
ExtendedErrors measure(const ExtendedFunction &f, int points);

}  // namespace qkr::tests
