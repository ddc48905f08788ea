// The complex transforms: checks, work buffer, choice of the path.
#include "sigfft/arrays/memory.h"
#include "sigfft/dispatch.h"

namespace qkr::sigfft {
namespace {

// Numbers in as many arrays as `arrays` has: source and result interleaved, or each as real and imaginary
// parts.
template <EntrySet set, bool forward, class T, class... Arrays>
zprStatus run(int32_t id, const void *opaque, uint8_t *work, Arrays... arrays) {
  const auto plan = (const Plan<T> *)opaque;
  if (!plan) return zprStsNullPtrErr;
  if (plan->id != id) return zprStsContextMatchErr;
  if ((!arrays || ...)) return zprStsNullPtrErr;
  if (plan->order <= largest_fixed_order) {
    const bool norm = forward ? plan->forward_norm : plan->inverse_norm;
    if constexpr (sizeof...(arrays) == 2)
      fixed_code<T>.complex[forward][norm][plan->order](arrays..., plan->norm_factor);
    else fixed_code<T>.split[forward][norm][plan->order](arrays..., plan->norm_factor);
    return zprStsNoErr;
  }
  const WorkBuffer<T> buffer(plan->work_bytes, work);
  if (buffer.failed) return zprStsMemAllocErr;
  transform<set, forward>(plan, arrays..., plan->order, buffer.start);
  return zprStsNoErr;
}

}  // namespace
}  // namespace qkr::sigfft

#define QKR_COMPLEX(prefix, set, direction, forward, T, p)                                                   \
  zprStatus prefix##zprsFFT##direction##_CToC_##p##fc(const zpr##p##fc *src, zpr##p##fc *dst,                \
                                                      const zprsFFTSpec_C_##p##fc *plan, uint8_t *work) {    \
    using namespace qkr::sigfft;                                                                             \
    return run<EntrySet::set, forward, T>(id_C_##p##fc, plan, work, (const T *)src, (T *)dst);               \
  }                                                                                                          \
  zprStatus prefix##zprsFFT##direction##_CToC_##p##fc_I(zpr##p##fc *data, const zprsFFTSpec_C_##p##fc *plan, \
                                                        uint8_t *work) {                                     \
    return prefix##zprsFFT##direction##_CToC_##p##fc(data, data, plan, work);                                \
  }                                                                                                          \
  zprStatus prefix##zprsFFT##direction##_CToC_##p##f(const T *src_re, const T *src_im, T *dst_re, T *dst_im, \
                                                     const zprsFFTSpec_C_##p##f *plan, uint8_t *work) {      \
    using namespace qkr::sigfft;                                                                             \
    return run<EntrySet::set, forward, T>(id_C_##p##f, plan, work, src_re, src_im, dst_re, dst_im);          \
  }                                                                                                          \
  zprStatus prefix##zprsFFT##direction##_CToC_##p##f_I(T *data_re, T *data_im,                               \
                                                       const zprsFFTSpec_C_##p##f *plan, uint8_t *work) {    \
    return prefix##zprsFFT##direction##_CToC_##p##f(data_re, data_im, data_re, data_im, plan, work);         \
  }
#define QKR_COMPLEX_SET(prefix, set)               \
  QKR_COMPLEX(prefix, set, Fwd, true, double, 64)  \
  QKR_COMPLEX(prefix, set, Inv, false, double, 64) \
  QKR_COMPLEX(prefix, set, Fwd, true, float, 32)   \
  QKR_COMPLEX(prefix, set, Inv, false, float, 32)
QKR_COMPLEX_SET(w6_, w6)
QKR_COMPLEX_SET(, plain)
