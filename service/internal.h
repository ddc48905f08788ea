// What the files of the service layer share.
#pragma once

#include <qkr/service.h>

constexpr int cache_slots = 5;
constexpr uint64_t cache_ceiling = 41943040;  // larger requests are not cached: they would pin their memory
constexpr int registry_size = 1025;

// One thread's cached blocks. Slots fill from index 0 and are never compacted.
struct mm_ct {
  void *buffer[cache_slots];
  int32_t busy[cache_slots];   // 1 while the block is lent to a caller
  uint64_t size[cache_slots];  // of the block, not of the last request that it served
  pthread_t owner;
  uint64_t count;  // slots in use
  uint64_t total;  // sum of their sizes
};

extern "C" {
extern QKR_THREAD_LOCAL mm_ct mm_ct_non_WinDLL;  // the calling thread's record

extern mm_ct *ptrs_mmct[registry_size];  // registered records, from index 1 to n_mmct; guarded by memlock
extern int32_t n_mmct;

extern int32_t env_readed;       // -1: not yet, 1: read
extern int32_t disable_fast_mm;  // 1: no cache; anything else: cache
extern int32_t qkr_serial;       // -1: not decided, 0: parallel, 1: serial

extern uint64_t memlock;     // 0: open, 1: held
extern uint64_t memdftlock;  // the same, for the threaded transforms
}
