// Linear convolution at all borders between methods and parts: each method to the last bit as it is told,
// those of integers against exact sums.
#include <algorithm>

#include "convolution_functions.h"
#include "tests/support/allocations.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

template <class T>
struct Engine;
#define QKR_ENGINE(T, p)                                         \
  template <>                                                    \
  struct Engine<T> {                                             \
    using Plan = zprsFFTSpec_R_##p##f;                           \
    static constexpr auto convolve = zprsConv_##p##f;            \
    static constexpr auto make_plan = zprsFFTInitAlloc_R_##p##f; \
    static constexpr auto release = zprsFFTFree_R_##p##f;        \
    static constexpr auto forward = zprsFFTFwd_RToPerm_##p##f_I; \
    static constexpr auto inverse = zprsFFTInv_PermToR_##p##f_I; \
    static constexpr auto multiply = zprsMulPerm_##p##f_I;       \
  };
QKR_ENGINE(double, 64)
QKR_ENGINE(float, 32)
#undef QKR_ENGINE
template <>
struct Engine<int16_t> {
  static constexpr auto convolve = zprsConv_16s_Sfs;
};

template <class T>
using Numbers = std::vector<T>;

template <class T>
class Convolution : public testing::Test {};
using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(Convolution, Precisions);

// x is the longer sequence; in parts of 4096 if there are as many samples.
template <class T>
Numbers<T> plain_sums(const Numbers<T> &x, const Numbers<T> &h) {
  const size_t part = x.size() < 4096 ? x.size() : 4096;
  Numbers<T> dst(x.size() + h.size() - 1);
  for (size_t start = 0; start < x.size(); start += part)
    for (size_t j = 0; j < h.size(); ++j)
      for (size_t i = start; i < std::min(start + part, x.size()); ++i) dst[i + j] += x[i] * h[j];
  return dst;
}

// Cyclic convolutions of 2^order points, each of `step` new results.
template <class T>
Numbers<T> by_transforms(const Numbers<T> &x, const Numbers<T> &h, int order, bool one_block) {
  using E = Engine<T>;
  typename E::Plan *plan = nullptr;
  E::make_plan(&plan, order, 2, 0);
  const size_t n = size_t{1} << order, overlap = one_block ? 0 : h.size() - 1, step = n - overlap;
  Numbers<T> spectrum(h), dst;
  spectrum.resize(n);
  E::forward(spectrum.data(), plan, nullptr);
  const size_t results = x.size() + h.size() - 1;
  for (size_t done = 0; done < results; done += step) {
    const size_t dropped = done ? overlap : 0;
    Numbers<T> block(n);
    for (size_t i = 0; i < step + dropped && done + i - dropped < x.size(); ++i)
      block[i] = x[done + i - dropped];
    E::forward(block.data(), plan, nullptr);
    E::multiply(one_block ? block.data() : spectrum.data(), one_block ? spectrum.data() : block.data(),
                (int)n);
    Numbers<T> &product = one_block ? spectrum : block;
    E::inverse(product.data(), plan, nullptr);
    const auto first = product.begin() + (ptrdiff_t)dropped;
    dst.insert(dst.end(), first, first + (ptrdiff_t)std::min(step, results - done));
  }
  E::release(plan);
  return dst;
}

int order_for(size_t length) { return std::max(2, (int)std::ceil(std::log2((double)length))); }

enum Method { direct, one_transform, overlap_save };
template <class T>
Numbers<T> as_told(const Numbers<T> &x, const Numbers<T> &h, Method method) {
  switch (method) {
    case direct:
      return plain_sums(x, h);
    case one_transform:
      return by_transforms(x, h, order_for(x.size() + h.size() - 1), true);
    default:
      return by_transforms(x, h, order_for(2 * h.size()) + 1, false);
  }
}

// Of arrays between pages that must not be touched.
template <class T, class... Scale>
Numbers<T> convolved(const Numbers<T> &x, const Numbers<T> &h, Scale... scale) {
  const Edge edge = x.size() % 2 ? Edge::end : Edge::start;
  const Guarded<T> src1(x.size(), edge), src2(h.size(), edge), dst(x.size() + h.size() - 1, edge);
  std::ranges::copy(x, src1.data());
  std::ranges::copy(h, src2.data());
  const auto convolve = [](auto... arguments) { return Engine<T>::convolve(arguments...); };
  EXPECT_EQ(convolve(src1.data(), (int)x.size(), src2.data(), (int)h.size(), dst.data(), scale...),
            zprStsNoErr);
  return {dst.begin(), dst.end()};
}

// Both sides of all borders between methods, between blocks and between parts.
struct Border {
  size_t longer, shorter;
  Method method;
};
const std::vector<Border> borders = [] {
  const std::vector<std::pair<size_t, size_t>> by_method[] = {
      {{1, 1},
       {2, 1},
       {2, 2},
       {75, 75},
       {75, 74},
       {118, 32},
       {119, 31},
       {96, 32},
       {4095, 31},
       {4096, 31},
       {4097, 31},
       {4127, 31},
       {8192, 2},
       {8191, 1},
       {8193, 31},
       {8222, 31},
       {20000, 31}},
      {{76, 75}, {113, 38}, {128, 128}, {129, 128}, {128, 129 - 64}, {500, 167}, {3000, 2500}},
      {{119, 32},
       {114, 38},
       {501, 167},
       {1000, 32},
       {1000, 33},
       {20000, 32},
       {5000, 1000},
       {226, 32},
       {193, 32},
       {194, 32}}};
  std::vector<Border> all;
  for (const Method method : {direct, one_transform, overlap_save})
    for (const auto &[longer, shorter] : by_method[method]) all.push_back({longer, shorter, method});
  return all;
}();

TYPED_TEST(Convolution, FollowsItsMethodToTheLastBit) {
  using T = TypeParam;
  for (const Border &border : borders) {
    const size_t a = border.longer, b = border.shorter;
    SCOPED_TRACE(testing::Message() << a << " and " << b);
    const auto x = random_vector<T>(a, 1), h = random_vector<T>(b, 2);
    for_each_level([&](const char *level) {
      SCOPED_TRACE(level);
      const auto expected = as_told(x, h, border.method);
      EXPECT_TRUE(same_bits(convolved(x, h), expected));
      // Of sequences of one length the first is x; but products commute.
      EXPECT_TRUE(same_bits(convolved(h, x), a == b ? as_told(h, x, border.method) : expected));
    });
  }
}

// Values of h and of x that make a term special, at both ends and in the middle of each sequence.
TYPED_TEST(Convolution, DirectSumsHaveTheBitsOfThePlainLoop) {
  using T = TypeParam;
  constexpr T infinity = std::numeric_limits<T>::infinity(), least = std::numeric_limits<T>::denorm_min();
  const auto check = [](const Numbers<T> &x, const Numbers<T> &h, const char *what) {
    const auto expected = plain_sums(x, h);
    for_each_level([&](const char *level) {
      ASSERT_TRUE(same_bits(convolved(x, h), expected))
          << level << ", " << x.size() << " and " << h.size() << ' ' << what;
    });
  };
  for (size_t a = 1; a <= 75; ++a)
    for (size_t b = 1; b <= a; ++b) check(random_vector<T>(a, 5), random_vector<T>(b, 6), "random");
  for (const size_t a : {76, 118, 159, 160, 161, 170, 191, 192, 193, 500, 4095, 4096, 4100, 8196})
    for (const size_t b : {1, 2, 3, 7, 16, 17, 30, 31}) {
      const auto x = random_vector<T>(a, 7), h = random_vector<T>(b, 8);
      check(x, h, "random");
      for (const T special : {infinity, -infinity, (T)NAN, T(-0.0), least, std::numeric_limits<T>::max()})
        for (const int place : {0, 1, 2}) {
          auto x2 = x, h2 = h;
          x2[place * (a - 1) / 2] = special;
          check(x2, h, "special x");
          h2[place * (b - 1) / 2] = special;
          check(x, h2, "special h");
          check(x2, h2, "special x and h");
        }
      check(Numbers<T>(a, T(-0.0)), h, "negative zeros");
    }
}

// How many allocations a convolution by each method makes; each fails once.
template <class T, class... Scale>
void expect_failures_reported(zprStatus (*convolve)(const T *, int32_t, const T *, int32_t, T *, Scale...),
                              int when_direct, int at_least_by_transforms, Scale... scale) {
  for (const Border &border :
       {Border{4500, 31, direct}, {300, 150, one_transform}, {3000, 150, overlap_save}}) {
    const auto x = random_vector<T>(border.longer, 1), h = random_vector<T>(border.shorter, 2);
    Numbers<T> dst(x.size() + h.size() - 1);
    const auto call = [&] {
      return convolve(x.data(), (int)x.size(), h.data(), (int)h.size(), dst.data(), scale...);
    };
    const int made = allocations_survived(call, zprStsMemAllocErr);
    EXPECT_TRUE(border.method == direct ? made == when_direct : made >= at_least_by_transforms) << made;
  }
}

TEST(ConvolutionMemory, FailuresAreReported) {
  expect_failures_reported(zprsConv_32f, 0, 3);  // plan, quarter wave, areas
  expect_failures_reported(zprsConv_64f, 0, 3);
  expect_failures_reported(zprsConv_16s_Sfs, 1, 3, 0);
}

template <class Sample, class... Scale>
void check_arguments(zprStatus (*convolve)(const Sample *, int32_t, const Sample *, int32_t, Sample *,
                                           Scale...),
                     Scale... scale) {
  Sample x[2] = {1, 1}, dst[1] = {77};
  for (const int32_t len : {-1, 0, 1}) {
    EXPECT_EQ(convolve(nullptr, len, x, len, dst, scale...), zprStsNullPtrErr);
    EXPECT_EQ(convolve(x, len, nullptr, len, dst, scale...), zprStsNullPtrErr);
    EXPECT_EQ(convolve(x, len, x, len, nullptr, scale...), zprStsNullPtrErr);
  }
  constexpr int32_t half = 1 << 30;
  struct Row {
    int32_t len1, len2, status;
  };
  // No such arrays are read. The last three need transforms of 2^31 points.
  for (const auto &[len1, len2, status] :
       {Row{0, 1, zprStsSizeErr}, Row{1, 0, zprStsSizeErr}, Row{1, INT32_MIN, zprStsSizeErr},
        Row{half, half + 1, zprStsSizeErr}, Row{INT32_MAX, 2, zprStsSizeErr},
        Row{INT32_MAX, INT32_MAX, zprStsSizeErr}, Row{half, half, zprStsFftOrderErr},
        Row{half / 2 + 1, half / 2 + 1, zprStsFftOrderErr}, Row{half, half / 4 + 1, zprStsFftOrderErr}}) {
    EXPECT_EQ(convolve(x, len1, x, len2, dst, scale...), status) << len1 << ", " << len2;
    EXPECT_EQ(convolve(x, len2, x, len1, dst, scale...), status) << len1 << ", " << len2;
  }
  EXPECT_EQ(dst[0], 77);
}

TEST(ConvolutionArguments, AreCheckedInOrder) {
  check_arguments(zprsConv_32f);
  check_arguments(zprsConv_64f);
  check_arguments(zprsConv_16s_Sfs, 0);
}

// Sums that single precision holds exactly, or as near as a transform comes, rounded to nearest even.
TEST(IntegerConvolution, RoundsAndSaturatesTheSums) {
  for (const Border &border : borders) {
    const size_t a = border.longer, b = border.shorter;
    auto x = random_vector<int16_t>(a, 1), h = random_vector<int16_t>(b, 2);
    for (auto &v : x) v = (int16_t)(v % 64);
    for (auto &v : h) v = (int16_t)(v % 8);
    Numbers<int64_t> sums(a + b - 1);
    for (size_t i = 0; i < a; ++i)
      for (size_t j = 0; j < b; ++j) sums[i + j] += x[i] * h[j];
    for (const int scale : {0, 1, 3, -3, -6, 40, -40}) {
      if ((scale > 0 || scale < -6) && border.method != direct) continue;  // the transform has an error
      Numbers<int16_t> expected;
      for (const int64_t sum : sums) {
        const double value = std::nearbyint(std::ldexp((double)sum, -scale));
        expected.push_back((int16_t)std::clamp(value, -32768.0, 32767.0));
      }
      for_each_level([&](const char *level) {
        SCOPED_TRACE(testing::Message() << level << ", " << a << " and " << b << ", scale " << scale);
        EXPECT_EQ(convolved(x, h, scale), expected);
        EXPECT_EQ(convolved(h, x, scale), expected);
      });
    }
  }
}

}  // namespace
}  // namespace qkr::tests
