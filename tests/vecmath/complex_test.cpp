// Complex functions and those of one extended number: special values and accuracy.
#include <cmath>
#include <fenv.h>
#include <gtest/gtest.h>
#include <qkr/vecmath.h>
#include <string.h>

#include "tests/support/complex_functions.h"
#include "tests/support/levels.h"
#include "tests/vecmath/special_values.h"

namespace {

using namespace qkr::tests;

template <class E>
class Complex : public testing::Test {};
using Elements = testing::Types<vxm64fc, vxm32fc>;
TYPED_TEST_SUITE(Complex, Elements);

template <class E>
bool same_bits(const E &a, const E &b) {
  return memcmp(&a, &b, sizeof(E)) == 0;
}
template <class E>
std::string text(const E &z) {
  char text[80];
  snprintf(text, sizeof text, "(%a, %a)", static_cast<double>(z.re), static_cast<double>(z.im));
  return text;
}

// Both parts of what a row of special values expects.
bool is_expected(double computed, double expected) {
  if (std::isnan(expected)) return std::isnan(computed);
  if (expected == 0 || std::isinf(expected)) return pattern_of(computed) == pattern_of(expected);
  return std::fabs(computed - expected) <= std::fabs(expected) * 0x1p-52;
}

template <class F>
void for_each_special_row(F f) {
  for (const ComplexSpecial &row : complex_special_values()) {
    f(row);
    if (!row.mirrored) continue;
    ComplexSpecial mirror = row;
    mirror.y = -row.y, mirror.im = -row.im;
    f(mirror);
  }
}

const ComplexFunction<vxm64fc> &function_of(const ComplexSpecial &row) {
  for (const auto &f : complex_functions<vxm64fc>())
    if (std::string("_vxmz") + row.function + "_HA" == f.name) return f;
  abort();
}

TEST(ComplexSpecialValues, OfEveryTable) {
  int rows = 0;
  for_each_special_row([&](const ComplexSpecial &row) {
    const auto &f = function_of(row);
    const vxm64fc z = {row.x, row.y};
    const auto check = [&](const char *how, auto compute) {
      _vxmSetErrStatus(-99);
      feclearexcept(FE_ALL_EXCEPT);
      const vxm64fc w = compute();
      const int events = fetestexcept(FE_ALL_EXCEPT);
      EXPECT_TRUE(is_expected(w.re, row.re) && is_expected(w.im, row.im))
          << row.function << how << " of " << text(z) << " is " << text(w);
      EXPECT_EQ(events & row.events, row.events) << row.function << how << " of " << text(z);
      // What was not asked for must not be there, as far as it would alarm.
      const int alarming = FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW;
      EXPECT_EQ(events & alarming & ~row.events, 0) << row.function << how << " of " << text(z);
      EXPECT_EQ(_vxmClearErrStatus(), -99);
    };
    check(" (scalar)", [&] { return f.scalar({row.x, row.y}); });
    for_each_level([&](const char *level) {
      check(level, [&] {
        vxm64fc w;
        f.entry(1, &z, nullptr, &w);
        return w;
      });
    });
    ++rows;
  });
  EXPECT_GT(rows, 400);
}

// Where a table leaves an infinity beside a finite argument the float functions follow the double ones.
TEST(ComplexSpecialValues, OfFloats) {
  for_each_special_row([&](const ComplexSpecial &row) {
    if (static_cast<float>(row.x) != row.x || static_cast<float>(row.y) != row.y) {
      if (!std::isnan(row.x) && !std::isnan(row.y)) return;
    }
    for (const auto &f : complex_functions<vxm32fc>())
      if (std::string("_vxmc") + row.function + "_HA" == f.name) {
        const vxm32fc z = {static_cast<float>(row.x), static_cast<float>(row.y)};
        vxm32fc w;
        f.entry(1, &z, nullptr, &w);
        const vxm32fc expected = {static_cast<float>(row.re), static_cast<float>(row.im)};
        const auto agrees = [](float computed, float e) {
          return std::isnan(e) ? std::isnan(computed) : pattern_of(computed) == pattern_of(e);
        };
        EXPECT_TRUE(agrees(w.re, expected.re) && agrees(w.im, expected.im))
            << f.name << " of " << text(z) << " is " << text(w);
      }
  });
}

TEST(ComplexSpecialValues, OfPowers) {
  const double inf = HUGE_VAL, nan = std::nan("");
  const struct {
    vxm64fc z, w, result;
  } rows[] = {
      {{0, 0}, {0, 0}, {1, 0}},       {{nan, 1}, {0, -0.0}, {1, 0}},  {{0, 0}, {2, 5}, {0, 0}},
      {{0, 0}, {-2, 0}, {inf, 0}},    {{0, 0}, {-2, 1}, {nan, nan}},  {{0, 0}, {0, 1}, {nan, nan}},
      {{1, 0}, {7, 0}, {1, 0}},       {{2, 0}, {10, 0}, {1024, 0}},   {{2, -0.0}, {2, 0}, {4, -0.0}},
      {{inf, 0}, {2, 0}, {inf, 0}},   {{inf, 0}, {-2, 0}, {0, -0.0}}, {{2, 0}, {1e6, 0}, {inf, 0}},
      {{2, 0}, {-1e6, 0}, {0, 0}},    {{nan, 0}, {1, 1}, {nan, nan}}, {{1, 1}, {nan, 0}, {nan, nan}},
      {{2, 0}, {1, nan}, {nan, nan}},
  };
  for (const auto &row : rows) {
    vxm64fc w, x;
    _vxmzPow_HA(1, &row.z, &row.w, &w);
    _vxmzPowx_HA(1, &row.z, row.w, &x);
    EXPECT_TRUE(is_expected(w.re, row.result.re) && is_expected(w.im, row.result.im))
        << text(row.z) << " to " << text(row.w) << " is " << text(w);
    EXPECT_TRUE(same_bits(w, x));
  }
}

TEST(ComplexSpecialValues, Classes) {
  constexpr double infinity = HUGE_VAL;
  std::vector<double> numbers = notable_numbers();
  numbers.push_back(from_pattern<double>(0x7FF0000000000001));
  for (const double x : numbers) {
    SCOPED_TRACE(x);
    EXPECT_EQ(_vxm_internal_isinf(x), std::isinf(x));
    EXPECT_EQ(_vxm_internal_isnan(x), std::isnan(x));
    EXPECT_EQ(_vxm_internal_iszero(x), x == 0);
    EXPECT_EQ(_vxm_internal_isnegzero(x), x == 0 && std::signbit(x));
    EXPECT_EQ(_vxm_internal_isninf(x), x == -infinity);
    EXPECT_EQ(_vxm_internal_ispinf(x), x == infinity);
    EXPECT_EQ(_vxm_internal_isnzfinite(x), x != 0 && std::isfinite(x));
  }
}

// All pairs of notable numbers: near the exact values, and symmetric.
TYPED_TEST(Complex, PairsOfNotableNumbers) {
  using E = TypeParam;
  using T = PartOf<E>;
  for (const auto &f : complex_functions<E>()) {
    if (!f.entry.unary) continue;
    for (double x : notable_numbers())
      for (double y : notable_numbers()) {
        const E z = rounded_element<E>(x, y), mirror = {z.re, -z.im};
        E w, of_mirror;
        f.entry(1, &z, nullptr, &w);
        const bool is_finite = std::isfinite(z.re) && std::isfinite(z.im);
        if (is_finite && z.re != 0 && z.im != 0) {
          const BigComplex exact = f.exact({z.re, z.im});
          const auto near = [](T computed, const Big &part) {
            const bool is_normal = std::fabs(computed) >= std::numeric_limits<T>::min();
            return error_in_ulp(computed, part) <= (is_normal ? 0.51 : 1);
          };
          EXPECT_TRUE(near(w.re, exact.re) && near(w.im, exact.im))
              << f.name << " of " << text(z) << " is " << text(w);
        }
        // The conjugate, but for zeros beside NaNs, which have signs of their own.
        f.entry(1, &mirror, nullptr, &of_mirror);
        const auto same = [](T a, T b) { return std::isnan(a) ? std::isnan(b) : a == b; };
        const T im = std::isnan(z.im) ? std::fabs(w.im) : -w.im;
        EXPECT_TRUE(same(w.re, of_mirror.re) &&
                    same(im, std::isnan(z.im) ? std::fabs(of_mirror.im) : of_mirror.im))
            << f.name << " of " << text(z) << " and its conjugate";
      }
  }
}

TYPED_TEST(Complex, KeepsItsBound) {
  for (const auto &f : complex_functions<TypeParam>()) {
    const double bound = error_bound(f.name);
    ASSERT_GT(bound, 0.5) << f.name;
    const qkr::Contract &contract = *find_contract(f.name);
    EXPECT_TRUE(contract.worst != 0 && contract.worst_imaginary != 0) << f.name;
    for (const Region &region : f.regions) {
      const ComplexErrors errors = measure(f, region, 200);
      const Operands &at = errors.normal.at;
      EXPECT_LE(errors.normal.error, bound) << f.name << ' ' << region.name << std::hexfloat << " at " << at.x
                                            << ", " << at.y << ", " << at.u << ", " << at.v;
      EXPECT_LE(errors.subnormal.error, 1) << f.name << ' ' << region.name;
    }
  }
}

// It rounds an extended result, which may be about a half, for a second time.
TEST(ComplexScalar, IsNearlyAlwaysItsVectorFunction) {
  for (const auto &f : complex_functions<vxm64fc>()) {
    qkr::tests::Random random{5};
    int different = 0;
    for (const Region &region : f.regions) {
      EXPECT_LE(measure(f, region, 60, true).normal.error, 0.51) << f.name << ' ' << region.name;
      for (int i = 0; i < 1000; ++i) {
        const Operands z = region.draw(random);
        const vxm64fc a = {z.x, z.y}, b = {z.u, z.v}, s = f.scalar(z);
        vxm64fc w;
        f.entry(1, &a, &b, &w);
        for (const auto &[p, q] : {std::pair(w.re, s.re), std::pair(w.im, s.im)})
          different += pattern_of(p) != pattern_of(q) && !(p != p && q != q);
      }
    }
    EXPECT_LE(different, static_cast<int>(f.regions.size()) * 10) << f.name;
  }
}

TEST(ExtendedFunctions, KeepTheirBounds) {
  for (const ExtendedFunction &f : extended_functions()) {
    const ExtendedErrors worst = measure(f, 2000);
    EXPECT_LE(worst.error, f.bound) << f.name << " at " << std::hexfloat << worst.a << ", " << worst.b;
  }
}

// Arguments that come very near to a multiple of pi/2, or are as large as the format allows.
TEST(ExtendedFunctions, HardReductions) {
  const long double rows[] = {6381956970095103.0L * 0x1p797L, 1e22L,
                              0x1.fffffffffffffp1023L,        1e4931L,
                              0x1.fffffffffffffffep16383L,    0xc.90fdaa22168c235p-3L,
                              0xc.90fdaa22168c234p-2L};
  for (const long double x : rows) {
    EXPECT_LE(error_in_ulp(_vxmsinl_scalar(x), apply<mpfr_sin>(Big(x))), 0.54) << x;
    EXPECT_LE(error_in_ulp(_vxmcosl_scalar(x), apply<mpfr_cos>(Big(x))), 0.54) << x;
  }
}

TEST(ExtendedFunctions, SpecialValuesAndEvents) {
  const long double inf = HUGE_VALL, nan = __builtin_nanl("");
  using Function = long double (*)(long double);
  struct Row {
    long double x, result;
    int events = 0;
  };
  const std::pair<Function, std::vector<Row>> tables[] = {
      {_vxmexpl_scalar,
       {{inf, inf}, {-inf, 0}, {0, 1}, {nan, nan}, {12000, inf, FE_OVERFLOW}, {-12000, 0, FE_UNDERFLOW}}},
      {_vxmlogl_scalar,
       {{inf, inf}, {1, 0}, {0, -inf, FE_DIVBYZERO}, {-1, nan, FE_INVALID}, {-inf, nan, FE_INVALID}}},
      {_vxmlog1pl_scalar, {{-0.0L, -0.0L}, {inf, inf}, {-1, -inf, FE_DIVBYZERO}, {-2, nan, FE_INVALID}}},
      {_vxmsinl_scalar, {{-0.0L, -0.0L}, {inf, nan, FE_INVALID}}},
      {_vxmcosl_scalar, {{0, 1}, {-inf, nan, FE_INVALID}}},
      {_vxmtanl_scalar, {{-0.0L, -0.0L}, {inf, nan, FE_INVALID}}},
      {_vxmsinhl_scalar, {{-inf, -inf}, {-0.0L, -0.0L}, {-12000, -inf, FE_OVERFLOW}}},
      {_vxmcoshl_scalar, {{-inf, inf}, {0, 1}}},
      {_vxmtanhl_scalar, {{-inf, -1}, {nan, nan}, {100, 1, FE_INEXACT}}},
      {_vxmsqrtl_scalar, {{-1, nan, FE_INVALID}}},
      {_vxmfabsl_scalar, {{-inf, inf}}}};
  for (const auto &[function, rows] : tables)
    for (const Row &row : rows) {
      SCOPED_TRACE(testing::Message() << "of " << row.x << ", which gives " << row.result);
      feclearexcept(FE_ALL_EXCEPT);
      const long double r = function(row.x);
      const int events = fetestexcept(FE_ALL_EXCEPT);
      const bool same = std::isnan(row.result)
                            ? std::isnan(r)
                            : r == row.result && std::signbit(r) == std::signbit(row.result);
      EXPECT_TRUE(same) << r;
      EXPECT_EQ(events & ~FE_INEXACT, row.events & ~FE_INEXACT);
      EXPECT_EQ(events & row.events, row.events);
    }
  for (const long double y : {0.0L, -0.0L, 1.0L, -1.0L, inf, -inf, 1e-4940L})
    for (const long double x : {0.0L, -0.0L, 1.0L, -1.0L, inf, -inf, 1e4000L}) {
      const long double r = _vxmatan2l_scalar(y, x), expected = std::atan2(y, x);
      EXPECT_TRUE(r == expected && std::signbit(r) == std::signbit(expected)) << y << ", " << x;
    }
}

}  // namespace
