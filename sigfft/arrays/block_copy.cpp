// Copies of arrays.
#include "sigfft/arrays/block.h"
#include "sigfft/arrays/block_writing.h"
#include "sigfft/arrays/cache_size.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The C library's copy knows the processor, but a short block is done before it has looked at it.
constexpr size_t from_library_copy = width == 16 ? 8 * width : 0x1000;

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ENTRY_OF(zprStatus, ownsCopyBlock, (const uint8_t *src, uint8_t *dst, size_t bytes), (src, dst, bytes)) {
  const Copied source{src};
  if (bytes <= 8 * width) [[likely]]
    write_short(dst, bytes, source);
  else if (bytes <= from_library_copy) write_long(dst, bytes, source, source);
  else memcpy(dst, src, bytes);
  return zprStsNoErr;
}

#if QKR_BASELINE

namespace qkr::sigfft {
namespace {

// A copy both of whose pointers become aligned together by a step over the first bytes stays in the cache.
bool streams(const uint8_t *src, const uint8_t *dst, size_t bytes) {
  const size_t step = -(size_t)dst & 15;
  if (step && !((size_t)(src + step) & 15)) return false;
  const Cache cache = last_level_cache();
  return bytes - step >= streaming_boundary && cache.size && bytes - step >= (size_t)cache.share / 2;
}

__attribute__((noinline)) zprStatus copy_large(const uint8_t *src, uint8_t *dst, size_t bytes) {
  if (!streams(src, dst, bytes)) return ownsCopyBlock(src, dst, bytes);
  copy_past_cache(src, dst, bytes);
  return zprStsNoErr;
}

template <bool past_cache>
inline zprStatus copy(const uint8_t *src, uint8_t *dst, size_t bytes) {
  if (past_cache && __builtin_expect(bytes >= streaming_boundary, 0)) return copy_large(src, dst, bytes);
  return ownsCopyBlock(src, dst, bytes);
}

template <bool past_cache, class T>
__attribute__((flatten)) inline zprStatus copy_array(const T *src, T *dst, int32_t len) {
  if (!src || !dst) return zprStsNullPtrErr;
  if (len < 1) return zprStsSizeErr;
  return copy<past_cache>((const uint8_t *)src, (uint8_t *)dst, (size_t)len * sizeof(T));
}

}  // namespace
}  // namespace qkr::sigfft

using namespace qkr::sigfft;

uint8_t *w6_ownsCopy_8u(const uint8_t *src, uint8_t *dst, int32_t bytes) {
  copy<true>(src, dst, (size_t)bytes);
  return dst;
}
uint8_t *ownsCopy_8u(const uint8_t *src, uint8_t *dst, int32_t bytes) {
  copy<false>(src, dst, (size_t)bytes);
  return dst;
}

#define QKR_COPY(T, past_cache, within_cache)                                                         \
  zprStatus past_cache(const T *src, T *dst, int32_t len) { return copy_array<true>(src, dst, len); } \
  zprStatus within_cache(const T *src, T *dst, int32_t len) { return copy_array<false>(src, dst, len); }
QKR_COPY(uint8_t, w6_zprsCopy_8u, zprsCopy_8u)
QKR_COPY(int16_t, w6_zprsCopy_16s, zprsCopy_16s)
QKR_COPY(zpr16sc, w6_zprsCopy_16sc, zprsCopy_16sc)
QKR_COPY(int32_t, w6_zprsCopy_32s, zprsCopy_32s)
QKR_COPY(zpr32sc, w6_zprsCopy_32sc, zprsCopy_32sc)
QKR_COPY(float, w6_zprsCopy_32f, zprsCopy_32f)
QKR_COPY(zpr32fc, w6_zprsCopy_32fc, zprsCopy_32fc)
QKR_COPY(int64_t, w6_zprsCopy_64s, zprsCopy_64s)
QKR_COPY(zpr64sc, w6_zprsCopy_64sc, zprsCopy_64sc)
QKR_COPY(double, w6_zprsCopy_64f, zprsCopy_64f)
QKR_COPY(zpr64fc, w6_zprsCopy_64fc, zprsCopy_64fc)

#endif
