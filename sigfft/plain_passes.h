// The passes of the plain set: in place, on numbers in bit-reversed order that stay interleaved. Radix 4,
// with a first pass of radix 8 if the order is odd; the twiddles of column k, of 2 k and of 3 k lie in one
// row of the table.
#pragma once

#include "sigfft/butterfly.h"
#include "sigfft/views.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Complex numbers `stride` numbers of T apart, as Paired, and back.
template <class T, int bytes>
QKR_INLINE Paired<T, bytes> strided_pairs(const T *p, size_t stride) {
  if constexpr (bytes == 2 * sizeof(T)) {
    return {load_vector<Vector<T, bytes>>(p)};
  } else if constexpr (bytes == 16) {  // two floats each: moved as one double
    double a, b;
    __builtin_memcpy(&a, p, sizeof a);
    __builtin_memcpy(&b, p + stride, sizeof b);
    return {(Vector<T, bytes>)Vector<double, 16>{a, b}};
  } else {
    constexpr size_t half = bytes / 4 / sizeof(T);
    return {join<T, bytes / 2>(strided_pairs<T, bytes / 2>(p, stride).v,
                               strided_pairs<T, bytes / 2>(p + half * stride, stride).v)};
  }
}
template <class T, int bytes>
QKR_INLINE void set_strided_pairs(T *p, size_t stride, Vector<T, bytes> v) {
  if constexpr (bytes == 2 * sizeof(T)) {
    store_vector(p, v);
  } else if constexpr (bytes == 16) {
    const auto both = as_doubles<T, bytes>(v);
    const double a = both[0], b = both[1];
    __builtin_memcpy(p, &a, sizeof a);
    __builtin_memcpy(p + stride, &b, sizeof b);
  } else {
    constexpr size_t half = bytes / 4 / sizeof(T);
    set_strided_pairs<T, bytes / 2>(p, stride, half_of<T, bytes, 0>(v));
    set_strided_pairs<T, bytes / 2>(p + half * stride, stride, half_of<T, bytes, 1>(v));
  }
}
template <int bytes, class T>
QKR_INLINE Paired<T, bytes> strided(Interleaved<T> data, size_t k, size_t stride) {
  return strided_pairs<T, bytes>(data.p + 2 * k, 2 * stride);
}
template <int bytes, class T>
QKR_INLINE void set_strided(Interleaved<T> data, size_t k, size_t stride, Paired<T, bytes> x) {
  set_strided_pairs<T, bytes>(data.p + 2 * k, 2 * stride, x.v);
}
template <int bytes, class T>
QKR_INLINE Paired<T, bytes> strided(Separate<T> data, size_t k, size_t stride) {
  T numbers[bytes / sizeof(T)];
  for (size_t i = 0; i < bytes / 2 / sizeof(T); ++i)
    numbers[2 * i] = data.re[k + i * stride], numbers[2 * i + 1] = data.im[k + i * stride];
  return {load_vector<Vector<T, bytes>>(numbers)};
}
template <int bytes, class T>
QKR_INLINE void set_strided(Separate<T> data, size_t k, size_t stride, Paired<T, bytes> x) {
  T numbers[bytes / sizeof(T)];
  store_vector(numbers, x.v);
  for (size_t i = 0; i < bytes / 2 / sizeof(T); ++i)
    data.re[k + i * stride] = numbers[2 * i], data.im[k + i * stride] = numbers[2 * i + 1];
}

// x times the numbers that w holds.
template <bool forward, class T, int bytes, int... i>
QKR_INLINE Paired<T, bytes> times_numbers(Paired<T, bytes> x, Vector<T, bytes> w,
                                          std::integer_sequence<int, i...>) {
  return times<forward>(x, shuffle<(i & ~1)...>(w, w), shuffle<(i | 1)...>(w, w));
}
template <bool forward, class T, int bytes>
QKR_INLINE Paired<T, bytes> times_numbers(Paired<T, bytes> x, Paired<T, bytes> w) {
  return times_numbers<forward>(x, w.v, std::make_integer_sequence<int, bytes / (int)sizeof(T)>());
}

constexpr int narrow_pairs =
    QKR_SIMD_BYTES == 16 ? 16 : 32;  // where there are few blocks, or columns in a block

template <int radix, bool forward, class Data>
QKR_NOINLINE void first_plain_pass(Data data, size_t n) {
  constexpr size_t together = narrow_pairs / 2 / sizeof(typename Data::Element);
  for (size_t j = 0; j < n; j += radix * together)
    butterfly<radix, forward>(
        [&](int m) QKR_LAMBDA { return strided<narrow_pairs>(data, j + reversed_place<radix>(m), radix); },
        [&](int k, auto x) QKR_LAMBDA { set_strided<narrow_pairs>(data, j + k, radix, x); });
}

constexpr size_t row_length = 6;  // numbers of the table

template <bool forward, int bytes, class Data, class T>
QKR_NOINLINE void twiddle_pass(Data data, size_t n, size_t columns, const T *rows) {
  const size_t stride = n / (4 * columns) * row_length;
  for (size_t k = 0; k < columns; k += bytes / 2 / sizeof(T)) {
    const T *row = rows + k * stride;
    const Paired<T, bytes> w[] = {strided_pairs<T, bytes>(row, stride),
                                  strided_pairs<T, bytes>(row + 2, stride),
                                  strided_pairs<T, bytes>(row + 4, stride)};
    for (size_t j = k; j < n; j += 4 * columns)
      butterfly<4, forward>(
          [&](int m) QKR_LAMBDA {
            const auto x = data.template pairs<bytes>(j + reversed_place<4>(m) * columns);
            return m ? times_numbers<forward>(x, w[m - 1]) : x;
          },
          [&](int q, auto x) QKR_LAMBDA { data.template set_pairs<bytes>(j + q * columns, x); });
  }
}

template <bool forward, class Data, class T>
void plain_passes(Data data, int order, const T *rows) {
  const size_t n = size_t{1} << order;
  size_t columns = order & 1 ? 8 : 4;
  if (order & 1) first_plain_pass<8, forward>(data, n);
  else first_plain_pass<4, forward>(data, n);
  for (; columns < n; columns *= 4) {
    if (columns * 2 * sizeof(T) < widest_pairs) twiddle_pass<forward, narrow_pairs>(data, n, columns, rows);
    else twiddle_pass<forward, widest_pairs>(data, n, columns, rows);
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
