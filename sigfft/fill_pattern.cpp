// 16 bytes again and again, by vectors of the processor's width.
#include "sigfft/block.h"
#include "simd/entry.h"
#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

QKR_INLINE u64 in_all_parts(sigfft::Pattern pattern) {
#if QKR_SIMD_BYTES == 64
  return (u64)_mm512_broadcast_i32x4((__m128i)pattern);
#elif QKR_SIMD_BYTES == 32
  return (u64)_mm256_broadcastsi128_si256((__m128i)pattern);
#else
  return pattern;
#endif
}

// The processor's own fill takes whole lines without reading them; its start is slow beside wide vectors.
constexpr size_t from_string_fill = QKR_SIMD_BYTES == 64 ? 0x8000 : 0x800;
QKR_INLINE void fill_by_string(uint8_t *dst, size_t bytes, uint64_t word) {
  memcpy(dst + bytes - 8, &word, 8);
  size_t words = bytes / 8;
  asm volatile("rep stosq" : "+D"(dst), "+c"(words) : "a"(word) : "memory");
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ENTRY(ownsFillPattern, (uint8_t * dst, size_t bytes, qkr::sigfft::Pattern pattern, size_t size),
          (dst, bytes, pattern, size)) {
  constexpr size_t width = QKR_SIMD_BYTES;
  static_assert(width <= sigfft::shortest_pattern_fill);
  if (bytes >= from_string_fill && size <= 8 && !((size_t)dst & 7))
    return fill_by_string(dst, bytes, pattern[0]);
  const u64 v = in_all_parts(pattern);
  const auto put = [&](uint8_t *p) { memcpy(p, &v, width); };
  uint8_t *const last = dst + bytes - width;
  // The next multiple of the width is whole values away if dst is a multiple of their size.
  const size_t beyond = (size_t)dst & (size - 1) ? 0 : (size_t)dst & (width - 1);
  put(dst);
  uint8_t *p = dst + width - beyond;
  for (; p + 3 * width < last; p += 4 * width)
    for (size_t i = 0; i < 4; ++i) put(p + i * width);
  for (; p < last; p += width) put(p);
  put(last);
}
