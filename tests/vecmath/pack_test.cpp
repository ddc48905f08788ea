// Pack and Unpack against the loops that define them, also where vectors overlap.
#include <functional>
#include <gtest/gtest.h>
#include <numeric>
#include <qkr/vecmath.h>
#include <random>
#include <string>
#include <vector>

#include "simd/level.h"

namespace {

constexpr int room = 600, middle = 300;  // strides may lead to either side

// One call on a buffer: inputs and results are places in it, so that any overlap can be made.
template <class T>
struct Case {
  std::string name;
  std::function<void(T *a, T *y)> call, reference;
};

#define CALL(letter, T)                                                                      \
  std::vector<Case<T>> cases(T, int n, int inc, const int32_t *mask, const int32_t *index) { \
    return {{"PackI", [=](T *a, T *y) { _vxm##letter##PackI(n, a, inc, y); },                \
             [=](T *a, T *y) {                                                               \
               for (int i = 0; i < n; ++i) y[i] = a[i * inc];                                \
             }},                                                                             \
            {"PackM", [=](T *a, T *y) { _vxm##letter##PackM(n, a, mask, y); },               \
             [=](T *a, T *y) {                                                               \
               for (int i = 0, j = 0; i < n; ++i)                                            \
                 if (mask[i]) y[j++] = a[i];                                                 \
             }},                                                                             \
            {"PackV", [=](T *a, T *y) { _vxm##letter##PackV(n, a, index, y); },              \
             [=](T *a, T *y) {                                                               \
               for (int i = 0; i < n; ++i) y[i] = a[index[i]];                               \
             }},                                                                             \
            {"UnpackI", [=](T *a, T *y) { _vxm##letter##UnpackI(n, a, y, inc); },            \
             [=](T *a, T *y) {                                                               \
               for (int i = 0; i < n; ++i) y[i * inc] = a[i];                                \
             }},                                                                             \
            {"UnpackM", [=](T *a, T *y) { _vxm##letter##UnpackM(n, a, y, mask); },           \
             [=](T *a, T *y) {                                                               \
               for (int i = 0, j = 0; i < n; ++i)                                            \
                 if (mask[i]) y[i] = a[j++];                                                 \
             }},                                                                             \
            {"UnpackV", [=](T *a, T *y) { _vxm##letter##UnpackV(n, a, y, index); },          \
             [=](T *a, T *y) {                                                               \
               for (int i = 0; i < n; ++i) y[index[i]] = a[i];                               \
             }}};                                                                            \
  }
CALL(d, double)
CALL(s, float)

template <class T>
class Pack : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(Pack, Elements);

TYPED_TEST(Pack, DoesWhatTheLoopDoes) {
  using T = TypeParam;
  std::mt19937 engine(1);
  for (int level = 0; level <= static_cast<int>(qkr::supported_level()); ++level) {
    qkr::force_level(static_cast<qkr::Level>(level));
    for (int n : {-1, 0, 1, 2, 7, 8, 9, 15, 16, 17, 33, 64, 100})
      for (int inc : {-2, -1, 0, 1, 2, 3})
        for (int density : {0, 1, 2, 4}) {  // of the mask: none, all, half, a quarter
          std::vector<int32_t> mask(room), index(room);
          for (int i = 0; i < room; ++i) {
            mask[i] = density == 0 ? 0 : engine() % density == 0 ? (i % 3 ? 1 : INT32_MIN) : 0;
            index[i] = engine() % 90;  // with repetitions: the last one counts
          }
          for (const Case<T> &c : cases(T(), n, inc, mask.data(), index.data()))
            for (int shift : {2 * room, 0, 1, -1, 5, -8}) {  // far apart, in place, overlapping
              std::vector<T> expected(4 * room);
              std::iota(expected.begin(), expected.end(), T(1));
              std::vector<T> got = expected;
              c.reference(&expected[middle], &expected[middle + shift]);
              c.call(&got[middle], &got[middle + shift]);
              ASSERT_EQ(got, expected) << c.name << " level " << level << " n " << n << " inc " << inc
                                       << " density " << density << " shift " << shift;
            }
        }
  }
}

}  // namespace
