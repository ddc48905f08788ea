// Aligned arrays, conversions, pack and unpack of qkr.hpp.
#include <gtest/gtest.h>
#include <qkr/qkr.hpp>
#include <vector>

namespace {

TEST(CxxArrays, AlignedMemoryMoves) {
  qkr::aligned_array<double> a(100), b = std::move(a);
  EXPECT_EQ(a.size(), 0u);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(b.data()) % 64, 0u);
  b[99] = 5;
  a = std::move(b);
  EXPECT_EQ(a[99], 5);
  EXPECT_EQ(a.try_reset(size_t{1} << 40).code(), zprStsSizeErr);
  EXPECT_EQ(a.size(), 100u);
  EXPECT_EQ(a.end() - a.begin(), 100);
  EXPECT_THROW(qkr::aligned_array<char>(size_t{1} << 31), qkr::error);
}

template <class From, class To, class Back = From>
void there_and_back(std::vector<From> whole) {
  while (whole.size() < 200) whole.push_back(whole[whole.size() - 3]);
  std::vector<To> to(whole.size());
  std::vector<From> back(whole.size());
  qkr::convert(whole, to);
  for (size_t i = 0; i < whole.size(); ++i) EXPECT_EQ(to[i], To(whole[i]));
  qkr::convert(to, back);
  EXPECT_EQ(back, whole);
  EXPECT_EQ(qkr::try_convert(whole, std::span(to).first(1)).code(), zprStsSizeErr);
}

TEST(CxxArrays, ConversionsOfEveryType) {
  there_and_back<int8_t, float>({-128, 0, 127});
  there_and_back<uint8_t, float>({0, 200, 255});
  there_and_back<int16_t, float>({-32768, 5, 32767});
  there_and_back<uint16_t, float>({0, 5, 65535});
  there_and_back<int32_t, float>({-65536, 5, 65536});
  there_and_back<int32_t, double>({INT32_MIN, 5, INT32_MAX});
  const std::vector<float> x = {1.5f, 2.5f, -300, 6};
  std::vector<int8_t> y(4);
  qkr::convert(x, y);
  EXPECT_EQ(y, (std::vector<int8_t>{2, 2, -128, 6}));
  qkr::convert(x, y, qkr::rounding::truncate, 1);
  EXPECT_EQ(y, (std::vector<int8_t>{0, 1, -128, 3}));
  std::vector<uint16_t> half(4);
  std::vector<float> back(4);
  std::vector<int16_t> whole(4);
  qkr::to_half(x, half);
  EXPECT_EQ(half[0], 0x3e00);
  qkr::from_half(half, back);
  EXPECT_EQ(back, x);
  qkr::from_half(half, whole);
  EXPECT_EQ(whole, (std::vector<int16_t>{2, 2, -300, 6}));
  qkr::to_half(whole, half);
  EXPECT_EQ(half[3], 0x4600);
  EXPECT_TRUE(qkr::try_convert(std::span<const float>(), std::span<int8_t>()).ok());
}

TEST(CxxArrays, PackAndUnpack) {
  const std::vector<double> a = {0, 1, 2, 3, 4, 5, 6};
  const std::vector<int32_t> index = {6, 0, 3}, mask = {1, 0, 0, 1, 0, 0, -5};
  std::vector<double> y(3), z(7, -1);
  qkr::pack(a, 3, y);
  EXPECT_EQ(y, (std::vector<double>{0, 3, 6}));
  qkr::unpack(y, z, 2);
  EXPECT_EQ(z, (std::vector<double>{0, -1, 3, -1, 6, -1, -1}));
  qkr::pack(a, index, y);
  EXPECT_EQ(y, (std::vector<double>{6, 0, 3}));
  qkr::unpack(y, z, index);
  EXPECT_EQ(z, (std::vector<double>{0, -1, 3, 3, 6, -1, 6}));
  qkr::pack_where(a, mask, y);
  EXPECT_EQ(y, (std::vector<double>{0, 3, 6}));
  qkr::unpack_where(y, z, mask);
  EXPECT_EQ(z, (std::vector<double>{0, -1, 3, 3, 6, -1, 6}));
  qkr::pack(a, 0, y);
  EXPECT_EQ(y, std::vector<double>(3));
  const auto bad = qkr::status(qkr::room::vecmath, VXM_STATUS_BADSIZE);
  EXPECT_EQ(qkr::try_pack(a, 4, y), bad);
  EXPECT_EQ(qkr::try_pack(a, -1, y), bad);
  EXPECT_EQ(qkr::try_pack(a, std::span(index).first(2), y), bad);
  EXPECT_EQ(qkr::try_pack_where(a, mask, std::span(y).first(2)), bad);
  EXPECT_EQ(qkr::try_pack_where(a, index, y), bad);
  EXPECT_EQ(qkr::try_unpack(y, z, 4), bad);
  EXPECT_EQ(qkr::try_unpack_where(std::span(y).first(2), z, mask), bad);
  EXPECT_THROW(qkr::pack(a, 4, y), qkr::error);
  std::vector<float> s(4), t(2);
  qkr::pack(s, 2, t);
  qkr::unpack(t, s, 2);
}

// In several pieces.
TEST(CxxArrays, PackAndUnpackManyElements) {
  for (const size_t n : {63, 64, 65, 128, 1000}) {
    SCOPED_TRACE(n);
    std::vector<double> x(2 * n), y(n), z(2 * n), dense(n), spread(2 * n);
    std::vector<int32_t> mask(2 * n), index(n);
    for (size_t i = 0; i < 2 * n; ++i)
      x[i] = double(i + 1), mask[i] = i % 2 == 0, index[i / 2] = int32_t(i / 2 * 2);
    qkr::pack(x, 2, y);
    for (size_t i = 0; i < n; ++i) ASSERT_EQ(y[i], double(2 * i + 1));
    qkr::unpack(y, z, 2);
    for (size_t i = 0; i < 2 * n; ++i) ASSERT_EQ(z[i], mask[i] ? x[i] : 0);
    qkr::pack_where(x, mask, dense);
    EXPECT_EQ(dense, y);
    qkr::unpack_where(y, spread, mask);
    EXPECT_EQ(spread, z);
    dense.assign(n, 0), spread.assign(2 * n, 0);
    qkr::pack(x, index, dense);
    EXPECT_EQ(dense, y);
    qkr::unpack(y, spread, index);
    EXPECT_EQ(spread, z);
  }
}

}  // namespace
