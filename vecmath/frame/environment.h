// The floating-point environment of a kernel: set on entry, the caller's restored at the end.
#pragma once

#include "simd/vectors.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Approximating kernels: round to nearest, subnormal numbers as they are. Where nothing had to be changed the
// status flags that the kernel raises stay; restoring the saved word loses them.
struct SseEnvironment {
  static constexpr unsigned controls = 0xE040;  // flush-to-zero, rounding control, denormals-are-zero
  const unsigned saved = _mm_getcsr();
  QKR_INLINE SseEnvironment() {
    if (__builtin_expect(saved & controls, 0)) _mm_setcsr(saved & ~controls);
  }
  QKR_INLINE ~SseEnvironment() {
    if (__builtin_expect(saved & controls, 0)) _mm_setcsr(saved);
  }
  // The status flags that the caller had raised.
  QKR_INLINE unsigned events() const { return saved; }
};

// Kernels that run under a known x87 precision and rounding control; MXCSR stays the caller's.
template <uint16_t wanted>
struct X87Environment {
  static constexpr uint16_t controls = 0xF00;  // precision and rounding control
  uint16_t saved;
  QKR_INLINE X87Environment() {
    asm volatile("fnstcw %0" : "=m"(saved));
    if (__builtin_expect((saved & controls) != wanted, 0)) load((saved & ~controls) | wanted);
  }
  QKR_INLINE ~X87Environment() {
    if (__builtin_expect((saved & controls) != wanted, 0)) load(saved);
  }
  QKR_INLINE unsigned events() const { return 0; }  // its kernels do not ask

 private:
  QKR_INLINE static void load(uint16_t word) { asm volatile("fldcw %0" : : "m"(word)); }
};
using X87Double = X87Environment<0x200>;    // 53 bits, round to nearest
using X87Extended = X87Environment<0x300>;  // 64 bits, round to nearest

// Kernels of our own design behind such an entry: their arithmetic is SSE's, and its environment counts as
// well.
template <class X87>
struct WithSse {
  SseEnvironment sse;
  X87 x87;
  QKR_INLINE unsigned events() const { return sse.events(); }
};

// Exact families work under whatever the caller has set.
struct CallersEnvironment {
  QKR_INLINE CallersEnvironment() {}
  QKR_INLINE unsigned events() const { return 0; }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
