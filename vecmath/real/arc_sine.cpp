// Arc sine and arc cosine. Up to |x| = 1/2 the arc sine is a polynomial in x; above, with u = sqrt((1 -
// |x|)/2), it is pi/2 - 2 arcsin u (W. J. Cody and W. Waite, Software Manual for the Elementary Functions,
// 1980, ch. 10). Both functions become base + v + tail, where base is a multiple of pi/2 and v is x or 2u.
#include "vecmath/frame/function.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/in_double.h"
#include "vecmath/real/polynomial.h"
#include "vecmath/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr double half_pi_hi = 0x1.921fb54442d18p0, half_pi_lo = 0x1.1a62633145c07p-54;

template <class T>
constexpr T next_above_one = is_single<T> ? 0x1.000002p0 : 0x1.0000000000001p0;

constexpr double fold = 0.5;  // from here on, |x| is folded

// w + w_lo = 2u, u = sqrt((1 - |x|)/2), for the upper half of the arguments; and z = y^2 and the series with
// arcsin y = y + y z (exact_part + series), for y = |x| or u.
template <class V>
struct Folded {
  V w, w_lo, z, series;
};

template <class T>
constexpr double exact_part = is_single<T> ? 0.0 : 0.125;

template <class T, class V, class D>
QKR_INLINE Folded<D> folded(V argument, D magnitude) {
  const V square = (T)0.5 - (T)0.5 * absolute<T>(argument);  // exact where it counts
  const D u2 = in_double<T>(square), u = in_double<T>(square_root(square)), product = u * u;
  const D z = smaller(u2, magnitude * magnitude);  // they meet at the fold
  if constexpr (is_single<T>) {
    const D w_lo = (u2 - product) * rough_reciprocal(u);
    return {2.0 * u + w_lo, w_lo, z, polynomial(arc_sine::polynomial_for_single, z)};
  } else {
    const D rounding = ((u2 - product) - product_error(u, u, product)) * rough_reciprocal(u);
    const D w_lo = rounding + rounding * (u2 * (1.0 / 6));  // with its share of the series
    return {2.0 * u, w_lo, z, polynomial(arc_sine::polynomial_for_double, z)};
  }
}

// base + lo + v + v z (exact_part + series), where base is 0 or larger than v; lo does not matter in single
// precision. In double only the last addition rounds in the size of the result. Below it, where a result is
// just above 1/2, v = w near 1 and z near 1/4: v z is rounded by up to 1/8 of an ulp, of which less than
// 1/5 counts; the sum of the series by 1/16, of which v z takes a quarter, and its first coefficient by
// half that; their product and its sum with what is left by 1/64 each: .58 ulp, and .02 for what is
// smaller.
template <class T, class V>
QKR_INLINE V sum(V base, V lo, V v, V z, V series) {
  if constexpr (is_single<T>) return base + (v + v * (z * series));
  const V head = base + v, rest = (base - head) + v;
  const V cube = v * z, part = cube * exact_part<T>, result = head + part,
          result_rest = (head - result) + part;
  return result + (cube * series + (result_rest + (rest + lo)));
}

template <class T>
struct ArcKernel : UnaryKernel<T, QKR_SIMD_BYTES == 64 && !is_single<T> ? 2 : 4> {
  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, next_above_one<T>);
  }
  static Outcome<T> scalar(T x) {
    if (x != x) return {x + x};
    return {indefinite<T>(), VXM_STATUS_ERRDOM};
  }
};

// arcsin x is arcsin |x| or pi/2 - 2 arcsin u, with the sign of x.
template <class T>
struct Asin : ArcKernel<T> {
  template <class V>
  QKR_INLINE static V core(V argument) {
    const auto x = in_double<T>(argument), magnitude = absolute<double>(x);
    const auto [w, w_lo, z, series] = folded<T>(argument, magnitude);
    const auto base = zero_unless(magnitude >= fold, half_pi_hi),
               lo = zero_unless(magnitude >= fold, half_pi_lo - w_lo);
    const auto v = select(magnitude < fold, magnitude, 0.0 - w);
    return rounded<T>(flip_sign(sum<T>(base, lo, v, z, series), x));
  }
};

// arccos x is pi/2 - arcsin x; or 2 arcsin u for positive x, pi less that for negative.
template <class T>
struct Acos : ArcKernel<T> {
  template <class V>
  QKR_INLINE static V core(V argument) {
    const auto x = in_double<T>(argument), magnitude = absolute<double>(x);
    const auto [w, w_lo, z, series] = folded<T>(argument, magnitude);
    const auto base = half_pi_hi - flip_sign(zero_unless(magnitude >= fold, half_pi_hi), x);
    const auto lo = half_pi_lo - flip_sign(zero_unless(magnitude >= fold, half_pi_lo - w_lo), x);
    const auto v = flip_sign(select(magnitude < fold, 0.0 - magnitude, w), x);
    return rounded<T>(sum<T>(base, lo, v, z, series));
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_FUNCTION(_vxmdAsin_HA, _vxmdAsin_50, double, 0.61, 0x1.0202dd1058f1ap-1, Asin<double>)
QKR_FUNCTION(_vxmdAcos_HA, _vxmdAcos_50, double, 0.59, 0x1.170abff002b9bp-1, Acos<double>)
QKR_FUNCTION(_vxmsAsin_HA, _vxmsAsin_21, float, 0.53, 0x1.00996ap-1, Asin<float>)
QKR_FUNCTION(_vxmsAcos_HA, _vxmsAcos_21, float, 0.53, 0x1.c65e5cp-1, Acos<float>)
