#include <cfloat>
#include <cmath>
#include <qkr/vecmath_extended.h>

#include "tests/support/complex_functions.h"

namespace qkr::tests {
namespace {

template <auto f>
Big exact_unary(const Big &a, const Big &) {
  return apply<f>(a);
}
template <bool cosine>
long double of_circular_pair(long double x) {
  long double s, c;
  _vxmsincosl_scalar(x, &s, &c);
  return cosine ? c : s;
}
template <bool cosine>
long double of_hyperbolic_pair(long double x) {
  long double s, c;
  _vxmsinhcoshl_scalar(x, &s, &c);
  return cosine ? c : s;
}

}  // namespace

const std::vector<ExtendedFunction> &extended_functions() {
  using Ranges = std::vector<ExtendedFunction::Range>;
  const auto row = [](const char *name, long double (*f)(long double), Big (*exact)(const Big &, const Big &),
                      double bound, const Ranges &ranges) {
    return ExtendedFunction{name, f, nullptr, exact, bound, ranges};
  };
  const auto log_of_abs = [](long double x) { return _vxmlogl_scalar(__builtin_fabsl(x)); };
  const auto exact_log = [](const Big &a, const Big &) { return apply<mpfr_log>(abs(a)); };
  const auto sqrt_of_abs = [](long double x) { return _vxmsqrtl_scalar(__builtin_fabsl(x)); };
  const auto exact_sqrt = [](const Big &a, const Big &) { return sqrt(abs(a)); };
  const auto exact_atan2 = [](const Big &a, const Big &b) { return apply<mpfr_atan2>(a, b); };
  const Ranges circular = {{-100, 100, false}, {-4200, 4200, false}, {-70, 1, true}, {12, 16383, true}};
  const Ranges growing = {{-2, 2, false}, {-50, 50, false}, {-11356, 11356, false}, {-60, 0, true}};
  const Ranges all = {{-16440, 16383, true}};
  const Ranges near_one = {
      {-16440, 16383, true}, {0.98L, 1.02L, false}, {0.5L, 2, false}, {-63, -5, true, 1}};
  const Ranges angles = {{-3, 3, false}, {-60, 60, true}, {-16440, 16383, true}};
  static const std::vector<ExtendedFunction> table = {
      row("_vxmexpl_scalar", _vxmexpl_scalar, exact_unary<mpfr_exp>, 0.501,
          {{-11355, 11355, false}, {-1, 1, false}, {-80, 0, true}}),
      row("_vxmlogl_scalar", log_of_abs, exact_log, 0.52, near_one),
      row("_vxmlog1pl_scalar", _vxmlog1pl_scalar, exact_unary<mpfr_log1p>, 0.52,
          {{-100, -1, true}, {-0.999L, 2, false}, {2, 1e30L, false}}),
      row("_vxmsinl_scalar", _vxmsinl_scalar, exact_unary<mpfr_sin>, 0.54, circular),
      row("_vxmcosl_scalar", _vxmcosl_scalar, exact_unary<mpfr_cos>, 0.54, circular),
      row("_vxmtanl_scalar", _vxmtanl_scalar, exact_unary<mpfr_tan>, 0.54, circular),
      row("_vxmsincosl_scalar", of_circular_pair<false>, exact_unary<mpfr_sin>, 0.54, circular),
      row("_vxmsincosl_scalar", of_circular_pair<true>, exact_unary<mpfr_cos>, 0.54, circular),
      row("_vxmsinhl_scalar", _vxmsinhl_scalar, exact_unary<mpfr_sinh>, 0.51, growing),
      row("_vxmcoshl_scalar", _vxmcoshl_scalar, exact_unary<mpfr_cosh>, 0.51, growing),
      row("_vxmtanhl_scalar", _vxmtanhl_scalar, exact_unary<mpfr_tanh>, 0.51, growing),
      row("_vxmsinhcoshl_scalar", of_hyperbolic_pair<false>, exact_unary<mpfr_sinh>, 0.51, growing),
      row("_vxmsinhcoshl_scalar", of_hyperbolic_pair<true>, exact_unary<mpfr_cosh>, 0.51, growing),
      {"_vxmatan2l_scalar", nullptr, _vxmatan2l_scalar, exact_atan2, 0.501, angles},
      row("_vxmsqrtl_scalar", sqrt_of_abs, exact_sqrt, 0.5, all),
  };
  return table;
}

ExtendedErrors measure(const ExtendedFunction &f, int points) {
  Random random{1};
  const auto mantissa = [&] { return static_cast<long double>(random()) * 0x1p-64L; };
  const auto draw = [&](const ExtendedFunction::Range &range) {
    const long double t = range.low + (range.high - range.low) * mantissa();
    if (!range.of_exponents) return t;
    const long double x = std::ldexp(1 + mantissa(), static_cast<int>(std::floor(t)));
    return range.centre + (random.below(2) ? x : -x);
  };
  ExtendedErrors worst;
  for (const auto &range : f.ranges)
    for (int i = 0; i < points; ++i) {
      const long double a = draw(range), b = draw(range);
      const Big exact = f.exact(Big(a), Big(b));
      // Below the normal range a result is rounded twice.
      if (mpfr_get_exp(exact.get()) < LDBL_MIN_EXP) continue;
      const double error = error_in_ulp(f.unary ? f.unary(a) : f.binary(a, b), exact);
      if (!(error <= worst.error)) worst = {error, a, b};
    }
  return worst;
}

}  // namespace qkr::tests
