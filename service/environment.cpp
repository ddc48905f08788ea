// What the environment decides: whether blocks are cached, and whether the library runs serial.
#include <stdlib.h>
#include <string.h>

#include "service/internal.h"

int32_t env_readed = -1;
int32_t disable_fast_mm = -1;
int32_t qkr_serial = -1;

namespace {

bool filled(const char *value) { return value && *value; }

}  // namespace

// A thread that arrives between the stores may find the cache on, once, although it is about to be switched
// off; its block is released all the same.
int32_t QKR_read_env() {
  qkr_serv_lock();
  if (env_readed != 1) {
    __atomic_store_n(&env_readed, 1, __ATOMIC_RELAXED);
    __atomic_store_n(&disable_fast_mm, 0, __ATOMIC_RELAXED);
    if (filled(getenv("QKR_DISABLE_FAST_MM")) || filled(getenv("QKR_MM_DISABLE")))
      __atomic_store_n(&disable_fast_mm, 1, __ATOMIC_RELAXED);
  }
  qkr_serv_unlock();
  return 0;
}

// Without a lock: threads that race for the first call compute the same answer.
int32_t qkr_serv_in_serial() {
  const int32_t decided = __atomic_load_n(&qkr_serial, __ATOMIC_RELAXED);
  if (decided != -1) return decided;

  const char *threads = getenv("OMP_NUM_THREADS");
  if (!threads) threads = getenv("omp_num_threads");
  const char *wish = getenv("QKR_SERIAL");
  const bool serial = filled(wish) ? strcmp(wish, "YES") == 0 || strcmp(wish, "yes") == 0 : !filled(threads);
  __atomic_store_n(&qkr_serial, serial, __ATOMIC_RELAXED);
  return serial;
}

int32_t qkr_serv_set_serial() { return setenv("QKR_SERIAL", "YES", 1); }
int32_t qkr_serv_set_parallel() { return setenv("QKR_SERIAL", "NO", 1); }
