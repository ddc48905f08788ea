// The factors route that leaves the spectrum in the order of its stages, and back from that order (W. M.
// Gentleman and G. Sande, Fall Joint Computer Conference 29 (1966) 563): no number moves to another place but
// by the butterflies, and all columns of a block have the same twiddles.
#include "sigfft/any_length/passes/stages.h"
#include "sigfft/any_length/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class V, class T, int... i>
QKR_INLINE V alternating(T even, T odd, std::integer_sequence<int, i...>) {
  return V{(i % 2 ? odd : even)...};
}
// The number at p in all columns.
template <int bytes, class T>
QKR_INLINE Columns<T, bytes> repeated(const T *p) {
  using V = typename Columns<T, bytes>::V;
  return {alternating<V>(p[0], p[1], std::make_integer_sequence<int, sizeof(V) / sizeof(T)>())};
}

// Numbers `step` apart: gathered to columns, and back.
template <int bytes, class T>
QKR_INLINE Columns<T, bytes> gathered(const T *p, size_t step) {
  Columns<T, bytes> x = {};
#pragma GCC unroll 8
  for (size_t i = 0; i < columns_together<T, bytes>; ++i)
    x.v[2 * i] = p[2 * i * step], x.v[2 * i + 1] = p[2 * i * step + 1];
  return x;
}
template <int bytes, class T>
QKR_INLINE void scatter(T *p, size_t step, Columns<T, bytes> x) {
#pragma GCC unroll 8
  for (size_t i = 0; i < columns_together<T, bytes>; ++i)
    p[2 * i * step] = x.v[2 * i], p[2 * i * step + 1] = x.v[2 * i + 1];
}

// A butterfly with the products by the twiddles on the side of the signal.
template <bool forward, class F, class Twiddle, class Get, class Put, class T>
QKR_INLINE void turned_butterfly(F factor, Twiddle twiddle, Get get, Put put, SmallCircle<T> circle) {
  const auto turned = [&](int m, auto x) QKR_LAMBDA { return m ? times_pairs<forward>(x, twiddle(m)) : x; };
  if constexpr (forward)
    transform_points<true>(
        factor, [&](int m) QKR_LAMBDA { return turned(m, get(m)); }, put, circle);
  else
    transform_points<false>(
        factor, get, [&](int m, auto x) QKR_LAMBDA { put(m, turned(m, x)); }, circle);
}

// Blocks first to first + count - 1 of one stage, each of `stride` columns; where that is 1, the blocks are
// the columns.
template <bool forward, class F, class T>
QKR_NOINLINE void run_blocks(F factor, Interleaved<const T> in, Interleaved<T> out, const Stage<T> &stage,
                             size_t first, size_t count) {
  const size_t points = (size_t)factor.value, stride = (size_t)stage.stride;
  const auto circle = small_circle<T>(stage.circle, factor.value);
  const T *const table = stage.twiddles;
  const auto row = [=](size_t b) QKR_LAMBDA { return table + 2 * b * (points - 1); };
  if (stride == 1)
    return each_column<T>(first, first + count, [=](auto width, size_t b) QKR_LAMBDA {
      constexpr int bytes = decltype(width)::value;
      const T *const from = in.p + 2 * b * points;
      T *const to = out.p + 2 * b * points;
      turned_butterfly<forward>(
          factor, [&](int m) QKR_LAMBDA { return gathered<bytes>(row(b) + 2 * (m - 1), points - 1); },
          [&](int m) QKR_LAMBDA { return gathered<bytes>(from + 2 * m, points); },
          [&](int m, auto x) QKR_LAMBDA { scatter<bytes>(to + 2 * m, points, x); }, circle);
    });
  for (size_t b = first; b < first + count; ++b)
    each_column<T>(0, stride, [=](auto width, size_t k) QKR_LAMBDA {
      constexpr int bytes = decltype(width)::value;
      const size_t place = b * points * stride + k;
      turned_butterfly<forward>(
          factor, [&](int m) QKR_LAMBDA { return repeated<bytes>(row(b) + 2 * (m - 1)); },
          [&](int m) QKR_LAMBDA { return columns<bytes>(in, place + m * stride); },
          [&](int m, auto x) QKR_LAMBDA { set_columns<bytes>(out, place + m * stride, x); }, circle);
    });
}

// Block `block` of a stage and all that comes of it, so that this stays in the cache.
template <bool forward, class T>
void block_of_stages(const AnyLengthPlan<T> *plan, int level, size_t block, Interleaved<const T> in,
                     Interleaved<T> out) {
  const auto run = [&](int i, size_t first, size_t count) {
    const Stage<T> &stage = plan->stage[i];
    const Interleaved<const T> from = forward || i ? Interleaved<const T>{out.p} : in;
    with_factor(stage.factor,
                [&](auto factor) QKR_LAMBDA { run_blocks<forward>(factor, from, out, stage, first, count); });
  };
  const Stage<T> &stage = plan->stage[level];
  const auto below = [&] {
    if (stage.stride >= long_stage && level > 1) {
      for (size_t q = 0; q < (size_t)stage.factor; ++q)
        block_of_stages<forward>(plan, level - 1, block * stage.factor + q, in, out);
      return;
    }
    for (int i = 0; i < level; ++i) {
      const int lower = forward ? level - 1 - i : i;
      const size_t count = (size_t)stage.factor * stage.stride /
                           ((size_t)plan->stage[lower].factor * plan->stage[lower].stride);
      run(lower, block * count, count);
    }
  };
  if (!forward) below();
  run(level, block, 1);
  if (forward) below();
}

template <bool forward, class T>
QKR_INLINE void ends(const AnyLengthPlan<T> *plan, Interleaved<const T> in, Interleaved<T> out) {
  const Stage<T> &last = plan->stage[plan->stages];
  const size_t count = (size_t)(plan->length / last.factor);
  with_factor(last.factor, [&](auto factor) QKR_LAMBDA {
    const auto circle = small_circle<T>(last.circle, factor.value);
    each_column<T>(0, count, [&](auto width, size_t k) QKR_LAMBDA {
      constexpr int bytes = decltype(width)::value;
      transform_points<forward>(
          factor, [&](int m) QKR_LAMBDA { return columns<bytes>(in, k + m * count); },
          [&](int q, auto x) QKR_LAMBDA { set_columns<bytes>(out, k + q * count, x); }, circle);
    });
  });
}

template <bool forward, class T>
QKR_INLINE void transform(const AnyLengthPlan<T> *plan, const T *src, T *dst) {
  const Interleaved<T> out = {dst};
  if (forward) ends<forward>(plan, Interleaved<const T>{src}, out);
  for (int32_t b = 0; b < plan->last_factor(); ++b)
    block_of_stages<forward>(plan, plan->stages - 1, (size_t)b, Interleaved<const T>{src}, out);
  if (!forward) ends<forward>(plan, Interleaved<const T>{dst}, out);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_OUT_OF_ORDER(direction, forward, T, suffix)                                            \
  QKR_ENTRY(zprs_outOfOrder##direction##_##suffix##c,                                              \
            (const qkr::sigfft::AnyLengthPlan<T> *plan, const T *src, T *dst), (plan, src, dst)) { \
    transform<forward>(plan, src, dst);                                                            \
  }
QKR_OUT_OF_ORDER(Fwd, true, double, 64f)
QKR_OUT_OF_ORDER(Inv, false, double, 64f)
QKR_OUT_OF_ORDER(Fwd, true, float, 32f)
QKR_OUT_OF_ORDER(Inv, false, float, 32f)
