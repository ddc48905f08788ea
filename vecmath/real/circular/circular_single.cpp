// Sine, cosine and tangent in single precision, in double precision inside and rounded once; the formulas of
// the first two stand in circular_single.h. Arguments beyond 10000 go through the cores in double, those
// from 2^30 on one by one.
#include "vecmath/real/circular/circular_single.h"

#include "vecmath/frame/function.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/circular/sine_double.h"
#include "vecmath/real/circular/tangent.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr float fast_limit = 0x1.388002p13f;  // next above 10000

template <int group_width>
struct SingleKernel : UnaryKernel<float, group_width> {
  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, fast_limit);
  }
  // One of two results, and what is left to single elements.
  template <class V>
  QKR_INLINE static V far_or_near(V x, V far, V near) {
    const auto is_near = absolute<float>(x) < fast_limit;
    return real(select(is_near, bits(near), bits(far)));
  }
  template <class V>
  QKR_INLINE static Flags beyond_wide(V x) {
    return beyond(x, (float)quarter_turns_limit);
  }
};

struct SinSingle : SingleKernel<QKR_BASELINE ? 1 : 2> {
  template <class V>
  QKR_INLINE static V core(V x) {
    return sine_of_single(x, x, 0.0);
  }
  template <class V>
  QKR_INLINE static V wider_core(V x, Flags &special) {
    special = beyond_wide(x);
    return far_or_near(x, narrow(sine_at(reduce_wider(widen(x), no_reduction, 0))), core(x));
  }
  static void treat(ptrdiff_t i, Arrays<float> v) { _vxmsSin_SC_HA(i, v.a, v.r); }
};

struct CosSingle : SingleKernel<QKR_BASELINE ? 1 : 2> {
  static constexpr float half_pi = 1.5707963705062866f;
  template <class V>
  QKR_INLINE static V core(V x) {
    return sine_of_single(x, x + half_pi, 0.5);
  }
  template <class V>
  QKR_INLINE static V wider_core(V x, Flags &special) {
    special = beyond_wide(x);
    return far_or_near(x, narrow(sine_at(reduce_wider(widen(x), no_reduction, 16))), core(x));
  }
  static void treat(ptrdiff_t i, Arrays<float> v) { _vxmsCos_SC_HA(i, v.a, v.r); }
};

struct SinCosSingle : SingleKernel<QKR_BASELINE ? 1 : 2> {
  static constexpr int results = 2;
  template <class V>
  QKR_INLINE static Pair<V> core(V x) {
    return sine_and_cosine_of_single(x);
  }
  template <class V>
  QKR_INLINE static Pair<V> wider_core(V x, Flags &special) {
    special = beyond_wide(x);
    const auto far = sine_and_cosine_at(reduce_wider(widen(x), no_reduction, 0));
    const Pair<V> near = core(x);
    return {far_or_near(x, narrow(far.first), near.first), far_or_near(x, narrow(far.second), near.second)};
  }
  static void treat(ptrdiff_t i, Arrays<float> v) { _vxmsSinCos_SC_HA(i, v.a, v.r, v.q); }
};

struct TanSingle : SingleKernel<1> {
  // r (1 + P1 z) / (1 + Q1 z + Q2 z^2) for |r| <= pi/4, within 2^-25 of the tangent.
  static constexpr double P1 = -0.0958017723, Q1 = -0.429135777, Q2 = 0.00971685835;
  static constexpr double rounder = 6755399441055744.0;  // its sum with N has the parity of N as lowest bit

  template <class V>
  QKR_INLINE static V core(V x) {
    const V t = x * inverse_half_pi + single_shifter;
    const auto N = widen(t - single_shifter);
    const auto r = reduce(widen(x), N, quarter_turn_hi, quarter_turn_lo);
    const auto z = r * r;
    const auto p = bits(r * (1.0 + z * P1)), q = bits(1.0 + z * (Q1 + z * Q2));
    const auto odd = 0ul - (bits(N + rounder) & 1ul), swap = (p ^ q) & odd;
    const auto quotient = real(p ^ swap) / real(q ^ swap);
    return narrow(real(bits(quotient) ^ (odd << 63)));
  }
  template <class V>
  QKR_INLINE static V wider_core(V x, Flags &special) {
    special = beyond_wide(x);
    return far_or_near(x, narrow(tangent(reduce_wider(widen(x), tangent_limit, 0))), core(x));
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
