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

TEST(CxxConvolution, BitsOfTheCFunctions) {
  const std::vector<double> x = numbers<double>(500, 1), h = numbers<double>(40, 2);
  std::vector<double> y(539), expected(539);
  zprsConv_64f(x.data(), 500, h.data(), 40, expected.data());
  qkr::convolve(x, h, y);
  EXPECT_EQ(y, expected);
  const std::vector<float> xs = numbers<float>(50, 1), hs = numbers<float>(7, 2);
  std::vector<float> ys(56), expected_s(56);
  zprsConv_32f(xs.data(), 50, hs.data(), 7, expected_s.data());
  EXPECT_TRUE(qkr::try_convolve(xs, hs, ys).ok());
  EXPECT_EQ(ys, expected_s);
  const std::vector<int16_t> xi = numbers<int16_t>(50, 1), hi = numbers<int16_t>(7, 2);
  std::vector<int16_t> yi(56), expected_i(56);
  zprsConv_16s_Sfs(xi.data(), 50, hi.data(), 7, expected_i.data(), 1);
  qkr::convolve(xi, hi, yi, 1);
  EXPECT_EQ(yi, expected_i);
  EXPECT_EQ(qkr::try_convolve(x, h, std::span(y).first(538)), bad_size);
  EXPECT_EQ(qkr::try_convolve(x, std::span<const double>(), std::span(y).first(499)), bad_size);
  EXPECT_THROW(qkr::convolve(x, h, std::span(y).first(2)), qkr::error);
}

TEST(CxxConvolution, CyclicOnesAndProducts) {
  const std::vector<float> a = numbers<float>(8, 3), b = numbers<float>(8, 4);
  std::vector<float> out(8), expected(8);
  zprsConvCyclic8x8_32f(a.data(), b.data(), expected.data());
  qkr::convolve_cyclic(std::span<const float, 8>(a), std::span<const float, 8>(b), std::span<float, 8>(out));
  EXPECT_EQ(out, expected);
  const std::vector<int16_t> ai = numbers<int16_t>(8, 3), bi = numbers<int16_t>(8, 4);
  std::vector<int16_t> outi(8), expectedi(8);
  zprsConvCyclic8x8_16s_Sfs(ai.data(), bi.data(), expectedi.data(), 1);
  qkr::convolve_cyclic(std::span<const int16_t, 8>(ai), std::span<const int16_t, 8>(bi),
                       std::span<int16_t, 8>(outi), 1);
  EXPECT_EQ(outi, expectedi);
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
  std::vector<float> fa = numbers<float>(9, 1), fb = fa, fc(9), fd(9);
  qkr::multiply_perm(fa, fb, fc);
  zprsMulPerm_32f(fa.data(), fb.data(), fd.data(), 9);
  EXPECT_EQ(fc, fd);
  std::vector<int16_t> ia = numbers<int16_t>(9, 1), ic(9), id(9);
  qkr::multiply_pack(ia, ia, ic, 1);
  zprsMulPack_16s_Sfs(ia.data(), ia.data(), id.data(), 9, 1);
  EXPECT_EQ(ic, id);
  qkr::multiply_perm(ia, ia, ic, 1);
  zprsMulPerm_16s_Sfs(ia.data(), ia.data(), id.data(), 9, 1);
  EXPECT_EQ(ic, id);
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
  const std::vector<float> x = numbers<float>(20, 1), y = numbers<float>(5, 2);
  std::vector<float> z(24), expected(24), spread(48), in_double(24);
  qkr::convolve(x, y, expected);
  auto shared = qkr::convolution_task<float>::shared(x, {}, 20, 5, 24);
  shared.run(y, z);
  EXPECT_EQ(z, expected);
  shared.run(y, {}, spread, 2);
  for (size_t i = 0; i < 24; ++i) EXPECT_EQ(spread[2 * i], expected[i]);
  qkr::convolution_task<float> task{20, 5, 24};
  const std::vector<float> reversed(x.rbegin(), x.rend());
  task.run(reversed, -1, y, 1, z, 1);
  EXPECT_EQ(z, expected);
  task.use_double();
  task.run(x, y, in_double);
  EXPECT_NE(in_double, expected);
  for (size_t i = 0; i < 24; ++i) EXPECT_NEAR(in_double[i], expected[i], 1e-5);
  task.use_double(false);
  task.use(qkr::method::transform);
  task.run(x, y, z);
  for (size_t i = 0; i < 24; ++i) EXPECT_NEAR(z[i], expected[i], 1e-5);
}

TEST(CxxTask, RefusesWhatDoesNotFit) {
  std::vector<double> x(20), y(5), z(24);
  qkr::convolution_task<double> task{20, 5, 24};
  const auto answers = [&](int32_t code) { return qkr::status(qkr::room::convcorr, code); };
  EXPECT_EQ(task.try_run(std::span(x).first(19), y, z), answers(VXS_CC_ERROR_XSHAPE));
  EXPECT_EQ(task.try_run(x, std::span(y).first(4), z), answers(VXS_CC_ERROR_YSHAPE));
  EXPECT_EQ(task.try_run(x, y, std::span(z).first(23)), answers(VXS_CC_ERROR_ZSHAPE));
  EXPECT_EQ(task.try_run(x, 2, y, {}, z, {}), answers(VXS_CC_ERROR_XSHAPE));
  EXPECT_EQ(task.try_run(x, {1, 1}, y, {}, z, {}), answers(VXS_CC_ERROR_XSHAPE));
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
