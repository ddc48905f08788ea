// Products of the complex numbers of two spectra, side by side in the lanes.
#include "sigfft/convolution/kernels.h"
#include "sigfft/passes/registers.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <int offset, class T, int bytes, int... i>
QKR_INLINE Vector<T, bytes> doubled_parts(Paired<T, bytes> x, std::integer_sequence<int, i...>) {
  return shuffle<((i & ~1) + offset)...>(x.v, x.v);
}

// a b, or a times the conjugate of b.
template <bool conjugate, class T, int bytes>
QKR_INLINE Paired<T, bytes> product(Paired<T, bytes> a, Paired<T, bytes> b) {
  using Lanes = std::make_integer_sequence<int, bytes / (int)sizeof(T)>;
  const auto re = doubled_parts<0>(a, Lanes()), im = doubled_parts<1>(a, Lanes());
  if constexpr (conjugate) return {add_signed(b.swapped() * im, b.v * re, b.signs())};
  else return times<true>(b, re, im);
}

// By registers of `bytes`, and what is left by smaller ones. dst may be a or b, which are read first.
template <int bytes, bool conjugate, class T>
QKR_INLINE void products(const T *a, const T *b, T *dst, size_t count) {
  constexpr size_t numbers = bytes / sizeof(T);
  size_t k = 0;
  for (; k + numbers <= 2 * count; k += numbers) {
    const Paired<T, bytes> x = {load_vector<Vector<T, bytes>>(a + k)};
    const Paired<T, bytes> y = {load_vector<Vector<T, bytes>>(b + k)};
    store_vector(dst + k, product<conjugate>(x, y).v);
  }
  const size_t left = count - k / 2;
  if constexpr (bytes > 16) {
    products<bytes / 2, conjugate>(a + k, b + k, dst + k, left);
  } else if (left) {  // one number that takes half a register
    T two[2][numbers] = {};
    memcpy(two[0], a + k, 2 * sizeof(T));
    memcpy(two[1], b + k, 2 * sizeof(T));
    products<bytes, conjugate>(two[0], two[1], two[0], numbers / 2);
    memcpy(dst + k, two[0], 2 * sizeof(T));
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_PRODUCTS(name, conjugate, T)                                                \
  QKR_ENTRY(name, (const T *a, const T *b, T *dst, size_t count), (a, b, dst, count)) { \
    products<QKR_SIMD_BYTES, conjugate>(a, b, dst, count);                              \
  }
QKR_PRODUCTS(zprs_pairProducts_32f, false, float)
QKR_PRODUCTS(zprs_pairProducts_64f, false, double)
QKR_PRODUCTS(zprs_conjugateProducts_32f, true, float)
QKR_PRODUCTS(zprs_conjugateProducts_64f, true, double)
