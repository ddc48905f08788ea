// Memory that lives as long as a descriptor. It comes from the allocator itself: the thread that frees a
// descriptor need not be the one that made it, and from the cache of work buffers it would leave that thread
// a dangling block.
#pragma once

#include <qkr/service.h>

namespace qkr::dft {

inline void *allocate_block(size_t size) { return i_malloc(size); }
inline void free_block(void *block) {
  if (block) i_free(block);
}

}  // namespace qkr::dft
