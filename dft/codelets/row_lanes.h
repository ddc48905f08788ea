// Contiguous lines as lane_transform has its source and its target: successive numbers of several lines are
// transposed in registers on the way in, and on the way out again.
#pragma once

#include "dft/codelets/lane_passes.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Lines move by cells of 16 bytes: one number in double precision, two in single. A register of cells has one
// of each of as many lines.
template <int bytes>
using Cells = Vector<double, bytes>;

// Where the lines of a group start, each address in a register: a sum of two in an operand costs an
// operation.
template <class T, int lines>
struct Starts {
  T *start[lines];
  QKR_INLINE Starts(T *first, ptrdiff_t distance) {
#pragma GCC unroll 8
    for (int i = 0; i < lines; ++i) {
      start[i] = first + i * distance;
      asm("" : "+r"(start[i]));
    }
  }
  QKR_INLINE double *cell(int line, size_t number) const { return (double *)(start[line] + 2 * number); }
};

// `count` successive cells, from a number on, of the lines of a register.
template <int bytes, int count, class Lines>
QKR_INLINE void get_cells(const Lines &lines, int line, size_t number, Cells<bytes> *x) {
  const auto cell = [&](int i) QKR_LAMBDA { return lines.cell(line + i, number); };
  if constexpr (bytes == 16) {
    for (int i = 0; i < count; ++i) x[i] = load_vector<Cells<16>>(cell(0) + 2 * i);
  }
#ifdef __AVX2__
  if constexpr (bytes == 32) {
#pragma GCC unroll 2
    for (int i = 0; i < count; ++i)
      x[i] = (Cells<32>)_mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(cell(0) + 2 * i)),
                                             _mm_loadu_pd(cell(1) + 2 * i), 1);
  }
#endif
#ifdef __AVX512F__
  if constexpr (bytes == 64) {
    static_assert(count == 2);
    const auto a = load_halves(cell(0), cell(1)), b = load_halves(cell(2), cell(3));
    x[0] = shuffle<0, 1, 4, 5, 8, 9, 12, 13>(a, b), x[1] = shuffle<2, 3, 6, 7, 10, 11, 14, 15>(a, b);
  }
#endif
}
template <int bytes, int count, class Lines>
QKR_INLINE void put_cells(const Lines &lines, int line, size_t number, const Cells<bytes> *x) {
  const auto cell = [&](int i) QKR_LAMBDA { return lines.cell(line + i, number); };
  if constexpr (bytes == 16) {
    for (int i = 0; i < count; ++i) store_vector(cell(0) + 2 * i, x[i]);
  }
#ifdef __AVX2__
  if constexpr (bytes == 32 && count == 1) {
    _mm_storeu_pd(cell(0), _mm256_castpd256_pd128((__m256d)x[0]));
    _mm_storeu_pd(cell(1), _mm256_extractf128_pd((__m256d)x[0], 1));
  }
  if constexpr (bytes == 32 && count == 2) {
    store_vector(cell(0), shuffle<0, 1, 4, 5>(x[0], x[1]));
    store_vector(cell(1), shuffle<2, 3, 6, 7>(x[0], x[1]));
  }
#endif
#ifdef __AVX512F__
  if constexpr (bytes == 64) {
    const auto a = shuffle<0, 1, 8, 9, 2, 3, 10, 11>(x[0], x[1]);
    const auto b = shuffle<4, 5, 12, 13, 6, 7, 14, 15>(x[0], x[1]);
    store_vector(cell(0), lower_half(a)), store_vector(cell(1), upper_half(a));
    store_vector(cell(2), lower_half(b)), store_vector(cell(3), upper_half(b));
  }
#endif
}

// The first numbers of the cells of two registers, and the second ones, in single precision; or back.
template <int... i, class V>
QKR_INLINE void exchange(V &a, V &b, std::integer_sequence<int, i...>) {
  constexpr int count = sizeof...(i);
  const V first = shuffle<((i & ~1) + i % 2 * count)...>(a, b);
  b = shuffle<((i | 1) + i % 2 * count)...>(a, b);
  a = first;
}

// A group of lines.
template <class T, int bytes, int cells>
struct Rows {
  using C = Paired<T, bytes>;
  static constexpr int in_cell = 16 / (2 * sizeof(T)), lines = bytes / 16 * in_cell;
  static constexpr int together = cells * in_cell;
  Starts<T, lines> starts;

  QKR_INLINE void get(size_t j, C *x) const {
    Cells<bytes> y[in_cell][cells];
#pragma GCC unroll 2
    for (int h = 0; h < in_cell; ++h) get_cells<bytes, cells>(starts, h * (bytes / 16), j, y[h]);
#pragma GCC unroll 2
    for (int i = 0; i < cells; ++i) {
      if constexpr (in_cell == 2) exchange(y[0][i], y[1][i], std::make_integer_sequence<int, bytes / 8>());
#pragma GCC unroll 2
      for (int h = 0; h < in_cell; ++h) x[i * in_cell + h].v = (decltype(C::v))y[h][i];
    }
  }
  QKR_INLINE void put(size_t j, const C *x) const {
    Cells<bytes> y[in_cell][cells];
#pragma GCC unroll 2
    for (int i = 0; i < cells; ++i) {
#pragma GCC unroll 2
      for (int h = 0; h < in_cell; ++h) y[h][i] = (Cells<bytes>)x[i * in_cell + h].v;
      if constexpr (in_cell == 2) exchange(y[0][i], y[1][i], std::make_integer_sequence<int, bytes / 8>());
    }
#pragma GCC unroll 2
    for (int h = 0; h < in_cell; ++h) put_cells<bytes, cells>(starts, h * (bytes / 16), j, y[h]);
  }

  // One number of each line, through memory: its cell may lie partly beyond the line.
  static constexpr int lane(int line) { return line % (bytes / 16) * in_cell + line / (bytes / 16); }
  QKR_INLINE C get_number(size_t j) const {
    alignas(bytes) T numbers[bytes / sizeof(T)];
    for (int i = 0; i < lines; ++i)
      __builtin_memcpy(numbers + 2 * lane(i), starts.start[i] + 2 * j, 2 * sizeof(T));
    return {*(const decltype(C::v) *)numbers};
  }
  QKR_INLINE void put_number(size_t j, C x) const {
    alignas(bytes) T numbers[bytes / sizeof(T)];
    store_vector(numbers, x.v);
    for (int i = 0; i < lines; ++i)
      __builtin_memcpy(starts.start[i] + 2 * j, numbers + 2 * lane(i), 2 * sizeof(T));
  }
};

// A line may be shorter than half a register. Two cells at once make fewer stores; on the way in they are
// worth it only where registers are plenty.
template <class T, int order>
constexpr int row_bytes = QKR_SIMD_BYTES == 64 && 2 * sizeof(T) << order < 32 ? 32 : QKR_SIMD_BYTES;
template <class T, int order>
using SourceRows = Rows<T, row_bytes<T, order>, row_bytes<T, order> == 64 ? 2 : 1>;
template <class T, int order>
using TargetRows = Rows<T, row_bytes<T, order>,
                        row_bytes<T, order> == 64 || (row_bytes<T, order> == 32 && sizeof(T) == 8) ? 2 : 1>;

template <class T>
QKR_NOINLINE void scale_rows(T *first, ptrdiff_t distance, int lines, int numbers, T scale) {
  for (int i = 0; i < lines; ++i, first += distance)
    for (int j = 0; j < numbers; ++j) first[j] *= scale;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
