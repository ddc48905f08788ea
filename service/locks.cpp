// Spin locks for critical sections of a few stores, and the thread's id.
#include "service/internal.h"

uint64_t memlock = 0;
uint64_t memdftlock = 0;

namespace {

void acquire(uint64_t *word) {
  uint64_t open = 0;
  while (!__atomic_compare_exchange_n(word, &open, 1, false, __ATOMIC_ACQUIRE, __ATOMIC_RELAXED)) open = 0;
}

// Only the low half ever changes.
void release(uint64_t *word) {
  using LowHalf [[gnu::may_alias]] = uint32_t;
  __atomic_store_n(reinterpret_cast<LowHalf *>(word), 0, __ATOMIC_RELEASE);
}

}  // namespace

void qkr_serv_lock() { acquire(&memlock); }
void qkr_serv_unlock() { release(&memlock); }
void qkr_serv_dft_lock() { acquire(&memdftlock); }
void qkr_serv_dft_unlock() { release(&memdftlock); }

pthread_t QKR_ThreadID() { return pthread_self(); }
