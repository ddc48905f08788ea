// Vector functions of qkr.hpp: the bits of the C functions, sizes, and what becomes of bad elements.
#include <array>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <qkr/qkr.hpp>
#include <random>
#include <vector>

namespace {

template <class T>
std::vector<T> numbers(size_t n, unsigned seed) {
  std::mt19937 engine(seed);
  std::uniform_real_distribution<double> magnitude(-4, 4);
  const auto real = [&] { return engine() % 16 ? magnitude(engine) : 0.25 * double(engine() % 5); };
  std::vector<T> x(n);
  for (T &element : x) {
    if constexpr (qkr::complex_number<T>)
      element = T(typename T::value_type(real()), typename T::value_type(real()));
    else element = T(real());
  }
  return x;
}

template <class T>
void expect_bits(const char *name, const std::vector<T> &ours, const std::vector<T> &expected) {
  EXPECT_EQ(std::memcmp(ours.data(), expected.data(), ours.size() * sizeof(T)), 0) << name;
}

using qkr::detail::element;
using qkr::detail::elements;

static_assert(qkr::detail::longest_piece == 64);  // longer arrays go to the C functions in pieces
constexpr int32_t n = 203;

// The bits of the C function, in place too; arrays of different sizes are refused.
template <class T, int inputs, int outputs, class Cxx, class Twin, class C>
void expect_bits_of(const char *name, Cxx cxx, Twin twin, C c) {
  for (const int32_t size : {64, 128, n}) {
    std::array<std::vector<T>, inputs + outputs> arrays;
    for (int k = 0; k < inputs + outputs; ++k)
      arrays[k] = k < inputs ? numbers<T>(size, k + 1) : std::vector<T>(size);
    auto expected = arrays;
    std::apply([&](auto &...x) { c(size, elements(x.data())...); }, expected);
    std::apply(cxx, arrays);
    for (int k = inputs; k < inputs + outputs; ++k) expect_bits(name, arrays[k], expected[k]);
    auto again = arrays;
    EXPECT_TRUE(std::apply(twin, again).ok()) << name;
    EXPECT_EQ(memcmp(again.back().data(), arrays.back().data(), size * sizeof(T)), 0) << name;
    for (auto &array : again) {
      array.pop_back();
      EXPECT_EQ(std::apply(twin, again), qkr::status(qkr::room::vecmath, VXM_STATUS_BADSIZE)) << name;
      EXPECT_THROW(std::apply(cxx, again), qkr::error) << name;
      array.push_back({});
    }
    if constexpr (inputs + outputs == 2) {
      EXPECT_TRUE(twin(arrays[0], arrays[0]).ok());
      expect_bits(name, arrays[0], expected[1]);
    }
  }
}

#define CALLS(name) \
#name, [](auto &&...x) { qkr::name(x...); }, [](auto &&...x) { return qkr::try_##name(x...); }
#define REALS(inputs, outputs, name, C, suffix)                           \
  expect_bits_of<double, inputs, outputs>(CALLS(name), _vxmd##C##suffix); \
  expect_bits_of<float, inputs, outputs>(CALLS(name), _vxms##C##suffix);
#define BOTH(inputs, outputs, name, C)                                               \
  REALS(inputs, outputs, name, C, _HA)                                               \
  expect_bits_of<std::complex<double>, inputs, outputs>(CALLS(name), _vxmz##C##_HA); \
  expect_bits_of<std::complex<float>, inputs, outputs>(CALLS(name), _vxmc##C##_HA);

TEST(CxxVecmath, BitsOfTheCFunctions) {
  const qkr::element_policy silent(VXM_MODE_IGNORE);
  BOTH(1, 1, exp, Exp)
  BOTH(1, 1, log, Ln)
  BOTH(1, 1, log10, Log10)
  BOTH(1, 1, sqrt, Sqrt)
  BOTH(1, 1, sin, Sin)
  BOTH(1, 1, cos, Cos)
  BOTH(1, 1, tan, Tan)
  BOTH(1, 1, asin, Asin)
  BOTH(1, 1, acos, Acos)
  BOTH(1, 1, atan, Atan)
  BOTH(1, 1, sinh, Sinh)
  BOTH(1, 1, cosh, Cosh)
  BOTH(1, 1, tanh, Tanh)
  BOTH(1, 1, asinh, Asinh)
  BOTH(1, 1, acosh, Acosh)
  BOTH(1, 1, atanh, Atanh)
  BOTH(2, 1, pow, Pow)
  REALS(1, 1, inv_sqrt, InvSqrt, _HA)
  REALS(1, 1, cbrt, Cbrt, _HA)
  REALS(1, 1, inv_cbrt, InvCbrt, _HA)
  REALS(1, 1, inv, Inv, _HA)
  REALS(1, 1, erf, Erf, _HA)
  REALS(1, 1, erfc, Erfc, _HA)
  REALS(1, 1, erf_inv, ErfInv, _HA)
  REALS(2, 1, div, Div, _HA)
  REALS(2, 1, hypot, Hypot, _HA)
  REALS(2, 1, atan2, Atan2, _HA)
  REALS(1, 2, sincos, SinCos, _HA)
  REALS(1, 1, ceil, Ceil, )
  REALS(1, 1, floor, Floor, )
  REALS(1, 1, trunc, Trunc, )
  REALS(1, 1, round, Round, )
  REALS(1, 1, rint, Rint, )
  REALS(1, 1, nearbyint, NearbyInt, )
  REALS(1, 2, modf, Modf, )
}

TEST(CxxVecmath, OneExponentForAll) {
  const std::vector<double> x = numbers<double>(n, 3);
  const std::vector<std::complex<float>> z = numbers<std::complex<float>>(n, 3);
  std::vector<double> y(n), expected(n);
  std::vector<std::complex<float>> w(n), expected_w(n);
  qkr::pow(x, 3, y);
  _vxmdPowx_HA(n, x.data(), 3.0, expected.data());
  expect_bits("pow", y, expected);
  qkr::pow(z, std::complex<float>(0.5f, 1), w);
  _vxmcPowx_HA(n, elements(z.data()), element(std::complex<float>(0.5f, 1)), elements(expected_w.data()));
  expect_bits("pow of complex numbers", w, expected_w);
  EXPECT_EQ(qkr::try_pow(x, 3, std::span(y).first(2)).code(), VXM_STATUS_BADSIZE);
}

TEST(CxxVecmath, AnyRangeOfElements) {
  double c_array[3] = {0, 1, 2};
  const std::array<double, 3> fixed = {0, 1, 2};
  qkr::aligned_array<double> result(3);
  qkr::exp(c_array, result);
  qkr::exp(fixed, c_array);
  EXPECT_EQ(std::memcmp(result.data(), c_array, sizeof c_array), 0);
  std::vector<double> none;
  qkr::exp(none, none);
  EXPECT_TRUE(noexcept(qkr::try_exp(none, none)));
}

int seen;
int32_t repair(VxmErrorContext *record) {
  ++seen;
  record->dbR1 = -7;
  return 0;
}

TEST(CxxVecmath, BadElementsGoTheThreadsWay) {
  const VxmMode mode = _vxmGetMode();
  const std::vector<double> x = {1, -1, 0};
  std::vector<double> y(3);
  qkr::set_element_status(VXM_STATUS_UNDERFLOW);
  {
    const qkr::element_policy policy(VXM_MODE_IGNORE, repair);
    EXPECT_TRUE(qkr::try_log(x, y).ok());
    EXPECT_EQ(y, (std::vector<double>{0, -7, -7}));
    EXPECT_EQ(seen, 2);
    {
      const qkr::element_policy inner(VXM_MODE_IGNORE);
      const qkr::status met = qkr::elements_of([&] { qkr::log(x, y); });
      EXPECT_EQ(met, qkr::status(qkr::room::vecmath, VXM_STATUS_SING));
      EXPECT_THROW(qkr::check(met), qkr::error);
      EXPECT_TRUE(std::isnan(y[1]));
    }
    EXPECT_EQ(_vxmGetErrorCallBack(), repair);
  }
  EXPECT_EQ(seen, 2);
  EXPECT_EQ(_vxmGetMode(), mode);
  EXPECT_EQ(_vxmGetErrorCallBack(), nullptr);
  EXPECT_EQ(qkr::element_status(), VXM_STATUS_SING);  // of the first call
  EXPECT_EQ(qkr::clear_element_status(), VXM_STATUS_SING);
  EXPECT_TRUE(qkr::elements_of([&] { qkr::exp(x, y); }).ok());
}

}  // namespace
