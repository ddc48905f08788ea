// The frame of a vector function: environment, group loop, special elements one by one, the tail.
//
// A kernel K is a struct of
//   Element                     double or float
//   Environment                 see environment.h
//   inputs, results             how many vectors go in and come out, 1 or 2
//   width                       how many native vectors make a group of the hot loop
//   fill                        an ordinary input, which stands behind the last element of a part vector
//   special(x) or special(x, y) Flags: which lanes core() does not serve
//   core(x) or core(x, y)       the formulas, for any vector; with two results a Pair
//   scalar(x) or scalar(x, y)   a special element by itself: its Outcome
// Where core finds the special lanes on its way it takes Flags & last and sets them, in place of special. In
// place of scalar there may be treat(i, arrays), which stores and reports by itself. Ordinary inputs that
// core leaves out for its speed may be served, at more cost, by wider_core(x, flags) or (x, y, flags),
// which gives the bits of core where that serves and those of scalar elsewhere. An exact function may leave
// all of these out; where core serves every lane and scalar only tells the status, events_are_right stands
// in K.
#pragma once

#include <qkr/vecmath_control.h>
#include <type_traits>

#include "simd/simd.h"
#include "vecmath/errors/gate.h"
#include "vecmath/frame/environment.h"
#include "vecmath/frame/parts.h"

namespace qkr {

// The vectors of one call; a function of one input or one result leaves b or q null.
template <class T>
struct Arrays {
  const T *a, *b;
  T *r, *q;
};

// What becomes of an element: its result, and the status to report.
template <class T>
struct Outcome {
  T result;
  int32_t status = VXM_STATUS_OK;
};

}  // namespace qkr

namespace qkr::QKR_SIMD_LEVEL {
namespace {

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
  static constexpr T fill = 1;
};
template <class T, int group_width>
struct BinaryKernel : UnaryKernel<T, group_width> {
  static constexpr int inputs = 2;
};

template <class K>
constexpr bool has_special = requires {
  &K::scalar;
}
|| requires { &K::treat; };

// K with its wider core in place of the other.
template <class K>
constexpr bool has_wider_core = requires(Native<typename K::Element> x, Flags &f) {
  K::wider_core(x, f);
}
|| requires(Native<typename K::Element> x, Flags &f) { K::wider_core(x, x, f); };
template <class K>
struct Wider : K {
  template <class V>
  QKR_INLINE static auto core(V x, Flags &special) {
    return K::wider_core(x, special);
  }
  template <class V>
  QKR_INLINE static auto core(V x, V y, Flags &special) {
    return K::wider_core(x, y, special);
  }
};
template <class K>
using Widest = std::conditional_t<has_wider_core<K>, Wider<K>, K>;

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
    load_part(v.a + i, count, K::fill, x);
    load_second(v, [&](auto &second) { load_part(v.b + i, count, K::fill, second); });
  }
  // Where the second input is one number for all, v.b points to it.
  template <class Load>
  QKR_INLINE void load_second(const Arrays<T> &v, Load from_vector) {
    if constexpr (requires { K::second_is_number; }) broadcast(*v.b, y);
    else if constexpr (K::inputs == 2) from_vector(y);
  }
  // The results, and the lanes for which they do not count.
  QKR_INLINE auto core(Flags &special) const {
    if constexpr (K::inputs == 2) return core_of(special, x, y);
    else return core_of(special, x);
  }
  template <class... X>
  QKR_INLINE static auto core_of(Flags &special, X... operands) {
    if constexpr (requires { K::core(operands..., special); }) {
      return K::core(operands..., special);
    } else {
      const auto result = K::core(operands...);
      if constexpr (has_special<K>) special = K::special(operands...);
      return result;
    }
  }
};

template <class K>
QKR_INLINE bool any_special(Flags special) {
  if constexpr (has_special<K>) return __builtin_expect(any(special, typename K::Element()), 0);
  else return false;
}

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
  store_first(v.r + i, count, r);
}
template <class T, class V>
QKR_INLINE void store_part(const Arrays<T> &v, ptrdiff_t i, int count, Pair<V> r) {
  store_first(v.r + i, count, r.first);
  store_first(v.q + i, count, r.second);
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
    Flags special{};
    const auto result = Group<K, V>(v, i).core(special);
    if (any_special<K>(special)) break;
    store(v, i, result);
  }
  return i;
}

// The results of a native vector, or of the part that is left at the end, put aside; returns the set of
// special lanes.
template <class K, class T = typename K::Element>
QKR_NOINLINE unsigned vector_aside(ptrdiff_t i, ptrdiff_t count, const T *a, const T *b, T *first,
                                   T *second) {
  using Vector = Group<K, Native<T>>;
  constexpr int length = sizeof(Native<T>) / sizeof(T);
  const Arrays<T> v = {a, b, nullptr, nullptr};
  Flags special{};
  const auto result = (count == length ? Vector(v, i) : Vector(v, i, count)).core(special);
  store(Arrays<T>{nullptr, nullptr, first, second}, 0, result);
  return lane_set(special, T());
}

// Floating-point events that core() raised in lanes which it does not serve. Ordinary lanes raise nothing but
// inexact, or underflow next to zero.
template <class K>
QKR_INLINE unsigned events_so_far() {
  if constexpr (has_special<K> && !requires { K::events_are_right; }) {
    const unsigned now = _mm_getcsr();
    asm volatile("" : : : "memory");  // no operand is loaded, and so nothing computed, before
    return now;
  }
  return 0;
}
template <class K>
QKR_INLINE void forget_events(unsigned before) {
  if constexpr (!requires { K::events_are_right; }) {
    constexpr unsigned all_but_inexact = 0x1F;
    const unsigned now = _mm_getcsr(), new_ones = now & ~before & all_but_inexact;
    if (new_ones) _mm_setcsr(now & ~new_ones);
  }
}

// A native vector or part with special elements: only these go to `alone`, in the order of their index.
template <class K, auto alone, class T = typename K::Element>
QKR_NOINLINE void mixed_vector(ptrdiff_t i, ptrdiff_t count, const T *a, const T *b, T *r, T *q) {
  constexpr int length = sizeof(Native<T>) / sizeof(T);
  T first[length], second[length];
  const unsigned before = _mm_getcsr();
  const unsigned special = vector_aside<Widest<K>>(i, count, a, b, first, second);
  forget_events<K>(before);
  for (int k = 0; k < count; ++k) {
    if (special >> k & 1) {
      alone(i + k, Arrays<T>{a, b, r, q});
    } else {
      r[i + k] = first[k];
      if constexpr (K::results == 2) q[i + k] = second[k];
    }
  }
}

// The elements from i on, fewer than a vector holds.
template <class K, auto alone, class T = typename K::Element>
QKR_NOINLINE void part(ptrdiff_t i, ptrdiff_t n, const T *a, const T *b, T *r, T *q) {
  const Arrays<T> v = {a, b, r, q};
  const unsigned events = events_so_far<K>();
  Flags special{};
  const auto result = Group<K, Native<T>>(v, i, n - i).core(special);
  if constexpr (has_special<K>)
    if (any_special<K>(special)) {
      forget_events<K>(events);
      return mixed_vector<K, alone>(i, n - i, a, b, r, q);
    }
  store_part(v, i, n - i, result);
}

// All elements; special ones by `alone`, which the baseline has compiled.
template <class K, auto alone, class T = typename K::Element>
QKR_NOINLINE void vectors(ptrdiff_t n, const T *a, const T *b, T *r, T *q) {
  using V = Native<T>;
  using Wide = typename SideBySide<V, K::width>::type;
  constexpr ptrdiff_t length = sizeof(V) / sizeof(T), group = length * K::width;
  unsigned events = events_so_far<K>();
  ptrdiff_t i = 0, reach = 0, reached = -1;
  const auto mixed_until = [&](ptrdiff_t end) {
    if constexpr (has_special<K>) {
      forget_events<K>(events);
      if constexpr (has_wider_core<K>) {
        // Such inputs seldom come alone: while they go on, longer stretches are the wider core's.
        reach = i == reached && reach < 64 * group ? 2 * reach : i == reached ? reach : end - i;
        end = i + reach < n ? i + reach : n;
      }
      while (end - i >= length) {
        if constexpr (has_wider_core<K>) {
          const unsigned before = events_so_far<K>();
          i = plain_groups<Wider<K>, V>(i, end, a, b, r, q);
          if (end - i < length) break;
          forget_events<K>(before);
        }
        mixed_vector<K, alone>(i, length, a, b, r, q);
        i += length;
      }
      reached = i;
      events = events_so_far<K>();
    }
  };
  while (n - i >= group) {
    i = plain_groups<K, Wide>(i, n, a, b, r, q);
    if (n - i < group) break;
    mixed_until(i + group);
  }
  while (n - i >= length) {
    if constexpr (K::width > 1) i = plain_groups<K, V>(i, n, a, b, r, q);
    if (n - i < length) break;
    mixed_until(i + length);
  }
  if (i < n) part<K, alone>(i, n, a, b, r, q);
}

template <class K, auto alone, class T = typename K::Element>
QKR_NOINLINE void in_changed_environment(ptrdiff_t n, const T *a, const T *b, T *r, T *q) {
  const Wanted<typename K::Environment> environment;
  vectors<K, alone>(n, a, b, r, q);
}

// The same in the environment that the kernel wants. Every way out is a jump, as in a call for few elements
// each call and return counts.
template <class K, auto alone = nullptr>
QKR_INLINE void run(ptrdiff_t n, Arrays<typename K::Element> v) {
  constexpr ptrdiff_t length = sizeof(Native<typename K::Element>) / sizeof(typename K::Element);
  if (n <= 0) return;
  const typename K::Environment environment;
  if (__builtin_expect(environment.differs(), 0)) in_changed_environment<K, alone>(n, v.a, v.b, v.r, v.q);
  else if (n < length) part<K, alone>(0, n, v.a, v.b, v.r, v.q);
  else vectors<K, alone>(n, v.a, v.b, v.r, v.q);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
