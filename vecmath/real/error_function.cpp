// The error function and its complement by tables of short polynomials (after P. T. P. Tang, Table-lookup
// algorithms for elementary functions, IEEE Arithmetic 10 (1991) 232), erfc x as e^(-x^2) times a function
// that changes slowly (W. J. Cody, Mathematics of Computation 23 (1969) 631).
#include "vecmath/real/error_function.h"

#include "vecmath/frame/numbers.h"
#include "vecmath/real/exponential.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct ErfDouble : UnaryKernel<double, 2> {
  // From here on erf x rounds to 1.
  static constexpr double one_from = 6.0;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, infinity<double>);
  }
  // erf x = T + d + d/8 + d * (slope - 9/8), T scaled up. The first three are added without error: what
  // follows is below .0034 times the result in row 0 and below 2^-6 in the others, so that its rounding
  // errors, five at most, come to less than .05 ulp.
  template <class V>
  QKR_INLINE static V core(V x) {
    const NearestRow<7, V> at(smaller(absolute<double>(x), one_from));
    V t_hi, t_lo, c1, c2, c3, c4, c5, c6;
    look_up(erf_double::rows, at.row, t_hi, t_lo, c1, c2, c3, c4, c5, c6);
    const V d = at.distance;
    const V slope = c1 + d * (c2 + d * (c3 + d * (c4 + d * (c5 + d * c6))));
    const V scaled = d * scaled_up, first = t_hi + scaled, first_error = (t_hi - first) + scaled;
    const V eighth = scaled * 0.125, sum = first + eighth, sum_error = (first - sum) + eighth;
    return scaled_down(sum + (((first_error + t_lo) + sum_error) + scaled * slope), x);
  }
  static Outcome<double> scalar(double x) { return {x != x ? x + x : __builtin_copysign(1.0, x)}; }
};

struct ErfSingle : UnaryKernel<float, QKR_BASELINE ? 1 : 2> {
  static constexpr double one_from = 4.0;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, infinity<float>);
  }
  template <class V>
  QKR_INLINE static V core(V x) {
    const auto wide = widen(x);
    const auto r = cubic(erf_single::rows, smaller(absolute<double>(wide), one_from));
    return narrow(real(bits(r) | (bits(wide) & sign_bit<double>)));
  }
  static Outcome<float> scalar(float x) { return {x != x ? x + x : __builtin_copysignf(1.0f, x)}; }
};

// erfc x = 2^(N/64) e^r (e^(x^2) erfc x), the last by table, as (hi + lo) * 2^(N >> 6) with hi exact, for x
// from 0 to 27.25.
template <class V>
struct ScaledErfc {
  V t, hi, lo;  // N stands in the low bits of t
  QKR_INLINE explicit ScaledErfc(V x) {
    const V square = x * x;
    const Pair<V> e = ExpSteps::series(0.0 - square, 0.0 - product_error(x, x, square));
    const NearestRow<7, V> at(x);
    V p_hi, p_lo, g, w0, w1, w2, w3, w4, w5, w6;
    look_up(exp_double::powers, bits(e.first) & 63u, p_hi, p_lo);
    look_up(erfc_double::rows, at.row, g, w0, w1, w2, w3, w4, w5, w6);
    const V d = at.distance;
    const V w = w0 + d * (w1 + d * (w2 + d * (w3 + d * (w4 + d * (w5 + d * w6)))));
    t = e.first;
    hi = p_hi * g;
    lo = (hi + p_lo * g) * (e.second + (w + e.second * w)) + p_lo * g;
  }
};

struct ErfcDouble : UnaryKernel<double, 2> {
  // Up to here the low part is a normal number as well, and for negative x the result is 2.
  static constexpr double fast_limit = 26.0;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, infinity<double>) | beyond(larger(x, 0.0), fast_limit);
  }
  // For negative x, 2 - erfc -x.
  template <class V>
  QKR_INLINE static V core(V x) {
    const ScaledErfc<V> value(smaller(absolute<double>(x), fast_limit));
    const auto sign = bits(x) & sign_bit<double>;
    const V scale = real((((bits(value.t) >> 6) + 1023u) << 52) | sign);
    const V two = real(sign >> 1);  // or 0
    const V hi = value.hi * scale, lo = value.lo * scale;
    const V sum = two + hi, sum_error = (two - sum) + hi;
    return sum + (sum_error + lo);
  }
  // Results below the normal range are rounded once, by adding a number whose last bit is theirs.
  static Outcome<double> scalar(double x) {
    constexpr double zero_from = 27.25;
    if (x != x) return {x + x};
    if (x < 0 || x == infinity<double>) return {x < 0 ? 2.0 : 0.0};
    const ScaledErfc<double> e(smaller(x, zero_from));
    const double scale = ExpSteps::scale(e.t, 1022), hi = e.hi * scale, lo = e.lo * scale;
    if (hi + lo >= 1.0) return {(hi + lo) * smallest_normal<double>};
    const double sum = 1.0 + hi, sum_error = (1.0 - sum) + hi;
    return {((sum + (sum_error + lo)) - 1.0) * smallest_normal<double>, VXM_STATUS_UNDERFLOW};
  }
};

struct ErfcSingle : UnaryKernel<float, 1> {
  static constexpr float fast_limit = 9.19f;  // up to here the result is a normal number
  static constexpr double zero_from = 10.25;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, infinity<float>) | beyond(larger(x, 0.0f), fast_limit);
  }
  template <class V>
  QKR_INLINE static V core(V x) {
    const auto wide = widen(x);
    const auto magnitude = smaller(absolute<double>(wide), zero_from), square = magnitude * magnitude;
    const auto e = ExpSteps::scaled(ExpSteps::reduce(0.0 - square, 0.0));
    const auto sign = bits(wide) & sign_bit<double>;
    return narrow(real(sign >> 1) + real(bits(e * cubic(erfc_single::rows, magnitude)) | sign));
  }
  static Outcome<float> scalar(float x) {
    if (x != x) return {x + x};
    if (__builtin_fabsf(x) == infinity<float>) return {x < 0 ? 2.0f : 0.0f};
    const float result = core(x);
    return {result, result < smallest_normal<float> ? VXM_STATUS_UNDERFLOW : VXM_STATUS_OK};
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_FUNCTION(_vxmdErf_HA, _vxmdErf_50, double, 0.58, -0x1.86378bfe023bap+1, ErfDouble)
QKR_FUNCTION(_vxmsErf_HA, _vxmsErf_21, float, 0.508, -0x1.054204p+0, ErfSingle)
QKR_FUNCTION(_vxmdErfc_HA, _vxmdErfc_50, double, 0.56, 0x1.e1fd70ef888c2p+3, ErfcDouble)
QKR_FUNCTION(_vxmsErfc_HA, _vxmsErfc_21, float, 0.513, 0x1.87f4a8p+1, ErfcSingle)
