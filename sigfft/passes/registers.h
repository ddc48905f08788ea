// Registers of complex numbers, in two forms:
//   Grouped  the working layout between passes: 16 bytes of real parts, 16 bytes of imaginary parts of the
//            same columns, and so on. 32 or 64 bytes; without AVX, 32 bytes are two registers.
//   Paired   real and imaginary part side by side, as callers hand them over.
// Both have + and -, times a real number, and a + or - b turned by -90 degrees (forward) or 90 degrees
// (inverse), so that a butterfly is written once. A turn is a swap and a change of signs, which a fused
// operation with factors 1 and -1 does without a rounding: its product is exact.
#pragma once

#include <utility>

#include "simd/vectors.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T, int bytes>
struct VectorOf {
  typedef T type __attribute__((vector_size(bytes)));
};
template <class T, int bytes>
using Vector = typename VectorOf<T, bytes>::type;

constexpr int widest_group = QKR_SIMD_BYTES == 64 ? 64 : 32, widest_pairs = QKR_SIMD_BYTES;

// Lanes of a and, counted on, of b.
template <int... lane, class V>
QKR_INLINE auto shuffle(V a, V b) {
  return __builtin_shufflevector(a, b, lane...);
}
// The same of pairs of numbers: 64 bits are moved as one.
template <class T, int bytes>
QKR_INLINE Vector<double, bytes> as_doubles(Vector<T, bytes> v) {
  return (Vector<double, bytes>)v;
}

template <class V>
QKR_INLINE V load_vector(const void *p) {
  V v;
  __builtin_memcpy(&v, p, sizeof v);
  // Keeps g++ from loading twice what two operations take from memory.
  asm("" : "+x"(v));
  return v;
}
template <class V>
QKR_INLINE void store_vector(void *p, V v) {
  __builtin_memcpy(p, &v, sizeof v);
}

#ifdef __AVX512F__
// Halves of 64 bytes. Taken from memory or stored they cost no shuffle, if g++ is told by name.
template <class T>
QKR_INLINE Vector<T, 64> load_halves(const T *lower, const T *upper) {
  return (Vector<T, 64>)_mm512_insertf64x4(_mm512_castpd256_pd512(_mm256_loadu_pd((const double *)lower)),
                                           _mm256_loadu_pd((const double *)upper), 1);
}
template <class V>
QKR_INLINE auto lower_half(V v) {
  using T = std::remove_reference_t<decltype(v[0])>;
  return (Vector<T, 32>)_mm512_castpd512_pd256((__m512d)v);
}
template <class V>
QKR_INLINE auto upper_half(V v) {
  using T = std::remove_reference_t<decltype(v[0])>;
  return (Vector<T, 32>)_mm512_extractf64x4_pd((__m512d)v, 1);
}
#endif

// c + a * sign and c - a * sign, where the lanes of sign are 1 or -1.
#ifdef __FMA__
#define QKR_SIGNED_SUM(T, bytes, type, prefix, suffix)                                                    \
  QKR_INLINE Vector<T, bytes> add_signed(Vector<T, bytes> c, Vector<T, bytes> a, Vector<T, bytes> sign) { \
    return (Vector<T, bytes>)prefix##_fmadd_##suffix((type)a, (type)sign, (type)c);                       \
  }                                                                                                       \
  QKR_INLINE Vector<T, bytes> subtract_signed(Vector<T, bytes> c, Vector<T, bytes> a,                     \
                                              Vector<T, bytes> sign) {                                    \
    return (Vector<T, bytes>)prefix##_fnmadd_##suffix((type)a, (type)sign, (type)c);                      \
  }
QKR_SIGNED_SUM(double, 16, __m128d, _mm, pd)
QKR_SIGNED_SUM(float, 16, __m128, _mm, ps)
QKR_SIGNED_SUM(double, 32, __m256d, _mm256, pd)
QKR_SIGNED_SUM(float, 32, __m256, _mm256, ps)
#ifdef __AVX512F__
QKR_SIGNED_SUM(double, 64, __m512d, _mm512, pd)
QKR_SIGNED_SUM(float, 64, __m512, _mm512, ps)
#endif
#undef QKR_SIGNED_SUM
#else
QKR_INLINE __m128d sign_bits(Vector<double, 16> sign) { return _mm_and_pd((__m128d)sign, _mm_set1_pd(-0.0)); }
QKR_INLINE __m128 sign_bits(Vector<float, 16> sign) { return _mm_and_ps((__m128)sign, _mm_set1_ps(-0.0f)); }
QKR_INLINE Vector<double, 16> with_sign(Vector<double, 16> a, Vector<double, 16> sign) {
  return (Vector<double, 16>)_mm_xor_pd((__m128d)a, sign_bits(sign));
}
QKR_INLINE Vector<float, 16> with_sign(Vector<float, 16> a, Vector<float, 16> sign) {
  return (Vector<float, 16>)_mm_xor_ps((__m128)a, sign_bits(sign));
}
template <class V>
QKR_INLINE V add_signed(V c, V a, V sign) {
  return c + with_sign(a, sign);
}
template <class V>
QKR_INLINE V subtract_signed(V c, V a, V sign) {
  return c - with_sign(a, sign);
}
#endif

// 1 for `run` lanes, -1 for as many, and so on: what swapped parts are multiplied by to make a turn by -90
// degrees.
template <class T, int bytes, int run>
struct TurnSigns {
  alignas(bytes) T sign[bytes / sizeof(T)];
  constexpr TurnSigns() : sign() {
    for (int i = 0; i < bytes / (int)sizeof(T); ++i) sign[i] = i / run & 1 ? -1 : 1;
  }
};
template <class T, int bytes, int run>
constexpr TurnSigns<T, bytes, run> turn_signs;

// Parts in the lanes of one register, swapped within `run` lanes of each.
template <class T, int bytes, int run>
struct OneRegister {
  using Element = T;
  using V = Vector<T, bytes>;
  V v;

  static QKR_INLINE V signs() { return *(const V *)turn_signs<T, bytes, run>.sign; }
  template <int... i>
  static QKR_INLINE V swap_runs(V v, std::integer_sequence<int, i...>) {
    return shuffle<(i ^ run)...>(v, v);
  }
  QKR_INLINE V swapped() const {
    return swap_runs(v, std::make_integer_sequence<int, bytes / (int)sizeof(T)>());
  }
};
template <class T, int bytes, int run>
QKR_INLINE OneRegister<T, bytes, run> operator+(OneRegister<T, bytes, run> a, OneRegister<T, bytes, run> b) {
  return {a.v + b.v};
}
template <class T, int bytes, int run>
QKR_INLINE OneRegister<T, bytes, run> operator-(OneRegister<T, bytes, run> a, OneRegister<T, bytes, run> b) {
  return {a.v - b.v};
}
template <class T, int bytes, int run>
QKR_INLINE OneRegister<T, bytes, run> operator*(OneRegister<T, bytes, run> a, T factor) {
  return {a.v * factor};
}
template <bool forward, class T, int bytes, int run>
QKR_INLINE OneRegister<T, bytes, run> plus_turned(OneRegister<T, bytes, run> a,
                                                  OneRegister<T, bytes, run> b) {
  if constexpr (forward) return {add_signed(a.v, b.swapped(), b.signs())};
  else return {subtract_signed(a.v, b.swapped(), b.signs())};
}
template <bool forward, class T, int bytes, int run>
QKR_INLINE OneRegister<T, bytes, run> minus_turned(OneRegister<T, bytes, run> a,
                                                   OneRegister<T, bytes, run> b) {
  return plus_turned<!forward>(a, b);
}
// x (c + i s) forward, x (c - i s) inverse: the tables hold those of the forward direction.
template <bool forward, class T, int bytes, int run, class V>
QKR_INLINE OneRegister<T, bytes, run> times(OneRegister<T, bytes, run> x, V c, V s) {
  if constexpr (forward) return {subtract_signed(x.v * c, x.swapped() * s, x.signs())};
  else return {add_signed(x.v * c, x.swapped() * s, x.signs())};
}

// The parts apart: in two registers, or one number each. Single numbers only below AVX: of products of them
// g++ 12 makes fused operations that round once, whatever -ffp-contract says.
template <class T, class V>
struct Parts {
  using Element = T;
  V re, im;
};
template <class T, class V>
QKR_INLINE Parts<T, V> operator+(Parts<T, V> a, Parts<T, V> b) {
  return {a.re + b.re, a.im + b.im};
}
template <class T, class V>
QKR_INLINE Parts<T, V> operator-(Parts<T, V> a, Parts<T, V> b) {
  return {a.re - b.re, a.im - b.im};
}
template <class T, class V>
QKR_INLINE Parts<T, V> operator*(Parts<T, V> a, T factor) {
  return {a.re * factor, a.im * factor};
}
template <bool forward, class T, class V>
QKR_INLINE Parts<T, V> plus_turned(Parts<T, V> a, Parts<T, V> b) {
  if constexpr (forward) return {a.re + b.im, a.im - b.re};
  else return {a.re - b.im, a.im + b.re};
}
template <bool forward, class T, class V>
QKR_INLINE Parts<T, V> minus_turned(Parts<T, V> a, Parts<T, V> b) {
  return plus_turned<!forward>(a, b);
}
template <bool forward, class T, class V>
QKR_INLINE Parts<T, V> times(Parts<T, V> x, V c, V s) {
  if constexpr (forward) return {x.re * c - x.im * s, x.im * c + x.re * s};
  else return {x.re * c + x.im * s, x.im * c - x.re * s};
}
template <class T>
using TwoRegisters = Parts<T, Vector<T, 16>>;

template <class T, int bytes>
using Paired = OneRegister<T, bytes, 1>;

#if QKR_BASELINE
template <class T, int bytes>
using Grouped = TwoRegisters<T>;
#else
template <class T, int bytes>
using Grouped = OneRegister<T, bytes, 16 / (int)sizeof(T)>;
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
