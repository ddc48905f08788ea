// Results: the direct method to the last bit of the plain loop at every level, the transform method beside
// sums in long double; one to seven dimensions, all strides, starts and decimations; and each allocation
// failing.
#include <cmath>
#include <cstring>

#include "tasks.h"
#include "tests/support/allocations.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

// z by the definition, in the arithmetic of Real: terms in descending order of the index of x. A correlation
// is a convolution with x turned round. The whole result is a grid in which the place of a sum of indices is
// the sum of their places.
template <class Real, class Form>
std::vector<Real> plain_sums(const Operation &o, const Arrays<Form> &arrays) {
  Operand x = {o.x.shape, o.x.strides()};
  Words lengths, steps;
  for (int d = 0; d < o.dims(); ++d) {
    if (!o.convolves()) x.stride[d] *= -1;
    lengths.push_back(o.highest(d) - o.lowest(d) + 1);
  }
  const Words grid = dense(lengths);
  int64_t first = 0;
  for (int d = 0; d < o.dims(); ++d) {
    steps.push_back(o.step(d) * grid[d]);
    first += (o.first(d) - o.lowest(d)) * int64_t{grid[d]};
  }
  const auto x_places = x.places(), y_places = o.y.places(), z_places = o.z.places();
  const auto x_in_grid = places(x.shape, grid), y_in_grid = places(o.y.shape, grid);
  const auto z_in_grid = places(o.z.shape, steps);

  std::vector<Real> sums(places(lengths, grid).size()), z(arrays.z.size(), 77);
  for (size_t i = x_places.size(); i-- > 0;)
    for (size_t j = 0; j < y_places.size(); ++j)
      sums[x_in_grid[i] + y_in_grid[j]] += Real{arrays.x[x_places[i]]} * Real{arrays.y[y_places[j]]};
  for (size_t k = 0; k < z_places.size(); ++k) z[z_places[k]] = sums[first + z_in_grid[k]];
  return z;
}

// The direct method takes what is dense from dimension 1 on for dense, but not the x of a convolution.
Operation settled(const Operation &given) {
  Operation o = given;
  for (Operand *operand : {&o.x, &o.y, &o.z}) {
    Words with_one = operand->strides();
    with_one[0] = 1;
    const bool counts = o.dims() == 1 || (o.convolves() && operand == &o.x);
    if (!counts && with_one == dense(operand->shape)) operand->stride = with_one;
  }
  return o;
}

// Executes, after a failure of each allocation, which leaves nothing behind and, but for that of a transform,
// z as it was.
template <class Form>
void execute_at_last(const Operation &o, int32_t mode, Arrays<Form> &arrays) {
  const WithoutCache without_cache;
  const Task task = make_task<Form>(o, mode);
  arrays.clear();
  const auto untouched = arrays.result();
  const long in_use = allocations.live;
  const auto execute_once = [&] {
    __vxsccSetStatus(task.get(), 0);
    return execute(task, o, arrays);
  };
  fail_each_allocation(execute_once, [&](int32_t status, bool failed) {
    ASSERT_EQ(allocations.live, in_use);
    if (failed && mode == VXS_CC_FFT && status == VXS_CC_ERROR_FFT) return;
    ASSERT_EQ(status, failed ? VXS_CC_ERROR_ALLOC : VXS_CC_OK);
    ASSERT_TRUE(!failed || arrays.result() == untouched);
  });
}

template <class Form>
class Values : public testing::Test {};
using Forms = testing::Types<DD, SD, SS>;
TYPED_TEST_SUITE(Values, Forms);

// To the header's bound.
TYPED_TEST(Values, OfTheTransformMethodAreNearTheSums) {
  constexpr double bound = sizeof(typename TypeParam::Real) == 8 ? 1e-15 : 1e-6;
  constexpr double rounding = sizeof(typename TypeParam::Data) == 8 ? 0 : 6e-8;  // of the result
  for (const Operation &o : operations(15)) {
    SCOPED_TRACE(o.name());
    Arrays<TypeParam> arrays(o, o.kind ? Edge::end : Edge::start);
    execute_at_last(o, VXS_CC_FFT, arrays);
    const auto expected = plain_sums<long double>(o, arrays);
    double norm = 1;  // elements are below 1, and may be repeated by strides
    for (int d = 0; d < o.dims(); ++d) norm *= 1.0 * o.x.shape[d] * o.y.shape[d];
    for (size_t i = 0; i < expected.size(); ++i) {
      const double exact = static_cast<double>(expected[i]);
      ASSERT_NEAR(arrays.z[i], exact, bound * std::sqrt(norm / 9) + rounding * std::abs(exact)) << i;
    }
  }
}

TYPED_TEST(Values, OfTheDirectMethodHaveTheBitsOfThePlainLoop) {
  using Data = typename TypeParam::Data;
  const Data specials[] = {INFINITY, -0.0, NAN};
  size_t n = 0;
  for (const Operation &o : operations(40)) {
    SCOPED_TRACE(o.name());
    Arrays<TypeParam> arrays(o, o.kind ? Edge::end : Edge::start);
    // A special element reaches the results that it has a term in, whichever operand it is in.
    if (++n % 7 < 3) arrays.x[arrays.x.size() / 2] = specials[n % 7];
    if (n % 11 < 3) arrays.y[arrays.y.size() / 2] = specials[n % 11];
    const auto expected = plain_sums<typename TypeParam::Real>(settled(o), arrays);
    for_each_level([&](const char *level) {
      execute_at_last(o, VXS_CC_DIRECT, arrays);
      for (size_t i = 0; i < expected.size(); ++i) {
        const Data sum = static_cast<Data>(expected[i]), z = arrays.z[i];
        ASSERT_TRUE(std::isnan(sum) ? std::isnan(z) : !memcmp(&z, &sum, sizeof sum)) << level << ' ' << i;
      }
    });
  }
}

}  // namespace
}  // namespace qkr::tests
