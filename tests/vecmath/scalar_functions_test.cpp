// Functions of one number.
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <qkr/vecmath.h>
#include <random>

namespace {

TEST(ScalarSqrt, SpecialValues) {
  const struct {
    uint64_t x, root;
  } doubles[] = {{0, 0},
                 {0x8000000000000000, 0x8000000000000000},
                 {0x7FF0000000000000, 0x7FF0000000000000},
                 {0xFFF0000000000000, 0x7FF8A5A55A5A5A5A},
                 {0xBFF0000000000000, 0x7FF8A5A55A5A5A5A},
                 {0x8000000000000001, 0x7FF8A5A55A5A5A5A},
                 {0x7FF4000000000001, 0x7FFC000000000001},
                 {0x4010000000000000, 0x4000000000000000}};
  for (const auto &row : doubles)
    EXPECT_EQ(std::bit_cast<uint64_t>(_vxmdsqrt_scalar(std::bit_cast<double>(row.x))), row.root) << row.x;
  const struct {
    uint32_t x, root;
  } floats[] = {{0, 0},
                {0x80000000, 0x80000000},
                {0x7F800000, 0x7F800000},
                {0xFF800000, 0xFFC00000},
                {0xBF800000, 0xFFC00000},
                {0x80000001, 0xFFC00000},
                {0x7FA00001, 0x7FE00001},
                {0x40800000, 0x40000000}};
  for (const auto &row : floats)
    EXPECT_EQ(std::bit_cast<uint32_t>(_vxmssqrt_scalar(std::bit_cast<float>(row.x))), row.root) << row.x;
}

// The processor's own roots are correctly rounded.
TEST(ScalarSqrt, StaysWithinItsError) {
  std::mt19937_64 engine(1);
  int64_t worst_double = 0, worst_float = 0;
  for (int i = 0; i < 200000; ++i) {
    const double x = std::bit_cast<double>(engine() >> 1);
    if (std::isfinite(x))
      worst_double = std::max(worst_double, std::abs(std::bit_cast<int64_t>(_vxmdsqrt_scalar(x)) -
                                                     std::bit_cast<int64_t>(std::sqrt(x))));
    const float y = std::bit_cast<float>(static_cast<uint32_t>(engine()) >> 1);
    if (std::isfinite(y))
      worst_float = std::max<int64_t>(worst_float, std::abs(std::bit_cast<int32_t>(_vxmssqrt_scalar(y)) -
                                                            std::bit_cast<int32_t>(std::sqrt(y))));
  }
  EXPECT_LE(worst_double, 3);
  EXPECT_LE(worst_float, 1);
  EXPECT_EQ(_vxmdsqrt_scalar(0x1p-1074), 0x1p-537);
  EXPECT_EQ(_vxmdsqrt_scalar(0x1p1000), 0x1p500);
}

// The worst float, whose error the documentation promises to be below 0.61 ulp.
TEST(ScalarSqrt, FloatKeepsItsBound) {
  const float x = std::bit_cast<float>(0x00005A43u), root = _vxmssqrt_scalar(x);
  const double ulp = std::nextafter(root, 1.0f) - root;
  EXPECT_NEAR(std::fabs(root - std::sqrt(static_cast<double>(x))) / ulp, 0.60208, 1e-5);
}

TEST(ScalarAbs, ClearsTheSignOfAnything) {
  for (double x : {-0.0, -1.5, 2.0, -HUGE_VAL, -std::nan("")})
    EXPECT_FALSE(std::signbit(_vxm_dabs_scalar(x)));
  for (float x : {-0.0f, -1.5f, 2.0f, -INFINITY, -std::nanf("")})
    EXPECT_FALSE(std::signbit(_vxm_sabs_scalar(x)));
  EXPECT_EQ(_vxm_dabs_scalar(-1.5), 1.5);
  EXPECT_EQ(dll_cpu_version(), 0);
}

}  // namespace
