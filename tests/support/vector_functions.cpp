#include "tests/support/vector_functions.h"

#include <boost/math/special_functions/erf.hpp>
#include <cmath>
#include <qkr/vecmath.h>
#include <qkr/vecmath_exact.h>

#include "tests/support/big.h"

// Gathered by the linker from the kernels' files; absent as long as no kernel has one.
extern "C" __attribute__((weak)) const qkr::Contract __start_qkr_contracts[], __stop_qkr_contracts[];

namespace qkr::tests {
namespace {

int reciprocal(mpfr_ptr r, mpfr_srcptr a, mpfr_rnd_t rounding) { return mpfr_ui_div(r, 1, a, rounding); }
// By Newton's iteration, from what is right to a double.
int inverse_erf(mpfr_ptr r, mpfr_srcptr a, mpfr_rnd_t rounding) {
  using namespace boost::math::policies;
  constexpr policy<overflow_error<ignore_error>, domain_error<ignore_error>> quietly;
  if (mpfr_zero_p(a)) return mpfr_set(r, a, rounding);
  Decimals<67> x(a), z = boost::math::erf_inv(static_cast<double>(x), quietly), of_z;
  for (int i = 0; isfinite(z) && i < 2; ++i) {
    mpfr_erf(raw(of_z), raw(z), MPFR_RNDN);
    z += (x - of_z) * exp(z * z) / boost::math::constants::two_div_root_pi<Decimals<67>>();
  }
  return mpfr_set(r, raw(z), rounding);
}
int reciprocal_cube_root(mpfr_ptr r, mpfr_srcptr a, mpfr_rnd_t rounding) {
  mpfr_cbrt(r, a, rounding);
  return mpfr_ui_div(r, 1, r, rounding);
}

// One row serves both precisions; where they differ, either() picks.
#define FUNCTION(function)                                             \
  .name = either<T>("_vxmd" #function "_HA", "_vxms" #function "_HA"), \
  .entry = either<T>(_vxmd##function##_HA, _vxms##function##_HA),      \
  .low = either<T>(_vxmd##function##_50, _vxms##function##_21)
#define EXACT_FUNCTION(function)                           \
  .name = either<T>("_vxmd" #function, "_vxms" #function), \
  .entry = either<T>(_vxmd##function, _vxms##function)

template <class T>
std::vector<VectorFunction<T>> make_table() {
  using List = std::vector<T>;
  using W = Wider<T>;
  constexpr double ln2 = 0.693147180559945309;
  constexpr double pi = 3.14159265358979324;
  constexpr T max = std::numeric_limits<T>::max();
  // Where circular functions hand over from kernel to scalar core, and from one reduction to the next.
  const List hand_overs = {10000, 12800, 90112, 0x1p17, 0x1p23, 0x1p30, T(0x1p-252)};
  // Where hyperbolic functions hand over to the scalar routine, and where they overflow.
  const Range<T> growing = either<T>(Range<T>{-711, 711}, Range<T>{-90, 90});
  const List overflow =
      either<T>(List{T(0.0054), 709, T(710.475860073944)}, List{T(0.3466), 89, T(89.415985)});
  return {
      {FUNCTION(Exp), .exact = {mpfr_exp}, .quick = {std::exp},
       .a = either<T>(Range<T>{-750, 710}, Range<T>{-105, 89}),
       .points = either<T>(List{T(-745.1332191019412), T(-708.396418532264), T(-708.39599609375),
                                T(708.39599609375), T(709.7772976810359), T(709.7827128933841)},
                           List{T(-103.97208), T(-103.27893829345703), T(-87.3365478515625),
                                T(87.3365478515625), T(88.3762626647949), T(88.72283935546875)}),
       .period = T(either<T>(ln2 / 64, ln2 / 128))},
      {FUNCTION(Ln), .exact = {mpfr_log}, .quick = {std::log}, .a = {0, max},
       .points = {T(0x1.7fcp-1), T(0x1.7fcp0), T(0x1.fcp-1), T(0x1.04p0)}},
      {FUNCTION(Log10), .exact = {mpfr_log10}, .quick = {std::log10}, .a = {0, max},
       .points = {T(0x1.7fp-1), T(0x1.7fp0), 10, 100, 1000}},
      {FUNCTION(Sqrt), .exact = {mpfr_sqrt}, .quick = {std::sqrt}, .a = {0, max}, .points = {2, 4}},
      {FUNCTION(Sin), .exact = {mpfr_sin}, .quick = {std::sin}, .points = hand_overs, .period = T(pi / 32),
       .reported = either<T>("dSin_HA", "sSin_HA")},
      {FUNCTION(Cos), .exact = {mpfr_cos}, .quick = {std::cos}, .points = hand_overs, .period = T(pi / 32),
       .reported = either<T>("dCos_HA", "sCos_HA")},
      {FUNCTION(SinCos), .exact = {mpfr_sin, mpfr_cos}, .quick = {std::sin, std::cos}, .points = hand_overs,
       .period = T(pi / 64), .reported = either<T>("dSinCos_HA", "sSinCos_HA")},
      {FUNCTION(Tan), .exact = {mpfr_tan}, .quick = {std::tan}, .points = hand_overs, .period = T(pi / 32),
       .reported = either<T>("dTan_HA", "sTan_HA")},
      {FUNCTION(Erf), .exact = {mpfr_erf}, .quick = {std::erf}, .a = {-7, 7},
       .points = {T(0x1p-8), 1, 3, 4, 6}},
      {FUNCTION(Erfc), .exact = {mpfr_erfc}, .quick = {std::erfc},
       .a = either<T>(Range<T>{-7, 26.5}, Range<T>{-5, 9.1f}),
       .points = either<T>(List{1, 3, 7, 15, 26, T(26.543258), T(27.226017)},
                           List{1, 3, 7, T(9.19), T(9.194555), T(10.054)})},
      {FUNCTION(ErfInv), .exact = {inverse_erf}, .a = {-1, 1},
       .points = {T(0.125), T(0.75), T(0.9375), T(1 - 0x1p-10), T(1 - 0x1p-23)}},
      {FUNCTION(InvSqrt), .exact = {mpfr_rec_sqrt}, .quick = {+[](W a) { return 1 / std::sqrt(a); }},
       .a = {0, max}, .points = {2, 4}},
      {FUNCTION(Cbrt), .exact = {mpfr_cbrt}, .quick = {std::cbrt}, .points = {8, 27}},
      {FUNCTION(InvCbrt), .exact = {reciprocal_cube_root}, .quick = {+[](W a) { return 1 / std::cbrt(a); }},
       .points = {8, 27}},
      {FUNCTION(Hypot), .exact = {mpfr_hypot}, .quick = {std::hypot}, .points = {1, 3}},
      {FUNCTION(Cosh), .exact = {mpfr_cosh}, .quick = {std::cosh}, .a = growing, .points = overflow,
       .period = T(either<T>(ln2 / 64, ln2))},
      {FUNCTION(Sinh), .exact = {mpfr_sinh}, .quick = {std::sinh}, .a = growing, .points = overflow,
       .period = T(either<T>(ln2 / 64, ln2))},
      {FUNCTION(Tanh), .exact = {mpfr_tanh}, .quick = {std::tanh},
       .points = {T(0.03125), 9, T(9.010913), 10, T(19.0615), 20}, .period = T(either<T>(0.0625, ln2))},
      {FUNCTION(Atan), .exact = {mpfr_atan}, .quick = {std::atan}, .points = {1, T(0x1p-5), 30, T(0x1p60)}},
      {FUNCTION(Atan2), .exact = {mpfr_atan2}, .quick = {std::atan2},
       .points = {1, T(0x1p-5), 30, T(0x1.b010c40a16298p+1)}},  // the last with the worst input
      {FUNCTION(Asin), .exact = {mpfr_asin}, .quick = {std::asin}, .a = {-1, 1}, .points = {T(0.5), 1}},
      {FUNCTION(Acos), .exact = {mpfr_acos}, .quick = {std::acos}, .a = {-1, 1}, .points = {T(0.5), 1}},
      {FUNCTION(Acosh), .exact = {mpfr_acosh}, .quick = {std::acosh}, .a = {1, max},
       .points = {1, T(1.25), 2, T(0x1p30)}},
      {FUNCTION(Asinh), .exact = {mpfr_asinh}, .quick = {std::asinh}, .points = {T(0.75), 1, T(0x1p30)}},
      {FUNCTION(Atanh), .exact = {mpfr_atanh}, .quick = {std::atanh}, .a = {-1, 1},
       .points = {T(0.2), T(0.5), 1}},
      {FUNCTION(Pow), .exact = {mpfr_pow}, .quick = {std::pow}, .a = {T(0.01), T(100)},
       .b = either<T>(Range<T>{-150, 150}, Range<T>{-18, 18}), .points = {1, T(0.5), 2}},
      {FUNCTION(Div), .exact = {mpfr_div}, .quick = {+[](W a, W b) { return a / b; }},
       .rounding = Rounding::callers},
      {FUNCTION(Inv), .exact = {reciprocal}, .quick = {+[](W a) { return 1 / a; }},
       .rounding = Rounding::callers},
      {EXACT_FUNCTION(Ceil), .exact = {mpfr_rint_ceil}, .quick = {std::ceil}, .rounding = Rounding::callers},
      {EXACT_FUNCTION(Floor), .exact = {mpfr_rint_floor}, .quick = {std::floor},
       .rounding = Rounding::callers},
      {EXACT_FUNCTION(Round), .exact = {mpfr_rint_round}, .quick = {std::round},
       .rounding = Rounding::callers},
      {EXACT_FUNCTION(Trunc), .exact = {mpfr_rint_trunc}, .quick = {std::trunc},
       .rounding = Rounding::callers},
      {EXACT_FUNCTION(Rint), .exact = {mpfr_rint}, .quick = {std::rint}, .rounding = Rounding::callers},
      {EXACT_FUNCTION(NearbyInt), .exact = {mpfr_rint}, .quick = {std::rint}, .rounding = Rounding::callers},
      {EXACT_FUNCTION(Modf), .exact = {mpfr_rint_trunc, mpfr_frac},
       .quick = {std::trunc, +[](W a) { return std::modf(a, &a); }}, .rounding = Rounding::callers},
  };
}

}  // namespace

template <class T>
const std::vector<VectorFunction<T>> &vector_functions() {
  static const std::vector<VectorFunction<T>> table = make_table<T>();
  return table;
}
template const std::vector<VectorFunction<double>> &vector_functions();
template const std::vector<VectorFunction<float>> &vector_functions();

const Contract *find_contract(std::string_view name) {
  for (const Contract *contract = __start_qkr_contracts; contract != __stop_qkr_contracts; ++contract)
    if (name == contract->function) return contract;
  return nullptr;
}

double error_bound(std::string_view name) {
  const Contract *contract = find_contract(name);
  return contract ? contract->bound : 0.5;
}

}  // namespace qkr::tests
