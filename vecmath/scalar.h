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

}  // namespace qkr
