// From the transform of pairs of real numbers, taken as complex ones, to the spectrum of the real signal, and back
// (J. W. Cooley, P. A. W. Lewis and P. D. Welch, Journal of Sound and Vibration 12 (1970) 315). The numbers k and H - k
// are worked on together, from both ends of the array toward its middle.
#include "sigfft/kernels.h"
#include "sigfft/plain_passes.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using namespace sigfft;

template <class T, int bytes, int... i>
QKR_INLINE Paired<T, bytes> in_reverse(Paired<T, bytes> x, std::integer_sequence<int, i...>) {
  constexpr int count = sizeof...(i);
  return {shuffle<(count - 2 - (i & ~1) + (i & 1))...>(x.v, x.v)};
}
template <class T, int bytes>
QKR_INLINE Paired<T, bytes> in_reverse(Paired<T, bytes> x) {
  return in_reverse(x, std::make_integer_sequence<int, bytes / (int)sizeof(T)>());
}

// x * (1, -1) and x * (-1, 1) in turn.
template <class T, int bytes>
QKR_INLINE Vector<T, bytes> conjugate(Vector<T, bytes> x) {
  return x * Paired<T, bytes>::signs();
}

// The table's values of `bytes / 2 / sizeof(T)` successive k, each twice. Groups in the w6_ set: first values, then second
// ones; side by side in the plain set.
template <bool grouped_table, class T, int bytes, int... i>
QKR_INLINE void table_values(const T *table, size_t k, Vector<T, bytes> &first, Vector<T, bytes> &second,
                             std::integer_sequence<int, i...>) {
  if constexpr (!grouped_table) {
    const auto w = load_vector<Vector<T, bytes>>(table + 2 * k);
    first = shuffle<(i & ~1)...>(w, w);
    second = shuffle<(i | 1)...>(w, w);
  } else {
    constexpr int g = group<T>, numbers = sizeof...(i) / 2;
    const size_t index = k - 1;
    const T *start = table + index / g * 2 * g + index % g;
    if constexpr (numbers < g) {
      using V = Vector<T, bytes>;
      T a[numbers], b[numbers];
      for (int j = 0; j < numbers; ++j) a[j] = start[j], b[j] = start[g + j];
      first = V{a[i / 2]...}, second = V{b[i / 2]...};
    } else {
      const auto w = load_vector<Vector<T, bytes>>(start);
      first = shuffle<(i / 2 / g * 2 * g + i / 2 % g)...>(w, w);
      second = shuffle<(i / 2 / g * 2 * g + g + i / 2 % g)...>(w, w);
    }
  }
}
}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
