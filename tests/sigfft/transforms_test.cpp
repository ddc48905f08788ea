// What all forms of a transform agree on: the same bits at every vector width, in place or not, interleaved
// or not, at any alignment, whoever owns the work buffer; normalisation; formats; checks before anything is
// written.
#include <array>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <thread>

#include "engines.h"
#include "sigfft/plan/plan_tables.h"
#include "sigfft/routes/kernels.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

template <class T>
class Transforms : public testing::Test {};
template <class T>
class LongTransforms : public testing::Test {};
using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(LongTransforms, Precisions);
TYPED_TEST_SUITE(Transforms, Precisions);

template <class T>
bool same_bits(const T *a, const T *b, size_t count) {
  return std::memcmp(a, b, count * sizeof(T)) == 0;
}

// An array that starts `offset` numbers behind a multiple of 64.
template <class T>
class Misaligned {
  std::vector<T> memory_;
  T *start_;

 public:
  Misaligned(size_t count, size_t offset) : memory_(count + offset + 64 / sizeof(T)) {
    start_ = (T *)(((size_t)memory_.data() + 63) & ~size_t{63}) + offset;
  }
  Misaligned(const std::vector<T> &values, size_t offset) : Misaligned(values.size(), offset) {
    std::copy(values.begin(), values.end(), start_);
  }
  T *data() { return start_; }
};

template <class T>
std::vector<uint8_t> work_buffer(const Functions<T> &f, Kind kind, const void *plan) {
  int32_t size = -1;
  EXPECT_EQ(f.plan[kind].get_buffer_size(plan, &size), zprStsNoErr);
  return std::vector<uint8_t>(size + 1);
}

// Up to here fixed code, one sequence of passes, and blocks of one level; the long ones add tiles.
constexpr int shorter = 16;

template <class T>
void complex_forms_give_the_same_bits(int first_order, int last_order) {
  for (const auto &f : functions<T>)
    for (int order = first_order; order <= last_order; ++order)
      for (const bool forward : {false, true}) {
        const size_t n = size_t{1} << order;
        const auto x = signal<T>(2 * n, order);
        const Plan<T> plan(f, interleaved, order, 4), split_plan(f, split, order, 4);
        auto work = work_buffer(f, interleaved, plan);
        uint8_t *const given = work.data() + 1;
        std::vector<T> expected;
        for_each_level([&](const char *level) {
          SCOPED_TRACE(testing::Message()
                       << f.name << ", order " << order << ", forward " << forward << ", " << level);
          for (const size_t offset : {0, 3, 1}) {
            if (offset != 3 && order > (offset ? 12 : shorter)) continue;
            Misaligned<T> src(x, offset), dst(2 * n, 2 * offset);
            ASSERT_EQ(f.complex[forward](src.data(), dst.data(), plan, offset ? given : nullptr),
                      zprStsNoErr);
            if (expected.empty()) expected.assign(dst.data(), dst.data() + 2 * n);
            EXPECT_TRUE(same_bits(dst.data(), expected.data(), 2 * n)) << "offset " << offset;
            ASSERT_EQ(f.complex_in_place[forward](src.data(), plan, offset ? nullptr : given), zprStsNoErr);
            EXPECT_TRUE(same_bits(src.data(), expected.data(), 2 * n)) << "in place, offset " << offset;
          }
          auto parts = apart(x), out = apart(std::vector<T>(2 * n));
          ASSERT_EQ(f.split[forward](parts.re.data(), parts.im.data(), out.re.data(), out.im.data(),
                                     split_plan, given),
                    zprStsNoErr);
          EXPECT_TRUE(same_bits(together(out).data(), expected.data(), 2 * n)) << "parts";
          ASSERT_EQ(f.split[forward](parts.re.data(), parts.im.data(), parts.re.data(), out.im.data(),
                                     split_plan, given),
                    zprStsNoErr);
          EXPECT_TRUE(same_bits(parts.re.data(), out.re.data(), n) &&
                      same_bits(out.im.data(), apart(expected).im.data(), n))
              << "real parts in place";
          parts = apart(x);
          ASSERT_EQ(f.split_in_place[forward](parts.re.data(), parts.im.data(), split_plan, nullptr),
                    zprStsNoErr);
          EXPECT_TRUE(same_bits(together(parts).data(), expected.data(), 2 * n)) << "parts in place";
        });
      }
}

template <class T>
void real_forms_give_the_same_bits(int first_order, int last_order) {
  for (const auto &f : functions<T>)
    for (int order = first_order; order <= last_order; ++order)
      for (const bool forward : {false, true})
        for (const Format format : {perm, pack, ccs}) {
          const size_t n = size_t{1} << order, spectrum = spectrum_size(format, n);
          const size_t in = forward ? n : spectrum, out = forward ? spectrum : n;
          const auto x = signal<T>(in, order);
          const Plan<T> plan(f, real, order, 4);
          auto work = work_buffer(f, real, plan);
          std::vector<T> expected;
          for_each_level([&](const char *level) {
            SCOPED_TRACE(testing::Message() << f.name << ", order " << order << ", forward " << forward
                                            << ", format " << format << ", " << level);
            Misaligned<T> src(x, 1), dst(out, 3);
            ASSERT_EQ(f.real[forward][format](src.data(), dst.data(), plan, work.data() + 1), zprStsNoErr);
            if (expected.empty()) expected.assign(dst.data(), dst.data() + out);
            EXPECT_TRUE(same_bits(dst.data(), expected.data(), out));
            std::vector<T> data = x;
            data.resize(std::max(in, out));
            ASSERT_EQ(f.real_in_place[forward][format](data.data(), plan, nullptr), zprStsNoErr);
            EXPECT_TRUE(same_bits(data.data(), expected.data(), out)) << "in place";
          });
        }
}

TYPED_TEST(Transforms, ComplexFormsGiveTheSameBits) {
  complex_forms_give_the_same_bits<TypeParam>(0, shorter);
}
TYPED_TEST(Transforms, RealFormsGiveTheSameBits) { real_forms_give_the_same_bits<TypeParam>(0, shorter); }
TYPED_TEST(LongTransforms, ComplexFormsGiveTheSameBits) {
  complex_forms_give_the_same_bits<TypeParam>(shorter + 1, 21);
}
TYPED_TEST(LongTransforms, RealFormsGiveTheSameBits) {
  real_forms_give_the_same_bits<TypeParam>(shorter + 1, 20);
}

// The three formats hold the same numbers, and CCS zeros where it says so. Places of a number in Perm, by
// format.
size_t place_in(Format format, size_t perm_place, size_t n) {
  if (perm_place == 1) return format == pack ? n - 1 : n;
  return perm_place && format == pack ? perm_place - 1 : perm_place;
}

TYPED_TEST(Transforms, FormatsHoldTheSameSpectrum) {
  using T = TypeParam;
  for (const auto &f : functions<T>)
    for (const int order : {0, 1, 2, 3, 4, 7, 12}) {
      const size_t n = size_t{1} << order;
      const auto x = signal<T>(n, order);
      const Plan<T> plan(f, real, order);
      std::vector<T> of_perm(n);
      f.real[true][perm](x.data(), of_perm.data(), plan, nullptr);
      for (const Format format : {pack, ccs}) {
        std::vector<T> y(spectrum_size(format, n) + 1, T(-7));
        f.real[true][format](x.data(), y.data(), plan, nullptr);
        EXPECT_EQ(y.back(), T(-7)) << "written beyond the spectrum";
        for (size_t i = 0; i < n; ++i)
          EXPECT_EQ(y[place_in(format, i, n)], of_perm[i]) << f.name << ' ' << order << ' ' << i;
        EXPECT_TRUE(format != ccs || (y[1] == 0 && (n == 1 || y[n + 1] == 0))) << f.name << ' ' << order;
        // What stands where the zeros are is of no influence.
        if (format == ccs) y[1] = T(5), y[n == 1 ? 1 : n + 1] = T(5);
        std::vector<T> back(n), back_of_perm(n);
        f.real[false][format](y.data(), back.data(), plan, nullptr);
        f.real[false][perm](of_perm.data(), back_of_perm.data(), plan, nullptr);
        EXPECT_EQ(back, back_of_perm) << f.name << ' ' << order << ' ' << format;
      }
    }
}

// Forward divided by one number, inverse by another.
struct Normalisation {
  int flag;
  double forward_exponent, inverse_exponent;  // of the length
};
constexpr Normalisation normalisations[] = {{1, 1, 0}, {2, 0, 1}, {4, 0.5, 0.5}, {8, 0, 0}};

TYPED_TEST(Transforms, NormalisationIsThatOfTheFlag) {
  using T = TypeParam;
  const double tolerance = sizeof(T) == 8 ? 1e-14 : 1e-5;
  for (const auto &f : functions<T>)
    for (const Normalisation &norm : normalisations)
      for (const int order : {0, 1, 2, 3, 4, 5, 9, 10, 11, 12, 15, 17, 18}) {
        SCOPED_TRACE(testing::Message() << f.name << ", order " << order << ", flag " << norm.flag);
        const size_t n = size_t{1} << order;
        const double forward_factor = std::pow(n, -norm.forward_exponent);
        const double round_trip = n * std::pow(n, -norm.forward_exponent - norm.inverse_exponent);
        auto x = signal<T>(2 * n, order);
        const auto original = x;
        double sum = 0, worst = 0;
        for (size_t i = 0; i < n; ++i) sum += original[2 * i];
        const Plan<T> plan(f, interleaved, order, norm.flag);
        f.complex_in_place[true](x.data(), plan, nullptr);
        EXPECT_NEAR(x[0], sum * forward_factor, tolerance * n * forward_factor);
        f.complex_in_place[false](x.data(), plan, nullptr);
        for (size_t i = 0; i < 2 * n; ++i) worst = std::max(worst, std::abs(x[i] / round_trip - original[i]));
        EXPECT_LE(worst, tolerance);

        const Plan<T> real_plan(f, real, order, norm.flag);
        for (const Format format : {perm, pack, ccs}) {
          std::vector<T> y(original.begin(), original.begin() + n);
          y.resize(n + 2);
          sum = worst = 0;
          for (size_t i = 0; i < n; ++i) sum += original[i];
          f.real_in_place[true][format](y.data(), real_plan, nullptr);
          EXPECT_NEAR(y[0], sum * forward_factor, tolerance * n * forward_factor);
          f.real_in_place[false][format](y.data(), real_plan, nullptr);
          for (size_t i = 0; i < n; ++i) worst = std::max(worst, std::abs(y[i] / round_trip - original[i]));
          EXPECT_LE(worst, tolerance) << "format " << format;
        }
      }
}

// Levels agree in which results are NaNs, and in all others, where the input has NaNs and infinities.
TYPED_TEST(Transforms, AgreeWhereNumbersEnd) {
  using T = TypeParam;
  using Limits = std::numeric_limits<T>;
  for (const auto &f : functions<T>)
    for (const int order : {1, 3, 4, 7, 10, 12, 15}) {
      const size_t n = size_t{1} << order;
      const Plan<T> complex_plan(f, interleaved, order), real_plan(f, real, order);
      for (const T odd : {Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::infinity(), -Limits::max()}) {
        auto x = signal<T>(2 * n);
        for (size_t i = n / 3; i < n; i += n / 2 + 1) x[i] = odd;
        std::vector<T> first;
        for_each_level([&](const char *level) {
          std::vector<T> y(2 * n), spectrum(n);
          f.complex[true](x.data(), y.data(), complex_plan, nullptr);
          f.real[true][perm](x.data(), spectrum.data(), real_plan, nullptr);
          y.insert(y.end(), spectrum.begin(), spectrum.end());
          for (T &number : y)
            if (number != number) number = Limits::quiet_NaN();
          if (first.empty()) first = y;
          EXPECT_TRUE(same_bits(first.data(), y.data(), y.size())) << f.name << ' ' << order << ' ' << level;
        });
      }
    }
}

// Plan before kind before data, and nothing written.
TYPED_TEST(Transforms, ChecksComeFirst) {
  using T = TypeParam;
  for (const auto &f : functions<T>) {
    const Plan<T> complex_plan(f, interleaved, 5), split_plan(f, split, 5), real_plan(f, real, 5);
    std::vector<T> a(66, T(1)), b(66, T(2)), c(66, T(3));
    T *const none = nullptr;
    for (const bool forward : {false, true}) {
      EXPECT_EQ(f.complex[forward](none, b.data(), nullptr, nullptr), zprStsNullPtrErr);
      EXPECT_EQ(f.complex[forward](none, b.data(), split_plan, nullptr), zprStsContextMatchErr);
      EXPECT_EQ(f.complex[forward](none, b.data(), complex_plan, nullptr), zprStsNullPtrErr);
      EXPECT_EQ(f.complex[forward](a.data(), none, complex_plan, nullptr), zprStsNullPtrErr);
      EXPECT_EQ(f.complex_in_place[forward](a.data(), real_plan, nullptr), zprStsContextMatchErr);
      EXPECT_EQ(f.split[forward](a.data(), none, b.data(), c.data(), complex_plan, nullptr),
                zprStsContextMatchErr);
      EXPECT_EQ(f.split[forward](a.data(), none, b.data(), c.data(), split_plan, nullptr), zprStsNullPtrErr);
      EXPECT_EQ(f.split[forward](a.data(), a.data(), b.data(), none, split_plan, nullptr), zprStsNullPtrErr);
      for (const Format format : {perm, pack, ccs}) {
        EXPECT_EQ(f.real[forward][format](a.data(), none, nullptr, nullptr), zprStsNullPtrErr);
        EXPECT_EQ(f.real[forward][format](none, b.data(), complex_plan, nullptr), zprStsContextMatchErr);
        EXPECT_EQ(f.real[forward][format](none, b.data(), real_plan, nullptr), zprStsNullPtrErr);
      }
    }
    const auto &other_set = functions<T>[&f == functions<T>];
    for (const int order : {2, 5, 16}) {
      const Plan<T> complex_other(other_set, interleaved, order), split_other(other_set, split, order),
          real_other(other_set, real, order);
      for (const bool forward : {false, true}) {
        EXPECT_EQ(f.complex[forward](a.data(), b.data(), complex_other, nullptr), zprStsContextMatchErr);
        EXPECT_EQ(f.split_in_place[forward](a.data(), b.data(), split_other, nullptr), zprStsContextMatchErr);
        for (const Format format : {perm, pack, ccs})
          EXPECT_EQ(f.real[forward][format](a.data(), b.data(), real_other, nullptr), zprStsContextMatchErr);
      }
    }
    EXPECT_TRUE(a == std::vector<T>(66, T(1)) && b == std::vector<T>(66, T(2)) &&
                c == std::vector<T>(66, T(3)));
  }
}

template <class Element>
void reversal_reverses(void (*in_place)(void *, int32_t, const uint32_t *),
                       void (*into)(const void *, void *, int32_t, const uint32_t *)) {
  for (int order = 0; order <= 11; ++order) {
    const size_t n = size_t{1} << order;
    std::vector<uint32_t> table(n / 4 + 4);
    if (order > 1) sigfft::fill_reversal_pairs(order, table.data());
    std::vector<Element> x(n), y(n), expected(n);
    for (size_t k = 0; k < n; ++k) {
      size_t place = 0;
      for (int bit = 0; bit < order; ++bit) place |= (k >> bit & 1) << (order - 1 - bit);
      x[k] = expected[place] = Element{uint32_t(k)};
    }
    into(x.data(), y.data(), int32_t(n), table.data());
    EXPECT_TRUE(y == expected) << order;
    in_place(x.data(), int32_t(n), table.data());
    EXPECT_TRUE(x == expected) << order << ", in place";
  }
}
TEST(BitReversal, ReversesElementsOfEachSize) {
  reversal_reverses<uint32_t>(zprs_BitRev1_4, zprs_BitRev2_4);
  reversal_reverses<uint64_t>(w6_zprs_BitRev1_8, w6_zprs_BitRev2_8);
  reversal_reverses<std::array<uint32_t, 4>>(zprs_BitRev1_16, zprs_BitRev2_16);
}

TYPED_TEST(Transforms, ThreadsShareAPlan) {
  using T = TypeParam;
  for (const auto &f : functions<T>)
    for (const int order : {6, 13, 17}) {
      const size_t n = size_t{1} << order;
      const auto x = signal<T>(2 * n, order);
      const Plan<T> plan(f, interleaved, order);
      std::vector<T> expected(2 * n);
      f.complex[true](x.data(), expected.data(), plan, nullptr);
      std::vector<std::vector<T>> results(4, x);
      std::vector<std::thread> threads;
      for (auto &y : results)
        threads.emplace_back([&] {
          for (int round = 0; round < 5; ++round) {
            y = x;
            f.complex_in_place[true](y.data(), plan, nullptr);
          }
        });
      for (auto &thread : threads) thread.join();
      for (const auto &y : results)
        EXPECT_TRUE(same_bits(y.data(), expected.data(), 2 * n)) << f.name << ' ' << order;
    }
}

}  // namespace
}  // namespace qkr::tests
