// The stages of the factors route (J. W. Cooley and J. W. Tukey, Mathematics of Computation 19 (1965) 297):
// short transforms of strided numbers, then stages that combine f transforms of r points to one of f r.
#pragma once

#include "sigfft/any_length/passes/points.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using sigfft::AnyLengthPlan, sigfft::Stage, sigfft::small_circle, sigfft::long_stage;

// Every column of one block. The factor is a Factor or any other.
template <bool forward, class F, class In, class Out, class T>
QKR_NOINLINE void combine_block(F factor, In in, Out out, const Stage<T> &stage) {
  const size_t rest = (size_t)stage.rest;
  const auto circle = small_circle<T>(stage.circle, factor.value);
  const T *const table = stage.twiddles;
  each_column<T>(0, rest, [=](auto width, size_t k) QKR_LAMBDA {
    constexpr int bytes = decltype(width)::value;
    const ColumnTwiddles<T> twiddles(table, (size_t)factor.value, k);
    const auto get = [&](int m) QKR_LAMBDA {
      const auto x = columns<bytes>(in, k + m * rest);
      return m ? times<forward>(x, twiddles.template turns_of<bytes>(m)) : x;
    };
    transform_points<forward>(
        factor, get, [&](int q, auto x) QKR_LAMBDA { set_columns<bytes>(out, k + q * rest, x); }, circle);
  });
}

// Every column of `blocks` blocks: the twiddles are loaded once for all blocks.
template <bool forward, int points, class T>
QKR_NOINLINE void combine_blocks(Factor<points> factor, Interleaved<T> area, const Stage<T> &stage,
                                 size_t blocks) {
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
        const auto x = columns<bytes>(area, place + m * rest);
        return m ? times<forward>(x, w[m]) : x;
      };
      transform_points<forward>(
          factor, get, [&](int q, auto x) QKR_LAMBDA { set_columns<bytes>(area, place + q * rest, x); },
          circle);
    }
  });
}

// A stage of each half and then the stage of factor 2: the numbers pass through memory once instead of twice.
template <bool forward, int points, class In, class Out, class T>
QKR_NOINLINE void combine_halves(Factor<points> factor, In in, Out out, const Stage<T> &stage,
                                 const Stage<T> &last) {
  const size_t rest = (size_t)stage.rest;
  const T *const table = stage.twiddles, *const last_table = last.twiddles;
  each_column<T>(0, rest, [=](auto width, size_t k) QKR_LAMBDA {
    constexpr int bytes = decltype(width)::value;
    const ColumnTwiddles<T> twiddles(table, points, k);
    Columns<T, bytes> y[2][points];
#pragma GCC unroll 2
    for (int half = 0; half < 2; ++half) {
      const auto get = [&](int m) QKR_LAMBDA {
        const auto x = columns<bytes>(in, (half * points + m) * rest + k);
        return m ? times<forward>(x, twiddles.template turns_of<bytes>(m)) : x;
      };
      transform_points<forward>(
          factor, get, [&](int q, auto x) QKR_LAMBDA { y[half][q] = x; }, SmallCircle<T>{});
    }
#pragma GCC unroll 16
    for (int q = 0; q < points; ++q) {
      const size_t place = k + q * rest;
      const ColumnTwiddles<T> twiddle(last_table, 2, place);
      const auto odd = times<forward>(y[1][q], twiddle.template turns_of<bytes>(1));
      set_columns<bytes>(out, place, y[0][q] + odd);
      set_columns<bytes>(out, place + points * rest, y[0][q] - odd);
    }
  });
}

template <bool forward, class T>
QKR_INLINE void combine_blocks(AnyFactor factor, Interleaved<T> area, const Stage<T> &stage, size_t blocks) {
  for (size_t b = 0; b < blocks; ++b) {
    const Interleaved<T> block = area + b * (size_t)(factor.value * stage.rest);
    combine_block<forward>(factor, block, block, stage);
  }
}

// Stages from the last down to `level`, so that what is worked on together stays in the cache; but for the
// `kept` stages from `level` on, which the caller runs. combine(stage, area, blocks) runs one.
template <class T, class Area, class Combine>
QKR_INLINE void stages_above(const AnyLengthPlan<T> *plan, int level, Area area, Combine combine,
                             int kept = 1);

template <class T, class Area, class Combine>
void subtransform(const AnyLengthPlan<T> *plan, int level, Area area, Combine combine, bool whole) {
  stages_above(plan, level, area, combine);
  if (whole) combine(plan->stage[level], area, 1);
}
template <class T, class Area, class Combine>
QKR_INLINE void stages_above(const AnyLengthPlan<T> *plan, int level, Area area, Combine combine, int kept) {
  const Stage<T> &stage = plan->stage[level];
  const int last = plan->stages - 1;
  if (level < last && (int64_t)stage.factor * stage.rest >= long_stage) {
    for (int i = 0; i < stage.factor; ++i)
      subtransform(plan, level + 1, area + (size_t)i * stage.rest, combine, kept == 1);
  } else {
    for (int i = last; i >= level + kept; --i) combine(plan->stage[i], area, (size_t)plan->stage[i].count);
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
