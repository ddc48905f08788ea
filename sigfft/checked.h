// The conversions' arguments: their checks, in a fixed order, and the scale factor.
#pragma once

#include <qkr/sigfft.h>

namespace qkr::sigfft {

// convert() once src, dst and len are right.
template <class Convert>
inline zprStatus checked(const void *src, const void *dst, int32_t len, Convert convert) {
  if (!src || !dst) return zprStsNullPtrErr;
  if (len < 1) return zprStsSizeErr;
  convert();
  return zprStsNoErr;
}

// By repeated doubling or halving, which ends in infinity or 0: no type takes more than 1100 steps to that.
template <class T>
inline T power_of_two(int64_t exponent) {
  constexpr int64_t enough = 1100;
  T factor = 1;
  for (int64_t n = exponent < enough ? exponent : enough; n > 0; --n) factor *= 2;
  for (int64_t n = exponent > -enough ? exponent : -enough; n < 0; ++n) factor *= (T)0.5;
  return factor;
}

}  // namespace qkr::sigfft
