// Products of arrays of complex numbers, for the chirp route.
#include "sigfft/any_length/passes/columns.h"
#include "sigfft/any_length/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Real numbers as an array of complex ones whose imaginary parts are 0, or are not kept.
template <class T>
struct RealParts {
  T *p;
};
template <class V, class T, int... i>
QKR_INLINE V with_zeros(const T *p, std::integer_sequence<int, i...>) {
  return V{(i % 2 ? T(0) : p[i / 2])...};
}
template <int bytes, class T>
QKR_INLINE Columns<Number<T>, bytes> columns(RealParts<T> array, size_t k) {
  using V = typename Columns<Number<T>, bytes>::V;
  if constexpr (bytes < 16) return {V{array.p[k]}};
  else return {with_zeros<V>(array.p + k, std::make_integer_sequence<int, bytes / (int)sizeof(T)>())};
}
template <int bytes, class T>
QKR_INLINE void set_columns(RealParts<T> array, size_t k, Columns<T, bytes> x) {
#pragma GCC unroll 8
  for (size_t i = 0; i < columns_together<T, bytes>; ++i) array.p[k + i] = x.v[2 * i];
}

template <class T, class Source, class Target>
QKR_INLINE void multiply(const T *a, Source b, Target dst, size_t n) {
  const Interleaved<const T> factors = {a};
  each_column<T>(0, n, [=](auto width, size_t k) QKR_LAMBDA {
    constexpr int bytes = decltype(width)::value;
    set_columns<bytes>(dst, k, times_pairs<true>(columns<bytes>(b, k), columns<bytes>(factors, k)));
  });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_PRODUCTS(T, suffix)                                                                              \
  QKR_ENTRY(zprs_multiplyComplex_##suffix##c, (const T *a, const T *b, T *dst, int32_t n), (a, b, dst, n)) { \
    multiply(a, Interleaved<const T>{b}, Interleaved<T>{dst}, (size_t)n);                                    \
  }                                                                                                          \
  QKR_ENTRY(zprs_multiplySplit_##suffix, (const T *a, const T *b_re, const T *b_im, T *dst, int32_t n),      \
            (a, b_re, b_im, dst, n)) {                                                                       \
    multiply(a, Split<const T>{b_re, b_im}, Interleaved<T>{dst}, (size_t)n);                                 \
  }                                                                                                          \
  QKR_ENTRY(zprs_multiplyToSplit_##suffix, (const T *a, const T *b, T *dst_re, T *dst_im, int32_t n),        \
            (a, b, dst_re, dst_im, n)) {                                                                     \
    multiply(a, Interleaved<const T>{b}, Split<T>{dst_re, dst_im}, (size_t)n);                               \
  }                                                                                                          \
  QKR_ENTRY(zprs_multiplyReal_##suffix, (const T *a, const T *b, T *dst, int32_t n), (a, b, dst, n)) {       \
    multiply(a, RealParts<const T>{b}, Interleaved<T>{dst}, (size_t)n);                                      \
  }                                                                                                          \
  QKR_ENTRY(zprs_multiplyToReal_##suffix, (const T *a, const T *b, T *dst, int32_t n), (a, b, dst, n)) {     \
    multiply(a, Interleaved<const T>{b}, RealParts<T>{dst}, (size_t)n);                                      \
  }
QKR_PRODUCTS(double, 64f)
QKR_PRODUCTS(float, 32f)
