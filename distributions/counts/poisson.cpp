// Poisson numbers of one mean: algorithm PTPE of B. W. Schmeiser and V. Kachitvichyanukul, Poisson Random
// Variate Generation, Research Memorandum 81-4, Purdue University (1981), with inversion of a table for
// small means; or normal numbers, corrected.
#include "distributions/chunks.h"
#include "distributions/counts/hat.h"
#include "distributions/counts/table_search.h"
#include "simd/simd.h"

namespace qkr {
constexpr double hat_from = 27.0;  // the mean from which rejection serves
constexpr double squeeze_from = 100.0,
                 squeeze_above = 50.0;  // the mode and the number from which a squeeze serves
constexpr double width_factor = 2.195, width_offset = 2.2;                        // of the triangle
constexpr double lift_constant = 0.133, lift_factor = 8.56, lift_offset = 6.83;   // of the parallelogram
constexpr double left_constant = 0.109, left_factor = 8.25, left_offset = 10.86;  // of the left tail
constexpr double upper_squeeze = 0.00084, squeeze_width = 0.004;
constexpr double normals_from = 100.0;
}  // namespace qkr

extern "C" {
extern const double _vxsiPoissonPtpe[22];
#if QKR_BASELINE
const double _vxsiPoissonPtpe[22] = {qkr::hat_from,
                                     qkr::squeeze_from,
                                     qkr::squeeze_above,
                                     0.0,
                                     1.0,
                                     2.0,
                                     0.5,
                                     0.25,
                                     1.0 / 3,
                                     1.0 / 12,
                                     1.0 / 360,
                                     qkr::width_factor,
                                     qkr::width_offset,
                                     qkr::lift_constant,
                                     qkr::lift_factor,
                                     qkr::lift_offset,
                                     qkr::left_constant,
                                     qkr::left_factor,
                                     qkr::left_offset,
                                     qkr::upper_squeeze,
                                     qkr::squeeze_width,
                                     qkr::sse2::ln_floor<double>};
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int32_t table_size = 32, products = 16;

// Doubles all, and in stream files too. Both regimes keep their mean, so that a small and a large one can
// alternate.
struct Hat {
  double mean, mode, inverse_mode, inverse_cube, ln_ratio;  // ln_ratio: ln(mode / mean)
  double p1, p2, p3, p4, c, inverse_c, inverse_p1, xm, xl, xr, left, right, inverse_left, inverse_right;
  double below[products],
      above[products];  // masses of mode - 1, ... and of mode + 1, ..., that of the mode being 1
};
struct Setup {
  Hat hat;
  double small_mean, cumulative[table_size];
};
static_assert(sizeof(Setup) == 672, "in stream files too");
// Where masses that products serve have long vanished; it bounds the recurrence, also for a damaged set-up.
constexpr double farthest = 1024;
constexpr uint32_t setup_chunk = 3;

// P(0), P(1), ...
void masses(double mean, int32_t size, double *mass) {
  double running = exp(-mean);
  for (int32_t i = 0; i < size; ++i) {
    mass[i] = running;
    running *= mean / (i + 1.0);
  }
}

int32_t small_mean(StreamState *stream, int32_t n, int32_t *out, Setup &s, double mean) {
  if (mean != s.small_mean || mean == 0.0) {
    s.small_mean = mean;
    masses(mean, table_size, s.cumulative);
    cumulate(table_size, s.cumulative);
  }
  return by_table<table_size>(stream, n, out, s.cumulative, [&](double u) {
    return beyond_table(s.cumulative, table_size, u, [=](double k) { return mean / k; });
  });
}

double tail_rate(double a) { return a * (1.0 + 0.5 * a); }

void set_up(Hat &s, double mean) {
  s.mean = mean;
  s.mode = std::trunc(mean);
  s.inverse_mode = 1.0 / s.mode;
  s.inverse_cube = s.inverse_mode * s.inverse_mode * s.inverse_mode;
  s.ln_ratio = ln(s.mode / mean);
  s.p1 = std::trunc(width_factor * square_root(mean) - width_offset) + 0.5;
  s.c = lift_constant + lift_factor / (lift_offset + mean);
  const double left_c = left_constant + left_factor / (left_offset + mean);
  s.xm = s.mode + 0.5;
  s.xl = s.xm - s.p1;
  s.xr = s.xm + s.p1;
  s.left = tail_rate((mean - s.xl) / mean);
  s.right = tail_rate((s.xr - mean) / s.xr);
  s.inverse_left = 1.0 / s.left;
  s.inverse_right = 1.0 / s.right;
  s.inverse_c = 1.0 / s.c;
  s.inverse_p1 = 1.0 / s.p1;
  s.p2 = s.p1 * (1.0 + 2.0 * s.c);
  s.p3 = s.p2 + left_c / s.left;
  s.p4 = s.p3 + s.c / s.right;
  double up = 1.0, down = 1.0;
  for (int32_t k = 0; k < products; ++k) {
    s.above[k] = up *= mean / (s.mode + 1.0 + k);
    s.below[k] = down *= (s.mode - k) / mean;
  }
}

// The mass of y, that of the mode being 1: read, or beyond the products by the recurrence, which ends where
// the mass is below v.
double relative_mass(const Hat &s, double y, double v) {
  const double distance = std::abs(y - s.mode);
  if (distance < 1.0) return 1.0;
  if (!(distance <= farthest)) return 0.0;
  const bool above = y > s.mode;
  const double *const table = above ? s.above : s.below;
  if (distance <= products) return table[static_cast<int32_t>(distance) - 1];
  double mass = table[products - 1];
  for (double t = products; t < distance && mass >= v; t += 1.0)
    mass *= above ? s.mean / (s.mode + t + 1.0) : (s.mode - t) / s.mean;
  return mass;
}

void test(const Hat &s, Waiting &waiting) {
  Logarithms squeezed, undecided;
  for (int32_t j = 0; j < waiting.count; ++j) {
    if (s.mode >= squeeze_from && waiting.y[j] > squeeze_above) squeezed.add(j, waiting.v[j]);
    else waiting.accepted[j] = waiting.v[j] <= relative_mass(s, waiting.y[j], waiting.v[j]);
  }
  squeezed.take();
  double ln_v[hat_candidates];
  for (int32_t i = 0; i < squeezed.count; ++i) {
    const int32_t j = squeezed.of[i];
    const double y = waiting.y[j], e = (s.mean - y) / y;
    const double upper = upper_squeeze - s.mean + y + (y + 0.5) * e * (1.0 + (e / 3.0 - 0.5) * e);
    const double margin = 0.25 * (e * e) * (e * e) * (y + 0.5) / (e < 0.0 ? 1.0 + e : 1.0);
    waiting.accepted[j] = squeezed.value[i] < upper - squeeze_width - margin;
    if (!waiting.accepted[j] && !(squeezed.value[i] > upper)) {
      ln_v[undecided.count] = squeezed.value[i];
      undecided.add(j, s.mean / y);
    }
  }
  undecided.take();
  for (int32_t i = 0; i < undecided.count; ++i) {
    const double y = waiting.y[undecided.of[i]], inverse = 1.0 / y;
    const double ln_mass = (y + 0.5) * undecided.value[i] + y - s.mode + (s.mode + 0.5) * s.ln_ratio +
                           (s.inverse_mode - inverse) / 12.0 +
                           (inverse * inverse * inverse - s.inverse_cube) / 360.0;
    waiting.accepted[undecided.of[i]] = ln_v[i] <= ln_mass;
  }
}

int32_t by_ptpe(StreamState *stream, int32_t n, int32_t *out, double mean) {
  Setup *setup;
  const int32_t status = find_or_add_chunk(stream, setup_chunk, Setup{}, &setup);
  if (status < 0) return status;
  if (mean < hat_from) return small_mean(stream, n, out, *setup, mean);
  Hat &s = setup->hat;
  if (mean != s.mean) set_up(s, mean);
  return by_hat<float>(
      stream, n, out, s, 0x1p60, [&](Waiting &waiting) { test(s, waiting); }, [&] { set_up(s, mean); });
}

// Below normals_from: a table that holds all that single-precision uniform numbers can tell apart.
int32_t by_long_table(StreamState *stream, int32_t n, int32_t *out, double mean) {
  constexpr int32_t size = 256;
  double cumulative[size];
  masses(mean, size, cumulative);
  cumulate(size, cumulative);
  return by_table<size, float>(stream, n, out, cumulative, [&](double u) {
    return beyond_table(cumulative, size, u, [=](double k) { return mean / k; });
  });
}

// The whole part of the continuous quantile that belongs to a normal number g (M. B. Giles, ACM
// Transactions on Mathematical Software 42 (2016), Algorithm 955):
//   mean + g sqrt(mean) + 1/3 + g^2 / 6 - (g^3 + 2 g) / (72 sqrt(mean)) + (3 g^4 + 7 g^2 - 16) / (810 mean).
// A corrected mean and deviation take up what belongs to g^0 and g, with a further term of either series.
int32_t by_normals(StreamState *stream, int32_t n, int32_t *out, double mean) {
  if (mean < normals_from) return by_long_table(stream, n, out, mean);
  constexpr double of_mean[4] = {-0.6666957198, -0.01941020862, -0.001288719308, 0.001645153709};
  constexpr double of_variance[4] = {-0.05580667628, -0.000975814817, -0.005534854444, 0.00519830812};
  const double t = 1.0 / mean;
  const auto series = [=](const double *c) { return ((c[3] * t + c[2]) * t + c[1]) * t + c[0]; };
  const double lowest = mean + series(of_mean) + 1.0, deviation = square_root(mean + series(of_variance));
  const double square = 1.0 / 6 + 7.0 / 810 * t, cube = -1.0 / 72 / square_root(mean), fourth = t / 270;
  float normal[longest_block];
  int32_t status = VXS_STATUS_OK, m;
  for (ptrdiff_t done = 0; done < n && status >= 0; done += m) {
    m = n - done < longest_block ? static_cast<int32_t>(n - done) : longest_block;
    status = _vxssRngGaussian(1, stream, m, normal, 0.0f, 1.0f);
    if (status < 0) break;
    for (int32_t i = 0; i < m; ++i) {
      const double g = normal[i], x = lowest + g * (deviation + g * (square + g * (cube + g * fourth)));
      out[done + i] = whole(x > 0.0 ? x : 0.0);
    }
  }
  return status;
}

int32_t poisson(int32_t method, StreamState *stream, int32_t n, int32_t *out, double mean) {
  constexpr double all_above = 0x1p31 + 0x1p23;  // 181 deviations
  if (method != 0 && method != 1) return VXS_STATUS_BAD_METHOD;
  if (!(mean >= 0.0)) return VXS_STATUS_BAD_ARGUMENT;
  if (mean > all_above) return fill_with_largest(n, out);
  return (method ? by_normals : by_ptpe)(stream, n, out, mean);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION(_vxsiRngPoisson, int32_t, (double lambda), (lambda)) {
  using namespace qkr::QKR_SIMD_LEVEL;
  return with_finite_logarithms<double, ActsOn::singularities>(
      [=] { return poisson(method, stream, n, out, lambda); });
}
