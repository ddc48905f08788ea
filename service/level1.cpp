// Scaling and copying of strided vectors. Unit strides, on which the transforms stand, run over whole vectors
// of the processor; all others element by element.
#include <qkr/service_level1.h>

#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T>
QKR_INLINE void scale_contiguous(int64_t count, T alpha, T *x) {
  using V = Native<T>;
  constexpr int64_t lanes = sizeof(V) / sizeof(T);
  int64_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    V v;
    load(x + i, v);
    store(x + i, v * alpha);
  }
  for (; i < count; ++i) x[i] *= alpha;
}

// Elements of `parts` numbers. A negative stride touches the elements of the positive one.
template <int parts, class T>
QKR_INLINE void scale(int64_t n, T alpha, T *x, int64_t stride) {
  if (n <= 0) return;
  if (stride < 0) stride = -stride;
  if (stride == 1) return scale_contiguous(parts * n, alpha, x);
  for (int64_t i = 0; i < n; ++i)
    for (int part = 0; part < parts; ++part) x[i * stride * parts + part] *= alpha;
}

// Bits are moved, not numbers: those of a signalling NaN stay.
struct __attribute__((may_alias, packed)) Pair {
  uint64_t low, high;
};
template <int bytes>
struct BitsOf;
template <>
struct BitsOf<4> {
  typedef uint32_t type __attribute__((may_alias, aligned(1)));
};
template <>
struct BitsOf<8> {
  typedef uint64_t type __attribute__((may_alias, aligned(1)));
};
template <>
struct BitsOf<16> {
  using type = Pair;
};

template <int bytes>
QKR_INLINE void copy(int64_t n, const void *source, int64_t stride_x, void *target, int64_t stride_y) {
  using Element = typename BitsOf<bytes>::type;
  if (n <= 0) return;
  if (stride_x == stride_y && (stride_x == 1 || stride_x == -1)) {
    __builtin_memmove(target, source, n * bytes);
    return;
  }
  const auto first = [n](int64_t stride) { return stride < 0 ? (1 - n) * stride : 0; };
  const Element *x = (const Element *)source + first(stride_x);
  Element *y = (Element *)target + first(stride_y);
  for (int64_t i = 0; i < n; ++i) y[i * stride_y] = x[i * stride_x];
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_SCALE(name, parts, T, Vector)                                                                    \
  QKR_ENTRY(name, (const int32_t *n, const T *alpha, Vector *x, const int32_t *incx), (n, alpha, x, incx)) { \
    scale<parts>(*n, *alpha, (T *)x, *incx);                                                                 \
  }
QKR_SCALE(qkr_blas_def_sscal, 1, float, float)
QKR_SCALE(qkr_blas_def_dscal, 1, double, double)
QKR_SCALE(qkr_blas_def_csscal, 2, float, void)
QKR_SCALE(qkr_blas_def_zdscal, 2, double, void)

#if QKR_BASELINE
#define QKR_COPY(name, bytes, Vector)                                                                 \
  void name(const int32_t *n, const Vector *x, const int32_t *incx, Vector *y, const int32_t *incy) { \
    qkr::sse2::copy<bytes>(*n, x, *incx, y, *incy);                                                   \
  }
QKR_COPY(qkr_blas_def_scopy, 4, float)
QKR_COPY(qkr_blas_def_dcopy, 8, double)
QKR_COPY(qkr_blas_def_ccopy, 8, void)
QKR_COPY(qkr_blas_def_zcopy, 16, void)
#endif
