// Convolution, products of spectra and tasks of qkr.hpp.
#include <gtest/gtest.h>

#include "tests/cxx/numbers.h"

namespace {

using qkr::tests::numbers;
constexpr auto bad_size = qkr::status(qkr::room::sigfft, zprStsSizeErr);

template <class T, class C, class... Scale>
void expect_convolved(C c, size_t nx, size_t nh, Scale... scale) {
  const std::vector<T> x = numbers<T>(nx, 1), h = numbers<T>(nh, 2);
  std::vector<T> y(nx + nh - 1), expected(y.size());
  c(x.data(), int32_t(nx), h.data(), int32_t(nh), expected.data(), scale...);
  qkr::convolve(x, h, y, scale...);
  EXPECT_EQ(y, expected);
  EXPECT_EQ(qkr::try_convolve(x, h, std::span(y).first(y.size() - 1), scale...), bad_size);
  EXPECT_EQ(qkr::try_convolve(x, std::span<const T>(), std::span(y).first(nx - 1), scale...), bad_size);
}

// Of `n` numbers, by C++ and by C.
template <class T, size_t n, class Cxx, class C>
void expect_same(Cxx cxx, C c) {
  const std::vector<T> a = numbers<T>(n, 3), b = numbers<T>(n, 4);
  std::vector<T> out = b, expected = b;
  c(a.data(), b.data(), expected.data());
  cxx(std::span<const T, n>(a), std::span<const T, n>(b), std::span<T, n>(out));
  EXPECT_EQ(out, expected);
}
#define BY_LENGTH(name, C, n, ...)                               \
  [](auto... x) { qkr::name(x... __VA_OPT__(, ) __VA_ARGS__); }, \
      [](auto... x) { return C(x..., n __VA_OPT__(, ) __VA_ARGS__); }

TEST(CxxConvolution, BitsOfTheCFunctions) {
  expect_convolved<double>(zprsConv_64f, 500, 40);
  expect_convolved<float>(zprsConv_32f, 50, 7);
  expect_convolved<int16_t>(zprsConv_16s_Sfs, 50, 7, 9);
  expect_same<float, 8>([](auto... x) { qkr::convolve_cyclic(x...); }, zprsConvCyclic8x8_32f);
  expect_same<int16_t, 8>([](auto... x) { qkr::convolve_cyclic(x..., 9); },
                          [](auto... x) { zprsConvCyclic8x8_16s_Sfs(x..., 9); });
  expect_same<double, 9>(BY_LENGTH(multiply_pack, zprsMulPack_64f, 9));
  expect_same<float, 8>(BY_LENGTH(multiply_pack, zprsMulPack_32f, 8));
  expect_same<int16_t, 9>(BY_LENGTH(multiply_pack, zprsMulPack_16s_Sfs, 9, 5));
  expect_same<double, 8>(BY_LENGTH(multiply_perm, zprsMulPerm_64f, 8));
  expect_same<float, 9>(BY_LENGTH(multiply_perm, zprsMulPerm_32f, 9));
  expect_same<int16_t, 8>(BY_LENGTH(multiply_perm, zprsMulPerm_16s_Sfs, 8, 5));
  const auto by_conjugate = [](auto a, auto, auto out) { qkr::multiply_pack_by_conjugate(a, out); };
  expect_same<double, 9>(by_conjugate, [](auto a, auto, auto out) { zprsMulPackConj_64f_I(a, out, 9); });
  expect_same<float, 9>(by_conjugate, [](auto a, auto, auto out) { zprsMulPackConj_32f_I(a, out, 9); });
  const std::array<float, 4> re = {1, 2, 3, 4};
  const std::array<std::complex<float>, 4> unit = {1};
  std::array<std::complex<float>, 4> product;
  qkr::convolve_cyclic(re, unit, product);
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(product[i], std::complex<float>(re[i]));
  std::vector<double> x(30), y(29);
  EXPECT_EQ(qkr::try_multiply_pack(x, x, y), bad_size);
  EXPECT_EQ(qkr::try_multiply_perm(x, y, x), bad_size);
  EXPECT_THROW(qkr::multiply_pack(y, x, x), qkr::error);
}

TEST(CxxTask, BitsOfTheCFunctions) {
  const int32_t picture[] = {12, 9}, kernel[] = {3, 3}, steps[] = {2, 3}, part[] = {6, 3};
  const std::vector<float> x = numbers<float>(108, 1), y = numbers<float>(9, 2);
  std::vector<float> z(18), expected(18);
  for (const int32_t kind : {VXS_CC_CONVOLUTION, VXS_CC_CORRELATION})
    for (const int32_t mode : {VXS_CC_DIRECT, VXS_CC_FFT}) {
      ConvCorrTask *task;
      ASSERT_EQ(__vxsNewTask(&task, kind, 0, mode, 0, VXS_CC_SINGLE, 2, picture, kernel, part), VXS_CC_OK);
      const bool correlates = kind == VXS_CC_CORRELATION;
      const int32_t start[] = {correlates ? -10 : 1, correlates ? -7 : 1};
      __vxsEditTask(task, VXS_CC_PARAM_START, start);
      __vxsEditTask(task, VXS_CC_PARAM_DECIMATION, steps);
      ASSERT_EQ(__vxsExec(task, x.data(), nullptr, y.data(), nullptr, expected.data(), nullptr), VXS_CC_OK);
      __vxsDeleteTask(&task);
      qkr::convolution_task<float> ours{{12, 9}, {3, 3}, {6, 3}, qkr::operation(kind), qkr::method(mode)};
      ours.start(std::span(start));
      ours.decimation({2, 3});
      ours.run(x, y, z);
      EXPECT_EQ(z, expected);
      qkr::convolution_task<float> copy = ours.clone(), moved = std::move(ours);
      std::fill(z.begin(), z.end(), 0.0f);
      copy.run(x, {1, 12}, y, {1, 3}, z, {});
      EXPECT_EQ(z, expected);
      EXPECT_EQ(ours.try_run(x, y, z).code(), VXS_CC_ERROR_NULL);
      EXPECT_TRUE(moved.try_run(x, y, z).ok());
    }
}

TEST(CxxTask, SharedOperandsStridesAndPrecision) {
  const std::vector<float> x = numbers<float>(20, 1), y = numbers<float>(5, 2),
                           reversed(x.rbegin(), x.rend());
  std::vector<float> z(24), expected(24), spread(48);
  qkr::convolve(x, y, expected);
  auto shared = qkr::convolution_task<float>::shared(x, {}, 20, 5, 24);
  shared.run(y, z);
  EXPECT_EQ(z, expected);
  shared.run(y, {}, spread, 2);
  for (size_t i = 0; i < 24; ++i) EXPECT_EQ(spread[2 * i], expected[i]);
  qkr::convolution_task<float> task{20, 5, 24};
  task.run(reversed, -1, y, 1, z, 1);
  EXPECT_EQ(z, expected);
  task.use_double();
  task.run(x, y, z);
  EXPECT_NE(z, expected);
  for (size_t i = 0; i < 24; ++i) EXPECT_NEAR(z[i], expected[i], 1e-4);
  task.use_double(false);
  task.run(x, y, z);
  EXPECT_EQ(z, expected);
}

TEST(CxxTask, RefusesWhatDoesNotFit) {
  std::vector<double> x(20), y(5), z(24);
  qkr::convolution_task<double> task{20, 5, 24}, empty, other;
  const std::span x_of_19(x.data(), 19), y_of_4(y.data(), 4), z_of_23(z.data(), 23);
  const struct {
    qkr::status answer;
    int32_t expected;
  } rows[] = {{task.try_run(x_of_19, y, z), VXS_CC_ERROR_XSHAPE},
              {task.try_run(x, y_of_4, z), VXS_CC_ERROR_YSHAPE},
              {task.try_run(x, y, z_of_23), VXS_CC_ERROR_ZSHAPE},
              {task.try_run(x, 2, y, {}, z, {}), VXS_CC_ERROR_XSHAPE},
              {task.try_run(x, -2, y, {}, z, {}), VXS_CC_ERROR_XSHAPE},
              {task.try_run(x, {1, 1}, y, {}, z, {}), VXS_CC_ERROR_XSHAPE},
              {task.try_run(x, {}, y, {}, z, 0), VXS_CC_ERROR_ZSTRIDE},
              {task.try_start({1, 1}), VXS_CC_ERROR_START},
              {task.try_start(3), VXS_CC_OK},
              {task.try_run(x, y, z), VXS_CC_ERROR_DECIMATION},  // beyond the result
              {task.try_start(0), VXS_CC_OK},
              {task.try_run(x, y, z), VXS_CC_OK},  // not blocked
              {task.try_reset({2, 2}, 3, 3), VXS_CC_ERROR_DIMS},
              {task.try_reset_shared(x_of_19, {}, 20, 5, 24), VXS_CC_ERROR_XSHAPE},
              {empty.try_clone(other), VXS_CC_ERROR_NULL},
              {empty.try_start(1), VXS_CC_ERROR_NULL},
              {empty.try_use(qkr::method::direct), VXS_CC_ERROR_NULL}};
  for (const auto &[answer, expected] : rows)
    EXPECT_EQ(answer, qkr::status(qkr::room::convcorr, expected)) << &answer - &rows[0].answer;
  EXPECT_THROW(task.run(x, y, z_of_23), qkr::error);
}

}  // namespace
