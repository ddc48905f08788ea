// Factors of the recombination of real transforms whose length the compiler knows.
#pragma once

#include "dft/codelets/circle.h"
#include "simd/vectors.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// What the difference of X[k] and the conjugate of X[n/2 - k] is multiplied by, from k = 1 on; each twice.
template <class T, bool forward, int order>
struct Recombination {
  T first[1 << (order - 1)], second[1 << (order - 1)];
  constexpr Recombination() : first(), second() {
    for (size_t i = 0; i < size_t{1} << (order - 1); ++i) {
      const dft::CirclePoint<T> w = dft::circle_point<T>(order, i / 2 + 1);  // with the sine negated
      first[i] = forward ? T(0.5) * w.c : w.c, second[i] = forward ? T(0.5) + T(0.5) * w.s : w.s;
    }
  }
};
template <class T, bool forward, int order>
constexpr Recombination<T, forward, order> recombination_of;

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
