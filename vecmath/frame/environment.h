// The floating-point environment of a kernel: looked at on entry; where it differs from what the kernel
// wants, changed, and the caller's restored at the end.
#pragma once

#include "simd/vectors.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Approximating kernels: round to nearest, subnormal numbers as they are. Where nothing has to be changed the
// status flags that the kernel raises stay; restoring the saved word loses them.
struct SseEnvironment {
  static constexpr unsigned controls = 0xE040;  // flush-to-zero, rounding control, denormals-are-zero
  const unsigned saved = _mm_getcsr();
  QKR_INLINE bool differs() const { return saved & controls; }
  QKR_INLINE void change() const {
    if (differs()) _mm_setcsr(saved & ~controls);
  }
  QKR_INLINE void restore() const {
    if (differs()) _mm_setcsr(saved);
  }
};

// Kernels that run under a known x87 precision and rounding control; MXCSR stays the caller's.
template <uint16_t wanted>
struct X87Environment {
  static constexpr uint16_t controls = 0xF00;  // precision and rounding control
  uint16_t saved;
  QKR_INLINE X87Environment() { asm volatile("fnstcw %0" : "=m"(saved)); }
  QKR_INLINE bool differs() const { return (saved & controls) != wanted; }
  QKR_INLINE void change() const {
    if (differs()) load((saved & ~controls) | wanted);
  }
  QKR_INLINE void restore() const {
    if (differs()) load(saved);
  }

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
  QKR_INLINE bool differs() const { return sse.differs() || x87.differs(); }
  QKR_INLINE void change() const { sse.change(), x87.change(); }
  QKR_INLINE void restore() const { sse.restore(), x87.restore(); }
};

// Exact families work under whatever the caller has set.
struct CallersEnvironment {
  QKR_INLINE static bool differs() { return false; }
  QKR_INLINE static void change() {}
  QKR_INLINE static void restore() {}
};

// As the kernel wants it, to the end of a scope.
template <class Environment>
struct Wanted : Environment {
  QKR_INLINE Wanted() { this->change(); }
  QKR_INLINE ~Wanted() { this->restore(); }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
