// Negative binomial numbers: the failures before success number a, for any positive a. Inversion of a
// table, and for large modes rejection under a table mountain, for huge ones Poisson numbers of gamma means.
#include "distributions/chunks.h"
#include "distributions/counts/mountain.h"
#include "distributions/counts/stirling.h"
#include "distributions/counts/table_search.h"
#include "distributions/near_one.h"

namespace qkr {
constexpr double rejection_from = 100.0;  // the mode
constexpr double far_from_mode = 64.0;    // where running products give way to Stirling's series
}  // namespace qkr

extern "C" {
extern const double _vxsiNegbinomialTab[11];
#if QKR_BASELINE
const double _vxsiNegbinomialTab[11] = {
    qkr::rejection_from,        150.0, 64.0, 0.0, 0.5, 1.0, 1.0 / 12, 1.0 / 360, 1.0 / 1260, 0.25,
    qkr::sse2::ln_floor<double>};
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int32_t table_size = 150;

// Doubles all, and in stream files too. The table serves small modes, the mountain large ones.
struct Setup {
  double a, p;
  Mountain mountain;
  double ln_ratio;  // of q (a + mode) / (mode + 1), the ratio of masses at the mode
  double unused[2];
  double cumulative[table_size];
};
static_assert(sizeof(Setup) == 1304, "in stream files too");
constexpr uint32_t setup_chunk = 4;
constexpr double unlimited = 0x1p60;

void set_up_table(Setup &s) {
  double mass = power(s.p, s.a);
  for (int32_t k = 0; k < table_size; ++k) {
    s.cumulative[k] = mass;
    mass *= (1.0 - s.p) * (s.a + k) / (k + 1.0);
  }
  cumulate(table_size, s.cumulative);
}

// The logarithm of the mass of y, that of the mode being 0, from ln((a + y) / (a + mode)) and
// ln((y + 1) / (mode + 1)).
inline double ln_mass(const Setup &s, double y, double first, double second) {
  const double mode = s.mountain.mode;
  return (s.a + y - 0.5) * first - (y + 0.5) * second + (y - mode) * s.ln_ratio +
         ((stirling_rest(s.a + y) - stirling_rest(s.a + mode)) -
          (stirling_rest(y + 1.0) - stirling_rest(mode + 1.0)));
}

double mass_of(const Setup &s, double y) {
  const double q = 1.0 - s.p, mode = s.mountain.mode;
  double mass = 1.0;
  if (std::abs(y - mode) >= far_from_mode)
    return exp(
        ln_mass(s, y, ln_of_one_plus((y - mode) / (s.a + mode)), ln_of_one_plus((y - mode) / (mode + 1.0))));
  for (double k = mode; k < y; k += 1.0) mass *= q * (s.a + k) / (k + 1.0);
  for (double k = mode; k > y; k -= 1.0) mass *= k / (q * (s.a + k - 1.0));
  return mass;
}

// A plateau of 1.1 deviations to either side is nearly the best: 1.27 candidates make a number.
void set_up_mountain(Setup &s) {
  const double q = 1.0 - s.p, mode = std::trunc((s.a - 1.0) * q / s.p);
  s.mountain.mode = mode;
  // 1 + d, d being small: (q (a + mode) - (mode + 1)) / (mode + 1)
  s.ln_ratio = ln_of_one_plus(((q * s.a - 1.0) - s.p * mode) / (mode + 1.0));
  s.mountain = mountain_over(
      mode, std::trunc(1.1 * square_root(s.a * q) / s.p), 0.0, unlimited,
      [&](double y) { return mass_of(s, y); }, [&](double y) { return q * (s.a + y) / (y + 1.0); });
}

int32_t by_rejection_from_mountain(StreamState *stream, int32_t n, int32_t *out, Setup &s) {
  const auto accept = [&](int32_t m, const double *y, const double *v, int64_t *accepted) {
    double first[mountain_candidates], second[mountain_candidates], ln_v[mountain_candidates];
    double ratio[mountain_candidates];
    const double mode = s.mountain.mode, inverse_a = 1.0 / (s.a + mode), inverse = 1.0 / (mode + 1.0);
    for (int32_t i = 0; i < m; ++i) ratio[i] = (y[i] - mode) * inverse_a;
    ln_of_one_plus(m, ratio, first);
    for (int32_t i = 0; i < m; ++i) ratio[i] = (y[i] - mode) * inverse;
    ln_of_one_plus(m, ratio, second);
    _vxmdLn_HA(m, v, ln_v);
    for (int32_t i = 0; i < m; ++i) accepted[i] = ln_v[i] <= ln_mass(s, y[i], first[i], second[i]);
  };
  return by_mountain(stream, n, out, s.mountain, 0.0, unlimited, accept, [&] { set_up_mountain(s); });
}

// A number from `lowest` on: Poisson numbers of gamma means, until one is. Beyond the table, where the tail
// is too long to be added up, that takes on the average one draw for each number, whether it is beyond or
// not.
int32_t from_gamma_means(StreamState *stream, double a, double p, int32_t lowest, int32_t &out) {
  // The bound is for tables from damaged files.
  for (int32_t tries = 0; tries < 1 << 20; ++tries) {
    double mean;
    int32_t status = _vxsdRngGamma(0, stream, 1, &mean, a, 0.0, (1.0 - p) / p);
    if (status >= 0) status = _vxsiRngPoissonV(0, stream, 1, &out, &mean);
    if (status < 0) return status;
    if (out >= lowest) break;
  }
  return VXS_STATUS_OK;
}

// One number after the other, so that the split of a request does not matter.
int32_t with_long_tail(StreamState *stream, int32_t n, int32_t *out, const Setup &s) {
  int32_t status = VXS_STATUS_OK;
  for (ptrdiff_t i = 0; i < n && status >= 0; ++i) {
    bool beyond = false;
    status = by_table<table_size>(stream, 1, out + i, s.cumulative, [&](double) {
      beyond = true;
      return 0;
    });
    if (status >= 0 && beyond) status = from_gamma_means(stream, s.a, s.p, table_size, out[i]);
  }
  return status;
}

// One after the other, for the same reason.
int32_t by_gamma_means(StreamState *stream, int32_t n, int32_t *out, double a, double p) {
  int32_t status = VXS_STATUS_OK;
  for (ptrdiff_t i = 0; i < n && status >= 0; ++i) status = from_gamma_means(stream, a, p, 0, out[i]);
  return status;
}

int32_t by_table_and_tail(StreamState *stream, int32_t n, int32_t *out, const Setup &s) {
  constexpr double long_tail_below = 0.01;  // p: the masses fall by a hundredth from number to number
  const double a = s.a, p = s.p, q = 1.0 - p;
  if (p < long_tail_below && s.cumulative[table_size - 1] < 1.0 - 0x1p-40)
    return with_long_tail(stream, n, out, s);
  return by_table<table_size>(stream, n, out, s.cumulative, [&](double u) {
    return beyond_table(s.cumulative, table_size, u, [&](double k) { return q * (a + k - 1.0) / k; });
  });
}

int32_t negative_binomial(StreamState *stream, int32_t n, int32_t *out, double a, double p) {
  if (!(a >= 0.0 && a <= 0x1p1000 && p > 0.0 && p <= 1.0)) return VXS_STATUS_BAD_ARGUMENT;
  const double mode = (a - 1.0) * (1.0 - p) / p;
  if (mode - 200.0 * square_root(mode / p) > largest_whole) return fill_with_largest(n, out);
  const bool small = !(mode >= rejection_from);
  // Where mass ratios round to 1, the mountain has no tails.
  if (!small && a / p > 0x1p48) return by_gamma_means(stream, n, out, a, p);
  Setup *setup;
  const int32_t status = find_or_add_chunk(stream, setup_chunk, Setup{}, &setup);
  if (status < 0) return status;
  Setup &s = *setup;
  const bool known = s.a == a && s.p == p;
  s.a = a;
  s.p = p;
  if (!known) {
    if (small) set_up_table(s);
    else set_up_mountain(s);
  }
  return small ? by_table_and_tail(stream, n, out, s) : by_rejection_from_mountain(stream, n, out, s);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION(_vxsiRngNegbinomial, int32_t, (double a, double p), (a, p)) {
  using namespace qkr::QKR_SIMD_LEVEL;
  return with_finite_logarithms<double, ActsOn::singularities>(
      [=] { return negative_binomial(stream, n, out, a, p); });
}
