// Blocks of bytes: the named workers under the array functions. Workers without prefix never write past the
// cache; those of the w6_ set do so for blocks that are large beside the last-level cache.
#pragma once

#include <qkr/sigfft.h>

namespace qkr::sigfft {
typedef uint64_t Pattern __attribute__((vector_size(16)));
}

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

// The kernels, for blocks within the cache. They return success, so that an array function can end by a jump
// to them. A word repeats a value of `size` bytes, whose multiple the number of bytes is; a pair of words is
// a value of 16 bytes.
zprStatus ownsCopyBlock(const uint8_t *src, uint8_t *dst, size_t bytes);
zprStatus ownsFillWords(uint8_t *dst, size_t bytes, uint64_t word, size_t size);
zprStatus ownsFillPairs(uint8_t *dst, size_t bytes, uint64_t low, uint64_t high);
}

namespace qkr::sigfft {

// Past the cache, by non-temporal stores. The fill repeats the pattern from dst on.
void copy_past_cache(const uint8_t *src, uint8_t *dst, size_t bytes);
void fill_past_cache(uint8_t *dst, size_t bytes, Pattern pattern);

// Below this no block is tested for that: half a MiB.
constexpr size_t streaming_boundary = 0x80000;

}  // namespace qkr::sigfft
