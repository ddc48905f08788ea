// Copies. Blocks that stay in the cache are left to the C library, which knows the processor; it needs no
// more help than the choice to write past the cache.
#include <string.h>

#include "sigfft/block.h"
#include "sigfft/cache_size.h"

namespace qkr::sigfft {
namespace {

// A copy both of whose pointers become aligned together by a step over the first bytes stays in the cache.
__attribute__((noinline)) bool streams(const uint8_t *src, const uint8_t *dst, int32_t bytes) {
  const int32_t step = (int32_t)(-(size_t)dst & 15);
  if (step && !((size_t)(src + step) & 15)) return false;
  const Cache cache = last_level_cache();
  return bytes - step >= streaming_boundary && cache.size && bytes - step >= cache.share / 2;
}

// For short blocks a call costs as much as the copy: both halves of one that is not below `half` bytes and
// not above twice that.
template <size_t half>
inline void copy_halves(const uint8_t *src, uint8_t *dst, size_t bytes) {
  struct Half {
    uint8_t bytes[half];
  } first, last;
  memcpy(&first, src, half);
  memcpy(&last, src + bytes - half, half);
  memcpy(dst, &first, half);
  memcpy(dst + bytes - half, &last, half);
}

template <auto copy, class T>
inline zprStatus copy_array(const T *src, T *dst, int32_t len) {
  if (!src || !dst) return zprStsNullPtrErr;
  if (len < 1) return zprStsSizeErr;
  const size_t size = (size_t)len * sizeof(T);
  if (size >= 16 && size <= 128) {
    const auto from = (const uint8_t *)src;
    const auto to = (uint8_t *)dst;
    if (size > 64) copy_halves<64>(from, to, size);
    else if (size > 32) copy_halves<32>(from, to, size);
    else copy_halves<16>(from, to, size);
    return zprStsNoErr;
  }
  by_pieces((size_t)len * sizeof(T), [=](size_t start, int32_t bytes) {
    copy((const uint8_t *)src + start, (uint8_t *)dst + start, bytes);
  });
  return zprStsNoErr;
}

}  // namespace
}  // namespace qkr::sigfft

using namespace qkr::sigfft;

uint8_t *ownsCopy_8u(const uint8_t *src, uint8_t *dst, int32_t bytes) {
  return (uint8_t *)memcpy(dst, src, (size_t)bytes);
}

uint8_t *w6_ownsCopy_8u(const uint8_t *src, uint8_t *dst, int32_t bytes) {
  if (__builtin_expect(bytes >= streaming_boundary, 0) && streams(src, dst, bytes)) {
    copy_past_cache(src, dst, (size_t)bytes);
    return dst;
  }
  return (uint8_t *)memcpy(dst, src, (size_t)bytes);
}

#define QKR_COPY(set, suffix, T)                                        \
  zprStatus set##zprsCopy_##suffix(const T *src, T *dst, int32_t len) { \
    return copy_array<set##ownsCopy_8u>(src, dst, len);                 \
  }
#define QKR_COPIES(set)        \
  QKR_COPY(set, 8u, uint8_t)   \
  QKR_COPY(set, 16s, int16_t)  \
  QKR_COPY(set, 16sc, zpr16sc) \
  QKR_COPY(set, 32s, int32_t)  \
  QKR_COPY(set, 32sc, zpr32sc) \
  QKR_COPY(set, 32f, float)    \
  QKR_COPY(set, 32fc, zpr32fc) \
  QKR_COPY(set, 64s, int64_t)  \
  QKR_COPY(set, 64sc, zpr64sc) \
  QKR_COPY(set, 64f, double)   \
  QKR_COPY(set, 64fc, zpr64fc)

QKR_COPIES(w6_)
QKR_COPIES()
