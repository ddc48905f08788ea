// The allocator hooks, and the cache of work buffers that each thread keeps behind them.
#include <stdlib.h>

#include "service/internal.h"

void *(*i_malloc)(size_t) = malloc;
void *(*i_calloc)(size_t, size_t) = calloc;
void *(*i_realloc)(void *, size_t) = realloc;
void (*i_free)(void *) = free;

QKR_THREAD_LOCAL int32_t mm_FIRST = 1;

namespace qkr {
QKR_THREAD_LOCAL ThreadCache thread_cache;
ThreadCache *registered_caches[registry_size];
int32_t registered_count = 0;
}  // namespace qkr

using namespace qkr;

namespace {

constexpr pthread_t no_thread = static_cast<pthread_t>(-13);

bool cache_is_on() {
  if (__atomic_load_n(&environment_read, __ATOMIC_RELAXED) == -1) QKR_read_env();
  return __atomic_load_n(&cache_disabled, __ATOMIC_RELAXED) != 1;
}

// In a shared object the address costs a call, which g++ would repeat at every use; it cannot see through
// this.
ThreadCache *own_record() {
  ThreadCache *record = &thread_cache;
  asm("" : "+r"(record));
  return record;
}

// The record gets its owner last: a signal handler that asks for memory meanwhile goes past the cache.
[[gnu::cold, gnu::noinline]] void set_up(ThreadCache *record, pthread_t thread) {
  mm_FIRST = 0;
  *record = {};
  record->owner = no_thread;
  qkr_serv_lock();
  if (registered_count + 1 < registry_size) registered_caches[++registered_count] = record;
  qkr_serv_unlock();
  record->owner = thread;
}

void *lend(ThreadCache *record, int slot) {
  record->busy[slot] = 1;
  return record->buffer[slot];
}

// A null block is recorded too: its slot is out of use until qkr_serv_freebuffers.
void *lend_new(ThreadCache *record, int slot, uint64_t size) {
  record->buffer[slot] = i_malloc(size);
  record->size[slot] = size;
  record->total += size;
  return lend(record, slot);
}

}  // namespace

void *qkr_serv_allocate(size_t size) {
  if (!cache_is_on() || size > cache_ceiling) return i_malloc(size);

  ThreadCache *record = own_record();
  const pthread_t thread = QKR_ThreadID();
  if (mm_FIRST == 1) set_up(record, thread);
  else if (record->owner != thread) return i_malloc(size);

  const int count = static_cast<int>(record->count);
  int bigger = -1, smaller = -1;
  for (int slot = 0; slot < count; ++slot) {
    if (record->busy[slot]) continue;
    if (record->size[slot] == size) return lend(record, slot);
    int &first = record->size[slot] > size ? bigger : smaller;
    if (first < 0) first = slot;
  }
  if (bigger >= 0) return lend(record, bigger);
  if (count < cache_slots) {
    ++record->count;
    return lend_new(record, count, size);
  }
  if (smaller < 0) return i_malloc(size);

  if (record->buffer[smaller]) i_free(record->buffer[smaller]);
  record->total -= record->size[smaller];
  return lend_new(record, smaller, size);
}

void qkr_serv_deallocate(void *block) {
  if (!block) return;
  if (cache_is_on()) {
    ThreadCache *record = own_record();
    for (uint64_t slot = 0; slot < record->count; ++slot)
      if (record->buffer[slot] == block) {
        record->busy[slot] = 0;
        return;
      }
  }
  i_free(block);
}

void qkr_serv_freebuffers() {
  if (!cache_is_on()) return;
  qkr_serv_lock();
  for (int32_t i = 1; i <= registered_count; ++i) {
    ThreadCache *record = registered_caches[i];
    for (uint64_t slot = 0; slot < record->count; ++slot) {
      if (record->buffer[slot]) i_free(record->buffer[slot]);
      record->buffer[slot] = nullptr;
      record->size[slot] = 0;
      record->busy[slot] = 0;
    }
    record->count = 0;
    record->total = 0;
  }
  registered_count = 0;
  qkr_serv_unlock();
}
