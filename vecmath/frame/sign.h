// Sign and magnitude of numbers of type T, alone or in vectors.
#pragma once

#include "simd/simd.h"
#include "vecmath/frame/numbers.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T>
constexpr auto sign_bit = ~magnitude(~decltype(bits(T()))());

template <class T, class V>
QKR_INLINE V absolute(V x) {
  return real(bits(x) & ~sign_bit<T>);
}
// x, which is not negative, with the sign of another.
template <class T, class V>
QKR_INLINE V with_sign_of(V sign, V x) {
  return real(bits(x) | (bits(sign) & sign_bit<T>));
}
// -x where `sign` is negative.
template <class V, class Sign>
QKR_INLINE V flip_sign(V x, Sign sign) {
  return real(bits(x) ^ (bits(sign) & sign_bit<double>));
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
