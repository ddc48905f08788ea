// Conversions against plain scalar code, at every level: all values of 16-bit sources, and of wider ones the
// neighbourhoods of everything that matters.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <fenv.h>
#include <gtest/gtest.h>
#include <limits>
#include <qkr/sigfft.h>
#include <random>
#include <string>
#include <vector>

#include "sigfft/arrays/byte_values.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

template <class T>
auto bits_of(T x) {
  if constexpr (sizeof(T) == 8) return std::bit_cast<uint64_t>(x);
  else if constexpr (sizeof(T) == 4) return std::bit_cast<uint32_t>(x);
  else return (uint32_t)x;
}

// convert(src, dst, len) on the sources in one go, and the first ones at all lengths with a guard behind; and
// on arguments that it refuses.
template <class Source, class Target, class Convert, class Reference>
void expect_converted(const std::vector<Source> &sources, Convert convert, Reference reference,
                      const std::string &what) {
  const Source source = 1;
  Target target = 77;
  for (const int32_t len : {1, 0, -5, INT32_MIN}) {
    EXPECT_EQ(convert(nullptr, &target, len), zprStsNullPtrErr) << what;
    EXPECT_EQ(convert(&source, nullptr, len), zprStsNullPtrErr) << what;
    EXPECT_TRUE(len > 0 || convert(&source, &target, len) == zprStsSizeErr) << what;
  }
  EXPECT_EQ(target, (Target)77) << what;

  std::vector<Target> expected(sources.size());
  for (size_t i = 0; i < sources.size(); ++i) expected[i] = reference(sources[i]);
  for_each_level([&](const char *level) {
    std::vector<Target> result(sources.size());
    ASSERT_EQ(convert(sources.data(), result.data(), (int32_t)sources.size()), zprStsNoErr);
    for (size_t i = 0; i < sources.size(); ++i)
      ASSERT_EQ(bits_of(result[i]), bits_of(expected[i])) << what << " at " << level << " of " << +sources[i]
                                                          << ", pattern " << std::hex << bits_of(sources[i]);
    for (size_t len = 1; len <= 80; ++len) {
      const Target guard = (Target)77;
      std::vector<Target> part(len + 1, guard);
      ASSERT_EQ(convert(sources.data(), part.data(), (int32_t)len), zprStsNoErr);
      ASSERT_EQ(memcmp(part.data(), expected.data(), len * sizeof(Target)), 0) << what << ", length " << len;
      ASSERT_EQ(part[len], guard) << what << ", length " << len;
    }
  });
}

template <class T>
std::vector<T> all_values() {
  std::vector<T> values(size_t{1} << (8 * sizeof(T)));
  for (size_t i = 0; i < values.size(); ++i) values[i] = (T)i;
  return values;
}

// Numbers whose neighbours decide: bounds, ties, powers of two, subnormal numbers, NaNs and infinities,
// scaled.
template <class T>
std::vector<T> interesting(int scale) {
  using Limits = std::numeric_limits<T>;
  std::vector<T> around = {0, Limits::min(), Limits::denorm_min(), Limits::max(), Limits::infinity()};
  for (int e = -30; e <= 33; ++e)
    for (const double significand : {1.0, 1.25, 1.5, 1.75}) around.push_back((T)std::ldexp(significand, e));
  for (int k = 0; k < 300; ++k) around.push_back((T)(k / 2.0));
  for (const double bound : {127.5, 255.5, 32767.0, 32767.5, 32768.5, 65535.0, 65535.5, 2147483647.0,
                             2147483647.5, 2147483646.5, 4294967295.0, 8388607.5, 0.49999999, 1048576.5})
    around.push_back((T)bound);
  std::vector<T> numbers = {Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::signaling_NaN()};
  for (const T x : around)
    for (const T y : {std::nextafter(x, (T)0), x, std::nextafter(x, Limits::infinity())})
      for (const T z : {y, (T)std::ldexp(y, scale)}) numbers.insert(numbers.end(), {z, -z});
  std::mt19937_64 random(1);
  using Pattern = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;
  for (int i = 0; i < 5000; ++i) numbers.push_back(std::bit_cast<T>((Pattern)random()));
  for (int i = 0; i < 5000; ++i)
    numbers.push_back((T)std::ldexp((double)(int64_t)random(), -30 - (int)(random() % 36) + scale));
  return numbers;
}

// Step by step in precision T. A factor may be 0 or infinity; a NaN becomes the lower bound.
template <class Target, class T>
Target to_integer(T value, bool nearest, int32_t scale) {
  using Limits = std::numeric_limits<Target>;
  value *= std::ldexp((T)1, std::clamp(-(int64_t)scale, INT64_C(-2000), INT64_C(2000)));
  if (value >= (T)Limits::max()) return Limits::max();
  if (!(value > (T)Limits::min())) return Limits::min();
  if (!nearest) return (Target)(int64_t)value;
  const T sum = value + (value >= 0 ? (T)0.5 : (T)-0.5);
  const int64_t r = (int64_t)sum;
  const bool tie = r % 2 != 0 && (T)r == sum;
  return (Target)(tie ? r - (r > 0 ? 1 : -1) : r);
}

template <class T, class Source, class Target, class Convert>
void check_scaled(Convert convert, const char *name) {
  for (const uint32_t mode : {0u, 1u, 0xFFFFFFFFu})
    for (const int scale : {0, 1, -1, 3, -4, 15, -16, 40, -40, 126, -127, 149, -149, 150, 400, 1080, -1030,
                            INT32_MAX, INT32_MIN}) {
      if (mode > 1 && scale > 1) continue;
      expect_converted<Source, Target>(
          interesting<Source>(scale < 130 && scale > -100 ? scale : 0),
          [&](const Source *src, Target *dst, int32_t len) { return convert(src, dst, len, mode, scale); },
          [&](Source x) { return to_integer<Target, T>(x, mode == 1, scale); },
          std::string(name) + ", mode " + std::to_string(mode) + ", scale " + std::to_string(scale));
    }
}

TEST(Convert, FloatingPointToIntegers) {
  check_scaled<float, float, int8_t>(zprsConvert_32f8s_Sfs, "32f8s");
  check_scaled<float, float, uint8_t>(zprsConvert_32f8u_Sfs, "32f8u");
  check_scaled<float, float, int16_t>(zprsConvert_32f16s_Sfs, "32f16s");
  check_scaled<float, float, uint16_t>(zprsConvert_32f16u_Sfs, "32f16u");
  check_scaled<double, float, int32_t>(zprsConvert_32f32s_Sfs, "32f32s");
  check_scaled<double, double, int32_t>(zprsConvert_64f32s_Sfs, "64f32s");
}

TEST(Convert, RoundsToNearestWhateverTheDirection) {
  const std::vector<float> ties = {2.5f, 3.5f, -2.5f, -1.0f, -3.5f, 0.5f, -0.0f};
  const std::vector<int8_t> nearest = {2, 4, -2, -1, -4, 0, 0};
  for (const int direction : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO, FE_TONEAREST}) {
    std::vector<int8_t> dst(ties.size());
    fesetround(direction);
    zprsConvert_32f8s_Sfs(ties.data(), dst.data(), (int32_t)ties.size(), 1, 0);
    EXPECT_EQ(fegetround(), direction);
    EXPECT_EQ(dst, nearest);
  }
}

template <class Source, class Target>
void check_from_integers(zprStatus (*convert)(const Source *, Target *, int32_t), std::vector<Source> sources,
                         const char *name) {
  expect_converted<Source, Target>(
      sources, convert, [](Source x) { return (Target)x; }, name);
}

TEST(Convert, IntegersToFloatingPoint) {
  check_from_integers(zprsConvert_8s32f, all_values<int8_t>(), "8s32f");
  check_from_integers(zprsConvert_8u32f, all_values<uint8_t>(), "8u32f");
  check_from_integers(zprsConvert_16s32f, all_values<int16_t>(), "16s32f");
  check_from_integers(zprsConvert_16u32f, all_values<uint16_t>(), "16u32f");
  std::vector<int32_t> numbers = {INT32_MIN, INT32_MAX, 0, -1};
  for (int shift = 0; shift < 8; ++shift)
    for (int32_t x = -300; x < 300; ++x) numbers.push_back((x + (1 << 24)) * (1 << shift) + x);
  check_from_integers(zprsConvert_32s64f, numbers, "32s64f");
  for (const int direction : {FE_TONEAREST, FE_UPWARD, FE_TOWARDZERO}) {
    fesetround(direction);
    check_from_integers(zprsConvert_32s32f, numbers, "32s32f");
  }
  fesetround(FE_TONEAREST);
  for (int i = -128; i < 256; ++i) EXPECT_EQ(byte_values[i], (float)i);
}

// Half precision by its definition.
double half_value(uint32_t pattern) {
  const int e = (pattern >> 10) & 31, f = pattern & 1023;
  const double magnitude = e == 31 ? (f ? NAN : INFINITY)
                           : e     ? std::ldexp(1024 + f, e - 25)
                                   : std::ldexp(f, -24);
  return pattern & 0x8000 ? -magnitude : magnitude;
}

uint32_t single_of_half(uint16_t pattern) {
  if ((pattern & 0x7C00) != 0x7C00) return std::bit_cast<uint32_t>((float)half_value(pattern));
  return (uint32_t)(pattern & 0x8000) << 16 | 0x7F800000 | (uint32_t)(pattern & 1023) << 13;
}

uint16_t half_of(double x, bool nearest) {
  const uint16_t sign = std::signbit(x) ? 0x8000 : 0;
  if (std::isnan(x)) return sign | 0x7DFF;
  const double magnitude = std::fabs(x);
  if (magnitude >= 65536) return sign | 0x7C00;
  const auto value = [](uint32_t pattern) { return pattern < 0x7C00 ? half_value(pattern) : 65536; };
  uint32_t below = 0;  // the largest pattern whose value is not above
  for (uint32_t step = 0x4000; step; step /= 2)
    if (below + step < 0x7C00 && value(below + step) <= magnitude) below += step;
  const double middle = (value(below) + value(below + 1)) / 2;
  const bool up = magnitude > middle || (magnitude == middle && (below & 1 || below == 0));
  return sign | (uint16_t)(below + (nearest && up));
}

TEST(Convert, HalfToSingle) {
  expect_converted<uint16_t, float>(
      all_values<uint16_t>(), zprsConvert_16f32f,
      [](uint16_t x) { return std::bit_cast<float>(single_of_half(x)); }, "16f32f");
}

TEST(Convert, HalfToIntegers) {
  for (const uint32_t mode : {0u, 1u, 7u})
    for (const int scale : {0,  1,   -1,        2,  5,   10,  11,  12,  15,  16,  17,  18,  40,
                            41, 100, INT32_MAX, -5, -10, -15, -20, -24, -38, -39, -40, -41, INT32_MIN})
      expect_converted<uint16_t, int16_t>(
          all_values<uint16_t>(),
          [&](const uint16_t *src, int16_t *dst, int32_t len) {
            return zprsConvert_16f16s_Sfs(src, dst, len, mode, scale);
          },
          [&](uint16_t x) -> int16_t {
            if (std::isnan(half_value(x))) return -32768;
            const int kept = std::clamp(scale, -100, 100);
            const double value = std::ldexp(half_value(x), -kept);
            return (int16_t)std::clamp(mode == 1 ? std::nearbyint(value) : std::trunc(value), -32768.0,
                                       32767.0);
          },
          "16f16s, mode " + std::to_string(mode) + ", scale " + std::to_string(scale));
}

TEST(Convert, ToHalf) {
  std::vector<float> numbers = interesting<float>(0);
  for (uint32_t h = 0; h <= 0x7C00; ++h) {
    const float value = h < 0x7C00 ? (float)half_value(h) : 65536.0f;
    const float middle = (float)((value + (h < 0x7BFF ? half_value(h + 1) : 65536.0)) / 2);
    for (const float x : {value, middle})
      for (const float y : {std::nextafter(x, 0.0f), x, std::nextafter(x, INFINITY)})
        numbers.push_back(h & 4 ? -y : y);
  }
  for (const uint32_t mode : {0u, 1u, 2u}) {
    const auto what = " to half, mode " + std::to_string(mode);
    expect_converted<float, uint16_t>(
        numbers,
        [&](const float *src, uint16_t *dst, int32_t len) { return zprsConvert_32f16f(src, dst, len, mode); },
        [&](float x) { return half_of(x, mode == 1); }, "single" + what);
    expect_converted<int16_t, uint16_t>(
        all_values<int16_t>(),
        [&](const int16_t *src, uint16_t *dst, int32_t len) {
          return zprsConvert_16s16f(src, dst, len, mode);
        },
        [&](int16_t x) { return half_of(x, mode == 1); }, "integer" + what);
  }
}

}  // namespace
}  // namespace qkr::tests
