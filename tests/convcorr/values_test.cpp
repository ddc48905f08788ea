// Results: the direct method to the last bit of the plain loop at every level, the transform method beside
// sums in long double; one to seven dimensions, all strides, starts and decimations.
#include <numeric>

#include "tasks.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

// Strides with rows apart and every other element left out, some of them negative.
Words spread(const Words &shape, int signs, int32_t first = 2) {
  Words stride;
  int32_t next = first;
  for (size_t d = 0; d < shape.size(); ++d) {
    stride.push_back(signs >> d & 1 ? -next : next);
    next = next * shape[d] + 3;
  }
  return stride;
}
Words negative(Words stride) {
  for (int32_t &s : stride) s = -s;
  return stride;
}

void with_parts_of_the_result(const Operation &o, const std::function<void(const Operation &)> &body) {
  Operation whole = o;
  whole.zshape = whole_result(whole);
  body(whole);  // with the default start

  for (const int which :
       {0, 1, 2, 3}) {  // start at both ends, and in the middle; decimation to the last index
    Operation part = o;
    for (int d = 0; d < o.dims(); ++d) {
      const int32_t low = lowest_start(o, d), high = highest_start(o, d);
      part.start.push_back(which == 0 ? low : which == 1 ? high : low + (high - low) / 3);
      part.decimation.push_back(which < 2 ? 1 : 1 + (which + d) % 3);
    }
    part.zshape = whole_result(part);
    body(part);
  }
}

void with_strides(const Operation &o, const std::function<void(const Operation &)> &body) {
  body(o);
  Operation s = o;
  s.xstride = spread(o.xshape, 0), s.ystride = spread(o.yshape, 0, 1), s.zstride = spread(o.zshape, 0);
  body(s);
  s.xstride = spread(o.xshape, 0x55), s.ystride = spread(o.yshape, 0x2A),
  s.zstride = spread(o.zshape, 0x7F, 1);
  body(s);
  s.xstride = Words(o.xshape.size(), 0), s.ystride = negative(spread(o.yshape, 0, 1)), s.zstride = {};
  body(s);
  s.xstride = {}, s.ystride = spread(o.yshape, 0), s.ystride[0] = 0, s.zstride = spread(o.zshape, 1);
  body(s);
}

void with_all(const std::function<void(const Operation &)> &body) {
  for (const auto &[x, y] : shapes)
    for (const int32_t kind : {1, 2, 0})
      with_parts_of_the_result({kind, x, y}, [&](const Operation &part) { with_strides(part, body); });
}

template <class Form>
class Values : public testing::Test {};
TYPED_TEST_SUITE(Values, Forms);

TYPED_TEST(Values, OfTheDirectMethodHaveTheBitsOfThePlainLoop) {
  using Real = typename TypeParam::Real;
  using Data = typename TypeParam::Data;
  with_all([](const Operation &o) {
    Arrays<TypeParam> arrays(o);
    std::vector<Data> expected;
    for (const Real v : plain_sums<Real>(with_settled_strides(o), arrays))
      expected.push_back(static_cast<Data>(v));
    for_each_level([&](const char *level) {
      std::fill(arrays.z.begin(), arrays.z.end(), Data(77));
      ASSERT_EQ(execute(o, VXS_CC_DIRECT, arrays), VXS_CC_OK) << o.name();
      ASSERT_EQ(memcmp(arrays.z.data(), expected.data(), expected.size() * sizeof(Data)), 0)
          << level << ' ' << o.name();
    });
  });
}

// Of the transform method: the header's bound, and elements between those of z untouched.
template <class Form>
void expect_near(const Operation &o, const Arrays<Form> &arrays) {
  constexpr double bound = sizeof(typename Form::Real) == 8 ? 1e-15 : 1e-6;
  constexpr double rounding = sizeof(typename Form::Data) == 8 ? 0 : 6e-8;  // of the result
  const auto expected = plain_sums<long double>(o, arrays);
  double norm_x = 1, norm_y = 1;  // elements are below 1, and may be repeated by strides
  for (int d = 0; d < o.dims(); ++d) norm_x *= o.xshape[d], norm_y *= o.yshape[d];
  const double scale = bound * std::sqrt(norm_x * norm_y / 9);
  for (size_t i = 0; i < expected.size(); ++i) {
    const double exact = static_cast<double>(expected[i]);
    ASSERT_NEAR(arrays.z[i], exact, scale + rounding * std::abs(exact)) << i << ' ' << o.name();
  }
}

TYPED_TEST(Values, OfTheTransformMethodAreNearTheSums) {
  with_all([](const Operation &o) {
    Arrays<TypeParam> arrays(o);
    ASSERT_EQ(execute(o, VXS_CC_FFT, arrays), VXS_CC_OK) << o.name();
    expect_near(o, arrays);
  });
}

// Long enough for several blocks, in one operand or in both.
TYPED_TEST(Values, OfManyBlocksAreNearTheSums) {
  const std::pair<Words, Words> long_shapes[] = {{{500, 40}, {5, 7}},
                                                 {{3, 5}, {9, 900}},
                                                 {{2, 400}, {300, 3}},
                                                 {{30, 33, 21}, {3, 2, 5}},
                                                 {{2, 3, 2, 150}, {70, 3, 2, 2}}};
  for (const auto &[x, y] : long_shapes)
    for (const int32_t kind : {VXS_CC_CONVOLUTION, VXS_CC_CORRELATION})
      for (const int32_t step : {1, 3}) {
        Operation o = {kind, x, y};
        for (int d = 0; d < o.dims(); ++d) o.start.push_back(lowest_start(o, d) + 1);
        o.decimation = Words(x.size(), step);
        o.zshape = whole_result(o);
        Arrays<TypeParam> arrays(o);
        ASSERT_EQ(execute(o, VXS_CC_FFT, arrays), VXS_CC_OK) << o.name();
        expect_near(o, arrays);
      }
}

// A special element reaches the results that it has a term in, whichever operand it is in.
TYPED_TEST(Values, OfTheDirectMethodKeepSpecialElementsWhereTheyBelong) {
  using Real = typename TypeParam::Real;
  using Data = typename TypeParam::Data;
  const auto infinity = std::numeric_limits<Data>::infinity();
  for (const Operation &o : whole_operations()) {
    for (const Data special : {infinity, static_cast<Data>(NAN), Data(-0.0)})
      for (const bool in_x : {true, false}) {
        Arrays<TypeParam> arrays(o);
        auto &operand = in_x ? arrays.x : arrays.y;
        operand[operand.size() / 2] = special;
        const auto expected = plain_sums<Real>(o, arrays);
        for_each_level([&](const char *level) {
          ASSERT_EQ(execute(o, VXS_CC_DIRECT, arrays), VXS_CC_OK);
          for (size_t i = 0; i < expected.size(); ++i)
            ASSERT_TRUE(std::isnan(expected[i]) ? std::isnan(arrays.z[i])
                                                : arrays.z[i] == static_cast<Data>(expected[i]))
                << level << ' ' << i << ' ' << o.name();
        });
      }
  }
}

TYPED_TEST(Values, TouchNothingBeyondTheArrays) {
  using Data = typename TypeParam::Data;
  const auto size = [](const Words &shape) { return static_cast<size_t>(extent(shape, {})); };
  for (const Operation &o : whole_operations())
    for (const int32_t mode : {VXS_CC_DIRECT, VXS_CC_FFT})
      for (const Edge edge : {Edge::end, Edge::start}) {
        Guarded<Data> x(size(o.xshape), edge), y(size(o.yshape), edge), z(size(o.zshape), edge);
        x.data()[0] = y.data()[0] = 1;
        for_each_level([&](const char *level) {
          ConvCorrTask *task = make_task<TypeParam>(o, mode);
          ASSERT_EQ(__vxsExec(task, x.data(), nullptr, y.data(), nullptr, z.data(), nullptr), VXS_CC_OK)
              << level << ' ' << o.name();
          __vxsDeleteTask(&task);
        });
        ASSERT_NEAR(std::accumulate(z.data(), z.data() + size(o.zshape), 0.0), 1, 1e-5) << o.name();
      }
}

// Odd ends: what an operand may not be told apart by.
TEST(Strides, OfDimensionZeroDoNotCountInDenseGridsOfTheDirectMethod) {
  Operation o = {VXS_CC_CORRELATION, {3, 2}, {8, 4}};
  o.xstride = {-1, 3}, o.ystride = {2, 8}, o.zstride = {5, 10};
  o.zshape = whole_result(o);
  Arrays<DD> odd(o);
  Operation dense = o;
  dense.xstride = dense.ystride = dense.zstride = {};
  Arrays<DD> plain(dense);
  std::copy(odd.x.begin(), odd.x.begin() + 6, plain.x.begin());
  std::copy(odd.y.begin(), odd.y.begin() + 32, plain.y.begin());
  ASSERT_EQ(execute(o, VXS_CC_DIRECT, odd), VXS_CC_OK);
  ASSERT_EQ(execute(dense, VXS_CC_DIRECT, plain), VXS_CC_OK);
  EXPECT_TRUE(std::equal(plain.z.begin(), plain.z.end(), odd.z.begin()));
}

}  // namespace
}  // namespace qkr::tests
