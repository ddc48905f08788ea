#include "tests/vecmath/complex_special_values.h"

#include <map>

#include "tests/vecmath/special_values.h"

namespace qkr::tests {
namespace {

// "x y = re im", the events that must be raised, and "alone" where the rows of the other signs do not follow.
// Exp to Ln follow this library's own tables, the others C99's Annex G, rows of negative y by symmetry.
constexpr char table[] = R"(
Exp: 0 0 = 1 0; -0 0 = 1 0; 1000 0 = inf 0 overflow; -1000 0 = 0 0 underflow; inf 0 = inf 0; -inf 0 = 0 0;
    nan 0 = nan 0; 3000 1 = inf inf overflow; 3000 2 = -inf inf overflow; 3000 smallest = inf inf overflow;
    -3000 1 = 0 0 underflow; -3000 2 = -0 0 underflow; -3000 4 = -0 -0 underflow;
    -3000 smallest = 0 0 underflow; 1000 2 = -inf inf overflow; -1000 2 = -0 0 underflow;
    0 smallest = 1 smallest underflow; 0 1 = 0.54030230586813977 0.84147098480789651; inf 1 = inf inf;
    inf 2 = -inf inf; inf 4 = -inf -inf; inf smallest = inf inf; -inf 1 = 0 0; -inf 2 = -0 0;
    -inf smallest = 0 0; nan 1 = nan nan; 1 inf = nan nan invalid; 0 inf = nan nan invalid;
    3000 inf = nan nan invalid; 1 nan = nan nan; -inf inf = 0 0; -inf nan = 0 0 alone;
    inf inf = inf nan invalid; inf nan = inf nan; nan inf = nan nan; nan nan = nan nan
Cosh: 0 0 = 1 0; -0 0 = 1 -0; -1 0 = 1.5430806348152437 -0; 1000 0 = inf 0 overflow;
    3000 0 = inf 0 overflow; inf 0 = inf 0; -inf 0 = inf -0; nan 0 = nan 0; 3000 1 = inf inf overflow;
    3000 2 = -inf inf overflow; -3000 2 = -inf -inf overflow; 3000 smallest = inf inf overflow;
    0 1 = 0.54030230586813977 0 inexact; -0 1 = 0.54030230586813977 -0 inexact;
    0 4 = -0.65364362086361194 -0 inexact; 0 smallest = 1 0 inexact; -0 smallest = 1 -0 inexact;
    inf 0.5 = inf inf; -inf 0.5 = inf -inf; inf 2 = -inf inf; -inf 4 = -inf inf; nan 1 = nan nan;
    1 inf = nan nan invalid; 1 nan = nan nan; 0 inf = nan 0 invalid; -0 inf = nan -0 invalid;
    0 nan = nan 0 alone; -0 nan = nan 0 alone; inf inf = inf nan invalid; -inf nan = inf nan;
    nan inf = nan nan invalid; nan nan = nan nan
Sinh: 0 0 = 0 0; -0 0 = -0 0; 1 0 = 1.1752011936438014 0; 3000 0 = inf 0 overflow; -inf 0 = -inf 0;
    nan 0 = nan 0; 3000 1 = inf inf overflow; -3000 2 = inf inf overflow; 3000 smallest = inf inf overflow;
    0 1 = 0 0.84147098480789651 inexact; -0 2 = 0 0.90929742682568170 inexact;
    0 smallest = 0 smallest inexact underflow; inf 0.5 = inf inf; -inf 0.5 = -inf inf; inf 2 = -inf inf;
    -inf 4 = inf -inf; nan 1 = nan nan; 1 inf = nan nan invalid; 1 nan = nan nan; 0 inf = 0 nan invalid;
    -0 nan = -0 nan; -inf inf = -inf nan invalid; inf nan = inf nan; nan inf = nan nan invalid;
    nan nan = nan nan
Tanh: 0 0 = 0 0; -0 0 = -0 0; 600 0 = 1 0 inexact; -600 0 = -1 0 inexact; 600 smallest = 1 0 underflow;
    600 1 = 1 0 underflow; 600 2 = 1 -0 underflow; -600 4 = -1 0 underflow; 0 1 = 0 1.5574077246549022;
    -0 2 = -0 -2.1850398632615190; 0 smallest = 0 smallest underflow; 1 inf = nan nan invalid;
    0 inf = nan nan invalid; 1 nan = nan nan; 0 nan = nan nan; inf 0 = 1 0; -inf smallest = -1 0;
    inf 0.5 = 1 0; inf 2 = 1 -0; -inf 4 = -1 0; -inf inf = -1 0; inf nan = 1 0 alone; nan 0 = nan 0;
    nan 1 = nan nan; nan inf = nan nan; nan nan = nan nan
Sqrt: 1 inf = inf inf; nan inf = inf inf; -inf inf = inf inf; inf inf = inf inf; -inf nan = nan inf alone;
    inf nan = inf nan; nan 1 = nan nan; nan 0 = nan nan; 1 nan = nan nan; nan nan = nan nan; -inf 1 = 0 inf;
    -inf 0 = 0 inf; inf 1 = inf 0; inf 0 = inf 0; -4 0 = 0 2; 4 0 = 2 0; 0 0 = 0 0; -0 0 = 0 0; 0 8 = 2 2;
    -0 8 = 2 2; -1 0x1p-1030 = 0x1p-1031 1 underflow;
    largest largest = 0x1.19435caffa9f8p+512 0x1.d203138f6c827p+510
Ln: 0 0 = -inf 0 by-zero; -0 0 = -inf pi by-zero; 1 0 = 0 0; -1 0 = 0 pi;
    0.6 0.8 = 0x1.999999999999ap-56 0.92729521800161219; 1 smallest = 0 smallest underflow; inf 1 = inf 0;
    -inf 1 = inf pi; inf inf = inf pi/4; -inf inf = inf 3pi/4; 1 inf = inf pi/2; nan 1 = nan nan;
    nan nan = nan nan; nan inf = inf nan; 1 nan = nan nan; -inf nan = inf nan
Log10: 0 0 = -inf 0 by-zero; 100 0 = 2 0; -inf inf = inf 1.023282265381381; nan inf = inf nan
Acos: 0 0 = pi/2 -0; -0 0 = pi/2 -0; 1 0 = 0 -0; -1 0 = pi -0; 2 0 = 0 -1.3169578969248166;
    0 nan = pi/2 nan; 1 inf = pi/2 -inf; 1 nan = nan nan; -inf 1 = pi -inf; inf 1 = 0 -inf;
    -inf inf = 3pi/4 -inf; inf inf = pi/4 -inf; inf nan = nan inf alone; nan 1 = nan nan;
    nan inf = nan -inf; nan nan = nan nan
Acosh: 0 0 = 0 pi/2; 0.5 0 = 0 1.0471975511965979; 1 inf = inf pi/2; -inf 1 = inf pi; inf 1 = inf 0;
    -inf inf = inf 3pi/4; inf inf = inf pi/4; -inf nan = inf nan; nan inf = inf nan; nan 1 = nan nan
Asinh: 0 0 = 0 0; -0 0 = -0 0; 0 2 = 1.3169578969248166 pi/2; -0 2 = -1.3169578969248166 pi/2;
    1 inf = inf pi/2; 1 nan = nan nan; inf 1 = inf 0; -inf inf = -inf pi/4; inf nan = inf nan;
    nan 0 = nan 0; nan 1 = nan nan; nan inf = inf nan; nan nan = nan nan
Asin: 2 0 = pi/2 1.3169578969248166; -2 0 = -pi/2 1.3169578969248166; 1 inf = 0 inf; inf inf = pi/4 inf;
    0 nan = 0 nan
Atanh: 0 0 = 0 0; -0 0 = -0 0; 0 nan = 0 nan; 1 0 = inf 0 by-zero; -1 0 = -inf 0 by-zero;
    2 0 = 0.54930614433405485 pi/2; 1 inf = 0 pi/2; 1 nan = nan nan; inf 1 = 0 pi/2; -inf inf = -0 pi/2;
    inf nan = 0 nan; nan 1 = nan nan; nan inf = 0 pi/2; nan nan = nan nan
Atan: 0 1 = 0 inf by-zero; 0 2 = pi/2 0.54930614433405485; -0 2 = -pi/2 0.54930614433405485; inf 1 = pi/2 0
Cos: 0 nan = nan 0 alone; inf 0 = nan -0 invalid; 1 inf = inf -inf
Sin: inf 0 = nan 0 invalid; 1 3000 = inf inf overflow; -0 0 = -0 0
Tan: 1 600 = 0 1 underflow; inf 1 = nan nan invalid
)";

}  // namespace

std::vector<ComplexSpecial> complex_special_values() {
  static const std::map<std::string, int> events = {{"invalid", FE_INVALID},
                                                    {"by-zero", FE_DIVBYZERO},
                                                    {"overflow", FE_OVERFLOW},
                                                    {"underflow", FE_UNDERFLOW},
                                                    {"inexact", FE_INEXACT}};
  std::vector<ComplexSpecial> all;
  for_each_row(table, [&](const std::string &function, std::istream &text) {
    std::string x, y, equals, re, im, word;
    text >> x >> y >> equals >> re >> im;
    const auto number = value_of<double>;
    ComplexSpecial row = {function, number(x), number(y), number(re), number(im)};
    while (text >> word)
      if (word == "alone") row.mirrored = false;
      else row.events |= events.at(word);
    all.push_back(row);
  });
  return all;
}

}  // namespace qkr::tests
