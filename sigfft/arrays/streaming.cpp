// Blocks larger than the cache, written past it: lines of the destination are not read first, and the cache
// keeps what it holds. The source is touched a block ahead, so that its reads run from the cache into bursts
// of stores.
#include <immintrin.h>
#include <string.h>

#include "sigfft/arrays/block.h"

namespace qkr::sigfft {
namespace {

constexpr size_t block = 0x40000, touch_distance = 128;

// Lines come in pairs: one byte in 128 brings both.
void touch(const uint8_t *p, size_t bytes) {
  for (size_t i = 0; i < bytes; i += touch_distance) asm volatile("" ::"r"(((const volatile uint8_t *)p)[i]));
}

void copy_vectors(const uint8_t *src, uint8_t *dst, size_t bytes) {
  for (size_t i = 0; i < bytes; i += 16)
    _mm_stream_si128((__m128i *)(dst + i), _mm_loadu_si128((const __m128i *)(src + i)));
}

// Bytes up to the next multiple of 16.
size_t to_alignment(const void *p) { return -(size_t)p & 15; }

}  // namespace

void copy_past_cache(const uint8_t *src, uint8_t *dst, size_t bytes) {
  const size_t head = to_alignment(dst);
  memcpy(dst, src, head);
  src += head, dst += head, bytes -= head;
  for (; bytes >= block; src += block, dst += block, bytes -= block) {
    touch(src, block);
    copy_vectors(src, dst, block);
  }
  const size_t vectors = bytes & ~size_t{15};
  touch(src, vectors);
  copy_vectors(src, dst, vectors);
  _mm_sfence();
  memcpy(dst + vectors, src + vectors, bytes - vectors);
}

void fill_past_cache(uint8_t *dst, size_t bytes, Pattern pattern) {
  const size_t head = to_alignment(dst);
  uint8_t twice[32];  // the pattern as it is met from the aligned address on
  memcpy(twice, &pattern, 16);
  memcpy(twice + 16, &pattern, 16);
  const __m128i rotated = _mm_loadu_si128((const __m128i *)(twice + head));
  memcpy(dst, twice, head);
  dst += head, bytes -= head;
  const size_t vectors = bytes & ~size_t{15};
  for (size_t i = 0; i < vectors; i += 16) _mm_stream_si128((__m128i *)(dst + i), rotated);
  _mm_sfence();
  memcpy(dst + vectors, twice + head, bytes - vectors);
}

}  // namespace qkr::sigfft
