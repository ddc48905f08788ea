// The lengths of the factors route that have straight lines of code.
#pragma once

#include "sigfft/any_length/plan/plan.h"

namespace qkr::sigfft {

constexpr bool is_short(int32_t length) {
  constexpr uint32_t lengths = 1 << 6 | 1 << 9 | 1 << 10 | 1 << 12 | 1 << 15 | 1 << 20 | 1 << 24;
  return length < 32 && lengths >> length & 1;
}

}  // namespace qkr::sigfft

#define QKR_DECLARE_SHORT(name, T) void name(const qkr::sigfft::AnyLengthPlan<T> *plan, const T *src, T *dst);
extern "C" {
QKR_DECLARE_SHORT(zprs_shortFwd_64fc, double)
QKR_DECLARE_SHORT(zprs_shortInv_64fc, double)
QKR_DECLARE_SHORT(zprs_shortFwd_32fc, float)
QKR_DECLARE_SHORT(zprs_shortInv_32fc, float)
}
#undef QKR_DECLARE_SHORT
