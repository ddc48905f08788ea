#include "convcorr/plain_loops.h"

#include "simd/vectors.h"

namespace qkr::bench {
namespace {

template <class T>
void by_results(const LoopShape &shape, const T *__restrict x, const T *__restrict h, T *__restrict z) {
  const auto [nx, nh] = shape;
  for (int64_t k2 = 0; k2 < nx[2] + nh[2] - 1; ++k2)
    for (int64_t k1 = 0; k1 < nx[1] + nh[1] - 1; ++k1)
      for (int64_t k0 = 0; k0 < nx[0] + nh[0] - 1; ++k0) {
        T sum = 0;
        for (int64_t j2 = 0; j2 < nh[2]; ++j2) {
          if (k2 - j2 < 0 || k2 - j2 >= nx[2]) continue;
          for (int64_t j1 = 0; j1 < nh[1]; ++j1) {
            if (k1 - j1 < 0 || k1 - j1 >= nx[1]) continue;
            const T *const row = x + ((k2 - j2) * nx[1] + k1 - j1) * nx[0];
            const T *const taps = h + (j2 * nh[1] + j1) * nh[0];
            const int64_t first = k0 < nx[0] ? 0 : k0 - nx[0] + 1, last = k0 < nh[0] ? k0 : nh[0] - 1;
            for (int64_t j0 = first; j0 <= last; ++j0) sum += row[k0 - j0] * taps[j0];
          }
        }
        *z++ = sum;
      }
}

template <class T>
void by_terms(const LoopShape &shape, const T *__restrict x, const T *__restrict h, T *__restrict z) {
  const auto [nx, nh] = shape;
  const int64_t m0 = nx[0] + nh[0] - 1, m1 = nx[1] + nh[1] - 1, m2 = nx[2] + nh[2] - 1;
  for (int64_t k = 0; k < m0 * m1 * m2; ++k) z[k] = 0;
  for (int64_t i2 = 0; i2 < nx[2]; ++i2)
    for (int64_t i1 = 0; i1 < nx[1]; ++i1)
      for (int64_t j2 = 0; j2 < nh[2]; ++j2)
        for (int64_t j1 = 0; j1 < nh[1]; ++j1)
          for (int64_t j0 = 0; j0 < nh[0]; ++j0) {
            const T tap = h[(j2 * nh[1] + j1) * nh[0] + j0];
            const T *const row = x + (i2 * nx[1] + i1) * nx[0];
            T *const to = z + ((i2 + j2) * m1 + i1 + j1) * m0 + j0;
            for (int64_t i0 = 0; i0 < nx[0]; ++i0) to[i0] += row[i0] * tap;
          }
}

}  // namespace

#if QKR_SIMD_BYTES == 64
const LoopsOfLevel plain_loops_avx512
#elif QKR_SIMD_BYTES == 32
const LoopsOfLevel plain_loops_avx2
#else
const LoopsOfLevel plain_loops_sse2
#endif
    = {{by_results<double>, by_terms<double>}, {by_results<float>, by_terms<float>}};

}  // namespace qkr::bench
