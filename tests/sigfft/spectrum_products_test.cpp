// Products of spectra: every length, both layouts, in place, the corners of the 16-bit forms.
#include <algorithm>

#include "convolution_functions.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

enum Layout { perm, pack };

// Places of the real numbers and of the first complex one.
struct Places {
  std::vector<size_t> real;
  size_t first_pair, pairs;
};
Places places(Layout layout, size_t len) {
  if (len % 2) return {{0}, 1, len / 2};
  if (layout == perm) return {{0, 1}, 2, len / 2 - 1};
  return {{0, len - 1}, 1, len / 2 - 1};
}

template <class T>
struct Member {
  const char *name;
  Layout layout;
  bool conjugate;
  zprStatus (*out)(const T *src1, const T *src2, T *dst, int32_t len);
  zprStatus (*in_place)(const T *src, T *src_dst, int32_t len);
};
template <class T>
const Member<T> members[] = {
    {"MulPerm", perm, false, zprsMulPerm_64f, zprsMulPerm_64f_I},
    {"MulPack", pack, false, zprsMulPack_64f, zprsMulPack_64f_I},
    {"MulPackConj", pack, true, nullptr, zprsMulPackConj_64f_I},
};
template <>
const Member<float> members<float>[] = {
    {"MulPerm", perm, false, zprsMulPerm_32f, zprsMulPerm_32f_I},
    {"MulPack", pack, false, zprsMulPack_32f, zprsMulPack_32f_I},
    {"MulPackConj", pack, true, nullptr, zprsMulPackConj_32f_I},
};

constexpr int32_t scale_of_products = 14;
#define QKR_SCALED(f) [](auto... arguments) { return f(arguments..., scale_of_products); }
template <>
const Member<int16_t> members<int16_t>[] = {
    {"MulPerm", perm, false, QKR_SCALED(zprsMulPerm_16s_Sfs), QKR_SCALED(zprsMulPerm_16s_ISfs)},
    {"MulPack", pack, false, QKR_SCALED(zprsMulPack_16s_Sfs), QKR_SCALED(zprsMulPack_16s_ISfs)},
};

// The exact value times 2^-scale, rounded down, within 16 bits.
int16_t scaled(int64_t x, int32_t scale) {
  int64_t value = x;
  if (scale >= 0) value = scale < 63 ? x >> scale : x < 0 ? -1 : 0;
  else
    for (int64_t i = 0; i < -(int64_t)scale && std::abs(value) < 100000 && value; ++i) value *= 2;
  return (int16_t)std::clamp<int64_t>(value, -32768, 32767);
}

std::vector<int16_t> exact_products(Layout layout, const std::vector<int16_t> &a,
                                    const std::vector<int16_t> &b, int32_t scale) {
  std::vector<int16_t> dst(a.size());
  const auto [real, first, pairs] = places(layout, a.size());
  for (const size_t k : real) dst[k] = scaled((int64_t)a[k] * b[k], scale);
  for (size_t k = first; k < first + 2 * pairs; k += 2) {
    const int64_t cross = (int64_t)a[k] * b[k + 1], other = (int64_t)a[k + 1] * b[k];
    dst[k] = scaled((int64_t)a[k] * b[k] - (int64_t)a[k + 1] * b[k + 1], scale);
    dst[k + 1] = scaled(cross == 0x40000000 ? cross : cross + other, scale);
  }
  return dst;
}

template <class T>
std::vector<T> plain_products(const Member<T> &m, const std::vector<T> &a, const std::vector<T> &b) {
  if constexpr (std::is_integral_v<T>) return exact_products(m.layout, a, b, scale_of_products);
  std::vector<T> dst(a.size());
  const auto [real, first, pairs] = places(m.layout, a.size());
  for (const size_t k : real) dst[k] = a[k] * b[k];
  for (size_t k = first; k < first + 2 * pairs; k += 2) {
    const T re = a[k] * b[k], im = a[k + 1] * b[k + 1], cross = a[k] * b[k + 1], other = a[k + 1] * b[k];
    dst[k] = m.conjugate ? re + im : re - im;
    dst[k + 1] = m.conjugate ? other - cross : cross + other;
  }
  return dst;
}

template <class T>
class SpectrumProducts : public testing::Test {};
using Types = testing::Types<double, float, int16_t>;
TYPED_TEST_SUITE(SpectrumProducts, Types);

TYPED_TEST(SpectrumProducts, HaveTheBitsOfThePlainFormula) {
  using T = TypeParam;
  using Limits = std::numeric_limits<T>;
  for (const auto &m : members<T>)
    for (size_t len = 1; len <= 140; ++len)
      for (const T special : {T(0.5), T(-0.0), Limits::infinity(), Limits::quiet_NaN()}) {
        SCOPED_TRACE(testing::Message() << m.name << ", length " << len << ", " << special);
        auto a = random_vector<T>(len, 1);
        const auto b = random_vector<T>(len, 2);
        a[len / 2] = special;
        const auto expected = plain_products(m, a, b), square = plain_products(m, a, a);
        // Between pages that must not be touched.
        const Edge edge = special == T(0.5) ? Edge::end : Edge::start;
        const Guarded<T> x(len, edge), y(len, edge), dst(len, edge);
        const auto result = [](const Guarded<T> &of) { return std::vector<T>(of.begin(), of.end()); };
        for_each_level([&](const char *) {
          std::ranges::copy(a, x.data());
          std::ranges::copy(b, y.data());
          if (m.out) {
            EXPECT_EQ(m.out(x.data(), y.data(), dst.data(), (int)len), zprStsNoErr);
            EXPECT_TRUE(same_bits(result(dst), expected));
            std::ranges::copy(a, dst.data());
            m.out(dst.data(), y.data(), dst.data(), (int)len);
            EXPECT_TRUE(same_bits(result(dst), expected));
          }
          EXPECT_EQ(m.in_place(x.data(), y.data(), (int)len), zprStsNoErr);
          EXPECT_TRUE(same_bits(result(y), expected));
          m.in_place(x.data(), x.data(), (int)len);
          EXPECT_TRUE(same_bits(result(x), square));
        });
      }
}

TYPED_TEST(SpectrumProducts, CheckTheirArguments) {
  using T = TypeParam;
  T x[1] = {7};
  for (const auto &m : members<T>)
    for (const int32_t len : {INT32_MIN, 0, 1}) {
      EXPECT_EQ(m.in_place(nullptr, x, len), zprStsNullPtrErr);
      EXPECT_EQ(m.in_place(x, nullptr, len), zprStsNullPtrErr);
      EXPECT_TRUE(!m.out || m.out(x, x, nullptr, len) == zprStsNullPtrErr);
      EXPECT_TRUE(len > 0 || m.in_place(x, x, len) == zprStsSizeErr);
    }
  EXPECT_EQ(x[0], 7);
}

// Integers at all corners of their numbers, by all scales.
TEST(IntegerProducts, AtAllCornersOfTheirNumbers) {
  constexpr int16_t corners[] = {-32768, -32767, -16384, -182, -1, 0, 1, 3, 181, 16384, 32766, 32767};
  std::vector<int16_t> a = {-32768, 32767}, b = {-32768, -32768};
  for (const int16_t ar : corners)
    for (const int16_t ai : corners)
      for (const int16_t br : corners)
        for (const int16_t bi : corners) a.insert(a.end(), {ar, ai}), b.insert(b.end(), {br, bi});
  std::vector<int32_t> scales = {INT32_MIN, INT32_MIN + 1, INT32_MAX, -64, 64};
  for (int32_t scale = -34; scale <= 34; ++scale) scales.push_back(scale);
  for (const Layout layout : {perm, pack})
    for (const int32_t scale : scales)
      for_each_level([&](const char *level) {
        const auto multiply = layout == perm ? zprsMulPerm_16s_Sfs : zprsMulPack_16s_Sfs;
        std::vector<int16_t> dst(a.size());
        EXPECT_EQ(multiply(a.data(), b.data(), dst.data(), (int)a.size(), scale), zprStsNoErr);
        EXPECT_EQ(dst, exact_products(layout, a, b, scale)) << level << ", scale " << scale;
      });
}

}  // namespace
}  // namespace qkr::tests
