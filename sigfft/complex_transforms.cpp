// The complex transforms: checks, work buffer, choice of the path.
#include "sigfft/arrays/memory.h"
#include "sigfft/dispatch.h"

namespace qkr::sigfft {
namespace {

// Numbers in as many arrays as `arrays` has: source and result interleaved, or each as real and imaginary
// parts.
template <EntrySet set, bool forward, class T, class... Arrays>
zprStatus run(int32_t id, const void *opaque, uint8_t *work, Arrays... arrays) {
  constexpr bool split = sizeof...(arrays) == 4;
  const auto plan = (const Plan<T> *)opaque;
  if (!plan) return zprStsNullPtrErr;
  if (!is_of<set>(plan, id)) return zprStsContextMatchErr;
  if ((!arrays || ...)) return zprStsNullPtrErr;
  const bool norm = forward ? plan->forward_norm : plan->inverse_norm;
  if (plan->order <= largest_fixed_order) {
    if constexpr (split) fixed_split(plan->order, norm, arrays..., plan->norm_factor);
    else fixed_complex<forward>(plan->order, norm, arrays..., plan->norm_factor);
    return zprStsNoErr;
  }
  const WorkBuffer<T> buffer(plan->work_bytes, work);
  if (buffer.failed) return zprStsMemAllocErr;
  if constexpr (split) transform<set>(plan, arrays..., plan->order, norm, buffer.start);
  else transform<set, forward>(plan, arrays..., plan->order, norm, buffer.start);
  return zprStsNoErr;
}

// The inverse transform of (re, im) is the forward one of (im, re), with the results exchanged as well.
template <EntrySet set, bool forward, class T>
zprStatus run_split(int32_t id, const void *plan, uint8_t *work, const T *src_re, const T *src_im, T *dst_re,
                    T *dst_im) {
  if constexpr (forward) return run<set, true, T>(id, plan, work, src_re, src_im, dst_re, dst_im);
  else return run<set, false, T>(id, plan, work, src_im, src_re, dst_im, dst_re);
}

}  // namespace
}  // namespace qkr::sigfft

using namespace qkr::sigfft;

#define QKR_COMPLEX(set, forward, T, p, name, in_place)                                                      \
  zprStatus name(const zpr##p##fc *src, zpr##p##fc *dst, const zprsFFTSpec_C_##p##fc *plan, uint8_t *work) { \
    return run<EntrySet::set, forward, T>(id_C_##p##fc, plan, work, (const T *)src, (T *)dst);               \
  }                                                                                                          \
  zprStatus in_place(zpr##p##fc *data, const zprsFFTSpec_C_##p##fc *plan, uint8_t *work) {                   \
    return name(data, data, plan, work);                                                                     \
  }
#define QKR_SPLIT(set, forward, T, p, name, in_place)                                                      \
  zprStatus name(const T *src_re, const T *src_im, T *dst_re, T *dst_im, const zprsFFTSpec_C_##p##f *plan, \
                 uint8_t *work) {                                                                          \
    return run_split<EntrySet::set, forward>(id_C_##p##f, plan, work, src_re, src_im, dst_re, dst_im);     \
  }                                                                                                        \
  zprStatus in_place(T *data_re, T *data_im, const zprsFFTSpec_C_##p##f *plan, uint8_t *work) {            \
    return name(data_re, data_im, data_re, data_im, plan, work);                                           \
  }
QKR_COMPLEX(w6, true, double, 64, w6_zprsFFTFwd_CToC_64fc, w6_zprsFFTFwd_CToC_64fc_I)
QKR_SPLIT(w6, true, double, 64, w6_zprsFFTFwd_CToC_64f, w6_zprsFFTFwd_CToC_64f_I)
QKR_COMPLEX(w6, false, double, 64, w6_zprsFFTInv_CToC_64fc, w6_zprsFFTInv_CToC_64fc_I)
QKR_SPLIT(w6, false, double, 64, w6_zprsFFTInv_CToC_64f, w6_zprsFFTInv_CToC_64f_I)
QKR_COMPLEX(w6, true, float, 32, w6_zprsFFTFwd_CToC_32fc, w6_zprsFFTFwd_CToC_32fc_I)
QKR_SPLIT(w6, true, float, 32, w6_zprsFFTFwd_CToC_32f, w6_zprsFFTFwd_CToC_32f_I)
QKR_COMPLEX(w6, false, float, 32, w6_zprsFFTInv_CToC_32fc, w6_zprsFFTInv_CToC_32fc_I)
QKR_SPLIT(w6, false, float, 32, w6_zprsFFTInv_CToC_32f, w6_zprsFFTInv_CToC_32f_I)
QKR_COMPLEX(plain, true, double, 64, zprsFFTFwd_CToC_64fc, zprsFFTFwd_CToC_64fc_I)
QKR_SPLIT(plain, true, double, 64, zprsFFTFwd_CToC_64f, zprsFFTFwd_CToC_64f_I)
QKR_COMPLEX(plain, false, double, 64, zprsFFTInv_CToC_64fc, zprsFFTInv_CToC_64fc_I)
QKR_SPLIT(plain, false, double, 64, zprsFFTInv_CToC_64f, zprsFFTInv_CToC_64f_I)
QKR_COMPLEX(plain, true, float, 32, zprsFFTFwd_CToC_32fc, zprsFFTFwd_CToC_32fc_I)
QKR_SPLIT(plain, true, float, 32, zprsFFTFwd_CToC_32f, zprsFFTFwd_CToC_32f_I)
QKR_COMPLEX(plain, false, float, 32, zprsFFTInv_CToC_32fc, zprsFFTInv_CToC_32fc_I)
QKR_SPLIT(plain, false, float, 32, zprsFFTInv_CToC_32f, zprsFFTInv_CToC_32f_I)
