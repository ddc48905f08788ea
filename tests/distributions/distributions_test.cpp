// All distributions: the split of a request, failures.
#include <algorithm>
#include <cmath>
#include <immintrin.h>
#include <limits>
#include <qkr/vecmath_control.h>

#include "tests/distributions/recorded_stream.h"
#include "tests/support/allocations.h"
#include "tests/support/distribution_cases.h"
#include "tests/support/levels.h"

namespace {

using namespace qkr::tests;

template <class T>
class Distributions : public testing::Test {};
using Types = testing::Types<double, float, int32_t>;
TYPED_TEST_SUITE(Distributions, Types);

// A stream whose words are in part 0, which has no logarithm; the first block of them is about to be given
// out.
Stream stream_with_zeros() {
  Stream stream = new_stream(0x800000, {7});
  draw_words(stream, 1);
  auto *words = reinterpret_cast<uint32_t *>(stream.get() + 1);
  for (int i = 0; i < 624; i += 5) words[i] = 0;
  for (int i = 20; i < 60; ++i) words[i] = 0;
  words[624] = 0;  // the index
  return stream;
}

// Numbers that lie ready are given out on a shorter way, and those of a user's generator on none.
TYPED_TEST(Distributions, SplitAsTheyLike) {
  using T = TypeParam;
  constexpr int32_t pieces[] = {1, 1, 2, 511, 512, 513, 1023, 1024, 1025, 2048, 2050, 3, 4}, count = 11717;
  make_cells_of_thread();
  for (const unsigned direction : {_MM_ROUND_NEAREST, _MM_ROUND_UP}) {
    const unsigned usual = _mm_getcsr();
    _mm_setcsr(usual | direction);
    for_each_level([&](const char *level) {
      for (Stream (*const start)() : {stream_with_zeros, recorded_stream})
        for (const Case &a_case : cases<T>()) {
          std::vector<T> whole(count), split(count);
          const Stream one = start();
          EXPECT_EQ(draw(a_case, one.get(), count, whole.data()), VXS_STATUS_OK);
          const Stream other = start();
          size_t piece = 0;
          for (int32_t i = 0, n; i < count; i += n) {
            n = piece < std::size(pieces) ? pieces[piece++] : i % 100 == 99 ? 2 : 1;
            n = std::min(n, count - i);
            EXPECT_EQ(draw(a_case, other.get(), n, &split[i]), VXS_STATUS_OK);
          }
          EXPECT_EQ(whole, split) << name_of<T>(a_case) << ' ' << level;
          EXPECT_EQ(payload(one), payload(other)) << name_of<T>(a_case) << ' ' << level;
        }
    });
    _mm_setcsr(usual);
  }
}

int32_t ignore(VxmErrorContext *) { return 1; }

// `draw(stream)` with the generator failing at its first, second, ... call, until it gets through or has
// failed often enough.
template <class Draw>
void expect_failures_passed_on(Draw draw) {
  make_cells_of_thread();
  // A callback that is switched off: it stays so only if it is restored before the mode.
  _vxmSetErrorCallBack(ignore);
  const VxmMode mode = _vxmSetMode(VXM_MODE_EXCEPT | 1), own_mode = _vxmGetMode();
  const long live = allocations.live;
  int32_t status = recorded_failure;
  for (int draws = 1; status == recorded_failure && draws < 20; ++draws) {
    const Stream stream = recorded_stream();
    recording.until_failure = draws;
    status = draw(stream.get());
    EXPECT_EQ(status, recording.until_failure == 0 ? recorded_failure : VXS_STATUS_OK);
    EXPECT_EQ(_vxmGetMode(), own_mode);
    EXPECT_EQ(_vxmGetErrorCallBack(), ignore);
  }
  EXPECT_EQ(allocations.live, live);
  _vxmSetErrorCallBack(nullptr);
  _vxmSetMode(mode);
}
// A stream and one draw with each allocation failing.
template <class Draw>
void expect_allocations_survived(Draw draw) {
  make_cells_of_thread();
  const uint32_t id = recorded_stream()->brng;
  const auto draw_once = [&] {
    return status_of([&](StreamState **out) {
      const int32_t status = __vxsNewStreamEx(out, id, 0, nullptr);
      return status == VXS_STATUS_OK ? draw(*out) : status;
    });
  };
  EXPECT_GE(allocations_survived(draw_once, VXS_STATUS_NO_MEMORY), 1);
}

TYPED_TEST(Distributions, ReportWhatFails) {
  using T = TypeParam;
  std::vector<T> numbers(2600);
  for (const Case &a_case : cases<T>()) {
    SCOPED_TRACE(name_of<T>(a_case));
    expect_failures_passed_on([&](StreamState *s) { return draw(a_case, s, 2600, numbers.data()); });
    expect_allocations_survived([&](StreamState *s) { return draw(a_case, s, 9, numbers.data()); });
  }
}

TEST(GaussianMV, ReportsWhatFails) {
  const Factor factor = {3};
  std::vector<double> x(3 * 800);
  for (int32_t storage = 0; storage < 3; ++storage)
    for (int32_t method = 0; method < 2; ++method) {
      const auto draw = [&](StreamState *stream) {
        return _vxsdRngGaussianMV(method, stream, 800, x.data(), 3, storage, factor.means<double>().data(),
                                  factor.stored<double>(storage).data());
      };
      expect_failures_passed_on(draw);
      expect_allocations_survived(draw);
    }
}

// Two reals make one number, as two words in genrand_res53.
TEST(Uniform53, JoinsTwoNumbers) {
  for (const uint32_t id : std::initializer_list<uint32_t>{QKR_MT19937, QKR_MT2203(7), QKR_MRG32K3A,
                                                           QKR_MCG59, QKR_WH(3), QKR_MCG31M1}) {
    const Stream words = new_stream(id, {777, 5}), whole = copy_of(words);
    const std::vector<double> u = draw_doubles(words, 2 * 3000);
    std::vector<double> expected(3000), numbers(3000);
    for (size_t i = 0; i < 3000; ++i)
      expected[i] =
          (std::floor(u[2 * i] * 0x1p27) * 0x1p26 + std::floor(u[2 * i + 1] * 0x1p26)) * 0x1p-53 * 3 - 1;
    for_each_level([&](const char *level) {
      const Stream stream = copy_of(whole);
      int32_t first = 0;
      for (const int32_t n : {1, 0, 2, 511, 512, 513, -5, 1461}) {
        ASSERT_EQ(qkr_uniform_53(stream.get(), n, &numbers[first], -1, 2), VXS_STATUS_OK);
        first += std::max(n, 0);
      }
      EXPECT_EQ(numbers, expected) << std::hex << id << ' ' << level;
      EXPECT_EQ(payload(stream), payload(words));
    });
  }
}

TEST(Uniform53, StaysBelowTheEndAndReportsWhatFails) {
  std::vector<double> numbers(5000);
  ASSERT_EQ(qkr_uniform_53(recorded_stream().get(), 5000, numbers.data(), 0, 1), VXS_STATUS_OK);
  EXPECT_GE(*std::min_element(numbers.begin(), numbers.end()), 0);
  EXPECT_LT(*std::max_element(numbers.begin(), numbers.end()), 1);
  expect_failures_passed_on([&](StreamState *s) { return qkr_uniform_53(s, 5000, numbers.data(), 0, 1); });
}

}  // namespace
