// All distributions: values beside their definitions, the split of a request, failures.
#include <algorithm>
#include <cmath>
#include <limits>
#include <qkr/vecmath_control.h>

#include "tests/distributions/references.h"
#include "tests/streams/allocations.h"

namespace {

using namespace qkr::tests;

template <class T>
class Distributions : public testing::Test {};
using Types = testing::Types<double, float, int32_t>;
TYPED_TEST_SUITE(Distributions, Types);

// Of the magnitude that was rounded. Worst measured: Gaussian by method 0, 1.2 epsilon.
template <class T>
constexpr double bound = 2 * std::numeric_limits<T>::epsilon();
template <>
constexpr double bound<int32_t> = 1;  // where the magnitude is not 0

TYPED_TEST(Distributions, AgreeWithTheirDefinitions) {
  using T = TypeParam;
  constexpr int32_t n = 5000;
  for (const Row<T> &row : all_rows<T>()) {
    const Stream stream = recorded_stream();
    std::vector<T> numbers(n);
    ASSERT_EQ(row.draw(stream.get(), n, numbers.data()), VXS_STATUS_OK);
    Cursor<T> u;
    const auto definition = row.definition();
    double worst = 0;
    for (int32_t i = 0; i < n; ++i) {
      u.given = numbers[i];
      const Number expected = definition(u);
      const double error = static_cast<double>(std::abs(numbers[i] - expected.value));
      ASSERT_TRUE(std::isfinite(double(numbers[i]))) << row.name << " [" << i << "]";
      if (error > 0) worst = std::max(worst, error / static_cast<double>(expected.magnitude));
      ASSERT_LE(error, bound<T> * static_cast<double>(expected.magnitude))
          << row.name << " [" << i << "]: " << +numbers[i] << ", not " << expected.value;
    }
    if (std::getenv("QKR_SHOW_WORST")) printf("%-24s %.3f\n", row.name.c_str(), worst / bound<T>);
  }
}

TYPED_TEST(Distributions, SplitAsTheyLike) {
  using T = TypeParam;
  constexpr int32_t pieces[] = {1, 1, 2, 511, 512, 513, 1023, 1024, 1025, 2048, 2050, 3, 4};
  for (const Row<T> &row : all_rows<T>()) {
    std::vector<T> whole(8717), split(8717);
    ASSERT_EQ(row.draw(recorded_stream().get(), 8717, whole.data()), VXS_STATUS_OK);
    const Stream stream = recorded_stream();
    T *out = split.data();
    for (const int32_t n : pieces) {
      ASSERT_EQ(row.draw(stream.get(), n, out), VXS_STATUS_OK);
      out += n;
    }
    ASSERT_EQ(out, &*split.end());
    EXPECT_EQ(whole, split) << row.name;
  }
}

int32_t ignore(VxmErrorContext *) { return 1; }

TYPED_TEST(Distributions, PassOnTheFailureOfAGenerator) {
  using T = TypeParam;
  make_cells_of_thread();
  // A callback that is switched off: it stays so only if it is restored before the mode.
  _vxmSetErrorCallBack(ignore);
  const VxmMode mode = _vxmSetMode(VXM_MODE_EXCEPT | 1), own_mode = _vxmGetMode();
  for (const Row<T> &row : all_rows<T>()) {
    std::vector<T> numbers(2600);
    const long live = allocations.live;
    int draws = 0;
    for (int32_t status = recorded_failure; status == recorded_failure; ++draws) {
      const Stream stream = recorded_stream();
      recording.until_failure = draws + 1;
      status = row.draw(stream.get(), 2600, numbers.data());
      EXPECT_EQ(status, recording.until_failure == 0 ? recorded_failure : VXS_STATUS_OK) << row.name;
      EXPECT_EQ(_vxmGetMode(), own_mode) << row.name;
      EXPECT_EQ(_vxmGetErrorCallBack(), ignore) << row.name;
    }
    EXPECT_GT(draws, 1) << row.name;
    EXPECT_EQ(allocations.live, live) << row.name;
  }
  _vxmSetErrorCallBack(nullptr);
  _vxmSetMode(mode);
}

TYPED_TEST(Distributions, ReportMemoryThatRunsOut) {
  using T = TypeParam;
  std::vector<T> numbers(9);
  make_cells_of_thread();
  for (const Row<T> &row : all_rows<T>()) {
    const uint32_t id = recorded_stream()->brng;
    const int allocated = fail_each_allocation([&] {
      StreamState *stream = nullptr;
      int32_t status = __vxsNewStreamEx(&stream, id, 0, nullptr);
      if (status == VXS_STATUS_OK) status = row.draw(stream, 9, numbers.data());
      if (stream) __vxsDeleteStream(&stream);
      return status;
    });
    EXPECT_TRUE(allocated == 1 || allocated == 3) << row.name << allocated;  // the stream, chunk and data
  }
}

}  // namespace
