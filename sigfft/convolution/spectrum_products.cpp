// Products of spectra of real signals in Perm and Pack layout: one or two real numbers, and complex pairs.
#include "sigfft/convolution/integers.h"
#include "sigfft/convolution/kernels.h"

namespace qkr::sigfft {
namespace {

enum class Layout { Perm, Pack };

// single(a, b) is the product of real numbers, pairs(a, b, dst, count) those of complex ones. A spectrum of
// even length has two real numbers, R0 in front and R(len/2) behind it (Perm) or at the end (Pack).
template <Layout layout, class T, class Single, class Pairs>
zprStatus multiply(const T *a, const T *b, T *dst, int32_t len, Single single, Pairs pairs) {
  if (!a || !b || !dst) return zprStsNullPtrErr;
  if (len < 1) return zprStsSizeErr;
  const size_t n = (size_t)len, last = layout == Layout::Perm ? 1 : n - 1;
  const bool even = n % 2 == 0;
  const size_t first_pair = even && layout == Layout::Perm ? 2 : 1;
  dst[0] = single(a[0], b[0]);
  if (even) dst[last] = single(a[last], b[last]);
  pairs(a + first_pair, b + first_pair, dst + first_pair, (n - 1) / 2);
  return zprStsNoErr;
}

template <Layout layout, class T>
zprStatus multiply(const T *a, const T *b, T *dst, int32_t len,
                   void (*pairs)(const T *a, const T *b, T *dst, size_t count)) {
  return multiply<layout>(
      a, b, dst, len, [](T x, T y) { return x * y; }, pairs);
}

template <Layout layout>
zprStatus multiply(const int16_t *a, const int16_t *b, int16_t *dst, int32_t len, int32_t scale) {
  return multiply<layout>(
      a, b, dst, len, [=](int16_t x, int16_t y) { return (int16_t)sse2::scaled((int32_t)x * y, scale); },
      [=](const int16_t *x, const int16_t *y, int16_t *to, size_t count) {
        zprs_pairProducts_16s(x, y, to, count, scale);
      });
}

}  // namespace
}  // namespace qkr::sigfft

using qkr::sigfft::Layout;
using qkr::sigfft::multiply;

#define QKR_MULTIPLY(name, T, layout, pairs)                          \
  zprStatus name(const T *src1, const T *src2, T *dst, int32_t len) { \
    return multiply<Layout::layout>(src1, src2, dst, len, pairs);     \
  }
QKR_MULTIPLY(zprsMulPerm_32f, float, Perm, zprs_pairProducts_32f)
QKR_MULTIPLY(zprsMulPerm_64f, double, Perm, zprs_pairProducts_64f)
QKR_MULTIPLY(zprsMulPack_32f, float, Pack, zprs_pairProducts_32f)
QKR_MULTIPLY(zprsMulPack_64f, double, Pack, zprs_pairProducts_64f)

#define QKR_MULTIPLY_IN_PLACE(name, T, layout, pairs)                   \
  zprStatus name(const T *src, T *src_dst, int32_t len) {               \
    return multiply<Layout::layout>(src, src_dst, src_dst, len, pairs); \
  }
QKR_MULTIPLY_IN_PLACE(zprsMulPerm_32f_I, float, Perm, zprs_pairProducts_32f)
QKR_MULTIPLY_IN_PLACE(zprsMulPerm_64f_I, double, Perm, zprs_pairProducts_64f)
QKR_MULTIPLY_IN_PLACE(zprsMulPack_32f_I, float, Pack, zprs_pairProducts_32f)
QKR_MULTIPLY_IN_PLACE(zprsMulPack_64f_I, double, Pack, zprs_pairProducts_64f)
QKR_MULTIPLY_IN_PLACE(zprsMulPackConj_32f_I, float, Pack, zprs_conjugateProducts_32f)
QKR_MULTIPLY_IN_PLACE(zprsMulPackConj_64f_I, double, Pack, zprs_conjugateProducts_64f)

#define QKR_MULTIPLY_SCALED(name, layout)                                                              \
  zprStatus name(const int16_t *src1, const int16_t *src2, int16_t *dst, int32_t len, int32_t scale) { \
    return multiply<Layout::layout>(src1, src2, dst, len, scale);                                      \
  }
QKR_MULTIPLY_SCALED(zprsMulPerm_16s_Sfs, Perm)
QKR_MULTIPLY_SCALED(zprsMulPack_16s_Sfs, Pack)

#define QKR_MULTIPLY_SCALED_IN_PLACE(name, layout)                                   \
  zprStatus name(const int16_t *src, int16_t *src_dst, int32_t len, int32_t scale) { \
    return multiply<Layout::layout>(src, src_dst, src_dst, len, scale);              \
  }
QKR_MULTIPLY_SCALED_IN_PLACE(zprsMulPerm_16s_ISfs, Perm)
QKR_MULTIPLY_SCALED_IN_PLACE(zprsMulPack_16s_ISfs, Pack)
