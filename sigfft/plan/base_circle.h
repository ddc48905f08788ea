// Points of the unit circle, drawn from the base table of an equally fine or finer one.
#pragma once

#include <utility>

#include "sigfft/plan/decomposition.h"
#include "simd/simd.h"

namespace qkr::sigfft {
namespace {

// The points exp(-2 pi i a / 2^bits). Within a quadrant the two parts lie in the base table at one distance
// from point to point, one upward, the other downward.
template <class T>
struct BaseCircle {
  const T *base;
  int base_order, bits;

  // The points that fill a group of a table.
  static constexpr size_t together = group<T>;
  using Lanes = std::make_integer_sequence<int, together>;
  using V = sse2::Native<T>;

  // Of an angle: which part lies upward from the start of the table, the other one downward from its end.
  struct Quadrant {
    bool real_upward;
    T up_sign, down_sign;
  };
  size_t quarter() const { return size_t{1} << (base_order - 2); }
  Quadrant quadrant_of(size_t angle) const {
    static constexpr Quadrant quadrants[] = {{false, -1, 1}, {true, -1, -1}, {false, 1, -1}, {true, 1, 1}};
    return quadrants[angle >> (base_order - 2) & 3];
  }

  template <int... lane>
  static V at_distance(const T *p, ptrdiff_t distance, std::integer_sequence<int, lane...>) {
    return V{p[lane * distance]...};
  }

  // put(i, re, im) with the i-th group of the points first, first + step, ...
  template <class Put>
  void for_groups(size_t first, size_t step, size_t groups, Put put) const {
    const int finer = base_order - bits;
    const auto distance = (ptrdiff_t)(step << finer), stride = (ptrdiff_t)together * distance;
    // Groups that begin below this lie in one quadrant.
    const ptrdiff_t inside = (ptrdiff_t)quarter() - (stride - distance);
    for (size_t i = 0; i < groups;) {
      const size_t start = first + i * together * step, angle = start << finer;
      const Quadrant quadrant = quadrant_of(angle);
      auto rest = (ptrdiff_t)(angle & (quarter() - 1));
      const ptrdiff_t last = rest + (ptrdiff_t)(groups - i) * stride, end = last < inside ? last : inside;
      const auto put_groups = [&](auto in_order) {
        const T *const upward = base, *const downward = base + quarter();
#pragma GCC unroll 4
        for (; rest < end; ++i, rest += stride)
          in_order(at_distance(upward + rest, distance, Lanes()) * quadrant.up_sign,
                   at_distance(downward - rest, -distance, Lanes()) * quadrant.down_sign);
      };
      if (rest >= end) put_across_quadrants(start, step, [&](V re, V im) { put(i, re, im); }), ++i;
      else if (quadrant.real_upward) put_groups([&](V up, V down) { put(i, up, down); });
      else put_groups([&](V up, V down) { put(i, down, up); });
    }
  }

  // A group that begins in one quadrant and ends in another.
  template <class Put>
  void put_across_quadrants(size_t first, size_t step, Put put) const {
    V re{}, im{};
    for (size_t lane = 0; lane < together; ++lane) {
      const size_t angle = (first + lane * step) << (base_order - bits), rest = angle & (quarter() - 1);
      const Quadrant quadrant = quadrant_of(angle);
      const T up = base[rest] * quadrant.up_sign, down = base[quarter() - rest] * quadrant.down_sign;
      re[lane] = quadrant.real_upward ? up : down;
      im[lane] = quadrant.real_upward ? down : up;
    }
    put(re, im);
  }
};

}  // namespace
}  // namespace qkr::sigfft
