// Every function against MPFR on a sample of inputs; the accuracy tool does the same at length.
#include <gtest/gtest.h>

#include "tests/support/measure.h"
#include "tests/support/oracle.h"

namespace {

using namespace qkr::tests;

template <class T>
class Accuracy : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(Accuracy, Elements);

TYPED_TEST(Accuracy, KeepsItsBoundAndComesNearIt) {
  for (const auto &f : vector_functions<TypeParam>()) {
    SCOPED_TRACE(f.name);
    const auto errors = measure(f, 60'000);
    const double bound = error_bound(f.name);
    EXPECT_LE(errors.normal.error, bound)
        << "at " << std::hexfloat << errors.normal.a << ", " << errors.normal.b;
    EXPECT_LE(errors.subnormal.error, subnormal_bound) << "at " << std::hexfloat << errors.subnormal.a;
    if (find_contract(f.name)) {
      EXPECT_GE(errors.normal.error, bound - 0.05) << "the bound is overstated";
    }
    EXPECT_LE(errors.reference_gap, reference_tolerance<TypeParam>);
  }
}

// Both references, where ulps are easily counted.
TEST(Oracle, CountsUlpsOfTheExactResult) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const struct {
    const char *function;
    double a, b, computed, error;
  } rows[] = {
      {"_vxmdExp_HA", 0, 0, 1, 0},
      {"_vxmdDiv_HA", 3, 1, 3 + 0x1p-51, 1},
      {"_vxmdDiv_HA", 1, 3, 1.0 / 3, 1.0 / 3},
      {"_vxmdDiv_HA", 0x1p-1074, 4, 0, 0.25},
      {"_vxmdDiv_HA", 0x1p1023, 0.5, infinity, 0},
      {"_vxmdDiv_HA", -0x1p1023, 0.5, infinity, infinity},
      {"_vxmdDiv_HA", 1, 1, infinity, infinity},
      {"_vxmdDiv_HA", 0, 0, 1, infinity},
      {"_vxmdInv_HA", 0, 0, infinity, 0},
  };
  Oracle<double> oracle;
  for (const auto &row : rows) {
    SCOPED_TRACE(std::string(row.function) + " of " + std::to_string(row.a) + ", " + std::to_string(row.b));
    const auto *f = find_function<double>(row.function);
    ASSERT_TRUE(f);
    const double error = oracle.error(*f, 0, row.a, row.b, row.computed);
    const double quick = quick_error(f->quick[0], row.a, row.b, row.computed);
    if (row.error == infinity) {
      EXPECT_EQ(error, infinity);
      EXPECT_EQ(quick, infinity);
    } else {
      EXPECT_NEAR(error, row.error, 1e-15);
      EXPECT_NEAR(quick, row.error, 1e-3);
    }
  }
}

}  // namespace
