// Complex functions and those of one extended number: special values and accuracy.
#include <algorithm>
#include <cmath>
#include <complex>
#include <fenv.h>
#include <gtest/gtest.h>
#include <map>
#include <qkr/vecmath.h>
#include <qkr/vecmath_extended.h>
#include <string.h>
#include <string_view>

#include "tests/support/complex_functions.h"
#include "tests/support/levels.h"

namespace {

using namespace qkr;
using namespace qkr::tests;

constexpr double inf = HUGE_VAL, nan = std::numeric_limits<double>::quiet_NaN();

template <class E>
class Complex : public testing::Test {};
using Elements = testing::Types<vxm64fc, vxm32fc>;
TYPED_TEST_SUITE(Complex, Elements);

// A NaN for any NaN, zeros and infinities with their sign, other numbers nearly.
template <class T>
bool is_expected(T computed, double expected) {
  const T e = static_cast<T>(expected);
  if (std::isnan(e)) return std::isnan(computed);
  if (e == 0 || std::isinf(e)) return pattern_of(computed) == pattern_of(e);
  return std::abs(rank(computed) - rank(e)) <= 4;
}

using Value = std::complex<double>;

// What the C library, which follows C99's Annex G, gives at zeros, infinities and NaNs.
Value special_value(std::string_view function, const Value &z) {
  static const std::map<std::string_view, Value (*)(const Value &)> annex_g = {
      {"Exp", std::exp},   {"Ln", std::log},      {"Log10", std::log10}, {"Sqrt", std::sqrt},
      {"Cosh", std::cosh}, {"Sinh", std::sinh},   {"Tanh", std::tanh},   {"Cos", std::cos},
      {"Sin", std::sin},   {"Tan", std::tan},     {"Acos", std::acos},   {"Acosh", std::acosh},
      {"Asin", std::asin}, {"Asinh", std::asinh}, {"Atan", std::atan},   {"Atanh", std::atanh}};
  // Later editions of C leave the zero as it is.
  if (function == "Tanh" && z.real() == 0 && !std::isfinite(z.imag())) return {nan, nan};
  if (function == "Tan" && z.imag() == 0 && !std::isfinite(z.real())) return {nan, nan};
  return annex_g.at(function)(z);
}

// Beside a NaN, signs are open.
template <class E>
bool is_expected(const E &z, const E &computed, const Value &expected) {
  const double re = expected.real(), im = expected.imag();
  if (std::isnan(z.re + z.im) || std::isnan(re + im))
    return is_expected(std::fabs(computed.re), std::fabs(re)) &&
           is_expected(std::fabs(computed.im), std::fabs(im));
  return is_expected(computed.re, re) && is_expected(computed.im, im);
}

// An infinity is a pole's or an overflow's; a NaN that comes of numbers is invalid, of a NaN it may be.
template <class E>
bool are_expected(int alarms, const E &z, const E &w) {
  const auto is_nan = [](const E &e) { return std::isnan(e.re) || std::isnan(e.im); };
  const auto is_infinite = [](const E &e) { return std::isinf(e.re) || std::isinf(e.im); };
  if (is_nan(z)) return (alarms & ~FE_INVALID) == 0;
  if (is_nan(w)) return alarms == FE_INVALID;
  if (is_infinite(z) || !is_infinite(w)) return alarms == 0;
  return alarms == (std::fabs(z.re) + std::fabs(z.im) <= 1 ? FE_DIVBYZERO : FE_OVERFLOW);
}

TYPED_TEST(Complex, PairsOfNotableNumbers) {
  using E = TypeParam;
  for (const auto &f : complex_functions<E>()) {
    if (!f.entry.unary) continue;
    const std::string_view family = std::string_view(f.name).substr(5, strlen(f.name) - 8);
    Errors<E> errors;
    for (double x : notable_numbers())
      for (double y : notable_numbers()) {
        const E z = rounded_element<E>(x, y);
        const bool ordinary = std::isfinite(z.re) && std::isfinite(z.im) && z.re != 0 && z.im != 0;
        const Value expected = ordinary ? Value() : special_value(family, {z.re, z.im});
        const auto check = [&](const char *how, auto compute) {
          _vxmSetErrStatus(-99);
          feclearexcept(FE_ALL_EXCEPT);
          const E r = compute();
          const int alarms = fetestexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW);
          const bool right = ordinary || is_expected(z, r, expected);
          EXPECT_TRUE(right && are_expected(alarms, z, r) && _vxmClearErrStatus() == -99)
              << f.name << how << " of " << z.re << ", " << z.im << " is " << r.re << ", " << r.im
              << ", events " << alarms;
          return r;
        };
        E w;
        for_each_level([&](const char *level) {
          w = check(level, [&] {
            f.entry(1, &z, nullptr, &w);
            return w;
          });
        });
        if (ordinary && y > 0) note_errors(f, z, z, w, errors);
        if constexpr (std::is_same_v<E, vxm64fc>) check(" (scalar)", [&] { return f.scalar(z, z); });
      }
    EXPECT_LE(errors.normal.error, 0.51)
        << f.name << " of " << errors.normal.a.re << ", " << errors.normal.a.im;
    EXPECT_LE(errors.subnormal.error, 1)
        << f.name << " of " << errors.subnormal.a.re << ", " << errors.subnormal.a.im;
  }
}

TEST(ComplexSpecialValues, OfPowers) {
  const struct {
    vxm64fc z, w, result;
  } rows[] = {{{0, 0}, {0, 0}, {1, 0}},     {{nan, 1}, {0, -0.0}, {1, 0}},  {{0, 0}, {2, 5}, {0, 0}},
              {{0, 0}, {-2, 0}, {inf, 0}},  {{0, 0}, {-2, 1}, {nan, nan}},  {{0, 0}, {0, 1}, {nan, nan}},
              {{1, 0}, {7, 0}, {1, 0}},     {{2, 0}, {10, 0}, {1024, 0}},   {{2, -0.0}, {2, 0}, {4, -0.0}},
              {{inf, 0}, {2, 0}, {inf, 0}}, {{inf, 0}, {-2, 0}, {0, -0.0}}, {{2, 0}, {1e6, 0}, {inf, 0}},
              {{2, 0}, {-1e6, 0}, {0, 0}},  {{nan, 0}, {1, 1}, {nan, nan}}, {{1, 1}, {nan, 0}, {nan, nan}}};
  for (const auto &[z, w, result] : rows)
    for (const auto &entry : {Entry<vxm64fc>(_vxmzPow_HA), Entry<vxm64fc>(_vxmzPowx_HA)}) {
      vxm64fc computed;
      entry(1, &z, &w, &computed);
      EXPECT_TRUE(is_expected(computed.re, result.re) && is_expected(computed.im, result.im))
          << z.re << ", " << z.im << " to " << w.re << ", " << w.im << " is " << computed.re << ", "
          << computed.im;
    }
}

// Where C99 does tell the sign.
TEST(ComplexSpecialValues, ArcCosineOfANanBesideAnInfinity) {
  for (const double y : {inf, -inf}) EXPECT_EQ(_vxmcacos_scalar(nan, y).im, -y);
}

TEST(ComplexSpecialValues, Classes) {
  for (const double x : notable_numbers()) {
    SCOPED_TRACE(x);
    EXPECT_EQ(_vxm_internal_isinf(x), std::isinf(x));
    EXPECT_EQ(_vxm_internal_isnan(x), std::isnan(x));
    EXPECT_EQ(_vxm_internal_iszero(x), x == 0);
    EXPECT_EQ(_vxm_internal_isnegzero(x), x == 0 && std::signbit(x));
    EXPECT_EQ(_vxm_internal_isninf(x), x == -inf);
    EXPECT_EQ(_vxm_internal_ispinf(x), x == inf);
    EXPECT_EQ(_vxm_internal_isnzfinite(x), x != 0 && std::isfinite(x));
  }
}

TYPED_TEST(Complex, KeepsItsBound) {
  for (const auto &f : complex_functions<TypeParam>()) {
    const qkr::Contract &contract = *find_contract(f.name);
    EXPECT_TRUE(contract.worst != 0 && contract.worst_imaginary != 0) << f.name;
    for (size_t i = 0; i < f.regions.size(); ++i) {
      const auto errors = measure(f, f.regions[i], 200);
      const auto &[error, z, w] = errors.normal;
      EXPECT_LE(error, contract.bound) << f.name << ", region " << i << std::hexfloat << " at " << z.re
                                       << ", " << z.im << ", " << w.re << ", " << w.im;
      EXPECT_LE(errors.subnormal.error, subnormal_bound) << f.name << ", region " << i;
    }
  }
}

// Many turns from a negative base; angles, and products on the way to them, that leave the normal range, of
// results that do not.
TEST(ComplexPowers, OfAwkwardAngles) {
  constexpr vxm64fc rows[][2] = {
      {{-0x1.b37349d935139p+9, -0x1.d68ea302fd4bp-1}, {-0x0.f2bd66ebca342p-1022, -0x0.d367afaff85bep-1022}},
      {{-0x1.cecc828e741b4p+9, 0x1.70cca759f6965p+18}, {-0.0, 0x0.1c81d91c21387p-1022}},
      {{3, 0x0.00000000009c2p-1022}, {500, 0}},
      {{2, 0x0.0000000000001p-1022}, {1000, 0}},
      {{-1.01, 0}, {2800.3, 0}},
      {{-1.02, -1e-200}, {2500.7, 0}},
      {{1e-180, 0x1p430}, {-1.7, 41.25}}};
  const auto f = std::ranges::find(complex_functions<vxm64fc>(), "_vxmzPow_HA",
                                   [](const auto &row) { return std::string_view(row.name); });
  for (const auto &[z, w] : rows) {
    const vxm64fc one = _vxmcpow_scalar(z.re, z.im, w.re, w.im);
    for_each_level([&](const char *level) {
      vxm64fc r;
      f->entry(1, &z, &w, &r);
      Errors<vxm64fc> errors;
      note_errors(*f, z, w, r, errors);
      EXPECT_TRUE(r.im == one.im && errors.normal.error <= 0.51)
          << level << ": " << z.re << ", " << z.im << " to " << w.re << ", " << w.im << " is " << r.im;
    });
  }
}

// It rounds an extended result, which may be about a half, for a second time.
TEST(ComplexScalar, IsNearlyAlwaysItsVectorFunction) {
  for (const auto &f : complex_functions<vxm64fc>()) {
    qkr::tests::Random random{5};
    size_t different = 0;
    Errors<vxm64fc> errors;
    for (const Region &region : f.regions)
      for (int i = 0; i < 1000; ++i) {
        const Operands at = region(random);
        const vxm64fc z = {at.x, at.y}, w = {at.u, at.v}, one = f.scalar(z, w);
        vxm64fc r;
        f.entry(1, &z, &w, &r);
        different += (one.re != r.re && one.re == one.re) + (one.im != r.im && one.im == one.im);
        if (i % 16 == 0 && std::isfinite(z.re) && std::isfinite(z.im)) note_errors(f, z, w, one, errors);
      }
    EXPECT_LE(different, f.regions.size() * 10) << f.name;
    EXPECT_LE(errors.normal.error, 0.51) << f.name;
  }
}

TEST(ExtendedFunctions, KeepTheirBounds) {
  for (const ExtendedFunction &f : extended_functions()) {
    const auto &[error, a, b] = measure(f, 2000).normal;
    EXPECT_LE(error, f.bound) << f.name << " at " << std::hexfloat << a << ", " << b;
  }
}

// Arguments that come very near to a multiple of pi/2, or are as large as the format allows.
TEST(ExtendedFunctions, HardReductions) {
  const long double rows[] = {6381956970095103.0L * 0x1p797L, 1e22L,
                              0x1.fffffffffffffp1023L,        1e4931L,
                              0x1.fffffffffffffffep16383L,    0xc.90fdaa22168c235p-3L,
                              0xc.90fdaa22168c234p-2L};
  for (const long double x : rows) {
    EXPECT_LE(error_in_ulp(_vxmsinl_scalar(x), sin(Big(x))), 0.54) << x;
    EXPECT_LE(error_in_ulp(_vxmcosl_scalar(x), cos(Big(x))), 0.54) << x;
  }
}

TEST(ExtendedFunctions, SpecialValuesAndEvents) {
  struct Pair {
    long double re, im;
  };
  for (const ExtendedFunction &f : extended_functions())
    for (const double x : notable_numbers())
      for (const double y : f.entry.binary ? notable_numbers() : std::vector<double>{0}) {
        Big exact;
        f.exact(raw(exact), raw(Big(x)), raw(Big(y)), MPFR_RNDN);
        feclearexcept(FE_ALL_EXCEPT);
        const long double r = f.entry(static_cast<long double>(x), static_cast<long double>(y));
        const int alarms = fetestexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW);
        EXPECT_TRUE(is_expected(static_cast<double>(r), static_cast<double>(exact)) &&
                    are_expected(alarms, Pair{x, y}, Pair{r, 0}))
            << f.name << " of " << x << ", " << y << " is " << r << ", events " << alarms;
      }
  for (const auto root_or_logarithm : {_vxmsqrtl_scalar, _vxmlogl_scalar}) {
    feclearexcept(FE_ALL_EXCEPT);
    EXPECT_TRUE(std::isnan(root_or_logarithm(-1)) && fetestexcept(FE_INVALID));
  }
  EXPECT_EQ(_vxmfabsl_scalar(-inf), inf);
}

}  // namespace
