// Ceil, Floor, Round, Trunc, Rint, NearbyInt: by the processor's instruction where it has one that does just
// this, else on bit patterns. Doubles quiet a signalling NaN; floats from 2^23 on, NaNs too, pass as they
// are.
#include "vecmath/exact/rounding.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T>
struct ExactKernel {
  using Element = T;
  using Environment = CallersEnvironment;
  static constexpr int inputs = 1, results = 1, width = 1;
};

template <class T, Rounding rounding>
struct RoundPatterns : ExactKernel<T> {
  template <class V>
  QKR_INLINE static V core(V x) {
    const Parts<T> parts(x);
    const V result = real(parts.template rounded<rounding>());
    if constexpr (sizeof(T) == 4) return result;
    else {  // only large numbers and NaNs take part in the multiplication
      const V large = times_one(real(bits(x) & parts.no_fraction));
      return real((bits(result) & ~parts.no_fraction) | (bits(large) & parts.no_fraction));
    }
  }
};

#if QKR_SIMD_BYTES > 16
template <class T, Rounding rounding>
struct RoundByHardware : ExactKernel<T> {
  template <class V>
  QKR_INLINE static V core(V x) {
    if constexpr (sizeof(T) == 8) return rounded(x);
    else {
      const u32 as_it_is = (u32)((i32)(bits(x) & ~Bits<T>::sign) >= (i32)(u32{} + Bits<T>::all_integers));
      return real((bits(rounded(x)) & ~as_it_is) | (bits(x) & as_it_is));
    }
  }

  template <class V>
  QKR_INLINE static V rounded(V x) {
    if constexpr (rounding == Rounding::half_away) {
#if QKR_SIMD_BYTES == 64
      // Toward zero, x + 1/2 never crosses to the next integer by rounding.
      const V half = real((bits(x) & Bits<T>::sign) | Bits<T>::half);
      return round_by_hardware<_MM_FROUND_TO_ZERO>(add_toward_zero(x, half));
#else
      return RoundPatterns<T, rounding>::core(x);
#endif
    } else {
      constexpr int directions[] = {_MM_FROUND_TO_NEAREST_INT, _MM_FROUND_TO_NEG_INF, _MM_FROUND_TO_POS_INF,
                                    _MM_FROUND_TO_ZERO};
      return round_by_hardware<directions[(int)rounding]>(x);
    }
  }
};
#else
template <class T, Rounding rounding>
using RoundByHardware = RoundPatterns<T, rounding>;
#endif

template <class T, Rounding rounding>
QKR_INLINE void round_all(int32_t n, const T *a, T *r) {
  if (hardware_rounds_exactly()) run<RoundByHardware<T, rounding>>(n, {a, nullptr, r, nullptr});
  else run<RoundPatterns<T, rounding>>(n, {a, nullptr, r, nullptr});
}

// Of the unit that the kernels use. Arithmetic would tell it too, but raise the inexact flag.
QKR_INLINE Rounding current_rounding() { return (Rounding)(_mm_getcsr() >> 13 & 3); }

template <class T>
QKR_INLINE void round_in_current_direction(int32_t n, const T *a, T *r) {
  switch (current_rounding()) {
    case Rounding::down:
      return round_all<T, Rounding::down>(n, a, r);
    case Rounding::up:
      return round_all<T, Rounding::up>(n, a, r);
    case Rounding::to_zero:
      return round_all<T, Rounding::to_zero>(n, a, r);
    default:
      return round_all<T, Rounding::nearest>(n, a, r);
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_ROUNDING(function, call)                                                                        \
  QKR_ENTRY(_vxmd##function, (int32_t n, const double *a, double *r), (n, a, r)) { call(double)(n, a, r); } \
  QKR_ENTRY(_vxms##function, (int32_t n, const float *a, float *r), (n, a, r)) { call(float)(n, a, r); }
#define UP(T) round_all<T, Rounding::up>
#define DOWN(T) round_all<T, Rounding::down>
#define HALF_AWAY(T) round_all<T, Rounding::half_away>
#define TO_ZERO(T) round_all<T, Rounding::to_zero>
#define IN_CURRENT_DIRECTION(T) round_in_current_direction<T>

QKR_ROUNDING(Ceil, UP)
QKR_ROUNDING(Floor, DOWN)
QKR_ROUNDING(Round, HALF_AWAY)
QKR_ROUNDING(Trunc, TO_ZERO)
QKR_ROUNDING(Rint, IN_CURRENT_DIRECTION)
QKR_ROUNDING(NearbyInt, IN_CURRENT_DIRECTION)
