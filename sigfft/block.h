// Blocks of bytes: the named workers under the array functions. Workers without prefix never write past the
// cache; those of the w6_ set do so for blocks that are large beside the last-level cache.
#pragma once

#include <qkr/sigfft.h>

namespace qkr::sigfft {
typedef uint64_t Pattern __attribute__((vector_size(16)));
constexpr size_t shortest_pattern_fill = 129;
}  // namespace qkr::sigfft

extern "C" {
uint8_t *ownsCopy_8u(const uint8_t *src, uint8_t *dst, int32_t bytes);
uint8_t *w6_ownsCopy_8u(const uint8_t *src, uint8_t *dst, int32_t bytes);
void ownsZero_8u(uint8_t *dst, int32_t bytes);
void w6_ownsZero_8u(uint8_t *dst, int32_t bytes);

#define QKR_DECLARE_SET(width, T)                          \
  void ownsSet_##width(T value, T *dst, int32_t count);    \
  void w6_ownsSet_##width(T value, T *dst, int32_t count); \
  void w6_ownsSet_##width##_M7(const T *value, T *dst, int32_t count);
QKR_DECLARE_SET(8u, uint8_t)
QKR_DECLARE_SET(16u, uint16_t)
QKR_DECLARE_SET(32s, int32_t)
QKR_DECLARE_SET(64s, int64_t)
QKR_DECLARE_SET(64sc, zpr64sc)
#undef QKR_DECLARE_SET

// The kernel of the wider fills, from shortest_pattern_fill bytes on: `pattern` again and again, which
// repeats a value of `size` bytes. The number of bytes is a multiple of that.
void ownsFillPattern(uint8_t *dst, size_t bytes, qkr::sigfft::Pattern pattern, size_t size);
}

namespace qkr::sigfft {

// Past the cache, by non-temporal stores. The fill repeats the pattern from dst on.
void copy_past_cache(const uint8_t *src, uint8_t *dst, size_t bytes);
void fill_past_cache(uint8_t *dst, size_t bytes, Pattern pattern);

// Below this no block is tested for that: half a MiB.
constexpr int32_t streaming_boundary = 0x80000;

// The workers count bytes in 32 bits: a longer array goes in pieces of whole elements. work(start, bytes)
constexpr size_t longest_piece = size_t{1} << 30;
template <class Work>
__attribute__((noinline, cold)) void by_pieces(size_t bytes, Work work) {
  for (size_t start = 0; start < bytes; start += longest_piece) {
    const size_t rest = bytes - start;
    work(start, (int32_t)(rest < longest_piece ? rest : longest_piece));
  }
}

}  // namespace qkr::sigfft
