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
  if (__atomic_load_n(&environment_read, __ATOMIC_ACQUIRE) == -1) QKR_read_env();
  return __atomic_load_n(&cache_disabled, __ATOMIC_RELAXED) != 1;
}

// In a shared object the address costs a call, which g++ would repeat at every use; it cannot see through
// this.
ThreadCache *own_cache() {
  ThreadCache *cache = &thread_cache;
  asm("" : "+r"(cache));
  return cache;
}

// At the end of a thread, before its storage goes: takes its cache out of the registry and frees the blocks.
// One that is still lent is its borrower's, whose qkr_serv_deallocate on any thread passes it to the hook. A
// request that comes later, from the destructor of another key, sets the cache up once more.
void end_thread(void *value) {
  ThreadCache *cache = static_cast<ThreadCache *>(value);
  qkr_serv_lock();
  for (int32_t i = 1; i <= registered_count; ++i) {
    if (registered_caches[i] == cache) registered_caches[i--] = registered_caches[registered_count--];
  }
  qkr_serv_unlock();
  for (uint64_t slot = 0; slot < cache->count; ++slot) {
    if (cache->buffer[slot] && !cache->busy[slot]) i_free(cache->buffer[slot]);
  }
  *cache = {};
  mm_FIRST = 1;
}

// Whether end_thread will be called for this thread. Without that its blocks would be lost with it.
bool will_end(ThreadCache *cache) {
  static pthread_once_t once = PTHREAD_ONCE_INIT;
  static pthread_key_t key;
  static bool made;
  pthread_once(&once, [] { made = pthread_key_create(&key, end_thread) == 0; });
  return made && pthread_setspecific(key, cache) == 0;
}

// The cache gets its owner last: a signal handler that asks for memory meanwhile goes past it.
[[gnu::cold, gnu::noinline]] bool set_up(ThreadCache *cache, pthread_t thread) {
  if (!will_end(cache)) return false;
  mm_FIRST = 0;
  *cache = {};
  cache->owner = no_thread;
  qkr_serv_lock();
  if (registered_count + 1 < registry_size) registered_caches[++registered_count] = cache;
  qkr_serv_unlock();
  cache->owner = thread;
  return true;
}

void *lend(ThreadCache *cache, int slot) {
  cache->busy[slot] = 1;
  return cache->buffer[slot];
}

// A null block is recorded too: its slot is out of use until qkr_serv_freebuffers.
void *lend_new(ThreadCache *cache, int slot, uint64_t size) {
  cache->buffer[slot] = i_malloc(size);
  cache->size[slot] = size;
  cache->total += size;
  return lend(cache, slot);
}

}  // namespace

void qkr::keep_own_cache_only(bool in_change) {
  ThreadCache *cache = own_cache();
  const int32_t count = registered_count;
  registered_count = 0;
  for (int32_t i = 1; i <= count && !in_change; ++i) {
    if (registered_caches[i] == cache) registered_caches[registered_count = 1] = cache;
  }
  if (in_change) {
    *cache = {};
    mm_FIRST = 1;
  }
}

void *qkr_serv_allocate(size_t size) {
  if (!cache_is_on() || size > cache_ceiling) return i_malloc(size);

  ThreadCache *cache = own_cache();
  const pthread_t thread = QKR_ThreadID();
  const bool served = mm_FIRST == 1 ? set_up(cache, thread) : cache->owner == thread;
  if (!served) return i_malloc(size);

  const int count = static_cast<int>(cache->count);
  int bigger = -1, smaller = -1;
  for (int slot = 0; slot < count; ++slot) {
    if (cache->busy[slot]) continue;
    if (cache->size[slot] == size) return lend(cache, slot);
    int &first = cache->size[slot] > size ? bigger : smaller;
    if (first < 0) first = slot;
  }
  if (bigger >= 0) return lend(cache, bigger);
  if (count < cache_slots) {
    ++cache->count;
    return lend_new(cache, count, size);
  }
  if (smaller < 0) return i_malloc(size);

  if (cache->buffer[smaller]) i_free(cache->buffer[smaller]);
  cache->total -= cache->size[smaller];
  return lend_new(cache, smaller, size);
}

void qkr_serv_deallocate(void *block) {
  if (!block) return;
  if (cache_is_on()) {
    ThreadCache *cache = own_cache();
    for (uint64_t slot = 0; slot < cache->count; ++slot)
      if (cache->buffer[slot] == block) {
        cache->busy[slot] = 0;
        return;
      }
  }
  i_free(block);
}

void qkr_serv_freebuffers() {
  if (!cache_is_on()) return;
  qkr_serv_lock();
  for (int32_t i = 1; i <= registered_count; ++i) {
    ThreadCache *cache = registered_caches[i];
    for (uint64_t slot = 0; slot < cache->count; ++slot) {
      if (cache->buffer[slot]) i_free(cache->buffer[slot]);
      cache->buffer[slot] = nullptr;
      cache->size[slot] = 0;
      cache->busy[slot] = 0;
    }
    cache->count = 0;
    cache->total = 0;
  }
  registered_count = 0;
  qkr_serv_unlock();
}
