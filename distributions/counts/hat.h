// Rejection under a hat of four pieces, each with its share of the first of two uniform numbers: a triangle
// that lies below the law and needs no test, a parallelogram over it, and two exponential tails (V.
// Kachitvichyanukul and B. W. Schmeiser, Communications of the ACM 31 (1988) 216).
#pragma once

#include <cmath>

#include "distributions/rejection.h"
#include "distributions/whole.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int32_t hat_candidates = 256;

// Candidates that wait for their test: whole number, height, and later the answer.
struct Waiting {
  int32_t count = 0, place[hat_candidates];
  double y[hat_candidates], v[hat_candidates];
  bool accepted[hat_candidates];

  void add(int32_t i, double number, double height) {
    place[count] = i;
    y[count] = number;
    v[count++] = height;
  }
};

// The logarithms of v of the chosen, taken together.
struct Logarithms {
  int32_t count = 0, of[hat_candidates];
  double value[hat_candidates];

  void add(int32_t j, double x) {
    of[count] = j;
    value[count++] = x;
  }
  void take() { _vxmdLn_HA(count, value, value); }
};

// Fills `out`. T is the precision of the uniform numbers and of the heights. `hat` has the borders p1 to p4
// of the pieces and their geometry; test(waiting) answers for what is not in the triangle. A cached hat may
// come from a damaged file: where nothing at all is accepted, make() makes it anew.
template <class T, class Hat, class Test, class Make>
int32_t by_hat(StreamState *stream, int32_t n, int32_t *out, const Hat &hat, double highest, Test test,
               Make make) {
  constexpr int32_t suspicious = 4 * hat_candidates;
  T pairs[2 * hat_candidates];
  double candidate[hat_candidates], height[hat_candidates], piece[hat_candidates];
  int64_t accepted[hat_candidates];
  int32_t status = VXS_STATUS_OK, rejected = 0;
  for (int32_t done = 0; done < n;) {
    const int32_t m = n - done < hat_candidates ? n - done : hat_candidates;
    status = uniforms(stream, 2 * m, pairs);
    if (status < 0) break;
    const double p1 = hat.p1, p2 = hat.p2, p4 = hat.p4, xm = hat.xm, xl = hat.xl, c = hat.c;
    const double inverse_c = hat.inverse_c, inverse_p1 = hat.inverse_p1;
    for (int32_t i = 0; i < m; ++i) {
      const double u = T(double(pairs[2 * i]) * p4), v = pairs[2 * i + 1], x = xl + (u - p1) * inverse_c;
      const double lifted = T(v * c + 1.0 - std::abs(xm - x) * inverse_p1);
      candidate[i] = u <= p1 ? xm - p1 * v + u : x;
      height[i] = u <= p2 ? lifted : v;
      piece[i] = u;
      accepted[i] = u <= p1;
    }

    Logarithms tails;
    Waiting waiting;
    int32_t rest[hat_candidates], others = 0;
    for (int32_t i = 0; i < m; ++i) {
      rest[others] = i;
      others += !(piece[i] <= p1);
    }
    for (int32_t j = 0; j < others; ++j) {
      const int32_t i = rest[j];
      if (!(piece[i] <= p2)) tails.add(i, height[i]);
      else if (height[i] <= 1.0) waiting.add(i, std::trunc(candidate[i]), height[i]);
    }
    tails.take();
    for (int32_t j = 0; j < tails.count; ++j) {
      const int32_t i = tails.of[j];
      const bool left = piece[i] <= hat.p3;
      const double x =
          left ? hat.xl + tails.value[j] * hat.inverse_left : hat.xr - tails.value[j] * hat.inverse_right;
      const double area = left ? (piece[i] - p2) * hat.left : (piece[i] - hat.p3) * hat.right;
      // A height of 0 leads out of the law, and would pass every test there.
      if (height[i] > 0.0 && x >= 0.0 && x < highest + 1.0)
        waiting.add(i, candidate[i] = std::trunc(x), T(height[i] * area));
    }
    test(waiting);
    for (int32_t j = 0; j < waiting.count; ++j) accepted[waiting.place[j]] = waiting.accepted[j];

    int32_t kept = 0;
    for (int32_t i = 0; i < m; ++i) {
      out[done + kept] = whole(candidate[i]);
      kept += static_cast<int32_t>(accepted[i]);
    }
    done += kept;
    rejected = kept ? 0 : rejected + m;
    if (rejected >= suspicious) {
      make();
      rejected = 0;
    }
  }
  return status;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
