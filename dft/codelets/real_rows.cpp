// Short real transforms of contiguous lines, one a lane: by half as many complex numbers and a recombination,
// or by the engine's own steps where that is straight-line code.
#include "dft/codelets/real_rows.h"

#include "dft/codelets/recombination_tables.h"
#include "dft/codelets/row_lanes.h"
#include "sigfft/passes/recombination.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// A part of a, and the same of b.
template <int part, class T, int bytes, int... i>
QKR_INLINE Paired<T, bytes> parts(Paired<T, bytes> a, Paired<T, bytes> b, std::integer_sequence<int, i...>) {
  return {shuffle<((i & ~1) + part + i % 2 * (int)sizeof...(i))...>(a.v, b.v)};
}
template <int part, class T, int bytes>
QKR_INLINE Paired<T, bytes> parts(Paired<T, bytes> a, Paired<T, bytes> b) {
  return parts<part>(a, b, std::make_integer_sequence<int, bytes / (int)sizeof(T)>());
}

// Sum and difference of the parts: from z[0] to the real numbers X[0] and X[H], or back.
template <class C>
QKR_INLINE C sum_and_difference(C x) {
  return {add_signed(x.swapped(), x.v, x.signs())};
}

// Four or eight points in pairs to a spectrum in the order of DFTX_PERM_FORMAT, and back.
template <bool forward, class C>
QKR_INLINE void shortest(C (&x)[2]) {
  if constexpr (forward) {
    const C difference = minus_conjugate(conjugate(x[0]), x[1]);
    x[0] = sum_and_difference(x[0] + x[1]);
    x[1] = difference;
  } else {
    const C sums = sum_and_difference(x[0]), twice = x[1] + x[1];
    x[0] = plus_conjugate(sums, twice);
    x[1] = minus_conjugate(sums, twice);
  }
}
template <bool forward, class C>
QKR_INLINE void shortest(C (&x)[4]) {
  // The number of both parts, turned by 45 degrees: their difference and sum, times cos(pi/4).
  const auto turned = [](C z) QKR_LAMBDA {
    return minus_conjugate(parts<0>(z, z), parts<1>(z, z)) * cos_1_8<typename C::Element>;
  };
  if constexpr (forward) {
    const C a = x[0] + x[2], b = x[1] + x[3], c = x[0] - x[2], d = x[1] - x[3];
    const C even = parts<0>(c, d), odd = turned(parts<1>(c, d));
    x[0] = sum_and_difference(a + b);
    x[1] = plus_conjugate(conjugate(even), odd);
    x[2] = minus_conjugate(conjugate(a), b);
    x[3] = even - odd;
  } else {
    const C s = sum_and_difference(x[0]), w = x[2] + x[2];
    const C even = plus_conjugate(x[1], x[3]), odd = turned(minus_conjugate(x[1], x[3]));
    const C a = plus_conjugate(s, w), b = minus_conjugate(s, w);
    const C re = parts<0>(even, odd), im = parts<1>(even, odd);
    x[0] = a + (re + re), x[1] = b - (im + im), x[2] = a - (re + re), x[3] = b + (im + im);
  }
}

// z[k] and z[H - k], for all k but 0.
template <bool forward, int order, class T, int bytes>
QKR_INLINE void recombine(WorkLanes<T, bytes> z) {
  using V = Vector<T, bytes>;
  constexpr int half = 1 << (order - 1), middle = half / 2;
  constexpr const auto &w = recombination_of<T, forward, order>;
  Paired<T, bytes> lower, upper;
  for (int k = 1; k < middle; ++k) {
    z.get(k, &lower), z.get(half - k, &upper);
    const auto both = recombined<forward>(lower, upper, w.first[2 * k - 2] - V{}, w.second[2 * k - 2] - V{});
    z.put(k, &both.lower), z.put(half - k, &both.upper);
  }
  z.get(middle, &lower);
  lower = forward ? conjugate(lower) : conjugate(lower + lower);
  z.put(middle, &lower);
}

template <class Rows, class T, int bytes>
QKR_INLINE void take(const Rows &rows, WorkLanes<T, bytes> z, int count) {
  Paired<T, bytes> x[Rows::together];
  for (int j = 0; j < count; j += Rows::together) {
    rows.get(j, x);
#pragma GCC unroll 4
    for (int i = 0; i < Rows::together; ++i) z.put(j + i, x + i);
  }
}
template <class Rows, class T, int bytes>
QKR_INLINE void give(WorkLanes<T, bytes> z, const Rows &rows, int count) {
  Paired<T, bytes> x[Rows::together];
  for (int j = 0; j < count; j += Rows::together) {
#pragma GCC unroll 4
    for (int i = 0; i < Rows::together; ++i) z.get(j + i, x + i);
    rows.put(j, x);
  }
}

template <class T, bool forward, int order>
struct RealRows {
  using Source = SourceRows<T, order - 1>;
  using Target = TargetRows<T, order - 1>;
  using C = typename Source::C;
  static constexpr int half = 1 << (order - 1), bytes = sizeof(C);
  using Work = WorkLanes<T, bytes>;

  // In the order of DFTX_PERM_FORMAT the spectrum starts with X[0] and X[H]; else X[H] is its last number.
  static QKR_INLINE void spectrum(Source in, Target out, bool has_last) {
    alignas(64) T memory[half * Work::pitch];
    const Work z = {memory};
    C x[half <= 4 ? half : 1];
    if constexpr (half <= 4) {
      take(in, z, half);
      for (int j = 0; j < half; ++j) z.get(j, x + j);
      shortest<true>(x);
      for (int j = 0; j < half; ++j) z.put(j, x + j);
    } else {
      lane_transform<order - 1, true, C>(in, z);
      z.get(0, x);
      x[0] = sum_and_difference(x[0]);
      z.put(0, x);
      recombine<true, order>(z);
    }
    if (has_last) {
      const C zero = {}, first = parts<0>(x[0], zero);
      z.put(0, &first);
      out.put_number(half, parts<1>(x[0], zero));
    }
    give(z, out, half);
  }

  static QKR_INLINE void signal(Source in, Target out, bool has_last) {
    alignas(64) T memory[half * Work::pitch];
    const Work z = {memory};
    C x[half <= 4 ? half : 1];
    take(in, z, half);
    if (has_last) {
      z.get(0, x);
      x[0] = parts<0>(x[0], in.get_number(half));
      z.put(0, x);
    }
    if constexpr (half <= 4) {
      for (int j = 0; j < half; ++j) z.get(j, x + j);
      shortest<false>(x);
      for (int j = 0; j < half; ++j) z.put(j, x + j);
      give(z, out, half);
    } else {
      z.get(0, x);
      x[0] = sum_and_difference(x[0]);
      z.put(0, x);
      recombine<false, order>(z);
      lane_transform<order - 1, false, C>(z, out);
    }
  }

  static QKR_NOINLINE int64_t run(const T *source, ptrdiff_t source_distance, T *target,
                                  ptrdiff_t target_distance, int64_t count, bool has_last, T scale) {
    const int numbers = 2 * half + (forward && has_last);  // the last zero is not scaled
    int64_t i = 0;
    for (; i + Source::lines <= count; i += Source::lines) {
      const Source in = {{(T *)source + i * source_distance, source_distance}};
      T *const to = target + i * target_distance;
      const Target out = {{to, target_distance}};
      if constexpr (forward) spectrum(in, out, has_last);
      else signal(in, out, has_last);
      if (scale != 1) scale_rows(to, target_distance, Source::lines, numbers, scale);
    }
    return i;
  }
};

template <class T, bool forward, int order = 2>
QKR_INLINE int64_t real_rows_of(int wanted, const T *source, ptrdiff_t source_distance, T *target,
                                ptrdiff_t target_distance, int64_t count, bool has_last, T scale) {
  if constexpr (order < dft::largest_row_order)
    if (wanted != order)
      return real_rows_of<T, forward, order + 1>(wanted, source, source_distance, target, target_distance,
                                                 count, has_last, scale);
  return RealRows<T, forward, order>::run(source, source_distance, target, target_distance, count, has_last,
                                          scale);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_REAL_ROWS(name, T, forward)                                                                      \
  QKR_ENTRY_OF(int64_t, name,                                                                                \
               (int order, const void *source, ptrdiff_t source_distance, void *target,                      \
                ptrdiff_t target_distance, int64_t count, bool has_last, double scale),                      \
               (order, source, source_distance, target, target_distance, count, has_last, scale)) {          \
    return real_rows_of<T, forward>(order, (const T *)source, source_distance, (T *)target, target_distance, \
                                    count, has_last, (T)scale);                                              \
  }
QKR_REAL_ROWS(dft_real_rows_forward_32f, float, true)
QKR_REAL_ROWS(dft_real_rows_backward_32f, float, false)
QKR_REAL_ROWS(dft_real_rows_forward_64f, double, true)
QKR_REAL_ROWS(dft_real_rows_backward_64f, double, false)
