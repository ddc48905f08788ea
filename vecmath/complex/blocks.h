// The frame of a complex function. Elements are worked on block by block, in arrays of doubles for their
// parts, which one function over vectors fills with results: it serves both precisions, and every function
// that differs from another only by a rotation of z or of the result. What it marks as special the scalar
// routine does one by one, also in the arrays, so that its results take the same way out.
//
// A kernel K is a struct of
//   width                          how many native vectors go side by side
//   core(x, y) or core(x, y, u, v) the parts of the result, as a Pair, for any vector; with the parts of a
//                                  second operand
//   special(x, y, re, im)          Flags: lanes for which core's result does not count; a native vector
//   scalar(x, y) or scalar(x, y, u, v)
//   raises_events                  whether core may raise events that are not those of the results; nothing
//                                  but inexact stays of them
#pragma once

#include "vecmath/complex/interleave.h"
#include "vecmath/frame/environment.h"
#include "vecmath/frame/groups.h"
#include "vecmath/frame/sign.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The parts of a block's elements, of the second operand, of the results; element i is marked special in bit
// i.
struct Block {
  static constexpr int capacity = 128, words = capacity / 64;
  alignas(64) double x[capacity], y[capacity], u[capacity], v[capacity], re[capacity], im[capacity];
  uint64_t special[words];
};

QKR_INLINE f64 flip(f64 x) { return real(bits(x) ^ ((u64)(x == x) & sign_bit<double>)); }  // a NaN stays

// How a function follows from the kernel: what is done to z, and to the result.
struct Plain {
  QKR_INLINE static void turn(f64 &, f64 &) {}
  QKR_INLINE static void turn_back(f64, f64, f64 &, f64 &) {}
};
struct OfRotated : Plain {  // f(i z)
  QKR_INLINE static void turn(f64 &x, f64 &y) {
    const f64 old = x;
    x = flip(y), y = old;
  }
};
struct Rotated : OfRotated {  // -i f(i z)
  QKR_INLINE static void turn_back(f64, f64, f64 &re, f64 &im) {
    const f64 old = re;
    re = im, im = flip(old);
  }
};
struct RightHalf : Plain {  // i f(z) or -i f(z), whichever has a positive real part
  QKR_INLINE static void turn_back(f64, f64 y, f64 &re, f64 &im) {
    const f64 old = re;
    re = absolute<double>(im), im = with_sign_of<double>(y, absolute<double>(old));
  }
};

// f(i, number) for each vector of elements from i on, the last of which may have fewer.
template <class F>
QKR_INLINE void each_vector(int count, F f) {
  int i = 0;
  for (; i + lanes <= count; i += lanes) f(i, lanes);
  if (i < count) f(i, count - i);
}

template <class Turn, class T>
QKR_INLINE void take_block(const T *z, int count, double *x, double *y) {
  each_vector(count, [&](int i, int number) QKR_LAMBDA {
    T rest[lanes];
    if (number < lanes) {
      for (int k = 0; k < lanes; ++k) rest[k] = k < number ? z[i + k] : T{1, 1};
    }
    f64 re, im;
    take(number < lanes ? rest : z + i, re, im);
    Turn::turn(re, im);
    store(x + i, re);
    store(y + i, im);
  });
}

template <class Turn, class T>
QKR_INLINE void give_block(const Block &block, int count, T *r) {
  each_vector(count, [&](int i, int number) QKR_LAMBDA {
    f64 x, y, re, im;
    load(block.x + i, x);
    load(block.y + i, y);
    load(block.re + i, re);
    load(block.im + i, im);
    Turn::turn_back(x, y, re, im);
    if (number == lanes) return give(r + i, re, im);
    T rest[lanes];
    give(rest, re, im);
    for (int k = 0; k < number; ++k) r[i + k] = rest[k];
  });
}

template <class K>
constexpr bool takes_two = requires(double x) {
  K::scalar(x, x, x, x);
};

// The set of special lanes.
template <class K>
QKR_INLINE uint64_t special_lanes(f64 x, f64 y, f64 re, f64 im) {
  return lane_set(K::special(x, y, re, im), double());
}
template <class K, class V>
QKR_INLINE uint64_t special_lanes(Two<V> x, Two<V> y, Two<V> re, Two<V> im) {
  return special_lanes<K>(x.a, y.a, re.a, im.a) | special_lanes<K>(x.b, y.b, re.b, im.b) << (sizeof(V) / 8);
}

// Whole groups of a block, as many as hold `count` elements; returns whether there are special ones. Not
// inlined, and free of calls.
template <class K>
QKR_NOINLINE bool work_on_block(Block &block, int count) {
  using V = typename SideBySide<f64, K::width>::type;
  constexpr int group = lanes * K::width;
  uint64_t any = 0;
  for (uint64_t &word : block.special) word = 0;
  for (int i = 0; i < count; i += group) {
    V x, y;
    load(block.x + i, x);
    load(block.y + i, y);
    Pair<V> result;
    if constexpr (takes_two<K>) {
      V u, v;
      load(block.u + i, u);
      load(block.v + i, v);
      result = K::core(x, y, u, v);
    } else {
      result = K::core(x, y);
    }
    store(block.re + i, result.first);
    store(block.im + i, result.second);
    const uint64_t special = special_lanes<K>(x, y, result.first, result.second);
    block.special[i / 64] |= special << (i & 63);
    any |= special;
  }
  return any;
}

template <class K>
QKR_NOINLINE void work_on_special(Block &block) {
  for (int w = 0; w < Block::words; ++w)
    for (uint64_t rest = block.special[w]; rest; rest &= rest - 1) {
      const int i = 64 * w + __builtin_ctzll(rest);
      const vxm64fc z = [&] {
        if constexpr (takes_two<K>) return K::scalar(block.x[i], block.y[i], block.u[i], block.v[i]);
        else return K::scalar(block.x[i], block.y[i]);
      }();
      block.re[i] = z.re, block.im[i] = z.im;
    }
}

// The numbers behind the last element, up to whole groups, are ordinary.
template <class K>
QKR_INLINE void fill_group(Block &block, int count) {
  constexpr int group = lanes * K::width;
  for (int i = (count + lanes - 1) / lanes * lanes; i % group; ++i)
    block.x[i] = block.y[i] = block.u[i] = block.v[i] = 1;
}

// b is the second operand, or one for all where `b_is_number`, or null.
template <class K, class Turn, bool b_is_number = false, class T>
QKR_INLINE void run_complex(int32_t n, const T *a, const T *b, T *r) {
  if (n <= 0) return;
  const Wanted<WithSse<X87Extended> > environment;
  unsigned events = _mm_getcsr();
  Block block;
  if constexpr (b_is_number) {
    for (int i = 0; i < Block::capacity; ++i) block.u[i] = b->re, block.v[i] = b->im;
  }
  for (ptrdiff_t i = 0; i < n; i += Block::capacity) {
    const int count = n - i < Block::capacity ? (int)(n - i) : Block::capacity;
    take_block<Turn>(a + i, count, block.x, block.y);
    if constexpr (takes_two<K> && !b_is_number) take_block<Plain>(b + i, count, block.u, block.v);
    fill_group<K>(block, count);
    const bool any_special = work_on_block<K>(block, count);
    if (K::raises_events || any_special) forget_events<K>(events);
    if (any_special) work_on_special<K>(block);
    give_block<Turn>(block, count, r + i);
    if (K::raises_events || any_special) events = _mm_getcsr();
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
