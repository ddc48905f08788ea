// Fills with zero and with a value of 1, 2, 4, 8 or 16 bytes. Bytes are left to the C library; wider values
// are a pattern of 16 bytes, repeated.
#include <string.h>

#include "sigfft/block.h"
#include "sigfft/cache_size.h"

namespace qkr::sigfft {
namespace {

template <class Word>
inline Pattern repeated(Word word) {
  uint8_t bytes[16];
  for (size_t i = 0; i < 16; i += sizeof word) memcpy(bytes + i, &word, sizeof word);
  return __builtin_bit_cast(Pattern, bytes);
}

// The first and the last bytes of a short block by stores that overlap: their distance is a multiple of the
// value's size, so that the same bits serve both.
template <class Part>
inline void store_both_ends(uint8_t *dst, size_t bytes, Pattern pattern) {
  memcpy(dst, &pattern, sizeof(Part));
  memcpy(dst + bytes - sizeof(Part), &pattern, sizeof(Part));
}

template <class Word>
inline void fill_within_cache(Word word, Word *array, size_t bytes) {
  const auto dst = (uint8_t *)array;
  if constexpr (sizeof word == 1) {
    memset(dst, word, bytes);
  } else {
    const Pattern pattern = repeated(word);
    if (bytes >= shortest_pattern_fill) return ownsFillPattern(dst, bytes, pattern, sizeof word);
    if (bytes >= 16) {
      for (size_t i = 16; i < bytes - 16; i += 16) memcpy(dst + i, &pattern, 16);
      store_both_ends<Pattern>(dst, bytes, pattern);
    } else if (bytes >= 8) {
      store_both_ends<uint64_t>(dst, bytes, pattern);
    } else if (bytes >= 4) {
      store_both_ends<uint32_t>(dst, bytes, pattern);
    } else if (bytes) {
      store_both_ends<uint16_t>(dst, bytes, pattern);
    }
  }
}

// Bytes go past the cache from half a MiB on, wider values from 1 MiB on; if they fill the cache and more.
template <class Word>
inline void fill(Word word, Word *dst, int32_t count) {
  constexpr int32_t size = sizeof word,
                    boundary = size == 1 ? streaming_boundary : 2 * streaming_boundary / size;
  if (__builtin_expect(count > boundary, 0)) {
    const Cache cache = last_level_cache();
    const bool larger = size == 1 ? count >= cache.size : count > cache.size / size;
    if (cache.size && larger) return fill_past_cache((uint8_t *)dst, (size_t)count * size, repeated(word));
  }
  fill_within_cache(word, dst, (size_t)count * size);
}

template <auto zero, class T>
zprStatus zero_array(T *dst, int32_t len) {
  if (!dst) return zprStsNullPtrErr;
  if (len < 1) return zprStsSizeErr;
  by_pieces((size_t)len * sizeof(T),
            [=](size_t start, int32_t bytes) { zero((uint8_t *)dst + start, bytes); });
  return zprStsNoErr;
}

template <auto set, class Word, class T>
zprStatus set_array(T value, T *dst, int32_t len) {
  if (!dst) return zprStsNullPtrErr;
  if (len < 1) return zprStsSizeErr;
  set(__builtin_bit_cast(Word, value), (Word *)dst, len);
  return zprStsNoErr;
}

}  // namespace
}  // namespace qkr::sigfft

using namespace qkr::sigfft;

void ownsZero_8u(uint8_t *dst, int32_t bytes) { memset(dst, 0, (size_t)bytes); }
void w6_ownsZero_8u(uint8_t *dst, int32_t bytes) { fill<uint8_t>(0, dst, bytes); }

#define QKR_WORKERS(width, Word)                                                                          \
  void ownsSet_##width(Word value, Word *dst, int32_t count) {                                            \
    fill_within_cache(value, dst, (size_t)count * sizeof value);                                          \
  }                                                                                                       \
  void w6_ownsSet_##width##_M7(const Word *value, Word *dst, int32_t count) { fill(*value, dst, count); } \
  void w6_ownsSet_##width(Word value, Word *dst, int32_t count) {                                         \
    w6_ownsSet_##width##_M7(&value, dst, count);                                                          \
  }
QKR_WORKERS(8u, uint8_t)
QKR_WORKERS(16u, uint16_t)
QKR_WORKERS(32s, int32_t)
QKR_WORKERS(64s, int64_t)
QKR_WORKERS(64sc, zpr64sc)

#define QKR_FILL(set, suffix, T, width, Word)                                                              \
  zprStatus set##zprsZero_##suffix(T *dst, int32_t len) { return zero_array<set##ownsZero_8u>(dst, len); } \
  zprStatus set##zprsSet_##suffix(T value, T *dst, int32_t len) {                                          \
    return set_array<set##ownsSet_##width, Word>(value, dst, len);                                         \
  }
#define QKR_FILLS(set)                        \
  QKR_FILL(set, 8u, uint8_t, 8u, uint8_t)     \
  QKR_FILL(set, 16s, int16_t, 16u, uint16_t)  \
  QKR_FILL(set, 16sc, zpr16sc, 32s, int32_t)  \
  QKR_FILL(set, 32s, int32_t, 32s, int32_t)   \
  QKR_FILL(set, 32f, float, 32s, int32_t)     \
  QKR_FILL(set, 32sc, zpr32sc, 64s, int64_t)  \
  QKR_FILL(set, 32fc, zpr32fc, 64s, int64_t)  \
  QKR_FILL(set, 64s, int64_t, 64s, int64_t)   \
  QKR_FILL(set, 64f, double, 64s, int64_t)    \
  QKR_FILL(set, 64sc, zpr64sc, 64sc, zpr64sc) \
  QKR_FILL(set, 64fc, zpr64fc, 64sc, zpr64sc)

QKR_FILLS(w6_)
QKR_FILLS()
