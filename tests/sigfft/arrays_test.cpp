// Copies and fills of both sets: every length and alignment, guard bytes, the way past the cache, checks of
// arguments.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

#include "sigfft/arrays/block.h"
#include "sigfft/arrays/cache_size.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

using Bytes = std::vector<uint8_t>;
constexpr size_t margin = 64;
constexpr uint8_t guard = 0xA5;

Bytes counted(size_t size) {
  Bytes bytes(size);
  for (size_t i = 0; i < size; ++i) bytes[i] = (uint8_t)(i * 7 + i / 251);
  return bytes;
}

// work(destination) is to write exactly the expected bytes, at an address of this alignment.
template <class Work>
void expect_written(const Bytes &expected, size_t alignment, Work work, const char *what) {
  alignas(64) static uint8_t area[(3 << 20) + 4 * margin];
  ASSERT_LE(expected.size() + 3 * margin, sizeof area);
  uint8_t *const dst = area + margin + alignment;
  memset(area, guard, alignment + expected.size() + 2 * margin);
  work(dst);
  ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst))
      << what << ", " << expected.size() << " bytes at alignment " << alignment;
  for (size_t i = 1; i <= margin; ++i) {
    ASSERT_EQ(dst[-(ptrdiff_t)i], guard) << what << " wrote in front, " << expected.size() << " bytes";
    ASSERT_EQ(dst[expected.size() + i - 1], guard)
        << what << " wrote behind, " << expected.size() << " bytes";
  }
}

template <class T>
Bytes repeated(T value, size_t count) {
  Bytes bytes(count * sizeof(T));
  for (size_t i = 0; i < count; ++i) memcpy(bytes.data() + i * sizeof(T), &value, sizeof(T));
  return bytes;
}

template <class T>
struct Member {
  const char *name;
  zprStatus (*copy)(const T *src, T *dst, int32_t len);
  zprStatus (*zero)(T *dst, int32_t len);
  zprStatus (*set)(T value, T *dst, int32_t len);
  T value;
};

template <class T>
void check_length(const Member<T> &m, size_t len, size_t alignment, const Bytes &source) {
  const auto n = (int32_t)len;
  const auto from = source.begin() + (ptrdiff_t)((alignment * 13 + len) % 32);
  const auto check = [&](const Bytes &expected, auto work) {
    expect_written(
        expected, alignment, [&](void *dst) { EXPECT_EQ(work((T *)dst), zprStsNoErr); }, m.name);
  };
  check({from, from + (ptrdiff_t)(len * sizeof(T))},
        [&](T *dst) { return m.copy((const T *)&*from, dst, n); });
  check(Bytes(len * sizeof(T)), [&](T *dst) { return m.zero(dst, n); });
  check(repeated(m.value, len), [&](T *dst) { return m.set(m.value, dst, n); });
}

template <class T>
void check_arguments(const Member<T> &member) {
  T array[2] = {member.value, member.value};
  const Bytes before = repeated(member.value, 2);
  for (const int32_t len : {0, -1, INT32_MIN, 1}) {
    EXPECT_EQ(member.copy(nullptr, array, len), zprStsNullPtrErr) << member.name;
    EXPECT_EQ(member.copy(array, nullptr, len), zprStsNullPtrErr) << member.name;
    EXPECT_EQ(member.zero(nullptr, len), zprStsNullPtrErr) << member.name;
    EXPECT_EQ(member.set(member.value, nullptr, len), zprStsNullPtrErr) << member.name;
    if (len > 0) continue;
    EXPECT_EQ(member.copy(array + 1, array, len), zprStsSizeErr) << member.name;
    EXPECT_EQ(member.zero(array, len), zprStsSizeErr) << member.name;
    EXPECT_EQ(member.set(T{}, array, len), zprStsSizeErr) << member.name;
  }
  EXPECT_EQ(memcmp(array, before.data(), sizeof array), 0) << member.name << " changed an array";
}

// check(member) for all eleven of both sets; every byte of a value is another.
template <class Check>
void for_each_member(Check check) {
#define QKR_ROW(set, suffix, T, ...)                                                                   \
  check(Member<T>{#set #suffix, set##zprsCopy_##suffix, set##zprsZero_##suffix, set##zprsSet_##suffix, \
                  __VA_ARGS__});
#define QKR_ROWS(set)                                                    \
  QKR_ROW(set, 8u, uint8_t, 0x5B)                                        \
  QKR_ROW(set, 16s, int16_t, 0x1234)                                     \
  QKR_ROW(set, 16sc, zpr16sc, {0x1234, -0x5679})                         \
  QKR_ROW(set, 32s, int32_t, -0x12345678)                                \
  QKR_ROW(set, 32sc, zpr32sc, {0x12345678, -0x1ABCDEF0})                 \
  QKR_ROW(set, 32f, float, 0x1.234568p-9f)                               \
  QKR_ROW(set, 32fc, zpr32fc, {0x1.234568p-9f, -0x1.abcdeep30f})         \
  QKR_ROW(set, 64s, int64_t, 0x123456789ABCDEF0)                         \
  QKR_ROW(set, 64sc, zpr64sc, {0x123456789ABCDEF0, -0x0FEDCBA987654321}) \
  QKR_ROW(set, 64f, double, 0x1.23456789abcdep-77)                       \
  QKR_ROW(set, 64fc, zpr64fc, {0x1.23456789abcdep-77, -0x1.fedcba987654p99})
  QKR_ROWS(w6_)
  QKR_ROWS()
}

TEST(Arrays, EveryLengthAndAlignment) {
  const Bytes source = counted(8192);
  for_each_level([&](const char *) {
    for_each_member([&](const auto &member) {
      for (size_t alignment = 0; alignment < 32; ++alignment)
        for (size_t len = 1; len <= 300; len += len < 70 || alignment == len % 32 ? 1 : 13)
          check_length(member, len, alignment, source);
    });
  });
}

TEST(Arrays, ArgumentsAreCheckedInOrder) {
  for_each_member([](const auto &member) { check_arguments(member); });
}

// For the length of a scope the library takes the cache to be this.
struct CacheOf {
  sigfft::Cache before = sigfft::last_level_cache();
  explicit CacheOf(sigfft::Cache cache) { sigfft::force_cache(cache); }
  ~CacheOf() { sigfft::force_cache(before); }
};

TEST(Arrays, LargeOnesWithAndWithoutCacheSize) {
  const Bytes source = counted((2 << 20) + 256);
  for (const sigfft::Cache cache :
       {sigfft::Cache{0, 0}, {1 << 18, 1 << 16}, {0x80000, 0x80000}, {1 << 30, 1 << 29}}) {
    const CacheOf scope(cache);
    for_each_member([&](const auto &member) {
      constexpr size_t size = sizeof member.value;
      for (const size_t bytes : {size_t{0x80000}, size_t{0x100000}})
        for (const size_t alignment : {0, 1, 8})
          for (const size_t len : {bytes / size, bytes / size + 37})
            check_length(member, len, alignment, source);
    });
  }
}

TEST(Arrays, PastTheCacheAtEveryLengthAndAlignment) {
  const Bytes source = counted(0x80000 + 128);
  for (size_t alignment = 0; alignment < 32; ++alignment)
    for (const size_t base : {size_t{32}, size_t{300}, size_t{0x40000}, size_t{0x80000}})
      for (size_t bytes = base; bytes < base + 40; bytes += base < 1000 ? 1 : 13) {
        const uint8_t *src = source.data() + (alignment * 5 + bytes) % 33;
        expect_written(
            Bytes(src, src + bytes), alignment,
            [&](uint8_t *dst) { sigfft::copy_past_cache(src, dst, bytes); }, "copy");
        sigfft::Pattern pattern;
        memcpy(&pattern, source.data(), 16);
        Bytes expected(bytes);
        for (size_t i = 0; i < bytes; ++i) expected[i] = source[i % 16];
        expect_written(
            expected, alignment, [&](uint8_t *dst) { sigfft::fill_past_cache(dst, bytes, pattern); }, "fill");
      }
}

TEST(Arrays, WorkersTakeNothingAndReturnTheDestination) {
  const Bytes source = counted(64);
  for (const auto copy : {ownsCopy_8u, w6_ownsCopy_8u})
    for (const int32_t bytes : {0, 1, 63})
      expect_written(
          Bytes(source.begin(), source.begin() + bytes), 3,
          [&](uint8_t *dst) { EXPECT_EQ(copy(source.data(), dst, bytes), dst); }, "copy");
  const auto nothing = [](auto work) { expect_written({}, 1, work, "nothing"); };
  nothing([](uint8_t *dst) { ownsZero_8u(dst, 0), w6_ownsZero_8u(dst, 0); });
  nothing([](uint8_t *dst) { ownsSet_8u(1, dst, 0), w6_ownsSet_8u(1, dst, 0); });
  nothing([](uint8_t *dst) { ownsSet_16u(1, (uint16_t *)dst, 0), w6_ownsSet_16u(1, (uint16_t *)dst, 0); });
  nothing([](uint8_t *dst) {
    ownsSet_64sc({1, 2}, (zpr64sc *)dst, 0), w6_ownsSet_64sc({1, 2}, (zpr64sc *)dst, 0);
  });
}

TEST(CacheSize, LargestDescriptorThatIsReportedWins) {
  struct Row {
    uint32_t registers[4];
    int32_t size;
  };
  const Row rows[] = {
      {{0x00000001, 0, 0, 0x47}, 8 << 20},
      {{0x00004201, 0x00002900, 0, 0}, 4 << 20},
      {{0x7D000001, 0x22, 0x7A, 0x84}, 2 << 20},
      {{0x00000001, 0x44, 0x43, 0x42}, 1 << 20},
      {{0x00000001, 0x83, 0x3C000000, 0}, 1 << 19},
      {{0x00820001, 0, 0, 0}, 1 << 18},
      {{0x00004702, 0, 0, 0}, 0},                    // two rounds
      {{0x80004701, 0x80000049, 0x22, 0}, 1 << 19},  // registers without descriptors
      {{0x76036301, 0x00F0B5FF, 0, 0x00C30000}, 0},  // "see leaf 4"
      {{0x00000001, 0, 0, 0}, 0},
  };
  for (const Row &row : rows) EXPECT_EQ(sigfft::size_of_descriptors(row.registers), row.size);
}

}  // namespace
}  // namespace qkr::tests
