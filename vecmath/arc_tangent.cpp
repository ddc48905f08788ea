// Arc tangent of one and of two arguments, by table and short polynomial (S. Gal, in LNCS 235 (1986) 1): the point
// (x, y) is turned back by the nearest direction (a, c) of the table; what is left has the slope
// t = (a y - c x) / (a x + c y), at most 1/31, and the angle is that of the direction plus arctan t.
#include "vecmath/contract.h"
#include "vecmath/frame.h"
#include "vecmath/inverse.h"
#include "vecmath/tables/tables.h"

extern "C" {
void _dAtan2_Scalar(ptrdiff_t i, qkr::Arrays<double> v);
void _sAtan2_Scalar(ptrdiff_t i, qkr::Arrays<float> v);
}

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
  const auto pattern = bits(at_least(at_most(slope, infinity_row), zero_row));
  Direction<V> d;
  look_up(arc_tangent::directions, ((((pattern + half_row) >> shift) - first) << 1) + mirrored, d.a, d.c, d.hi,
          d.lo);
  return d;
}

// hi + lo + arctan(t + t_lo).
template <class T, class V, class Tail>
QKR_INLINE V add_arctangent(V t, V z, V hi, Tail lo) {
  if constexpr (is_single<T>) return hi + (t + t * (z * polynomial(arc_tangent::polynomial_for_single, z)));
  else return hi + (t + (lo + t * (z * polynomial(arc_tangent::polynomial_for_double, z))));
}

template <class T>
struct Atan : UnaryKernel<T, 2> {
  template <class V>
  QKR_INLINE static V core(V argument) {
    constexpr double almost_infinite = 0x1p60;  // the angle is pi/2 rounded from here on
    const auto x = in_double<T>(argument), y = at_most(absolute(x), almost_infinite);
    const auto d = nearest_direction(y, 0ul);
    const auto t = (d.a * y - d.c) / (d.a + d.c * y);
    return rounded<T>(flip_sign(add_arctangent<T>(t, t * t, d.hi, d.lo), x));
  }
};
using AtanDouble = Atan<double>;
using AtanSingle = Atan<float>;

struct Atan2Double : BinaryKernel<double, 2> {
  // With the larger coordinate in this range no product below overflows, and tails that matter are exact.
  static constexpr double smallest = 0x1p-900, limit = 0x1p1000;

  template <class V>
  QKR_INLINE static Flags special(V y, V x) {
    return outside(absolute(x) + absolute(y), smallest, limit);
  }

  template <class V>
  QKR_INLINE static V core(V signed_y, V x) {
    const V y = absolute(signed_y);
    const auto d = nearest_direction(y / absolute(x), bits(x) >> 63);
    const V x_hi = real(bits(x) & ~15ul);  // c * x_hi is exact
    const V rise = (d.a * y - d.c * x_hi) - d.c * (x - x_hi), run = d.a * x + d.c * y;
    const V t = rise / run, z = t * t, p = t * run;
    const V t_lo = ((rise - p) - product_tail(t, run, p)) * rough_reciprocal(run);
    // Below 2^-32 arctan t rounds as t does.
    const V lo = d.lo + select_less(z, 0x1p-64, 0.0, t_lo);
    return flip_sign(add_arctangent<double>(t, z, d.hi, lo), signed_y);
  }

  QKR_INLINE static void scalar(ptrdiff_t i, Arrays<double> v) { _dAtan2_Scalar(i, v); }
};

struct Atan2Single : BinaryKernel<float, 2> {
  template <class V>
  QKR_INLINE static Flags special(V y, V x) {
    constexpr uint32_t size = 0x7FFFFFFF;
    return outside(real(bits(x) & size) + real(bits(y) & size), 0x1p-149f, __builtin_inff());
  }

  template <class V>
  QKR_INLINE static V core(V single_y, V single_x) {
    const auto signed_y = widen(single_y), x = widen(single_x), y = absolute(signed_y);
    const auto d = nearest_direction(y / absolute(x), bits(x) >> 63);
    const auto t = (d.a * y - d.c * x) / (d.a * x + d.c * y);
    return narrow(flip_sign(add_arctangent<float>(t, t * t, d.hi, d.lo), signed_y));
  }

  QKR_INLINE static void scalar(ptrdiff_t i, Arrays<float> v) { _sAtan2_Scalar(i, v); }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
using namespace qkr;

// Zeros, infinities and doubles of extreme size become points of ordinary size in the same direction.
template <class Kernel, class T>
static T arctangent_of_any(T y, T x) {
  if (y != y || x != x) return y + x;
  const T larger = __builtin_fabs(x) > __builtin_fabs(y) ? __builtin_fabs(x) : __builtin_fabs(y);
  if (larger == (T)__builtin_inf()) {
    x = __builtin_copysign((T)__builtin_isinf(x) != 0, x);
    y = __builtin_copysign((T)__builtin_isinf(y) != 0, y);
  } else if (larger == 0) {
    x = __builtin_copysign((T)1, x);
  } else if constexpr (sizeof(T) == sizeof(double)) {
    const double scale = larger < 0x1p-800 ? 0x1p200 : larger > 0x1p900 ? 0x1p-200 : 1;
    x *= scale, y *= scale;
  }
  return Kernel::core(y, x);
}

extern "C" void _dAtan2_Scalar(ptrdiff_t i, Arrays<double> v) {
  v.r[i] = arctangent_of_any<sse2::Atan2Double>(v.a[i], v.b[i]);
}
extern "C" void _sAtan2_Scalar(ptrdiff_t i, Arrays<float> v) {
  v.r[i] = arctangent_of_any<sse2::Atan2Single>(v.a[i], v.b[i]);
}
#endif

QKR_UNARY(_vxmdAtan_HA, double, AtanDouble)
QKR_UNARY(_vxmsAtan_HA, float, AtanSingle)
QKR_BINARY(_vxmdAtan2_HA, double, Atan2Double)
QKR_BINARY(_vxmsAtan2_HA, float, Atan2Single)
QKR_UNARY_FORWARD(_vxmdAtan_HA, _vxmdAtan_50, double)
QKR_UNARY_FORWARD(_vxmsAtan_HA, _vxmsAtan_21, float)
QKR_BINARY_FORWARD(_vxmdAtan2_HA, _vxmdAtan2_50, double)
QKR_BINARY_FORWARD(_vxmsAtan2_HA, _vxmsAtan2_21, float)
