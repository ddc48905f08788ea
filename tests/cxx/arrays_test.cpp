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
  for (const size_t more_than_it_can : {size_t{1} << 28, size_t{1} << 40})
    EXPECT_EQ(a.try_reset(more_than_it_can).code(), zprStsSizeErr);
  EXPECT_EQ(a.end() - a.begin(), 100);
}

// Rounded to nearest, truncated and halved: saturated, but as it is where the type holds it.
template <class T, class Real = float>
void expect_converted(std::vector<T> borders) {
  std::vector<T> whole(200, 7), back(200);
  std::copy(borders.begin(), borders.end(), whole.begin());
  std::vector<Real> real(200);
  qkr::convert(whole, real);
  for (size_t i = 0; i < 200; ++i) EXPECT_EQ(real[i], Real(whole[i]));
  qkr::convert(real, back);
  EXPECT_EQ(back, whole);
  real = {1.75f, 2.5f, 6};
  back.resize(3);
  qkr::convert(real, back);
  EXPECT_EQ(back, (std::vector<T>{2, 2, 6}));
  qkr::convert(real, back, qkr::rounding::truncate, 1);
  EXPECT_EQ(back, (std::vector<T>{0, 1, 3}));
  EXPECT_EQ(qkr::try_convert(whole, real).code(), zprStsSizeErr);
}

TEST(CxxArrays, ConversionsOfEveryType) {
  expect_converted<int8_t>({-128, 0, 127});
  expect_converted<uint8_t>({0, 200, 255});
  expect_converted<int16_t>({-32768, 5, 32767});
  expect_converted<uint16_t>({0, 5, 65535});
  expect_converted<int32_t>({-65536, 5, 65536});
  expect_converted<int32_t, double>({INT32_MIN, 5, INT32_MAX});
  const std::vector<float> x = {1.5f, 2.5f, -300, 6};
  std::vector<uint16_t> half(4);
  std::vector<float> back(4);
  std::vector<int16_t> whole(4);
  qkr::to_half(x, half);
  qkr::from_half(half, back);
  EXPECT_EQ(back, x);
  qkr::from_half(half, whole);
  EXPECT_EQ(whole, (std::vector<int16_t>{2, 2, -300, 6}));
  const std::vector<int16_t> between(4, 4099);  // of 4096, 4100
  for (const auto &[to, expected] :
       {std::pair{qkr::rounding::nearest, 4100.f}, {qkr::rounding::truncate, 4096.f}}) {
    qkr::to_half(between, half, to);
    qkr::from_half(half, back);
    EXPECT_EQ(back[3], expected);
  }
  qkr::convert(std::span<const float>(), std::span<int8_t>());
}

// In several pieces, too.
TEST(CxxArrays, PackAndUnpack) {
  for (const size_t n : {3, 64, 65, 1000}) {
    SCOPED_TRACE(n);
    std::vector<double> x(2 * n), odd(n), evens_of_x(2 * n);
    std::vector<int32_t> mask(2 * n), index(n);
    for (size_t i = 0; i < 2 * n; ++i) {
      x[i] = double(i + 1), mask[i] = i % 2 ? 0 : i % 3 ? 1 : -5;
      if (mask[i]) index[i / 2] = int32_t(i), odd[i / 2] = evens_of_x[i] = x[i];
    }
    const auto expect = [&](auto pack, auto unpack) {
      std::vector<double> packed(n), unpacked(2 * n);
      pack(packed), unpack(packed, unpacked);
      EXPECT_EQ(packed, odd);
      EXPECT_EQ(unpacked, evens_of_x);
    };
    expect([&](auto &y) { qkr::pack(x, 2, y); }, [&](auto &y, auto &z) { qkr::unpack(y, z, 2); });
    expect([&](auto &y) { qkr::pack(x, index, y); }, [&](auto &y, auto &z) { qkr::unpack(y, z, index); });
    expect([&](auto &y) { qkr::pack_where(x, mask, y); },
           [&](auto &y, auto &z) { qkr::unpack_where(y, z, mask); });
  }
}

TEST(CxxArrays, PackRefusesWhatDoesNotFit) {
  const std::vector<float> a(7);
  const std::vector<int32_t> index = {6, 0, 3}, mask = {1, 0, 0, 1, 0, 0, -5};
  std::vector<float> y(3), z(7);
  const std::span<float> two = std::span(y).first(2);
  for (const qkr::status answer :
       {qkr::try_pack(a, 4, y), qkr::try_pack(a, -1, y), qkr::try_pack(a, index, two),
        qkr::try_pack_where(a, mask, two), qkr::try_pack_where(a, index, y), qkr::try_unpack(y, z, 4),
        qkr::try_unpack_where(two, z, mask)})
    EXPECT_EQ(answer, qkr::status(qkr::room::vecmath, VXM_STATUS_BADSIZE));
  EXPECT_TRUE(qkr::try_pack(a, 3, y).ok() && qkr::try_pack(a, 0, y).ok() && qkr::try_unpack(y, z, 3).ok());
}

}  // namespace
