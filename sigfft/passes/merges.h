// Two or four transforms of blocks that lie one behind the other become one, by radix 2.
#pragma once

#include "sigfft/passes/butterfly.h"
#include "sigfft/passes/group_twiddles.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Columns k of two transforms and k + half of them, whose twiddle is that of k, turned.
template <bool forward, class C>
QKR_INLINE void merge(C a, C b, C c, C d, C w, C *sums) {
  c = times<forward>(c, w.re, w.im), d = times<forward>(d, w.re, w.im);
  sums[0] = a + c, sums[1] = plus_turned<forward>(b, d);
  sums[2] = a - c, sums[3] = minus_turned<forward>(b, d);
}
template <bool forward, class Data, class T>
QKR_NOINLINE void merge_two(Data data, size_t length, GroupTwiddles<T, 2> twiddles) {
  constexpr int bytes = QKR_SIMD_BYTES;
  const size_t half = length / 2;
  for (size_t k = 0; k < half; k += bytes / sizeof(T)) {
    const auto at = [&](int m) QKR_LAMBDA { return data.template parts<bytes>(k + m * half); };
    PartVectors<T, bytes> sums[4];
    merge<forward>(at(0), at(1), at(2), at(3), twiddles.template at<bytes>(k, 1), sums);
#pragma GCC unroll 4
    for (int m = 0; m < 4; ++m) data.set_parts(k + m * half, sums[m]);
  }
}
// And four, by two merges. The first has every second twiddle of the last.
template <bool forward, class Data, class T>
QKR_NOINLINE void merge_four(Data data, size_t length, GroupTwiddles<T, 2> twiddles) {
  constexpr int bytes = QKR_SIMD_BYTES, lanes = bytes / (int)sizeof(T);
  using Lanes = std::make_integer_sequence<int, lanes>;
  using C = PartVectors<T, bytes>;
  const size_t half = length / 2;
  for (size_t k = 0; k < half; k += lanes) {
    const auto at = [&](int m) QKR_LAMBDA { return data.template parts<bytes>(k + m * half); };
    const C low = twiddles.template at<bytes>(2 * k, 1), high = twiddles.template at<bytes>(2 * k + lanes, 1);
    const C second = {deinterleaved<T>(low.re, high.re, Lanes()).re,
                      deinterleaved<T>(low.im, high.im, Lanes()).re};
    C e[4], f[4], sums[4];
    merge<forward>(at(0), at(1), at(2), at(3), second, e);
    merge<forward>(at(4), at(5), at(6), at(7), second, f);
#pragma GCC unroll 2
    for (int c = 0; c < 2; ++c) {
      merge<forward>(e[c], e[c + 2], f[c], f[c + 2], twiddles.template at<bytes>(k + c * half, 1), sums);
#pragma GCC unroll 4
      for (int m = 0; m < 4; ++m) data.set_parts(k + (2 * m + c) * half, sums[m]);
    }
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
