// Special inputs as single elements, and in every lane of ordinary vectors.
#include "tests/vecmath/special_values.h"

#include <errno.h>
#include <fenv.h>
#include <gtest/gtest.h>
#include <qkr/vecmath_control.h>
#include <string.h>
#include <string>

#include "simd/level.h"
#include "tests/support/levels.h"
#include "tests/support/measure.h"
#include "tests/support/oracle.h"

namespace {

using namespace qkr::tests;

template <class T>
class SpecialValues : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(SpecialValues, Elements);

template <class T>
std::string description(const Special<T> &row) {
  char text[120];
  snprintf(text, sizeof text, "%s of %a, %a (pattern 0x%llX)", row.function.c_str(),
           static_cast<double>(row.a), static_cast<double>(row.b),
           static_cast<unsigned long long>(pattern_of(row.a)));
  return text;
}

// What the callback saw.
thread_local int reports;
thread_local VxmErrorContext last_report;

int32_t note_report(VxmErrorContext *record) {
  ++reports;
  last_report = *record;
  return 0;  // the standard handlers follow
}

struct Callback {
  Callback() { _vxmSetErrorCallBack(note_report), reports = 0; }
  ~Callback() { _vxmClearErrorCallBack(), _vxmSetMode(VXM_MODE_DEFAULT); }
};

int expected_errno(int32_t status) { return status == 0 ? 0 : status == VXM_STATUS_ERRDOM ? EDOM : ERANGE; }

constexpr int expected_event[] = {0, FE_INVALID, FE_DIVBYZERO, 0, FE_UNDERFLOW};

TYPED_TEST(SpecialValues, AsSingleElements) {
  using T = TypeParam;
  Oracle<T> oracle;
  const Callback callback;
  for (const Special<T> &row : special_values<T>()) {
    SCOPED_TRACE(description(row));
    const auto *f = find_function<T>(row.function);
    ASSERT_TRUE(f);
    _vxmClearErrStatus();
    reports = 0;
    errno = 0;
    feclearexcept(FE_ALL_EXCEPT);
    T results[2] = {77, 77};
    f->entry(1, &row.a, &row.b, &results[0], &results[1]);
    const int events = fetestexcept(FE_ALL_EXCEPT), error = errno;

    for (int k = 0; k < f->entry.results(); ++k) {
      const Expected<T> &expected = k == 0 ? row.result : row.second_result;
      if (expected.is_accurate) {
        const bool is_normal = std::fabs(results[k]) >= std::numeric_limits<T>::min();
        EXPECT_LE(oracle.error(*f, k, row.a, row.b, results[k]),
                  is_normal ? error_bound(f->name) : subnormal_bound);
      } else {
        EXPECT_EQ(pattern_of(results[k]), expected.pattern) << std::hex << pattern_of(results[k]);
      }
    }
    EXPECT_EQ(_vxmGetErrStatus(), row.status);
    EXPECT_EQ(error, expected_errno(row.status));
    EXPECT_EQ(events & expected_event[row.status], expected_event[row.status]);
    ASSERT_EQ(reports, row.status != 0);
    if (reports == 0) continue;
    EXPECT_EQ(last_report.iCode, row.status);
    EXPECT_EQ(last_report.iIndex, 0);
    EXPECT_EQ(pattern_of(static_cast<T>(last_report.dbA1)), pattern_of(row.a));
    EXPECT_EQ(std::string(last_report.cFuncName), f->reported);
    const T second_input = f->entry.inputs() == 2 ? row.b : row.a;
    EXPECT_EQ(pattern_of(static_cast<T>(last_report.dbA2)), pattern_of(second_input));
  }
}

constexpr int max_length = 130;

// A vector that starts at a multiple of 64 bytes, or one element behind.
template <class T>
struct Vector {
  alignas(64) T elements[max_length + 2];
  T *from(int offset) { return elements + offset; }
};

// Inputs without special elements, and their results.
template <class T>
struct Ordinary {
  T a[max_length], b[max_length], results[2][max_length];

  explicit Ordinary(const VectorFunction<T> &f) {
    Random random{1};
    for (T &x : a) x = ordinary(f.a, random);
    for (T &x : b) x = ordinary(f.b, random);
    f.entry(max_length, a, b, results[0], results[1]);
  }
};

// One special element at every place of vectors of every length, of the longer ones at every fifth in turn;
// offset and in place take turns too. Its neighbours keep their ordinary bits.
template <class T>
testing::AssertionResult keeps_neighbours(const VectorFunction<T> &f, const Special<T> &row,
                                          const Ordinary<T> &ordinary) {
  static Vector<T> a, b, r, q;
  T special[2] = {77, 77}, expected[2][max_length];
  f.entry(1, &row.a, &row.b, &special[0], &special[1]);
  memcpy(expected, ordinary.results, sizeof expected);
  for (int n = 1; n <= max_length; ++n)
    for (int step = n <= 40 ? 1 : 5, place = n % step; place < n; place += step) {
      const int variant = n + place / step, offset = variant & 1;
      const bool in_place = variant & 2;
      T *const x = a.from(offset), *const y = b.from(offset);
      T *const results[2] = {in_place ? x : r.from(offset), q.from(offset)};
      memcpy(x, ordinary.a, n * sizeof(T));
      memcpy(y, ordinary.b, n * sizeof(T));
      x[place] = row.a, y[place] = row.b;
      results[0][n] = results[1][n] = 77;
      _vxmClearErrStatus();
      reports = 0;
      f.entry(n, x, y, results[0], results[1]);

      bool right = true;
      for (int k = 0; k < f.entry.results(); ++k) {
        expected[k][place] = special[k];
        right = right && memcmp(results[k], expected[k], n * sizeof(T)) == 0 && results[k][n] == 77;
        expected[k][place] = ordinary.results[k][place];
      }
      const char *wrong = !right                                   ? "a result"
                          : _vxmGetErrStatus() != row.status       ? "the status"
                          : reports != (row.status != 0)           ? "the number of reports"
                          : reports && last_report.iIndex != place ? "the reported index"
                                                                   : nullptr;
      if (wrong)
        return testing::AssertionFailure() << wrong << " is wrong: length " << n << ", place " << place
                                           << ", offset " << offset << (in_place ? ", in place" : "");
    }
  return testing::AssertionSuccess();
}

TYPED_TEST(SpecialValues, InEveryLane) {
  using T = TypeParam;
  const Callback callback;
  for (const auto &f : vector_functions<T>()) {
    _vxmClearErrStatus();
    const Ordinary<T> ordinary(f);
    ASSERT_EQ(_vxmGetErrStatus(), 0) << f.name;
    for (const Special<T> &row : special_values<T>()) {
      if (row.function != f.name) continue;
      for_each_level([&](const char *level) {
        EXPECT_TRUE(keeps_neighbours(f, row, ordinary)) << description(row) << " at level " << level;
      });
    }
  }
}

}  // namespace
