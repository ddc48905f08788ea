// Copies. Blocks that stay in the cache are left to the C library, which knows the processor; it needs no
// more help than the choice to write past the cache.
#include <string.h>

#include "sigfft/block.h"
#include "sigfft/cache_size.h"

namespace qkr::sigfft {
namespace {

// A copy both of whose pointers become aligned together by a step over the first bytes stays in the cache.
bool streams(const uint8_t *src, const uint8_t *dst, int32_t bytes) {
  const int32_t step = (int32_t)(-(size_t)dst & 15);
  if (step && !((size_t)(src + step) & 15)) return false;
  const Cache cache = last_level_cache();
  return bytes - step >= streaming_boundary && cache.size && bytes - step >= cache.share / 2;
}

__attribute__((noinline)) uint8_t *copy_large(const uint8_t *src, uint8_t *dst, int32_t bytes) {
  if (!streams(src, dst, bytes)) return (uint8_t *)memcpy(dst, src, (size_t)bytes);
  copy_past_cache(src, dst, (size_t)bytes);
  return dst;
}

// For short blocks a call costs as much as the copy: both ends of one that is at least `half` bytes long and
// at most twice that.
template <size_t half>
inline void copy_both_ends(const uint8_t *src, uint8_t *dst, size_t bytes) {
  typedef uint64_t Vector __attribute__((vector_size(16)));
  Vector first[half / 16], last[half / 16];
  for (size_t i = 0; i < half / 16; ++i) {
    memcpy(&first[i], src + 16 * i, 16);
    memcpy(&last[i], src + bytes - half + 16 * i, 16);
  }
  for (size_t i = 0; i < half / 16; ++i) {
    memcpy(dst + 16 * i, &first[i], 16);
    memcpy(dst + bytes - half + 16 * i, &last[i], 16);
  }
}

template <auto copy, class T>
inline zprStatus copy_array(const T *src_array, T *dst_array, int32_t len) {
  if (!src_array || !dst_array) return zprStsNullPtrErr;
  if (len < 1) return zprStsSizeErr;
  const auto src = (const uint8_t *)src_array;
  const auto dst = (uint8_t *)dst_array;
  const size_t bytes = (size_t)len * sizeof(T);
  if (bytes - 16 <= 16) copy_both_ends<16>(src, dst, bytes);
  else if (bytes - 32 <= 32) copy_both_ends<32>(src, dst, bytes);
  else if (bytes - 64 <= 64) copy_both_ends<64>(src, dst, bytes);
  else if (bytes <= longest_piece) copy(src, dst, (int32_t)bytes);
  else by_pieces(bytes, [=](size_t start, int32_t size) { copy(src + start, dst + start, size); });
  return zprStsNoErr;
}

}  // namespace
}  // namespace qkr::sigfft

using namespace qkr::sigfft;

uint8_t *ownsCopy_8u(const uint8_t *src, uint8_t *dst, int32_t bytes) {
  return (uint8_t *)memcpy(dst, src, (size_t)bytes);
}

uint8_t *w6_ownsCopy_8u(const uint8_t *src, uint8_t *dst, int32_t bytes) {
  if (__builtin_expect(bytes >= streaming_boundary, 0)) return copy_large(src, dst, bytes);
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
