// What the entries of complex and of real transforms share: the chirp route and the choice of kernels.
#pragma once

#include <utility>

#include "sigfft/any_length/plan/engine.h"
#include "sigfft/any_length/routes/kernels.h"
#include "sigfft/any_length/routes/short.h"

namespace qkr::sigfft {

// The kernels by precision and direction.
template <class T>
struct AnyLengthKernels {
  using Spec = const AnyLengthPlan<T> *;
  void (*factors)(Spec, const T *src, T *dst, T *work);
  void (*factors_split)(Spec, const T *src_re, const T *src_im, T *dst_re, T *dst_im, T *work);
  void (*out_of_order)(Spec, const T *src, T *dst);
  void (*short_factors)(Spec, const T *src, T *dst);
  void (*real_factors)(Spec, const T *src, T *dst, T *work);
  void (*direct)(const T *src, T *dst, int32_t points, const T *circle);
  void (*direct_split)(const T *src_re, const T *src_im, T *dst_re, T *dst_im, int32_t points,
                       const T *circle);
  void (*real_direct)(const T *src, T *dst, int32_t points, const T *circle);
  void (*recombine)(const T *src, T *dst, int32_t half, const T *table);
};
#define QKR_KERNELS(direction, suffix)                                                                      \
  {                                                                                                         \
    zprs_factors##direction##_##suffix##c, zprs_factors_##suffix, zprs_outOfOrder##direction##_##suffix##c, \
        zprs_short##direction##_##suffix##c, zprs_realFactors##direction##_##suffix,                        \
        zprs_direct##direction##_##suffix##c, zprs_direct_##suffix, zprs_realDirect##direction##_##suffix,  \
        zprs_recombineHalf##direction##_##suffix                                                            \
  }
template <bool forward, class T>
constexpr AnyLengthKernels<T> any_length_kernels = forward ? AnyLengthKernels<T> QKR_KERNELS(Fwd, 64f)
                                                           : AnyLengthKernels<T> QKR_KERNELS(Inv, 64f);
template <bool forward>
constexpr AnyLengthKernels<float> any_length_kernels<forward, float> =
    forward ? AnyLengthKernels<float> QKR_KERNELS(Fwd, 32f) : AnyLengthKernels<float> QKR_KERNELS(Inv, 32f);
#undef QKR_KERNELS

template <class T>
bool is_scaled(const AnyLengthPlan<T> *plan, bool forward) {
  return forward ? plan->forward_norm : plan->inverse_norm;
}

// Transforms of 1 to 4 points, scaled where the plan says so. Real ones write and read Perm.
template <bool forward, class T>
void fixed_transform(const AnyLengthPlan<T> *plan, const T *src, T *dst);
template <bool forward, class T>
void fixed_transform(const AnyLengthPlan<T> *plan, const T *src_re, const T *src_im, T *dst_re, T *dst_im);
template <bool forward, class T>
void fixed_real_transform(const AnyLengthPlan<T> *plan, const T *src, T *dst);

// The chirp route (L. I. Bluestein, IEEE Transactions on Audio and Electroacoustics 18 (1970) 451): a
// transform of any length as a cyclic convolution with a chirp.
template <bool forward, class T>
zprStatus chirp_transform(const AnyLengthPlan<T> *plan, const T *src, T *dst, T *work);
template <bool forward, class T>
zprStatus chirp_transform(const AnyLengthPlan<T> *plan, const T *src_re, const T *src_im, T *dst_re,
                          T *dst_im, T *work);
// Of real signals, of odd length; to and from Perm format.
template <bool forward, class T>
zprStatus real_chirp_transform(const AnyLengthPlan<T> *plan, const T *src, T *dst, T *work);

// The complex transform of an interleaved array by the route of the plan; unscaled.
template <bool forward, class T>
zprStatus run_route(const AnyLengthPlan<T> *plan, const T *src, T *dst, T *work) {
  constexpr const AnyLengthKernels<T> &kernels = any_length_kernels<forward, T>;
  if (plan->route == Route::chirp) return chirp_transform<forward>(plan, src, dst, work);
  if (plan->route == Route::direct) kernels.direct(src, dst, plan->complex_length, plan->circle);
  else if (plan->out_of_order) kernels.out_of_order(plan, src, dst);
  else if (is_short(plan->complex_length)) kernels.short_factors(plan, src, dst);
  else kernels.factors(plan, src, dst, work);
  return zprStsNoErr;
}
template <bool forward, class T>
zprStatus run_route(const AnyLengthPlan<T> *plan, const T *src_re, const T *src_im, T *dst_re, T *dst_im,
                    T *work) {
  constexpr const AnyLengthKernels<T> &kernels = any_length_kernels<forward, T>;
  if (plan->route == Route::chirp)
    return chirp_transform<forward>(plan, src_re, src_im, dst_re, dst_im, work);
  // The inverse is the forward transform with real and imaginary parts exchanged.
  if (!forward) std::swap(src_re, src_im), std::swap(dst_re, dst_im);
  if (plan->route == Route::direct)
    kernels.direct_split(src_re, src_im, dst_re, dst_im, plan->complex_length, plan->circle);
  else kernels.factors_split(plan, src_re, src_im, dst_re, dst_im, work);
  return zprStsNoErr;
}

}  // namespace qkr::sigfft
