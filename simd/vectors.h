// Native vectors of the level that a file is compiled for. The compiler's operators + - * & | ^ << >> do the
// arithmetic, lane by lane; what they cannot say stands in sse2.h, avx2.h and avx512.h.
//
// Everything here is always inlined and lies in an anonymous namespace inside the level's namespace: a
// function compiled for AVX-512 must never be the copy that the linker keeps for everybody.
#pragma once

#include <immintrin.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

#if defined(__AVX512F__) && defined(__AVX512DQ__) && defined(__AVX512BW__) && defined(__AVX512VL__)
#define QKR_SIMD_BYTES 64
#define QKR_SIMD_LEVEL avx512
#elif defined(__AVX2__)
#define QKR_SIMD_BYTES 32
#define QKR_SIMD_LEVEL avx2
#else
#define QKR_SIMD_BYTES 16
#define QKR_SIMD_LEVEL sse2
#endif

// The compilation that every processor can run; it alone holds scalar routines, tables and exported entries.
#define QKR_BASELINE (QKR_SIMD_BYTES == 16)

#define QKR_INLINE inline __attribute__((always_inline))
#define QKR_NOINLINE __attribute__((noinline))
#define QKR_LAMBDA __attribute__((always_inline))  // behind the parameters of a lambda

namespace qkr::QKR_SIMD_LEVEL {
namespace {

typedef double f64 __attribute__((vector_size(QKR_SIMD_BYTES)));
typedef float f32 __attribute__((vector_size(QKR_SIMD_BYTES)));
typedef uint64_t u64 __attribute__((vector_size(QKR_SIMD_BYTES)));
typedef uint32_t u32 __attribute__((vector_size(QKR_SIMD_BYTES)));
typedef int64_t i64 __attribute__((vector_size(QKR_SIMD_BYTES)));
typedef int32_t i32 __attribute__((vector_size(QKR_SIMD_BYTES)));

template <class T>
struct NativeOf;
template <>
struct NativeOf<double> {
  using type = f64;
};
template <>
struct NativeOf<float> {
  using type = f32;
};
template <class T>
using Native = typename NativeOf<T>::type;

// Reinterpretation of the bits, not conversion of the value.
QKR_INLINE u64 bits(f64 v) { return (u64)v; }
QKR_INLINE u32 bits(f32 v) { return (u32)v; }
QKR_INLINE f64 real(u64 v) { return (f64)v; }
QKR_INLINE f32 real(u32 v) { return (f32)v; }

// The same for one number, so that a kernel's formulas also serve its scalar routine.
QKR_INLINE uint64_t bits(double x) { return __builtin_bit_cast(uint64_t, x); }
QKR_INLINE uint32_t bits(float x) { return __builtin_bit_cast(uint32_t, x); }
QKR_INLINE double real(uint64_t x) { return __builtin_bit_cast(double, x); }
QKR_INLINE float real(uint32_t x) { return __builtin_bit_cast(float, x); }

QKR_INLINE void load(const double *p, f64 &v) { memcpy(&v, p, sizeof v); }
QKR_INLINE void load(const float *p, f32 &v) { memcpy(&v, p, sizeof v); }
QKR_INLINE void load(const uint64_t *p, u64 &v) { memcpy(&v, p, sizeof v); }
QKR_INLINE void load(const uint32_t *p, u32 &v) { memcpy(&v, p, sizeof v); }
QKR_INLINE void store(double *p, f64 v) { memcpy(p, &v, sizeof v); }
QKR_INLINE void store(float *p, f32 v) { memcpy(p, &v, sizeof v); }
QKR_INLINE void store(uint64_t *p, u64 v) { memcpy(p, &v, sizeof v); }
QKR_INLINE void store(uint32_t *p, u32 v) { memcpy(p, &v, sizeof v); }

// One number, for several side by side in general registers.
QKR_INLINE void load(const uint64_t *p, uint64_t &x) { memcpy(&x, p, sizeof x); }
QKR_INLINE void store(uint64_t *p, uint64_t x) { memcpy(p, &x, sizeof x); }

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
