// Masks: what the operators < == > give of two operands. Of vectors lanes of ones and zeros, of Two a mask
// each, of numbers a truth value; the compiler keeps them in mask registers where there are any.
#pragma once

#include "simd/vectors.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

QKR_INLINE f64 in_lanes(f64 v) { return v; }
QKR_INLINE f64 in_lanes(double x) { return x - f64{}; }

// yes where the mask is set, else no. Either may be one number.
template <class Yes, class No>
QKR_INLINE f64 select(i64 mask, Yes yes, No no) {
  return mask ? in_lanes(yes) : in_lanes(no);
}
QKR_INLINE u32 select(i32 mask, u32 yes, u32 no) { return mask ? yes : no; }
QKR_INLINE double select(bool mask, double yes, double no) { return mask ? yes : no; }

// v where the mask is set, else +0.
QKR_INLINE f64 zero_unless(i64 mask, f64 v) { return mask ? v : f64{}; }
QKR_INLINE f64 zero_unless(i64 mask, double v) { return zero_unless(mask, in_lanes(v)); }
QKR_INLINE f32 zero_unless(i32 mask, f32 v) { return mask ? v : f32{}; }
QKR_INLINE u32 zero_unless(i32 mask, u32 v) { return mask ? v : u32{}; }
QKR_INLINE double zero_unless(bool mask, double v) { return mask ? v : 0.0; }
QKR_INLINE float zero_unless(bool mask, float v) { return mask ? v : 0.0f; }

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
