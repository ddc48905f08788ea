// The per-element routines of the circular functions: an infinity is reported, anything else goes to a scalar
// core.
#include "simd/vectors.h"
#include "vecmath/errors/gate.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/circular/cores.h"

using namespace qkr;

namespace {

uint32_t high_word_magnitude(double x) { return (uint32_t)(sse2::bits(x) >> 32) & 0x7FFFFFFF; }

// Stores core(a[i]) by way of `store`; r1 and r2 are the results in the record of a report.
template <class Store>
void element(int32_t i, const double *a, double *r1, double *r2, const char *name, Store store) {
  const uint32_t magnitude = high_word_magnitude(a[i]);
  if (magnitude < 0x7FF00000) return store(a[i]);
  r1[i] = r2[i] = indefinite<double>();
  if (magnitude == 0x7FF00000) report_error(VXM_STATUS_ERRDOM, i, a, a, r1, r2, name);
}
template <class Store>
void element(int32_t i, const float *a, float *r1, float *r2, const char *name, Store store) {
  if (__builtin_fabsf(a[i]) != infinity<float>) return store(a[i]);
  r1[i] = r2[i] = indefinite<float>();
  report_error(VXM_STATUS_ERRDOM, i, a, a, r1, r2, name);
}

}  // namespace

// A tangent argument whose high word is 0 is returned as it is.
static double tangent(double x) { return high_word_magnitude(x) == 0 ? x : tangent_of_any(x); }

// A row: element, core, the routine, and its three entries with the names that they report.
#define QKR_ELEMENT_ENTRY(T, routine, entry, reported) \
  extern "C" void entry(int32_t i, const T *a, T *r) { routine(i, a, r, nullptr, reported); }
#define QKR_ELEMENT(T, core, routine, entry_1, reported_1, entry_2, reported_2, entry_3, reported_3) \
  extern "C" void routine(int32_t i, const T *a, T *r, const void *, const char *name) {             \
    element(i, a, r, r, name, [&](double x) { r[i] = (T)core(x); });                                 \
  }                                                                                                  \
  QKR_ELEMENT_ENTRY(T, routine, entry_1, reported_1)                                                 \
  QKR_ELEMENT_ENTRY(T, routine, entry_2, reported_2)                                                 \
  QKR_ELEMENT_ENTRY(T, routine, entry_3, reported_3)

// clang-format off
QKR_ELEMENT(double, sine_of_any, _vxmdSin_SC,
            _vxmdSin_SC_HA, "dSin_HA", _vxmdSin_SC_LA, "dSin_LA", _vxmdSin_SC_A11, "dSin_A11")
QKR_ELEMENT(double, cosine_of_any, _vxmdCos_SC,
            _vxmdCos_SC_HA, "dCos_HA", _vxmdCos_SC_LA, "dCos_LA", _vxmdCos_SC_A11, "dCos_A11")
QKR_ELEMENT(double, tangent, _vxmdTan_SC,
            _vxmdTan_SC_HA, "dTan_HA", _vxmdTan_SC_LA, "dTan_LA", _vxmdTan_SC_A11, "dTan_A11")
QKR_ELEMENT(float, sine_of_any, _vxmsSin_SC,
            _vxmsSin_SC_HA, "sSin_HA", _vxmsSin_SC_LA, "sSin_LA", _vxmsSin_SC_A11, "sSin_A11")
QKR_ELEMENT(float, cosine_of_any, _vxmsCos_SC,
            _vxmsCos_SC_HA, "sCos_HA", _vxmsCos_SC_LA, "sCos_LA", _vxmsCos_SC_A11, "sCos_A11")
QKR_ELEMENT(float, tangent, _vxmsTan_SC,
            _vxmsTan_SC_HA, "sTan_HA", _vxmsTan_SC_LA, "sTan_LA", _vxmsTan_SC_A11, "sTan_A11")
// clang-format on

#define QKR_SINCOS_ENTRY(T, routine, entry, reported) \
  extern "C" void entry(int32_t i, const T *a, T *r1, T *r2) { routine(i, a, r1, r2, reported); }
#define QKR_SINCOS(T, routine, entry_1, reported_1, entry_2, reported_2, entry_3, reported_3) \
  extern "C" void routine(int32_t i, const T *a, T *r1, T *r2, const char *name) {            \
    element(i, a, r1, r2, name, [&](double x) {                                               \
      double sine, cosine;                                                                    \
      sine_and_cosine_of_any(x, &sine, &cosine);                                              \
      r1[i] = (T)sine, r2[i] = (T)cosine;                                                     \
    });                                                                                       \
  }                                                                                           \
  QKR_SINCOS_ENTRY(T, routine, entry_1, reported_1)                                           \
  QKR_SINCOS_ENTRY(T, routine, entry_2, reported_2)                                           \
  QKR_SINCOS_ENTRY(T, routine, entry_3, reported_3)

QKR_SINCOS(double, _vxmdSinCos_SC, _vxmdSinCos_SC_HA, "dSinCos_HA", _vxmdSinCos_SC_LA, "dSinCos_LA",
           _vxmdSinCos_SC_A11, "dSinCos_A11")
QKR_SINCOS(float, _vxmsSinCos_SC, _vxmsSinCos_SC_HA, "sSinCos_HA", _vxmsSinCos_SC_LA, "sSinCos_LA",
           _vxmsSinCos_SC_A11, "sSinCos_A11")
