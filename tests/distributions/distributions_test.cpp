// All distributions: values of the continuous ones beside their definitions (what the whole numbers are,
// draws_digest.txt records), the split of a request, failures.
#include <algorithm>
#include <cmath>
#include <immintrin.h>
#include <limits>
#include <qkr/vecmath_control.h>

#include "tests/distributions/references.h"
#include "tests/support/allocations.h"
#include "tests/support/levels.h"

namespace {

using namespace qkr::tests;

template <class T>
class Distributions : public testing::Test {};
using Types = testing::Types<double, float, int32_t>;
TYPED_TEST_SUITE(Distributions, Types);

// Of the magnitude that was rounded. Worst measured: Gaussian by method 0, 1.2 epsilon.
template <class T>
constexpr double bound = 2 * std::numeric_limits<T>::epsilon();

template <class T>
class ContinuousDistributions : public testing::Test {};
using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(ContinuousDistributions, Precisions);

TYPED_TEST(ContinuousDistributions, AgreeWithTheirDefinitions) {
  using T = TypeParam;
  constexpr int32_t n = 5000;
  for (const Case &a_case : cases<T>()) {
    std::vector<T> numbers(n);
    ASSERT_EQ(draw(a_case, recorded_stream().get(), n, numbers.data()), VXS_STATUS_OK);
    Cursor<T> u;
    const auto definition = definition_of<T>(a_case);
    for (int32_t i = 0; i < n; ++i) {
      u.given = numbers[i];
      const Number expected = definition(u);
      const double error = static_cast<double>(std::abs(numbers[i] - expected.value));
      ASSERT_TRUE(std::isfinite(double(numbers[i]))) << name_of<T>(a_case) << " [" << i << "]";
      ASSERT_LE(error, bound<T> * static_cast<double>(expected.magnitude))
          << name_of<T>(a_case) << " [" << i << "]: " << +numbers[i] << ", not " << expected.value;
    }
  }
}

TYPED_TEST(Distributions, SplitAsTheyLike) {
  using T = TypeParam;
  constexpr int32_t pieces[] = {1, 1, 2, 511, 512, 513, 1023, 1024, 1025, 2048, 2050, 3, 4};
  for (const Case &a_case : cases<T>()) {
    std::vector<T> whole(8717), split(8717);
    ASSERT_EQ(draw(a_case, recorded_stream().get(), 8717, whole.data()), VXS_STATUS_OK);
    const Stream stream = recorded_stream();
    T *out = split.data();
    for (const int32_t n : pieces) {
      ASSERT_EQ(draw(a_case, stream.get(), n, out), VXS_STATUS_OK);
      out += n;
    }
    ASSERT_EQ(out, &*split.end());
    EXPECT_EQ(whole, split) << name_of<T>(a_case);
  }
}

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

// Numbers that lie ready are given out on a shorter way.
TYPED_TEST(Distributions, AreTheSameOneByOne) {
  using T = TypeParam;
  constexpr int32_t count = 3000;
  make_cells_of_thread();
  for (const unsigned direction : {_MM_ROUND_NEAREST, _MM_ROUND_UP}) {
    const unsigned usual = _mm_getcsr();
    _mm_setcsr(usual | direction);
    for_each_level([&](const char *level) {
      for (const Case &a_case : cases<T>()) {
        std::vector<T> whole(count), alone(count);
        const Stream one = stream_with_zeros(), other = stream_with_zeros();
        EXPECT_EQ(draw(a_case, one.get(), count, whole.data()), VXS_STATUS_OK);
        for (int32_t i = 0, n = 1; i < count; i += n) {
          n = i % 100 == 99 ? 2 : 1;  // not always from an even place
          if (i + n > count) n = 1;
          EXPECT_EQ(draw(a_case, other.get(), n, alone.data() + i), VXS_STATUS_OK);
        }
        EXPECT_EQ(whole, alone) << name_of<T>(a_case) << ' ' << level;
        EXPECT_EQ(payload(one), payload(other)) << name_of<T>(a_case) << ' ' << level;
      }
    });
    _mm_setcsr(usual);
  }
}

int32_t ignore(VxmErrorContext *) { return 1; }

// `draw(stream)` with the generator failing at its first, second, ... call, until it gets through.
template <class Draw>
void expect_failures_passed_on(const std::string &name, Draw draw) {
  make_cells_of_thread();
  // A callback that is switched off: it stays so only if it is restored before the mode.
  _vxmSetErrorCallBack(ignore);
  const VxmMode mode = _vxmSetMode(VXM_MODE_EXCEPT | 1), own_mode = _vxmGetMode();
  const long live = allocations.live;
  int draws = 0;
  for (int32_t status = recorded_failure; status == recorded_failure; ++draws) {
    const Stream stream = recorded_stream();
    recording.until_failure = draws + 1;
    status = draw(stream.get());
    EXPECT_EQ(status, recording.until_failure == 0 ? recorded_failure : VXS_STATUS_OK) << name;
    EXPECT_EQ(_vxmGetMode(), own_mode) << name;
    EXPECT_EQ(_vxmGetErrorCallBack(), ignore) << name;
  }
  EXPECT_GT(draws, 1) << name;
  EXPECT_EQ(allocations.live, live) << name;
  _vxmSetErrorCallBack(nullptr);
  _vxmSetMode(mode);
}

// How many allocations a stream and one draw make; each fails once.
template <class Draw>
int allocations_of(Draw draw) {
  make_cells_of_thread();
  const uint32_t id = recorded_stream()->brng;
  const auto draw_once = [&] {
    StreamState *stream = nullptr;
    int32_t status = __vxsNewStreamEx(&stream, id, 0, nullptr);
    if (status == VXS_STATUS_OK) status = draw(stream);
    if (stream) __vxsDeleteStream(&stream);
    return status;
  };
  return allocations_survived(draw_once, VXS_STATUS_NO_MEMORY);
}

// The stream, and a chunk and its data for what is kept; 0 where that depends on the numbers.
int allocations_expected(const Case &a_case) {
  const std::string family = a_case.family;
  const std::vector<double> &p = a_case.parameters;
  if (family == "Negbinomial" && p[1] < 0.01 && (p[0] - 1) * (1 - p[1]) / p[1] < 100) return 0;
  const bool keeps =
      family == "Lognormal" || (family == "Gaussian" && a_case.method == 1) ||
      (family == "Gamma" && p[0] > 1) || family == "Binomial" || family == "Negbinomial" ||
      (family == "Poisson" && (a_case.method == 0 || p[0] >= 100)) || family == "PoissonV" ||
      (family == "Hypergeometric" && law_of<int32_t>(a_case).lowest < law_of<int32_t>(a_case).highest);
  return keeps ? 3 : 1;
}

TYPED_TEST(Distributions, ReportWhatFails) {
  using T = TypeParam;
  std::vector<T> numbers(2600);
  for (const Case &a_case : cases<T>()) {
    const std::string name = name_of<T>(a_case), family = a_case.family;
    const int expected = allocations_expected(a_case);
    const int32_t n = expected ? 2600 : 60;  // some draw one number after the other
    if (family != "Hypergeometric" || expected > 1)
      expect_failures_passed_on(name, [&](StreamState *s) { return draw(a_case, s, n, numbers.data()); });
    const int found = allocations_of([&](StreamState *s) { return draw(a_case, s, 9, numbers.data()); });
    if (expected) EXPECT_EQ(found, expected) << name;
    else EXPECT_GE(found, 3) << name;
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
      expect_failures_passed_on("GaussianMV", draw);
      EXPECT_EQ(allocations_of(draw), 1 + 2 * method + (storage < 2));
    }
}

// Two words make one number, as in genrand_res53; other generators by their reals.
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
  const Stream stream = new_stream(QKR_MT19937, {1}), words = copy_of(stream);
  double number;
  qkr_uniform_53(stream.get(), 1, &number, 0, 1);
  const Words pair = draw_words(words, 2);
  EXPECT_EQ(number, ((pair[0] >> 5) * 67108864.0 + (pair[1] >> 6)) / 9007199254740992.0);
}

TEST(Uniform53, StaysBelowTheEndAndReportsWhatFails) {
  std::vector<double> numbers(5000);
  ASSERT_EQ(qkr_uniform_53(recorded_stream().get(), 5000, numbers.data(), 0, 1), VXS_STATUS_OK);
  EXPECT_GE(*std::min_element(numbers.begin(), numbers.end()), 0);
  EXPECT_LT(*std::max_element(numbers.begin(), numbers.end()), 1);
  expect_failures_passed_on("Uniform53",
                            [&](StreamState *s) { return qkr_uniform_53(s, 5000, numbers.data(), 0, 1); });
}

}  // namespace
