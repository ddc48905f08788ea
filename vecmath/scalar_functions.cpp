// Functions of one number: square roots by table, polynomial and, in double, a Newton step; absolute values.
#include <qkr/vecmath.h>

#include "vecmath/scalar.h"
#include "vecmath/tables/tables.h"

using namespace qkr;

namespace {

uint64_t pattern_of(double x) { return __builtin_bit_cast(uint64_t, x); }
uint32_t pattern_of(float x) { return __builtin_bit_cast(uint32_t, x); }
double double_of(uint64_t pattern) { return __builtin_bit_cast(double, pattern); }
float float_of(uint32_t pattern) { return __builtin_bit_cast(float, pattern); }

// 1 / sqrt(x), then one Newton step and the product with x; Real is double, or x87 extended.
template <class Real>
Real root_of_normal(double x) {
  constexpr double dsqrt_dbSqrt[2] = {1.4142135623730951, 1.0};  // by the parity of the exponent field
  const uint64_t pattern = pattern_of(x);
  const uint32_t high = (uint32_t)(pattern >> 32);
  const uint32_t k = (high & 0xFE000) >> 13, parity = (high & 0x100000) >> 20;
  const Real m = double_of((pattern & 0x000FFFFFFFFFFFFFu) | 0x3FF0000000000000u);
  const Real g = double_of((uint64_t)(0x5FE00000 - ((high >> 1) & 0x7FF00000)) << 32);
  const Real y =
      ((sqrt_double::dsqrt_dwA2[k] * m + sqrt_double::dsqrt_dwA1[k]) * m + sqrt_double::dsqrt_dwA0[k]) * g *
      dsqrt_dbSqrt[parity];
  return ((Real)1.5 + ((Real)-0.5 * x) * y * y) * y * x;
}

// sqrt(x) of an x in the range of floats, by its own polynomial; `roots` are those of 2 and 4 with a scale.
float root_in_single(double x, const double (&roots)[2]) {
  const uint64_t pattern = pattern_of(x);
  const uint32_t k = (pattern >> 46) & 63, exponent = (uint32_t)(pattern >> 52) - 1023 + 127;
  const long double m = double_of((pattern & 0x000FFFFFFFFFFFFFu) | 0x3FF0000000000000u);
  const long double g = float_of(((exponent >> 1) + 63) << 23);
  const long double root = (sqrt_single::dwA2[k] * m + sqrt_single::dwA1[k]) * m + sqrt_single::dwA0[k];
  return (float)(root * roots[exponent & 1] * g);
}

}  // namespace

extern "C" {

static double _vxmdSqrt_Finite(double x) { return root_of_normal<double>(x); }

// The word of a negative number is a NaN with a payload of its own.
static double _vxmdSqrt_Spec(double x) {
  constexpr uint64_t dwInd = 0x7FF8A5A55A5A5A5A;
  if (x < 0) return double_of(dwInd);
  return x != x ? x + x : x;
}

static double _vxmdSqrt_Deno(double x) {
  constexpr double dsqrt_dbScaleUp = 6.696928794914171e+299, dsqrt_dbScaleDown = 1.221974545399842e-150;
  return x == 0 ? x : (double)(root_of_normal<long double>(x * dsqrt_dbScaleUp) * dsqrt_dbScaleDown);
}

double _vxmdsqrt_scalar(double x) {
  const uint32_t high = (uint32_t)(pattern_of(x) >> 32);
  return high < 0x00100000 ? _vxmdSqrt_Deno(x) : high >= 0x7FF00000 ? _vxmdSqrt_Spec(x) : _vxmdSqrt_Finite(x);
}

static float _vxmsSqrt_Spec(float x) { return x < 0 ? float_of(0xFFC00000) : x + x; }

static float _vxmsSqrt_Deno(float x) {
  constexpr double dbScaleUp = 1e+42, dbScaledSqrt[2] = {1.414213562373095e-21, 2e-21};
  return x == 0 ? x : root_in_single(x * dbScaleUp, dbScaledSqrt);
}

float _vxmssqrt_scalar(float x) {
  constexpr double dbSqrt[2] = {1.4142135623730951, 2.0};
  const uint32_t pattern = pattern_of(x);
  if (pattern >= 0x7F800000) return _vxmsSqrt_Spec(x);
  return pattern <= 0x7FFFFF ? _vxmsSqrt_Deno(x) : root_in_single(x, dbSqrt);
}

double _vxm_dabs_scalar(double x) { return double_of(magnitude(pattern_of(x))); }
float _vxm_sabs_scalar(float x) { return float_of(magnitude(pattern_of(x))); }

int32_t dll_cpu_version(void) { return 0; }

}  // extern "C"
