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

template <class T>
constexpr T infinity = (T)__builtin_inf();
template <class T>
constexpr T largest = sizeof(T) == 8 ? (T)0x1.fffffffffffffp1023 : (T)0x1.fffffep127f;
template <class T>
constexpr T smallest_normal = sizeof(T) == 8 ? (T)0x1p-1022 : (T)0x1p-126f;

constexpr uint64_t pattern_of_infinity(double) { return 0x7FF0000000000000u; }
constexpr uint32_t pattern_of_infinity(float) { return 0x7F800000u; }

// The NaN that the processor gives to an invalid operation.
template <class T>
constexpr T indefinite() {
  if constexpr (sizeof(T) == 8) return __builtin_bit_cast(T, (uint64_t)0xFFF8000000000000u);
  else return __builtin_bit_cast(T, (uint32_t)0xFFC00000u);
}

// The NaN among two operands, of two the first, made quiet. Their sum would leave the choice to the compiler.
template <class T>
inline __attribute__((always_inline)) T nan_of(T first, T second) {
  const T nan = first != first ? first : second;
  return nan + nan;
}

}  // namespace qkr
