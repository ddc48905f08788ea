// Products of complex numbers of 16-bit parts.
#include "sigfft/convolution/integers.h"
#include "sigfft/convolution/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The products of the lower halves of 32-bit lanes plus those of the upper halves.
QKR_INLINE i32 sums_of_products(i32 a, i32 b) {
#if QKR_SIMD_BYTES == 64
  return (i32)_mm512_madd_epi16((__m512i)a, (__m512i)b);
#elif QKR_SIMD_BYTES == 32
  return (i32)_mm256_madd_epi16((__m256i)a, (__m256i)b);
#else
  return (i32)_mm_madd_epi16((__m128i)a, (__m128i)b);
#endif
}

// A lane holds a number, its real part in the lower half. The one sum that 32 bits do not hold is that of two
// products of -32768 and -32768: behind such a first product the second one of an imaginary part is left out.
QKR_INLINE i32 product(i32 a, i32 b, int32_t scale) {
  const i32 a_re = a & 0xFFFF, a_im = a & ~0xFFFF;
  const i32 crossed = (b << 16) | (i32)((u32)b >> 16);
  const i32 re = sums_of_products(a_re, b) - sums_of_products(a_im, b);
  const i32 first = sums_of_products(a_re, crossed), second = sums_of_products(a_im, crossed);
  const i32 im = first + (second & (i32)(first != 0x40000000));
  return (scaled(re, scale) & 0xFFFF) | (scaled(im, scale) << 16);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ENTRY(zprs_pairProducts_16s,
          (const int16_t *a, const int16_t *b, int16_t *dst, size_t count, int32_t scale),
          (a, b, dst, count, scale)) {
  constexpr size_t pairs = sizeof(i32) / 4;
  for (; count; a += 2 * pairs, b += 2 * pairs, dst += 2 * pairs) {
    const size_t now = count < pairs ? count : pairs;
    i32 x = {}, y = {};
    memcpy(&x, a, 4 * now);
    memcpy(&y, b, 4 * now);
    const i32 result = product(x, y, scale);
    memcpy(dst, &result, 4 * now);
    count -= now;
  }
}
