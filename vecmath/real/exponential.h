// The steps of the exponential in double, for Exp and for the functions that are built on it.
#pragma once

#include "vecmath/frame/function.h"
#include "vecmath/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// e^x = 2^(N >> 6) * m with N the integer nearest to x * 64 / ln 2 and m = 2^((N & 63)/64) * e^r.
struct ExpSteps {
  static constexpr double inverse_step = 92.33248261689366;  // 64 / ln 2
  static constexpr double shifter = 6755399441055744.0;      // 1.5 * 2^52: adding it rounds to an integer
  static constexpr double step_high = 0x1.62e42fef00000p-7;  // ln 2 / 64 = hi + lo; N * hi is exact
  static constexpr double step_low = 1.162596423439437e-12;
  // e^r - 1 for |r| <= ln2/128, within 2^-59.
  static constexpr double A2 = 0.49999999999945266, A3 = 0.16666666666653376;
  static constexpr double A4 = 0.04166672515731616, A5 = 0.008333343728805863;
  static constexpr uint64_t biased_zero = 0xFFC0;  // 1023 << 6
  static constexpr uint64_t exponent_field = 0x7FF0000000000000;

  // Below this 2^(N >> 6) is a normal number.
  static constexpr double fast_limit = 0x1.6232bp9;  // 708.39599609375

  // t, whose low bits hold N, and p = e^r - 1; of x + rest, where rest is tiny beside x.
  template <class V, class Rest>
  QKR_INLINE static Pair<V> series(V x, Rest rest) {
    const V t = x * inverse_step + shifter, n = t - shifter;
    const V r = (exact_mad(n, -step_high, x) - n * step_low) + rest;
    return {t, r + (r * r) * (A2 + r * (A3 + r * (A4 + r * A5)))};
  }

  // t and m of x + rest.
  template <class V, class Rest>
  QKR_INLINE static Pair<V> reduce(V x, Rest rest) {
    const auto [t, p] = series(x, rest);
    V hi, lo;
    look_up(exp_double::powers, bits(t) & 63u, hi, lo);
    return {t, (p * (hi + lo) + lo) + hi};
  }

  // m * 2^(N >> 6), where that power is a normal number.
  template <class V>
  QKR_INLINE static V scaled(Pair<V> e) {
    return real(bits(e.second) + ((bits(e.first) << 46) & 0xFFF0000000000000u));
  }

  // 2^((N >> 6) + shift), which must be a normal number.
  static double scale(double t, int64_t shift) {
    return real(((bits(t) + biased_zero + ((uint64_t)shift << 6)) << 46) & exponent_field);
  }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
