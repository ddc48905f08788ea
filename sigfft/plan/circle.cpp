// Points of the unit circle. Integers bring each angle into the first octant, where it is a row of a table
// plus a small rest (the accurate tables of S. Gal and B. Bachelis, ACM Trans. Math. Software 17 (1991) 26).
// That gives 64 neighbouring points, and the first of each further 64, with about 73 bits; the others are
// products of the two, as the sine and cosine of a sum.
//
// A number x of more than 53 bits is a head of 26 bits and a rest: products of two heads are exact, those
// with a rest are 2^-26 smaller, so that their rounding errors lie 2^-79 below the result.
#include "sigfft/plan/circle.h"

#include "sigfft/tables/tables.h"
#include "simd/entry.h"
#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using sigfft::unit_circle;

template <class V>
struct HeadAndRest {
  V head, rest;
};

// x + low, where low is below the last bit of x; x is 0 or normal.
template <class V>
QKR_INLINE HeadAndRest<V> in_halves(V x, V low) {
  const V head = real((bits(x) + 0x4000000u) & ~(uint64_t)0x7FFFFFF);
  return {head, (x - head) + low};
}

template <class V>
struct Point {
  HeadAndRest<V> cosine, sine;
};

// Angles 2 pi a / whole for a from 0 to whole/8.
struct Octant {
  double whole, steps;        // steps of the table in the angle 1
  HeadAndRest<double> angle;  // of the rest 1, which is 1 / (1024 whole) of a turn

  QKR_INLINE explicit Octant(size_t whole_turn) : whole((double)whole_turn) {
    constexpr double step_high = 0x1.921fb54442d18p-8, step_low = 0x1.1a62633145c07p-62;  // 2 pi / 1024
    steps = sigfft::unit_circle_steps / whole;
    const double high = step_high / whole, product = high * whole;
    const double low = (((step_high - product) - product_error(high, whole, product)) + step_low) / whole;
    angle = in_halves(high, low);
  }

  // With the row j nearest to a and delta the angle that is left, |delta| < 0.0031:
  //   cos = cos_j - sin_j sin(delta) - cos_j (1 - cos(delta)), sin = sin_j + cos_j sin(delta) - sin_j (1 -
  //   cos(delta))
  // sin(delta) = delta - w, and 1 - cos(delta) = v starts with the square of delta's head, halved: exact.
  template <class V>
  QKR_INLINE Point<V> point(V a) const {
    constexpr double shifter = 0x1.8p52;
    const V shifted = a * steps + shifter, j = shifted - shifter;
    V cosine, cosine_rest, sine, sine_rest;
    look_up(unit_circle, bits(shifted) & 0xFFu, cosine, cosine_rest, sine, sine_rest);

    const V rest = a * (double)sigfft::unit_circle_steps - j * whole;  // an integer, exact
    const auto r = in_halves(rest, rest - rest);
    const V product = r.head * angle.head;
    const V correction = r.rest * (angle.head + angle.rest) + r.head * angle.rest;
    const V sum = product + correction;
    const auto delta = in_halves(sum, (product - sum) + correction);

    const V square = sum * sum;
    const V w = sum * (square * (1.0 / 6 - square * (1.0 / 120 - square * (1.0 / 5040))));
    const V v_low =
        delta.rest * (delta.head + 0.5 * delta.rest) - square * (square * (1.0 / 24 - square * (1.0 / 720)));
    const auto v = in_halves(0.5 * (delta.head * delta.head), v_low);
    const V sin_rest = delta.rest - w, sin_all = sum - w, v_all = v.head + v.rest;

    const V c1 = cosine - sine * delta.head, c2 = c1 - cosine * v.head;
    const V c_error = ((cosine - c1) - sine * delta.head) + ((c1 - c2) - cosine * v.head);
    const V c_low =
        cosine_rest - (sine * sin_rest + sine_rest * sin_all) - (cosine * v.rest + cosine_rest * v_all);
    const V s1 = sine + cosine * delta.head, s2 = s1 - sine * v.head;
    const V s_error = ((sine - s1) + cosine * delta.head) + ((s1 - s2) - sine * v.head);
    const V s_low =
        sine_rest + (cosine * sin_rest + cosine_rest * sin_all) - (sine * v.rest + sine_rest * v_all);
    return {in_halves(c2, c_error + c_low), in_halves(s2, s_error + s_low)};
  }
};

constexpr size_t together = 64;

// The points of the angles 0 to count - 1; count is at most 64.
struct FirstPoints {
  alignas(64) double cosine[together], cosine_rest[together], sine[together], sine_rest[together];

  QKR_INLINE FirstPoints(const Octant &octant, size_t count) {
    alignas(64) double angles[together];
    for (size_t i = 0; i < together; ++i) angles[i] = i < count ? (double)i : 0;  // inside the table
    for (size_t i = 0; i < count; i += sizeof(f64) / sizeof(double)) {
      f64 a;
      load(angles + i, a);
      const auto [c, s] = octant.point(a);
      store(cosine + i, c.head), store(cosine_rest + i, c.rest);
      store(sine + i, s.head), store(sine_rest + i, s.rest);
    }
  }
};

// Cosines and sines of `count` angles from `first` on.
struct Cosines {
  alignas(64) double cosine[together], sine[together];
};
QKR_NOINLINE void next_points(const Octant &octant, const FirstPoints &points, size_t first, size_t count,
                              Cosines &result) {
  const auto [c, s] = octant.point((double)first);
  const double c_all = c.head + c.rest, s_all = s.head + s.rest;
  for (size_t i = 0; i < count; i += sizeof(f64) / sizeof(double)) {
    f64 cosine, cosine_rest, sine, sine_rest;
    load(points.cosine + i, cosine), load(points.cosine_rest + i, cosine_rest);
    load(points.sine + i, sine), load(points.sine_rest + i, sine_rest);
    const f64 cc = cosine * c.head, ss = sine * s.head, difference = cc - ss;
    const f64 c_error = (cc - difference) - ss;
    const f64 c_low = (cosine * c.rest + cosine_rest * c_all) - (sine * s.rest + sine_rest * s_all);
    store(result.cosine + i, difference + (c_error + c_low));
    // The larger one comes first: `first` is 0, or at least the other angle.
    const f64 sc = cosine * s.head, cs = sine * c.head, sum = sc + cs;
    const f64 s_error = (sc - sum) + cs;
    const f64 s_low = (cosine * s.rest + cosine_rest * s_all) + (sine * c.rest + sine_rest * c_all);
    store(result.sine + i, sum + (s_error + s_low));
  }
}

// Calls use(first, count, points) for all angles from 0 to whole/8.
template <class Use>
QKR_INLINE void for_octant(size_t whole, Use use) {
  const size_t end = whole / 8 + 1;
  const Octant octant(whole);
  const FirstPoints first_points(octant, end < together ? end : together);
  Cosines points;
  for (size_t first = 0; first < end; first += together) {
    const size_t count = end - first < together ? end - first : together;
    next_points(octant, first_points, first, count, points);
    use(first, count, points);
  }
}

// To the places from `to` on, upward or downward.
template <int direction, class T>
QKR_INLINE void put_values(const double *values, size_t count, T *__restrict to) {
  for (size_t i = 0; i < count; ++i) to[direction * (ptrdiff_t)i] = (T)values[i];
}

template <class T>
QKR_INLINE void fill_quarter(size_t n, T *table) {
  for_octant(n, [=](size_t first, size_t count, const Cosines &points) {
    const auto put = [&](size_t number) QKR_LAMBDA {
      put_values<1>(points.sine, number, table + first);
      put_values<-1>(points.cosine, number, table + n / 4 - first);
    };
    if (count == together) put(together);  // known to the compiler, which then makes vectors of it
    else put(count);
  });
}

// The angle k/n of a turn is `quarter` quarters and, forward or backward, a / whole, where 4 a / whole is the
// distance in quarters: 4 k = quarter n + sign g a with whole = 4 n / g. So a quarter and a sign take every
// (4/g)th angle of the octant, in order.
template <class T>
QKR_INLINE void fill_pairs(size_t n, T *pairs) {
  const size_t g = n % 4 == 0 ? 4 : n % 2 == 0 ? 2 : 1, stride = 4 / g;
  for_octant(stride * n, [=](size_t first, size_t count, const Cosines &points) {
    for (size_t quarter = 0; quarter < 4; ++quarter)
      for (int sign = 1; sign >= -1; sign -= 2) {
        const auto numerator = [=](size_t a) { return (ptrdiff_t)(quarter * n) + sign * (ptrdiff_t)(g * a); };
        size_t i = sign < 0 && first == 0;  // the angle 0 is written once
        while (i < count && numerator(first + i) % 4 != 0) ++i;
        if (i >= count) continue;
        const ptrdiff_t k = numerator(first + i) / 4;
        const bool odd = quarter & 1, upper = quarter >= 2;
        const double *const re = odd ? points.sine : points.cosine;
        const double *const im = odd ? points.cosine : points.sine;
        const double re_sign = odd ? (upper ? sign : -sign) : (upper ? -1 : 1);
        const double im_sign = odd ? (upper ? 1 : -1) : (upper ? sign : -sign);
        T *pair = pairs + 2 * (k < 0 ? k + (ptrdiff_t)n : k);
        for (; i < count; i += stride, pair += 2 * sign) {
          pair[0] = (T)(re_sign * re[i]);
          pair[1] = (T)(im_sign * im[i]);
        }
      }
  });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ENTRY(zprs_fillCircle_64f, (size_t n, double *pairs), (n, pairs)) { fill_pairs(n, pairs); }
QKR_ENTRY(zprs_fillCircle_32f, (size_t n, float *pairs), (n, pairs)) { fill_pairs(n, pairs); }
QKR_ENTRY(zprs_fillQuarterSines_64f, (size_t n, double *table), (n, table)) { fill_quarter(n, table); }
QKR_ENTRY(zprs_fillQuarterSines_32f, (size_t n, float *table), (n, table)) { fill_quarter(n, table); }
