// Transforms of as many lines as a register holds numbers, one line a lane. The passes, their butterflies and
// their twiddles are those of the engine's transform of one line, so the bits are the same whichever way a
// line is taken.
//
// A source and a target are told by the numbers of a line. They take `together` successive ones at a time,
// which is how many a transpose in registers makes:
//   get(j, x)   number j of all lines, and its successors, into x[0], x[1], ...
//   put(j, x)   the same into the target
#pragma once

#include "dft/codelets/circle.h"
#include "sigfft/passes/butterfly.h"
#include "sigfft/plan/decomposition.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Twiddles of the columns k below 2^done of a butterfly of radix 2^bits, by k and the multiple from 1 on. The
// cosine is there for each lane, and the sine with the sign that the product with swapped parts wants; or
// once, for operations that spread a number from memory by themselves.
template <class T, int done, int bits, bool forward, int lanes>
struct LaneTwiddles {
  struct {
    alignas(lanes * sizeof(T)) T c[lanes], s[lanes];
  } at[1 << done][(1 << bits) - 1];
  constexpr LaneTwiddles() : at() {
    for (size_t k = 0; k < size_t{1} << done; ++k)
      for (size_t m = 1; m < size_t{1} << bits; ++m) {
        const dft::CirclePoint<T> w = dft::circle_point<T>(done + bits, m * k);
        for (int i = 0; i < lanes; ++i) {
          at[k][m - 1].c[i] = w.c;
          at[k][m - 1].s[i] = lanes > 1 && i % 2 != forward ? -w.s : w.s;
        }
      }
  }
};
template <class T, int done, int bits, bool forward, int lanes>
constexpr LaneTwiddles<T, done, bits, forward, lanes> lane_twiddles_of;

template <int done, int bits, bool forward, class T, int bytes>
QKR_INLINE Paired<T, bytes> times_twiddle(Paired<T, bytes> x, size_t k, int m) {
  using V = Vector<T, bytes>;
  // Of the longest transforms, tables with all lanes would fill the first cache.
  constexpr int lanes = bytes == 64 || done + bits > 6 ? 1 : bytes / sizeof(T);
  const auto &w = lane_twiddles_of<T, done, bits, forward, lanes>.at[k][m - 1];
  if constexpr (lanes > 1) return {x.v * *(const V *)w.c + x.swapped() * *(const V *)w.s};
  else return times<forward>(x, w.c[0] - V{}, w.s[0] - V{});  // which keeps the sign of a zero
}

// Between passes.
template <class T, int bytes>
struct WorkLanes {
  static constexpr int together = 1;
  static constexpr size_t pitch = bytes / sizeof(T);
  T *base;
  QKR_INLINE void get(size_t j, Paired<T, bytes> *x) const {
    x->v = load_vector<Vector<T, bytes>>(base + j * pitch);
  }
  QKR_INLINE void put(size_t j, const Paired<T, bytes> *x) const { store_vector(base + j * pitch, x->v); }
};

// The pass that has 2^done finished columns in each of its blocks. Sub-transform m of block j is block
// j + m * blocks of the pass before. The numbers that a source gives together are those of successive blocks,
// in the first pass; those that a target takes, of successive columns, in the last.
template <int order, int done, int bits, bool forward, class C, class In, class Out>
QKR_INLINE void lane_pass(In in, Out out) {
  constexpr int radix = 1 << bits, together = In::together * Out::together;
  constexpr size_t columns = size_t{1} << done, blocks = (size_t{1} << order) / columns / radix;
  const auto step = [=](size_t j, size_t k) QKR_LAMBDA {
    C x[radix][together], y[radix][together];
#pragma GCC unroll 8
    for (int m = 0; m < radix; ++m)
#pragma GCC unroll 4
      for (int i = 0; i < together; i += In::together) in.get((j + m * blocks) * columns + k + i, x[m] + i);
#pragma GCC unroll 4
    for (int i = 0; i < together; ++i)
      butterfly<radix, forward>(
          [&](int m) QKR_LAMBDA {
            if (done == 0 || m == 0) return x[m][i];
            return times_twiddle<done, bits, forward>(x[m][i], k + i, m);
          },
          [&](int q, auto value) QKR_LAMBDA { y[q][i] = value; });
#pragma GCC unroll 8
    for (int q = 0; q < radix; ++q)
#pragma GCC unroll 4
      for (int i = 0; i < together; i += Out::together)
        out.put((j + (done ? 0 : i)) * columns * radix + q * columns + k, y[q] + i);
  };
  if constexpr (order == 4) {
#pragma GCC unroll 4
    for (size_t k = 0; k < columns; k += Out::together)
#pragma GCC unroll 4
      for (size_t j = 0; j < blocks; j += In::together) step(j, k);
  } else {
    for (size_t k = 0; k < columns; k += Out::together)
      for (size_t j = 0; j < blocks; j += In::together) step(j, k);
  }
}

template <int order, int pass, int done, bool forward, class C, class In, class Out, class Work>
QKR_INLINE void lane_passes(In in, Out out, Work here, Work there) {
  constexpr sigfft::Passes passes = sigfft::staged_passes<typename C::Element>(order);
  constexpr int bits = passes.bits[pass];
  if constexpr (pass + 1 == passes.count) {
    lane_pass<order, done, bits, forward, C>(in, out);
  } else {
    lane_pass<order, done, bits, forward, C>(in, here);
    lane_passes<order, pass + 1, done + bits, forward, C>(here, out, there, here);
  }
}

// 2^order numbers of each line, in registers of type C. The target may be where the source is.
template <int order, bool forward, class C, class In, class Out>
QKR_INLINE void lane_transform(In in, Out out) {
  if constexpr (order <= sigfft::largest_fixed_order) {
    constexpr int length = 1 << order;
    C x[length], y[length];
#pragma GCC unroll 8
    for (int j = 0; j < length; j += In::together) in.get(j, x + j);
    if constexpr (order == 0) y[0] = x[0];
    else if constexpr (order == 1) y[0] = x[0] + x[1], y[1] = x[0] - x[1];
    else
      butterfly<length, forward>([&](int m) QKR_LAMBDA { return x[m]; },
                                 [&](int q, auto value) QKR_LAMBDA { y[q] = value; });
#pragma GCC unroll 8
    for (int j = 0; j < length; j += Out::together) out.put(j, y + j);
  } else {
    using T = typename C::Element;
    constexpr int bytes = sizeof(C);
    alignas(64) T here[bytes / sizeof(T) << order], there[bytes / sizeof(T) << order];
    using Work = WorkLanes<T, bytes>;
    lane_passes<order, 0, 0, forward, C>(in, out, Work{here}, Work{there});
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
