// Binomial numbers: inversion of a table for small means, and for large ones algorithm BTPE of
// V. Kachitvichyanukul and B. W. Schmeiser, Communications of the ACM 31 (1988) 216.
#include "distributions/chunks.h"
#include "distributions/counts/hat.h"
#include "distributions/counts/stirling.h"
#include "distributions/counts/table_search.h"

namespace qkr {
constexpr double table_below = 30.0;     // the mean from which rejection serves
constexpr double products_up_to = 20.0;  // distance from the mode within which products are the faster test
constexpr double width_factor = 2.195, width_offset = 4.6;                       // of the triangle
constexpr double lift_constant = 0.134, lift_factor = 20.5, lift_offset = 15.3;  // of the parallelogram
}  // namespace qkr

extern "C" {
extern const double _vxsiBinomialTab[19];
#if QKR_BASELINE
const double _vxsiBinomialTab[19] = {1.0 / 12,
                                     1.0 / 360,
                                     1.0 / 1260,
                                     1.0 / 1680,
                                     1.0 / 1188,
                                     0.5,
                                     1.0,
                                     0.0,
                                     qkr::table_below,
                                     qkr::products_up_to,
                                     qkr::width_factor,
                                     qkr::width_offset,
                                     qkr::lift_constant,
                                     qkr::lift_factor,
                                     qkr::lift_offset,
                                     1.0 / 3,
                                     0.625,
                                     1.0 / 6,
                                     qkr::sse2::ln_floor<double>};
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int32_t table_size = 64, products = 32;

// Doubles all, and in stream files too.
struct SmallMean {
  double ntrial, p;
  double g, r;  // (ntrial + 1) r and p / q: the mass of k is that of k - 1 times g / k - r
  double cumulative[table_size];
};
struct LargeMean {
  double ntrial, p;
  double npq, ffm, mode;
  double p1, p2, p3, p4, xm, xl, xr, left, right, inverse_left, inverse_right, c, inverse_c, inverse_p1;
  double inverse_npq, r;
  double below[products],
      above[products];  // masses of mode - 1, ... and of mode + 1, ..., that of the mode being 1
};
union Setup {
  SmallMean small;
  LargeMean large;
};
static_assert(sizeof(Setup) == 680, "in stream files too");
// Where masses that products serve have long vanished; it bounds the recurrence, also for a damaged set-up.
constexpr double farthest = 1024;
constexpr uint32_t setup_chunk = 5;

// p is at most a half from here on, unless it is called `given`; q = 1 - p.
void set_up(SmallMean &s, int32_t ntrial, double given, double p, double q) {
  s.ntrial = ntrial;
  s.p = given;
  s.r = p / q;
  s.g = (double(ntrial) + 1.0) * s.r;
  double mass = power(q, double(ntrial));
  for (int32_t i = 0; i < table_size; ++i) {
    s.cumulative[i] = mass;
    mass *= s.g / (i + 1.0) - s.r;
  }
  cumulate(table_size, s.cumulative);
}

double tail_rate(double a) { return a * (1.0 + 0.5 * a); }

void set_up(LargeMean &s, int32_t ntrial, double given, double p, double q) {
  const double np = ntrial * p, g = (double(ntrial) + 1.0) * (p / q);
  s.ntrial = ntrial;
  s.p = given;
  s.npq = np * q;
  s.ffm = np + p;
  s.mode = std::trunc(s.ffm);
  s.p1 = std::trunc(width_factor * square_root(s.npq) - width_offset * q) + 0.5;
  s.xm = s.mode + 0.5;
  s.xl = s.xm - s.p1;
  s.xr = s.xm + s.p1;
  s.c = lift_constant + lift_factor / (lift_offset + s.mode);
  s.left = tail_rate((s.ffm - s.xl) / (s.ffm - s.xl * p));
  s.right = tail_rate((s.xr - s.ffm) / (s.xr * q));
  s.inverse_left = 1.0 / s.left;
  s.inverse_right = 1.0 / s.right;
  s.inverse_c = 1.0 / s.c;
  s.inverse_p1 = 1.0 / s.p1;
  s.inverse_npq = 1.0 / s.npq;
  s.r = p / q;
  s.p2 = s.p1 * (1.0 + 2.0 * s.c);
  s.p3 = s.p2 + s.c * s.inverse_left;
  s.p4 = s.p3 + s.c * s.inverse_right;
  double up = 1.0, down = 1.0;
  for (int32_t k = 0; k < products; ++k) {
    s.above[k] = up *= g / (s.mode + 1.0 + k) - s.r;
    s.below[k] = down /= g / (s.mode - k) - s.r;
  }
}

// The mass of y, that of the mode being 1: read, or beyond the products by the recurrence, which ends where
// the mass is below v.
double relative_mass(const LargeMean &s, double y, double v) {
  const double g = (s.ntrial + 1.0) * s.r, distance = std::abs(y - s.mode);
  if (distance < 1.0) return 1.0;
  if (!(distance <= farthest)) return 0.0;
  const bool above = y > s.mode;
  const double *const table = above ? s.above : s.below;
  if (distance <= products) return table[static_cast<int32_t>(distance) - 1];
  double mass = table[products - 1];
  for (double t = products; t < distance && mass >= v; t += 1.0)
    mass = above ? mass * (g / (s.mode + t + 1.0) - s.r) : mass / (g / (s.mode - t) - s.r);
  return mass;
}

// The logarithm of that mass by Stirling's series. A printed form of the method adds all four terms of the
// series; those of y have the other sign.
double ln_mass(const LargeMean &s, double y) {
  const double x = y + 1.0, f = s.mode + 1.0, z = s.ntrial + 1.0 - s.mode, w = s.ntrial - y + 1.0;
  double logarithms[3] = {f / x, z / w, w * s.r / x};
  _vxmdLn_HA(3, logarithms, logarithms);
  return (s.mode + 0.5) * logarithms[0] + (s.ntrial - s.mode + 0.5) * logarithms[1] +
         (y - s.mode) * logarithms[2] + stirling_rest(f) + stirling_rest(z) - stirling_rest(x) -
         stirling_rest(w);
}

void test(const LargeMean &s, Waiting &waiting) {
  Logarithms far;
  for (int32_t j = 0; j < waiting.count; ++j) {
    const double k = std::abs(waiting.y[j] - s.mode);
    if (!(k > products_up_to && k < 0.5 * s.npq - 1.0))
      waiting.accepted[j] = waiting.v[j] <= relative_mass(s, waiting.y[j], waiting.v[j]);
    else far.add(j, waiting.v[j]);
  }
  far.take();
  for (int32_t i = 0; i < far.count; ++i) {
    const double y = waiting.y[far.of[i]], ln_v = far.value[i], k = std::abs(y - s.mode);
    const double margin = k * s.inverse_npq * (((k / 3.0 + 0.625) * k + 1.0 / 6.0) * s.inverse_npq + 0.5);
    const double middle = -0.5 * k * k * s.inverse_npq;
    bool accepted = ln_v < middle - margin;
    if (!accepted && !(ln_v > middle + margin)) accepted = ln_v <= ln_mass(s, y);
    waiting.accepted[far.of[i]] = accepted;
  }
}

int32_t binomial(StreamState *stream, int32_t n, int32_t *out, int32_t ntrial, double given) {
  if (ntrial < 0 || !(given >= 0.0 && given <= 1.0)) return VXS_STATUS_BAD_ARGUMENT;
  const bool flipped = given >= 0.5;
  const double p = flipped ? 1.0 - given : given, q = flipped ? given : 1.0 - given;
  Setup *setup;
  int32_t status = find_or_add_chunk(stream, setup_chunk, Setup{}, &setup);
  if (status < 0) return status;
  // A fresh key is 0, 0, which is a valid call's too.
  const bool known = setup->small.ntrial == ntrial && setup->small.p == given && ntrial > 0;
  if (ntrial * p < table_below) {
    SmallMean &s = setup->small;
    if (!known) set_up(s, ntrial, given, p, q);
    status = by_table<table_size>(stream, n, out, s.cumulative, [&](double u) {
      const int32_t k = beyond_table(s.cumulative, table_size, u, [&](double i) { return s.g / i - s.r; });
      return k < ntrial ? k : ntrial;
    });
  } else {
    LargeMean &s = setup->large;
    const auto make = [&] { set_up(s, ntrial, given, p, q); };
    if (!known) make();
    status = by_hat<double>(
        stream, n, out, s, ntrial, [&](Waiting &waiting) { test(s, waiting); }, make);
  }
  if (status >= 0 && flipped)
    for (ptrdiff_t i = 0; i < n; ++i) out[i] = ntrial - out[i];
  return status;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION(_vxsiRngBinomial, int32_t, (int32_t ntrial, double p), (ntrial, p)) {
  using namespace qkr::QKR_SIMD_LEVEL;
  return with_finite_logarithms<double, ActsOn::singularities>(
      [=] { return binomial(stream, n, out, ntrial, p); });
}
