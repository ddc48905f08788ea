// Conversions between integers and floating point.
#include "sigfft/arrays/convert.h"

#include "sigfft/arrays/byte_values.h"
#include "sigfft/arrays/checked.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class Source>
QKR_INLINE void to_singles(const Source *src, float *dst, size_t len) {
  for_each_group<lanes>(src, dst, len,
                        [](const Source *s, float *d) QKR_LAMBDA { store(d, singles(load_lanes(s))); });
}

// Bytes that do not fill a vector are looked up.
template <class Byte>
QKR_INLINE void bytes_to_singles(const Byte *src, float *dst, size_t len) {
  if (len < lanes)
    for (size_t i = 0; i < len; ++i) dst[i] = byte_values[src[i]];
  else to_singles(src, dst, len);
}

template <class T>
struct Loaded {
  using type = f32;
};
template <>
struct Loaded<double> {
  using type = Two<f64>;
};

template <bool nearest, class Source, class Target>
QKR_NOINLINE void scaled(const Source *src, Target *dst, size_t len, Source factor) {
  constexpr size_t vectors = sizeof(int32_t) / sizeof(Target);
  for_each_group<vectors * lanes>(src, dst, len, [=](const Source *s, Target *d) QKR_LAMBDA {
    i32 v[vectors];
    for (size_t k = 0; k < vectors; ++k) {
      typename Loaded<Source>::type x;
      load(s + k * lanes, x);
      v[k] = to_integers<nearest, Source, Target>(x, factor);
    }
    store_lanes(d, v);
  });
}

// Nothing between the lanes' range and 2^31 is a number of single precision; what is beyond becomes the
// lowest integer, whose complement is the highest.
template <bool nearest>
QKR_NOINLINE void scaled(const float *src, int32_t *dst, size_t len, sigfft::WideFactor factor) {
  for_each_group<lanes>(src, dst, len, [=](const float *s, int32_t *d) QKR_LAMBDA {
    f32 v;
    load(s, v);
    v = v * number(factor.first) * number(factor.second);
    const i32 result = integers<nearest>(v) ^ (i32)(v >= 0x1p31f);
    store_lanes(d, &result);
  });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_ENTRY_OF(zprStatus, ownsConvert_8s32f, (const int8_t *src, float *dst, size_t len), (src, dst, len)) {
  bytes_to_singles(src, dst, len);
  return zprStsNoErr;
}
QKR_ENTRY_OF(zprStatus, ownsConvert_8u32f, (const uint8_t *src, float *dst, size_t len), (src, dst, len)) {
  bytes_to_singles(src, dst, len);
  return zprStsNoErr;
}
QKR_ENTRY_OF(zprStatus, ownsConvert_16s32f, (const int16_t *src, float *dst, size_t len), (src, dst, len)) {
  to_singles(src, dst, len);
  return zprStsNoErr;
}
QKR_ENTRY_OF(zprStatus, ownsConvert_16u32f, (const uint16_t *src, float *dst, size_t len), (src, dst, len)) {
  to_singles(src, dst, len);
  return zprStsNoErr;
}
QKR_ENTRY_OF(zprStatus, ownsConvert_32s32f, (const int32_t *src, float *dst, size_t len), (src, dst, len)) {
  to_singles(src, dst, len);
  return zprStsNoErr;
}
QKR_ENTRY_OF(zprStatus, ownsConvert_32s64f, (const int32_t *src, double *dst, size_t len), (src, dst, len)) {
  for_each_group<lanes>(src, dst, len,
                        [](const int32_t *s, double *d) QKR_LAMBDA { store(d, doubles(load_lanes(s))); });
  return zprStsNoErr;
}

#define QKR_SCALED(suffix, Source, Target, T)                                        \
  QKR_ENTRY_OF(zprStatus, ownsConvert_##suffix##_Sfs,                                \
               (const Source *src, Target *dst, size_t len, bool nearest, T factor), \
               (src, dst, len, nearest, factor)) {                                   \
    if (nearest) in_nearest_mode([=] { scaled<true>(src, dst, len, factor); });      \
    else scaled<false>(src, dst, len, factor);                                       \
    return zprStsNoErr;                                                              \
  }
QKR_SCALED(32f8s, float, int8_t, float)
QKR_SCALED(32f8u, float, uint8_t, float)
QKR_SCALED(32f16s, float, int16_t, float)
QKR_SCALED(32f16u, float, uint16_t, float)
QKR_SCALED(32f32s, float, int32_t, qkr::sigfft::WideFactor)
QKR_SCALED(64f32s, double, int32_t, double)

#if QKR_BASELINE
using qkr::sigfft::checked;
using qkr::sigfft::power_of_two;

#define QKR_EXPORT(name, kernel, Source, Target)                                  \
  zprStatus name(const Source *src, Target *dst, int32_t len) {                   \
    return checked(src, dst, len, [=] { return kernel(src, dst, (size_t)len); }); \
  }
QKR_EXPORT(zprsConvert_8s32f, ownsConvert_8s32f, int8_t, float)
QKR_EXPORT(zprsConvert_8u32f, ownsConvert_8u32f, uint8_t, float)
QKR_EXPORT(zprsConvert_16s32f, ownsConvert_16s32f, int16_t, float)
QKR_EXPORT(zprsConvert_16u32f, ownsConvert_16u32f, uint16_t, float)
QKR_EXPORT(zprsConvert_32s32f, ownsConvert_32s32f, int32_t, float)
QKR_EXPORT(zprsConvert_32s64f, ownsConvert_32s64f, int32_t, double)

#define QKR_EXPORT_SCALED(name, kernel, Source, Target, T)                                    \
  zprStatus name(const Source *src, Target *dst, int32_t len, uint32_t mode, int32_t scale) { \
    return checked(src, dst, len, [=] {                                                       \
      return kernel(src, dst, (size_t)len, mode == 1, power_of_two<T>(-(int64_t)scale));      \
    });                                                                                       \
  }
QKR_EXPORT_SCALED(zprsConvert_32f8s_Sfs, ownsConvert_32f8s_Sfs, float, int8_t, float)
QKR_EXPORT_SCALED(zprsConvert_32f8u_Sfs, ownsConvert_32f8u_Sfs, float, uint8_t, float)
QKR_EXPORT_SCALED(zprsConvert_32f16s_Sfs, ownsConvert_32f16s_Sfs, float, int16_t, float)
QKR_EXPORT_SCALED(zprsConvert_32f16u_Sfs, ownsConvert_32f16u_Sfs, float, uint16_t, float)
QKR_EXPORT_SCALED(zprsConvert_32f32s_Sfs, ownsConvert_32f32s_Sfs, float, int32_t, qkr::sigfft::WideFactor)
QKR_EXPORT_SCALED(zprsConvert_64f32s_Sfs, ownsConvert_64f32s_Sfs, double, int32_t, double)
#endif
