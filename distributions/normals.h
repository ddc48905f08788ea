// Two normal numbers, or one, of a pair of uniform numbers: sqrt(-2 ln u1) times sine and cosine of 2 pi u2
// (G. E. P. Box and M. E. Muller, Annals of Mathematical Statistics 29 (1958) 610). In one pass over the
// formulas of the vector functions, and, where one of these has something to report or the environment is
// another, by the functions one after the other. Both ways give the same bits.
#pragma once

#include <utility>

#include "distributions/cores.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr double whole_turn = 6.283185307179586;  // 2 pi

enum class Takes { sine, both };

// Every second lane of two vectors one behind the other, and back.
template <class V, class T>
struct PairLanes {
  static constexpr int lanes = sizeof(V) / sizeof(T);
  using Indices = std::make_integer_sequence<int, lanes>;

  template <int first>
  QKR_INLINE static V every_second(V a, V b) {
    return [=]<int... i>(std::integer_sequence<int, i...>) QKR_LAMBDA {
      return (V)__builtin_shufflevector(a, b, 2 * i + first...);
    }
    (Indices());
  }
  template <int half>
  QKR_INLINE static V by_turns(V a, V b) {
    return [=]<int... i>(std::integer_sequence<int, i...>) QKR_LAMBDA {
      return (V)__builtin_shufflevector(a, b, (half * lanes + i) / 2 + i % 2 * lanes...);
    }
    (Indices());
  }
};

template <class T, class V>
QKR_INLINE void load_pairs(const T *pairs, V &first, V &second) {
  V a, b;
  load(pairs, a);
  load(pairs + PairLanes<V, T>::lanes, b);
  first = PairLanes<V, T>::template every_second<0>(a, b);
  second = PairLanes<V, T>::template every_second<1>(a, b);
}
template <class T, class V>
QKR_INLINE void load_pairs(const T *pairs, Two<V> &first, Two<V> &second) {
  load_pairs(pairs, first.a, second.a);
  load_pairs(pairs + 2 * sizeof(V) / sizeof(T), first.b, second.b);
}
template <class T, class V>
QKR_INLINE void store_pairs(T *pairs, V first, V second) {
  store(pairs, PairLanes<V, T>::template by_turns<0>(first, second));
  store(pairs + PairLanes<V, T>::lanes, PairLanes<V, T>::template by_turns<1>(first, second));
}
template <class T, class V>
QKR_INLINE void store_pairs(T *pairs, Two<V> first, Two<V> second) {
  store_pairs(pairs, first.a, second.a);
  store_pairs(pairs + 2 * sizeof(V) / sizeof(T), first.b, second.b);
}

// The radius of a pair.
template <class T, class V>
QKR_INLINE V radius_of(V u) {
  const V logarithm = Cores<T>::ln(u);
  return square_root(T(0) - (logarithm + logarithm));
}

// m pairs in whole groups; returns how many it has served: it stops before a group with a number that has no
// logarithm.
template <class T, Takes takes, class V>
QKR_NOINLINE int32_t groups_of_pairs(int32_t m, const T *pairs, T *out, T sigma, T a) {
  constexpr int length = sizeof(V) / sizeof(T);
  int32_t i = 0;
  for (; i + length <= m; i += length) {
    V u, angle;
    load_pairs(pairs + 2 * i, u, angle);
    if (__builtin_expect(any(not_positive_normal(u), T()), 0)) break;
    angle = angle * T(whole_turn);
    const V radius = radius_of<T>(u);
    if constexpr (takes == Takes::both) {
      const Pair<V> p = Cores<T>::sine_and_cosine_of(angle);
      store_pairs(out + 2 * i, (p.first * radius) * sigma + a, (p.second * radius) * sigma + a);
    } else {
      store(out + i, (radius * Cores<T>::sine(angle)) * sigma + a);
    }
  }
  return i;
}

// The vector functions make a radius of u.
template <class T>
inline void radii(int32_t n, T *u) {
  Precision<T>::ln(n, u, u);
  for (int32_t i = 0; i < n; ++i) u[i] = T(0) - (u[i] + u[i]);
  Precision<T>::sqrt(n, u, u);
}

// By the vector functions, block by block.
template <class T, Takes takes>
QKR_NOINLINE void normals_by_functions(int32_t m, const T *pairs, T *out, T sigma, T a) {
  constexpr int32_t longest = 512, each = takes == Takes::both ? 2 : 1;
  T radius[longest], sine[longest], cosine[longest];
  with_finite_logarithms<T, ActsOn::singularities>([&] {
    for (; m > 0; m -= longest, pairs += 2 * longest, out += each * longest) {
      const int32_t count = m < longest ? m : longest;
      part_pairs(count, pairs, radius, sine, T(whole_turn));
      radii(count, radius);
      if constexpr (takes == Takes::both) {
        Precision<T>::sin_cos(count, sine, sine, cosine);
        for (int32_t i = 0; i < count; ++i) {
          out[2 * i] = sine[i] * radius[i] * sigma + a;
          out[2 * i + 1] = cosine[i] * radius[i] * sigma + a;
        }
      } else {
        Precision<T>::sin(count, sine, sine);
        for (int32_t i = 0; i < count; ++i) out[i] = sine[i] * radius[i] * sigma + a;
      }
    }
    return VXS_STATUS_OK;
  });
}

// The standard normal numbers of a single pair.
template <class T>
QKR_INLINE void one_pair(const T *pair, T *out) {
  if (!has_logarithm(pair[0])) return normals_by_functions<T, Takes::both>(1, pair, out, T(1), T(-0.0));
  const Pair<T> p = Cores<T>::sine_and_cosine_of(pair[1] * T(whole_turn));
  const T radius = radius_of<T>(pair[0]);
  out[0] = p.first * radius;
  out[1] = p.second * radius;
}

// The numbers of m pairs, times sigma, plus a.
template <class T, Takes takes>
QKR_INLINE void normals(int32_t m, const T *pairs, T *out, T sigma, T a) {
  using V = Native<T>;
  using Wide = typename SideBySide<V, QKR_BASELINE && takes == Takes::sine ? 4 : 2>::type;
  constexpr int length = sizeof(V) / sizeof(T), each = takes == Takes::both ? 2 : 1;
  int32_t done = 0;
  if (environment_is_default()) {
    done = groups_of_pairs<T, takes, Wide>(m, pairs, out, sigma, a);
    const int32_t left = m - done;
    if (left < static_cast<int32_t>(sizeof(Wide) / sizeof(T)))
      done += groups_of_pairs<T, takes, V>(left, pairs + 2 * done, out + each * done, sigma, a);
    if (m - done < length && m > done) {  // the last few in a group of their own
      T rest[2 * length], numbers[each * length];
      for (T &u : rest) u = T(0.5);
      memcpy(rest, pairs + 2 * done, sizeof(T) * 2 * (m - done));
      if (groups_of_pairs<T, takes, V>(length, rest, numbers, sigma, a) == length) {
        memcpy(out + each * done, numbers, sizeof(T) * each * (m - done));
        done = m;
      }
    }
  }
  if (done < m) normals_by_functions<T, takes>(m - done, pairs + 2 * done, out + each * done, sigma, a);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
