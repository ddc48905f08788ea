// Convolution, products of spectra and tasks of qkr.hpp.
#include <cstring>
#include <gtest/gtest.h>
#include <qkr/qkr.hpp>
#include <random>
#include <vector>

namespace {

constexpr auto bad_size = qkr::status(qkr::room::sigfft, zprStsSizeErr);

template <class T>
std::vector<T> numbers(size_t n, unsigned seed) {
  std::mt19937 engine(seed);
  std::vector<T> x(n);
  for (T &element : x) element = T(int32_t(engine() % 2001) - 1000) / T(std::is_integral_v<T> ? 100 : 1000);
  return x;
}

template <class T, class C, class... Scale>
void expect_convolved(C c, size_t nx, size_t nh, Scale... scale) {
  const std::vector<T> x = numbers<T>(nx, 1), h = numbers<T>(nh, 2);
  std::vector<T> y(nx + nh - 1), expected(y.size());
  c(x.data(), int32_t(nx), h.data(), int32_t(nh), expected.data(), scale...);
  qkr::convolve(x, h, y, scale...);
  EXPECT_EQ(y, expected);
  EXPECT_EQ(qkr::try_convolve(x, h, std::span(y).first(y.size() - 1), scale...), bad_size);
  EXPECT_EQ(qkr::try_convolve(x, std::span<const T>(), std::span(y).first(nx - 1), scale...), bad_size);
  EXPECT_THROW(qkr::convolve(x, h, std::span(y).first(2), scale...), qkr::error);
}

TEST(CxxConvolution, BitsOfTheCFunctions) {
  expect_convolved<double>(zprsConv_64f, 500, 40);
  expect_convolved<float>(zprsConv_32f, 50, 7);
  expect_convolved<int16_t>(zprsConv_16s_Sfs, 50, 7, 1);
}

// Of `n` numbers, by C++ and by C.
template <class T, size_t n, class Cxx, class C>
void expect_same(Cxx cxx, C c) {
  const std::vector<T> a = numbers<T>(n, 3), b = numbers<T>(n, 4);
  std::vector<T> out(n), expected(n);
  c(a.data(), b.data(), expected.data());
  cxx(std::span<const T, n>(a), std::span<const T, n>(b), std::span<T, n>(out));
  EXPECT_EQ(out, expected);
}

TEST(CxxConvolution, CyclicOnesAndProducts) {
  expect_same<float, 8>([](auto... x) { qkr::convolve_cyclic(x...); }, zprsConvCyclic8x8_32f);
  expect_same<int16_t, 8>([](auto... x) { qkr::convolve_cyclic(x..., 1); },
                          [](auto... x) { zprsConvCyclic8x8_16s_Sfs(x..., 1); });
  expect_same<float, 9>([](auto... x) { qkr::multiply_perm(x...); },
                        [](auto... x) { zprsMulPerm_32f(x..., 9); });
  expect_same<float, 8>([](auto... x) { qkr::multiply_pack(x...); },
                        [](auto... x) { zprsMulPack_32f(x..., 8); });
  expect_same<int16_t, 9>([](auto... x) { qkr::multiply_pack(x..., 1); },
                          [](auto... x) { zprsMulPack_16s_Sfs(x..., 9, 1); });
  expect_same<int16_t, 8>([](auto... x) { qkr::multiply_perm(x..., 1); },
                          [](auto... x) { zprsMulPerm_16s_Sfs(x..., 8, 1); });
  const std::array<float, 4> re = {1, 2, 3, 4};
  const std::array<std::complex<float>, 4> unit = {1};
  std::array<std::complex<float>, 4> product;
  qkr::convolve_cyclic(re, unit, product);
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(product[i], std::complex<float>(re[i]));

  // A convolution by spectra, in each layout.
  std::vector<double> x = numbers<double>(30, 5), h = numbers<double>(30, 6), X(30), H(30), y(30);
  qkr::fft<double> f{30};
  for (const bool pack : {true, false}) {
    const auto format = pack ? qkr::packing::pack : qkr::packing::perm;
    f.forward_packed(x, X, format);
    f.forward_packed(h, H, format);
    if (pack) qkr::multiply_pack(X, H, X);
    else qkr::multiply_perm(X, H, X);
    f.inverse_packed(X, y, format);
    for (size_t i = 0; i < 30; ++i) {
      double sum = 0;
      for (size_t k = 0; k < 30; ++k) sum += x[k] * h[(i + 30 - k) % 30];
      ASSERT_NEAR(y[i], sum, 1e-12);
    }
    EXPECT_EQ(qkr::try_multiply_pack(X, H, std::span(y).first(29)), bad_size);
  }
  f.forward_packed(x, X, qkr::packing::pack);
  H = X;
  qkr::multiply_pack_by_conjugate(X, H);  // a power spectrum: imaginary parts vanish
  for (size_t k = 2; k < 29; k += 2) EXPECT_EQ(H[k], 0.0);
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
  const auto expect_near = [&] {
    task.run(x, y, z);
    for (size_t i = 0; i < 24; ++i) EXPECT_NEAR(z[i], expected[i], 1e-5);
  };
  task.use_double();
  expect_near();
  EXPECT_NE(z, expected);
  task.use_double(false);
  task.run(x, y, z);
  EXPECT_EQ(z, expected);
  task.use(qkr::method::transform);
  expect_near();
}

TEST(CxxTask, RefusesWhatDoesNotFit) {
  std::vector<double> x(20), y(5), z(24);
  qkr::convolution_task<double> task{20, 5, 24};
  const auto answers = [&](int32_t code) { return qkr::status(qkr::room::convcorr, code); };
  EXPECT_EQ(task.try_run(std::span(x).first(19), y, z), answers(VXS_CC_ERROR_XSHAPE));
  EXPECT_EQ(task.try_run(x, std::span(y).first(4), z), answers(VXS_CC_ERROR_YSHAPE));
  EXPECT_EQ(task.try_run(x, y, std::span(z).first(23)), answers(VXS_CC_ERROR_ZSHAPE));
  for (const qkr::shape &strides : {qkr::shape(2), qkr::shape(-2), qkr::shape(1, 1)})
    EXPECT_EQ(task.try_run(x, strides, y, {}, z, {}), answers(VXS_CC_ERROR_XSHAPE));
  EXPECT_EQ(task.try_run(x, {}, y, {}, z, 0), answers(VXS_CC_ERROR_ZSTRIDE));
  EXPECT_EQ(task.try_start({1, 1}), answers(VXS_CC_ERROR_START));
  task.start(3);
  EXPECT_EQ(task.try_run(x, y, z), answers(VXS_CC_ERROR_DECIMATION));  // beyond the result
  task.start(0);
  EXPECT_TRUE(task.try_run(x, y, z).ok());  // not blocked
  EXPECT_EQ(task.try_reset({2, 2}, 3, 3), answers(VXS_CC_ERROR_DIMS));
  EXPECT_EQ(task.try_reset_shared(std::span(x).first(3), {}, 20, 5, 24), answers(VXS_CC_ERROR_XSHAPE));
  EXPECT_THROW(task.run(x, y, std::span(z).first(2)), qkr::error);
  qkr::convolution_task<double> empty, other;
  EXPECT_EQ(empty.try_clone(other), answers(VXS_CC_ERROR_NULL));
  EXPECT_EQ(empty.try_start(1), answers(VXS_CC_ERROR_NULL));
  EXPECT_EQ(empty.try_use(qkr::method::direct), answers(VXS_CC_ERROR_NULL));
}

}  // namespace
