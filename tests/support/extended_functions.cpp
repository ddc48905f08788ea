#include <cfloat>
#include <cmath>
#include <qkr/vecmath_extended.h>

#include "tests/support/complex_functions.h"

namespace qkr::tests {
namespace {

// The sine, or the other, of a function that makes both.
template <auto both, bool first>
long double one_of(long double x) {
  long double s, c;
  both(x, &s, &c);
  return first ? s : c;
}
template <auto f>
long double of_magnitude(long double x) {
  return f(__builtin_fabsl(x));
}
template <auto f>
int exact_of_magnitude(mpfr_ptr r, mpfr_srcptr a, mpfr_rnd_t rounding) {
  mpfr_abs(r, a, rounding);
  return f(r, r, rounding);
}

}  // namespace

const std::vector<ExtendedFunction> &extended_functions() {
  using Ranges = std::vector<ExtendedFunction::Range>;
  const Ranges circular = {{-100, 100}, {-4200, 4200}, {-70, 1, true}, {12, 16383, true}};
  const Ranges growing = {{-2, 2}, {-50, 50}, {-11356, 11356}, {-60, 0, true}};
  const Ranges of_exp = {{-11355, 11355}, {-1, 1}, {-80, 0, true}}, all = {{-16440, 16383, true}};
  const Ranges of_log = {{-16440, 16383, true}, {0.98L, 1.02L}, {0.5L, 2}, {-63, -5, true, 1}};
  const Ranges of_log1p = {{-100, -1, true}, {-0.999L, 2}, {2, 1e30L}};
  const Ranges of_atan2 = {{-3, 3}, {-60, 60, true}, {-16440, 16383, true}};
  static const std::vector<ExtendedFunction> table = {
      {"_vxmexpl_scalar", _vxmexpl_scalar, mpfr_exp, 0.501, of_exp},
      {"_vxmlogl_scalar", of_magnitude<_vxmlogl_scalar>, exact_of_magnitude<mpfr_log>, 0.75, of_log},
      {"_vxmlog1pl_scalar", _vxmlog1pl_scalar, mpfr_log1p, 0.75, of_log1p},
      {"_vxmsinl_scalar", _vxmsinl_scalar, mpfr_sin, 0.63, circular},
      {"_vxmcosl_scalar", _vxmcosl_scalar, mpfr_cos, 0.63, circular},
      {"_vxmtanl_scalar", _vxmtanl_scalar, mpfr_tan, 0.63, circular},
      {"_vxmsincosl_scalar", one_of<_vxmsincosl_scalar, true>, mpfr_sin, 0.63, circular},
      {"_vxmsincosl_scalar", one_of<_vxmsincosl_scalar, false>, mpfr_cos, 0.63, circular},
      {"_vxmsinhl_scalar", _vxmsinhl_scalar, mpfr_sinh, 0.51, growing},
      {"_vxmcoshl_scalar", _vxmcoshl_scalar, mpfr_cosh, 0.51, growing},
      {"_vxmtanhl_scalar", _vxmtanhl_scalar, mpfr_tanh, 0.51, growing},
      {"_vxmsinhcoshl_scalar", one_of<_vxmsinhcoshl_scalar, true>, mpfr_sinh, 0.51, growing},
      {"_vxmsinhcoshl_scalar", one_of<_vxmsinhcoshl_scalar, false>, mpfr_cosh, 0.51, growing},
      {"_vxmatan2l_scalar", _vxmatan2l_scalar, mpfr_atan2, 0.63, of_atan2},
      {"_vxmsqrtl_scalar", of_magnitude<_vxmsqrtl_scalar>, exact_of_magnitude<mpfr_sqrt>, 0.5, all},
  };
  return table;
}

Errors<long double> measure(const ExtendedFunction &f, int points) {
  Random random{1};
  const auto mantissa = [&] { return static_cast<long double>(random()) * 0x1p-64L; };
  const auto draw = [&](const ExtendedFunction::Range &range) {
    const long double t = range.low + (range.high - range.low) * mantissa();
    if (!range.of_exponents) return t;
    const long double x = std::ldexp(1 + mantissa(), static_cast<int>(std::floor(t)));
    return range.centre + (random.below(2) ? x : -x);
  };
  Errors<long double> errors;
  Big exact;
  for (const auto &range : f.ranges)
    for (int i = 0; i < points; ++i) {
      const long double a = draw(range), b = draw(range);
      f.exact(raw(exact), raw(Big(a)), raw(Big(b)), MPFR_RNDN);
      // Below the normal range a result is rounded twice.
      if (mpfr_get_exp(raw(exact)) < LDBL_MIN_EXP) continue;
      const long double computed = f.entry(a, b);
      errors.note(computed, {error_in_ulp(computed, exact), a, b});
    }
  return errors;
}

}  // namespace qkr::tests
