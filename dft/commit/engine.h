// The transforms of the signal engine that lines are made of, by precision.
#pragma once

#include <qkr/sigfft_dft.h>

#include "dft/commit/back_end.h"

namespace qkr::dft {

inline int32_t code_of_status(zprStatus status) {
  return status == zprStsNoErr         ? DFTX_NO_ERROR
         : status == zprStsMemAllocErr ? DFTX_MEMORY_ERROR
                                       : DFTX_ENGINE_ERROR;
}

// A kind of plan without its type.
struct PlanKind {
  zprStatus (*make)(void **plan, int32_t length);
  zprStatus (*work_size)(const void *plan, int32_t *bytes);
  zprStatus (*release)(void *plan);
};

constexpr int32_t unscaled = 8, no_hint = 0;

#define QKR_PLAN_KIND(Spec, InitAlloc, GetBufSize, Free)                                                     \
  {                                                                                                          \
    [](void **plan, int32_t length) {                                                                        \
      return InitAlloc(reinterpret_cast<Spec **>(plan), length, unscaled, no_hint);                          \
    },                                                                                                       \
        [](const void *plan, int32_t *bytes) { return GetBufSize(static_cast<const Spec *>(plan), bytes); }, \
        [](void *plan) { return Free(static_cast<Spec *>(plan)); }                                           \
  }

// Plans, and by direction the transforms of a line: complex ones in natural order and in the engine's own,
// real ones by format, from DFTX_CCS_FORMAT on.
template <class T>
struct Engine;

#define QKR_ENGINE(T, C, R)                                                                              \
  template <>                                                                                            \
  struct Engine<T> {                                                                                     \
    using Number = zpr##C;                                                                               \
    using ComplexPlan = zprsDFTSpec_C_##C;                                                               \
    using ScrambledPlan = zprsDFTOutOrdSpec_C_##C;                                                       \
    using RealPlan = zprsDFTSpec_R_##R;                                                                  \
    static constexpr PlanKind complex = QKR_PLAN_KIND(ComplexPlan, w6_zprsDFTInitAlloc_C_##C,            \
                                                      w6_zprsDFTGetBufSize_C_##C, w6_zprsDFTFree_C_##C); \
    static constexpr PlanKind scrambled =                                                                \
        QKR_PLAN_KIND(ScrambledPlan, w6_zprsDFTOutOrdInitAlloc_C_##C, w6_zprsDFTOutOrdGetBufSize_C_##C,  \
                      w6_zprsDFTOutOrdFree_C_##C);                                                       \
    static constexpr PlanKind real = QKR_PLAN_KIND(RealPlan, w6_zprsDFTInitAlloc_R_##R,                  \
                                                   w6_zprsDFTGetBufSize_R_##R, w6_zprsDFTFree_R_##R);    \
                                                                                                         \
    static constexpr zprStatus (*complex_line[])(const Number *, Number *, const ComplexPlan *,          \
                                                 uint8_t *) = {w6_zprsDFTInv_CToC_##C,                   \
                                                               w6_zprsDFTFwd_CToC_##C};                  \
    static constexpr zprStatus (*scrambled_line[])(const Number *, Number *, const ScrambledPlan *,      \
                                                   uint8_t *) = {w6_zprsDFTOutOrdInv_CToC_##C,           \
                                                                 w6_zprsDFTOutOrdFwd_CToC_##C};          \
    static constexpr zprStatus (*real_line[][2])(const T *, T *, const RealPlan *, uint8_t *) = {        \
        {w6_zprsDFTInv_CCSToR_##R, w6_zprsDFTFwd_RToCCS_##R},                                            \
        {w6_zprsDFTInv_PackToR_##R, w6_zprsDFTFwd_RToPack_##R},                                          \
        {w6_zprsDFTInv_PermToR_##R, w6_zprsDFTFwd_RToPerm_##R}};                                         \
  };
QKR_ENGINE(float, 32fc, 32f)
QKR_ENGINE(double, 64fc, 64f)
#undef QKR_ENGINE
#undef QKR_PLAN_KIND
inline const PlanKind &complex_plan(const DftDescriptor *head) {
  return head->precision == DFTX_DOUBLE ? Engine<double>::complex : Engine<float>::complex;
}
inline const PlanKind &scrambled_plan(const DftDescriptor *head) {
  return head->precision == DFTX_DOUBLE ? Engine<double>::scrambled : Engine<float>::scrambled;
}
inline const PlanKind &real_plan(const DftDescriptor *head) {
  return head->precision == DFTX_DOUBLE ? Engine<double>::real : Engine<float>::real;
}

// The plan of a record, unless the other direction has made it already.
inline int32_t make_plan(const PlanKind &kind, void *&plan, DftDescriptor *record) {
  if (plan) return DFTX_NO_ERROR;
  int32_t bytes = 0;
  zprStatus status = kind.make(&plan, record->length);
  if (status == zprStsNoErr) status = kind.work_size(plan, &bytes);
  if (bytes > record->work_size) record->work_size = bytes;
  return code_of_status(status);
}

}  // namespace qkr::dft
