// Cyclic convolution of 8 and of 4 points.
#include <algorithm>

#include "convolution_functions.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

// s7 + (s6 + (... (s1 + s0))), of elements `stride` numbers apart.
std::vector<float> plain_sums(const std::vector<float> &a, const std::vector<float> &b, size_t n,
                              size_t stride) {
  std::vector<float> dst;
  for (size_t k = 0; k < n * stride; ++k) {
    const auto term = [&](size_t i) { return a[i] * b[(k / stride + n - i) % n * stride + k % stride]; };
    float sum = term(0);
    for (size_t i = 1; i < n; ++i) sum = term(i) + sum;
    dst.push_back(sum);
  }
  return dst;
}

TEST(CyclicConvolution, OfSinglePrecisionHasTheBitsOfThePlainSums) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    auto a = random_vector<float>(8, seed);
    const auto b = random_vector<float>(8, seed + 1000);
    if (seed % 4 == 1) a[seed / 4 % 8] = INFINITY;
    if (seed % 4 == 2) a.assign(8, -0.0f);
    for_each_level([&](const char *) {
      std::vector<float> dst(8), dst4(8), in_place = a;
      EXPECT_EQ(zprsConvCyclic8x8_32f(a.data(), b.data(), dst.data()), zprStsNoErr);
      EXPECT_TRUE(same_bits(dst, plain_sums(a, b, 8, 1)));
      zprsConvCyclic8x8_32f(in_place.data(), b.data(), in_place.data());
      EXPECT_TRUE(same_bits(in_place, dst));
      EXPECT_EQ(zprsConvCyclic4x4_32f32fc(a.data(), (const zpr32fc *)b.data(), (zpr32fc *)dst4.data()),
                zprStsNoErr);
      EXPECT_TRUE(same_bits(dst4, plain_sums(a, b, 4, 2)));
    });
  }
}

// The low 32 bits of a sum or of a sum shifted to the left, as a signed number.
int32_t wrapped(int64_t x) { return (int32_t)(uint32_t)(uint64_t)x; }

TEST(CyclicConvolution, OfIntegersWrapsAt32BitsAndSaturates) {
  constexpr int16_t corners[] = {-32768, 32767, -1, 1, 0, 16384, -181, 255};
  for (unsigned seed = 0; seed < 300; ++seed) {
    auto a = random_vector<int16_t>(8, seed), b = random_vector<int16_t>(8, seed + 1000);
    if (seed % 3)
      for (auto *v : {&a, &b})
        for (auto &x : *v) x = corners[(uint16_t)x % (seed % 3 == 1 ? 2 : 8)];
    for (const int32_t scale :
         {0, 1, 7, 15, 16, 31, 32, 33, -1, -3, -16, -31, -32, -33, INT32_MAX, INT32_MIN}) {
      std::vector<int16_t> expected;
      for (size_t n = 0; n < 8; ++n) {
        int64_t sum = 0;
        for (size_t k = 0; k < 8; ++k) sum += (int64_t)a[k] * b[(n + 8 - k) % 8];
        const int count = (int)(std::abs((int64_t)scale) % 32);
        const int64_t low = wrapped(sum);
        const int64_t shifted = scale < 0 ? wrapped(low * (INT64_C(1) << count)) : low >> count;
        expected.push_back((int16_t)std::clamp<int64_t>(shifted, -32768, 32767));
      }
      for_each_level([&](const char *level) {
        std::vector<int16_t> dst(8), in_place = b;
        EXPECT_EQ(zprsConvCyclic8x8_16s_Sfs(a.data(), b.data(), dst.data(), scale), zprStsNoErr);
        EXPECT_EQ(dst, expected) << level << ", scale " << scale;
        zprsConvCyclic8x8_16s_Sfs(a.data(), in_place.data(), in_place.data(), scale);
        EXPECT_EQ(in_place, expected);
      });
    }
  }
}

}  // namespace
}  // namespace qkr::tests
