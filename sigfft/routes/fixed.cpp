// Transforms of 1, 2, 4 and 8 points.
#include "sigfft/routes/fixed.h"

#include "sigfft/passes/butterfly.h"
#include "sigfft/passes/views.h"

namespace qkr::sse2 {
namespace {

template <bool forward, class Source, class Target, class Scale>
void transform(int order, Source x, Target y, Scale scale) {
  const auto get = [&](int k) { return x.at(k); };
  const auto put = [&](int k, auto value) { y.set(k, value); };
  if (order == 3) return butterfly<8, forward>(get, put, scale);
  if (order == 2) return butterfly<4, forward>(get, put, scale);
  const auto x0 = x.at(0);
  if (order == 0) return y.set(0, scale(x0));
  const auto x1 = x.at(1);
  y.set(0, scale(x0 + x1));
  y.set(1, scale(x0 - x1));
}

// X[1] = E + O and X[3] = conj(E - O), where E and O are the second points of the 4-point transforms of the
// even and, turned by 45 degrees, the odd inputs.
template <class T, class Scale>
void real_forward(int order, const T *x, T *p, Scale scale) {
  if (order == 0) {
    p[0] = scale(x[0]);
  } else if (order == 1) {
    const T sum = scale(x[0] + x[1]), difference = scale(x[0] - x[1]);
    p[0] = sum, p[1] = difference;
  } else if (order == 2) {
    const T a = scale(x[0] + x[2]), b = scale(x[0] - x[2]), c = scale(x[1] + x[3]), d = scale(x[3] - x[1]);
    p[0] = a + c, p[1] = a - c, p[2] = b, p[3] = d;
  } else {
    const T sum04 = scale(x[0] + x[4]), sum26 = scale(x[2] + x[6]);
    const T sum15 = scale(x[1] + x[5]), sum37 = scale(x[3] + x[7]);
    const T even_re = scale(x[0] - x[4]), even_im = scale(x[2] - x[6]);
    const T d15 = scale(x[1] - x[5]), d37 = scale(x[3] - x[7]);
    const T odd_re = (d15 - d37) * cos_1_8<T>, odd_im = (d15 + d37) * cos_1_8<T>;
    const T even = sum04 + sum26, odd = sum15 + sum37;
    p[0] = even + odd, p[1] = even - odd;
    p[2] = even_re + odd_re, p[3] = -even_im - odd_im;
    p[4] = sum04 - sum26, p[5] = sum37 - sum15;
    p[6] = even_re - odd_re, p[7] = even_im - odd_im;
  }
}

// Four real points from R0, R2 and X1.
template <class T, class Put>
void real_inverse4(T sum, T difference, T twice_re, T twice_im, Put put) {
  put(0, sum + twice_re), put(1, difference - twice_im), put(2, sum - twice_re),
      put(3, difference + twice_im);
}

// Eight points as four and four: the even ones of X[k] + X[k+4], the odd ones of X[k] - X[k+4] turned by 45 k
// degrees.
template <class T, class Scale>
void real_inverse(int order, const T *p, T *x, Scale scale) {
  if (order < 2) return real_forward(order, p, x, scale);
  if (order == 2) {
    const T a = scale(p[0] + p[1]), b = scale(p[0] - p[1]);
    real_inverse4(a, b, scale(2 * p[2]), scale(2 * p[3]), [&](int k, T value) { x[k] = value; });
  } else {
    const T even0 = scale(p[0] + p[1]), even2 = scale(2 * p[4]), odd0 = scale(p[0] - p[1]),
            odd2 = scale(2 * p[5]);
    const T even_re = scale(p[2] + p[6]), even_im = scale(p[3] - p[7]);
    const T d_re = scale(p[2] - p[6]), d_im = scale(p[3] + p[7]);
    const T odd_re = (d_re - d_im) * cos_1_8<T>, odd_im = (d_re + d_im) * cos_1_8<T>;
    real_inverse4(even0 + even2, even0 - even2, 2 * even_re, 2 * even_im,
                  [&](int k, T value) { x[2 * k] = value; });
    real_inverse4(odd0 - odd2, odd0 + odd2, 2 * odd_re, 2 * odd_im,
                  [&](int k, T value) { x[2 * k + 1] = value; });
  }
}

template <class T, class Run>
void scaled_or_not(bool scaled, T factor, Run run) {
  if (scaled) run(Multiplied<T>{factor});
  else run(AsTheyAre());
}

}  // namespace
}  // namespace qkr::sse2

namespace qkr::sigfft {

using namespace qkr::sse2;

template <bool forward, class T>
void fixed_complex(int order, bool scaled, const T *src, T *dst, T factor) {
  scaled_or_not(scaled, factor, [=](auto scale) {
    transform<forward>(order, Interleaved<const T>{src}, Interleaved<T>{dst}, scale);
  });
}
template <bool forward, class T>
void fixed_real(int order, bool scaled, const T *src, T *dst, T factor) {
  scaled_or_not(scaled, factor, [=](auto scale) {
    if constexpr (forward) real_forward(order, src, dst, scale);
    else real_inverse(order, src, dst, scale);
  });
}
template <class T>
void fixed_split(int order, bool scaled, const T *src_re, const T *src_im, T *dst_re, T *dst_im, T factor) {
  scaled_or_not(scaled, factor, [=](auto scale) {
    transform<true>(order, Split<const T>{src_re, src_im}, Split<T>{dst_re, dst_im}, scale);
  });
}

#define QKR_INSTANTIATE(T)                                          \
  template void fixed_complex<true>(int, bool, const T *, T *, T);  \
  template void fixed_complex<false>(int, bool, const T *, T *, T); \
  template void fixed_real<true>(int, bool, const T *, T *, T);     \
  template void fixed_real<false>(int, bool, const T *, T *, T);    \
  template void fixed_split(int, bool, const T *, const T *, T *, T *, T);
QKR_INSTANTIATE(double)
QKR_INSTANTIATE(float)

}  // namespace qkr::sigfft
