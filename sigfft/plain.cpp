// Transforms of the plain set: bit reversal, passes in place; longer ones by blocks and columns, four at a
// time, or by merging blocks two by two.
#include "sigfft/bit_reversal.h"
#include "sigfft/kernels.h"
#include "sigfft/plain_passes.h"
#include "sigfft/scale.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using namespace sigfft;

template <class T>
QKR_INLINE void reverse(Interleaved<const T> src, Interleaved<T> dst, size_t n, const uint32_t *table) {
  struct Number {
    T re, im;
  };
  if (src.p == dst.p) reverse_in_place((Number *)dst.p, n, table);
  else reverse_into((const Number *)src.p, (Number *)dst.p, n, table);
}
template <class T>
QKR_INLINE void reverse(Separate<const T> src, Separate<T> dst, size_t n, const uint32_t *table) {
  const auto one = [&](const T *from, T *to) {
    if (from == to) reverse_in_place(to, n, table);
    else reverse_into(from, to, n, table);
  };
  one(src.re, dst.re);
  one(src.im, dst.im);
}

template <bool forward, class Data, class T>
QKR_INLINE void staged_block(const Plan<T> *plan, Data data, int order) {
  plain_passes<forward>(data, order, plan->twiddleL1);
  if (forward ? plan->fwdNorm : plan->invNorm) normalise(data, size_t{1} << order, plan->normFactor);
}

// Transforms of `length` numbers side by side become transforms of twice the length, until there is but one.
// Column k + length/2 has the twiddle of column k, turned.
template <bool forward, class Data, class T>
QKR_NOINLINE void merge_by_two(Data data, size_t n, size_t length, const T *table) {
  constexpr size_t together = widest_pairs / 2 / sizeof(T);
  for (; length < n; length *= 2) {
    const size_t half = length / 2,
                 stride = n / length;  // of the table: two numbers for each column of the last merge
    for (size_t block = 0; block < n; block += 2 * length)
      for (size_t k = 0; k < half; k += together) {
        const auto at = [&](size_t place) { return data.template pairs<widest_pairs>(block + k + place); };
        const auto set = [&](size_t place, auto x) {
          data.template set_pairs<widest_pairs>(block + k + place, x);
        };
        const auto w = strided_pairs<T, widest_pairs>(table + k * stride, stride);
        const auto a = at(0), b = at(half);
        const auto c = times_numbers<forward>(at(length), w),
                   d = times_numbers<forward>(at(length + half), w);
        set(0, a + c);
        set(half, plus_turned<forward>(b, d));
        set(length, a - c);
        set(length + half, minus_turned<forward>(b, d));
      }
  }
}

// Four columns across the blocks: they go to the work buffer with their twiddles, are transformed there, and
// come back.
template <bool forward, class Data, class T>
QKR_NOINLINE void four_columns(Data data, size_t length, int blocks, const T *twiddles, const T *rows,
                               Interleaved<T> work) {
  constexpr size_t columns = 4, row_bytes = columns * 2 * sizeof(T);
  constexpr int bytes = row_bytes < widest_pairs ? row_bytes : widest_pairs;
  constexpr size_t together = bytes / 2 / sizeof(T);
  const size_t count = size_t{1} << blocks;
  const Interleaved<const T> table = {twiddles};
  for (size_t row = 0; row < count; ++row)
    for (size_t c = 0; c < columns; c += together) {
      const auto w = table.template pairs<bytes>(row * columns + c);
      const auto x = times_numbers<forward>(data.template pairs<bytes>(row * length + c), w);
      set_strided<bytes>(work, c * count + row, count, x);
    }
  for (size_t c = 0; c < columns; ++c) plain_passes<forward>(work + c * count, blocks, rows);
  for (size_t row = 0; row < count; ++row)
    for (size_t c = 0; c < columns; c += together)
      data.template set_pairs<bytes>(row * length + c, strided<bytes>(work, c * count + row, count));
}

// All but the bit reversal.
template <bool forward, class Data, class T>
void plain_transform(const Plan<T> *plan, Data data, int order, int level, Interleaved<T> work) {
  constexpr int staged = largest_staged_order<EntrySet::plain, T>;
  if (order <= staged) return staged_block<forward>(plan, data, order);
  const size_t n = size_t{1} << order;
  const int blocks = plain_blocks<T>(order);
  if (!blocks) {
    constexpr size_t length = size_t{1} << staged;
    for (size_t block = 0; block < n; block += length) staged_block<forward>(plan, data + block, staged);
    return merge_by_two<forward>(data, n, length, plan->twiddleL2);
  }
  const size_t length = n >> blocks;
  for (size_t block = 0; block < n; block += length)
    plain_transform<forward>(plan, data + block, order - blocks, level + 1, work);
  for (size_t column = 0; column < length; column += 4)
    four_columns<forward>(data + column, length, blocks, plan->stepTwiddle[level] + 2 * (column << blocks),
                          plan->blockTwiddle[level], work);
}

template <bool forward, class Source, class Data, class T>
QKR_INLINE void run(const Plan<T> *plan, Source source, Data data, int order, T *work) {
  reverse(source, data, size_t{1} << order, plan->bitRevTable);
  plain_transform<forward>(plan, data, order, 0, Interleaved<T>{work});
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_PLAIN(direction, forward, T, suffix)                                                       \
  QKR_ENTRY(zprs_cFft##direction##_##suffix##c,                                                        \
            (const qkr::sigfft::Plan<T> *plan, const T *src, T *dst, int32_t order, T *work),          \
            (plan, src, dst, order, work)) {                                                           \
    run<forward>(plan, Interleaved<const T>{src}, Interleaved<T>{dst}, order, work);                   \
  }                                                                                                    \
  QKR_ENTRY(zprs_crFft##direction##_##suffix,                                                          \
            (const qkr::sigfft::Plan<T> *plan, const T *src_re, const T *src_im, T *dst_re, T *dst_im, \
             int32_t order, T *work),                                                                  \
            (plan, src_re, src_im, dst_re, dst_im, order, work)) {                                     \
    run<forward>(plan, Separate<const T>{src_re, src_im}, Separate<T>{dst_re, dst_im}, order, work);   \
  }
QKR_PLAIN(Fwd, true, double, 64f)
QKR_PLAIN(Inv, false, double, 64f)
QKR_PLAIN(Fwd, true, float, 32f)
QKR_PLAIN(Inv, false, float, 32f)
