// Multivariate normal vectors: mean + T z, with z standard normal and T the Cholesky factor of the covariance
// (L. Devroye, Non-Uniform Random Variate Generation, 1986, chapter 11).
#include <cstdlib>

#include "distributions/internal.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

enum Storage : int32_t { full, packed, diagonal, storages };

template <class T>
void scale_by_diagonal(int32_t n, T *z, int32_t d, const T *mean, const T *t) {
  for (; n > 0; --n, z += d)
    for (int32_t j = 0; j < d; ++j) z[j] = z[j] * t[j] + mean[j];
}

// Sums column after column. Element (j, i) of T follows (j - 1, i) after `row_step` elements, and the
// diagonal's next follows after `diagonal_step(i)`.
template <class T, class Step>
void multiply(int32_t n, T *z, int32_t d, const T *mean, const T *t, int64_t row_step, Step diagonal_step,
              T *y) {
  for (; n > 0; --n, z += d) {
    for (int32_t j = 0; j < d; ++j) y[j] = t[j * row_step] * z[0];
    const T *column = t + diagonal_step(0);
    for (int32_t i = 1; i < d; column += diagonal_step(i), ++i)
      for (int32_t j = i; j < d; ++j) y[j] += column[(j - i) * row_step] * z[i];
    for (int32_t j = 0; j < d; ++j) z[j] = y[j] + mean[j];
  }
}

// count = n * d can be above the largest n of one call. Pieces of even length keep the pairs of method 1
// whole.
template <class T>
int32_t standard_normals(int32_t method, StreamState *stream, int64_t count, T *out) {
  constexpr int64_t longest = int64_t{1} << 30;
  for (; count > longest; count -= longest, out += longest) {
    const int32_t status =
        Precision<T>::gaussian(method, stream, static_cast<int32_t>(longest), out, T(0), T(1));
    if (status < 0) return status;
  }
  return Precision<T>::gaussian(method, stream, static_cast<int32_t>(count), out, T(0), T(1));
}

template <class T>
int32_t vectors(int32_t method, StreamState *stream, int32_t n, T *out, int32_t d, int32_t mstorage,
                const T *mean, const T *t) {
  if (d == 1) return Precision<T>::gaussian(method, stream, n, out, mean[0], t[0]);
  const int32_t status = standard_normals(method, stream, int64_t{n} * d, out);
  if (status < 0 || mstorage < 0 || mstorage >= storages) return status;
  if (mstorage == diagonal) {
    scale_by_diagonal(n, out, d, mean, t);
    return status;
  }
  T *y = static_cast<T *>(malloc(static_cast<size_t>(d) * sizeof(T)));
  if (!y) return VXS_STATUS_NO_MEMORY;
  if (mstorage == full)
    multiply(
        n, out, d, mean, t, d, [=](int32_t) { return int64_t{d} + 1; }, y);
  else
    multiply(
        n, out, d, mean, t, 1, [=](int32_t i) { return int64_t{d} - i; }, y);
  free(y);
  return status;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION_AFTER(, _vxsdRngGaussianMV, double,
                       (int32_t d, int32_t mstorage, const double *mean, const double *t),
                       (d, mstorage, mean, t)) {
  return vectors(method, stream, n, out, d, mstorage, mean, t);
}
QKR_DISTRIBUTION_AFTER(, _vxssRngGaussianMV, float,
                       (int32_t d, int32_t mstorage, const float *mean, const float *t),
                       (d, mstorage, mean, t)) {
  return vectors(method, stream, n, out, d, mstorage, mean, t);
}
