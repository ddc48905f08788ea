// Every function against MPFR on a sample of inputs; the accuracy tool does the same at length.
#include <gtest/gtest.h>

#include "tests/support/measure.h"

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

}  // namespace
