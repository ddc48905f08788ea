// Cyclic convolution of 8 and of 4 points, whole in registers.
#include "sigfft/convolution/integers.h"
#include "sigfft/convolution/kernels.h"
#include "sigfft/passes/registers.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The lanes moved up by `count` places; what leaves at the top comes in below.
template <int count, class V, int... i>
QKR_INLINE V turned(V v, std::integer_sequence<int, i...>) {
  constexpr int lanes = sizeof...(i);
  return shuffle<((i + lanes - count) % lanes)...>(v, v);
}

// s7 + (s6 + (... (s1 + s0))): the terms of all results, from src1[0]'s on. `step` lanes make an element.
template <int step, class V, class T, int... k>
QKR_INLINE V cyclic_sums(const T *src1, V src2, std::integer_sequence<int, k...>) {
  using Lanes = std::make_integer_sequence<int, step *(1 + sizeof...(k))>;
  V sum = src2 * src1[0];
  ((sum = turned<step *(k + 1)>(src2, Lanes()) * src1[k + 1] + sum), ...);
  return sum;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ENTRY_OF(zprStatus, zprsConvCyclic8x8_32f, (const float *src1, const float *src2, float *dst),
             (src1, src2, dst)) {
  Vector<float, 32> x;
  memcpy(&x, src2, sizeof x);
  store_vector(dst, cyclic_sums<1>(src1, x, std::make_integer_sequence<int, 7>()));
  return zprStsNoErr;
}

QKR_ENTRY_OF(zprStatus, zprsConvCyclic4x4_32f32fc, (const float *src1, const zpr32fc *src2, zpr32fc *dst),
             (src1, src2, dst)) {
  Vector<float, 32> x;
  memcpy(&x, src2, sizeof x);
  store_vector(dst, cyclic_sums<2>(src1, x, std::make_integer_sequence<int, 3>()));
  return zprStsNoErr;
}

// Sums wrap at 32 bits, and so do shifts to the left.
QKR_ENTRY_OF(zprStatus, zprsConvCyclic8x8_16s_Sfs,
             (const int16_t *src1, const int16_t *src2, int16_t *dst, int32_t scale),
             (src1, src2, dst, scale)) {
  using Words = Vector<uint32_t, 32>;
  using Signed = Vector<int32_t, 32>;
  uint32_t first[8];
  Words second;
  for (int k = 0; k < 8; ++k) {
    first[k] = (uint32_t)src1[k];
    second[k] = (uint32_t)src2[k];
  }
  Words sum = cyclic_sums<1>(first, second, std::make_integer_sequence<int, 7>());
  const uint32_t left = (0 - (uint32_t)scale) & 31, right = (uint32_t)scale & 31;
  const Signed shifted = scale < 0 ? (Signed)(sum << left) : (Signed)sum >> (int32_t)right;
  const Signed result = saturated(shifted);
  for (int k = 0; k < 8; ++k) dst[k] = (int16_t)result[k];
  return zprStsNoErr;
}
