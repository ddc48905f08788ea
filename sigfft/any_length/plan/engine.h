// The power-of-two engine by precision and form of the data: what the routes that rest on it call.
#pragma once

#include "sigfft/any_length/plan/plan.h"

namespace qkr::sigfft {

template <class T>
struct Engine;

#define QKR_ENGINE(T, p)                                                                                     \
  template <>                                                                                                \
  struct Engine<T> {                                                                                         \
    using Complex = zpr##p##fc;                                                                              \
    using InterleavedPlan = zprsFFTSpec_C_##p##fc;                                                           \
    using SplitPlan = zprsFFTSpec_C_##p##f;                                                                  \
    using RealPlan = zprsFFTSpec_R_##p##f;                                                                   \
                                                                                                             \
    static zprStatus build(int32_t id, Plan<T> **plan, int32_t order, int32_t flag, int32_t hint) {          \
      if (id == id_any_R_##p##f) return w6_zprsFFTInitAlloc_R_##p##f((RealPlan **)plan, order, flag, hint);  \
      if (id == id_any_C_##p##f) return w6_zprsFFTInitAlloc_C_##p##f((SplitPlan **)plan, order, flag, hint); \
      return w6_zprsFFTInitAlloc_C_##p##fc((InterleavedPlan **)plan, order, flag, hint);                     \
    }                                                                                                        \
    static zprStatus work_bytes(int32_t order, int32_t *bytes) {                                             \
      int32_t plan_bytes, scratch_bytes;                                                                     \
      return w6_zprsFFTGetSize_C_##p##fc(order, 8, 0, &plan_bytes, &scratch_bytes, bytes);                   \
    }                                                                                                        \
    static void release(Plan<T> *plan) {                                                                     \
      if (plan->id == id_R_##p##f) w6_zprsFFTFree_R_##p##f((RealPlan *)plan);                                \
      else if (plan->id == id_C_##p##f) w6_zprsFFTFree_C_##p##f((SplitPlan *)plan);                          \
      else w6_zprsFFTFree_C_##p##fc((InterleavedPlan *)plan);                                                \
    }                                                                                                        \
    template <bool forward>                                                                                  \
    static zprStatus transform(const Plan<T> *plan, const T *src, T *dst, uint8_t *work) {                   \
      return (forward ? w6_zprsFFTFwd_CToC_##p##fc : w6_zprsFFTInv_CToC_##p##fc)(                            \
          (const Complex *)src, (Complex *)dst, (const InterleavedPlan *)plan, work);                        \
    }                                                                                                        \
    template <bool forward>                                                                                  \
    static zprStatus transform(const Plan<T> *plan, const T *src_re, const T *src_im, T *dst_re, T *dst_im,  \
                               uint8_t *work) {                                                              \
      return (forward ? w6_zprsFFTFwd_CToC_##p##f : w6_zprsFFTInv_CToC_##p##f)(                              \
          src_re, src_im, dst_re, dst_im, (const SplitPlan *)plan, work);                                    \
    }                                                                                                        \
    static zprStatus to_perm(const T *src, T *dst, const Plan<T> *plan, uint8_t *work) {                     \
      return w6_zprsFFTFwd_RToPerm_##p##f(src, dst, (const RealPlan *)plan, work);                           \
    }                                                                                                        \
    static zprStatus from_perm(const T *src, T *dst, const Plan<T> *plan, uint8_t *work) {                   \
      return w6_zprsFFTInv_PermToR_##p##f(src, dst, (const RealPlan *)plan, work);                           \
    }                                                                                                        \
  };
QKR_ENGINE(double, 64)
QKR_ENGINE(float, 32)
#undef QKR_ENGINE

}  // namespace qkr::sigfft
