// Convolution of one to three dimensions written on FFTW: overlap-add, by blocks of the length that makes a
// result cheapest. Plans are estimated.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fftw3.h>

#include "convcorr/plain_loops.h"

namespace qkr::bench {

template <class T>
struct FftwPlans;
#define QKR_FFTW(T, prefix)                                                                               \
  template <>                                                                                             \
  struct FftwPlans<T> {                                                                                   \
    size_t reals, pairs;                                                                                  \
    T *block, *spectrum, *kernel;                                                                         \
    prefix##_plan forward, inverse;                                                                       \
    explicit FftwPlans(const int (&n)[3])                                                                 \
        : reals((size_t)n[0] * n[1] * n[2]), pairs((size_t)(n[0] / 2 + 1) * n[1] * n[2]) {                \
      const auto make = [](size_t count) { return (T *)prefix##_malloc(count * sizeof(T)); };             \
      block = make(reals), spectrum = make(2 * pairs), kernel = make(2 * pairs);                          \
      forward =                                                                                           \
          prefix##_plan_dft_r2c_3d(n[2], n[1], n[0], block, (prefix##_complex *)spectrum, FFTW_ESTIMATE); \
      inverse =                                                                                           \
          prefix##_plan_dft_c2r_3d(n[2], n[1], n[0], (prefix##_complex *)spectrum, block, FFTW_ESTIMATE); \
    }                                                                                                     \
    FftwPlans(const FftwPlans &) = delete;                                                                \
    ~FftwPlans() {                                                                                        \
      prefix##_destroy_plan(forward), prefix##_destroy_plan(inverse);                                     \
      prefix##_free(block), prefix##_free(spectrum), prefix##_free(kernel);                               \
    }                                                                                                     \
    void transform(T *to) { prefix##_execute_dft_r2c(forward, block, (prefix##_complex *)to); }           \
    void back() { prefix##_execute(inverse); }                                                            \
  };
QKR_FFTW(double, fftw)
QKR_FFTW(float, fftwf)
#undef QKR_FFTW

// Per dimension the length of the transforms, of 2^k, 3 2^k and 5 2^k.
struct FftwLengths {
  int n[3];
  explicit FftwLengths(const LoopShape &shape) {
    for (int d = 0; d < 3; ++d) {
      const int64_t full = shape.x[d] + shape.h[d] - 1;
      double least = INFINITY;
      for (const int64_t factor : {1, 3, 5})
        for (int64_t length = factor; length < 2 * factor * full; length *= 2) {
          const int64_t step = length >= full ? shape.x[d] : length - shape.h[d] + 1;
          if (step < 1) continue;
          const double blocks = std::ceil((double)shape.x[d] / (double)step);
          const double cost = blocks * (double)length * (std::log2((double)length) + 2);
          if (cost < least) least = cost, n[d] = (int)length;
        }
    }
  }
};

template <class T>
class FftwGrid {
  LoopShape shape_;
  FftwLengths lengths_;
  FftwPlans<T> plans_;

 public:
  explicit FftwGrid(const LoopShape &shape) : shape_(shape), lengths_(shape), plans_(lengths_.n) {}

  void convolve(const T *x, const T *h, T *z) {
    const auto &n = lengths_.n;
    const auto [nx, nh] = shape_;
    const int64_t m0 = nx[0] + nh[0] - 1, m1 = nx[1] + nh[1] - 1, m2 = nx[2] + nh[2] - 1;
    const auto fill = [&](const T *from, const int64_t *extent, const int64_t *first, const int64_t *count) {
      memset(plans_.block, 0, plans_.reals * sizeof(T));
      for (int64_t i2 = 0; i2 < count[2]; ++i2)
        for (int64_t i1 = 0; i1 < count[1]; ++i1)
          memcpy(plans_.block + (i2 * n[1] + i1) * n[0],
                 from + ((first[2] + i2) * extent[1] + first[1] + i1) * extent[0] + first[0],
                 (size_t)count[0] * sizeof(T));
    };
    const int64_t zero[3] = {};
    fill(h, nh, zero, nh);
    plans_.transform(plans_.kernel);
    memset(z, 0, (size_t)(m0 * m1 * m2) * sizeof(T));
    const T factor = T(1) / (T)plans_.reals;
    int64_t step[3], b[3];
    for (int d = 0; d < 3; ++d) step[d] = n[d] >= nx[d] + nh[d] - 1 ? nx[d] : n[d] - nh[d] + 1;
    for (b[2] = 0; b[2] < nx[2]; b[2] += step[2])
      for (b[1] = 0; b[1] < nx[1]; b[1] += step[1])
        for (b[0] = 0; b[0] < nx[0]; b[0] += step[0]) {
          int64_t count[3], results[3];
          for (int d = 0; d < 3; ++d) {
            count[d] = std::min(step[d], nx[d] - b[d]);
            results[d] = count[d] + nh[d] - 1;
          }
          fill(x, nx, b, count);
          T *const s = plans_.spectrum, *const k = plans_.kernel;
          plans_.transform(s);
          for (size_t i = 0; i < 2 * plans_.pairs; i += 2) {
            const T re = s[i] * k[i] - s[i + 1] * k[i + 1], im = s[i] * k[i + 1] + s[i + 1] * k[i];
            s[i] = re * factor, s[i + 1] = im * factor;
          }
          plans_.back();
          for (int64_t i2 = 0; i2 < results[2]; ++i2)
            for (int64_t i1 = 0; i1 < results[1]; ++i1) {
              const T *const from = plans_.block + (i2 * n[1] + i1) * n[0];
              T *const to = z + ((b[2] + i2) * m1 + b[1] + i1) * m0 + b[0];
              for (int64_t i0 = 0; i0 < results[0]; ++i0) to[i0] += from[i0];
            }
        }
  }
};

}  // namespace qkr::bench
