// Pack and Unpack against the loops that define them, also where vectors overlap.
#include <gtest/gtest.h>
#include <numeric>
#include <qkr/vecmath.h>

#include "tests/support/levels.h"
#include "tests/support/samples.h"

namespace {

using namespace qkr::tests;

constexpr int room = 600, middle = 300;  // strides may lead to either side

// In a buffer whose numbers are their places: a and y are places in it, so that any overlap can be made.
// Element j of a packed vector stands at places[j] of the other.
template <class T>
void expect_moves(int shift, const std::vector<int> &places, auto pack, auto unpack) {
  for (const bool unpacks : {false, true}) {
    std::vector<T> expected(4 * room);
    std::iota(expected.begin(), expected.end(), T(1));
    std::vector<T> got = expected;
    const T *a = &expected[middle];
    T *y = &expected[middle + shift];
    for (size_t j = 0; j < places.size(); ++j)
      if (unpacks) y[places[j]] = a[j];
      else y[j] = a[places[j]];
    if (unpacks) unpack(&got[middle], &got[middle + shift]);
    else pack(&got[middle], &got[middle + shift]);
    ASSERT_EQ(got, expected) << (unpacks ? "Unpack" : "Pack") << " of " << places.size() << ", shift "
                             << shift;
  }
}

template <class T>
class Pack : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(Pack, Elements);

TYPED_TEST(Pack, DoesWhatTheLoopDoes) {
  using T = TypeParam;
  Random random{1};
  for_each_level([&](const char *level) {
    for (int n : {-1, 0, 1, 2, 7, 8, 9, 15, 16, 17, 33, 64, 100})
      for (int round = 0; round < 12; ++round) {
        SCOPED_TRACE(testing::Message() << level << ", n " << n);
        const int inc = round % 6 - 2, density = round % 4;  // of the mask: none, all, half, a third
        std::vector<int32_t> mask(room), index(room);
        std::vector<int> strided, masked, indexed;
        for (int i = 0; i < room; ++i) {
          mask[i] = density == 0 || random.below(density) ? 0 : i % 3 ? 1 : INT32_MIN;
          index[i] = static_cast<int32_t>(random.below(90));  // with repetitions: the last one counts
          if (i >= n) continue;
          strided.push_back(i * inc), indexed.push_back(index[i]);
          if (mask[i]) masked.push_back(i);
        }
        for (int shift : {2 * room, 0, 1, -1, 5, -8}) {  // far apart, in place, overlapping
          expect_moves<T>(
              shift, strided, [&](T *a, T *y) { either<T>(_vxmdPackI, _vxmsPackI)(n, a, inc, y); },
              [&](T *a, T *y) { either<T>(_vxmdUnpackI, _vxmsUnpackI)(n, a, y, inc); });
          expect_moves<T>(
              shift, masked, [&](T *a, T *y) { either<T>(_vxmdPackM, _vxmsPackM)(n, a, mask.data(), y); },
              [&](T *a, T *y) { either<T>(_vxmdUnpackM, _vxmsUnpackM)(n, a, y, mask.data()); });
          expect_moves<T>(
              shift, indexed, [&](T *a, T *y) { either<T>(_vxmdPackV, _vxmsPackV)(n, a, index.data(), y); },
              [&](T *a, T *y) { either<T>(_vxmdUnpackV, _vxmsUnpackV)(n, a, y, index.data()); });
        }
      }
  });
}

}  // namespace
