// Transforms of a few points, over whatever registers hold them. Factors up to 5 have formulas of their own
// (S. Winograd, Mathematics of Computation 32 (1978) 175, has them with fewer multiplications); others go by
// the sums and differences of the points j and P - j, which halves the products of the plain sum.
#pragma once

#include "sigfft/any_length/passes/columns.h"
#include "sigfft/passes/butterfly.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using sigfft::SmallCircle;

// A factor whose butterfly stands in a stage's loop, and any other, which is odd and has its points in
// memory.
template <int points>
struct Factor {
  static constexpr int value = points;
};
struct AnyFactor {
  int value;
};
constexpr int most_points = 179;  // those of the direct sum of real signals

// run(Factor or AnyFactor). Two ways at a time: of more, compilers make a jump to a computed address, which
// costs as much as a short stage.
template <class Run>
QKR_INLINE void with_odd_factor(int factor, Run run) {
  if (factor <= 5) {
    if (factor == 3) run(Factor<3>());
    else run(Factor<5>());
  } else {
    if (factor == 7) run(Factor<7>());
    else run(AnyFactor{factor});
  }
}
template <class Run>
QKR_INLINE void with_factor(int factor, Run run) {
  if (factor % 2) return with_odd_factor(factor, run);
  if (factor == 4) run(Factor<4>());
  else run(Factor<2>());
}

// Cosines and negated sines of 2 pi / 3, 2 pi / 5 and 4 pi / 5.
template <class T>
constexpr T cos_1_3 = (T)-0.5;
template <class T>
constexpr T sin_1_3 = (T)-0.8660254037844386;
template <class T>
constexpr T cos_1_5 = (T)0.30901699437494745;
template <class T>
constexpr T sin_1_5 = (T)-0.9510565162951535;
template <class T>
constexpr T cos_2_5 = (T)-0.8090169943749473;
template <class T>
constexpr T sin_2_5 = (T)-0.5877852522924732;

// X[k] and X[P - k] are u + i v and u - i v where v has the sign of the forward direction.
template <bool forward, class C, class Put>
QKR_INLINE void put_pair(int points, int k, C u, C v, Put put) {
  put(k, minus_turned<forward>(u, v));
  put(points - k, plus_turned<forward>(u, v));
}

template <bool forward, int points, class C, class Put, class T>
QKR_INLINE void sums_of_known(C x0, const C *sum, const C *difference, Put put, SmallCircle<T> circle) {
  constexpr int half = (points - 1) / 2;
#pragma GCC unroll 8
  for (int k = 1; k <= half; ++k) {
    C u = x0 + sum[0] * circle.points[2 * k], v = difference[0] * circle.points[2 * k + 1];
#pragma GCC unroll 8
    for (int j = 2; j <= half; ++j) {
      const T *const w = circle.points + 2 * (j * k % points);
      u = u + sum[j - 1] * w[0], v = v + difference[j - 1] * w[1];
    }
    put_pair<forward>(points, k, u, v, put);
  }
}

// The same apart from the loop, for so many sums that they would swell every stage.
template <bool forward, int points, class C, class Result, class T>
QKR_NOINLINE void sums_of_many(C x0, const C *sum, const C *difference, Result *out, SmallCircle<T> circle) {
  sums_of_known<forward, points>(
      x0, sum, difference, [=](int q, auto x) QKR_LAMBDA { out[q] = x; }, circle);
}

template <bool forward, int points, class C, class Put, class T>
QKR_INLINE void transform_points(const C *x, Put put, SmallCircle<T> circle) {
  if constexpr (points == 2) {
    put(0, x[0] + x[1]), put(1, x[0] - x[1]);
  } else if constexpr (points == 3) {
    const C sum = x[1] + x[2], difference = (x[1] - x[2]) * sin_1_3<T>;
    put(0, x[0] + sum);
    put_pair<forward>(3, 1, x[0] + sum * cos_1_3<T>, difference, put);
  } else if constexpr (points == 4) {
    butterfly<4, forward>([&](int m) QKR_LAMBDA { return x[m]; }, put);
  } else if constexpr (points == 5) {
    const C a1 = x[1] + x[4], b1 = x[1] - x[4], a2 = x[2] + x[3], b2 = x[2] - x[3];
    const C u1 = x[0] + a1 * cos_1_5<T> + a2 * cos_2_5<T>, v1 = b1 * sin_1_5<T> + b2 * sin_2_5<T>;
    const C u2 = x[0] + a1 * cos_2_5<T> + a2 * cos_1_5<T>, v2 = b1 * sin_2_5<T> - b2 * sin_1_5<T>;
    put(0, x[0] + a1 + a2);
    put_pair<forward>(5, 1, u1, v1, put);
    put_pair<forward>(5, 2, u2, v2, put);
  } else {
    constexpr int half = (points - 1) / 2;
    C a[half], b[half], sum = x[0];
#pragma GCC unroll 8
    for (int j = 0; j < half; ++j) {
      a[j] = x[j + 1] + x[points - 1 - j], b[j] = x[j + 1] - x[points - 1 - j];
      sum = sum + a[j];
    }
    put(0, sum);
    if constexpr (points <= 7) {
      sums_of_known<forward, points>(x[0], a, b, put, circle);
    } else {
      decltype(plus_turned<forward>(x[0], x[0])) out[points];
      sums_of_many<forward, points>(x[0], a, b, out, circle);
#pragma GCC unroll 16
      for (int q = 1; q < points; ++q) put(q, out[q]);
    }
  }
}

// get(m) gives input m, put(k, value) takes output k. All inputs are read before the first output is put.
template <bool forward, int points, class Get, class Put, class T>
QKR_INLINE void transform_points(Factor<points>, Get get, Put put, SmallCircle<T> circle) {
  decltype(get(0)) x[points];
#pragma GCC unroll 16
  for (int m = 0; m < points; ++m) x[m] = get(m);
  transform_points<forward, points>(x, put, circle);
}

// The sums of the points j and P - j of a column, and their differences.
template <class C>
struct ColumnPoints {
  C sum[(most_points - 1) / 2], difference[(most_points - 1) / 2];
};

// The results k to k + together - 1 and their counterparts: so many sums side by side share what they read.
template <bool forward, int together, class C, class Result, class T>
QKR_INLINE void sums_of_points(int points, int k, C x0, const ColumnPoints<C> &in, Result *out,
                               SmallCircle<T> circle) {
  const int half = (points - 1) / 2;
  C u[together], v[together];
  uint32_t place[together];
  const uint32_t *places[together];
#pragma GCC unroll 4
  for (int i = 0; i < together; ++i) {
    places[i] = circle.places + k + i;
    place[i] = 2 * (uint32_t)(k + i);
    u[i] = x0 + in.sum[0] * circle.points[place[i]], v[i] = in.difference[0] * circle.points[place[i] + 1];
  }
  for (int j = 1; j < half; ++j)
#pragma GCC unroll 4
    for (int i = 0; i < together; ++i) {
      place[i] = places[i][place[i] / 2];
      u[i] = u[i] + in.sum[j] * circle.points[place[i]];
      v[i] = v[i] + in.difference[j] * circle.points[place[i] + 1];
    }
#pragma GCC unroll 4
  for (int i = 0; i < together; ++i)
    put_pair<forward>(points, k + i, u[i], v[i], [=](int q, auto x) QKR_LAMBDA { out[q] = x; });
}

template <bool forward, class C, class Result, class T>
QKR_NOINLINE void transform_any(int points, C x0, const ColumnPoints<C> &in, Result *out,
                                SmallCircle<T> circle) {
  if (points == 11) return sums_of_many<forward, 11>(x0, in.sum, in.difference, out, circle);
  if (points == 13) return sums_of_many<forward, 13>(x0, in.sum, in.difference, out, circle);
  const int half = (points - 1) / 2;
  int k = 1;
  for (; k + 3 <= half; k += 4) sums_of_points<forward, 4>(points, k, x0, in, out, circle);
  for (; k <= half; ++k) sums_of_points<forward, 1>(points, k, x0, in, out, circle);
}

template <bool forward, class Get, class Put, class T>
QKR_INLINE void transform_points(AnyFactor factor, Get get, Put put, SmallCircle<T> circle) {
  const int points = factor.value, half = (points - 1) / 2;
  using C = decltype(get(0));
  ColumnPoints<C> in;
  decltype(plus_turned<forward>(get(0), get(0))) out[most_points];
  const C x0 = get(0);
  C sum = x0;
  for (int j = 0; j < half; ++j) {
    const C x = get(j + 1), y = get(points - 1 - j);
    in.sum[j] = x + y, in.difference[j] = x - y;
    sum = sum + in.sum[j];
  }
  transform_any<forward>(points, x0, in, out, circle);
  put(0, sum);
  for (int q = 1; q < points; ++q) put(q, out[q]);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
