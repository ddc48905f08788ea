// What the inverse functions share. All of them compute in double; single-precision kernels take shorter
// polynomials and leave the compensating tails out.
#pragma once

#include "simd/simd.h"
#include "vecmath/frame/function.h"
#include "vecmath/frame/sign.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T>
constexpr bool is_single = sizeof(T) == sizeof(float);

// The argument of a kernel of T as doubles, and a result as T.
template <class T, class V>
QKR_INLINE auto in_double(V x) {
  if constexpr (is_single<T>) return widen(x);
  else return x;
}
template <class T, class V>
QKR_INLINE auto rounded(V x) {
  if constexpr (is_single<T>) return narrow(x);
  else return x;
}

// 1/x to 5.1 % for normal x from 2^-1022 to 2^1022, and some finite number for 0: enough to turn the
// remainder of a quotient or root into its tail.
template <class V>
QKR_INLINE V rough_reciprocal(V x) {
  return real(0x7FDE600000000000u - bits(x));
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
