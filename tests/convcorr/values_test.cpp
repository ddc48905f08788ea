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

std::vector<Operation> with_strides(const Operation &o) {
  const size_t dims = o.xshape.size();
  std::vector<Operation> all(5, o);
  const auto set = [&](int which, Words x, Words y, Words z) {
    all[which].xstride = x, all[which].ystride = y, all[which].zstride = z;
  };
  Words repeating = spread(o.yshape, 0);
  repeating[0] = 0;
  set(1, spread(o.xshape, 0), spread(o.yshape, 0, 1), spread(o.zshape, 0));
  set(2, spread(o.xshape, 0x55), spread(o.yshape, 0x2A), spread(o.zshape, 0x7F, 1));
  set(3, Words(dims, 0), spread(o.yshape, 0x7F, 1), {});
  set(4, {}, repeating, spread(o.zshape, 1));
  return all;
}

// Parts of the result: the default start; one at both ends, and in the middle, decimated to the last index.
std::vector<Operation> with_parts_and_strides(const Operation &o) {
  std::vector<Operation> all = with_strides(o);
  for (const int which : {0, 1, 2, 3}) {
    Operation part = o;
    for (int d = 0; d < o.dims(); ++d) {
      const int32_t low = o.lowest(d), high = o.highest(d);
      part.start.push_back(which == 0 ? low : which == 1 ? high : low + (high - low) / 3);
      part.decimation.push_back(which < 2 ? 1 : 1 + (which + d) % 3);
    }
    for (const Operation &one : with_strides(part.whole())) all.push_back(one);
  }
  return all;
}

template <class Form>
class Values : public testing::Test {};
TYPED_TEST_SUITE(Values, Forms);

// `in_words` is the operation with the strides that count.
template <class Form>
void expect_plain_sums(const Operation &o, const Operation &in_words, Arrays<Form> &arrays) {
  using Data = typename Form::Data;
  const auto expected = plain_sums<typename Form::Real>(in_words, arrays);
  for_each_level([&](const char *level) {
    std::fill(arrays.z.begin(), arrays.z.end(), Data(77));
    ASSERT_EQ(execute(o, VXS_CC_DIRECT, arrays), VXS_CC_OK) << o.name();
    for (size_t i = 0; i < expected.size(); ++i) {
      const Data sum = static_cast<Data>(expected[i]);
      ASSERT_TRUE(std::isnan(sum) ? std::isnan(arrays.z[i]) : !memcmp(&arrays.z[i], &sum, sizeof sum))
          << level << ' ' << i << ' ' << o.name();
    }
  });
}

TYPED_TEST(Values, OfTheDirectMethodHaveTheBitsOfThePlainLoop) {
  for (const Operation &whole : operations_of({1, 2, 0}, shapes)) {
    for (const Operation &o : with_parts_and_strides(whole)) {
      Arrays<TypeParam> arrays(o);
      expect_plain_sums(o, o, arrays);
    }
    // Those of dimension 0 do not count in dense grids, but for the x of a convolution.
    if (whole.dims() == 1) continue;
    Operation odd = whole;
    odd.xstride = dense(odd.xshape), odd.ystride = dense(odd.yshape), odd.zstride = dense(odd.zshape);
    odd.xstride[0] = -1, odd.ystride[0] = 2, odd.zstride[0] = 5;
    Arrays<TypeParam> arrays(odd);
    Operation counting = whole;
    if (whole.convolves()) counting.xstride = odd.xstride;
    expect_plain_sums(odd, counting, arrays);
  }
}

// A special element reaches the results that it has a term in, whichever operand it is in.
TYPED_TEST(Values, OfTheDirectMethodKeepSpecialElementsWhereTheyBelong) {
  using Data = typename TypeParam::Data;
  for (const Operation &o : whole_operations())
    for (const double special : {double{INFINITY}, double{NAN}, -0.0})
      for (const bool in_x : {true, false}) {
        Arrays<TypeParam> arrays(o);
        auto &operand = in_x ? arrays.x : arrays.y;
        operand[operand.size() / 2] = static_cast<Data>(special);
        expect_plain_sums(o, o, arrays);
      }
}

// The header's bound; and elements between those of z untouched.
TYPED_TEST(Values, OfTheTransformMethodAreNearTheSums) {
  constexpr double bound = sizeof(typename TypeParam::Real) == 8 ? 1e-15 : 1e-6;
  constexpr double rounding = sizeof(typename TypeParam::Data) == 8 ? 0 : 6e-8;  // of the result
  std::vector<Operation> all;
  for (const Operation &whole : operations_of({1, 2, 0}, shapes))
    for (const Operation &o : with_parts_and_strides(whole)) all.push_back(o);
  // Long enough for several blocks, in one operand or in both.
  const std::vector<Words> many_blocks = {
      {500, 40, 5, 7}, {3, 5, 9, 900}, {2, 400, 300, 3}, {30, 33, 21, 3, 2, 5}, {2, 3, 2, 150, 70, 3, 2, 2}};
  for (Operation o : operations_of({VXS_CC_CONVOLUTION, VXS_CC_CORRELATION}, many_blocks))
    for (const int32_t step : {1, 3}) {
      o.start.clear();
      for (int d = 0; d < o.dims(); ++d) o.start.push_back(o.lowest(d) + 1);
      o.decimation = Words(o.xshape.size(), step);
      all.push_back(o.whole());
    }

  for (const Operation &o : all) {
    Arrays<TypeParam> arrays(o);
    ASSERT_EQ(execute(o, VXS_CC_FFT, arrays), VXS_CC_OK) << o.name();
    const auto expected = plain_sums<long double>(o, arrays);
    double norm = 1;  // elements are below 1, and may be repeated by strides
    for (int d = 0; d < o.dims(); ++d) norm *= 1.0 * o.xshape[d] * o.yshape[d];
    for (size_t i = 0; i < expected.size(); ++i) {
      const double exact = static_cast<double>(expected[i]);
      ASSERT_NEAR(arrays.z[i], exact, bound * std::sqrt(norm / 9) + rounding * std::abs(exact))
          << i << ' ' << o.name();
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

}  // namespace
}  // namespace qkr::tests
