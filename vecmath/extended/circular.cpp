// Sine, cosine and tangent of one extended number of any size.
#include "vecmath/extended/circular.h"

#include <qkr/vecmath_extended.h>

#include "vecmath/extended/large_reduction.h"

using namespace qkr::sse2;

namespace {

constexpr long double almost_linear = 0x1p-36L;  // sin x and tan x are x up to there

bool is_plain(long double x) { return is_finite(x) && __builtin_fabsl(x) >= almost_linear; }

Circular<double> circular_pair_of(long double x) {
  const auto in_two = split(x);
  return __builtin_fabsl(x) < circular_limit ? circular_pair(in_two) : circular_pair_of(reduce_large(x));
}

// The sine or tangent of what is not plain: a tiny number, an infinity, a NaN.
long double odd_of_special(long double x) {
  if (!is_finite(x)) return x - x;
  return x == 0 ? x : inexact(x);
}
long double cosine_of_special(long double x) {
  if (!is_finite(x)) return x - x;
  return x == 0 ? 1 : inexact(1);
}

}  // namespace

extern "C" {

void _vxmsincosl_scalar(long double x, long double *sine, long double *cosine) {
  if (is_plain(x)) {
    const auto pair = circular_pair_of(x);
    *sine = join(pair.sin), *cosine = join(pair.cos);
  } else {
    *sine = odd_of_special(x), *cosine = cosine_of_special(x);
  }
}

long double _vxmsinl_scalar(long double x) {
  return is_plain(x) ? join(circular_pair_of(x).sin) : odd_of_special(x);
}

long double _vxmcosl_scalar(long double x) {
  return is_plain(x) ? join(circular_pair_of(x).cos) : cosine_of_special(x);
}

long double _vxmtanl_scalar(long double x) {
  if (!is_plain(x)) return odd_of_special(x);
  const auto pair = circular_pair_of(x);
  return join(pair.sin / pair.cos);
}

}  // extern "C"
