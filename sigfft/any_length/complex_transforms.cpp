// The complex transforms of any length: checks, work buffer, route, normalisation.
#include "sigfft/any_length/routes.h"
#include "sigfft/dispatch.h"

namespace qkr::sigfft {
namespace {

template <class T>
void scale(const AnyLengthPlan<T> *plan, const T *, T *dst) {
  multiply(dst, 2 * (ptrdiff_t)plan->length, plan->norm_factor);
}
template <class T>
void scale(const AnyLengthPlan<T> *plan, const T *, const T *, T *dst_re, T *dst_im) {
  multiply(dst_re, plan->length, plan->norm_factor);
  multiply(dst_im, plan->length, plan->norm_factor);
}

// Numbers in as many arrays as `arrays` has: source and result interleaved, or each as real and imaginary
// parts.
template <bool forward, class T, class... Arrays>
zprStatus run(int32_t id, const void *opaque, uint8_t *callers_work, Arrays... arrays) {
  const auto plan = (const AnyLengthPlan<T> *)opaque;
  if (!plan) return zprStsNullPtrErr;
  if (plan->id != id) return zprStsContextMatchErr;
  if ((!arrays || ...)) return zprStsNullPtrErr;
  if (plan->route == Route::fixed) return fixed_transform<forward>(plan, arrays...), zprStsNoErr;
  const WorkBuffer<T> work(plan->work_bytes, callers_work);
  if (work.failed) return zprStsMemAllocErr;
  if (plan->route == Route::power_of_two)
    return Engine<T>::template transform<forward>(plan->engine, arrays..., (uint8_t *)work.start);
  const zprStatus status = run_route<forward>(plan, arrays..., work.start);
  if (status == zprStsNoErr && is_scaled(plan, forward)) scale(plan, arrays...);
  return status;
}

}  // namespace
}  // namespace qkr::sigfft

#define QKR_INTERLEAVED(name, Spec, forward, id, T, Complex)                          \
  zprStatus name(const Complex *src, Complex *dst, const Spec *plan, uint8_t *work) { \
    using namespace qkr::sigfft;                                                      \
    return run<forward, T>(id, plan, work, (const T *)src, (T *)dst);                 \
  }
#define QKR_SPLIT(name, Spec, forward, id, T)                                                               \
  zprStatus name(const T *src_re, const T *src_im, T *dst_re, T *dst_im, const Spec *plan, uint8_t *work) { \
    using namespace qkr::sigfft;                                                                            \
    return run<forward, T>(id, plan, work, src_re, src_im, dst_re, dst_im);                                 \
  }
QKR_INTERLEAVED(w6_zprsDFTFwd_CToC_32fc, zprsDFTSpec_C_32fc, true, id_any_C_32fc, float, zpr32fc)
QKR_INTERLEAVED(w6_zprsDFTInv_CToC_32fc, zprsDFTSpec_C_32fc, false, id_any_C_32fc, float, zpr32fc)
QKR_INTERLEAVED(w6_zprsDFTFwd_CToC_64fc, zprsDFTSpec_C_64fc, true, id_any_C_64fc, double, zpr64fc)
QKR_INTERLEAVED(w6_zprsDFTInv_CToC_64fc, zprsDFTSpec_C_64fc, false, id_any_C_64fc, double, zpr64fc)
QKR_SPLIT(w6_zprsDFTFwd_CToC_32f, zprsDFTSpec_C_32f, true, id_any_C_32f, float)
QKR_SPLIT(w6_zprsDFTInv_CToC_32f, zprsDFTSpec_C_32f, false, id_any_C_32f, float)
QKR_SPLIT(w6_zprsDFTFwd_CToC_64f, zprsDFTSpec_C_64f, true, id_any_C_64f, double)
QKR_SPLIT(w6_zprsDFTInv_CToC_64f, zprsDFTSpec_C_64f, false, id_any_C_64f, double)
QKR_INTERLEAVED(w6_zprsDFTOutOrdFwd_CToC_32fc, zprsDFTOutOrdSpec_C_32fc, true, id_out_of_order_C_32fc, float,
                zpr32fc)
QKR_INTERLEAVED(w6_zprsDFTOutOrdInv_CToC_32fc, zprsDFTOutOrdSpec_C_32fc, false, id_out_of_order_C_32fc, float,
                zpr32fc)
QKR_INTERLEAVED(w6_zprsDFTOutOrdFwd_CToC_64fc, zprsDFTOutOrdSpec_C_64fc, true, id_out_of_order_C_64fc, double,
                zpr64fc)
QKR_INTERLEAVED(w6_zprsDFTOutOrdInv_CToC_64fc, zprsDFTOutOrdSpec_C_64fc, false, id_out_of_order_C_64fc,
                double, zpr64fc)
