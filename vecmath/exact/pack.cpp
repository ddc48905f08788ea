// Pack and Unpack: elements moved between a dense vector and one with a stride, a mask or an index vector.
// Each is a loop from 0 upward; where the vectors overlap otherwise than by being one, the result is that of
// this loop.
#include <utility>

#include "vecmath/frame/function.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Whether `count` elements from p and from q share memory without p being q.
template <class T>
QKR_INLINE bool overlap(const T *p, const T *q, ptrdiff_t count) {
  const intptr_t distance = (intptr_t)p - (intptr_t)q, bytes = count * (intptr_t)sizeof(T);
  return distance != 0 && distance < bytes && -distance < bytes;
}

template <class V, size_t... lane>
QKR_INLINE V even_lanes(V low, V high, std::index_sequence<lane...>) {
  return __builtin_shufflevector(low, high, 2 * lane...);
}

// step(i) for every i below n from the first one on; four a turn, which halves the time of moves this small.
template <class Step>
QKR_INLINE void each_in_order(ptrdiff_t first, ptrdiff_t n, Step step) {
  ptrdiff_t i = first;
  for (; i + 4 <= n; i += 4) step(i), step(i + 1), step(i + 2), step(i + 3);
  for (; i < n; ++i) step(i);
}

template <size_t first, class V, size_t... lane>
QKR_INLINE V doubled_lanes(V v, std::index_sequence<lane...>) {
  return __builtin_shufflevector(v, v, first + lane / 2 ...);
}
#if QKR_SIMD_BYTES == 64
QKR_INLINE void store_even_lanes(double *p, f64 v) { _mm512_mask_storeu_pd(p, 0x55, (__m512d)v); }
QKR_INLINE void store_even_lanes(float *p, f32 v) { _mm512_mask_storeu_ps(p, 0x5555, (__m512)v); }
#elif QKR_SIMD_BYTES == 32
QKR_INLINE void store_even_lanes(double *p, f64 v) {
  _mm256_maskstore_pd(p, _mm256_setr_epi64x(-1, 0, -1, 0), (__m256d)v);
}
QKR_INLINE void store_even_lanes(float *p, f32 v) {
  _mm256_maskstore_ps(p, _mm256_set1_epi64x(0xFFFFFFFF), (__m256)v);
}
#endif

// Every second element, as separates the members of pairs. The vectors may be one: reads stay ahead of
// writes.
template <class T>
QKR_INLINE ptrdiff_t pack_pairs(ptrdiff_t n, const T *a, T *y) {
  using V = Native<T>;
  constexpr ptrdiff_t lanes = sizeof(V) / sizeof(T);
  const auto evens = [&](ptrdiff_t i) QKR_LAMBDA {
    V low, high;
    load(a + 2 * i, low);
    load(a + 2 * i + lanes, high);
    return even_lanes(low, high, std::make_index_sequence<lanes>());
  };
  ptrdiff_t i = 0;  // the element behind the last wanted one must exist
  for (; i + 2 * lanes < n; i += 2 * lanes) {
    const V first = evens(i), second = evens(i + lanes);
    store(y + i, first);
    store(y + i + lanes, second);
  }
  return i;
}

// The converse: the elements between stay as they are, which takes masked stores.
template <class T>
QKR_INLINE ptrdiff_t unpack_pairs(ptrdiff_t n, const T *a, T *y) {
  using V = Native<T>;
  constexpr ptrdiff_t lanes = sizeof(V) / sizeof(T);
  ptrdiff_t i = 0;
  if constexpr (!QKR_BASELINE)
    for (; i + lanes < n; i += lanes) {
      V v;
      load(a + i, v);
      const auto indices = std::make_index_sequence<lanes>();
      store_even_lanes(y + 2 * i, doubled_lanes<0>(v, indices));
      store_even_lanes(y + 2 * i + lanes, doubled_lanes<lanes / 2>(v, indices));
    }
  return i;
}

template <class T>
QKR_INLINE void pack_stride(ptrdiff_t n, const T *a, ptrdiff_t inc, T *y) {
  if (inc == 1 && n > 0 && !overlap(a, (const T *)y, n)) {
    memmove(y, a, n * sizeof(T));
    return;
  }
  const ptrdiff_t done = inc == 2 && !overlap(a, (const T *)y, 2 * n) ? pack_pairs(n, a, y) : 0;
  each_in_order(done, n, [&](ptrdiff_t i) QKR_LAMBDA { y[i] = a[i * inc]; });
}

template <class T>
QKR_INLINE void unpack_stride(ptrdiff_t n, const T *a, T *y, ptrdiff_t inc) {
  if (inc == 1) return pack_stride(n, a, 1, y);
  const ptrdiff_t done = inc == 2 && a != y && !overlap(a, (const T *)y, 2 * n) ? unpack_pairs(n, a, y) : 0;
  each_in_order(done, n, [&](ptrdiff_t i) QKR_LAMBDA { y[i * inc] = a[i]; });
}

#if QKR_SIMD_BYTES == 64
// Eight doubles or sixteen floats at a time, by masks.
template <class T>
struct Masked;
template <>
struct Masked<double> {
  static constexpr ptrdiff_t lanes = 8;
  QKR_INLINE static unsigned wanted(const int32_t *mask) {
    const __m256i m = _mm256_loadu_si256((const __m256i *)mask);
    return _mm256_test_epi32_mask(m, m);
  }
  QKR_INLINE static void compress(const double *a, unsigned k, double *y) {
    const __m512d packed = _mm512_maskz_compress_pd(k, _mm512_loadu_pd(a));
    _mm512_mask_storeu_pd(y, (1u << __builtin_popcount(k)) - 1, packed);
  }
  QKR_INLINE static void expand(const double *a, unsigned k, double *y) {
    const __m512d packed = _mm512_maskz_loadu_pd((1u << __builtin_popcount(k)) - 1, a);
    _mm512_mask_storeu_pd(y, k, _mm512_maskz_expand_pd(k, packed));
  }
};
template <>
struct Masked<float> {
  static constexpr ptrdiff_t lanes = 16;
  QKR_INLINE static unsigned wanted(const int32_t *mask) {
    const __m512i m = _mm512_loadu_si512(mask);
    return _mm512_test_epi32_mask(m, m);
  }
  QKR_INLINE static void compress(const float *a, unsigned k, float *y) {
    const __m512 packed = _mm512_maskz_compress_ps(k, _mm512_loadu_ps(a));
    _mm512_mask_storeu_ps(y, (1u << __builtin_popcount(k)) - 1, packed);
  }
  QKR_INLINE static void expand(const float *a, unsigned k, float *y) {
    const __m512 packed = _mm512_maskz_loadu_ps((1u << __builtin_popcount(k)) - 1, a);
    _mm512_mask_storeu_ps(y, k, _mm512_maskz_expand_ps(k, packed));
  }
};
#endif

template <class T>
QKR_INLINE void pack_mask(ptrdiff_t n, const T *a, const int32_t *mask, T *y) {
  ptrdiff_t i = 0, j = 0;
#if QKR_SIMD_BYTES == 64
  if (!overlap(a, (const T *)y, n) && !overlap((const T *)mask, (const T *)y, n) && (const void *)mask != y)
    for (; i + Masked<T>::lanes <= n; i += Masked<T>::lanes) {
      const unsigned k = Masked<T>::wanted(mask + i);
      Masked<T>::compress(a + i, k, y + j);
      j += __builtin_popcount(k);
    }
#endif
  each_in_order(i, n, [&](ptrdiff_t k) QKR_LAMBDA {
    if (mask[k]) y[j++] = a[k];
  });
}

template <class T>
QKR_INLINE void unpack_mask(ptrdiff_t n, const T *a, T *y, const int32_t *mask) {
  ptrdiff_t i = 0, j = 0;
#if QKR_SIMD_BYTES == 64
  if (a != y && !overlap(a, (const T *)y, n) && !overlap((const T *)mask, (const T *)y, n) &&
      (const void *)mask != y)
    for (; i + Masked<T>::lanes <= n; i += Masked<T>::lanes) {
      const unsigned k = Masked<T>::wanted(mask + i);
      Masked<T>::expand(a + j, k, y + i);
      j += __builtin_popcount(k);
    }
#endif
  each_in_order(i, n, [&](ptrdiff_t k) QKR_LAMBDA {
    if (mask[k]) y[k] = a[j++];
  });
}

template <class T>
QKR_INLINE void pack_index(ptrdiff_t n, const T *a, const int32_t *index, T *y) {
  each_in_order(0, n, [&](ptrdiff_t i) QKR_LAMBDA { y[i] = a[(ptrdiff_t)index[i]]; });
}

template <class T>
QKR_INLINE void unpack_index(ptrdiff_t n, const T *a, T *y, const int32_t *index) {
  each_in_order(0, n, [&](ptrdiff_t i) QKR_LAMBDA { y[(ptrdiff_t)index[i]] = a[i]; });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_PACK(name, T, type, argument, body)                                        \
  QKR_ENTRY(name, (int32_t n, const T *a, type argument, T *y), (n, a, argument, y)) { \
    body(n, a, argument, y);                                                           \
  }
#define QKR_UNPACK(name, T, type, argument, body)                                      \
  QKR_ENTRY(name, (int32_t n, const T *a, T *y, type argument), (n, a, y, argument)) { \
    body(n, a, y, argument);                                                           \
  }

QKR_PACK(_vxmdPackI, double, int32_t, inc, pack_stride)
QKR_PACK(_vxmsPackI, float, int32_t, inc, pack_stride)
QKR_PACK(_vxmdPackM, double, const int32_t *, mask, pack_mask)
QKR_PACK(_vxmsPackM, float, const int32_t *, mask, pack_mask)
QKR_PACK(_vxmdPackV, double, const int32_t *, index, pack_index)
QKR_PACK(_vxmsPackV, float, const int32_t *, index, pack_index)
QKR_UNPACK(_vxmdUnpackI, double, int32_t, inc, unpack_stride)
QKR_UNPACK(_vxmsUnpackI, float, int32_t, inc, unpack_stride)
QKR_UNPACK(_vxmdUnpackM, double, const int32_t *, mask, unpack_mask)
QKR_UNPACK(_vxmsUnpackM, float, const int32_t *, mask, unpack_mask)
QKR_UNPACK(_vxmdUnpackV, double, const int32_t *, index, unpack_index)
QKR_UNPACK(_vxmsUnpackV, float, const int32_t *, index, unpack_index)
