// Codelets over the length, the direction and the format. Real lines of more than 8 numbers are transformed
// as half as many complex ones, and the spectrum recombined from it (J. W. Cooley, P. A. W. Lewis and P. D.
// Welch, Journal of Sound and Vibration 12 (1970) 315).
#include "dft/codelets/lines.h"

#include "dft/codelets/line_passes.h"
#include "dft/codelets/recombination_tables.h"
#include "sigfft/passes/recombination.h"
#include "sigfft/routes/fixed.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using dft::LineTransform;

template <class T, bool forward, int order>
int32_t complex_codelet(const void *input, void *output, const DftDescriptor *, uint8_t *) {
  transform<order, forward>((const T *)input, (T *)output);
  return DFTX_NO_ERROR;
}

// Where the spectrum of n real numbers has its parts: that of X[n/2], and those of X[k] for k between, 2 k
// less one where X[0] has no second place.
template <int32_t format, int n>
struct Layout {
  static constexpr int last = format == DFTX_CCS_FORMAT ? n : format == DFTX_PACK_FORMAT ? n - 1 : 1;
  static constexpr int moved = format == DFTX_PACK_FORMAT;
};

// From the transform of pairs to X[1], X[2], ..., or back. The last step takes in the middle, which is its
// own counterpart and is put right afterwards.
template <bool forward, int order, class T>
QKR_INLINE void recombine(const T *from, T *to) {
  constexpr int half = 1 << (order - 1), middle = half / 2, together = neighbours<T>;
  constexpr const Recombination<T, forward, order> &w = recombination_of<T, forward, order>;
  const T re = from[half], im = from[half + 1];
#pragma GCC unroll 8
  for (int k = 1; k <= middle; k += together) {
    const int counterpart = half - k - (together - 1);
    const auto both = recombined<forward>(numbers(from + 2 * k), in_reverse(numbers(from + 2 * counterpart)),
                                          load_vector<Vector<T, wide>>(w.first + 2 * (k - 1)),
                                          load_vector<Vector<T, wide>>(w.second + 2 * (k - 1)));
    set_numbers(to + 2 * k, both.lower);
    set_numbers(to + 2 * counterpart, in_reverse(both.upper));
  }
  to[half] = forward ? re : 2 * re;
  to[half + 1] = forward ? -im : -2 * im;
}

template <class T, bool forward, int order, int32_t format>
int32_t real_codelet(const void *input, void *output, const DftDescriptor *record, uint8_t *) {
  constexpr int n = 1 << order;
  using Place = Layout<format, n>;
  const T *x = (const T *)input;
  T *y = (T *)output;
  alignas(64) T z[n];
  if constexpr (forward) {
    transform<order - 1, true>(x, z);
    recombine<true, order>(z, y - Place::moved);
    y[0] = z[0] + z[1];
    y[Place::last] = z[0] - z[1];
    if (format == DFTX_CCS_FORMAT) y[1] = y[n + 1] = 0;
  } else {
    const T first = x[0], last = x[Place::last];
    recombine<false, order>(x - Place::moved, z);
    z[0] = first + last, z[1] = first - last;
    transform<order - 1, false>(z, y);
    if (format == DFTX_CCS_FORMAT && record->leaves_zero && input == output) y[n] = 0;
  }
  return DFTX_NO_ERROR;
}

// Up to 8 numbers: the engine's own, which is straight-line code.
template <class T, bool forward, int order, int32_t format>
int32_t shortest_real_codelet(const void *input, void *output, const DftDescriptor *record, uint8_t *) {
  constexpr int n = 1 << order;
  using Place = Layout<format, n>;
  const T *x = (const T *)input;
  T *y = (T *)output, perm[n];
  if constexpr (forward) {
    sigfft::fixed_real<forward>(order, false, x, perm, T(1));
    y[0] = perm[0], y[Place::last] = perm[1];
    for (int i = 2; i < n; ++i) y[i - Place::moved] = perm[i];
    if (format == DFTX_CCS_FORMAT) y[1] = y[n + 1] = 0;
  } else {
    perm[0] = x[0], perm[1] = x[Place::last];
    for (int i = 2; i < n; ++i) perm[i] = x[i - Place::moved];
    sigfft::fixed_real<forward>(order, false, perm, y, T(1));
    if (format == DFTX_CCS_FORMAT && record->leaves_zero && input == output) y[n] = 0;
  }
  return DFTX_NO_ERROR;
}

template <class T, bool forward, int order>
QKR_INLINE LineTransform choose_complex(int wanted) {
  if constexpr (order < dft::largest_codelet_order)
    if (wanted != order) return choose_complex<T, forward, order + 1>(wanted);
  return complex_codelet<T, forward, order>;
}

template <class T, bool forward, int32_t format, int order>
QKR_INLINE LineTransform choose_real(int wanted) {
  if constexpr (order < dft::largest_codelet_order)
    if (wanted != order) return choose_real<T, forward, format, order + 1>(wanted);
  if constexpr (order <= largest_fixed_order) return shortest_real_codelet<T, forward, order, format>;
  else return real_codelet<T, forward, order, format>;
}
template <class T, bool forward>
QKR_INLINE LineTransform choose_format(int order, int32_t format) {
  switch (format) {
    case DFTX_PACK_FORMAT:
      return choose_real<T, forward, DFTX_PACK_FORMAT, 1>(order);
    case DFTX_PERM_FORMAT:
      return choose_real<T, forward, DFTX_PERM_FORMAT, 1>(order);
    default:
      return choose_real<T, forward, DFTX_CCS_FORMAT, 1>(order);
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ENTRY_OF(qkr::dft::LineTransform, dft_complex_codelet, (bool in_double, bool forward, int order),
             (in_double, forward, order)) {
  if (in_double)
    return forward ? choose_complex<double, true, 1>(order) : choose_complex<double, false, 1>(order);
  return forward ? choose_complex<float, true, 1>(order) : choose_complex<float, false, 1>(order);
}
QKR_ENTRY_OF(qkr::dft::LineTransform, dft_real_codelet,
             (bool in_double, bool forward, int order, int32_t format), (in_double, forward, order, format)) {
  if (in_double)
    return forward ? choose_format<double, true>(order, format) : choose_format<double, false>(order, format);
  return forward ? choose_format<float, true>(order, format) : choose_format<float, false>(order, format);
}
