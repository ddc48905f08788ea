// The power of one element, e^(w ln z). The error of w ln z is one of the result's argument and relative to
// its modulus, so the logarithm stays in two doubles to the end.
#include "vecmath/complex/formulas.h"
#include "vecmath/complex/scalar/internal.h"
#include "vecmath/extended/large_reduction.h"

using namespace qkr;
using DoubleDouble = sse2::DoubleDouble<double>;

namespace {

struct Logarithm {
  DoubleDouble re, im;
};

// Where the squares of z's parts would leave the range of doubles, of z over a power of two.
DoubleDouble logarithm_of_modulus(double x, double y) {
  const double larger = sse2::by_magnitude(x, y).larger;
  if (larger > 0x1p-400 && larger < 0x1p400) return sse2::logarithm_of_modulus(x, y);
  const int k = sse2::normalized(larger).exponent;
  const long double scale = sse2::power_of_two(-k);
  const auto rest = sse2::logarithm_of_modulus((double)(x * scale), (double)(y * scale));
  return rest + sse2::fast_sum(k * sse2::ln2_hi, k * sse2::ln2_lo);
}

// Where squares would leave the range of doubles, of z over a power of two. Two doubles cannot hold the terms
// of very slender angles; to the left, or at the axis of y, they are nothing beside a half or quarter turn.
DoubleDouble angle(double x, double y) {
  constexpr double far_apart = 0x1p400;
  const auto in_range = [](double t) {
    const double size = __builtin_fabs(t);
    return size >= 1 / far_apart && size <= far_apart;
  };
  if (in_range(x) && in_range(y)) return sse2::angle(y, x);
  const long double scale = sse2::power_of_two(-sse2::normalized(sse2::by_magnitude(x, y).larger).exponent);
  const double a = (double)(x * scale), b = (double)(y * scale);
  if (in_range(a) && in_range(b)) return sse2::angle(b, a);
  const double turned = __builtin_fabs(b) > __builtin_fabs(a) ? 0.5 : is_negative(x) ? 1 : 0;
  if (turned == 0) return sse2::split(_vxmatan2l_scalar(y, x));
  return {__builtin_copysign(turned * sse2::pi_hi, y), __builtin_copysign(turned * sse2::pi_lo, y)};
}

sse2::Circular<double> circular_pair_of(DoubleDouble q) {
  if (__builtin_fabs(q.hi) < sse2::circular_limit) return sse2::circular_pair(q);
  sse2::Quadrant reduced = sse2::reduce_large(q.hi);
  reduced.rest = reduced.rest + DoubleDouble{q.lo, 0};
  return sse2::circular_pair_of(reduced);
}

// Of finite z and w, neither of them zero.
vxm64fc ordinary_power(double x, double y, double u, double v) {
  constexpr double exponential_limit = 11300, accurate_angle = 0x1p50, smallest_angle = 0x1p-900;
  const DoubleDouble re = logarithm_of_modulus(x, y), im = angle(x, y);
  const auto p = times(re, u) - times(im, v), q = times(im, u) + times(re, v);
  // Neither, if it is a NaN.
  if (__builtin_fabs(p.hi) < exponential_limit && __builtin_fabs(q.hi) < accurate_angle) {
    const auto e = sse2::exponential(p);
    const int k = (int32_t)e.n >> 6;
    const auto [sine, cosine] = circular_pair_of(q);
    const long double real = sse2::times_power_of_two(join(e.mantissa * cosine), k);
    if (__builtin_fabs(q.hi) >= smallest_angle)
      return rounded(real, sse2::times_power_of_two(join(e.mantissa * sine), k));
    // Doubles may not hold it, nor what it comes of; it is its own sine.
    const long double theta = _vxmatan2l_scalar(y, x), turn = v == 0 ? u * theta : u * theta + v * join(re);
    return rounded(real, turn == 0 && v != 0 ? q.hi : sse2::times_power_of_two(join(e.mantissa) * turn, k));
  }
  const long double L = (long double)re.hi + re.lo, theta = (long double)im.hi + im.lo;
  return _vxmcexp_scalar((double)(u * L - v * theta), (double)(u * theta + v * L));
}

vxm64fc power_of_zero(double u, double v) {
  if (u > 0) return {0, 0};
  if (u < 0 && v == 0) return {1 / at_run_time(0.0), 0};
  const double nan = u + v != u + v ? u + v : (double)sse2::invalid();
  return {nan, nan};
}

// A factor that is zero does not count beside an infinity, but with its sign.
double product(double a, double b) {
  return a == 0 || b == 0 ? __builtin_copysign(0, a) * __builtin_copysign(1, b) : a * b;
}

vxm64fc power(double x, double y, double u, double v) {
  if (u == 0 && v == 0) return {1, 0};
  if (x == 0 && y == 0) return power_of_zero(u, v);
  if (is_finite(x) && is_finite(y) && is_finite(u) && is_finite(v)) return ordinary_power(x, y, u, v);
  const vxm64fc log = _vxmclog_scalar(x, y);
  const double turned = product(u, log.im);
  return _vxmcexp_scalar(product(u, log.re) - product(v, log.im),
                         v == 0 ? turned : turned + product(v, log.re));
}

}  // namespace

extern "C" vxm64fc _vxmcpow_scalar(double x, double y, double u, double v) {
  return tested(power(x, y, u, v));
}
