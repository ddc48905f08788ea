// The frame of a vector function: environment, group loop, special elements one by one, the tail.
//
// A kernel K is a struct of
//   Element                     double or float
//   Environment                 see environment.h
//   inputs, results             how many vectors go in and come out, 1 or 2
//   width                       how many native vectors make a group of the hot loop
//   special(x) or special(x, y) Flags: which lanes core() does not serve
//   core(x) or core(x, y)       the formulas, for any vector; with two results a Pair
//   scalar(i, arrays)           element i by itself: special values and reports
// An exact function may leave special and scalar out.
#pragma once

#include <qkr/vecmath.h>

#include "simd/entry.h"
#include "simd/simd.h"
#include "vecmath/errors/gate.h"
#include "vecmath/frame/environment.h"

namespace qkr {

// The vectors of one call; a function of one input or one result leaves b or q null.
template <class T>
struct Arrays {
  const T *a, *b;
  T *r, *q;
};

}  // namespace qkr

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Passes element i with a status to the error gate.
QKR_INLINE void report(int32_t status, ptrdiff_t i, Arrays<double> v, const char *name) {
  report_error(status, i, v.a, v.b ? v.b : v.a, v.r, v.q ? v.q : v.r, name);
}
QKR_INLINE void report(int32_t status, ptrdiff_t i, Arrays<float> v, const char *name) {
  report_error(status, i, v.a, v.b ? v.b : v.a, v.r, v.q ? v.q : v.r, name);
}

template <class V>
struct Pair {
  V first, second;
};

// What most approximating kernels share.
template <class T, int group_width>
struct UnaryKernel {
  using Element = T;
  using Environment = SseEnvironment;
  static constexpr int inputs = 1, results = 1, width = group_width;
};
template <class T, int group_width>
struct BinaryKernel : UnaryKernel<T, group_width> {
  static constexpr int inputs = 2;
};

// The operands of a group, the functions of K on them, and the way of results into memory.
template <class K, class V>
struct Group {
  using T = typename K::Element;
  V x, y;

  QKR_INLINE Group(const Arrays<T> &v, ptrdiff_t i) {
    load(v.a + i, x);
    load_second(v, [&](auto &second) { load(v.b + i, second); });
  }
  QKR_INLINE Group(const Arrays<T> &v, ptrdiff_t i, int count) {
    load_part(v.a + i, count, x);
    load_second(v, [&](auto &second) { load_part(v.b + i, count, second); });
  }
  // Where the second input is one number for all, v.b points to it.
  template <class Load>
  QKR_INLINE void load_second(const Arrays<T> &v, Load from_vector) {
    if constexpr (requires { K::second_is_number; }) broadcast(*v.b, y);
    else if constexpr (K::inputs == 2) from_vector(y);
  }
  QKR_INLINE auto core() const {
    if constexpr (K::inputs == 2) return K::core(x, y);
    else return K::core(x);
  }
  QKR_INLINE auto special() const {
    if constexpr (!requires { &K::scalar; }) return 0;
    else if constexpr (K::inputs == 2) return K::special(x, y);
    else return K::special(x);
  }
  QKR_INLINE bool any_special() const {
    if constexpr (requires { &K::scalar; }) return __builtin_expect(any(special(), T()), 0);
    else return false;
  }
};

template <class T, class V>
QKR_INLINE void store(const Arrays<T> &v, ptrdiff_t i, V r) {
  store(v.r + i, r);
}
template <class T, class V>
QKR_INLINE void store(const Arrays<T> &v, ptrdiff_t i, Pair<V> r) {
  store(v.r + i, r.first);
  store(v.q + i, r.second);
}
template <class T, class V>
QKR_INLINE void store_part(const Arrays<T> &v, ptrdiff_t i, int count, V r) {
  store_part(v.r + i, count, r);
}
template <class T, class V>
QKR_INLINE void store_part(const Arrays<T> &v, ptrdiff_t i, int count, Pair<V> r) {
  store_part(v.r + i, count, r.first);
  store_part(v.q + i, count, r.second);
}

// Whole groups from i on, up to the first with a special element; returns where it stopped. Not inlined and
// free of calls: then the compiler keeps every constant in a register, and no arithmetic moves before the
// environment is set. A group is stored only after its test, so a result vector may be an input vector.
// The vectors come one by one, as they then lie in registers: it halves the time of a call for few elements.
template <class K, class V, class T = typename K::Element>
QKR_NOINLINE ptrdiff_t plain_groups(ptrdiff_t i, ptrdiff_t n, const T *a, const T *b, T *r, T *q) {
  constexpr ptrdiff_t length = sizeof(V) / sizeof(T);
  const Arrays<T> v = {a, b, r, q};
  for (; i + length <= n; i += length) {
    const Group<K, V> group(v, i);
    const auto result = group.core();
    if (group.any_special()) break;
    store(v, i, result);
  }
  return i;
}

// A native vector, or the part that is left at the end, with special elements: only these go to the scalar
// routine, in the order of their index.
template <class K, class T = typename K::Element>
QKR_NOINLINE void mixed_vector(ptrdiff_t i, ptrdiff_t count, const T *a, const T *b, T *r, T *q) {
  using Vector = Group<K, Native<T>>;
  constexpr int length = sizeof(Native<T>) / sizeof(T);
  const Arrays<T> v = {a, b, r, q};
  const Vector group = count == length ? Vector(v, i) : Vector(v, i, count);
  T first[length], second[length];
  store(Arrays<T>{nullptr, nullptr, first, second}, 0, group.core());
  const unsigned special = lane_set(group.special(), T());
  for (int k = 0; k < count; ++k) {
    if (special >> k & 1) {
      K::scalar(i + k, v);
    } else {
      r[i + k] = first[k];
      if constexpr (K::results == 2) q[i + k] = second[k];
    }
  }
}

// Fewer elements than a vector holds.
template <class K, class T = typename K::Element>
QKR_NOINLINE void tail(ptrdiff_t i, ptrdiff_t n, const T *a, const T *b, T *r, T *q) {
  const Arrays<T> v = {a, b, r, q};
  const Group<K, Native<T>> group(v, i, n - i);
  if (!group.any_special()) return store_part(v, i, n - i, group.core());
  if constexpr (requires { &K::scalar; }) mixed_vector<K>(i, n - i, a, b, r, q);
}

template <class K>
QKR_INLINE void run(ptrdiff_t n, Arrays<typename K::Element> v) {
  using V = Native<typename K::Element>;
  using Wide = typename SideBySide<V, K::width>::type;
  constexpr ptrdiff_t length = sizeof(V) / sizeof(typename K::Element), group = length * K::width;
  if (n <= 0) return;
  const typename K::Environment environment;
  ptrdiff_t i = 0;
  while (n - i >= group) {
    i = plain_groups<K, Wide>(i, n, v.a, v.b, v.r, v.q);
    if (n - i < group) break;
    if constexpr (requires { &K::scalar; })
      for (const ptrdiff_t end = i + group; i < end; i += length)
        mixed_vector<K>(i, length, v.a, v.b, v.r, v.q);
  }
  while (n - i >= length) {
    if constexpr (K::width > 1) i = plain_groups<K, V>(i, n, v.a, v.b, v.r, v.q);
    if (n - i < length) break;
    if constexpr (requires { &K::scalar; }) mixed_vector<K>(i, length, v.a, v.b, v.r, v.q), i += length;
  }
  if (i < n) tail<K>(i, n, v.a, v.b, v.r, v.q);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

// Entries: the kernel itself, and the lower-accuracy name, which forwards to it.
#define QKR_FORWARD(name, low_name, parameters, arguments) \
  extern "C" void low_name parameters { name arguments; }
#if !QKR_BASELINE
#undef QKR_FORWARD
#define QKR_FORWARD(name, low_name, parameters, arguments)
#endif

#define QKR_UNARY(name, T, kernel) \
  QKR_ENTRY(name, (int32_t n, const T *a, T *r), (n, a, r)) { run<kernel>(n, {a, nullptr, r, nullptr}); }

#define QKR_BINARY(name, T, kernel)                                          \
  QKR_ENTRY(name, (int32_t n, const T *a, const T *b, T *r), (n, a, b, r)) { \
    run<kernel>(n, {a, b, r, nullptr});                                      \
  }

#define QKR_TWO_RESULTS(name, T, kernel)                                   \
  QKR_ENTRY(name, (int32_t n, const T *a, T *r1, T *r2), (n, a, r1, r2)) { \
    run<kernel>(n, {a, nullptr, r1, r2});                                  \
  }

#define QKR_UNARY_FORWARD(name, low_name, T) \
  QKR_FORWARD(name, low_name, (int32_t n, const T *a, T *r), (n, a, r))
#define QKR_BINARY_FORWARD(name, low_name, T) \
  QKR_FORWARD(name, low_name, (int32_t n, const T *a, const T *b, T *r), (n, a, b, r))
#define QKR_TWO_RESULTS_FORWARD(name, low_name, T) \
  QKR_FORWARD(name, low_name, (int32_t n, const T *a, T *r1, T *r2), (n, a, r1, r2))

// A vector and a number, by value.
#define QKR_VECTOR_AND_NUMBER(name, T, kernel) \
  QKR_ENTRY(name, (int32_t n, const T *a, T b, T *r), (n, a, b, r)) { run<kernel>(n, {a, &b, r, nullptr}); }
#define QKR_VECTOR_AND_NUMBER_FORWARD(name, low_name, T) \
  QKR_FORWARD(name, low_name, (int32_t n, const T *a, T b, T *r), (n, a, b, r))
