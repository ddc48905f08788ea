// Sine, cosine and tangent in single precision: reduction modulo pi or pi/2 and minimax polynomials, in
// double precision inside and rounded once. Arguments beyond 10000 go through the scalar cores in double.
#include "vecmath/frame/function.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/circular/cores.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr float fast_limit = 0x1.388002p13f;        // next above 10000
constexpr float shifter = 12582912.0f;              // 1.5 * 2^23: adding it rounds to an integer
constexpr float inverse_pi = 0.31830987334251404f;  // 1 / pi
constexpr float inverse_half_pi = 0.6366197466850281f;

template <int group_width>
struct SingleKernel : UnaryKernel<float, group_width> {
  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, fast_limit);
  }
};

// x + n a - n b, where n a is exact.
template <class D>
QKR_INLINE D reduce(D x, D n, double a, double b) {
  return exact_mad(n, a, x) - n * b;
}

// sin(r) for |r| <= pi/2, within 2^-25 of it.
template <class D>
QKR_INLINE D half_turn_sine(D r) {
  constexpr double A1 = 0x1.000000089705fp0, A3 = -0x1.55554ae8ba1bdp-3, A5 = 0x1.110ee64cd0933p-7,
                   A7 = -0x1.9f75e2c166f94p-13, A9 = 0x1.5e0a329a17541p-19;
  const D z = r * r;
  return r * (A1 + z * (A3 + z * (A5 + z * (A7 + z * A9))));
}

// The sine of x (shift 0) or of x + pi/2 (shift 1/2 of a half turn).
template <class V>
QKR_INLINE V sine(V x, V counted, double shift) {
  constexpr double minus_pi_high = -3.1415926535846666, minus_pi_low = 5.126688303189038e-12;
  const V t = counted * inverse_pi + shifter, N = t - shifter;
  const V p = narrow(half_turn_sine(reduce(widen(x), widen(N) - shift, minus_pi_high, minus_pi_low)));
  return real(bits(p) ^ (bits(t) << 31));
}

struct SinSingle : SingleKernel<QKR_BASELINE ? 1 : 2> {
  template <class V>
  QKR_INLINE static V core(V x) {
    return sine(x, x, 0.0);
  }
  static void treat(ptrdiff_t i, Arrays<float> v) { _vxmsSin_SC_HA(i, v.a, v.r); }
};

struct CosSingle : SingleKernel<QKR_BASELINE ? 1 : 2> {
  static constexpr float half_pi = 1.5707963705062866f;
  template <class V>
  QKR_INLINE static V core(V x) {
    return sine(x, x + half_pi, 0.5);
  }
  static void treat(ptrdiff_t i, Arrays<float> v) { _vxmsCos_SC_HA(i, v.a, v.r); }
};

constexpr double quarter_turn_hi = -1.5707963267923333, quarter_turn_lo = 2.563344151594519e-12;

struct SinCosSingle : SingleKernel<QKR_BASELINE ? 1 : 2> {
  static constexpr int results = 2;
  // Sine and cosine for |r| <= pi/4, within 2^-28 and 2^-33 of the results.
  static constexpr double A1 = -0.16666654612881793, A2 = 0.008332160761521766, A3 = -0.00019515283190447318;
  static constexpr double B0 = -0.5, B1 = 0.04166664568297557, B2 = -0.0013887316254360454,
                          B3 = 2.443315705834904e-05;

  template <class V>
  QKR_INLINE static Pair<V> core(V x) {
    const V t = x * inverse_half_pi + shifter, N = t - shifter;
    const auto r = reduce(widen(x), widen(N), quarter_turn_hi, quarter_turn_lo);
    const auto z = r * r;
    const auto s = bits(narrow(r * (1.0 + z * (A1 + z * (A2 + z * A3)))));
    const auto c = bits(narrow(1.0 + z * (B0 + z * (B1 + z * (B2 + z * B3)))));
    const auto quadrant = bits(t), swap = (s ^ c) & (0u - (quadrant & 1u));
    return {real((s ^ swap) ^ ((quadrant & 2u) << 30)),
            real((c ^ swap) ^ (((quadrant ^ (quadrant >> 1)) & 1u) << 31))};
  }
  static void treat(ptrdiff_t i, Arrays<float> v) { _vxmsSinCos_SC_HA(i, v.a, v.r, v.q); }
};

struct TanSingle : SingleKernel<1> {
  // r (1 + P1 z) / (1 + Q1 z + Q2 z^2) for |r| <= pi/4, within 2^-25 of the tangent.
  static constexpr double P1 = -0.0958017723, Q1 = -0.429135777, Q2 = 0.00971685835;
  static constexpr double rounder = 6755399441055744.0;  // its sum with N has the parity of N as lowest bit

  template <class V>
  QKR_INLINE static V core(V x) {
    const V t = x * inverse_half_pi + shifter;
    const auto N = widen(t - shifter);
    const auto r = reduce(widen(x), N, quarter_turn_hi, quarter_turn_lo);
    const auto z = r * r;
    const auto p = bits(r * (1.0 + z * P1)), q = bits(1.0 + z * (Q1 + z * Q2));
    const auto odd = 0ul - (bits(N + rounder) & 1ul), swap = (p ^ q) & odd;
    const auto quotient = real(p ^ swap) / real(q ^ swap);
    return narrow(real(bits(quotient) ^ (odd << 63)));
  }
  static void treat(ptrdiff_t i, Arrays<float> v) { _vxmsTan_SC_HA(i, v.a, v.r); }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

// The coefficients of these are what limits them.

QKR_FUNCTION(_vxmsSin_HA, _vxmsSin_21, float, 0.802, 0x1.5e5d46p+3, SinSingle)
QKR_FUNCTION(_vxmsCos_HA, _vxmsCos_21, float, 0.802, 0x1.98107cp+1, CosSingle)
QKR_FUNCTION_TO_TWO(_vxmsSinCos_HA, _vxmsSinCos_21, float, 0.563, 0x1.0723d2p+11, SinCosSingle)
QKR_FUNCTION(_vxmsTan_HA, _vxmsTan_21, float, 0.936, 0x1.f044b6p+1, TanSingle)
