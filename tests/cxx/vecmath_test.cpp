// Vector functions of qkr.hpp: the bits of the C functions, sizes, and what becomes of bad elements.
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

constexpr int32_t n = 203;

template <class T, class Cxx, class Twin, class C>
void of_one(const char *name, Cxx cxx, Twin twin, C c) {
  const std::vector<T> a = numbers<T>(n, 1);
  std::vector<T> r(n), expected(n), short_r(n - 1);
  c(n, elements(a.data()), elements(expected.data()));
  cxx(a, r);
  expect_bits(name, r, expected);
  r = a;
  EXPECT_TRUE(twin(r, r).ok());  // in place
  expect_bits(name, r, expected);
  EXPECT_EQ(twin(a, short_r), qkr::status(qkr::room::vecmath, VXM_STATUS_BADSIZE)) << name;
  EXPECT_THROW(cxx(a, short_r), qkr::error) << name;
  EXPECT_EQ(short_r, std::vector<T>(n - 1));
}
template <class T, class Cxx, class Twin, class C>
void of_two(const char *name, Cxx cxx, Twin twin, C c) {
  const std::vector<T> a = numbers<T>(n, 1), b = numbers<T>(n, 2), short_b(n - 1);
  std::vector<T> r(n), expected(n);
  c(n, elements(a.data()), elements(b.data()), elements(expected.data()));
  cxx(a, b, r);
  expect_bits(name, r, expected);
  EXPECT_TRUE(twin(a, b, r).ok());
  expect_bits(name, r, expected);
  EXPECT_EQ(twin(a, short_b, r).code(), VXM_STATUS_BADSIZE) << name;
  EXPECT_EQ(twin(short_b, b, r).code(), VXM_STATUS_BADSIZE) << name;
  EXPECT_THROW(cxx(a, short_b, r), qkr::error) << name;
}
template <class T, class Cxx, class Twin, class C>
void to_two(const char *name, Cxx cxx, Twin twin, C c) {
  const std::vector<T> a = numbers<T>(n, 1);
  std::vector<T> r1(n), r2(n), expected1(n), expected2(n), short_r(n - 1);
  c(n, a.data(), expected1.data(), expected2.data());
  cxx(a, r1, r2);
  expect_bits(name, r1, expected1);
  expect_bits(name, r2, expected2);
  EXPECT_EQ(twin(a, short_r, r2).code(), VXM_STATUS_BADSIZE) << name;
  EXPECT_EQ(twin(a, r1, short_r).code(), VXM_STATUS_BADSIZE) << name;
  EXPECT_THROW(cxx(a, r1, short_r), qkr::error) << name;
}

#define CALLS(name) \
#name, [](auto &&...x) { qkr::name(x...); }, [](auto &&...x) { return qkr::try_##name(x...); }
#define REALS(form, name, C, suffix)           \
  form<double>(CALLS(name), _vxmd##C##suffix); \
  form<float>(CALLS(name), _vxms##C##suffix);
#define BOTH(form, name, C)                               \
  REALS(form, name, C, _HA)                               \
  form<std::complex<double>>(CALLS(name), _vxmz##C##_HA); \
  form<std::complex<float>>(CALLS(name), _vxmc##C##_HA);

TEST(CxxVecmath, BitsOfTheCFunctions) {
  const qkr::element_policy silent(VXM_MODE_IGNORE);
  BOTH(of_one, exp, Exp)
  BOTH(of_one, log, Ln)
  BOTH(of_one, log10, Log10)
  BOTH(of_one, sqrt, Sqrt)
  BOTH(of_one, sin, Sin)
  BOTH(of_one, cos, Cos)
  BOTH(of_one, tan, Tan)
  BOTH(of_one, asin, Asin)
  BOTH(of_one, acos, Acos)
  BOTH(of_one, atan, Atan)
  BOTH(of_one, sinh, Sinh)
  BOTH(of_one, cosh, Cosh)
  BOTH(of_one, tanh, Tanh)
  BOTH(of_one, asinh, Asinh)
  BOTH(of_one, acosh, Acosh)
  BOTH(of_one, atanh, Atanh)
  BOTH(of_two, pow, Pow)
  REALS(of_one, inv_sqrt, InvSqrt, _HA)
  REALS(of_one, cbrt, Cbrt, _HA)
  REALS(of_one, inv_cbrt, InvCbrt, _HA)
  REALS(of_one, inv, Inv, _HA)
  REALS(of_one, erf, Erf, _HA)
  REALS(of_one, erfc, Erfc, _HA)
  REALS(of_one, erf_inv, ErfInv, _HA)
  REALS(of_two, div, Div, _HA)
  REALS(of_two, hypot, Hypot, _HA)
  REALS(of_two, atan2, Atan2, _HA)
  REALS(to_two, sincos, SinCos, _HA)
  REALS(of_one, ceil, Ceil, )
  REALS(of_one, floor, Floor, )
  REALS(of_one, trunc, Trunc, )
  REALS(of_one, round, Round, )
  REALS(of_one, rint, Rint, )
  REALS(of_one, nearbyint, NearbyInt, )
  REALS(to_two, modf, Modf, )
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
