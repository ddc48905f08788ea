// Hypergeometric numbers: the marked ones in a sample. Inversion of a table, and for large modes algorithm
// H2PE of V. Kachitvichyanukul and B. W. Schmeiser, Journal of Statistical Computation and Simulation 22
// (1985) 127.
#include "distributions/chunks.h"
#include "distributions/counts/mountain.h"
#include "distributions/counts/stirling.h"
#include "distributions/counts/table_search.h"

namespace qkr {
constexpr double rejection_from = 40.0;  // the mode
constexpr double upper_squeeze = 0.0034,
                 lower_squeeze = 0.0078;  // errors of the series that the squeeze takes
constexpr double plateau_deviations = 1.5;
}  // namespace qkr

extern "C" {
extern const double _vxsdH2PEConstTab[8];
#if QKR_BASELINE
const double _vxsdH2PEConstTab[8] = {
    qkr::upper_squeeze,      qkr::lower_squeeze,         0.25, 1.0 / 3, 0.5, 1.0,
    qkr::plateau_deviations, qkr::sse2::ln_floor<double>};
#endif
}

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int32_t table_size = 64, products = 32;

// Doubles all, and in stream files too. `table` holds cumulative probabilities, or for large modes the
// masses of mode - 1, ... and of mode + 1, ..., that of the mode being 1.
struct Setup {
  double lot, sample, marked;
  Mountain mountain;
  double ln_mode;  // what ln_products() gives for the mode
  double unused[5];
  double table[table_size];
};
static_assert(sizeof(Setup) == 648, "in stream files too");
// Where masses that products serve have long vanished; it bounds the recurrence, also for a damaged set-up.
constexpr double farthest = 1024;
constexpr uint32_t setup_chunk = 6;

// The reduced problem: neither the sample nor the marked are more than half of the lot.
struct Lot {
  double size, sample, marked;
  double rest() const { return size - sample - marked; }
  double highest() const { return sample < marked ? sample : marked; }
  // mass(k + 1) / mass(k)
  double ratio(double k) const { return (sample - k) * (marked - k) / ((rest() + k + 1.0) * (k + 1.0)); }
};

// ln(a! b! / (c! d!)), where a + b = c + d and c - a is `step`: with the logarithms of ratios, small as
// they are, instead of those of four large numbers.
double ln_quotient_of_factorials(double a, double b, double c, double d) {
  if (a < 16.0 || b < 16.0 || c < 16.0 || d < 16.0)
    return ln_factorial(a) + ln_factorial(b) - ln_factorial(c) - ln_factorial(d);
  double ratios[3] = {a / c, b / d, d / c};
  _vxmdLn_HA(3, ratios, ratios);
  const auto rest = [](double x) { return stirling_rest(x); };
  return (a + 0.5) * ratios[0] + (b + 0.5) * ratios[1] + (c - a) * ratios[2] + (rest(a) - rest(c)) +
         (rest(b) - rest(d));
}

void set_up_table(Setup &s, const Lot &lot) {
  double mass =
      exp(ln_quotient_of_factorials(lot.size - lot.marked, lot.size - lot.sample, lot.size, lot.rest()));
  for (int32_t k = 0; k < table_size; ++k) {
    s.table[k] = mass;
    mass = k < lot.highest() ? mass * lot.ratio(k) : 0.0;
  }
  cumulate(table_size, s.table);
}

// The logarithm of 1 / (y! (marked - y)! (sample - y)! (rest + y)!).
double ln_products(const Lot &lot, double y) {
  return -(ln_factorial(y) + ln_factorial(lot.marked - y) + ln_factorial(lot.sample - y) +
           ln_factorial(lot.rest() + y));
}

void set_up_products(double *table, const Lot &lot, double mode) {
  double up = 1.0, down = 1.0;
  for (int32_t k = 0; k < products; ++k) {
    table[products + k] = up *= lot.ratio(mode + k);
    table[k] = down /= lot.ratio(mode - 1.0 - k);
  }
}

void set_up_mountain(Setup &s, const Lot &lot, double mode) {
  const double variance = (lot.size - lot.sample) * lot.sample * (lot.marked / lot.size) *
                          ((lot.size - lot.marked) / lot.size) / (lot.size - 1.0);
  set_up_products(s.table, lot, mode);
  s.ln_mode = ln_products(lot, mode);
  s.mountain = mountain_over(
      mode, std::trunc(plateau_deviations * square_root(variance)), 0.0, lot.highest(),
      [&](double y) { return exp(ln_products(lot, y) - s.ln_mode); }, [&](double y) { return lot.ratio(y); });
}

double relative_mass(const Setup &s, const Lot &lot, double y, double v) {
  const double mode = s.mountain.mode, distance = std::abs(y - mode);
  if (distance < 1.0) return 1.0;
  if (!(distance <= farthest)) return 0.0;
  const bool above = y > mode;
  if (distance <= products) return s.table[static_cast<int32_t>(distance) - 1 + (above ? products : 0)];
  double mass = s.table[above ? 2 * products - 1 : products - 1];
  for (double t = products; t < distance && mass >= v; t += 1.0)
    mass = above ? mass * lot.ratio(mode + t) : mass / lot.ratio(mode - t - 1.0);
  return mass;
}

// x (d - d^2 / 2 + d^3 / 3), which is x ln(1 + d) with an error of at most `missing`.
struct Series {
  double value, missing;
  Series(double x, double d)
      : value(x * d * (1.0 + d * (d / 3.0 - 0.5))),
        missing(x * (d * d) * (d * d) / (d < 0.0 ? 1.0 + d : 1.0)) {}
};

// Bounds of the logarithm of the mass of y, that of the mode being 0.
struct Bounds {
  double lower, upper;
  Bounds(const Lot &lot, double mode, double y) {
    const double distance = y - mode, y1 = y + 1.0, yn = lot.marked - y + 1.0, yk = lot.sample - y + 1.0;
    const double nk = lot.rest() + y1, xm = mode + 0.5;
    const Series up(xm, -distance / y1), marked(lot.marked - mode + 0.5, distance / yn);
    const Series sample(lot.sample - mode + 0.5, distance / yk), rest(lot.rest() + xm, -distance / nk);
    const double g = yn * yk / (y1 * nk) - 1.0, gu = g * (1.0 + g * (g / 3.0 - 0.5));
    const double gl = gu - 0.25 * (g * g) * (g * g) / (g < 0.0 ? 1.0 + g : 1.0);
    upper = up.value + marked.value + sample.value + rest.value + y * gu - mode * gl + upper_squeeze;
    lower = upper - 0.25 * (up.missing + marked.missing + sample.missing + rest.missing) +
            (y + mode) * (gl - gu) - lower_squeeze;
  }
};

int32_t by_rejection_from_mountain(StreamState *stream, int32_t n, int32_t *out, Setup &s, const Lot &lot,
                                   double mode) {
  const auto accept = [&](int32_t m, const double *y, const double *v, int64_t *accepted) {
    double ln_v[mountain_candidates], upper[mountain_candidates];
    const double centre = s.mountain.mode;
    if (centre < 100.0) {
      for (int32_t i = 0; i < m; ++i) accepted[i] = v[i] <= relative_mass(s, lot, y[i], v[i]);
      return;
    }
    _vxmdLn_HA(m, v, ln_v);
    for (int32_t i = 0; i < m; ++i) {
      const Bounds bounds(lot, centre, y[i]);
      upper[i] = bounds.upper;
      accepted[i] = ln_v[i] < bounds.lower;
    }
    for (int32_t i = 0; i < m; ++i) {
      if (y[i] <= 200.0) accepted[i] = v[i] <= relative_mass(s, lot, y[i], v[i]);
      else if (!accepted[i] & !(ln_v[i] > upper[i]))
        accepted[i] = ln_v[i] <= ln_products(lot, y[i]) - s.ln_mode;
    }
  };
  return by_mountain(stream, n, out, s.mountain, 0.0, lot.highest(), accept,
                     [&] { set_up_mountain(s, lot, mode); });
}

int32_t reduced(StreamState *stream, int32_t n, int32_t *out, const Lot &lot, int32_t l, int32_t s_given,
                int32_t m_given) {
  if (lot.highest() == 0.0) {
    for (ptrdiff_t i = 0; i < n; ++i) out[i] = 0;
    return VXS_STATUS_OK;
  }
  Setup *setup;
  const int32_t status = find_or_add_chunk(stream, setup_chunk, Setup{}, &setup);
  if (status < 0) return status;
  Setup &s = *setup;
  const double mode = std::trunc((lot.sample + 1.0) * (lot.marked + 1.0) / (lot.size + 2.0));
  const bool known = s.lot == l && s.sample == s_given && s.marked == m_given, large = mode >= rejection_from;
  if (!known) {
    if (large) set_up_mountain(s, lot, mode);
    else set_up_table(s, lot);
    s.lot = l;
    s.sample = s_given;
    s.marked = m_given;
  }
  if (large) return by_rejection_from_mountain(stream, n, out, s, lot, mode);
  const int32_t highest = static_cast<int32_t>(lot.highest());
  return by_table<table_size>(stream, n, out, s.table, [&](double u) {
    const int32_t k = beyond_table(s.table, table_size, u, [&](double i) { return lot.ratio(i - 1.0); });
    return k < highest ? k : highest;
  });
}

int32_t hypergeometric(StreamState *stream, int32_t n, int32_t *out, int32_t l, int32_t s, int32_t m) {
  if (l < 0 || s < 0 || m < 0 || s > l || m > l) return VXS_STATUS_BAD_ARGUMENT;
  const bool sample_small = s <= l - s, marked_large = m > l - m;
  const int32_t sample = sample_small ? s : l - s, marked = marked_large ? l - m : m;
  const int32_t status = reduced(stream, n, out, {double(l), double(sample), double(marked)}, l, s, m);
  if (status < 0) return status;
  // What was counted in the smaller part, marked or not, gives the marked in the sample.
  const int32_t base = sample_small ? (marked_large ? s : 0) : (marked_large ? s - marked : m);
  if (sample_small == marked_large)
    for (ptrdiff_t i = 0; i < n; ++i) out[i] = base - out[i];
  else if (base)
    for (ptrdiff_t i = 0; i < n; ++i) out[i] += base;
  return status;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_DISTRIBUTION(_vxsiRngHypergeometric, int32_t, (int32_t l, int32_t s, int32_t m), (l, s, m)) {
  using namespace qkr::QKR_SIMD_LEVEL;
  return with_finite_logarithms<double, ActsOn::singularities>(
      [=] { return hypergeometric(stream, n, out, l, s, m); });
}
