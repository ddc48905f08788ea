// Spin locks for critical sections of a few stores, and the thread's id.
#include "service/forks.h"
#include "service/internal.h"

namespace qkr {
uint64_t service_lock_word = 0;
uint64_t dft_lock_word = 0;
}  // namespace qkr

using namespace qkr;

namespace {

// The thread that holds a lock is not copied by a fork, so nobody would open it. What the lock guarded may
// be half changed.
void open_in_child() {
  keep_own_cache_only(service_lock_word != 0);
  service_lock_word = dft_lock_word = 0;
}

void acquire(uint64_t *word) {
  static pthread_once_t once = PTHREAD_ONCE_INIT;
  pthread_once(&once, [] { call_in_child(open_in_child); });
  uint64_t open = 0;
  while (!__atomic_compare_exchange_n(word, &open, 1, false, __ATOMIC_ACQUIRE, __ATOMIC_RELAXED)) open = 0;
}

// Only the low half ever changes.
void release(uint64_t *word) {
  using LowHalf [[gnu::may_alias]] = uint32_t;
  __atomic_store_n(reinterpret_cast<LowHalf *>(word), 0, __ATOMIC_RELEASE);
}

}  // namespace

void qkr_serv_lock() { acquire(&service_lock_word); }
void qkr_serv_unlock() { release(&service_lock_word); }
void qkr_serv_dft_lock() { acquire(&dft_lock_word); }
void qkr_serv_dft_unlock() { release(&dft_lock_word); }

pthread_t QKR_ThreadID() { return pthread_self(); }
