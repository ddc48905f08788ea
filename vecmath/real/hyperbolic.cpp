// Hyperbolic cosine, sine and tangent by the addition theorem: |x| = a + r with a node a and a small r:
//   cosh |x| = cosh a cosh r + sinh a sinh r,  sinh |x| = sinh a cosh r + cosh a sinh r,
//   tanh |x| = (tanh a + tanh r) / (1 + tanh a tanh r).
// All terms are positive or small beside the first, which a table gives as a sum of two doubles (P. T. P.
// Tang, Proc. 10th IEEE Symposium on Computer Arithmetic (1991) 232). Next to 0 the node is 0: no formula of
// its own is needed there.
#include "vecmath/frame/numbers.h"
#include "vecmath/frame/sign.h"
#include "vecmath/real/exponential.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr double round_to_integer = ExpSteps::shifter;

// |x| = a + r + r_low with a = N ln2/64; and e^a / 2 and e^-a / 2, each as hi + low, over 2^k, k = N >> 6.
template <class V>
struct NodeDouble {
  V r, r_low, rising, rising_low, falling, falling_low;
  decltype(bits(V())) k_in_place;  // k << 52

  QKR_INLINE explicit NodeDouble(V magnitude) {
    const V t = magnitude * ExpSteps::inverse_step + round_to_integer, n = t - round_to_integer;
    const V near = exact_mad(n, -ExpSteps::step_high, magnitude), far = n * ExpSteps::step_low;
    r = near - far;
    r_low = (near - r) - far;
    k_in_place = (bits(t) << 46) & 0xFFF0000000000000u;
    look_up(hyperbolic_double::halves, bits(t) & 63u, rising, rising_low, falling, falling_low);
    // 2^-2k, held at 2^-256, where it is far too small to matter.
    const V held = smaller(t, round_to_integer + 64 * 128);
    const V scale = real(0x3FF0000000000000u - ((bits(held) << 47) & 0xFFE0000000000000u));
    falling = falling * scale;
    falling_low = falling_low * scale;
  }
  QKR_INLINE V scaled(V v) const { return real(bits(v) + k_in_place); }
};

// |x| = N ln2 + r; no table, as the squares of r are still small.
template <class V>
struct NodeSingle {
  V cosh, sinh, cosh_r, sinh_r;

  QKR_INLINE explicit NodeSingle(V magnitude) {
    const V t = magnitude * 0x1.71547652b82fep0 + round_to_integer, n = t - round_to_integer;
    const V r = magnitude - n * 0x1.62e42fefa39efp-1, r2 = r * r;
    const auto k_in_place = bits(t) << 52;
    const V rising = real(0x3FE0000000000000u + k_in_place), falling = real(0x3FE0000000000000u - k_in_place);
    cosh = rising + falling;
    sinh = rising - falling;
    // For |r| <= ln2/2, within 2^-32 and 2^-35 of the results.
    cosh_r = 1.0 + r2 * (0.500000001346581 + r2 * (0.041666464925285904 + r2 * 0.0013933649996309251));
    sinh_r = r + (r * r2) * (0.16666666681623232 + r2 * (0.0083333109254809 + r2 * 0.00019890990824673654));
  }
};

// sinh r = r + r^3 p(r^2) and cosh r = 1 + r^2 p(r^2) for |r| <= ln2/128, within 2^-57 of the result.
template <class V>
QKR_INLINE V sinh_rest(V r, V r2) {
  return (r * r2) * (0.16666666666664534 + r2 * 0.008333339152857227);
}
template <class V>
QKR_INLINE V cosh_rest(V r2) {
  return r2 * (0.4999999999998506 + r2 * 0.041666707403338075);
}

struct CoshValue {
  template <class T, class V>
  QKR_INLINE static V with_sign(V, V magnitude) {
    return magnitude;
  }
  template <class V>
  QKR_INLINE static V of_magnitude(V magnitude) {
    const NodeDouble<V> a(magnitude);
    const V cosh = a.rising + a.falling, lost = (a.rising - cosh) + a.falling;
    const V cosh_low = lost + (a.rising_low + a.falling_low), sinh = a.rising - a.falling;
    const V r2 = a.r * a.r, product = sinh * (a.r + sinh_rest(a.r, r2)) + cosh * cosh_rest(r2);
    return a.scaled(cosh + (product + cosh_low));
  }
  template <class V>
  QKR_INLINE static V of_single(V magnitude) {
    const NodeSingle<V> a(magnitude);
    return a.cosh * a.cosh_r + a.sinh * a.sinh_r;
  }
};

struct SinhValue {
  template <class T, class V>
  QKR_INLINE static V with_sign(V x, V magnitude) {
    return with_sign_of<T>(x, magnitude);
  }
  // r can be as large as the result while cosh a is next to 1: r itself is added without an error, and what
  // cosh a - 1, a small factor there, makes of it comes with the small terms.
  template <class V>
  QKR_INLINE static V of_magnitude(V magnitude) {
    const NodeDouble<V> a(magnitude);
    const V sinh = a.rising - a.falling, lost = (a.rising - sinh) - a.falling;
    const V sinh_low = lost + (a.rising_low - a.falling_low);
    const V cosh_less_1 = ((a.rising - 0.5) + (a.falling - 0.5)) + (a.rising_low + a.falling_low);
    const V r2 = a.r * a.r, rest = sinh_rest(a.r, r2);
    const V sum = sinh + a.r, sum_low = ((sinh - sum) + a.r) + a.r_low;
    const V product = cosh_less_1 * (a.r + rest) + sinh * cosh_rest(r2);
    return a.scaled(sum + ((product + rest) + (sum_low + sinh_low)));
  }
  template <class V>
  QKR_INLINE static V of_single(V magnitude) {
    const NodeSingle<V> a(magnitude);
    return a.sinh * a.cosh_r + a.cosh * a.sinh_r;
  }
};

template <class T, class Value>
struct GrowingHyperbolic : UnaryKernel<T, 1> {
  static constexpr bool is_double = sizeof(T) == 8;
  static constexpr T fast_limit = is_double ? 709.0 : 89.0f;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, fast_limit);
  }
  template <class V>
  QKR_INLINE static V core(V x) {
    const V magnitude = absolute<T>(x);
    if constexpr (is_double) return Value::template with_sign<T>(x, Value::of_magnitude(magnitude));
    else return Value::template with_sign<T>(x, narrow(Value::of_single(widen(magnitude))));
  }
  // e^magnitude / 2 for magnitudes whose other half does not matter and whose result may overflow.
  static double half_exponential(double magnitude) {
    if (magnitude > 720) magnitude = 720;
    const Pair<double> e = ExpSteps::reduce(magnitude, 0.0);
    return e.second * ExpSteps::scale(e.first, -513) * 0x1p512;
  }
  static Outcome<T> scalar(T x) {
    const T magnitude = __builtin_fabs(x);
    if (x != x || magnitude == infinity<T>) return {Value::template with_sign<T>(x, magnitude + magnitude)};
    const T r = (T)half_exponential(magnitude);
    return {Value::template with_sign<T>(x, r), r > largest<T> ? VXM_STATUS_OVERFLOW : VXM_STATUS_OK};
  }
};
template <class Value>
struct GrowingSingle : GrowingHyperbolic<float, Value> {
  using Environment = WithSse<X87Extended>;
};

// tanh |x| with nodes of j/16, up to 20. The sum of the tangents is divided only where it is small beside
// them: (A + t) / (1 + A t) = A + t - A t (A + t) / (1 + A t).
//
// The error is largest below 1, in ulp of 2^-53. The quotient is below 2^-5: its product, its numerator and
// its own rounding cost .015, .030 and .016; node + tangent and 1 + product, above 1, cost .030 each;
// tangent, rest - quotient and the sum of the small terms .016 each. With the last rounding that is .668.
struct TanhDouble : UnaryKernel<double, 1> {
  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, infinity<double>);
  }
  template <class V>
  QKR_INLINE static V core(V x) {
    const V magnitude = smaller(absolute<double>(x), 20.0);
    const V t = magnitude * 16.0 + round_to_integer, n = t - round_to_integer;
    const V r = exact_mad(n, -1.0 / 16, magnitude), r2 = r * r;
    V node, node_low;
    look_up(hyperbolic_double::tangents, bits(t) & 511u, node, node_low);
    // tanh r - r for |r| <= 1/32, within 2^-63 of tanh r.
    const V rest =
        (r * r2) * (-0.33333333333333326 +
                    r2 * (0.13333333333127007 + r2 * (-0.05396824340575474 + r2 * 0.021852183486978663)));
    const V tangent = r + rest, product = node * tangent;
    const V quotient = product * (node + tangent) / (1.0 + product);
    const V sum = node + r, lost = (node - sum) + r;
    return with_sign_of<double>(x, sum + ((rest - quotient) + (lost + node_low)));
  }
  static Outcome<double> scalar(double x) { return {x != x ? x + x : __builtin_copysign(1.0, x)}; }
};

// tanh |x| with nodes of N ln2, where 4^N gives the tangent; from 9.02 on it rounds to 1.
struct TanhSingle : UnaryKernel<float, 1> {
  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, infinity<float>);
  }
  template <class V>
  QKR_INLINE static V of_magnitude(V magnitude) {
    const V t = magnitude * 0x1.71547652b82fep0 + round_to_integer, n = t - round_to_integer;
    const V r = magnitude - n * 0x1.62e42fefa39efp-1, r2 = r * r;
    // For |r| <= ln2/2, within 2^-29 of tanh r.
    const V tangent =
        r + (r * r2) * (-0.33333332022480155 +
                        r2 * (0.13332983640651674 + r2 * (-0.053821519037540295 + r2 * 0.01987466412296686)));
    const V power = real(0x3FF0000000000000u + (bits(t) << 53));
    const V over = power - 1.0, under = power + 1.0;
    return (over + under * tangent) / (under + over * tangent);
  }
  template <class V>
  QKR_INLINE static V core(V x) {
    return with_sign_of<float>(x, narrow(of_magnitude(smaller(widen(absolute<float>(x)), 10.0))));
  }
  static Outcome<float> scalar(float x) { return {x != x ? x + x : __builtin_copysignf(1.0f, x)}; }
};

using CoshDouble = GrowingHyperbolic<double, CoshValue>;
using SinhDouble = GrowingHyperbolic<double, SinhValue>;
using CoshSingle = GrowingSingle<CoshValue>;
using SinhSingle = GrowingSingle<SinhValue>;

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_FUNCTION(_vxmdCosh_HA, _vxmdCosh_50, double, 0.57, -0x1.e7a10861f2a99p+2, CoshDouble)
QKR_FUNCTION(_vxmsCosh_HA, _vxmsCosh_21, float, 0.503, -0x1.0a33bp+0, CoshSingle)
QKR_FUNCTION(_vxmdSinh_HA, _vxmdSinh_50, double, 0.565, 0x1.62eac92ecaad3p-8, SinhDouble)
QKR_FUNCTION(_vxmsSinh_HA, _vxmsSinh_21, float, 0.504, 0x1.62e792p-2, SinhSingle)
QKR_FUNCTION(_vxmdTanh_HA, _vxmdTanh_50, double, 0.67, 0x1.a2fe1cf9368abp+3, TanhDouble)
QKR_FUNCTION(_vxmsTanh_HA, _vxmsTanh_21, float, 0.517, 0x1.62f9b6p-2, TanhSingle)
