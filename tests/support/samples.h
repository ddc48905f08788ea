// Inputs for tests and measurements: the same on every machine and with every compiler.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>

#include "tests/support/vector_functions.h"

namespace qkr::tests {

// SplitMix64 (G. Steele, D. Lea, C. Flood, OOPSLA 2014).
struct Random {
  uint64_t state;
  uint64_t operator()() {
    uint64_t z = state += 0x9E3779B97F4A7C15;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
    z = (z ^ z >> 27) * 0x94D049BB133111EB;
    return z ^ z >> 31;
  }
  uint64_t below(uint64_t n) { return static_cast<unsigned __int128>(operator()()) * n >> 64; }
  double unit() { return static_cast<double>(operator()() >> 11) * 0x1p-53; }
};

template <class T>
using Pattern = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;
template <class T>
using Signed = std::make_signed_t<Pattern<T>>;

template <class T>
T from_pattern(Pattern<T> pattern) {
  return std::bit_cast<T>(pattern);
}
template <class T>
Pattern<T> pattern_of(T x) {
  return std::bit_cast<Pattern<T>>(x);
}

// Numbers in their order as integers, 0 for both zeros: neighbours differ by one.
template <class T>
int64_t rank(T x) {
  const Signed<T> pattern = std::bit_cast<Signed<T>>(x);
  return pattern < 0 ? -static_cast<int64_t>(pattern & std::numeric_limits<Signed<T>>::max()) : pattern;
}
template <class T>
T of_rank(int64_t rank) {
  const auto magnitude = static_cast<Pattern<T>>(rank < 0 ? -rank : rank);
  return from_pattern<T>(rank < 0 ? magnitude | ~(~Pattern<T>() >> 1) : magnitude);
}

// Any pattern between the ends of a range is equally likely.
template <class T>
T any_between(Range<T> range, Random &random) {
  const uint64_t low = rank(range.low), high = rank(range.high);
  return of_rank<T>(static_cast<int64_t>(low + random.below(high - low + 1)));
}

// Any value between the ends of a range, which may not be wider than 2^60, is equally likely.
template <class T>
T value_between(Range<T> range, Random &random) {
  return static_cast<T>(range.low + random.unit() * (static_cast<double>(range.high) - range.low));
}

// Within a range, and of middling size.
template <class T>
T ordinary(Range<T> range, Random &random) {
  return value_between(Range<T>{std::max(range.low, T(-20)), std::min(range.high, T(20))}, random);
}

// Inputs around which kernels change their ways, for every function.
template <class T>
std::vector<T> notable_points(const VectorFunction<T> &f) {
  using Format = std::numeric_limits<T>;
  std::vector<T> points = f.points;
  for (T x :
       {T(0), Format::denorm_min(), Format::min(), Format::epsilon(), T(0.5), T(1), T(2), Format::max()})
    points.insert(points.end(), {x, -x});
  if (const Contract *contract = find_contract(f.name)) points.push_back(static_cast<T>(contract->worst));
  points.insert(points.end(), {f.a.low, f.a.high, f.b.low, f.b.high});
  return points;
}

// An input of f within its range: of all magnitudes, of middling ones, near table rows, near 1, near points.
template <class T>
T sample(const VectorFunction<T> &f, Range<T> range, const std::vector<T> &points, Random &random) {
  const auto near = [&](T x) { return of_rank<T>(rank(x) + static_cast<int64_t>(random.below(33)) - 16); };
  const auto power_of_two = [&](int low, int high) {
    return std::ldexp(T(1), low + static_cast<int>(random.below(high - low + 1)));
  };
  const T sign = random.below(2) ? T(1) : T(-1);
  const auto of_any_range = [&]() -> T {
    switch (random.below(8)) {
      case 0:
      case 1:
        return any_between(range, random);
      case 2:
      case 3:
        return sign * any_between(Range<T>{T(0x1p-12), T(0x1p12)}, random);
      case 4:
        return value_between(Range<T>{std::max(range.low, T(-0x1p12)), std::min(range.high, T(0x1p12))},
                             random);
      case 5: {
        if (f.period != 0 && random.below(2))
          return near(std::trunc(value_between(Range<T>{-4096, 4096}, random)) * f.period / 2);
        const T rows = power_of_two(6, 10);
        return near(sign * (1 + static_cast<T>(random.below(static_cast<uint64_t>(rows))) / rows) *
                    power_of_two(-8, 8));
      }
      case 6:
        return 1 + sign * power_of_two(-std::numeric_limits<T>::digits, -1) * static_cast<T>(random.unit());
      default:
        return near(points[random.below(points.size())]);
    }
  };
  const T x = of_any_range();
  return x >= range.low && x <= range.high ? x : any_between(range, random);
}

// Inputs of every kind: samples, and one in four of any pattern, which may be a NaN.
template <class T>
std::vector<T> mixed_inputs(const VectorFunction<T> &f, Range<T> range, int count, uint64_t seed) {
  const std::vector<T> points = notable_points(f);
  Random random{seed};
  std::vector<T> inputs(count);
  for (T &x : inputs)
    x = random.below(4) ? sample(f, range, points, random)
                        : from_pattern<T>(static_cast<Pattern<T>>(random()));
  return inputs;
}

}  // namespace qkr::tests
