// One line through the engine, in place and unscaled: what codelets and lanes give the bits of.
#pragma once

#include <gtest/gtest.h>
#include <qkr/dft.h>
#include <qkr/sigfft.h>

namespace qkr::tests {

template <class T>
struct Engine;
#define QKR_ENGINE(T, C, R)                                                                                \
  template <>                                                                                              \
  struct Engine<T> {                                                                                       \
    static void complex(bool forward, int order, T *line) {                                                \
      zprsFFTSpec_C_##C *plan = nullptr;                                                                   \
      ASSERT_EQ(w6_zprsFFTInitAlloc_C_##C(&plan, order, 8, 0), zprStsNoErr);                               \
      const auto x = reinterpret_cast<zpr##C *>(line);                                                     \
      (forward ? w6_zprsFFTFwd_CToC_##C : w6_zprsFFTInv_CToC_##C)(x, x, plan, nullptr);                    \
      w6_zprsFFTFree_C_##C(plan);                                                                          \
    }                                                                                                      \
    static void real(bool forward, int order, int32_t format, T *line) {                                   \
      static constexpr zprStatus (*entries[][2])(const T *, T *, const zprsFFTSpec_R_##R *, uint8_t *) = { \
          {w6_zprsFFTInv_CCSToR_##R, w6_zprsFFTFwd_RToCCS_##R},                                            \
          {w6_zprsFFTInv_PackToR_##R, w6_zprsFFTFwd_RToPack_##R},                                          \
          {w6_zprsFFTInv_PermToR_##R, w6_zprsFFTFwd_RToPerm_##R}};                                         \
      zprsFFTSpec_R_##R *plan = nullptr;                                                                   \
      ASSERT_EQ(w6_zprsFFTInitAlloc_R_##R(&plan, order, 8, 0), zprStsNoErr);                               \
      entries[format - DFTX_CCS_FORMAT][forward](line, line, plan, nullptr);                               \
      w6_zprsFFTFree_R_##R(plan);                                                                          \
    }                                                                                                      \
  };
QKR_ENGINE(float, 32fc, 32f)
QKR_ENGINE(double, 64fc, 64f)
#undef QKR_ENGINE

}  // namespace qkr::tests
