// What the files of the service layer share.
#pragma once

#include <qkr/service.h>

namespace qkr {

constexpr int cache_slots = 5;
constexpr uint64_t cache_ceiling = 41943040;  // larger requests are not cached: they would pin their memory
constexpr int registry_size = 1025;

// One thread's cached blocks. Slots fill from index 0 and are never compacted.
struct ThreadCache {
  void *buffer[cache_slots];
  int32_t busy[cache_slots];   // 1 while the block is lent to a caller
  uint64_t size[cache_slots];  // of the block, not of the last request that it served
  pthread_t owner;
  uint64_t count;  // slots in use
  uint64_t total;  // sum of their sizes
};

extern QKR_THREAD_LOCAL ThreadCache thread_cache;  // the calling thread's

// The caches of threads, from index 1 to registered_count; guarded by service_lock_word.
extern ThreadCache *registered_caches[registry_size];
extern int32_t registered_count;

// In the child of a fork: the caches of the other threads are nobody's. If the registry was `in_change`, the
// thread's own is empty from then on as well.
void keep_own_cache_only(bool in_change);

extern int32_t environment_read;  // -1: not yet, 1: read
extern int32_t cache_disabled;    // 1: no cache; anything else: cache
extern int32_t serial_decision;   // -1: not decided, 0: parallel, 1: serial

extern uint64_t service_lock_word;  // 0: open, 1: held
extern uint64_t dft_lock_word;      // the same, for the threaded transforms

}  // namespace qkr
