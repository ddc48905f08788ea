// Aligned memory. The word before a block holds the address that malloc gave, so a block knows how to go
// back, whichever set of entries it came from.
#include "sigfft/arrays/memory.h"

#include <qkr/sigfft.h>
#include <stdlib.h>

namespace qkr::sigfft {

void *allocate_block(size_t bytes) {
  constexpr size_t alignment = 32;
  const auto start = (char *)malloc(bytes + alignment + sizeof(void *));
  if (!start) return nullptr;
  const auto block = (void **)(((size_t)start + alignment + sizeof(void *) - 1) & ~(alignment - 1));
  block[-1] = start;
  return block;
}

void release_block(void *block) {
  if (block) free(((void **)block)[-1]);
}

}  // namespace qkr::sigfft

#define QKR_MALLOC(set, suffix, Element)                                                              \
  Element *set##zprsMalloc_##suffix(int32_t len) {                                                    \
    return len < 1 ? nullptr : (Element *)qkr::sigfft::allocate_block((size_t)len * sizeof(Element)); \
  }
#define QKR_MEMORY(set)          \
  QKR_MALLOC(set, 8u, uint8_t)   \
  QKR_MALLOC(set, 8s, int8_t)    \
  QKR_MALLOC(set, 8sc, zpr8sc)   \
  QKR_MALLOC(set, 16u, uint16_t) \
  QKR_MALLOC(set, 16s, int16_t)  \
  QKR_MALLOC(set, 16sc, zpr16sc) \
  QKR_MALLOC(set, 32u, uint32_t) \
  QKR_MALLOC(set, 32s, int32_t)  \
  QKR_MALLOC(set, 32sc, zpr32sc) \
  QKR_MALLOC(set, 64s, int64_t)  \
  QKR_MALLOC(set, 64sc, zpr64sc) \
  QKR_MALLOC(set, 32f, float)    \
  QKR_MALLOC(set, 32fc, zpr32fc) \
  QKR_MALLOC(set, 64f, double)   \
  QKR_MALLOC(set, 64fc, zpr64fc) \
  void set##zprsFree(void *block) { qkr::sigfft::release_block(block); }

QKR_MEMORY(w6_)
QKR_MEMORY()
