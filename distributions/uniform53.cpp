// Uniform doubles with all 53 bits, from two numbers of the stream each: the leading 27 bits of one and 26
// of the next, as M. Matsumoto and T. Nishimura join words in their genrand_res53.
#include "distributions/internal.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The leading bits of u as a whole number. Rounding of a generator may bring u = 1.
inline double leading(double u, double scale) {
  const auto whole = static_cast<int32_t>(u * scale);
  return whole < scale ? whole : scale - 1;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ENTRY_OF(int32_t, qkr_uniform_53, (StreamState * stream, int32_t n, double *out, double a, double b),
             (stream, n, out, a, b)) {
  using namespace qkr::QKR_SIMD_LEVEL;
  constexpr int32_t longest = 512;
  double u[2 * longest];
  ptrdiff_t first = 0;
  do {
    const auto m = static_cast<int32_t>(n - first < longest ? n - first : longest);
    const int32_t status = uniforms(stream, m > 0 ? 2 * m : 0, u);
    if (status < 0 || m <= 0) return status;
    for (int32_t i = 0; i < m; ++i) {
      const double sum = leading(u[2 * i], 0x1p27) * 0x1p26 + leading(u[2 * i + 1], 0x1p26);  // exact
      out[first + i] = sum * 0x1p-53 * (b - a) + a;
    }
    first += m;
  } while (first < n);
  return VXS_STATUS_OK;
}
