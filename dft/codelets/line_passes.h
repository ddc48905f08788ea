// The complex transform of one line whose length the compiler knows. Up to 8 numbers stand in a register
// each; more go through two passes or three, as many neighbours in a register as it holds. Passes,
// butterflies and twiddles are the engine's, and so the bits are.
#pragma once

#include "dft/codelets/circle.h"
#include "sigfft/passes/butterfly.h"
#include "sigfft/plan/decomposition.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using sigfft::largest_fixed_order;

constexpr int wide = QKR_SIMD_BYTES == 16 ? 16 : 32;
template <class T>
constexpr int neighbours = wide / 2 / sizeof(T);

// One number; neighbours; and neighbours that part.
template <class T>
QKR_INLINE Paired<T, 16> number(const T *p) {
  if constexpr (sizeof(T) == 8) {
    return {load_vector<Vector<T, 16>>(p)};
  } else {
    double both;
    __builtin_memcpy(&both, p, sizeof both);
    return {(Vector<T, 16>)Vector<double, 16>{both, 0}};
  }
}
template <class T>
QKR_INLINE void set_number(T *p, Paired<T, 16> x) {
  __builtin_memcpy(p, &x.v, 2 * sizeof(T));
}
template <class T>
QKR_INLINE Paired<T, wide> numbers(const T *p) {
  return {load_vector<Vector<T, wide>>(p)};
}
template <class T>
QKR_INLINE void set_numbers(T *p, Paired<T, wide> x) {
  store_vector(p, x.v);
}
template <class T>
QKR_INLINE void set_apart(T *p, ptrdiff_t distance, Paired<T, wide> x) {
#pragma GCC unroll 4
  for (int i = 0; i < neighbours<T>; ++i)
    __builtin_memcpy(p + i * distance, (const T *)&x.v + 2 * i, 2 * sizeof(T));
}

// Twiddles of the columns below 2^done of a butterfly of radix 2^bits, by the multiple; each twice, for the
// real and the imaginary part.
template <class T, int done, int bits>
struct Twiddles {
  alignas(wide) T c[1 << bits][2 << done], s[1 << bits][2 << done];
  constexpr Twiddles() : c(), s() {
    for (size_t m = 1; m < size_t{1} << bits; ++m)
      for (size_t k = 0; k < size_t{2} << done; ++k) {
        const dft::CirclePoint<T> w = dft::circle_point<T>(done + bits, m * (k / 2));
        c[m][k] = w.c, s[m][k] = w.s;
      }
  }
};
template <class T, int done, int bits>
constexpr Twiddles<T, done, bits> twiddles_of;

// The first pass, from numbers j, j + blocks, ... to block j, for neighbouring j.
template <int order, int bits, bool forward, class T>
QKR_INLINE void first_pass(const T *in, T *out) {
  constexpr int radix = 1 << bits, blocks = (1 << order) / radix;
#pragma GCC unroll 4
  for (int j = 0; j < blocks; j += neighbours<T>)
    butterfly<radix, forward>([&](int m) QKR_LAMBDA { return numbers(in + 2 * (j + m * blocks)); },
                              [&](int q, auto value)
                                  QKR_LAMBDA { set_apart(out + 2 * (j * radix + q), 2 * radix, value); });
}

// The pass that has 2^done finished columns in each of its blocks. Sub-transform m of block j is block
// j + m * blocks of the pass before.
template <int order, int done, int bits, bool forward, class T>
QKR_INLINE void next_pass(const T *in, T *out) {
  constexpr int radix = 1 << bits, columns = 1 << done, blocks = (1 << order) / columns / radix;
  constexpr const Twiddles<T, done, bits> &w = twiddles_of<T, done, bits>;
  for (int j = 0; j < blocks; ++j)
#pragma GCC unroll 4
    for (int k = 0; k < columns; k += neighbours<T>)
      butterfly<radix, forward>(
          [&](int m) QKR_LAMBDA {
            const auto x = numbers(in + 2 * ((j + m * blocks) * columns + k));
            if (m == 0) return x;
            using V = Vector<T, wide>;
            return times<forward>(x, *(const V *)(w.c[m] + 2 * k), *(const V *)(w.s[m] + 2 * k));
          },
          [&](int q, auto value)
              QKR_LAMBDA { set_numbers(out + 2 * ((j * radix + q) * columns + k), value); });
}

template <int order, int pass, int done, bool forward, class T>
QKR_INLINE void next_passes(const T *in, T *out, T *other) {
  constexpr sigfft::Passes passes = sigfft::staged_passes<T>(order);
  constexpr int bits = passes.bits[pass];
  if constexpr (pass + 1 == passes.count) {
    next_pass<order, done, bits, forward>(in, out);
  } else {
    next_pass<order, done, bits, forward>(in, other);
    next_passes<order, pass + 1, done + bits, forward>(other, out, (T *)in);
  }
}

// `in` may be `out`.
template <int order, bool forward, class T>
QKR_INLINE void transform(const T *in, T *out) {
  if constexpr (order == 1) {
    const auto a = number(in), b = number(in + 2);
    set_number(out, a + b), set_number(out + 2, a - b);
  } else if constexpr (order <= largest_fixed_order) {
    butterfly<1 << order, forward>([&](int m) QKR_LAMBDA { return number(in + 2 * m); },
                                   [&](int q, auto value) QKR_LAMBDA { set_number(out + 2 * q, value); });
  } else {
    alignas(64) T here[2 << order], there[2 << order];
    constexpr int bits = sigfft::staged_passes<T>(order).bits[0];
    first_pass<order, bits, forward>(in, here);
    next_passes<order, 1, bits, forward>(here, out, there);
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
