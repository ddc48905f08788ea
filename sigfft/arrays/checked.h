// The conversions' arguments: their checks, in a fixed order, and the scale factor.
#pragma once

#include <qkr/sigfft.h>

namespace qkr::sigfft {

// convert() once src, dst and len are right. It returns success, so that an entry can end by a jump to it.
template <class Convert>
__attribute__((flatten)) inline zprStatus checked(const void *src, const void *dst, int32_t len,
                                                  Convert convert) {
  if (!src || !dst) return zprStsNullPtrErr;
  if (len < 1) return zprStsSizeErr;
  return convert();
}

// 2 to the power `exponent`, a normal number of T.
template <class T>
inline T normal_power(int64_t exponent) {
  if constexpr (sizeof(T) == 8) return __builtin_bit_cast(T, (exponent + 1023) << 52);
  else return __builtin_bit_cast(T, (int32_t)(exponent + 127) << 23);
}
inline int64_t within(int64_t limit, int64_t x) { return x > limit ? limit : x < -limit ? -limit : x; }

// The same of any exponent: beyond the range of T infinity or 0.
template <class T>
inline T power_of_two(int64_t exponent) {
  const int64_t e = within(sizeof(T) == 8 ? 2044 : 252, exponent);
  return normal_power<T>(e / 2) * normal_power<T>(e - e / 2);
}

// A power of two with the range of double precision, by which numbers of single precision are multiplied in
// two steps. All become 0 or too large for an integer long before that range ends.
struct WideFactor {
  float first, second;
};
template <>
inline WideFactor power_of_two(int64_t exponent) {
  if (exponent > 1023 || exponent < -1074) return {exponent > 0 ? __builtin_inff() : 0, 1};
  const int64_t e = within(252, exponent);
  return {normal_power<float>(e / 2), normal_power<float>(e - e / 2)};
}

}  // namespace qkr::sigfft
