// Conversions between IEEE binary16, carried in 16-bit words, and single precision or 16-bit integers.
#include "sigfft/checked.h"
#include "sigfft/convert.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

QKR_INLINE u32 choose(i32 condition, u32 yes, u32 no) {
  return ((u32)condition & yes) | (~(u32)condition & no);
}

// A binary16 in each lane. With its exponent and fraction moved to those of single precision, a normal number
// lacks 112 in the exponent, infinities and NaNs 224, and a subnormal one is an integer multiple of 2^-37.
QKR_INLINE f32 from_half(i32 half) {
  constexpr int32_t infinity = 31 << 23, least_normal = 1 << 23, missing = 112 << 23;
  const u32 sign = ((u32)half & 0x8000u) << 16;
  const i32 magnitude = (half & 0x7FFF) << 13;
  const u32 normal = (u32)(magnitude + missing + ((magnitude >= infinity) & missing));
  const u32 subnormal = bits(singles(magnitude) * 0x1p-37f);
  return real(choose(magnitude < least_normal, subnormal, normal) | sign);
}

// Half of the least subnormal number and all up to the whole of it are rounded as the whole.
template <bool nearest>
QKR_INLINE i32 subnormal_half(f32 magnitude) {
  const f32 units = magnitude * 0x1p24f;
  if constexpr (!nearest) return truncated(units);
  const f32 raised = larger(units, number(1.0f));
  return truncated(half_added(real(choose(units >= 0.5f, bits(raised), bits(units)))));
}

template <bool nearest>
QKR_INLINE i32 to_half(f32 x) {
  constexpr int32_t least_normal = 113 << 23, excess = 112 << 23, infinity = 255 << 23;
  const u32 sign = (bits(x) >> 16) & 0x8000u;
  const u32 magnitude = bits(x) & 0x7FFFFFFFu;
  u32 rounded = magnitude;
  if constexpr (nearest) rounded += 0xFFFu + ((magnitude >> 13) & 1u);
  const u32 shifted = (rounded - (uint32_t)excess) >> 13;
  u32 normal = choose((i32)shifted > 0x7C00, u32{} + 0x7C00u, shifted);
  normal |= (u32)((i32)magnitude > infinity) & 0x1FFu;
  const u32 subnormal = (u32)subnormal_half<nearest>(real(magnitude));
  return (i32)(choose((i32)magnitude < least_normal, subnormal, normal) | sign);
}

template <bool nearest, class Source, class Load>
QKR_INLINE void to_halves(const Source *src, uint16_t *dst, size_t len, Load load_singles) {
  for_each_group<2 * lanes>(src, dst, len, [=](const Source *s, uint16_t *d) QKR_LAMBDA {
    const i32 v[] = {to_half<nearest>(load_singles(s)), to_half<nearest>(load_singles(s + lanes))};
    store_lanes(d, v);
  });
}

template <bool nearest>
QKR_NOINLINE void scaled(const uint16_t *src, int16_t *dst, size_t len, float factor) {
  for_each_group<2 * lanes>(src, dst, len, [=](const uint16_t *s, int16_t *d) QKR_LAMBDA {
    i32 v[2];
    for (size_t k = 0; k < 2; ++k)
      v[k] = to_integers<nearest, int16_t>(from_half(load_lanes(s + k * lanes)), factor);
    store_lanes(d, v);
  });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ENTRY(ownsConvert_16f32f, (const uint16_t *src, float *dst, size_t len), (src, dst, len)) {
  for_each_group<lanes>(src, dst, len,
                        [](const uint16_t *s, float *d) QKR_LAMBDA { store(d, from_half(load_lanes(s))); });
}
QKR_ENTRY(ownsConvert_32f16f, (const float *src, uint16_t *dst, size_t len, bool nearest),
          (src, dst, len, nearest)) {
  const auto load_singles = [](const float *s) QKR_LAMBDA {
    f32 x;
    load(s, x);
    return x;
  };
  nearest ? to_halves<true>(src, dst, len, load_singles) : to_halves<false>(src, dst, len, load_singles);
}
QKR_ENTRY(ownsConvert_16s16f, (const int16_t *src, uint16_t *dst, size_t len, bool nearest),
          (src, dst, len, nearest)) {
  const auto load_singles = [](const int16_t *s) QKR_LAMBDA { return singles(load_lanes(s)); };
  nearest ? to_halves<true>(src, dst, len, load_singles) : to_halves<false>(src, dst, len, load_singles);
}
QKR_ENTRY(ownsConvert_16f16s_Sfs, (const uint16_t *src, int16_t *dst, size_t len, bool nearest, float factor),
          (src, dst, len, nearest, factor)) {
  nearest ? scaled<true>(src, dst, len, factor) : scaled<false>(src, dst, len, factor);
}

#if QKR_BASELINE
using qkr::sigfft::checked;

zprStatus zprsConvert_16f32f(const uint16_t *src, float *dst, int32_t len) {
  return checked(src, dst, len, [=] { ownsConvert_16f32f(src, dst, (size_t)len); });
}
zprStatus zprsConvert_32f16f(const float *src, uint16_t *dst, int32_t len, uint32_t mode) {
  return checked(src, dst, len, [=] { ownsConvert_32f16f(src, dst, (size_t)len, mode == 1); });
}
zprStatus zprsConvert_16s16f(const int16_t *src, uint16_t *dst, int32_t len, uint32_t mode) {
  return checked(src, dst, len, [=] { ownsConvert_16s16f(src, dst, (size_t)len, mode == 1); });
}
zprStatus zprsConvert_16f16s_Sfs(const uint16_t *src, int16_t *dst, int32_t len, uint32_t mode,
                                 int32_t scale) {
  // Times 2^40 all numbers but 0 are beyond the bounds, and by 2^40 they are all 0: with a scale kept within,
  // products are exact.
  const int32_t exponent = scale > 40 ? -40 : scale < -40 ? 40 : -scale;
  return checked(src, dst, len, [=] {
    ownsConvert_16f16s_Sfs(src, dst, (size_t)len, mode == 1, qkr::sigfft::power_of_two<float>(exponent));
  });
}
#endif
