// sqrt(x^2 + y^2): the squares as exact sums of two doubles, the root by an approximate reciprocal root and
// the series on its residual, as in roots.cpp. Floats need one double for the sum. Numbers whose squares
// leave the range are scaled one by one.
#include "vecmath/frame/numbers.h"
#include "vecmath/frame/sign.h"
#include "vecmath/real/reciprocal_root.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// sqrt(sum + rest), rest being tiny beside sum.
template <class V, class Rest>
QKR_INLINE V root_of_sum(V sum, Rest rest) {
  const V y = short_reciprocal_root<DoubleRoot>(sum), y2 = y * y;
  const V head = leading_bits(sum, DoubleRoot::head), tail = sum - head;
  const V e = exact_mad(head, y2, -1.0) + (tail + rest) * y2;
  const V p = reciprocal_root_series<double>(e);
  return exact_mad(head, y, exact_mad(tail, y, y * rest + (p * y) * sum));
}

template <class V>
QKR_INLINE V hypotenuse(V x, V y) {
  const V a = larger(absolute<double>(x), absolute<double>(y)),
          b = smaller(absolute<double>(x), absolute<double>(y));
  const V a2 = a * a, b2 = b * b, sum = a2 + b2;
  const V rest = ((a2 - sum) + b2) + (product_error(a, a, a2) + product_error(b, b, b2));
  return root_of_sum(sum, rest);
}

struct HypotDouble : BinaryKernel<double, QKR_BASELINE ? 1 : 2> {
  using Environment = WithSse<X87Double>;
  template <class V>
  QKR_INLINE static Flags special(V x,
                                  V y) {  // integer patterns: NaNs and infinities are above the upper limit
    return outside(larger(absolute<double>(x), absolute<double>(y)), 0x1p-450, 0x1p500) | beyond(x, 0x1p500) |
           beyond(y, 0x1p500);
  }
  template <class V>
  QKR_INLINE static V core(V x, V y) {
    return hypotenuse(x, y);
  }
  // The origin.
  template <class V>
  QKR_INLINE static V wider_core(V x, V y, Flags &flags) {
    V one;
    broadcast(1.0, one);
    const auto zeros = (u64)(((bits(x) | bits(y)) & ~sign_bit<double>) == 0u);
    const V filled = real(bits(x) | (bits(one) & zeros));
    flags = special(filled, y);
    return real(bits(core(filled, y)) & ~zeros);
  }
  static Outcome<double> scalar(double x, double y) {
    x = __builtin_fabs(x), y = __builtin_fabs(y);
    if (x == infinity<double> || y == infinity<double>) return {infinity<double>};
    if (x != x || y != y) return {nan_of(x, y)};
    if (smaller(x, y) <= larger(x, y) * 0x1p-60) return {x + y};  // the larger one, rounded
    const double scale = larger(x, y) > 1 ? 0x1p-600 : 0x1p600;
    const double result = hypotenuse(x * scale, y * scale) * (1 / scale);
    return {result, result == infinity<double> ? VXM_STATUS_OVERFLOW : VXM_STATUS_OK};
  }
};

struct HypotSingle : BinaryKernel<float, 1> {
  using Environment = WithSse<X87Double>;
  template <class V>
  QKR_INLINE static Flags special(V x, V y) {
    return beyond(x, 0x1p127f) | beyond(y, 0x1p127f);
  }
  template <class V>
  QKR_INLINE static V core(V x, V y) {
    const auto a = widen(x), b = widen(y);
    return narrow(square_root(a * a + b * b));
  }
  static Outcome<float> scalar(float x, float y) {
    x = __builtin_fabsf(x), y = __builtin_fabsf(y);
    if (x == infinity<float> || y == infinity<float>) return {infinity<float>};
    if (x != x || y != y) return {nan_of(x, y)};
    const float result = core(x, y);
    return {result, result == infinity<float> ? VXM_STATUS_OVERFLOW : VXM_STATUS_OK};
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

// The first input of the worst pair.

QKR_FUNCTION_OF_TWO(_vxmdHypot_HA, _vxmdHypot_50, double, 0.501, 0x1.8d2947993fff2p-5, HypotDouble)
QKR_FUNCTION_OF_TWO(_vxmsHypot_HA, _vxmsHypot_21, float, 0.501, 0x1.1c015ap-1, HypotSingle)
