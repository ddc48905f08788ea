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

// What a scalar routine does with an element in error.
template <class T>
void store_and_report(T result, int32_t status, ptrdiff_t i, Arrays<T> v, const char *name) {
  v.r[i] = result;
  report(status, i, v, name);
}

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
