// Logarithms of one extended number.
#include "vecmath/extended/logarithm.h"

#include <qkr/vecmath_extended.h>

#include "vecmath/extended/format.h"

using namespace qkr::sse2;

namespace {

long double logarithm_of_zero() { return -1 / at_run_time(0.0L); }

// Of a positive finite number.
long double logarithm_of(long double x) {
  const auto [m, e] = normalized(x);
  auto reduced = reduce_logarithm(split(m));
  const auto base = two_sum(e * ln2_hi, reduced.base_hi);
  reduced.base_hi = base.hi, reduced.base_lo += base.lo + e * ln2_lo;
  return join(finish_logarithm(reduced));
}

}  // namespace

extern "C" {

long double _vxmlogl_scalar(long double x) {
  if (x != x) return x + x;
  if (x == 0) return logarithm_of_zero();
  if (x < 0) return invalid();
  return is_finite(x) ? logarithm_of(x) : x;
}

long double _vxmlog1pl_scalar(long double x) {
  constexpr long double almost_linear = 0x1p-70L, one_is_nothing = 0x1p70L;
  if (x != x) return x + x;
  if (x == -1) return logarithm_of_zero();
  if (x < -1) return invalid();
  if (!is_finite(x)) return x;
  if (__builtin_fabsl(x) < almost_linear) return x == 0 ? x : inexact(x);
  return x > one_is_nothing ? logarithm_of(x) : join(logarithm_of_one_more(split(x)));
}

}  // extern "C"
