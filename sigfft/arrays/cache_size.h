// The size of the last-level cache: arrays above it are written past the cache.
#pragma once

#include <stdint.h>

extern "C" {
// Pairs of a cache descriptor and a size code, from the largest cache down, and a zero at the end.
extern const uint8_t cache_descriptors[];
}

namespace qkr::sigfft {

// In bytes; 0 for unknown. `share` is that of one core of the package.
struct Cache {
  int32_t size, share;
};

// What the registers of CPUID leaf 2 report (EAX, EBX, ECX, EDX), 0 for unknown.
int32_t size_of_descriptors(const uint32_t (&registers)[4]);

// Of this processor: found on first use, since CPUID takes thousands of cycles on a virtual machine, and
// kept.
Cache last_level_cache();

// Tests: act on this cache from now on.
void force_cache(Cache cache);

}  // namespace qkr::sigfft
