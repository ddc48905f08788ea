// Convolution written on FFTW: by one transform where the lengths are alike, else by overlap-add. Plans are
// estimated, as a user would who has one pair of sequences to convolve.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fftw3.h>

namespace qkr::bench {

// Transforms of n numbers: a and b are arrays of n + 2.
template <class T>
struct Fftw;
#define QKR_FFTW(T, prefix)                                                                               \
  template <>                                                                                             \
  struct Fftw<T> {                                                                                        \
    int n;                                                                                                \
    T *a = (T *)prefix##_malloc((n + 2) * sizeof(T)), *b = (T *)prefix##_malloc((n + 2) * sizeof(T));     \
    prefix##_plan forward = prefix##_plan_dft_r2c_1d(n, a, (prefix##_complex *)a, FFTW_ESTIMATE);         \
    prefix##_plan inverse = prefix##_plan_dft_c2r_1d(n, (prefix##_complex *)b, b, FFTW_ESTIMATE);         \
    explicit Fftw(int length) : n(length) {}                                                              \
    Fftw(const Fftw &) = delete;                                                                          \
    ~Fftw() {                                                                                             \
      prefix##_destroy_plan(forward), prefix##_destroy_plan(inverse), prefix##_free(a), prefix##_free(b); \
    }                                                                                                     \
    void transform(T *x) { prefix##_execute_dft_r2c(forward, x, (prefix##_complex *)x); }                 \
    void back() { prefix##_execute(inverse); }                                                            \
  };
QKR_FFTW(double, fftw)
QKR_FFTW(float, fftwf)
#undef QKR_FFTW

// Length of the transforms: the least of 2^k, 3 2^k and 5 2^k that holds all, or the power of two that makes
// a result cheapest.
inline int fftw_length(size_t a, size_t b) {
  if (a < 3 * b) {
    size_t best = SIZE_MAX;
    for (const size_t factor : {1, 3, 5})
      for (size_t n = 2 * factor; n < best; n *= 2)
        if (n >= a + b - 1) best = n;
    return (int)best;
  }
  size_t best = 0;
  double least = INFINITY;
  for (size_t n = 64; n < 64 * b || n == 64; n *= 2) {
    if (n < 2 * b) continue;
    const double cost = (double)n * std::log2((double)n) / (double)(n - b + 1);
    if (cost < least) least = cost, best = n;
  }
  return (int)best;
}

template <class T>
void fftw_convolve(Fftw<T> &f, const T *x, size_t a, const T *h, size_t b, T *dst) {
  const size_t n = (size_t)f.n, results = a + b - 1, step = n - b + 1;
  const auto fill = [&](T *to, const T *from, size_t count) {
    memcpy(to, from, count * sizeof(T));
    memset(to + count, 0, (n - count) * sizeof(T));
  };
  fill(f.a, h, b);
  f.transform(f.a);
  memset(dst, 0, results * sizeof(T));
  const T factor = T(1) / (T)n;
  for (size_t i = 0; i < a; i += step) {
    fill(f.b, x + i, std::min(step, a - i));
    f.transform(f.b);
    for (size_t k = 0; k < n + 2; k += 2) {
      const T re = f.a[k] * f.b[k] - f.a[k + 1] * f.b[k + 1];
      const T im = f.a[k] * f.b[k + 1] + f.a[k + 1] * f.b[k];
      f.b[k] = re * factor, f.b[k + 1] = im * factor;
    }
    f.back();
    const size_t count = std::min(n, results - i);
    for (size_t k = 0; k < count; ++k) dst[i + k] += f.b[k];
  }
}

}  // namespace qkr::bench
