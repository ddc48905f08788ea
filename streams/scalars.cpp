// Functions of one number: logarithm, floor, square root. Whole arrays go through vector math.
#include <qkr/streams_generators.h>

#include "simd/vectors.h"
#include "streams/tables/tables.h"
#include "vecmath/real/root_by_table.h"

using namespace qkr::stream_scalars;
using qkr::sse2::bits, qkr::sse2::real;

namespace {

constexpr int mantissa_bits = 52, exponent_bias = 1023;
constexpr uint64_t mantissa_mask = (1ull << mantissa_bits) - 1;
constexpr uint64_t one = 0x3FF0000000000000, infinity = 0x7FF0000000000000;

int exponent_of(double x) { return (int)(bits(x) >> mantissa_bits & 0x7FF) - exponent_bias; }
// From 1 to below 2.
double mantissa_of(double x) { return real((bits(x) & mantissa_mask) | one); }

// ln(1 + z) - z by its series to the power `degree`, whose first neglected term is below 2^-56 of z.
template <int degree>
double ln1p_less_z(double z) {
  double sum = 0;
  for (int k = degree; k >= 2; --k) sum = sum * z + (k % 2 ? 1.0 : -1.0) / k;
  return sum * z * z;
}

// x = 2^n m, and with r of the row that 8 bits of m choose: ln x = n ln 2 - ln r + ln(m r). m is split so
// that its head times r is exact; n ln 2 - ln r has an exact head, a multiple of 2^-42.
double ln_by_table(double x, int n) {
  constexpr double ln2_head = 0x1.62e42fefa38p-1, ln2_tail = 0x1.ef35793c7673p-45;
  const uint64_t pattern = bits(x);
  const uint32_t k = pattern >> (mantissa_bits - 8) & 0xFF;
  const double r = reciprocals[k], m = mantissa_of(x);
  const double m_head = real(bits(m) & ~0xFFFFFFFFul);
  const double z = (m_head * r - 1.0) + (m - m_head) * r;
  const double head = n * ln2_head + minus_logarithms[k][0];
  const double tail = n * ln2_tail + minus_logarithms[k][1];
  return head + (z + (ln1p_less_z<7>(z) + tail));
}

}  // namespace

extern "C" {

double __vxsdLn(double x) {
  const uint64_t pattern = bits(x);
  if (pattern - 1 >= infinity - 1) {  // not a positive finite number
    if (x == 0) return -1.0 / (x * x);
    if (x != x || pattern == infinity) return x + x;
    return (x - x) * real(infinity);
  }
  const double u = x - 1.0;
  if (u > -0x1p-8 && u < 0x1p-8) return u + ln1p_less_z<7>(u);
  if (u > -0x1p-4 && u < 0x1p-4) return u + ln1p_less_z<14>(u);
  if (pattern <= mantissa_mask) return ln_by_table(x * 0x1p55, exponent_of(x * 0x1p55) - 55);
  return ln_by_table(x, exponent_of(x));
}

float __vxssLn(float x) { return (float)__vxsdLn(x); }

double __vxsdFloor(double x) {
  const int n = exponent_of(x);
  if (n >= mantissa_bits) return x;  // whole, infinite or NaN
  const uint64_t fraction = n < 0 ? ~0ull >> 1 : mantissa_mask >> n;
  const double truncated = real(bits(x) & ~fraction);
  return truncated > x ? truncated - 1.0 : truncated;
}

double __vxsdSqrt(double x) { return qkr::root_by_table<double>(x); }

}  // extern "C"
