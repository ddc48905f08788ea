// Finds the vector width of this processor.
#include "simd/level.h"

#include <cpuid.h>
#include <stdlib.h>
#include <string.h>

namespace qkr {

int chosen_level = -1;

// Read from the processor itself: the compiler's own helper would bring a constructor into the library.
Level supported_level() {
#ifdef QKR_ONE_LEVEL
  return Level::sse2;
#endif
  unsigned a, b, c, d;
  if (!__get_cpuid(1, &a, &b, &c, &d)) return Level::sse2;
  constexpr unsigned v3_leaf1 =
      bit_SSE4_2 | bit_POPCNT | bit_AVX | bit_FMA | bit_F16C | bit_MOVBE | bit_OSXSAVE;
  if ((c & v3_leaf1) != v3_leaf1) return Level::sse2;
  unsigned enabled, unused;  // register state that the operating system saves
  asm volatile("xgetbv" : "=a"(enabled), "=d"(unused) : "c"(0));
  constexpr unsigned ymm_state = 0x06, zmm_state = 0xE6;

  unsigned extended = 0;
  __get_cpuid(0x80000001, &a, &b, &extended, &d);
  __get_cpuid_count(7, 0, &a, &b, &c, &d);
  constexpr unsigned v3_leaf7 = bit_AVX2 | bit_BMI | bit_BMI2;
  constexpr unsigned v4_leaf7 = bit_AVX512F | bit_AVX512DQ | bit_AVX512VL | bit_AVX512BW | bit_AVX512CD;
  if ((b & v3_leaf7) != v3_leaf7 || !(extended & bit_LZCNT) || (enabled & ymm_state) != ymm_state)
    return Level::sse2;
  return (b & v4_leaf7) == v4_leaf7 && (enabled & zmm_state) == zmm_state ? Level::avx512 : Level::avx2;
}

void force_level(Level level) { __atomic_store_n(&chosen_level, static_cast<int>(level), __ATOMIC_RELAXED); }

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
