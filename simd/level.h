// Which vector width this processor gets: found once, on first use, and kept in one relaxed atomic.
#pragma once

namespace qkr {

enum class Level { sse2, avx2, avx512 };

extern __attribute__((visibility("hidden"))) int chosen_level;  // a Level, or -1 until the first use

// Looks at the processor and at the environment variable QKR_LEVEL (sse2, avx2 or avx512: that level at the
// most; anything else is ignored), and stores the outcome. Racing first calls store the same value.
Level choose_level();

// The widest level that this processor and the operating system support.
Level supported_level();

// Tests and benchmarks: use this level, which must be supported, from now on.
void force_level(Level level);

inline Level level() {
  const int known = __atomic_load_n(&chosen_level, __ATOMIC_RELAXED);
  return __builtin_expect(known < 0, 0) ? choose_level() : static_cast<Level>(known);
}

}  // namespace qkr
