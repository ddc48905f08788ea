// What the inverse functions share. All of them compute in double; single-precision kernels take shorter
// polynomials and leave the compensating tails out.
#pragma once

#include "simd/simd.h"
#include "vecmath/frame.h"

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

constexpr uint64_t sign_bit = 0x8000000000000000u;

template <class T, class V>
QKR_INLINE V absolute(V x) {
  if constexpr (is_single<T>) return real(bits(x) & 0x7FFFFFFFu);
  else return real(bits(x) & ~sign_bit);
}
template <class V, class Sign>
QKR_INLINE V flip_sign(V x, Sign sign) {
  return real(bits(x) ^ (bits(sign) & sign_bit));
}

// 1/x to 5.1 % for normal x from 2^-1022 to 2^1022, and some finite number for 0: enough to turn the
// remainder of a quotient or root into its tail.
template <class V>
QKR_INLINE V rough_reciprocal(V x) {
  return real(0x7FDE600000000000u - bits(x));
}

// What a scalar routine does with an element in error.
QKR_INLINE void store_and_report(double result, int32_t status, ptrdiff_t i, Arrays<double> v,
                                 const char *name) {
  v.r[i] = result;
  _vxmdErrorGate(status, i, v.a, v.a, v.r, v.r, name);
}
QKR_INLINE void store_and_report(float result, int32_t status, ptrdiff_t i, Arrays<float> v,
                                 const char *name) {
  v.r[i] = result;
  _vxmsErrorGate(status, i, v.a, v.a, v.r, v.r, name);
}
template <class T>
constexpr T default_nan = -__builtin_nan("");  // 0xFFF8000000000000, 0xFFC00000

// Even and odd powers by themselves: two chains of operations half as long. At least four terms.
template <size_t terms, class V>
QKR_INLINE V polynomial(const double (&c)[terms], V x) {
  constexpr int top = (int)terms - 1;
  const V square = x * x;
  V high = square * c[top] + c[top - 2], next = square * c[top - 1] + c[top - 3];
  for (int k = top - 4; k >= 0; k -= 2) high = high * square + c[k];
  for (int k = top - 5; k >= 0; k -= 2) next = next * square + c[k];
  return top % 2 ? high * x + next : next * x + high;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
