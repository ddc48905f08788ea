// Arc sine and arc cosine. Up to |x| = 1/2 the arc sine is a polynomial in x; above, with u = sqrt((1 -
// |x|)/2), it is pi/2 - 2 arcsin u (W. J. Cody and W. Waite, Software Manual for the Elementary Functions,
// 1980, ch. 10). Both functions become base + v + tail, where base is a multiple of pi/2 and v is x or 2u.
#include "vecmath/frame/contract.h"
#include "vecmath/frame/function.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/in_double.h"
#include "vecmath/tables/tables.h"

extern "C" {
void _dAsin_Scalar(ptrdiff_t i, qkr::Arrays<double> v);
void _dAcos_Scalar(ptrdiff_t i, qkr::Arrays<double> v);
void _sAsin_Scalar(ptrdiff_t i, qkr::Arrays<float> v);
void _sAcos_Scalar(ptrdiff_t i, qkr::Arrays<float> v);
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr double half_pi_hi = 0x1.921fb54442d18p0, half_pi_lo = 0x1.1a62633145c07p-54;

template <class T>
constexpr T next_above_one = is_single<T> ? 0x1.000002p0 : 0x1.0000000000001p0;

constexpr double fold = 0.5;  // from here on, |x| is folded

// w + w_lo = 2u, u = sqrt((1 - |x|)/2), for the upper half of the arguments; and arcsin y / y - 1 for y = |x|
// or u.
template <class V>
struct Folded {
  V w, w_lo, ratio;
};

template <class T, class V, class D>
QKR_INLINE Folded<D> folded(V argument, D magnitude) {
  const V square = (T)0.5 - (T)0.5 * absolute<T>(argument);  // exact where it counts
  const D u2 = in_double<T>(square), u = in_double<T>(square_root(square)), product = u * u;
  const D z = smaller(u2, magnitude * magnitude);  // they meet at the fold
  if constexpr (is_single<T>) {
    const D w_lo = (u2 - product) * rough_reciprocal(u);
    return {2.0 * u + w_lo, w_lo, z * polynomial(arc_sine::polynomial_for_single, z)};
  } else {
    const D w_lo = ((u2 - product) - product_error(u, u, product)) * rough_reciprocal(u);
    return {2.0 * u, w_lo, z * polynomial(arc_sine::polynomial_for_double, z)};
  }
}

// base + lo + v + v ratio, where base is 0 or larger than v; lo does not matter in single precision.
template <class T, class V>
QKR_INLINE V sum(V base, V lo, V v, V ratio) {
  if constexpr (is_single<T>) return base + (v + v * ratio);
  const V head = base + v, rest = (base - head) + v;
  return head + (rest + (lo + v * ratio));
}

template <class T, void (*scalar_routine)(ptrdiff_t, Arrays<T>)>
struct ArcKernel : UnaryKernel<T, QKR_SIMD_BYTES == 64 && !is_single<T> ? 2 : 4> {
  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, next_above_one<T>);
  }
  QKR_INLINE static void scalar(ptrdiff_t i, Arrays<T> v) { scalar_routine(i, v); }
};

// arcsin x is arcsin |x| or pi/2 - 2 arcsin u, with the sign of x.
template <class T, void (*scalar_routine)(ptrdiff_t, Arrays<T>)>
struct Asin : ArcKernel<T, scalar_routine> {
  template <class V>
  QKR_INLINE static V core(V argument) {
    const auto x = in_double<T>(argument), magnitude = absolute<double>(x);
    const auto [w, w_lo, ratio] = folded<T>(argument, magnitude);
    const auto base = zero_if_less(magnitude, fold, half_pi_hi),
               lo = zero_if_less(magnitude, fold, half_pi_lo - w_lo);
    const auto v = select_less(magnitude, fold, magnitude, 0.0 - w);
    return rounded<T>(flip_sign(sum<T>(base, lo, v, ratio), x));
  }
};

// arccos x is pi/2 - arcsin x; or 2 arcsin u for positive x, pi less that for negative.
template <class T, void (*scalar_routine)(ptrdiff_t, Arrays<T>)>
struct Acos : ArcKernel<T, scalar_routine> {
  template <class V>
  QKR_INLINE static V core(V argument) {
    const auto x = in_double<T>(argument), magnitude = absolute<double>(x);
    const auto [w, w_lo, ratio] = folded<T>(argument, magnitude);
    const auto base = half_pi_hi - flip_sign(zero_if_less(magnitude, fold, half_pi_hi), x);
    const auto lo = half_pi_lo - flip_sign(zero_if_less(magnitude, fold, half_pi_lo - w_lo), x);
    const auto v = flip_sign(select_less(magnitude, fold, 0.0 - magnitude, w), x);
    return rounded<T>(sum<T>(base, lo, v, ratio));
  }
};

using AsinDouble = Asin<double, _dAsin_Scalar>;
using AsinSingle = Asin<float, _sAsin_Scalar>;
using AcosDouble = Acos<double, _dAcos_Scalar>;
using AcosSingle = Acos<float, _sAcos_Scalar>;

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
using namespace qkr;

// NaN for a NaN and outside the domain, which is reported; tails of a vector bring ordinary elements.
template <class Kernel, class T>
static void arc_of_any(ptrdiff_t i, Arrays<T> v, const char *name) {
  const T x = v.a[i];
  if (__builtin_fabs(x) <= 1) v.r[i] = Kernel::core(x);
  else if (x != x) v.r[i] = x + x;
  else sse2::store_and_report(indefinite<T>(), 1, i, v, name);
}

extern "C" void _dAsin_Scalar(ptrdiff_t i, Arrays<double> v) {
  arc_of_any<sse2::AsinDouble>(i, v, "_vxmdAsin_HA");
}
extern "C" void _dAcos_Scalar(ptrdiff_t i, Arrays<double> v) {
  arc_of_any<sse2::AcosDouble>(i, v, "_vxmdAcos_HA");
}
extern "C" void _sAsin_Scalar(ptrdiff_t i, Arrays<float> v) {
  arc_of_any<sse2::AsinSingle>(i, v, "_vxmsAsin_HA");
}
extern "C" void _sAcos_Scalar(ptrdiff_t i, Arrays<float> v) {
  arc_of_any<sse2::AcosSingle>(i, v, "_vxmsAcos_HA");
}
#endif

QKR_CONTRACT(_vxmdAsin_HA, 0.67, 0x1.1905de6cccf78p-1);
QKR_CONTRACT(_vxmdAcos_HA, 0.67, 0x1.167ffdfd9982ep-1);
QKR_CONTRACT(_vxmsAsin_HA, 0.53, 0x1.00996ap-1);
QKR_CONTRACT(_vxmsAcos_HA, 0.53, 0x1.c65e5cp-1);

QKR_UNARY(_vxmdAsin_HA, double, AsinDouble)
QKR_UNARY(_vxmdAcos_HA, double, AcosDouble)
QKR_UNARY(_vxmsAsin_HA, float, AsinSingle)
QKR_UNARY(_vxmsAcos_HA, float, AcosSingle)
QKR_UNARY_FORWARD(_vxmdAsin_HA, _vxmdAsin_50, double)
QKR_UNARY_FORWARD(_vxmdAcos_HA, _vxmdAcos_50, double)
QKR_UNARY_FORWARD(_vxmsAsin_HA, _vxmsAsin_21, float)
QKR_UNARY_FORWARD(_vxmsAcos_HA, _vxmsAcos_21, float)
