// Integers that are one step away from a uniform number.
#include <cstring>

#include "distributions/near_one.h"
#include "distributions/whole.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

void floors(int32_t n, const double *x, int32_t *out) {
  for (int32_t i = 0; i < n; ++i) {
    const int32_t whole = static_cast<int32_t>(x[i]);
    out[i] = whole - (x[i] < whole);
  }
}

// The first half of the output takes half as many doubles as the whole has room for, and no copy of the
// stream's numbers is needed but for a block that is out of the way of the results.
int32_t uniform_integers(StreamState *stream, int32_t n, int32_t *out, double a, double b) {
  double x[longest_block];
  int32_t status = VXS_STATUS_OK;
  ptrdiff_t done = 0;
  const int32_t half = n >> 1;
  if (half > longest_block) {
    DoubleInPlace *in_place = reinterpret_cast<DoubleInPlace *>(out);
    status = _vxsdRngUniform(0, stream, half, in_place, a, b);
    if (status < 0) return status;
    in_blocks(half, [&](int32_t m, ptrdiff_t first) {
      memcpy(x, in_place + first, static_cast<size_t>(m) * sizeof(double));
      floors(m, x, out + first);
    });
    done = half;
  }
  for (; done < n && status >= 0; done += longest_block) {
    const int32_t m = n - done < longest_block ? static_cast<int32_t>(n - done) : longest_block;
    status = _vxsdRngUniform(0, stream, m, x, a, b);
    if (status >= 0) floors(m, x, out + done);
  }
  return status;
}

// Draws single-precision numbers into `out`, lets `prepare(m, x)` work on them, and puts element(x) in their
// places.
template <class Prepare, class Element>
int32_t from_singles(StreamState *stream, int32_t n, int32_t *out, Prepare prepare, Element element) {
  SingleInPlace *in_place = reinterpret_cast<SingleInPlace *>(out);
  return draw_in_blocks(
      stream, n, [=](int32_t m, ptrdiff_t first) { return uniforms<float>(stream, m, in_place + first); },
      [=](int32_t m, ptrdiff_t first) {
        prepare(m, in_place + first);
        for (ptrdiff_t i = first; i < first + m; ++i) out[i] = element(double(in_place[i]));
      });
}

int32_t bernoulli(StreamState *stream, int32_t n, int32_t *out, double p) {
  const bool certain = p >= 1.0;  // also for a uniform number that was rounded to 1
  return from_singles(
      stream, n, out, [](int32_t, float *) {},
      [=](double u) -> int32_t { return ((u >= p) & !certain) ? 0 : 1; });
}

int32_t geometric(StreamState *stream, int32_t n, int32_t *out, double p) {
  return with_finite_logarithms<float, ActsOn::every_error>([=] {
    const double factor = 1.0 / ln_of_one_plus(-p);
    return from_singles(
        stream, n, out, [](int32_t m, float *x) { _vxmsLn_HA(m, x, x); },
        [=](double ln_u) { return whole(ln_u * factor); });
  });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION(_vxsiRngUniform, int32_t, (int32_t a, int32_t b), (a, b)) {
  return uniform_integers(stream, n, out, a, b);
}
QKR_DISTRIBUTION(_vxsiRngBernoulli, int32_t, (double p), (p)) { return bernoulli(stream, n, out, p); }
QKR_DISTRIBUTION(_vxsiRngGeometric, int32_t, (double p), (p)) { return geometric(stream, n, out, p); }
