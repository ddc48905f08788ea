// What the environment decides: whether blocks are cached, and whether the library runs serial.
#include <stdlib.h>
#include <string.h>

#include "service/internal.h"

namespace qkr {
int32_t environment_read = -1;
int32_t cache_disabled = -1;
int32_t serial_decision = -1;
}  // namespace qkr

using namespace qkr;

namespace {

bool filled(const char *value) { return value && *value; }

}  // namespace

// The decision is there before it counts as made, for threads that arrive meanwhile and for a fork.
int32_t QKR_read_env() {
  qkr_serv_lock();
  if (environment_read != 1) {
    const bool disabled = filled(getenv("QKR_DISABLE_FAST_MM")) || filled(getenv("QKR_MM_DISABLE"));
    __atomic_store_n(&cache_disabled, disabled, __ATOMIC_RELAXED);
    __atomic_store_n(&environment_read, 1, __ATOMIC_RELEASE);
  }
  qkr_serv_unlock();
  return 0;
}

// Without a lock: threads that race for the first call compute the same answer.
int32_t qkr_serv_in_serial() {
  const int32_t decided = __atomic_load_n(&serial_decision, __ATOMIC_RELAXED);
  if (decided != -1) return decided;

  const char *threads = getenv("OMP_NUM_THREADS");
  if (!threads) threads = getenv("omp_num_threads");
  const char *wish = getenv("QKR_SERIAL");
  const bool serial = filled(wish) ? strcmp(wish, "YES") == 0 || strcmp(wish, "yes") == 0 : !filled(threads);
  __atomic_store_n(&serial_decision, serial, __ATOMIC_RELAXED);
  return serial;
}

int32_t qkr_serv_set_serial() { return setenv("QKR_SERIAL", "YES", 1); }
int32_t qkr_serv_set_parallel() { return setenv("QKR_SERIAL", "NO", 1); }
