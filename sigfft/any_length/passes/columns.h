// Columns of complex numbers: neighbouring numbers of an array, as many as a register of `bytes` holds. A
// single number of single precision fills half a register of 16 bytes: its `bytes` are 8.
#pragma once

#include "sigfft/any_length/plan/plan.h"
#include "sigfft/passes/recombination.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T, int bytes>
using Columns = Paired<T, (bytes < 16 ? 16 : bytes)>;

template <class T, int bytes>
constexpr size_t columns_together = bytes / 2 / sizeof(T);

template <class T>
QKR_INLINE Paired<T, 16> one_column(const T *p) {
  double both;
  __builtin_memcpy(&both, p, sizeof both);
  return {(Vector<T, 16>)Vector<double, 16>{both, 0}};
}

template <int bytes, class T>
QKR_INLINE Columns<Number<T>, bytes> columns(Interleaved<T> array, size_t k) {
  if constexpr (bytes < 16) return one_column<Number<T>>(array.p + 2 * k);
  else return array.template pairs<bytes>(k);
}
template <int bytes, class T>
QKR_INLINE void set_columns(Interleaved<T> array, size_t k, Columns<T, bytes> x) {
  if constexpr (bytes < 16) __builtin_memcpy(array.p + 2 * k, &x.v, bytes);
  else array.template set_pairs<bytes>(k, x);
}
template <int bytes, class T>
QKR_INLINE Columns<Number<T>, bytes> columns(Split<T> array, size_t k) {
  if constexpr (bytes < 16) return {Vector<Number<T>, 16>{array.re[k], array.im[k]}};
  else return array.template pairs<bytes>(k);
}
template <int bytes, class T>
QKR_INLINE void set_columns(Split<T> array, size_t k, Columns<T, bytes> x) {
  if constexpr (bytes < 16) array.re[k] = x.v[0], array.im[k] = x.v[1];
  else array.template set_pairs<bytes>(k, x);
}

template <int bytes>
struct Width {
  static constexpr int value = bytes;
};

// body(Width, k) for the columns from `first` to `end`: in the widest registers while these can be filled.
// What becomes of a column does not depend on that.
template <class T, int bytes = QKR_SIMD_BYTES, class Body>
QKR_INLINE void each_column(size_t first, size_t end, Body body) {
  constexpr size_t together = columns_together<T, bytes>;
  for (; first + together <= end; first += together) body(Width<bytes>(), first);
  if constexpr (together > 1) each_column<T, bytes / 2>(first, end, body);
}

// In reverse order, and with the signs of the imaginary parts changed.
template <int columns, class T, int bytes>
QKR_INLINE Paired<T, bytes> mirrored(Paired<T, bytes> x) {
  if constexpr (columns > 1) x = in_reverse(x);
  return conjugate(x);
}

template <int part, class V, int... i>
QKR_INLINE V each_part_twice(V v, std::integer_sequence<int, i...>) {
  return shuffle<((i & ~1) + part)...>(v, v);
}

// The cosines of complex numbers, each for both parts, and the sines.
template <class V>
struct Turns {
  V c, s;
};
template <class T, int bytes>
QKR_INLINE Turns<Vector<T, bytes>> turns(Paired<T, bytes> w) {
  using Lanes = std::make_integer_sequence<int, bytes / (int)sizeof(T)>;
  return {each_part_twice<0>(w.v, Lanes()), each_part_twice<1>(w.v, Lanes())};
}

#ifdef __AVX__
// From memory a load makes the copies, and the ports of arithmetic are left alone: of doubles it copies the
// even ones, so that the sines are read from one number on.
#define QKR_LOAD_TURNS(T, bytes, cosines, sines)                            \
  QKR_INLINE Turns<Vector<T, bytes>> load_turns(const T *p, Width<bytes>) { \
    return {(Vector<T, bytes>)cosines, (Vector<T, bytes>)sines};            \
  }
QKR_LOAD_TURNS(double, 16, _mm_loaddup_pd(p), _mm_loaddup_pd(p + 1))
QKR_LOAD_TURNS(double, 32, _mm256_movedup_pd(_mm256_loadu_pd(p)), _mm256_movedup_pd(_mm256_loadu_pd(p + 1)))
QKR_LOAD_TURNS(float, 16, _mm_moveldup_ps(_mm_loadu_ps(p)), _mm_movehdup_ps(_mm_loadu_ps(p)))
QKR_LOAD_TURNS(float, 32, _mm256_moveldup_ps(_mm256_loadu_ps(p)), _mm256_movehdup_ps(_mm256_loadu_ps(p)))
#ifdef __AVX512F__
QKR_LOAD_TURNS(double, 64, _mm512_movedup_pd(_mm512_loadu_pd(p)), _mm512_movedup_pd(_mm512_loadu_pd(p + 1)))
QKR_LOAD_TURNS(float, 64, _mm512_moveldup_ps(_mm512_loadu_ps(p)), _mm512_movehdup_ps(_mm512_loadu_ps(p)))
#endif
#undef QKR_LOAD_TURNS
#else
template <class T>
QKR_INLINE Turns<Vector<T, 16>> load_turns(const T *p, Width<16>) {
  return turns(Paired<T, 16>{load_vector<Vector<T, 16>>(p)});
}
#endif

// The twiddles of column k and those that follow, for one multiple m, as make_twiddles lays them out.
template <class T>
struct ColumnTwiddles {
  const T *start;

  QKR_INLINE ColumnTwiddles(const T *table, size_t factor, size_t k) {
    constexpr size_t together = columns_together<T, 64>;
    start = table + 2 * ((factor - 1) * (k & -together) + k % together);
  }
  QKR_INLINE const T *of(size_t m) const { return start + (m - 1) * (64 / sizeof(T)); }
  template <int bytes>
  QKR_INLINE auto turns_of(size_t m) const {
    return load_turns(of(m), Width<(bytes < 16 ? 16 : bytes)>());
  }
};

// x times w, or times the conjugate of w.
template <bool forward, class T, int bytes, class V>
QKR_INLINE Paired<T, bytes> times(Paired<T, bytes> x, Turns<V> w) {
  return times<forward>(x, w.c, w.s);
}
template <bool forward, class T, int bytes>
QKR_INLINE Paired<T, bytes> times_pairs(Paired<T, bytes> x, Paired<T, bytes> w) {
  return times<forward>(x, turns(w));
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
