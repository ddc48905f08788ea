// Finds the vector width of this processor.
#include "simd/level.h"

#include <stdlib.h>
#include <string.h>

namespace qkr {

int chosen_level = -1;

Level supported_level() {
  __builtin_cpu_init();
  const bool v3 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
                  __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
  const bool v4 = v3 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
                  __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw") &&
                  __builtin_cpu_supports("avx512cd");
  return v4 ? Level::avx512 : v3 ? Level::avx2 : Level::sse2;
}

void force_level(Level level) {
  __atomic_store_n(&chosen_level, static_cast<int>(level), __ATOMIC_RELAXED);
}

Level choose_level() {
  static const char *const names[] = {"sse2", "avx2", "avx512"};
  Level level = supported_level();
  if (const char *wanted = getenv("QKR_LEVEL"))
    for (int i = 0; i < static_cast<int>(level); ++i)
      if (strcmp(wanted, names[i]) == 0) level = static_cast<Level>(i);
  force_level(level);
  return level;
}

}  // namespace qkr
