// What the scalar routines of the kernels share: the per-element treatment of special inputs.
#pragma once

#include <stdint.h>

namespace qkr {

// Keeps a value from the compiler's knowledge, where an operation on it must happen for its exception.
template <class T>
inline __attribute__((always_inline)) T at_run_time(T x) {
  asm volatile("" : "+x"(x));
  return x;
}

constexpr uint64_t magnitude(uint64_t pattern) { return pattern & 0x7FFFFFFFFFFFFFFFu; }
constexpr uint32_t magnitude(uint32_t pattern) { return pattern & 0x7FFFFFFFu; }

constexpr double infinity_double = __builtin_inf();
constexpr float infinity_single = __builtin_inff();
constexpr uint64_t infinity_pattern_double = 0x7FF0000000000000u;
constexpr uint32_t infinity_pattern_single = 0x7F800000u;

template <class T>
constexpr T largest() {
  return sizeof(T) == 8 ? (T)0x1.fffffffffffffp1023 : (T)0x1.fffffep127f;
}

// The NaN that the processor gives to an invalid operation.
template <class T>
inline T indefinite() {
  if constexpr (sizeof(T) == 8) return __builtin_bit_cast(T, (uint64_t)0xFFF8000000000000u);
  else return __builtin_bit_cast(T, (uint32_t)0xFFC00000u);
}

}  // namespace qkr
