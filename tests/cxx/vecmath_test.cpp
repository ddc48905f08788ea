// Vector functions of qkr.hpp: the bits of the C functions, sizes, and what becomes of bad elements.
#include <array>
#include <cmath>
#include <gtest/gtest.h>

#include "tests/cxx/numbers.h"

namespace {

using qkr::detail::elements;
using qkr::tests::numbers;

static_assert(qkr::detail::longest_piece == 64);  // longer arrays go to the C functions in pieces

// The bits of the C function; arrays of different sizes are refused.
template <class T, int inputs, int outputs, class Cxx, class Twin, class C>
void expect_bits_of(const char *name, Cxx cxx, Twin twin, C c) {
  SCOPED_TRACE(name);
  for (const int32_t n : {64, 203}) {
    std::array<std::vector<T>, inputs + outputs> arrays;
    for (unsigned k = 0; k < arrays.size(); ++k) arrays[k] = numbers<T>(n, k);
    auto expected = arrays;
    std::apply([&](auto &...x) { c(n, elements(x.data())...); }, expected);
    std::apply(cxx, arrays);
    for (size_t k = inputs; k < arrays.size(); ++k) EXPECT_TRUE(qkr::tests::same(arrays[k], expected[k]));
    for (auto &array : arrays) {
      array.pop_back();
      EXPECT_EQ(std::apply(twin, arrays), qkr::status(qkr::room::vecmath, VXM_STATUS_BADSIZE));
      array.push_back({});
    }
  }
}

#define CALLS(name) \
#name, [](auto &...x) { qkr::name(x...); }, [](auto &...x) { return qkr::try_##name(x...); }
#define REALS(inputs, outputs, name, C, suffix)                           \
  expect_bits_of<double, inputs, outputs>(CALLS(name), _vxmd##C##suffix); \
  expect_bits_of<float, inputs, outputs>(CALLS(name), _vxms##C##suffix);
#define BOTH(inputs, outputs, name, C)                                               \
  REALS(inputs, outputs, name, C, _HA)                                               \
  expect_bits_of<std::complex<double>, inputs, outputs>(CALLS(name), _vxmz##C##_HA); \
  expect_bits_of<std::complex<float>, inputs, outputs>(CALLS(name), _vxmc##C##_HA);
#define ONE_EXPONENT(T, C)                                         \
  expect_bits_of<T, 1, 1>(                                         \
      #C, [](auto &x, auto &y) { qkr::pow(x, T(2.5), y); },        \
      [](auto &x, auto &y) { return qkr::try_pow(x, T(2.5), y); }, \
      [](int32_t n, auto *x, auto *y) { C(n, x, qkr::detail::element(T(2.5)), y); });

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
  ONE_EXPONENT(double, _vxmdPowx_HA)
  ONE_EXPONENT(float, _vxmsPowx_HA)
  ONE_EXPONENT(std::complex<double>, _vxmzPowx_HA)
  ONE_EXPONENT(std::complex<float>, _vxmcPowx_HA)
  std::vector<double> none, one(1);
  qkr::exp(none, none);
  EXPECT_THROW(qkr::exp(none, one), qkr::error);
}

TEST(CxxVecmath, BadElementsGoTheThreadsWay) {
  const VxmErrorCallBack repair = [](VxmErrorContext *record) {
    record->dbR1 = -7;
    return 0;
  };
  const VxmMode mode = _vxmGetMode();
  const double x[] = {1, -1, 0};
  std::vector<double> y(3);
  qkr::set_element_status(VXM_STATUS_UNDERFLOW);
  {
    const qkr::element_policy policy(VXM_MODE_IGNORE, repair);
    EXPECT_TRUE(qkr::try_log(x, y).ok());
    EXPECT_EQ(y, (std::vector<double>{0, -7, -7}));
    {
      const qkr::element_policy inner(VXM_MODE_IGNORE);
      const qkr::status met = qkr::elements_of([&] { qkr::inv_sqrt(x, y); });
      EXPECT_EQ(met, qkr::status(qkr::room::vecmath, VXM_STATUS_SING));
      EXPECT_TRUE(std::isnan(y[1]));
      EXPECT_TRUE(qkr::elements_of([&] { qkr::exp(x, y); }).ok());
    }
    EXPECT_EQ(_vxmGetErrorCallBack(), repair);
  }
  EXPECT_EQ(_vxmGetMode(), mode);
  EXPECT_EQ(_vxmGetErrorCallBack(), nullptr);
  EXPECT_EQ(qkr::clear_element_status(), VXM_STATUS_SING);  // of the first call
  EXPECT_EQ(qkr::element_status(), VXM_STATUS_OK);
}

}  // namespace
