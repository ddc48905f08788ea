// Functions of one number: square roots by table, polynomial and, in double, a Newton step; absolute values.
#include <qkr/vecmath.h>

#include "simd/vectors.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/root_by_table.h"

using namespace qkr;
using sse2::bits, sse2::real;

namespace {

// sqrt(x) of an x in the range of floats, by its own polynomial; `roots` are those of 2 and 4 with a scale.
float root_in_single(double x, const double (&roots)[2]) {
  const uint64_t pattern = bits(x);
  const uint32_t k = (pattern >> 46) & 63, exponent = (uint32_t)(pattern >> 52) - 1023 + 127;
  const long double m = real((pattern & 0x000FFFFFFFFFFFFFu) | 0x3FF0000000000000u);
  const long double g = real(((exponent >> 1) + 63) << 23);
  const long double root = (sqrt_single::A2[k] * m + sqrt_single::A1[k]) * m + sqrt_single::A0[k];
  return (float)(root * roots[exponent & 1] * g);
}

// A negative number gives a NaN with a payload of its own.
double root_of_special(double x) {
  constexpr uint64_t of_negative = 0x7FF8A5A55A5A5A5A;
  if (x < 0) return real(of_negative);
  return x != x ? x + x : x;
}
float root_of_special(float x) { return x < 0 ? indefinite<float>() : x + x; }

double root_of_subnormal(double x) {
  constexpr double scale = 6.696928794914171e+299, root_of_scale = 1.221974545399842e-150;
  return x == 0 ? x : (double)(root_by_table<long double>(x * scale) * root_of_scale);
}
float root_of_subnormal(float x) {
  constexpr double scale = 1e+42, scaled_root_by_parity[2] = {1.414213562373095e-21, 2e-21};
  return x == 0 ? x : root_in_single(x * scale, scaled_root_by_parity);
}

}  // namespace

extern "C" {

double _vxmdsqrt_scalar(double x) {
  const uint32_t high = (uint32_t)(bits(x) >> 32);
  if (high >= 0x7FF00000) return root_of_special(x);
  return high < 0x00100000 ? root_of_subnormal(x) : root_by_table<double>(x);
}

float _vxmssqrt_scalar(float x) {
  constexpr double root_by_parity[2] = {1.4142135623730951, 2.0};
  const uint32_t pattern = bits(x);
  if (pattern >= 0x7F800000) return root_of_special(x);
  return pattern <= 0x7FFFFF ? root_of_subnormal(x) : root_in_single(x, root_by_parity);
}

double _vxm_dabs_scalar(double x) { return real(magnitude(bits(x))); }
float _vxm_sabs_scalar(float x) { return real(magnitude(bits(x))); }

int32_t dll_cpu_version(void) { return 0; }

}  // extern "C"
