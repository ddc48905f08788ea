// Finds the last-level cache by the descriptors of CPUID leaf 2, which one maker's processors report. Newer
// ones of that maker say "see leaf 4" there: their size counts as unknown, and the C library's routines,
// which know them, serve all lengths.
#include "sigfft/arrays/cache_size.h"

#include <cpuid.h>

// A size code with the nibbles h and l is h << (l + 18) bytes.
const uint8_t cache_descriptors[] = {
    0x47, 0x15,                                                              // 8 MiB
    0x49, 0x14, 0x29, 0x14, 0x46, 0x14,                                      // 4 MiB
    0x25, 0x13, 0x7D, 0x13, 0x85, 0x13, 0x45, 0x13,                          // 2 MiB
    0x23, 0x12, 0x87, 0x12, 0x7C, 0x12, 0x78, 0x12, 0x84, 0x12, 0x44, 0x12,  // 1 MiB
    0x22, 0x11, 0x7B, 0x11, 0x86, 0x11, 0x7F, 0x11, 0x83, 0x11, 0x43, 0x11,  // 512 KiB
    0x7A, 0x10, 0x82, 0x10, 0x3C, 0x10, 0x42, 0x10,                          // 256 KiB
    0,
};

namespace qkr::sigfft {

int32_t size_of_descriptors(const uint32_t (&registers)[4]) {
  const uint8_t rounds = (uint8_t)registers[0];
  if (rounds != 1) return 0;
  for (const uint8_t *row = cache_descriptors; *row; row += 2)
    for (int r = 0; r < 4; ++r) {
      if (registers[r] >> 31) continue;  // holds no descriptors
      for (int byte = r == 0; byte < 4; ++byte)
        if ((uint8_t)(registers[r] >> (8 * byte)) == row[0]) return (row[1] >> 4) << ((row[1] & 15) + 18);
    }
  return 0;
}

namespace {

Cache find_cache() {
  uint32_t a, b, c, d, leaf2[4];
  const uint32_t leaves = __get_cpuid_max(0, &b);
  if (b != signature_INTEL_ebx || leaves < 2) return {0, 0};
  __cpuid(0, a, b, c, d);
  if (c != signature_INTEL_ecx || d != signature_INTEL_edx) return {0, 0};
  __cpuid(2, leaf2[0], leaf2[1], leaf2[2], leaf2[3]);
  const int32_t size = size_of_descriptors(leaf2);
  int32_t cores = 1;
  if (leaves >= 4) {
    __cpuid_count(4, 0, a, b, c, d);
    cores += (int32_t)(a >> 26);
  }
  return {size, size / cores};
}

constexpr uint64_t not_yet_found = ~uint64_t{0};
uint64_t known_cache = not_yet_found;  // a Cache, read and written as one

}  // namespace

void force_cache(Cache cache) {
  __atomic_store_n(&known_cache, __builtin_bit_cast(uint64_t, cache), __ATOMIC_RELAXED);
}

Cache last_level_cache() {
  const uint64_t known = __atomic_load_n(&known_cache, __ATOMIC_RELAXED);
  if (known != not_yet_found) return __builtin_bit_cast(Cache, known);
  const Cache cache = find_cache();  // racing first calls store the same value
  force_cache(cache);
  return cache;
}

}  // namespace qkr::sigfft
