// x^y = e^(y ln x), ln x by the table of Ln as a sum of two doubles with more than 64 good bits, the product
// exact. In single precision 2^(y log2 x) in double, by tables so small that registers can hold them.
#include "vecmath/frame/numbers.h"
#include "vecmath/frame/sign.h"
#include "vecmath/real/exponential.h"
#include "vecmath/real/logarithm.h"
#include "vecmath/real/polynomial.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// ln x + shift * ln 2 for positive normal x.
template <class V>
QKR_INLINE Pair<V> ln_as_pair(V x, double shift) {
  const LogReduction<V> x_is(x);
  // z = y r - 1 = z_hi + z_lo, at most 2^-10 in size.
  const V b = x_is.tail * x_is.r, b_error = product_error(x_is.tail, x_is.r, b);
  const V z = x_is.head_residual + b, old = z - b;
  const V z_lo = ((x_is.head_residual - old) + (b - (z - old))) + b_error;
  // s + z - z^2/2, with what each operation loses; s is exact.
  const V n = x_is.n + shift;
  const V s = exact_mad(n, ln2_hi, x_is.t_hi);
  const V half_z = 0.5 * z, square = z * half_z, square_error = product_error(z, half_z, square);
  const V h1 = s + z, e1 = (s - h1) + z;
  const V h2 = h1 - square, e2 = (h1 - h2) - square;
  const V cubic = (z * square) * (2.0 / 3 + z * (-0.5 + z * (0.4 + z * (-1.0 / 3 + z * (2.0 / 7)))));
  const V low = (((e1 + e2) + (n * ln2_lo + x_is.t_lo)) + ((z_lo - z * z_lo) - square_error)) + cubic;
  const V hi = h2 + low;
  return {hi, (h2 - hi) + low};
}

// y ln x as a pair.
template <class V>
QKR_INLINE Pair<V> power_exponent(V x, V y, double shift) {
  const Pair<V> log = ln_as_pair(x, shift);
  const V p = y * log.first;
  return {p, product_error(y, log.first, p) + y * log.second};
}

template <class T>
Outcome<T> any_power(T x, T y);

// The power of a negative base is that of its magnitude, with the sign of the base where y is odd; K refuses
// what has no such power, as y is made a NaN there, and large even numbers with it.
template <class K, class V>
QKR_INLINE V power_of_signed(V x, V y, Flags &special) {
  using T = typename K::Element;
  using U = decltype(bits(V()));
  constexpr T integers_from = sizeof(T) == 8 ? (T)0x1p52 : (T)0x1p23;
  const V magnitude = absolute<T>(y), t = magnitude + integers_from;
  const U is_integer = (U)(t - integers_from == magnitude) & (U)(magnitude < integers_from);
  const U negative = bits(x) & sign_bit<T>, refused = (U)(negative != 0u) & ~is_integer;
  const V power = K::core(absolute<T>(x), real(bits(y) | refused), special);
  return real(bits(power) | (negative & (bits(t) << (8 * sizeof(T) - 1))));
}

struct PowDouble : BinaryKernel<double, 2> {
  // Exponents within these limits keep the exact product in range, and those below them give 1.
  template <class V>
  QKR_INLINE static V core(V x, V y, Flags &special) {
    const Pair<V> p = power_exponent(x, y, 0.0);
    special = not_positive_normal(x) | beyond(y, 0x1p500) | beyond(p.first, 708.0);
    return ExpSteps::scaled(ExpSteps::reduce(p.first, p.second));
  }
  template <class V>
  QKR_INLINE static V wider_core(V x, V y, Flags &special) {
    return power_of_signed<PowDouble>(x, y, special);
  }
  static Outcome<double> scalar(double x, double y) { return any_power(x, y); }
};
struct PowxDouble : PowDouble {
  static constexpr bool second_is_number = true;
};

// Floats: log2 x = n - log2 r + log2(1 + z) with z = x r 2^-n - 1 exact, and 2^p = 2^N 2^(j/32) 2^r; all of
// it in double, with errors of 2^-46 of log2 x.
template <class V>
QKR_INLINE auto single_exponent(V x, V y) {
  constexpr uint32_t first = 0x3F320000, one = 0x3F800000;  // x 2^-n lies from 0.695 on
  const auto binades = (bits(x) - first) & 0xFF800000u;
  const auto n = widen(exponent(bits(x) + (one - first))), mantissa = widen(real(bits(x) - binades));
  const auto j = (bits(mantissa) - 0x3FE6400000000000u) >> 47;
  const auto z = exact_mad(mantissa, pick<32>(pow_single::reciprocal, j), -1.0);
  const auto log = (n + pick<32>(pow_single::minus_log, j)) +
                   z * polynomial_by_pairs<6>(pow_single::log_polynomial, z, z * z);
  return widen(y) * log;
}
template <class V>
QKR_INLINE V power_of_two(V p) {
  constexpr double to_32nds = 0x1.8p47;  // adding it rounds to a multiple of 1/32
  const V t = p + to_32nds, r = p - (t - to_32nds);
  const V node = pick<32>(pow_single::powers, bits(t));
  const V m = node + node * (r * polynomial_by_pairs<4>(pow_single::power_polynomial, r, r * r));
  return real(bits(m) + ((bits(t) << 47) & 0xFFF0000000000000u));
}

struct PowSingle : BinaryKernel<float, 1> {
  // The limit keeps the result a normal number.
  template <class V>
  QKR_INLINE static V core(V x, V y, Flags &special) {
    const auto p = single_exponent(x, y);
    special = not_positive_normal(x) | beyond(narrow(p), 126.0f);
    return narrow(power_of_two(p));
  }
  template <class V>
  QKR_INLINE static V wider_core(V x, V y, Flags &special) {
    return power_of_signed<PowSingle>(x, y, special);
  }
  static Outcome<float> scalar(float x, float y) { return any_power(x, y); }
};
struct PowxSingle : PowSingle {
  static constexpr bool second_is_number = true;
};

// 0: not an integer, 1: odd, 2: even.
int parity(double y) {
  const double magnitude = __builtin_fabs(y);
  if (magnitude >= 0x1p53) return 2;
  const int64_t integer = (int64_t)magnitude;
  return (double)integer != magnitude ? 0 : integer & 1 ? 1 : 2;
}

// x^y of finite positive x and finite y, rounded to T once; no exception but those of the result.
template <class T>
T finite_power(double x, double y) {
  const bool subnormal = x < 0x1p-1022;
  if (__builtin_fabs(y) > 0x1p500) y = y < 0 ? -0x1p500 : 0x1p500;  // as good as an infinity
  if (__builtin_fabs(y) < 0x1p-500) return (T)1;
  Pair<double> p = power_exponent(subnormal ? x * 0x1p52 : x, y, subnormal ? -52.0 : 0.0);
  if (p.first > 800) p = {800, 0};
  if (p.first < -800) p = {-800, 0};
  const Pair<double> e = ExpSteps::reduce(p.first, p.second);
  if (p.first > 700) return (T)(e.second * ExpSteps::scale(e.first, -512) * 0x1p512);
  if (p.first < -700) return (T)(e.second * ExpSteps::scale(e.first, 512) * 0x1p-512);
  return (T)(e.second * ExpSteps::scale(e.first, 0));
}

template <class T>
Outcome<T> any_power(T x, T y) {
  if (y == 0 || x == 1) return {1};
  if (x != x || y != y) return {nan_of(x, y)};
  const T magnitude = __builtin_fabs(x);
  const bool finite = magnitude <= largest<T> && __builtin_fabs(y) <= largest<T>;
  if (magnitude == 1 && !finite) return {1};
  const int y_is = parity(y);
  const T sign = __builtin_signbit(x) && y_is == 1 ? -1 : 1;
  if (finite && x < 0 && y_is == 0) return {indefinite<T>(), VXM_STATUS_ERRDOM};
  if (magnitude == 0 || !finite) {
    const bool grows = (magnitude > 1) == (y > 0), pole = magnitude == 0 && grows && finite;
    return {sign * (grows ? infinity<T> : 0), pole ? VXM_STATUS_SING : VXM_STATUS_OK};
  }
  const T power = finite_power<T>(magnitude, y);
  return {sign * power, power > largest<T>           ? VXM_STATUS_OVERFLOW
                        : power < smallest_normal<T> ? VXM_STATUS_UNDERFLOW
                                                     : VXM_STATUS_OK};
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

// The base of the worst pair.

QKR_FUNCTION_OF_TWO(_vxmdPow_HA, _vxmdPow_50, double, 0.55, 0x1.aed0ae2780f45p+0, PowDouble)
QKR_FUNCTION_OF_TWO(_vxmsPow_HA, _vxmsPow_21, float, 0.501, 0x1.ab8c6ep-4, PowSingle)
QKR_FUNCTION_OF_NUMBER(_vxmdPowx_HA, _vxmdPowx_50, double, 0.55, 0x1.aed0ae2780f45p+0, PowxDouble)
QKR_FUNCTION_OF_NUMBER(_vxmsPowx_HA, _vxmsPowx_21, float, 0.501, 0x1.ab8c6ep-4, PowxSingle)
