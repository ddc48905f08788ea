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

using Long = Decimals<430>;  // the largest double has 309 before the point
const Long half_pi = boost::math::constants::half_pi<Long>();

// Of each scale 2^q the numbers m 2^q that come nearest to a multiple of pi/2: the larger denominators m of
// the convergents of 2^q / (pi/2), as far as T can hold them.
template <class T>
std::vector<T> nearest_to_multiples_of_half_pi() {
  using Format = std::numeric_limits<T>;
  std::vector<T> all;
  for (int q = 1 - Format::digits; q <= Format::max_exponent - Format::digits; ++q) {
    Long rest = ldexp(Long(1), q) / half_pi;
    uint64_t m = 1, before = 0;
    while (m >> Format::digits == 0) {
      rest = 1 / (rest - floor(rest));
      if (rest >= 0x1p60) break;
      const uint64_t next = static_cast<uint64_t>(floor(rest)) * m + before;
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
  for (const double input : inputs)
    for (const double x : {input, -input}) {
      double sum[2];
      const int32_t quadrant = _vxmreduce_pio2d(x, sum);
      const Long taken = Long(x) - sum[0] - sum[1], count = round(taken / half_pi);
      ASSERT_LE(abs(count * half_pi - taken), 0x1p-58 * std::fabs(sum[0])) << std::hexfloat << x;
      ASSERT_EQ(quadrant, count - 4 * floor(count / 4)) << std::hexfloat << x;
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

// Element i of the vectors, by itself; the second result's vector stands behind the first's.
template <class T>
struct Routine {
  const char *reported;
  OneOrTwo<void(int32_t, const T *, T *), void(int32_t, const T *, T *, T *)> treat;
};
#define ROUTINES(name) \
  {#name "_HA", _vxm##name##_SC_HA}, {#name "_LA", _vxm##name##_SC_LA}, { #name "_A11", _vxm##name##_SC_A11 }
template <class T>
const std::vector<Routine<T>> routines;
template <>
const std::vector<Routine<double>> routines<double> = {ROUTINES(dSin), ROUTINES(dCos), ROUTINES(dTan),
                                                       ROUTINES(dSinCos)};
template <>
const std::vector<Routine<float>> routines<float> = {ROUTINES(sSin), ROUTINES(sCos), ROUTINES(sTan),
                                                     ROUTINES(sSinCos)};

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
    for (const auto &[reported, treat] : routines<T>) {
      SCOPED_TRACE(reported);
      const std::string name = reported;
      const auto *f = find_function<T>("_vxm" + name.substr(0, name.find('_')) + "_HA");
      const T a[] = {1, T(1e9), -std::numeric_limits<T>::infinity()};
      std::vector<T> r = {77, 77, 77}, q = r;
      T expected[] = {0, 77};
      f->entry(1, &a[1], nullptr, &expected[0], &expected[1]);
      reports = 0;
      for (const int32_t i : {1, 2})
        if (treat.binary) treat.binary(i, a, r.data(), q.data());
        else treat.unary(i, a, r.data());
      EXPECT_EQ(r, (std::vector<T>{77, expected[0], 5}));
      EXPECT_EQ(q, (std::vector<T>{77, expected[1], T(treat.binary ? 6 : 77)}));
      EXPECT_EQ(reports, 1);
      EXPECT_EQ(_vxmClearErrStatus(), VXM_STATUS_ERRDOM);
      EXPECT_EQ(record.cFuncName, name);
      EXPECT_EQ(record.iIndex, 2);
      EXPECT_EQ(record.dbA1, a[2]);
      EXPECT_TRUE(std::isnan(record.dbR1) && std::isnan(record.dbR2));
    }
  });
}

}  // namespace
