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

// The twiddles of one multiple m of the columns, of a group of columns as make_twiddles lays them out.
template <class T>
struct ColumnTwiddles {
  const T *start;
  size_t row;  // numbers of T for one m

  QKR_INLINE ColumnTwiddles(const T *table, size_t factor, size_t columns, size_t k) {
    constexpr size_t together = columns_together<T, 64>;
    const size_t group = k / together * together, left = columns - group;
    row = 2 * (left < together ? left : together);
    start = table + 2 * ((factor - 1) * group + (k - group));
  }
  template <int bytes>
  QKR_INLINE auto pairs(size_t m) const {
    return columns<bytes>(Interleaved<const T>{start + (m - 1) * row}, 0);
  }
  template <int bytes>
  QKR_INLINE auto turns_of(size_t m) const {
    if constexpr (bytes < 32) {
      return turns(pairs<bytes>(m));
    } else {
      // Each from memory by itself: the copies of a number cost no shuffle then.
      using V = Vector<T, bytes>;
      using Lanes = std::make_integer_sequence<int, bytes / (int)sizeof(T)>;
      const T *const of_c = start + (m - 1) * row, *of_s = of_c;
      asm("" : "+r"(of_s));
      V c, s;
      __builtin_memcpy(&c, of_c, sizeof c);
      __builtin_memcpy(&s, of_s, sizeof s);
      return Turns<V>{each_part_twice<0>(c, Lanes()), each_part_twice<1>(s, Lanes())};
    }
  }
};

// x times w, or times the conjugate of w.
template <bool forward, class T, int bytes>
QKR_INLINE Paired<T, bytes> times_pairs(Paired<T, bytes> x, Paired<T, bytes> w) {
  const auto t = turns(w);
  return times<forward>(x, t.c, t.s);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
