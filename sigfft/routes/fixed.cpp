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

template <int order, bool forward, class T, class Scale>
void complex_fixed(const T *src, T *dst, T factor) {
  transform<forward>(order, Interleaved<const T>{src}, Interleaved<T>{dst}, Scale{factor});
}
template <int order, bool forward, class T, class Scale>
void split_fixed(const T *src_re, const T *src_im, T *dst_re, T *dst_im, T factor) {
  transform<forward>(order, Split<const T>{src_re, src_im}, Split<T>{dst_re, dst_im}, Scale{factor});
}

template <class T>
struct Unscaled {
  T factor;
  T operator()(T x) const { return x; }
  template <class C>
  C operator()(C x) const {
    return x;
  }
};

// X[1] = E + O and X[3] = conj(E - O), where E and O are the second points of the 4-point transforms of the
// even and, turned by 45 degrees, the odd inputs.
template <int order, class T, class Scale>
void real_forward(const T *x, T *p, T factor) {
  const Scale scale = {factor};
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
template <int order, class T, class Scale>
void real_inverse(const T *p, T *x, T factor) {
  const Scale scale = {factor};
  if (order < 2) return real_forward<order, T, Scale>(p, x, factor);
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

template <int order, bool forward, class T, class Scale>
void real_fixed(const T *src, T *dst, T factor) {
  if constexpr (forward) real_forward<order, T, Scale>(src, dst, factor);
  else real_inverse<order, T, Scale>(src, dst, factor);
}

}  // namespace
}  // namespace qkr::sse2

namespace qkr::sigfft {

using namespace qkr::sse2;

#define QKR_ORDERS(f, forward, T, Scale)                                                \
  {                                                                                     \
    f<0, forward, T, Scale<T>>, f<1, forward, T, Scale<T>>, f<2, forward, T, Scale<T>>, \
        f<3, forward, T, Scale<T>>                                                      \
  }
#define QKR_DIRECTION(f, forward, T) \
  { QKR_ORDERS(f, forward, T, Unscaled), QKR_ORDERS(f, forward, T, Multiplied) }
#define QKR_FIXED(f, T) \
  { QKR_DIRECTION(f, false, T), QKR_DIRECTION(f, true, T) }
const FixedCode<double> fixed_code_64f = {QKR_FIXED(complex_fixed, double), QKR_FIXED(real_fixed, double),
                                          QKR_DIRECTION(split_fixed, true, double)};
const FixedCode<float> fixed_code_32f = {QKR_FIXED(complex_fixed, float), QKR_FIXED(real_fixed, float),
                                         QKR_DIRECTION(split_fixed, true, float)};

}  // namespace qkr::sigfft
