// Normalisation: every number of an array times one factor.
#pragma once

#include "sigfft/passes/views.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T>
QKR_NOINLINE void multiply(T *data, size_t count, T factor) {
  using V = Vector<T, QKR_SIMD_BYTES>;
  constexpr size_t length = sizeof(V) / sizeof(T);
  size_t i = 0;
  for (; i + length <= count; i += length) store_vector(data + i, load_vector<V>(data + i) * factor);
  for (; i < count; ++i) data[i] *= factor;
}

template <class T>
QKR_INLINE void normalise(Interleaved<T> data, size_t n, T factor) {
  multiply(data.p, 2 * n, factor);
}
template <class T>
QKR_INLINE void normalise(Split<T> data, size_t n, T factor) {
  multiply(data.re, n, factor);
  multiply(data.im, n, factor);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
