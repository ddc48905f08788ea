// From the transform of half the length to the spectrum of a real signal of any even length, and back: the
// numbers k and H - k together, as for power-of-two lengths.
#include "sigfft/any_length/passes/columns.h"
#include "sigfft/any_length/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <bool forward, class T>
QKR_INLINE void recombine(const T *src, T *dst, size_t half, const T *table) {
  const Interleaved<const T> from = {src};
  const Interleaved<T> to = {dst};
  const size_t middle = half / 2;
  const T re = src[2 * middle], im = src[2 * middle + 1];
  each_column<T>(1, (half + 1) / 2, [=](auto width, size_t k) QKR_LAMBDA {
    constexpr int bytes = decltype(width)::value, together = columns_together<T, bytes>;
    constexpr int lanes = sizeof(Columns<T, bytes>) / sizeof(T);
    const auto turned = [](Columns<T, bytes> x) QKR_LAMBDA {
      if constexpr (together > 1) return in_reverse(x);
      else return x;
    };
    const size_t counterpart = half - k - (together - 1);
    const auto lower = columns<bytes>(from, k), upper = turned(columns<bytes>(from, counterpart));
    const auto [first, second] = table_values<sigfft::EntrySet::w6, T, lanes *(int)sizeof(T)>(
        table, k, std::make_integer_sequence<int, lanes>());
    const auto [new_lower, new_upper] = recombined<forward>(lower, upper, first, second);
    set_columns<bytes>(to, k, new_lower);
    set_columns<bytes>(to, counterpart, turned(new_upper));
  });
  if (half % 2) return;
  dst[2 * middle] = forward ? re : 2 * re;
  dst[2 * middle + 1] = forward ? -im : -2 * im;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_RECOMBINE(direction, forward, T, suffix)                                                        \
  QKR_ENTRY(zprs_recombineHalf##direction##_##suffix, (const T *src, T *dst, int32_t half, const T *table), \
            (src, dst, half, table)) {                                                                      \
    recombine<forward>(src, dst, (size_t)half, table);                                                      \
  }
QKR_RECOMBINE(Fwd, true, double, 64f)
QKR_RECOMBINE(Inv, false, double, 64f)
QKR_RECOMBINE(Fwd, true, float, 32f)
QKR_RECOMBINE(Inv, false, float, 32f)
