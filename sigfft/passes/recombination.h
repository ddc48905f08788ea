// The recombination of real signals, of a number and its counterpart: the steps that power-of-two lengths and
// others share.
#pragma once

#include "sigfft/passes/views.h"
#include "sigfft/plan/plan.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T, int bytes, int... i>
QKR_INLINE Paired<T, bytes> in_reverse(Paired<T, bytes> x, std::integer_sequence<int, i...>) {
  constexpr int count = sizeof...(i);
  return {shuffle<(count - 2 - (i & ~1) + (i & 1))...>(x.v, x.v)};
}
template <class T, int bytes>
QKR_INLINE Paired<T, bytes> in_reverse(Paired<T, bytes> x) {
  return in_reverse(x, std::make_integer_sequence<int, bytes / (int)sizeof(T)>());
}

template <class T, int bytes>
QKR_INLINE Paired<T, bytes> conjugate(Paired<T, bytes> x) {
  return {x.v * x.signs()};
}
// a + or - the conjugate of b, by an operation whose product with 1 or -1 is exact.
template <class T, int bytes>
QKR_INLINE Paired<T, bytes> plus_conjugate(Paired<T, bytes> a, Paired<T, bytes> b) {
  return {add_signed(a.v, b.v, b.signs())};
}
template <class T, int bytes>
QKR_INLINE Paired<T, bytes> minus_conjugate(Paired<T, bytes> a, Paired<T, bytes> b) {
  return {subtract_signed(a.v, b.v, b.signs())};
}

// The table's first and second value of each successive k, twice: for the real and the imaginary part.
template <class V>
struct Values {
  V first, second;
};
template <sigfft::EntrySet set, class T, int bytes, int... i>
QKR_INLINE Values<Vector<T, bytes>> table_values(const T *table, size_t k, std::integer_sequence<int, i...>) {
  using V = Vector<T, bytes>;
  if constexpr (set == sigfft::EntrySet::plain) {
    const auto w = load_vector<V>(table + 2 * k);
    return {shuffle<(i & ~1)...>(w, w), shuffle<(i | 1)...>(w, w)};
  } else {  // groups of first values and of second values, from k = 1 on
    constexpr int g = group<T>, numbers = sizeof...(i) / 2;
    const T *start = table + (k - 1) / g * 2 * g + (k - 1) % g;
    if constexpr (numbers < g) {
      return {V{start[i / 2]...}, V{start[g + i / 2]...}};
    } else {
      const auto w = load_vector<V>(start);
      return {shuffle<(i / 2 / g * 2 * g + i / 2 % g)...>(w, w),
              shuffle<(i / 2 / g * 2 * g + g + i / 2 % g)...>(w, w)};
    }
  }
}

// A number and its counterpart: in both directions the difference to the counterpart's conjugate is
// multiplied by a complex number of the table.
template <class C>
struct Both {
  C lower, upper;
};
template <bool forward, class T, int bytes>
QKR_INLINE Both<Paired<T, bytes>> recombined(Paired<T, bytes> lower, Paired<T, bytes> upper,
                                             Vector<T, bytes> first, Vector<T, bytes> second) {
  const auto product = times<!forward>(minus_conjugate(lower, upper), second, first);
  if constexpr (forward) return {plus_conjugate(product, upper), conjugate(lower - product)};
  const auto sum = plus_conjugate(lower, upper);
  return {sum + product, conjugate(sum - product)};
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
