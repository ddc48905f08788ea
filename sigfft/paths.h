// Which kernel transforms numbers of an order: shared by the complex and the real transforms.
#pragma once

#include "sigfft/fixed.h"
#include "sigfft/kernels.h"
#include "sigfft/layout.h"

namespace qkr::sigfft {

template <class T>
struct Kernels {
  using Interleaved = void (*)(const Plan<T> *, const T *, T *, int32_t, T *);
  using Separate = void (*)(const Plan<T> *, const T *, const T *, T *, T *, int32_t, T *);
  void (*staged)(const T *, T *, int32_t, const T *, const uint32_t *, T *);
  void (*staged_separate)(const T *, const T *, T *, T *, int32_t, const T *, const uint32_t *, T *);
  Interleaved large, plain;
  Separate large_separate, plain_separate;
};
#define QKR_KERNELS(direction, suffix)                                                        \
  {                                                                                           \
    w6_zprs_cRadix4##direction##Norm_##suffix##c, w6_zprs_crRadix4##direction##Norm_##suffix, \
        w6_zprs_cFft##direction##_Large_##suffix##c, zprs_cFft##direction##_##suffix##c,      \
        w6_zprs_crFft##direction##_Large_##suffix, zprs_crFft##direction##_##suffix           \
  }
template <bool forward, class T>
constexpr Kernels<T> kernels = forward ? Kernels<T> QKR_KERNELS(Fwd, 64f) : Kernels<T> QKR_KERNELS(Inv, 64f);
template <bool forward>
constexpr Kernels<float> kernels<forward, float> = forward ? Kernels<float> QKR_KERNELS(Fwd, 32f)
                                                           : Kernels<float> QKR_KERNELS(Inv, 32f);
#undef QKR_KERNELS

inline void multiply(double *data, ptrdiff_t count, double factor) {
  w6_zprs_rbMpy1_64f(data, count, factor);
}
inline void multiply(float *data, ptrdiff_t count, float factor) { w6_zprs_rbMpy1_32f(data, count, factor); }

// `order` is above largest_fixed_order, or that order as half of a real transform; normalised where the plan
// says so.
template <EntrySet set, bool forward, class T>
void transform(const Plan<T> *plan, const T *src, T *dst, int order, T *work) {
  constexpr const Kernels<T> &k = kernels<forward, T>;
  if (order == largest_fixed_order) {
    (forward ? fixed_code<T>.tbl_cFFTfwd_small : fixed_code<T>.tbl_cFFTinv_small)[order](src, dst, 0);
  } else if (set == EntrySet::plain) {
    return k.plain(plan, src, dst, order, work);
  } else if (order > largest_staged_order<set, T>) {
    return k.large(plan, src, dst, order, work);
  } else {
    k.staged(src, dst, 1 << order, plan->twiddleL1, plan->bitRevTable, work);
  }
  if (forward ? plan->fwdNorm : plan->invNorm) multiply(dst, ptrdiff_t{2} << order, plan->normFactor);
}
template <EntrySet set, bool forward, class T>
void transform(const Plan<T> *plan, const T *src_re, const T *src_im, T *dst_re, T *dst_im, int order,
               T *work) {
  constexpr const Kernels<T> &k = kernels<forward, T>;
  if (set == EntrySet::plain) return k.plain_separate(plan, src_re, src_im, dst_re, dst_im, order, work);
  if (order > largest_staged_order<set, T>)
    return k.large_separate(plan, src_re, src_im, dst_re, dst_im, order, work);
  k.staged_separate(src_re, src_im, dst_re, dst_im, 1 << order, plan->twiddleL1, plan->bitRevTable, work);
  if (!(forward ? plan->fwdNorm : plan->invNorm)) return;
  multiply(dst_re, ptrdiff_t{1} << order, plan->normFactor);
  multiply(dst_im, ptrdiff_t{1} << order, plan->normFactor);
}

// The work buffer of one call: the caller's, or one of its own.
template <class T>
struct WorkBuffer {
  T *start = nullptr;
  void *own = nullptr;
  bool failed = false;

  WorkBuffer(const Plan<T> *plan, uint8_t *callers) {
    if (plan->bufSize <= 0) return;
    if (callers) {
      start = (T *)align16(callers);
    } else {
      own = allocate_block((size_t)plan->bufSize + 32);
      start = (T *)(((size_t)own + 63) & ~size_t{63});  // what the widest registers like best
      failed = !own;
    }
  }
  ~WorkBuffer() {
    if (own) release_block(own);
  }
};

}  // namespace qkr::sigfft
