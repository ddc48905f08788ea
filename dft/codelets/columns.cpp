// Short transforms of neighbouring columns where they stand, one column a lane: nothing is gathered,
// transposed or permuted.
#include "dft/codelets/columns.h"

#include "dft/codelets/lane_passes.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int line_bytes = 64;

// Rows of numbers, `pitch` numbers from one to the next, of which `bytes` are worked on.
template <class T, int bytes>
struct SourceRows {
  const T *base;
  ptrdiff_t pitch;
  static constexpr int together = 1;
  QKR_INLINE void get(size_t row, Paired<T, bytes> *x) const {
    x->v = load_vector<Vector<T, bytes>>(base + row * pitch);
  }
};
template <class T, int bytes>
struct ResultRows {
  T *base;
  ptrdiff_t pitch;
  bool scaled;
  T scale;
  static constexpr int together = 1;
  QKR_INLINE void put(size_t row, const Paired<T, bytes> *x) const {
    store_vector(base + row * pitch, scaled ? x->v * scale : x->v);
  }
};
#ifdef __AVX512F__
// The same of fewer numbers than fill a register: the others are neither read nor written.
QKR_INLINE Vector<double, 64> load_part(const double *p, unsigned lanes) {
  return (Vector<double, 64>)_mm512_maskz_loadu_pd((__mmask8)lanes, p);
}
QKR_INLINE Vector<float, 64> load_part(const float *p, unsigned lanes) {
  return (Vector<float, 64>)_mm512_maskz_loadu_ps((__mmask16)lanes, p);
}
QKR_INLINE void store_part(double *p, unsigned lanes, Vector<double, 64> v) {
  _mm512_mask_storeu_pd(p, (__mmask8)lanes, (__m512d)v);
}
QKR_INLINE void store_part(float *p, unsigned lanes, Vector<float, 64> v) {
  _mm512_mask_storeu_ps(p, (__mmask16)lanes, (__m512)v);
}
template <class T>
struct PartSourceRows {
  const T *base;
  ptrdiff_t pitch;
  unsigned lanes;
  static constexpr int together = 1;
  QKR_INLINE void get(size_t row, Paired<T, 64> *x) const { x->v = load_part(base + row * pitch, lanes); }
};
template <class T>
struct PartResultRows {
  T *base;
  ptrdiff_t pitch;
  bool scaled;
  T scale;
  unsigned lanes;
  static constexpr int together = 1;
  QKR_INLINE void put(size_t row, const Paired<T, 64> *x) const {
    store_part(base + row * pitch, lanes, scaled ? x->v * scale : x->v);
  }
};
#endif

template <class T>
struct Columns {
  const T *source;
  ptrdiff_t source_pitch;
  T *target;
  ptrdiff_t target_pitch;  // in numbers
  T scale;

  static constexpr int bytes = QKR_SIMD_BYTES;
  static constexpr int64_t together = bytes / 2 / sizeof(T), in_line = line_bytes / 2 / sizeof(T);

  // Columns from number i on, a vector of them.
  template <int order, bool forward>
  QKR_INLINE void vector(const T *from, ptrdiff_t from_pitch, T *to, ptrdiff_t to_pitch) const {
    lane_transform<order, forward, Paired<T, bytes>>(SourceRows<T, bytes>{from, from_pitch},
                                                     ResultRows<T, bytes>{to, to_pitch, scale != 1, scale});
  }

  // Up to a line of columns by way of a copy: the last few, and, where so many rows fall into one set of the
  // cache that narrow registers would fetch each line again and again, all of them.
  template <int order, bool forward>
  QKR_NOINLINE void tile(int64_t i, int64_t width) const {
    alignas(64) T copy[line_bytes / sizeof(T) << order] = {};
    constexpr ptrdiff_t pitch = line_bytes / sizeof(T);
    constexpr size_t rows = size_t{1} << order;
    // By moves of a size that the compiler knows: a whole line, or number by number.
    const auto copy_rows = [=](T *to, ptrdiff_t to_pitch, const T *from, ptrdiff_t from_pitch) QKR_LAMBDA {
      for (size_t row = 0; row < rows; ++row, to += to_pitch, from += from_pitch)
        if (width == in_line) memcpy(to, from, line_bytes);
        else
          for (int64_t k = 0; k < width; ++k) memcpy(to + 2 * k, from + 2 * k, 2 * sizeof(T));
    };
    copy_rows(copy, pitch, source + 2 * i, source_pitch);
    for (int64_t k = 0; k < width; k += together)
      vector<order, forward>(copy + 2 * k, pitch, copy + 2 * k, pitch);
    copy_rows(target + 2 * i, target_pitch, copy, pitch);
  }

  // The processor does not foresee so many rows: the line of each that comes next but one is asked for.
  // Behind the last one nothing is read.
  QKR_INLINE void ask_ahead(int64_t i, int rows) const {
    const size_t pitch = (size_t)source_pitch * sizeof(T);
    size_t line = (size_t)(source + 2 * i) + 2 * line_bytes;
    for (int row = 0; row < rows; ++row, line += pitch) __builtin_prefetch((const void *)line);
  }

  // Less than a vector of columns.
  template <int order, bool forward>
  QKR_NOINLINE void rest(int64_t i, int64_t width) const {
#ifdef __AVX512F__
    const unsigned lanes = (1u << 2 * width) - 1;
    lane_transform<order, forward, Paired<T, bytes>>(
        PartSourceRows<T>{source + 2 * i, source_pitch, lanes},
        PartResultRows<T>{target + 2 * i, target_pitch, scale != 1, scale, lanes});
#else
    tile<order, forward>(i, width);
#endif
  }

  template <int order, bool forward>
  QKR_NOINLINE void run(int64_t count) const {
    constexpr ptrdiff_t set_distance = 4096;
    constexpr int64_t second_cache = 1 << 20;
    constexpr int rows = 1 << order, rows_too_many = bytes == 16 ? 64 : 256;  // measured
    const bool collides = bytes < line_bytes && rows >= rows_too_many &&
                          source_pitch * (ptrdiff_t)sizeof(T) % set_distance == 0;
    int64_t i = 0;
    if (collides)
      for (; i + in_line <= count; i += in_line) tile<order, forward>(i, in_line);
    const bool beyond_cache = rows <= 64 && count * rows * (int64_t)(2 * sizeof(T)) > second_cache;
    for (; i + together <= count; i += together) {
      if (beyond_cache && i % in_line < together) ask_ahead(i, rows);
      vector<order, forward>(source + 2 * i, source_pitch, target + 2 * i, target_pitch);
    }
    if (i < count) rest<order, forward>(i, count - i);
  }
};

template <class T, bool forward, int order = 0>
QKR_INLINE void by_order(int wanted, const Columns<T> &columns, int64_t count) {
  if (wanted == order) return columns.template run<order, forward>(count);
  if constexpr (order < dft::largest_column_order) by_order<T, forward, order + 1>(wanted, columns, count);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_COLUMNS(name, T, forward)                                                                       \
  QKR_ENTRY(name,                                                                                           \
            (int order, const void *source, ptrdiff_t source_stride, void *target, ptrdiff_t target_stride, \
             int64_t count, double scale),                                                                  \
            (order, source, source_stride, target, target_stride, count, scale)) {                          \
    by_order<T, forward>(order, {(const T *)source, source_stride, (T *)target, target_stride, (T)scale},   \
                         count);                                                                            \
  }
QKR_COLUMNS(dft_columns_forward_32fc, float, true)
QKR_COLUMNS(dft_columns_backward_32fc, float, false)
QKR_COLUMNS(dft_columns_forward_64fc, double, true)
QKR_COLUMNS(dft_columns_backward_64fc, double, false)
