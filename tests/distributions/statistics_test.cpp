// All distributions beside the distribution functions of Boost.Math, a million numbers for each case.
//
// The seeds are fixed, so a test passes always or never. With a seed drawn at random a perfect library would
// fail each of the fewer than 1300 comparisons with probability 1e-7, and any of them with 1.3e-4.
#include "tests/support/statistics.h"

#include "tests/streams/stream.h"

namespace {

using namespace qkr::tests;

constexpr double smallest_probability = 1e-7;
constexpr uint32_t mt19937 = 0x800000;

template <class T>
class LongStatistics : public testing::Test {};
using Types = testing::Types<double, float, int32_t>;
TYPED_TEST_SUITE(LongStatistics, Types);

TYPED_TEST(LongStatistics, FollowTheirLaws) {
  uint32_t seed = 1000;
  for (const Case &a_case : cases<TypeParam>()) {
    if (!a_case.has_law) continue;
    for (const Finding &finding : examine<TypeParam>(a_case, new_stream(mt19937, {++seed}).get(), 1000000))
      EXPECT_GT(finding.probability, smallest_probability)
          << name_of<TypeParam>(a_case) << ": " << finding.statistic << " " << finding.value;
  }
}

// The instrument itself: a law that is off by 5 % of the probabilities' logarithms.
TYPED_TEST(LongStatistics, NoticeAWrongLaw) {
  for (const Case &a_case : cases<TypeParam>()) {
    const Law law = law_of<TypeParam>(a_case);
    const double below_middle = law.below(law.quantile(0.5, 0.5) + law.whole);
    if (!a_case.has_law || below_middle < 0.3 || below_middle > 0.9) continue;
    bool noticed = false;
    for (const Finding &finding : examine<TypeParam>(a_case, new_stream(mt19937, {7}).get(), 200000, 0.05))
      noticed |= finding.probability < smallest_probability;
    EXPECT_TRUE(noticed) << name_of<TypeParam>(a_case);
  }
}

}  // namespace
