// Conversions between IEEE binary16, carried in 16-bit words, and single precision or 16-bit integers.
#include "sigfft/arrays/checked.h"
#include "sigfft/arrays/half.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <bool nearest>
QKR_NOINLINE void singles_to_halves(const float *src, uint16_t *dst, size_t len) {
  for_each_group<2 * lanes>(src, dst, len, [](const float *s, uint16_t *d) QKR_LAMBDA {
    f32 low, high;
    load(s, low);
    load(s + lanes, high);
    store_halves<nearest>(d, low, high);
  });
}
template <bool nearest>
QKR_NOINLINE void integers_to_halves(const int16_t *src, uint16_t *dst, size_t len) {
  for_each_group<2 * lanes>(src, dst, len, [](const int16_t *s, uint16_t *d) QKR_LAMBDA {
    const f32 low = singles(load_lanes(s)), high = singles(load_lanes(s + lanes));
    store_ordinary_halves<nearest>(d, low, high);
  });
}

template <bool nearest>
QKR_NOINLINE void scaled(const uint16_t *src, int16_t *dst, size_t len, float factor) {
  for_each_group<2 * lanes>(src, dst, len, [=](const uint16_t *s, int16_t *d) QKR_LAMBDA {
    i32 v[2];
    for (size_t k = 0; k < 2; ++k)
      v[k] = to_integers<nearest, uint16_t, int16_t>(load_numbers(s + k * lanes), factor);
    store_lanes(d, v);
  });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ENTRY_OF(zprStatus, ownsConvert_16f32f, (const uint16_t *src, float *dst, size_t len), (src, dst, len)) {
  for_each_group<2 * lanes>(src, dst, len, [](const uint16_t *s, float *d) QKR_LAMBDA {
    f32 low = load_numbers(s), high = load_numbers(s + lanes);
    if (any_nan(low, high)) [[unlikely]]
      low = load_halves(s), high = load_halves(s + lanes);
    store(d, low);
    store(d + lanes, high);
  });
  return zprStsNoErr;
}
QKR_ENTRY_OF(zprStatus, ownsConvert_32f16f, (const float *src, uint16_t *dst, size_t len, bool nearest),
             (src, dst, len, nearest)) {
  if (nearest) in_nearest_mode([=] { singles_to_halves<true>(src, dst, len); });
  else singles_to_halves<false>(src, dst, len);
  return zprStsNoErr;
}
QKR_ENTRY_OF(zprStatus, ownsConvert_16s16f, (const int16_t *src, uint16_t *dst, size_t len, bool nearest),
             (src, dst, len, nearest)) {
  if (nearest) in_nearest_mode([=] { integers_to_halves<true>(src, dst, len); });
  else integers_to_halves<false>(src, dst, len);
  return zprStsNoErr;
}
QKR_ENTRY_OF(zprStatus, ownsConvert_16f16s_Sfs,
             (const uint16_t *src, int16_t *dst, size_t len, bool nearest, float factor),
             (src, dst, len, nearest, factor)) {
  if (nearest) in_nearest_mode([=] { scaled<true>(src, dst, len, factor); });
  else scaled<false>(src, dst, len, factor);
  return zprStsNoErr;
}

#if QKR_BASELINE
using qkr::sigfft::checked;

zprStatus zprsConvert_16f32f(const uint16_t *src, float *dst, int32_t len) {
  return checked(src, dst, len, [=] { return ownsConvert_16f32f(src, dst, (size_t)len); });
}
zprStatus zprsConvert_32f16f(const float *src, uint16_t *dst, int32_t len, uint32_t mode) {
  return checked(src, dst, len, [=] { return ownsConvert_32f16f(src, dst, (size_t)len, mode == 1); });
}
zprStatus zprsConvert_16s16f(const int16_t *src, uint16_t *dst, int32_t len, uint32_t mode) {
  return checked(src, dst, len, [=] { return ownsConvert_16s16f(src, dst, (size_t)len, mode == 1); });
}
zprStatus zprsConvert_16f16s_Sfs(const uint16_t *src, int16_t *dst, int32_t len, uint32_t mode,
                                 int32_t scale) {
  // Times 2^40 all numbers but 0 are beyond the bounds, and by 2^40 they are all 0: with a scale kept within,
  // products are exact.
  const int32_t exponent = scale > 40 ? -40 : scale < -40 ? 40 : -scale;
  return checked(src, dst, len, [=] {
    return ownsConvert_16f16s_Sfs(src, dst, (size_t)len, mode == 1,
                                  qkr::sigfft::power_of_two<float>(exponent));
  });
}
#endif
