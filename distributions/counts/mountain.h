// Rejection under a table mountain: a plateau as high as the mode between two whole numbers, and an
// exponential tail on either side (V. Kachitvichyanukul and B. W. Schmeiser, Journal of Statistical
// Computation and Simulation 22 (1985) 127). Right for every law whose mass ratios fall.
#pragma once

#include <cmath>

#include "distributions/rejection.h"
#include "distributions/whole.h"
#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int32_t mountain_candidates = 256;

struct Mountain {
  double mode;
  double first, end;   // of the plateau: its lowest number, and the one behind its highest
  double left, right;  // rates of the tails
  double p1, p2, p3;   // shares of plateau, left and right tail, added up
};

// The plateau lies `reach` to either side of the mode; mass(y) is relative to that of the mode, ratio(y) that
// of y + 1 to that of y.
template <class Mass, class Ratio>
Mountain mountain_over(double mode, double reach, double lowest, double highest, Mass mass, Ratio ratio) {
  Mountain s;
  s.mode = mode;
  s.first = mode - reach > lowest ? mode - reach : lowest;
  s.end = mode + reach < highest ? mode + reach + 1.0 : highest + 1.0;
  // The rates come from the ratios of masses at the ends, which are exact where the masses themselves are
  // not.
  const bool has_left = s.first > lowest, has_right = s.end <= highest;
  s.p1 = s.end - s.first;
  s.left = has_left ? ln(ratio(s.first - 1.0)) : 1.0;
  s.right = has_right ? -ln(ratio(s.end - 1.0)) : 1.0;
  s.p2 = s.p1 + (has_left ? mass(s.first) / s.left : 0.0);
  s.p3 = s.p2 + (has_right ? mass(s.end - 1.0) / s.right : 0.0);
  return s;
}

// Fills `out` with numbers from `lowest` to `highest`. accept(m, y, v, accepted) answers whether v is at
// most the mass of y, for m candidates. A cached mountain may come from a damaged file: where nothing is
// accepted, make() makes it anew.
template <class Accept, class Make>
int32_t by_mountain(StreamState *stream, int32_t n, int32_t *out, const Mountain &mountain, double lowest,
                    double highest, Accept accept, Make make) {
  constexpr int32_t suspicious = 4 * mountain_candidates;
  double pairs[2 * mountain_candidates], u[mountain_candidates], v[mountain_candidates],
      y[mountain_candidates];
  double logarithm[mountain_candidates];
  int64_t accepted[mountain_candidates];
  int32_t status = VXS_STATUS_OK, rejected = 0;
  for (int32_t done = 0; done < n;) {
    const int32_t m = n - done < mountain_candidates ? n - done : mountain_candidates;
    status = uniforms(stream, 2 * m, pairs);
    if (status < 0) break;
    part_pairs(m, pairs, u, v);
    _vxmdLn_HA(m, v, logarithm);
    const Mountain s = mountain;
    const double inverse_left = 1.0 / s.left, inverse_right = 1.0 / s.right;
    for (int32_t i = 0; i < m; ++i) {
      const double share = u[i] * s.p3;
      const bool plateau = share < s.p1, on_left = share <= s.p2;
      const double tail =
          on_left ? s.first + logarithm[i] * inverse_left : s.end - logarithm[i] * inverse_right;
      const double area = on_left ? (share - s.p1) * s.left : (share - s.p2) * s.right;
      const double x = plateau ? s.first + share : tail;
      // A height of 0 leads far out of the law, and would pass every test there.
      const bool inside = (x >= lowest) & (x < highest + 1.0) & (plateau | (v[i] > 0.0));
      y[i] = inside ? std::trunc(x) : s.mode;
      v[i] = inside ? (plateau ? v[i] : v[i] * area) : 2.0;  // 2 is above all masses
    }
    accept(m, y, v, accepted);
    int32_t kept = 0;
    for (int32_t i = 0; i < m; ++i) {
      out[done + kept] = whole(y[i]);
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
