// Circular functions where arguments are hardest, next to the multiples of pi/2, and their per-element
// routines.
#include <cmath>
#include <fenv.h>
#include <gtest/gtest.h>
#include <qkr/vecmath.h>

#include "tests/support/oracle.h"
#include "tests/support/samples.h"
#include "tests/vecmath/fresh_thread.h"

namespace {

using namespace qkr::tests;

constexpr int digits_of_pi = 1400;  // the largest double has 1024 before the point

struct Real {
  mpfr_t value;
  Real() { mpfr_init2(value, digits_of_pi); }
  Real(const Real &) = delete;
  ~Real() { mpfr_clear(value); }
  operator mpfr_ptr() { return value; }
};

// Of each scale 2^q the numbers m 2^q that come nearest to a multiple of pi/2: the larger denominators m of
// the convergents of 2^q / (pi/2), as far as T can hold them.
template <class T>
std::vector<T> nearest_to_multiples_of_half_pi() {
  using Format = std::numeric_limits<T>;
  std::vector<T> all;
  Real rest;
  for (int q = 1 - Format::digits; q <= Format::max_exponent - Format::digits; ++q) {
    mpfr_const_pi(rest, MPFR_RNDN);
    mpfr_ui_div(rest, 1, rest, MPFR_RNDN);
    mpfr_mul_2si(rest, rest, q + 1, MPFR_RNDN);
    uint64_t m = 1, before = 0;
    while (m >> Format::digits == 0) {
      mpfr_frac(rest, rest, MPFR_RNDN);
      mpfr_ui_div(rest, 1, rest, MPFR_RNDN);
      const double quotient = mpfr_get_d(rest, MPFR_RNDD);
      if (quotient >= 0x1p60) break;
      const uint64_t next = static_cast<uint64_t>(quotient) * m + before;
      before = m, m = next;
      if (before >> Format::digits / 2) all.push_back(std::ldexp(static_cast<T>(before), q));
    }
  }
  return all;
}

TEST(Reduction, LeavesTheDistanceToAMultipleOfHalfPi) {
  std::vector<double> inputs = nearest_to_multiples_of_half_pi<double>();
  Random random{1};
  for (double hand_over : {0.5, 1.0, 0x1p17, 0x1p23, 0x1p30})
    for (int step = -3; step <= 3; ++step) inputs.push_back(of_rank<double>(rank(hand_over) + step));
  for (int i = 0; i < 20'000; ++i) inputs.push_back(any_between(Range<double>{0x1p-30}, random));

  Real pi_half, rest, count;
  mpfr_const_pi(pi_half, MPFR_RNDN);
  mpfr_div_2ui(pi_half, pi_half, 1, MPFR_RNDN);
  for (const double input : inputs)
    for (const double x : {input, -input}) {
      double sum[2];
      const int32_t quadrant = _vxmreduce_pio2d(x, sum);
      mpfr_set_d(rest, x, MPFR_RNDN);
      mpfr_sub_d(rest, rest, sum[0], MPFR_RNDN);
      mpfr_sub_d(rest, rest, sum[1], MPFR_RNDN);
      mpfr_div(count, rest, pi_half, MPFR_RNDN);
      mpfr_rint(count, count, MPFR_RNDN);
      mpfr_fms(rest, count, pi_half, rest, MPFR_RNDN);
      mpfr_fmod_ui(count, count, 4, MPFR_RNDN);
      ASSERT_LE(std::fabs(mpfr_get_d(rest, MPFR_RNDN)), 0x1p-58 * std::fabs(sum[0])) << std::hexfloat << x;
      ASSERT_EQ(quadrant, (mpfr_get_si(count, MPFR_RNDN) + 4) % 4) << std::hexfloat << x;
      ASSERT_LE(std::fabs(sum[0]), 0.7854) << std::hexfloat << x;
      ASSERT_EQ(sum[0] + sum[1], sum[0]) << std::hexfloat << x;
    }
}

TEST(Reduction, ZerosKeepTheirSignAndTheRestIsNan) {
  constexpr double inf = std::numeric_limits<double>::infinity(),
                   nan = std::numeric_limits<double>::quiet_NaN();
  double sum[2] = {5, 5};
  EXPECT_EQ(_vxmreduce_pio2d(-0.0, sum), 0);
  EXPECT_EQ(pattern_of(sum[0]), pattern_of(-0.0));
  EXPECT_EQ(sum[1], 0);
  for (const double x : {inf, -inf, nan}) {
    feclearexcept(FE_ALL_EXCEPT);
    EXPECT_EQ(_vxmreduce_pio2d(x, sum), 0);
    EXPECT_TRUE(std::isnan(sum[0]) && std::isnan(sum[1]));
    EXPECT_EQ(fetestexcept(FE_ALL_EXCEPT), std::isnan(x) ? 0 : FE_INVALID);
  }
}

template <class T>
class Circular : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(Circular, Elements);

TYPED_TEST(Circular, KeepsItsBoundNextToMultiplesOfHalfPi) {
  using T = TypeParam;
  const std::vector<T> inputs = nearest_to_multiples_of_half_pi<T>();
  const int count = static_cast<int>(inputs.size());
  Oracle<T> oracle;
  for (const char *name :
       {either<T>("_vxmdSin_HA", "_vxmsSin_HA"), either<T>("_vxmdCos_HA", "_vxmsCos_HA"),
        either<T>("_vxmdTan_HA", "_vxmsTan_HA"), either<T>("_vxmdSinCos_HA", "_vxmsSinCos_HA")}) {
    const auto *f = find_function<T>(name);
    ASSERT_TRUE(f);
    SCOPED_TRACE(name);
    std::vector<T> results[] = {std::vector<T>(count), std::vector<T>(count)};
    f->entry(count, &inputs[0], nullptr, &results[0][0], &results[1][0]);
    for (int k = 0; k < f->entry.results(); ++k)
      for (int i = 0; i < count; ++i)
        ASSERT_LE(oracle.error(*f, k, inputs[i], 0, results[k][i]), error_bound(name))
            << "of " << std::hexfloat << inputs[i];
  }
}

// Element i of the vectors, by itself; q is the second result's vector where there is one.
template <class T>
struct Routine {
  const char *reported;
  void (*treat)(int32_t i, const T *a, T *r, T *q);
  const char *function;  // the vector function of the same results
};

#define ONE_RESULT(letter, T, function, suffix)                                                   \
  {                                                                                               \
#letter #function #suffix,                                                                    \
        [](int32_t i, const T *a, T *r,                                                           \
           T *) { _vxm##letter##function##_SC##suffix(i, a, r); }, "_vxm" #letter #function "_HA" \
  }
#define TWO_RESULTS(letter, T, function, suffix)                                                      \
  {                                                                                                   \
#letter #function #suffix,                                                                        \
        [](int32_t i, const T *a, T *r,                                                               \
           T *q) { _vxm##letter##function##_SC##suffix(i, a, r, q); }, "_vxm" #letter #function "_HA" \
  }
#define ALL_SUFFIXES(form, letter, T, function) \
  form(letter, T, function, _HA), form(letter, T, function, _LA), form(letter, T, function, _A11)
#define ALL_ROUTINES(letter, T)                                                       \
  ALL_SUFFIXES(ONE_RESULT, letter, T, Sin), ALL_SUFFIXES(ONE_RESULT, letter, T, Cos), \
      ALL_SUFFIXES(ONE_RESULT, letter, T, Tan), ALL_SUFFIXES(TWO_RESULTS, letter, T, SinCos)

template <class T>
const Routine<T> routines[12] = {};
template <>
const Routine<double> routines<double>[12] = {ALL_ROUTINES(d, double)};
template <>
const Routine<float> routines<float>[12] = {ALL_ROUTINES(s, float)};

VxmErrorContext record;
int reports;

TYPED_TEST(Circular, RoutinesTreatOneElementAndReportAnInfinityOnce) {
  using T = TypeParam;
  in_fresh_thread([] {
    _vxmSetErrorCallBack([](VxmErrorContext *seen) {
      record = *seen;
      ++reports;
      seen->dbR1 = 5, seen->dbR2 = 6;
      return 0;
    });
    constexpr T inf = std::numeric_limits<T>::infinity();
    for (const Routine<T> &routine : routines<T>) {
      SCOPED_TRACE(routine.reported);
      const auto *f = find_function<T>(routine.function);
      const bool two_results = f->entry.results() == 2;
      const T a[] = {1, T(1e9), -inf};
      T r[] = {77, 77, 77}, q[] = {77, 77, 77}, expected[2];
      f->entry(1, &a[1], nullptr, &expected[0], &expected[1]);
      reports = 0;
      routine.treat(1, a, r, q);
      EXPECT_EQ(reports, 0);
      EXPECT_EQ(r[1], expected[0]);
      EXPECT_EQ(q[1], two_results ? expected[1] : 77);

      routine.treat(2, a, r, q);
      EXPECT_EQ(reports, 1);
      EXPECT_EQ(_vxmClearErrStatus(), VXM_STATUS_ERRDOM);
      EXPECT_STREQ(record.cFuncName, routine.reported);
      EXPECT_EQ(record.iIndex, 2);
      EXPECT_EQ(record.dbA1, -inf);
      EXPECT_TRUE(std::isnan(record.dbR1) && std::isnan(record.dbR2));
      EXPECT_EQ(r[2], 5);
      EXPECT_EQ(q[2], two_results ? 6 : 77);
      EXPECT_EQ(r[0], 77);
    }
  });
}

}  // namespace
