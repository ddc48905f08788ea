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
  if (bytes >= shortest_pattern_fill) {
    if constexpr (sizeof word == 1) memset(dst, word, bytes);
    else ownsFillPattern(dst, bytes, repeated(word), sizeof word);
    return;
  }
  const Pattern pattern = repeated(word);
  if (bytes >= 16) {
    for (size_t i = 16; i < bytes - 16; i += 16) memcpy(dst + i, &pattern, 16);
    store_both_ends<Pattern>(dst, bytes, pattern);
  } else if (bytes >= 8) {
    store_both_ends<uint64_t>(dst, bytes, pattern);
  } else if (bytes >= 4) {
    store_both_ends<uint32_t>(dst, bytes, pattern);
  } else if (bytes >= 2) {
    store_both_ends<uint16_t>(dst, bytes, pattern);
  } else if (bytes) {
    memcpy(dst, &pattern, 1);
  }
}

// Bytes go past the cache from half a MiB on, wider values from 1 MiB on; if they fill the cache and more.
template <class Word>
constexpr int32_t boundary = sizeof(Word) == 1 ? streaming_boundary : 2 * streaming_boundary / sizeof(Word);

template <class Word>
__attribute__((noinline)) void fill_large(Word word, Word *dst, int32_t count) {
  const Cache cache = last_level_cache();
  const int32_t fitting = cache.size / (int32_t)sizeof word;
  const size_t bytes = (size_t)count * sizeof word;
  if (cache.size && (count > fitting || (sizeof word == 1 && count == fitting)))
    fill_past_cache((uint8_t *)dst, bytes, repeated(word));
  else fill_within_cache(word, dst, bytes);
}

template <class Word>
inline void fill(Word word, Word *dst, int32_t count) {
  if (__builtin_expect(count > boundary<Word>, 0)) fill_large(word, dst, count);
  else fill_within_cache(word, dst, (size_t)count * sizeof word);
}

template <auto zero, class T>
inline zprStatus zero_array(T *array, int32_t len) {
  if (!array) return zprStsNullPtrErr;
  if (len < 1) return zprStsSizeErr;
  const auto dst = (uint8_t *)array;
  const size_t bytes = (size_t)len * sizeof(T);
  if (bytes <= longest_piece) zero(dst, (int32_t)bytes);
  else by_pieces(bytes, [=](size_t start, int32_t size) { zero(dst + start, size); });
  return zprStsNoErr;
}

template <auto set, class Word, class T>
inline zprStatus set_array(T value, T *dst, int32_t len) {
  if (!dst) return zprStsNullPtrErr;
  if (len < 1) return zprStsSizeErr;
  set(__builtin_bit_cast(Word, value), (Word *)dst, len);
  return zprStsNoErr;
}

}  // namespace
}  // namespace qkr::sigfft

using namespace qkr::sigfft;

void ownsZero_8u(uint8_t *dst, int32_t bytes) { fill_within_cache<uint8_t>(0, dst, (size_t)bytes); }
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
