// Aligned memory. The word before a block holds the address that malloc gave, so a block knows how to go
// back, whichever set of entries it came from.
#include "sigfft/arrays/memory.h"

#include <qkr/sigfft.h>
#include <stdlib.h>

namespace qkr::sigfft {

void *allocate_block(size_t bytes) {
  const auto start = (char *)malloc(bytes + best_alignment + sizeof(void *));
  if (!start) return nullptr;
  const auto block = (void **)round_up((size_t)start + sizeof(void *), best_alignment);
  block[-1] = start;
  return block;
}

void release_block(void *block) {
  if (block) free(((void **)block)[-1]);
}

namespace {
void *allocate_array(int32_t len, size_t size) {
  return len < 1 ? nullptr : allocate_block((size_t)len * size);
}
}  // namespace

}  // namespace qkr::sigfft

using namespace qkr::sigfft;

void w6_zprsFree(void *block) { release_block(block); }
void zprsFree(void *block) { release_block(block); }

#define QKR_MALLOC(Element, w6_name, plain_name)                                            \
  Element *w6_name(int32_t len) { return (Element *)allocate_array(len, sizeof(Element)); } \
  Element *plain_name(int32_t len) { return (Element *)allocate_array(len, sizeof(Element)); }
QKR_MALLOC(uint8_t, w6_zprsMalloc_8u, zprsMalloc_8u)
QKR_MALLOC(int8_t, w6_zprsMalloc_8s, zprsMalloc_8s)
QKR_MALLOC(zpr8sc, w6_zprsMalloc_8sc, zprsMalloc_8sc)
QKR_MALLOC(uint16_t, w6_zprsMalloc_16u, zprsMalloc_16u)
QKR_MALLOC(int16_t, w6_zprsMalloc_16s, zprsMalloc_16s)
QKR_MALLOC(zpr16sc, w6_zprsMalloc_16sc, zprsMalloc_16sc)
QKR_MALLOC(uint32_t, w6_zprsMalloc_32u, zprsMalloc_32u)
QKR_MALLOC(int32_t, w6_zprsMalloc_32s, zprsMalloc_32s)
QKR_MALLOC(zpr32sc, w6_zprsMalloc_32sc, zprsMalloc_32sc)
QKR_MALLOC(int64_t, w6_zprsMalloc_64s, zprsMalloc_64s)
QKR_MALLOC(zpr64sc, w6_zprsMalloc_64sc, zprsMalloc_64sc)
QKR_MALLOC(float, w6_zprsMalloc_32f, zprsMalloc_32f)
QKR_MALLOC(zpr32fc, w6_zprsMalloc_32fc, zprsMalloc_32fc)
QKR_MALLOC(double, w6_zprsMalloc_64f, zprsMalloc_64f)
QKR_MALLOC(zpr64fc, w6_zprsMalloc_64fc, zprsMalloc_64fc)
