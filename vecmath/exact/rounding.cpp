// Ceil, Floor, Round, Trunc, Rint, NearbyInt: by the processor's instruction where it has one that does just
// this, else on bit patterns. Doubles quiet a signalling NaN; floats from 2^23 on, NaNs too, pass as they
// are.
#include "vecmath/exact/rounding.h"

#include "vecmath/frame/sign.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T, Rounding rounding>
struct RoundPatterns : UnaryKernel<T, 2> {
  using Environment = CallersEnvironment;
  template <class V>
  QKR_INLINE static V core(V x) {
    if constexpr (is_two<V>) {
      return {core(x.a), core(x.b)};
    } else {
      const V result = real(Parts<T>(x).template rounded<rounding>());
      if constexpr (sizeof(T) == 4) return result;
      else return times_one(result);
    }
  }
};

#if QKR_SIMD_BYTES > 16
// r, but x itself where it is a NaN, signalling ones too. The question raises no event that r has not.
QKR_INLINE f64 nan_or(f64, f64 r) { return r; }
#if QKR_SIMD_BYTES == 64
QKR_INLINE f32 nan_or(f32 x, f32 r) { return (f32)_mm512_mask_mov_ps((__m512)r, is_nan(x), (__m512)x); }
#else
QKR_INLINE f32 nan_or(f32 x, f32 r) { return x != x ? x : r; }
#endif

template <class T, Rounding rounding>
struct RoundByHardware : UnaryKernel<T, 4> {
  using Environment = CallersEnvironment;
  template <class V>
  QKR_INLINE static V core(V x) {
    if constexpr (is_two<V>) return {core(x.a), core(x.b)};
    else return nan_or(x, rounded(x));
  }

  template <class V>
  QKR_INLINE static V rounded(V x) {
    if constexpr (rounding == Rounding::half_away) {
#if QKR_SIMD_BYTES == 64
      // Toward zero, x + 1/2 never crosses to the next integer by rounding.
      const V half = real((bits(x) & Bits<T>::sign) | Bits<T>::half);
      // The product raises the event of a signalling NaN, which the sum, as every other, keeps to itself.
      return round_by_hardware<_MM_FROUND_TO_ZERO>(add_toward_zero(times_one(x), half));
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

#define QKR_ROUNDING(name, T, ...) \
  QKR_ENTRY(name, (int32_t n, const T *a, T *r), (n, a, r)) { __VA_ARGS__(n, a, r); }

QKR_ROUNDING(_vxmdCeil, double, round_all<double, Rounding::up>)
QKR_ROUNDING(_vxmsCeil, float, round_all<float, Rounding::up>)
QKR_ROUNDING(_vxmdFloor, double, round_all<double, Rounding::down>)
QKR_ROUNDING(_vxmsFloor, float, round_all<float, Rounding::down>)
QKR_ROUNDING(_vxmdRound, double, round_all<double, Rounding::half_away>)
QKR_ROUNDING(_vxmsRound, float, round_all<float, Rounding::half_away>)
QKR_ROUNDING(_vxmdTrunc, double, round_all<double, Rounding::to_zero>)
QKR_ROUNDING(_vxmsTrunc, float, round_all<float, Rounding::to_zero>)
QKR_ROUNDING(_vxmdRint, double, round_in_current_direction<double>)
QKR_ROUNDING(_vxmsRint, float, round_in_current_direction<float>)
QKR_ROUNDING(_vxmdNearbyInt, double, round_in_current_direction<double>)
QKR_ROUNDING(_vxmsNearbyInt, float, round_in_current_direction<float>)
