// The real transforms of any length: checks, the route to or from Perm format, the other formats. A signal of
// even length is transformed as half as many complex numbers, with a recombination.
#include <string.h>

#include "sigfft/any_length/routes.h"
#include "sigfft/dispatch.h"

namespace qkr::sigfft {
namespace {

enum class Format { Perm, Pack, CCS };

// From Perm format, in place.
template <Format format, class T>
void from_perm(T *data, size_t n) {
  if (n % 2) {
    if (format != Format::CCS) return;
    memmove(data + 2, data + 1, (n - 1) * sizeof(T));
    data[1] = 0;
  } else if (format == Format::Pack) {
    const T last = data[1];
    memmove(data + 1, data + 2, (n - 2) * sizeof(T));
    data[n - 1] = last;
  } else if (format == Format::CCS) {
    data[n] = data[1];
    data[1] = data[n + 1] = 0;
  }
}
// To Perm format; dst may be src.
template <Format format, class T>
void to_perm(const T *src, T *dst, size_t n) {
  const T first = src[0];
  if (n % 2) {
    memmove(dst + 1, src + (format == Format::CCS ? 2 : 1), (n - 1) * sizeof(T));
  } else {
    const T last = src[format == Format::Perm ? 1 : format == Format::Pack ? n - 1 : n];
    memmove(dst + 2, src + (format == Format::Pack ? 1 : 2), (n - 2) * sizeof(T));
    dst[1] = last;
  }
  dst[0] = first;
}

template <bool forward, class T>
zprStatus odd_length(const AnyLengthPlan<T> *plan, const T *src, T *dst, T *work) {
  constexpr const AnyLengthKernels<T> &kernels = any_length_kernels<forward, T>;
  if (plan->route == Route::chirp) return real_chirp_transform<forward>(plan, src, dst, work);
  if (plan->route == Route::direct) kernels.real_direct(src, dst, plan->length, plan->circle);
  else kernels.real_factors(plan, src, dst, work);
  return zprStsNoErr;
}

template <bool forward, class T>
zprStatus even_length(const AnyLengthPlan<T> *plan, const T *src, T *dst, T *work) {
  const auto sum_and_difference = [&](const T *pair) {
    const T a = pair[0], b = pair[1];
    dst[0] = a + b, dst[1] = a - b;
  };
  constexpr auto recombine = any_length_kernels<forward, T>.recombine;
  if (forward) {
    const zprStatus status = run_route<true>(plan, src, dst, work);
    if (status != zprStsNoErr) return status;
    sum_and_difference(dst);
    recombine(dst, dst, plan->complex_length, plan->forward_real);
    return zprStsNoErr;
  }
  sum_and_difference(src);
  recombine(src, dst, plan->complex_length, plan->inverse_real);
  return run_route<false>(plan, dst, dst, work);
}

// Between the signal and Perm format; scaled.
template <bool forward, class T>
zprStatus perm_transform(const AnyLengthPlan<T> *plan, const T *src, T *dst, const WorkBuffer<T> &work) {
  if (plan->route == Route::fixed) return fixed_real_transform<forward>(plan, src, dst), zprStsNoErr;
  if (plan->route == Route::power_of_two)
    return (forward ? Engine<T>::to_perm : Engine<T>::from_perm)(src, dst, plan->engine,
                                                                 (uint8_t *)work.start);
  const zprStatus status = plan->length % 2 ? odd_length<forward>(plan, src, dst, work.start)
                                            : even_length<forward>(plan, src, dst, work.start);
  if (status == zprStsNoErr && is_scaled(plan, forward)) multiply(dst, plan->length, plan->norm_factor);
  return status;
}

template <bool forward, Format format, class T>
zprStatus run(int32_t id, const void *opaque, const T *src, T *dst, uint8_t *callers_work) {
  const auto plan = (const AnyLengthPlan<T> *)opaque;
  if (!plan) return zprStsNullPtrErr;
  if (plan->id != id) return zprStsContextMatchErr;
  if (!src || !dst) return zprStsNullPtrErr;
  const WorkBuffer<T> work(plan->work_bytes, callers_work);
  if (work.failed) return zprStsMemAllocErr;
  const auto n = (size_t)plan->length;
  if (!forward && format != Format::Perm) {
    to_perm<format>(src, dst, n);
    src = dst;
  }
  const zprStatus status = perm_transform<forward>(plan, src, dst, work);
  if (forward && status == zprStsNoErr) from_perm<format>(dst, n);
  return status;
}

}  // namespace
}  // namespace qkr::sigfft

#define QKR_REAL(name, Spec, forward, format, id, T)                      \
  zprStatus name(const T *src, T *dst, const Spec *plan, uint8_t *work) { \
    using namespace qkr::sigfft;                                          \
    return run<forward, Format::format>(id, plan, src, dst, work);        \
  }
QKR_REAL(w6_zprsDFTFwd_RToPerm_32f, zprsDFTSpec_R_32f, true, Perm, id_any_R_32f, float)
QKR_REAL(w6_zprsDFTFwd_RToPack_32f, zprsDFTSpec_R_32f, true, Pack, id_any_R_32f, float)
QKR_REAL(w6_zprsDFTFwd_RToCCS_32f, zprsDFTSpec_R_32f, true, CCS, id_any_R_32f, float)
QKR_REAL(w6_zprsDFTInv_PermToR_32f, zprsDFTSpec_R_32f, false, Perm, id_any_R_32f, float)
QKR_REAL(w6_zprsDFTInv_PackToR_32f, zprsDFTSpec_R_32f, false, Pack, id_any_R_32f, float)
QKR_REAL(w6_zprsDFTInv_CCSToR_32f, zprsDFTSpec_R_32f, false, CCS, id_any_R_32f, float)
QKR_REAL(w6_zprsDFTFwd_RToPerm_64f, zprsDFTSpec_R_64f, true, Perm, id_any_R_64f, double)
QKR_REAL(w6_zprsDFTFwd_RToPack_64f, zprsDFTSpec_R_64f, true, Pack, id_any_R_64f, double)
QKR_REAL(w6_zprsDFTFwd_RToCCS_64f, zprsDFTSpec_R_64f, true, CCS, id_any_R_64f, double)
QKR_REAL(w6_zprsDFTInv_PermToR_64f, zprsDFTSpec_R_64f, false, Perm, id_any_R_64f, double)
QKR_REAL(w6_zprsDFTInv_PackToR_64f, zprsDFTSpec_R_64f, false, Pack, id_any_R_64f, double)
QKR_REAL(w6_zprsDFTInv_CCSToR_64f, zprsDFTSpec_R_64f, false, CCS, id_any_R_64f, double)
