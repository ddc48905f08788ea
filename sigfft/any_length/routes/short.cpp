// Lengths that callers use most among the short ones: the steps of the factors route, and so its bits, in
// straight lines of code.
#include "sigfft/any_length/routes/short.h"

#include "sigfft/any_length/passes/first_stage.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// As each_column, for places that the compiler knows.
template <class T, size_t first, size_t end, int bytes, class Body>
QKR_INLINE void every_column(Body body) {
  constexpr size_t together = columns_together<T, bytes>;
  if constexpr (first + together <= end) {
    body(Width<bytes>(), first);
    every_column<T, first + together, end, bytes>(body);
  } else if constexpr (together > 1) {
    every_column<T, first, end, bytes / 2>(body);
  }
}

// Two numbers: what the first transforms store at once, and a load must not take from two stores.
template <class T>
constexpr int two_numbers = QKR_BASELINE ? 16 : 4 * sizeof(T);

template <bool forward, int factor, int rest, int blocks, class T>
QKR_INLINE void combine_short(Interleaved<T> in, Interleaved<T> out, const T *table) {
  every_column<T, 0, rest, two_numbers<T>>([=](auto width, size_t k) QKR_LAMBDA {
    constexpr int bytes = decltype(width)::value;
    const ColumnTwiddles<T> twiddles(table, factor, k);
#pragma GCC unroll 4
    for (size_t place = k; place < factor * rest * blocks; place += factor * rest) {
      const auto get = [&](int m) QKR_LAMBDA {
        const auto x = columns<bytes>(in, place + m * rest);
        return m ? times<forward>(x, twiddles.template turns_of<bytes>(m)) : x;
      };
      transform_points<forward>(
          Factor<factor>(), get,
          [&](int q, auto x) QKR_LAMBDA { set_columns<bytes>(out, place + q * rest, x); }, SmallCircle<T>{});
    }
  });
}

// Factors in the order of the stages, 1 for a second one that there is not, and the last factor.
template <bool forward, int factor, int second, int last, class T>
QKR_NOINLINE void transform_short(const AnyLengthPlan<T> *plan, const T *src, T *dst) {
  constexpr size_t count = factor * second;
  alignas(64) T memory[2 * count * last];
  const Interleaved<T> area = {memory};
  uint32_t places[count];
#pragma GCC unroll 8
  for (size_t i = 0; i < count; ++i) places[i] = (uint32_t)(i % factor * second + i / factor) * last;
  every_column<T, 0, count, QKR_SIMD_BYTES>([&](auto width, size_t k) QKR_LAMBDA {
    constexpr int bytes = decltype(width)::value;
    Columns<T, bytes> y[last];
    transform_points<forward>(
        Factor<last>(),
        [&](int m) QKR_LAMBDA { return columns<bytes>(Interleaved<const T>{src}, k + m * count); },
        [&](int q, auto x) QKR_LAMBDA { y[q] = x; }, SmallCircle<T>{});
    scatter_points<bytes, last>(area, places + k, y);
  });
  if constexpr (second > 1) combine_short<forward, second, last, factor>(area, area, plan->stage[1].twiddles);
  combine_short<forward, factor, second * last, 1>(area, Interleaved<T>{dst}, plan->stage[0].twiddles);
}

template <bool forward, class T>
QKR_INLINE void transform(const AnyLengthPlan<T> *plan, const T *src, T *dst) {
  // Few comparisons at a time, of which no compiler makes a jump to a computed address: that would cost more.
  const int first = plan->stage[0].factor, last = plan->last_factor();
  if (last == 4) {
    if (first == 3) transform_short<forward, 3, 1, 4>(plan, src, dst);
    else if (first == 5) transform_short<forward, 5, 1, 4>(plan, src, dst);
    else transform_short<forward, 2, 3, 4>(plan, src, dst);
  } else if (last == 2) {
    if (first == 3) transform_short<forward, 3, 1, 2>(plan, src, dst);
    else transform_short<forward, 5, 1, 2>(plan, src, dst);
  } else if (last == 3) {
    transform_short<forward, 3, 1, 3>(plan, src, dst);
  } else {
    transform_short<forward, 3, 1, 5>(plan, src, dst);
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_SHORT(direction, forward, T, suffix)                                                   \
  QKR_ENTRY(zprs_short##direction##_##suffix##c,                                                   \
            (const qkr::sigfft::AnyLengthPlan<T> *plan, const T *src, T *dst), (plan, src, dst)) { \
    transform<forward>(plan, src, dst);                                                            \
  }
QKR_SHORT(Fwd, true, double, 64f)
QKR_SHORT(Inv, false, double, 64f)
QKR_SHORT(Fwd, true, float, 32f)
QKR_SHORT(Inv, false, float, 32f)
