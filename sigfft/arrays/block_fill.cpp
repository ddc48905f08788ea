// Fills of arrays with zero and with a value of 1, 2, 4, 8 or 16 bytes.
#include "sigfft/arrays/block.h"
#include "sigfft/arrays/block_writing.h"
#include "sigfft/arrays/cache_size.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct Repeated {
  u64 pattern;
  template <class V>
  QKR_INLINE void get(size_t, V &v) const {
    memcpy(&v, &pattern, sizeof v);
  }
  template <class V>
  QKR_INLINE void get(size_t, Two<V> &v) const {
    get(0, v.a);
    get(0, v.b);
  }
};

// The next multiple of the width is whole values away if dst is a multiple of their size. Otherwise what is
// to stand there is found by writing it.
QKR_INLINE void fill_long(uint8_t *dst, size_t bytes, u64 pattern, size_t size) {
  Repeated aligned{pattern};
  if ((size_t)dst & (size - 1)) {
    write<Pair>(dst, 0, aligned);
    memcpy(&aligned.pattern, dst + to_alignment(dst), width);
  }
  write_long(dst, bytes, Repeated{pattern}, aligned);
}

// The processor's own fill takes whole lines without reading them; its start is slow beside wide vectors.
constexpr size_t from_string_fill = width == 64 ? 0x8000 : 0x1000;
QKR_INLINE void fill_by_string(uint8_t *dst, size_t bytes, uint64_t word) {
  memcpy(dst + bytes - 8, &word, 8);
  size_t words = bytes / 8;
  asm volatile("rep stosq" : "+D"(dst), "+c"(words) : "a"(word) : "memory");
}

// There is none for 16 bytes; but the C library's copy writes like that too.
constexpr size_t from_copied_fill = 0x10000, copied_part = 0x4000;
QKR_INLINE void fill_by_copies(uint8_t *dst, size_t bytes, u64 pattern, size_t size) {
  fill_long(dst, copied_part, pattern, size);
  for (size_t i = copied_part; i < bytes; i += copied_part)
    memcpy(dst + i, dst, bytes - i < copied_part ? bytes - i : copied_part);
}

QKR_INLINE u64 in_all_parts(uint64_t low, uint64_t high) {
  const __m128i pair = _mm_set_epi64x((int64_t)high, (int64_t)low);
#if QKR_SIMD_BYTES == 64
  return (u64)_mm512_broadcast_i32x4(pair);
#elif QKR_SIMD_BYTES == 32
  return (u64)_mm256_broadcastsi128_si256(pair);
#else
  return (u64)pair;
#endif
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ENTRY_OF(zprStatus, ownsFillWords, (uint8_t * dst, size_t bytes, uint64_t word, size_t size),
             (dst, bytes, word, size)) {
  const u64 pattern = word - u64{};
  if (bytes <= 8 * width) [[likely]]
    write_short(dst, bytes, Repeated{pattern});
  else if (bytes >= from_string_fill && !((size_t)dst & 7)) fill_by_string(dst, bytes, word);
  else fill_long(dst, bytes, pattern, size);
  return zprStsNoErr;
}

QKR_ENTRY_OF(zprStatus, ownsFillPairs, (uint8_t * dst, size_t bytes, uint64_t low, uint64_t high),
             (dst, bytes, low, high)) {
  const u64 pattern = in_all_parts(low, high);
  if (bytes <= 8 * width) [[likely]]
    write_short(dst, bytes, Repeated{pattern});
  else if (bytes >= from_copied_fill) fill_by_copies(dst, bytes, pattern, 2 * sizeof low);
  else fill_long(dst, bytes, pattern, 2 * sizeof low);
  return zprStsNoErr;
}

#if QKR_BASELINE

namespace qkr::sigfft {
namespace {

// The bits of a value. Those of 16 bytes are put together from the parts: as one, g++ would take them through
// memory.
typedef unsigned __int128 Wide;
template <class T>
inline auto word_of(T value) {
  if constexpr (sizeof value == 16)
    return (Wide) __builtin_bit_cast(uint64_t, value.im) << 64 | __builtin_bit_cast(uint64_t, value.re);
  else if constexpr (sizeof value == 8) return __builtin_bit_cast(uint64_t, value);
  else if constexpr (sizeof value == 4) return __builtin_bit_cast(uint32_t, value);
  else if constexpr (sizeof value == 2) return __builtin_bit_cast(uint16_t, value);
  else return value;
}

template <class Word>
inline zprStatus fill_within_cache(Word word, uint8_t *dst, size_t bytes) {
  if constexpr (sizeof word == sizeof(Wide)) {
    return ownsFillPairs(dst, bytes, (uint64_t)word, (uint64_t)(word >> 64));
  } else {
    constexpr uint64_t in_all_places = ~uint64_t{0} / (Word)~Word{0};
    return ownsFillWords(dst, bytes, word * in_all_places, sizeof word);
  }
}

// Bytes go past the cache from half a MiB on, wider values from 1 MiB on; if they fill the cache and more.
template <class Word>
constexpr size_t boundary = sizeof(Word) == 1 ? streaming_boundary : 2 * streaming_boundary;

template <class Word>
__attribute__((noinline)) zprStatus fill_large(Word word, uint8_t *dst, size_t bytes) {
  const Cache cache = last_level_cache();
  const size_t count = bytes / sizeof word, fitting = (size_t)cache.size / sizeof word;
  if (!cache.size || count < fitting || (count == fitting && sizeof word > 1))
    return fill_within_cache(word, dst, bytes);
  uint8_t pattern[16];
  for (size_t i = 0; i < 16; i += sizeof word) memcpy(pattern + i, &word, sizeof word);
  fill_past_cache(dst, bytes, __builtin_bit_cast(Pattern, pattern));
  return zprStsNoErr;
}

template <bool past_cache, class Word>
inline zprStatus fill(Word word, void *array, size_t count) {
  const auto dst = (uint8_t *)array;
  const size_t bytes = count * sizeof word;
  if (past_cache && __builtin_expect(bytes > boundary<Word>, 0)) return fill_large(word, dst, bytes);
  return fill_within_cache(word, dst, bytes);
}

template <bool past_cache, class Word, class T>
__attribute__((flatten)) inline zprStatus fill_array(Word word, T *array, int32_t len) {
  if (!array) return zprStsNullPtrErr;
  if (len < 1) return zprStsSizeErr;
  return fill<past_cache>(word, array, (size_t)len * sizeof(T) / sizeof word);
}

}  // namespace
}  // namespace qkr::sigfft

using namespace qkr::sigfft;

#define QKR_WORKERS(width, Word)                                              \
  void ownsSet_##width(Word value, Word *dst, int32_t count) {                \
    fill<false>(word_of(value), dst, (size_t)count);                          \
  }                                                                           \
  void w6_ownsSet_##width##_M7(const Word *value, Word *dst, int32_t count) { \
    fill<true>(word_of(*value), dst, (size_t)count);                          \
  }                                                                           \
  void w6_ownsSet_##width(Word value, Word *dst, int32_t count) {             \
    w6_ownsSet_##width##_M7(&value, dst, count);                              \
  }
QKR_WORKERS(8u, uint8_t)
QKR_WORKERS(16u, uint16_t)
QKR_WORKERS(32s, int32_t)
QKR_WORKERS(64s, int64_t)
QKR_WORKERS(64sc, zpr64sc)

void w6_ownsZero_8u(uint8_t *dst, int32_t bytes) { fill<true>(uint8_t{0}, dst, (size_t)bytes); }
void ownsZero_8u(uint8_t *dst, int32_t bytes) { fill<false>(uint8_t{0}, dst, (size_t)bytes); }

#define QKR_FILL(T, past_cache, zero, set)                                                     \
  zprStatus zero(T *dst, int32_t len) { return fill_array<past_cache>(uint8_t{0}, dst, len); } \
  zprStatus set(T value, T *dst, int32_t len) { return fill_array<past_cache>(word_of(value), dst, len); }
QKR_FILL(uint8_t, true, w6_zprsZero_8u, w6_zprsSet_8u)
QKR_FILL(int16_t, true, w6_zprsZero_16s, w6_zprsSet_16s)
QKR_FILL(zpr16sc, true, w6_zprsZero_16sc, w6_zprsSet_16sc)
QKR_FILL(int32_t, true, w6_zprsZero_32s, w6_zprsSet_32s)
QKR_FILL(zpr32sc, true, w6_zprsZero_32sc, w6_zprsSet_32sc)
QKR_FILL(float, true, w6_zprsZero_32f, w6_zprsSet_32f)
QKR_FILL(zpr32fc, true, w6_zprsZero_32fc, w6_zprsSet_32fc)
QKR_FILL(int64_t, true, w6_zprsZero_64s, w6_zprsSet_64s)
QKR_FILL(zpr64sc, true, w6_zprsZero_64sc, w6_zprsSet_64sc)
QKR_FILL(double, true, w6_zprsZero_64f, w6_zprsSet_64f)
QKR_FILL(zpr64fc, true, w6_zprsZero_64fc, w6_zprsSet_64fc)
QKR_FILL(uint8_t, false, zprsZero_8u, zprsSet_8u)
QKR_FILL(int16_t, false, zprsZero_16s, zprsSet_16s)
QKR_FILL(zpr16sc, false, zprsZero_16sc, zprsSet_16sc)
QKR_FILL(int32_t, false, zprsZero_32s, zprsSet_32s)
QKR_FILL(zpr32sc, false, zprsZero_32sc, zprsSet_32sc)
QKR_FILL(float, false, zprsZero_32f, zprsSet_32f)
QKR_FILL(zpr32fc, false, zprsZero_32fc, zprsSet_32fc)
QKR_FILL(int64_t, false, zprsZero_64s, zprsSet_64s)
QKR_FILL(zpr64sc, false, zprsZero_64sc, zprsSet_64sc)
QKR_FILL(double, false, zprsZero_64f, zprsSet_64f)
QKR_FILL(zpr64fc, false, zprsZero_64fc, zprsSet_64fc)

#endif
