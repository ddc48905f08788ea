// Which kernel transforms numbers of an order: shared by the complex and the real transforms.
#pragma once

#include "sigfft/plan/decomposition.h"
#include "sigfft/routes/fixed.h"
#include "sigfft/routes/kernels.h"

namespace qkr::sigfft {

template <class T>
struct Kernels {
  void (*staged)(const T *, T *, int32_t, const T *, const uint32_t *, T *);
  void (*large)(const Plan<T> *, const T *, T *, int32_t, bool, T *);
  void (*plain)(const Plan<T> *, const T *, T *, int32_t, bool, T *);
};
#define QKR_KERNELS(direction, suffix)                                               \
  {                                                                                  \
    w6_zprs_staged##direction##_##suffix##c, w6_zprs_large##direction##_##suffix##c, \
        zprs_plain##direction##_##suffix##c                                          \
  }
template <bool forward, class T>
constexpr Kernels<T> kernels = forward ? Kernels<T> QKR_KERNELS(Fwd, 64f) : Kernels<T> QKR_KERNELS(Inv, 64f);
template <bool forward>
constexpr Kernels<float> kernels<forward, float> = forward ? Kernels<float> QKR_KERNELS(Fwd, 32f)
                                                           : Kernels<float> QKR_KERNELS(Inv, 32f);
#undef QKR_KERNELS

template <class T>
struct SplitKernels {
  void (*staged)(const T *, const T *, T *, T *, int32_t, const T *, T *);
  void (*large)(const Plan<T> *, const T *, const T *, T *, T *, int32_t, bool, T *);
  void (*plain)(const Plan<T> *, const T *, const T *, T *, T *, int32_t, bool, T *);
};
template <class T>
constexpr SplitKernels<T> split_kernels = {w6_zprs_staged_64f, w6_zprs_large_64f, zprs_plain_64f};
template <>
inline constexpr SplitKernels<float> split_kernels<float> = {w6_zprs_staged_32f, w6_zprs_large_32f,
                                                             zprs_plain_32f};

inline void multiply(double *data, ptrdiff_t count, double factor) { zprs_multiply_64f(data, count, factor); }
inline void multiply(float *data, ptrdiff_t count, float factor) { zprs_multiply_32f(data, count, factor); }

// `order` is above largest_fixed_order, or that order as half of a real transform.
template <EntrySet set, bool forward, class T>
void transform(const Plan<T> *plan, const T *src, T *dst, int order, bool norm, T *work) {
  constexpr const Kernels<T> &k = kernels<forward, T>;
  if (order == largest_fixed_order) {
    fixed_complex<forward>(order, false, src, dst, T(0));
  } else if (set == EntrySet::plain) {
    return k.plain(plan, src, dst, order, norm, work);
  } else if (order > largest_staged_order<set, T>) {
    return k.large(plan, src, dst, order, norm, work);
  } else {
    k.staged(src, dst, 1 << order, plan->twiddles, plan->reversal, work);
  }
  if (norm) multiply(dst, ptrdiff_t{2} << order, plan->norm_factor);
}
// Forward; the inverse with real and imaginary parts exchanged.
template <EntrySet set, class T>
void transform(const Plan<T> *plan, const T *src_re, const T *src_im, T *dst_re, T *dst_im, int order,
               bool norm, T *work) {
  constexpr const SplitKernels<T> &k = split_kernels<T>;
  if (set == EntrySet::plain) return k.plain(plan, src_re, src_im, dst_re, dst_im, order, norm, work);
  if (order > largest_staged_order<set, T>)
    return k.large(plan, src_re, src_im, dst_re, dst_im, order, norm, work);
  k.staged(src_re, src_im, dst_re, dst_im, 1 << order, plan->twiddles, work);
  if (!norm) return;
  multiply(dst_re, ptrdiff_t{1} << order, plan->norm_factor);
  multiply(dst_im, ptrdiff_t{1} << order, plan->norm_factor);
}

}  // namespace qkr::sigfft
