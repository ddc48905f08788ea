// The chirp route: the signal times a chirp, its cyclic convolution with the conjugate of that chirp by
// power-of-two transforms, and the result times the chirp. The inverse is the forward transform read
// backward.
#include <string.h>

#include "sigfft/any_length/routes.h"

namespace qkr::sigfft {
namespace {

template <class T>
struct Products;
#define QKR_PRODUCTS(T, suffix)                                           \
  template <>                                                             \
  struct Products<T> {                                                    \
    static constexpr auto interleaved = zprs_multiplyComplex_##suffix##c; \
    static constexpr auto split = zprs_multiplySplit_##suffix;            \
    static constexpr auto to_split = zprs_multiplyToSplit_##suffix;       \
    static constexpr auto real = zprs_multiplyReal_##suffix;              \
    static constexpr auto to_real = zprs_multiplyToReal_##suffix;         \
  };
QKR_PRODUCTS(double, 64f)
QKR_PRODUCTS(float, 32f)

// The first numbers of `work` hold the signal times the chirp.
template <class T>
zprStatus convolve(const AnyLengthPlan<T> *plan, T *work) {
  const auto n = (size_t)plan->complex_length, m = (size_t)plan->chirp_length;
  const auto engine_work = (uint8_t *)(work + 2 * m);
  memset(work + 2 * n, 0, (m - n) * 2 * sizeof(T));
  const zprStatus status = Engine<T>::template transform<true>(plan->engine, work, work, engine_work);
  if (status != zprStsNoErr) return status;
  Products<T>::interleaved(plan->chirp_spectrum, work, work, plan->chirp_length);
  return Engine<T>::template transform<false>(plan->engine, work, work, engine_work);
}

// Elements 1 to n - 1 of an array in reverse.
template <class Element>
void reverse(Element *x, size_t n) {
  for (size_t i = 1, j = n - 1; i < j; ++i, --j) {
    const Element kept = x[i];
    x[i] = x[j], x[j] = kept;
  }
}

}  // namespace

template <bool forward, class T>
zprStatus chirp_transform(const AnyLengthPlan<T> *plan, const T *src, T *dst, T *work) {
  Products<T>::interleaved(plan->chirp, src, work, plan->complex_length);
  const zprStatus status = convolve(plan, work);
  if (status != zprStsNoErr) return status;
  Products<T>::interleaved(plan->chirp, work, dst, plan->complex_length);
  if (!forward) reverse((typename Engine<T>::Complex *)dst, (size_t)plan->complex_length);
  return zprStsNoErr;
}

template <bool forward, class T>
zprStatus chirp_transform(const AnyLengthPlan<T> *plan, const T *src_re, const T *src_im, T *dst_re,
                          T *dst_im, T *work) {
  Products<T>::split(plan->chirp, src_re, src_im, work, plan->complex_length);
  const zprStatus status = convolve(plan, work);
  if (status != zprStsNoErr) return status;
  Products<T>::to_split(plan->chirp, work, dst_re, dst_im, plan->complex_length);
  if (!forward) {
    reverse(dst_re, (size_t)plan->complex_length);
    reverse(dst_im, (size_t)plan->complex_length);
  }
  return zprStsNoErr;
}

// Forward half of the spectrum is all that Perm takes; the inverse goes forward from the conjugate spectrum.
template <bool forward, class T>
zprStatus real_chirp_transform(const AnyLengthPlan<T> *plan, const T *src, T *dst, T *work) {
  const int32_t n = plan->complex_length;
  if (forward) {
    Products<T>::real(plan->chirp, src, work, n);
  } else {
    work[0] = src[0], work[1] = 0;
    for (size_t k = 1, mirror = (size_t)n - 1; k < mirror; ++k, --mirror) {
      const T re = src[2 * k - 1], im = src[2 * k];
      work[2 * k] = re, work[2 * k + 1] = -im;
      work[2 * mirror] = re, work[2 * mirror + 1] = im;
    }
    Products<T>::interleaved(plan->chirp, work, work, n);
  }
  const zprStatus status = convolve(plan, work);
  if (status != zprStsNoErr) return status;
  if (forward) {
    dst[0] = work[0];
    Products<T>::interleaved(plan->chirp + 2, work + 2, dst + 1, (n - 1) / 2);
  } else {
    Products<T>::to_real(plan->chirp, work, dst, n);
  }
  return zprStsNoErr;
}

#define QKR_INSTANTIATE(forward, T)                                                                     \
  template zprStatus chirp_transform<forward>(const AnyLengthPlan<T> *, const T *, T *, T *);           \
  template zprStatus chirp_transform<forward>(const AnyLengthPlan<T> *, const T *, const T *, T *, T *, \
                                              T *);                                                     \
  template zprStatus real_chirp_transform<forward>(const AnyLengthPlan<T> *, const T *, T *, T *);
QKR_INSTANTIATE(true, double)
QKR_INSTANTIATE(false, double)
QKR_INSTANTIATE(true, float)
QKR_INSTANTIATE(false, float)

}  // namespace qkr::sigfft
