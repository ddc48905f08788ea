// The real transforms: checks, the complex transform of half the length, recombination, formats.
#include <string.h>

#include "sigfft/arrays/memory.h"
#include "sigfft/dispatch.h"

namespace qkr::sigfft {
namespace {

enum class Format { Perm, Pack, CCS };

template <class T>
struct RealKernels {
  void (*recombine)(T *data, int32_t half, const T *table);
  void (*recombine_inverse)(const T *src, T *dst, int32_t half, const T *table);
  void (*sixteen[2])(const Plan<T> *plan, const T *src, T *dst, int32_t last);  // inverse, forward
};
#define QKR_REAL_KERNELS(prefix, suffix)                                      \
  {                                                                           \
    prefix##zprs_recombineFwd_##suffix, prefix##zprs_recombineInv_##suffix, { \
      prefix##zprs_sixteenInv_##suffix, prefix##zprs_sixteenFwd_##suffix      \
    }                                                                         \
  }
template <EntrySet set, class T>
constexpr RealKernels<T> real_kernels;
template <>
constexpr RealKernels<double> real_kernels<EntrySet::w6, double> = QKR_REAL_KERNELS(w6_, 64f);
template <>
constexpr RealKernels<float> real_kernels<EntrySet::w6, float> = QKR_REAL_KERNELS(w6_, 32f);
template <>
constexpr RealKernels<double> real_kernels<EntrySet::plain, double> = QKR_REAL_KERNELS(, 64f);
template <>
constexpr RealKernels<float> real_kernels<EntrySet::plain, float> = QKR_REAL_KERNELS(, 32f);

// Where the spectrum of n numbers has its last one.
constexpr size_t last_place(Format format, size_t n) {
  return format == Format::Perm ? 1 : format == Format::Pack ? n - 1 : n;
}

// Sum and difference of two numbers; dst may hold them.
template <class T>
void butterfly(T a, T b, T *dst) {
  dst[0] = a + b;
  dst[1] = a - b;
}

template <Format format, class T>
void from_perm(T *data, size_t n) {
  if (format == Format::Pack && n > 2) {
    const T last = data[1];
    memmove(data + 1, data + 2, (n - 2) * sizeof(T));
    data[n - 1] = last;
  } else if (format == Format::CCS) {
    if (n > 1) data[n] = data[1], data[n + 1] = 0;
    data[1] = 0;
  }
}

template <Format format, class T>
void to_perm(const T *src, T *dst, size_t n) {
  const T first = src[0];
  if (n > 1) {
    const T last = src[last_place(format, n)];
    memmove(dst + 2, src + (format == Format::Pack ? 1 : 2), (n - 2) * sizeof(T));
    dst[1] = last;
  }
  dst[0] = first;
}

template <EntrySet set, Format format, class T>
void forward_transform(const Plan<T> *plan, const T *src, T *dst, T *work) {
  const size_t n = size_t{1} << plan->order;
  if (plan->order <= largest_fixed_order) {
    fixed_real<true>(plan->order, plan->forward_norm, src, dst, plan->norm_factor);
  } else {
    transform<set, true>(plan, src, dst, plan->order - 1, plan->forward_norm, work);
    butterfly(dst[0], dst[1], dst);
    real_kernels<set, T>.recombine(dst, (int32_t)(n / 2), plan->forward_real);
  }
  from_perm<format>(dst, n);
}

template <EntrySet set, Format format, class T>
void inverse_transform(const Plan<T> *plan, const T *src, T *dst, T *work) {
  const size_t n = size_t{1} << plan->order;
  const bool fixed = plan->order <= largest_fixed_order;
  if (format == Format::Pack || (fixed && format == Format::CCS)) {
    to_perm<format>(src, dst, n);
    src = dst;
  }
  if (fixed) {
    return fixed_real<false>(plan->order, plan->inverse_norm, src, dst, plan->norm_factor);
  }
  butterfly(src[0], src[format == Format::CCS ? n : 1], dst);
  real_kernels<set, T>.recombine_inverse(src, dst, (int32_t)(n / 2), plan->inverse_real);
  transform<set, false>(plan, dst, dst, plan->order - 1, plan->inverse_norm, work);
}

template <EntrySet set, bool forward, Format format, class T>
zprStatus run(int32_t id, const void *opaque, const T *src, T *dst, uint8_t *work) {
  const auto plan = (const Plan<T> *)opaque;
  if (!plan) return zprStsNullPtrErr;
  if (!is_of<set>(plan, id)) return zprStsContextMatchErr;
  if (!src || !dst) return zprStsNullPtrErr;
  if (plan->order == 4) {
    real_kernels<set, T>.sixteen[forward](plan, src, dst, (int32_t)last_place(format, 16));
    return zprStsNoErr;
  }
  const WorkBuffer<T> buffer(plan->work_bytes, work);
  if (buffer.failed) return zprStsMemAllocErr;
  if constexpr (forward) forward_transform<set, format>(plan, src, dst, buffer.start);
  else inverse_transform<set, format>(plan, src, dst, buffer.start);
  return zprStsNoErr;
}

}  // namespace
}  // namespace qkr::sigfft

using namespace qkr::sigfft;

#define QKR_REAL(set, forward, format, T, p, name, in_place)                               \
  zprStatus name(const T *src, T *dst, const zprsFFTSpec_R_##p##f *plan, uint8_t *work) {  \
    return run<EntrySet::set, forward, Format::format>(id_R_##p##f, plan, src, dst, work); \
  }                                                                                        \
  zprStatus in_place(T *data, const zprsFFTSpec_R_##p##f *plan, uint8_t *work) {           \
    return name(data, data, plan, work);                                                   \
  }
QKR_REAL(w6, true, Perm, double, 64, w6_zprsFFTFwd_RToPerm_64f, w6_zprsFFTFwd_RToPerm_64f_I)
QKR_REAL(w6, true, Pack, double, 64, w6_zprsFFTFwd_RToPack_64f, w6_zprsFFTFwd_RToPack_64f_I)
QKR_REAL(w6, true, CCS, double, 64, w6_zprsFFTFwd_RToCCS_64f, w6_zprsFFTFwd_RToCCS_64f_I)
QKR_REAL(w6, false, Perm, double, 64, w6_zprsFFTInv_PermToR_64f, w6_zprsFFTInv_PermToR_64f_I)
QKR_REAL(w6, false, Pack, double, 64, w6_zprsFFTInv_PackToR_64f, w6_zprsFFTInv_PackToR_64f_I)
QKR_REAL(w6, false, CCS, double, 64, w6_zprsFFTInv_CCSToR_64f, w6_zprsFFTInv_CCSToR_64f_I)
QKR_REAL(w6, true, Perm, float, 32, w6_zprsFFTFwd_RToPerm_32f, w6_zprsFFTFwd_RToPerm_32f_I)
QKR_REAL(w6, true, Pack, float, 32, w6_zprsFFTFwd_RToPack_32f, w6_zprsFFTFwd_RToPack_32f_I)
QKR_REAL(w6, true, CCS, float, 32, w6_zprsFFTFwd_RToCCS_32f, w6_zprsFFTFwd_RToCCS_32f_I)
QKR_REAL(w6, false, Perm, float, 32, w6_zprsFFTInv_PermToR_32f, w6_zprsFFTInv_PermToR_32f_I)
QKR_REAL(w6, false, Pack, float, 32, w6_zprsFFTInv_PackToR_32f, w6_zprsFFTInv_PackToR_32f_I)
QKR_REAL(w6, false, CCS, float, 32, w6_zprsFFTInv_CCSToR_32f, w6_zprsFFTInv_CCSToR_32f_I)
QKR_REAL(plain, true, Perm, double, 64, zprsFFTFwd_RToPerm_64f, zprsFFTFwd_RToPerm_64f_I)
QKR_REAL(plain, true, Pack, double, 64, zprsFFTFwd_RToPack_64f, zprsFFTFwd_RToPack_64f_I)
QKR_REAL(plain, true, CCS, double, 64, zprsFFTFwd_RToCCS_64f, zprsFFTFwd_RToCCS_64f_I)
QKR_REAL(plain, false, Perm, double, 64, zprsFFTInv_PermToR_64f, zprsFFTInv_PermToR_64f_I)
QKR_REAL(plain, false, Pack, double, 64, zprsFFTInv_PackToR_64f, zprsFFTInv_PackToR_64f_I)
QKR_REAL(plain, false, CCS, double, 64, zprsFFTInv_CCSToR_64f, zprsFFTInv_CCSToR_64f_I)
QKR_REAL(plain, true, Perm, float, 32, zprsFFTFwd_RToPerm_32f, zprsFFTFwd_RToPerm_32f_I)
QKR_REAL(plain, true, Pack, float, 32, zprsFFTFwd_RToPack_32f, zprsFFTFwd_RToPack_32f_I)
QKR_REAL(plain, true, CCS, float, 32, zprsFFTFwd_RToCCS_32f, zprsFFTFwd_RToCCS_32f_I)
QKR_REAL(plain, false, Perm, float, 32, zprsFFTInv_PermToR_32f, zprsFFTInv_PermToR_32f_I)
QKR_REAL(plain, false, Pack, float, 32, zprsFFTInv_PackToR_32f, zprsFFTInv_PackToR_32f_I)
QKR_REAL(plain, false, CCS, float, 32, zprsFFTInv_CCSToR_32f, zprsFFTInv_CCSToR_32f_I)
