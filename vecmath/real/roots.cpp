// Reciprocal square root, cube root and reciprocal cube root. A first guess comes from the pattern of x (J.
// F. Blinn, IEEE Computer Graphics and Applications 17:4 (1997) 80), one step of high order refines it (A. S.
// Householder, The Numerical Treatment of a Single Nonlinear Equation, 1970), and it is rounded to so few
// bits that its residual e = x y^k - 1 comes out exact; the binomial series of (1 + e)^(-1/k) gives the rest.
// No instruction is used whose bits differ between makers of processors.
#include "vecmath/frame/numbers.h"
#include "vecmath/real/reciprocal_root.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class Format>
struct InvSqrt : UnaryKernel<typename Format::Element, QKR_BASELINE ? 2 : 4> {
  using T = typename Format::Element;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return not_positive_normal(x);
  }

  template <class V>
  QKR_INLINE static V core(V x) {
    const V y = short_reciprocal_root<Format>(x), y2 = y * y;
    const V x_head = leading_bits(x, Format::head), x_rest = x - x_head;
    const V e = exact_mad(x_head, y2, (T)-1) + x_rest * y2;
    return y + y * reciprocal_root_series<T>(e);
  }

  static Outcome<T> scalar(T x) {
    constexpr T scale = sizeof(T) == 8 ? (T)0x1p54 : (T)0x1p24, root = sizeof(T) == 8 ? (T)0x1p27 : (T)0x1p12;
    if (x != x) return {x + x};
    if (x == 0) return {(T)1 / x, VXM_STATUS_SING};
    if (x < 0) return {indefinite<T>(), VXM_STATUS_ERRDOM};
    return {x > largest<T> ? (T)0 : core(x * scale) * root};
  }
};

// 1 / cbrt(x) for a positive normal double, within 2^-19: the exponent is divided by 3 in floating point.
template <class V>
QKR_INLINE V reciprocal_cube_root(V x) {
  const V high_word = real((bits(x) >> 32) | 0x4330000000000000u) - 0x1p52;
  const V word = (1430185984.0 + 0x1p52) - high_word * (1.0 / 3.0);
  const V guess = real(bits(word) << 32);  // within 3.4 %
  const V z = 1.0 - (x * guess) * (guess * guess);
  return guess + guess * (z * (1.0 / 3.0 + z * (2.0 / 9.0 + z * (14.0 / 81.0 + z * (35.0 / 243.0)))));
}

// The parts that both cube roots need: y with 11 bits, x y^2 as head + rest, and e = x y^3 - 1.
template <class V>
struct CubeResidual {
  V y, head, rest, e;
  QKR_INLINE explicit CubeResidual(V x) {
    y = round_to(reciprocal_cube_root(x), ~(uint64_t)0 << 42, (uint64_t)1 << 41);
    const V x_head = leading_bits(x, ~(uint64_t)0 << 33), y2 = y * y;  // 20 bits and 22
    head = x_head * y2;
    rest = (x - x_head) * y2;
    e = exact_mad(head, y, -1.0) + rest * y;
  }
};

struct CbrtValue {
  static constexpr bool keeps_zeros = true;
  static constexpr double subnormal_scale = 0x1p-18;
  template <class T>
  static T of_special(T x) {
    return x + x;
  }
  template <class V>
  QKR_INLINE static V of_double(V x) {
    const CubeResidual<V> c(x);
    const V p =
        c.e * (-2.0 / 3 + c.e * (5.0 / 9 + c.e * (-40.0 / 81 + c.e * (110.0 / 243 + c.e * (-308.0 / 729)))));
    return c.head + (c.rest + (c.head + c.rest) * p);
  }
  template <class V>
  QKR_INLINE static V of_single(V x) {
    const V y = reciprocal_cube_root(x), xy2 = x * (y * y), e = xy2 * y - 1.0;
    return xy2 - xy2 * (e * (2.0 / 3));
  }
};
struct InvCbrtValue {
  static constexpr bool keeps_zeros = false;
  static constexpr double subnormal_scale = 0x1p18;
  template <class T>
  static T of_special(T x) {
    return (T)1 / x;
  }
  template <class V>
  QKR_INLINE static V of_double(V x) {
    const CubeResidual<V> c(x);
    const V p =
        c.e * (-1.0 / 3 + c.e * (2.0 / 9 + c.e * (-14.0 / 81 + c.e * (35.0 / 243 + c.e * (-91.0 / 729)))));
    return c.y + c.y * p;
  }
  template <class V>
  QKR_INLINE static V of_single(V x) {
    const V y = reciprocal_cube_root(x), e = (x * y) * (y * y) - 1.0;
    return y - y * (e * (1.0 / 3));
  }
};

template <class T, class Value>
struct CubeRoot : UnaryKernel<T, 2> {
  static constexpr auto sign = ~magnitude(~decltype(bits(T()))());

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return not_positive_normal(real(bits(x) & ~sign));
  }
  template <class V>
  QKR_INLINE static V core(V x) {
    const V magnitude = real(bits(x) & ~sign);
    if constexpr (sizeof(T) == 8) return real(bits(Value::of_double(magnitude)) | (bits(x) & sign));
    else return real(bits(narrow(Value::of_single(widen(magnitude)))) | (bits(x) & sign));
  }
  // Zeros, which the cube root leaves as they are.
  template <class V>
  QKR_INLINE static V wider_core(V x, Flags &flags) requires(Value::keeps_zeros) {
    using U = decltype(bits(V()));
    V one;
    broadcast((T)1, one);
    const U zeros = (U)((bits(x) & ~sign) == 0u);
    const V filled = real(bits(x) | (bits(one) & zeros));
    flags = special(filled);
    return real((bits(core(filled)) & ~zeros) | (bits(x) & zeros));
  }
  static Outcome<T> scalar(T x) {
    if (x != x) return {x + x};
    if (x != 0 && __builtin_fabs(x) <= largest<T>) return {core(x * (T)0x1p54) * (T)Value::subnormal_scale};
    const T result = Value::of_special(x);
    return {result, x == 0 && result != 0 ? VXM_STATUS_SING : VXM_STATUS_OK};
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_FUNCTION(_vxmdInvSqrt_HA, _vxmdInvSqrt_50, double, 0.501, 0x1.528be3e20b924p+8, InvSqrt<DoubleRoot>)
QKR_FUNCTION(_vxmsInvSqrt_HA, _vxmsInvSqrt_21, float, 0.506, 0x1.591f9p+12, InvSqrt<SingleRoot>)
QKR_FUNCTION(_vxmdCbrt_HA, _vxmdCbrt_50, double, 0.55, -0x1.f202422888ef7p-169, CubeRoot<double, CbrtValue>)
QKR_FUNCTION(_vxmsCbrt_HA, _vxmsCbrt_21, float, 0.501, 0x1.cbf92p-130, CubeRoot<float, CbrtValue>)
QKR_FUNCTION(_vxmdInvCbrt_HA, _vxmdInvCbrt_50, double, 0.515, 0x1.f94ffb6c4624dp+497,
             CubeRoot<double, InvCbrtValue>)
QKR_FUNCTION(_vxmsInvCbrt_HA, _vxmsInvCbrt_21, float, 0.501, -0x1.7b6194p-2, CubeRoot<float, InvCbrtValue>)
