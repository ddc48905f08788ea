// Arc tangent of one and of two arguments, by table and short polynomial (S. Gal, in LNCS 235 (1986) 1): the
// point (x, y) is turned back by the nearest direction (a, c) of the table; what is left has the slope t = (a
// y - c x) / (a x + c y), at most 1/31, and the angle is that of the direction plus arctan t.
#include "vecmath/frame/function.h"
#include "vecmath/real/in_double.h"
#include "vecmath/real/polynomial.h"
#include "vecmath/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Row 2k of the table, or its mirror image; k counts the slopes with four significant bits.
template <class V>
struct Direction {
  V a, c, hi, lo;
};
template <class V, class Mirrored>
QKR_INLINE Direction<V> nearest_direction(V slope, Mirrored mirrored) {
  constexpr double zero_row = 0x1.ep-6, infinity_row = 0x1p5;  // neighbours of the finite slopes
  constexpr int shift = 49;
  constexpr uint64_t half_row = 1ul << (shift - 1);
  constexpr uint64_t first = __builtin_bit_cast(uint64_t, zero_row) >> shift;
  const auto pattern = bits(larger(at_most(slope, infinity_row), zero_row));
  Direction<V> d;
  look_up(arc_tangent::directions, ((((pattern + half_row) >> shift) - first) << 1) + mirrored, d.a, d.c,
          d.hi, d.lo);
  return d;
}

// The angle of (x, y), y not negative, to single precision: the axes and the diagonals are directions enough.
template <class V, class X>
QKR_INLINE V single_angle(V y, X x) {
  constexpr double quarter_pi = 0x1.921fb54442d18p-1;
  constexpr double low_slope = 0.41421356237309503, high_slope = 2.414213562373095;  // of pi/8 and 3pi/8
  const X magnitude = absolute<double>(x);
  const V c = select(y < magnitude * low_slope, 0.0, 1.0),
          a_magnitude = select(y < magnitude * high_slope, 1.0, 0.0);
  const V a = flip_sign(a_magnitude, x);
  const V direction = 2.0 * quarter_pi - quarter_pi * flip_sign(1.0 + a_magnitude - c, x);
  const V t = (a * y - c * x) / (a * x + c * y), z = t * t;
  return direction + (t + t * (z * polynomial(arc_tangent::polynomial_for_single, z)));
}

// hi + lo + arctan t.
template <class V>
QKR_INLINE V add_arctangent(V t, V z, V hi, V lo) {
  return hi + (t + (lo + t * (z * polynomial(arc_tangent::polynomial_for_double, z))));
}

constexpr double almost_infinite = 0x1p60;  // the angle of this slope is pi/2 rounded

// NaNs would raise an event on their way.
template <class T>
struct AtanKernel : UnaryKernel<T, 4> {
  template <class V>
  QKR_INLINE static Flags special(V x) {
    return is_nan(x);
  }
  static Outcome<T> scalar(T x) { return {x + x}; }
};

struct AtanDouble : AtanKernel<double> {
  template <class V>
  QKR_INLINE static V core(V x) {
    const V y = at_most(absolute<double>(x), almost_infinite);
    const auto d = nearest_direction(y, 0ul);
    const V t = (d.a * y - d.c) / (d.a + d.c * y);
    return flip_sign(add_arctangent(t, t * t, d.hi, d.lo), x);
  }
};

struct AtanSingle : AtanKernel<float> {
  template <class V>
  QKR_INLINE static V core(V argument) {
    const auto x = widen(argument), y = at_most(absolute<double>(x), almost_infinite);
    return narrow(flip_sign(single_angle(y, 1.0), x));
  }
};

// Zeros, infinities and doubles of extreme size become points of ordinary size in the same direction.
template <class Kernel, class T>
Outcome<T> angle_of_special(T y, T x) {
  if (y != y || x != x) return {nan_of(y, x)};
  const T larger = __builtin_fabs(x) > __builtin_fabs(y) ? __builtin_fabs(x) : __builtin_fabs(y);
  if (larger == infinity<T>) {
    x = __builtin_copysign((T)__builtin_isinf(x) != 0, x);
    y = __builtin_copysign((T)__builtin_isinf(y) != 0, y);
  } else if (larger == 0) {
    x = __builtin_copysign((T)1, x);
  } else if constexpr (sizeof(T) == sizeof(double)) {
    const double scale = larger < 0x1p-800 ? 0x1p200 : larger > 0x1p900 ? 0x1p-200 : 1;
    x *= scale, y *= scale;
  }
  return {Kernel::core(y, x)};
}

// x, but 1 with its sign where both coordinates are zeros.
template <class T, class V>
QKR_INLINE V off_origin(V y, V x) {
  using U = decltype(bits(V()));
  V one;
  broadcast((T)1, one);
  return real(bits(x) | (bits(one) & (U)(((bits(x) | bits(y)) & ~sign_bit<T>) == 0u)));
}

struct Atan2Double : BinaryKernel<double, 4> {
  // With the larger coordinate in this range no product below overflows, and tails that matter are exact.
  static constexpr double smallest = 0x1p-900, limit = 0x1p1000;

  template <class V>
  QKR_INLINE static Flags special(V y, V x) {
    return outside(absolute<double>(x) + absolute<double>(y), smallest, limit);
  }

  template <class V>
  QKR_INLINE static V core(V signed_y, V x) {
    const V y = absolute<double>(signed_y);
    // Slopes beyond the table are cut, lest the quotient overflow.
    const auto d = nearest_direction(y / larger(absolute<double>(x), y * 0x1p-60), bits(x) >> 63);
    const V x_hi = real(bits(x) & ~15ul);  // c * x_hi is exact
    const V rise = (d.a * y - d.c * x_hi) - d.c * (x - x_hi), run = d.a * x + d.c * y;
    const V t = rise / run, z = t * t, p = t * run;
    const V t_lo = ((rise - p) - product_error(t, run, p)) * rough_reciprocal(run);
    // Below 2^-32 arctan t rounds as t does.
    const V lo = d.lo + select(z < 0x1p-64, 0.0, t_lo);
    return flip_sign(add_arctangent(t, z, d.hi, lo), signed_y);
  }

  template <class V>
  QKR_INLINE static V wider_core(V y, V x, Flags &special) {
    const V point = off_origin<double>(y, x);
    special = Atan2Double::special(y, point);
    return core(y, point);
  }
  static Outcome<double> scalar(double y, double x) { return angle_of_special<Atan2Double>(y, x); }
};

struct Atan2Single : BinaryKernel<float, 4> {
  template <class V>
  QKR_INLINE static Flags special(V y, V x) {
    return outside(absolute<float>(x) + absolute<float>(y), 0x1p-149f, infinity<float>);
  }
  template <class V>
  QKR_INLINE static V core(V signed_y, V x) {
    const auto y = widen(signed_y);
    return narrow(flip_sign(single_angle(absolute<double>(y), widen(x)), y));
  }
  template <class V>
  QKR_INLINE static V wider_core(V y, V x, Flags &special) {
    const V point = off_origin<float>(y, x);
    special = Atan2Single::special(y, point);
    return core(y, point);
  }
  static Outcome<float> scalar(float y, float x) { return angle_of_special<Atan2Single>(y, x); }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

// Of Atan2 the first input of the worst pair.

QKR_FUNCTION(_vxmdAtan_HA, _vxmdAtan_50, double, 0.62, 0x1.1030aac90c834p-1, AtanDouble)
QKR_FUNCTION(_vxmsAtan_HA, _vxmsAtan_21, float, 0.51, 0x1.a152d4p-3, AtanSingle)
QKR_FUNCTION_OF_TWO(_vxmdAtan2_HA, _vxmdAtan2_50, double, 0.60, 0x1.cb417a2d00c18p+0, Atan2Double)
QKR_FUNCTION_OF_TWO(_vxmsAtan2_HA, _vxmsAtan2_21, float, 0.52, 0x1.60620cp+68, Atan2Single)
