// The stages of the factors route (J. W. Cooley and J. W. Tukey, Mathematics of Computation 19 (1965) 297):
// short transforms of strided numbers, then stages that combine f transforms of r points to one of f r.
#pragma once

#include "sigfft/any_length/passes/points.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using sigfft::AnyLengthPlan, sigfft::Stage, sigfft::small_circle, sigfft::long_stage;

// Every column of `blocks` blocks: the twiddles are loaded once for all blocks.
template <bool forward, int points, class In, class Out, class T>
QKR_NOINLINE void combine(Factor<points> factor, In in, Out out, const Stage<T> &stage, size_t blocks) {
  const size_t rest = (size_t)stage.rest;
  const auto circle = small_circle<T>(stage.circle, points);
  const T *const table = stage.twiddles;
  each_column<T>(0, rest, [=](auto width, size_t k) QKR_LAMBDA {
    constexpr int bytes = decltype(width)::value;
    const ColumnTwiddles<T> twiddles(table, points, k);
    decltype(twiddles.template turns_of<bytes>(1)) w[points];
#pragma GCC unroll 16
    for (int m = 1; m < points; ++m) w[m] = twiddles.template turns_of<bytes>(m);
    for (size_t b = 0; b < blocks; ++b) {
      const size_t place = b * points * rest + k;
      const auto get = [&](int m) QKR_LAMBDA {
        const auto x = columns<bytes>(in, place + m * rest);
        return m ? times<forward>(x, w[m]) : x;
      };
      transform_points<forward>(
          factor, get, [&](int q, auto x) QKR_LAMBDA { set_columns<bytes>(out, place + q * rest, x); },
          circle);
    }
  });
}

template <bool forward, class In, class Out, class T>
QKR_NOINLINE void combine(AnyFactor factor, In in, Out out, const Stage<T> &stage, size_t blocks) {
  const size_t rest = (size_t)stage.rest, points = (size_t)factor.value;
  const auto circle = small_circle<T>(stage.circle, factor.value);
  const T *const table = stage.twiddles;
  for (size_t b = 0; b < blocks; ++b)
    each_column<T>(0, rest, [=](auto width, size_t k) QKR_LAMBDA {
      constexpr int bytes = decltype(width)::value;
      const ColumnTwiddles<T> twiddles(table, points, k);
      const size_t place = b * points * rest + k;
      const auto get = [&](int m) QKR_LAMBDA {
        const auto x = columns<bytes>(in, place + m * rest);
        return m ? times<forward>(x, twiddles.template turns_of<bytes>(m)) : x;
      };
      transform_points<forward>(
          factor, get, [&](int q, auto x) QKR_LAMBDA { set_columns<bytes>(out, place + q * rest, x); },
          circle);
    });
}

// Stages from the last down to `level`, so that what is worked on together stays in the cache; but for
// `level` itself, which the caller runs. combine(stage, area, blocks) runs one.
template <class T, class Area, class Combine>
QKR_INLINE void stages_above(const AnyLengthPlan<T> *plan, int level, Area area, Combine combine);

template <class T, class Area, class Combine>
void subtransform(const AnyLengthPlan<T> *plan, int level, Area area, Combine combine) {
  stages_above(plan, level, area, combine);
  combine(plan->stage[level], area, 1);
}
template <class T, class Area, class Combine>
QKR_INLINE void stages_above(const AnyLengthPlan<T> *plan, int level, Area area, Combine combine) {
  const Stage<T> &stage = plan->stage[level];
  const int last = plan->stages - 1;
  if (level < last && (int64_t)stage.factor * stage.rest >= long_stage) {
    for (int i = 0; i < stage.factor; ++i)
      subtransform(plan, level + 1, area + (size_t)i * stage.rest, combine);
  } else {
    for (int i = last; i > level; --i) combine(plan->stage[i], area, (size_t)plan->stage[i].count);
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
