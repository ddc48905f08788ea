// Reduction of an argument modulo pi/2, for any double, to a sum of two doubles (M. H. Payne and R. N. Hanek,
// ACM SIGNUM Newsletter 18 (1983) 19, in floating-point chunks) from 2^30 on, by quarter_turns.h below. The
// unit is pi/4: x = (2 n + f) pi/4, f in [-1, 1].
#include "simd/vectors.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/circular/cores.h"
#include "vecmath/real/circular/quarter_turns.h"
#include "vecmath/tables/tables.h"

using namespace qkr;
using sse2::bits, sse2::real;

namespace {

using Sum = sse2::GatheredSum<double>;

double clear_low_bits(double x, int count) { return real(bits(x) & ~(uint64_t)0 << count); }

// The fraction f of x * 4/pi for x >= 2^30, and n in *count. Of the product only what lies below whole turns
// is formed: chunk k of 4/pi reaches from 2^(24 - 25 k) down, and those before chunk i only give multiples
// of 8.
Sum fraction_of_quarters(double x, int32_t *count) {
  const int exponent = (int)(bits(x) >> 52) - 0x41C;  // x < 2^(30 + exponent)
  const double *chunk = circular::four_over_pi_chunks + exponent / 25;
  const double scaled = x * 0x1p-200;
  const double x_hi = clear_low_bits(scaled, 27), x_lo = scaled - x_hi;
  constexpr int products = 8;
  double a[products], b[products];
  const auto below_turns = [](double v) { return v - ((v + 0x1.8p55) - 0x1.8p55); };
  for (int k = 0; k < products; ++k) {  // all exact
    a[k] = below_turns(x_hi * chunk[k + 1]);
    b[k] = below_turns(x_lo * chunk[k]);
  }
  const double head = (a[0] + b[0]) + (a[1] + b[1]);
  const double even = (head + (a[2] + b[2]) + 0x1.8p53) - 0x1.8p53;  // the nearest multiple of 2
  *count = (int32_t)even / 2;
  Sum f = {head - even, 0};
  for (int k = 2; k < products; ++k) f.add(a[k]), f.add(b[k]);
  return f;
}

// f pi/4, as precise as f.
Sum times_quarter_pi(Sum f) {
  constexpr double pi_hi = 0x1.921fb4p-1, pi_lo = 0x1.4442d18469899p-25;
  const double hi = f.hi + f.lo, lo = (f.hi - hi) + f.lo;
  const double head = clear_low_bits(hi, 29), tail = hi - head;
  return {head * pi_hi, tail * pi_hi + (hi * pi_lo + lo * (pi_hi + pi_lo))};
}

}  // namespace

extern "C" int32_t _vxmreduce_pio2d(double x, double *out) {
  const double magnitude = __builtin_fabs(x), sign = __builtin_copysign(1.0, x);
  if (!__builtin_isless(magnitude, infinity<double>)) {
    out[0] = out[1] = x - x;
    return 0;
  }
  if (magnitude < sse2::quarter_turns_limit) {
    const auto turns = sse2::quarter_turns(x);
    out[0] = turns.hi, out[1] = turns.lo;
    return turns.count & 3;
  }
  int32_t n;
  const Sum rest = times_quarter_pi(fraction_of_quarters(magnitude, &n));
  const double hi = sign * rest.hi, lo = sign * rest.lo;
  out[0] = hi + lo;
  out[1] = (hi - out[0]) + lo;
  return (n * (int32_t)sign) & 3;
}
