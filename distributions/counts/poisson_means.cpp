// Poisson numbers of a mean for each: the quantile that belongs to a normal number, by a polynomial whose
// coefficients are chosen by the power of two below the mean. tools/tables/poisson_bands.py tells how they
// were found.
#include "distributions/tables/tables.h"
#include "distributions/whole.h"
#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr double series_below = 0.0625;
constexpr uint64_t first_exponent = 1019, last_band = 17;
constexpr uint64_t inverse_root2 = 4, first_band = 5, coefficients = 20;  // places in the table

// The quantile plus 1 at most, of mean and normal number.
QKR_INLINE double quantile(double given_mean, double g) {
  const double mean = given_mean < 0x1p60 ? given_mean : 0x1p60;
  const uint64_t exponent = bits(mean) >> 52, band = exponent - first_exponent;
  const double *const t = _vxsdPoissonTab + first_band + coefficients * (band < last_band ? band : last_band);
  const double m = real((bits(mean) & 0xFFFFFFFFFFFFFu) | 0x3FF0000000000000u) - 1.0;
  const double base = mean + t[0] + m * t[1], s = square_root(mean) + t[2] + t[3] * m;
  const double a = ((t[7] * m + t[6]) * m + t[5]) * m + t[4];
  const double b = ((t[11] * m + t[10]) * m + t[9]) * m + t[8];
  const double c = ((t[15] * m + t[14]) * m + t[13]) * m;
  const double d = (m * ((t[19] * m + t[18]) * m + t[17]) + t[16]) * g;
  const double e = (c + t[12] + d) * g;
  return base + 1.0 + g * (a + (b + e) * g) * s;
}

// How many terms of the series of e^mean it takes to reach `share` of the whole.
int32_t count_terms(double mean, double share) {
  if (!(mean > 0.0)) return 0;
  const double *const p = _vxsdPoissonTab;  // e^x below 1/16, by a polynomial
  const double whole_sum = ((p[3] * mean * mean + p[2]) * mean + p[1]) * mean + p[0];
  int32_t k = 0;
  for (double term = 1.0, sum = 1.0; k < 11 && share * whole_sum > sum; sum += term) term *= mean / ++k;
  return k;
}

// Means below 1/16: the share that belongs to a normal number is |erf(g / sqrt 2)|.
void from_series(int32_t count, const int32_t *places, const float *normal, const double *mean,
                 int32_t *out) {
  float share[longest_block];
  for (int32_t j = 0; j < count; ++j)
    share[j] = static_cast<float>(double(normal[places[j]]) * _vxsdPoissonTab[inverse_root2]);
  _vxmsErf_HA(count, share, share);
  for (int32_t j = 0; j < count; ++j) {
    const double w = share[j];
    out[places[j]] = count_terms(mean[places[j]], w < 0.0 ? -w : w);
  }
}

int32_t poisson_of_means(StreamState *stream, int32_t n, int32_t *out, const double *means) {
  const auto draw = [=](int32_t m, ptrdiff_t first) {
    // Normal numbers stand in the places of the results until they are replaced.
    return _vxssRngGaussian(1, stream, m, reinterpret_cast<SingleInPlace *>(out) + first, 0.0f, 1.0f);
  };
  const auto work = [=](int32_t m, ptrdiff_t first) {
    const SingleInPlace *const in_place = reinterpret_cast<const SingleInPlace *>(out) + first;
    const double *const mean = means + first;
    float normal[longest_block];
    for (int32_t i = 0; i < m; ++i) normal[i] = in_place[i];
    for (int32_t i = 0; i < m; ++i) {
      const double r = quantile(mean[i], normal[i]);
      out[first + i] = whole(r > 0.0 ? r : 0.0);
    }
    int32_t places[longest_block], count = 0;
    for (int32_t i = 0; i < m; ++i) {
      places[count] = i;
      count += !(mean[i] >= series_below);
    }
    from_series(count, places, normal, mean, out + first);
  };
  return draw_in_blocks(stream, n, draw, work);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION(_vxsiRngPoissonV, int32_t, (const double *lambda), (lambda)) {
  return qkr::QKR_SIMD_LEVEL::poisson_of_means(stream, n, out, lambda);
}
