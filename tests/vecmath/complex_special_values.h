// Values of the complex functions that are settled case by case, as data.
#pragma once

#include <cfenv>
#include <string>
#include <vector>

namespace qkr::tests {

// A NaN stands for any NaN, zeros and infinities for their sign too, other numbers for what rounds to them.
struct ComplexSpecial {
  std::string function;  // Exp
  double x, y, re, im;
  int events = 0;        // that must be raised
  bool mirrored = true;  // the rows of the other signs follow: f(conj z) = conj f(z)
};

std::vector<ComplexSpecial> complex_special_values();

}  // namespace qkr::tests
