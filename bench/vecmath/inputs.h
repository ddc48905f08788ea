// The arrays that benchmarks run on: the same ones for all contenders.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <random>
#include <vector>

#include "vecmath/functions.h"

namespace qkr::bench {

constexpr int largest_n = 1000000;
constexpr int sample_size = 1 << 15;

template <class T>
constexpr bool is_double = sizeof(T) == 8;

template <class T>
std::vector<T> draw(Range range, uint64_t seed) {
  std::mt19937_64 engine(seed);
  std::uniform_real_distribution<double> unit;
  std::vector<T> x(sample_size);
  for (T &v : x) {
    const double u = unit(engine);
    v = (T)(range.logarithmic ? std::exp(std::lerp(std::log(range.low), std::log(range.high), u))
                              : std::lerp(range.low, range.high, u));
    if (range.whole) v = std::round(v);
  }
  return x;
}

// Part 0 is what is timed; accuracy is judged on more parts, the odd ones close to the hard input where there
// is one: at relative distances from 1/2 down to 2^-20.
template <class T>
struct Sample {
  std::vector<T> a, b;
  explicit Sample(const Inputs &in, int part = 0)
      : a(draw<T>(is_double<T> || in.a_single.low == in.a_single.high ? in.a : in.a_single, 2 * part + 1)),
        b(draw<T>(is_double<T> || in.b_single.low == in.b_single.high ? in.b : in.b_single, 2 * part + 2)) {
    if (in.hard == 0 || part % 2 == 0) return;
    a = draw<T>(log_uniform(0x1p-20, 0.5), 2 * part + 1);
    for (size_t i = 0; i < a.size(); ++i)
      a[i] = (T)(in.hard * (i % 2 && !in.above_hard ? 1 - a[i] : 1 + a[i]));
  }
};

// The mask or index for a length: both random, the index a permutation.
inline const int32_t *integers(Integers kind, int n) {
  static std::map<std::pair<Integers, int>, std::vector<int32_t>> made;
  std::vector<int32_t> &v = made[{kind, n}];
  if (v.empty()) {
    std::mt19937_64 engine(3);
    v.resize(n);
    for (int i = 0; i < n; ++i) v[i] = kind == Integers::mask ? engine() & 1 : i;
    if (kind == Integers::index) std::shuffle(v.begin(), v.end(), engine);
  }
  return v.data();
}

// Four arrays of largest_n strided elements, aligned, at different places of a page.
template <class T>
T *array(int which) {
  constexpr size_t length = (size_t)largest_n * stride + 320;
  static T *const all = [] {
    void *p = std::aligned_alloc(4096, (4 * length * sizeof(T) + 4095) / 4096 * 4096);
    std::fill_n((T *)p, 4 * length, T());
    return (T *)p;
  }();
  return all + which * length;
}

// The sample, over and over.
template <class T>
void fill(T *to, const std::vector<T> &from, int count) {
  for (int i = 0; i < count; i += sample_size)
    std::copy_n(from.data(), std::min(sample_size, count - i), to + i);
}

}  // namespace qkr::bench
