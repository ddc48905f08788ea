// Inverse hyperbolic functions, all as ln(1 + u) of a u that is as small as the result (W. Kahan, Branch cuts
// for complex elementary functions, 1987):
//   arsinh x = ln(1 + x + x^2 / (1 + sqrt(1 + x^2)))
//   arcosh x = ln(1 + (x - 1) + sqrt(x^2 - 1))
//   artanh x = ln(1 + 2x / (1 - x)) / 2
// In double precision u is carried with a tail, so that the rounding of the result is nearly the only one. In
// single precision the logarithm of 1 + u in a double is enough, but for small results, for which a series
// stands.
#include <type_traits>

#include "vecmath/frame/function.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/in_double.h"
#include "vecmath/real/logarithm.h"
#include "vecmath/real/polynomial.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// From here on arsinh x and arcosh x are ln(2x) rounded.
constexpr double huge = 0x1p30;

// ln(1 + u + u_lo), or ln(2x) for huge x. Where a double has the whole value of 2x or 1 + u, its tail is 0.
template <bool may_be_huge, class V>
QKR_INLINE V ln_of_one_plus(V u, V u_lo, V x) {
  const V y = 1.0 + u, from_u = y - 1.0, y_lo = (1.0 - (y - from_u)) + (u - from_u);
  const V half = 0.5 * y, scale = real(0x7FD0000000000000u - (bits(half) & 0x7FF0000000000000u));
  V argument = half, middle = y_lo * scale, low = u_lo * scale;
  if constexpr (may_be_huge) {
    argument = select(x < huge, half, x);
    middle = zero_unless(x < huge, middle), low = zero_unless(x < huge, low);
  }
  const LogReduction<V> l(argument);
  const V n = l.n + 1.0, b = (l.tail + middle) * l.r, z = b + l.head_residual;
  const V head = l.head_residual + exact_mad(n, ln2_hi, l.t_hi), rest = n * ln2_lo + l.t_lo;
  // As in logarithm.cpp: |z| <= 2^-10, within 2^-56.
  const V series = (z * z) * (-0.49999999999995254 +
                              z * (0.3333333333332741 + z * (-0.2500001988694339 + z * 0.2000001934420511)));
  // Around 1 + u = 1 the rest is 0, and the head is u itself.
  return (((series + low * l.r) + rest) + zero_unless(rest != 0.0, b)) + (head + zero_unless(rest == 0.0, b));
}

// ln x to 2^-37, for x from 1 on: x = 2^n m with m from 1 - 1/64 to 2 - 1/32, z = r m - 1 at most 1/32.
template <class V>
QKR_INLINE V short_ln(V x) {
  constexpr double ln2 = 0x1.62e42fefa39efp-1;
  constexpr double series[] = {-1.0 / 2, 1.0 / 3, -1.0 / 4, 1.0 / 5, -1.0 / 6};
  constexpr int shift = 48;
  constexpr uint64_t half_row = 1ul << (shift - 1), one = 0x3FF0000000000000u,
                     exponent_field = 0x7FF0000000000000u;
  const auto rounded_up = bits(x) + half_row;
  const V m = real(bits(x) - (rounded_up & exponent_field) + one);
  V r, minus_ln_r;
  look_up_16(inverse_hyperbolic::short_logarithms, rounded_up >> shift & 15u, r, minus_ln_r);
  const V z = m * r - 1.0;
  return (exponent(rounded_up) * ln2 + minus_ln_r) + (z + (z * z) * polynomial(series, z));
}

// In single precision two terms of the function's series do below this.
constexpr double small = 0x1p-8;

template <class T>
using InverseHyperbolic = UnaryKernel<T, QKR_SIMD_BYTES == 64 && !is_single<T> ? 4 : 2>;

template <class T>
struct Asinh : InverseHyperbolic<T> {
  using Environment = WithSse<X87Double>;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, infinity<T>);
  }
  static Outcome<T> scalar(T x) { return {x + x}; }

  template <class V>
  QKR_INLINE static V core(V argument) {
    const auto signed_x = in_double<T>(argument), x = absolute<double>(signed_x);
    if constexpr (is_single<T>) {
      const auto square = x * x;
      const auto log = short_ln(x + square_root(1.0 + square));
      return narrow(flip_sign(select(x < small, x - x * (square * (1.0 / 6)), log), signed_x));
    } else {
      const V s = at_most(x, huge), square = s * s, square_lo = product_error(s, s, square);
      const V radicand = 1.0 + square, from_square = radicand - 1.0;
      const V radicand_lo = ((1.0 - (radicand - from_square)) + (square - from_square)) + square_lo;
      const V root = square_root(radicand), root_square = root * root;
      const V remainder = (radicand - root_square) - product_error(root, root, root_square);
      const V root_lo = (remainder + radicand_lo) * (0.5 * rough_reciprocal(root));
      const V divisor = 1.0 + root, divisor_lo = ((root - divisor) + 1.0) + root_lo;
      const V quotient = square / divisor, product = quotient * divisor;
      const V rest = ((square - product) - product_error(quotient, divisor, product)) + square_lo;
      const V quotient_lo = (rest - quotient * divisor_lo) * rough_reciprocal(divisor);
      const V u = s + quotient, u_lo = ((s - u) + quotient) + quotient_lo;
      return flip_sign(ln_of_one_plus<true>(u, u_lo, x), signed_x);
    }
  }
};

template <class T>
struct Acosh : InverseHyperbolic<T> {
  using Environment = WithSse<X87Double>;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return outside(x, (T)1, infinity<T>);
  }
  static Outcome<T> scalar(T x) {
    if (x != x || x > 1) return {x + x};
    return {indefinite<T>(), VXM_STATUS_ERRDOM};
  }

  template <class V>
  QKR_INLINE static V core(V argument) {
    const auto x = in_double<T>(argument);
    if constexpr (is_single<T>) {
      return narrow(short_ln(x + square_root(x * x - 1.0)));
    } else {
      const V s = at_most(x, huge), square = s * s, less_one = square - 1.0;
      const V less_one_lo = ((square - less_one) - 1.0) + product_error(s, s, square);
      const V radicand = less_one + less_one_lo, radicand_lo = (less_one - radicand) + less_one_lo;
      const V root = square_root(radicand), root_square = root * root;
      const V remainder = (radicand - root_square) - product_error(root, root, root_square);
      const V root_lo = (remainder + radicand_lo) * (0.5 * rough_reciprocal(root));
      const V excess = s - 1.0, u = root + excess, u_lo = ((root - u) + excess) + root_lo;
      return ln_of_one_plus<true>(u, u_lo, x);
    }
  }
};

template <class T>
struct Atanh : InverseHyperbolic<T> {
  using Environment = std::conditional_t<is_single<T>, SseEnvironment, WithSse<X87Double>>;
  static constexpr T fill = 0.5;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, (T)1);
  }
  static Outcome<T> scalar(T x) {
    if (x != x) return {x + x};
    if (__builtin_fabs(x) > 1) return {indefinite<T>(), VXM_STATUS_ERRDOM};
    return {(T)__builtin_copysign(infinity<T>, x), VXM_STATUS_SING};
  }

  template <class V>
  QKR_INLINE static V core(V argument) {
    const auto signed_x = in_double<T>(argument), x = absolute<double>(signed_x);
    if constexpr (is_single<T>) {
      const auto log = 0.5 * short_ln((1.0 + x) / (1.0 - x));
      return narrow(flip_sign(select(x < small, x + x * (x * x * (1.0 / 3)), log), signed_x));
    } else {
      const V twice = x + x, divisor = 1.0 - x, divisor_lo = (1.0 - divisor) - x;
      const V u = twice / divisor, product = u * divisor;
      const V rest = (twice - product) - product_error(u, divisor, product);
      const V rough = rough_reciprocal(divisor), reciprocal = rough * (2.0 - rough * divisor);  // to 0.3 %
      return flip_sign(0.5 * ln_of_one_plus<false>(u, (rest - u * divisor_lo) * reciprocal, x), signed_x);
    }
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_FUNCTION(_vxmdAsinh_HA, _vxmdAsinh_50, double, 0.60, 0x1.ff1645ca5d317p-11, Asinh<double>)
QKR_FUNCTION(_vxmdAcosh_HA, _vxmdAcosh_50, double, 0.63, 0x1.000007fde6ce1p+0, Acosh<double>)
QKR_FUNCTION(_vxmdAtanh_HA, _vxmdAtanh_50, double, 0.60, 0x1.ff87773540dccp-12, Atanh<double>)
QKR_FUNCTION(_vxmsAsinh_HA, _vxmsAsinh_21, float, 0.503, 0x1.f76a4ap-6, Asinh<float>)
QKR_FUNCTION(_vxmsAcosh_HA, _vxmsAcosh_21, float, 0.501, 0x1.469dcp+0, Acosh<float>)
QKR_FUNCTION(_vxmsAtanh_HA, _vxmsAtanh_21, float, 0.503, 0x1.f79c84p-7, Atanh<float>)
