// What all forms of a transform agree on, of powers of two and of any length: the same bits at every vector
// width, in place or not, interleaved or not, at any alignment and within bounds, whoever owns the work
// buffer; normalisation; formats; checks before anything is written.
#include <array>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <thread>

#include "engines.h"
#include "reference.h"
#include "sample_lengths.h"
#include "sigfft/plan/plan_tables.h"
#include "sigfft/routes/kernels.h"
#include "tests/support/guarded.h"
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
std::string told(const Functions<T> &f, size_t n, Form form, bool forward) {
  return std::string(f.name) + ' ' + kind_names[form.kind] + ", format " + std::to_string(form.format) +
         ", " + std::to_string(n) + " points, " + (forward ? "forward" : "inverse");
}

// Two arrays, right at pages that must not be touched or `offset` numbers behind one.
template <class T>
struct Arrays {
  const size_t offset;
  Guarded<T> re, im;

  Arrays(size_t count, Edge edge, size_t behind)
      : offset(behind), re(count + offset, edge), im(count + offset, edge) {}
  Parts<T> parts() const { return {re.data() + offset, im.data() + offset}; }
  // Of split forms both parts.
  std::vector<T> numbers(size_t count, Form form) const {
    std::vector<T> all(parts().re, parts().re + count);
    if (form.kind == split) all.insert(all.end(), parts().im, parts().im + count);
    return all;
  }
};

template <class T>
bool same_bits(const std::vector<T> &a, const std::vector<T> &b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

template <class T>
void expect_same_bits(const Functions<T> &f, size_t n) {
  for (const bool forward : {false, true}) {
    const auto x = signal<T>(2 * n + 2, (unsigned)n);
    std::vector<T> of_interleaved;
    for (const Form form : f.forms()) {
      SCOPED_TRACE(told(f, n, form, forward));
      const size_t in = numbers_in(form, !forward, n), out = numbers_in(form, forward, n);
      std::vector<T> re(x.begin(), x.begin() + in), im;
      if (form.kind == split) {
        const auto parts = apart(std::vector<T>(x.begin(), x.begin() + 2 * n));
        re.assign(parts.begin(), parts.begin() + n), im.assign(parts.begin() + n, parts.end());
      }
      const Plan<T> plan(f, form.kind, n, 4);
      std::vector<T> expected;
      const std::pair<Edge, size_t> ways[] = {{Edge::end, 0}, {Edge::start, 0}, {Edge::start, 3}};
      for (const auto &way : ways) {
        const Edge edge = way.first;
        const size_t offset = way.second;
        const Arrays<T> src(std::max(in, out), edge, offset), only_src(in, edge, offset),
            dst(out, edge, offset);
        const Guarded<uint8_t> memory(plan.work_bytes() + offset, edge);
        uint8_t *const work = memory.data() + offset;
        const auto fill = [&](Parts<T> parts) {
          std::ranges::copy(re, parts.re);
          std::ranges::copy(im, parts.im);
        };
        fill(only_src.parts());
        for_each_level([&](const char *level) {
          SCOPED_TRACE(testing::Message() << level << ", offset " << offset);
          ASSERT_EQ(run(f, form, forward, only_src.parts(), dst.parts(), plan, work), zprStsNoErr);
          const auto result = dst.numbers(out, form);
          if (expected.empty()) expected = result;
          EXPECT_TRUE(same_bits(result, expected));
          fill(src.parts());
          if (form.kind == split) {  // real parts in place
            f.split[forward](src.parts().re, src.parts().im, src.parts().re, dst.parts().im, plan, nullptr);
            std::copy_n(src.parts().re, n, dst.parts().re);
            EXPECT_TRUE(same_bits(dst.numbers(n, form), expected));
            fill(src.parts());
          }
          ASSERT_EQ(run(f, form, forward, src.parts(), src.parts(), plan, offset ? nullptr : work),
                    zprStsNoErr);
          EXPECT_TRUE(same_bits(src.numbers(out, form), expected)) << "in place";
        });
      }
      if (form.kind == interleaved) of_interleaved = expected;
      if (form.kind == split) {
        EXPECT_TRUE(same_bits(expected, apart(of_interleaved)));
      }
    }
  }
}

// Up to order 16 fixed code, one sequence of passes, and blocks of one level; the long ones add tiles.
TYPED_TEST(Transforms, HaveTheSameBitsInAllForms) {
  for (const auto &f : sets_for_powers_of_two<TypeParam>())
    for (int order = 0; order <= 17; ++order) expect_same_bits(f, size_t{1} << order);
  for (const size_t n : sample_lengths) expect_same_bits(functions<TypeParam>[any_length], n);
  for (const size_t n : {5005, 5040, 6000}) expect_same_bits(functions<TypeParam>[any_length], n);
}
TYPED_TEST(LongTransforms, HaveTheSameBitsInAllForms) {
  for (const auto &f : sets_for_powers_of_two<TypeParam>())
    for (int order = 18; order <= 21; ++order) expect_same_bits(f, size_t{1} << order);
  for (size_t n = 1; n <= 2100; ++n) expect_same_bits(functions<TypeParam>[any_length], n);
  for (const size_t n : {10007, 22500, 65625, 100000, 100003, 196608})
    expect_same_bits(functions<TypeParam>[any_length], n);
}

// check(f, n) for powers of two of both sets, and for the lengths.
template <class T, class Check>
void for_lengths(std::initializer_list<int> orders, std::initializer_list<size_t> lengths, Check check) {
  for (const auto &f : sets_for_powers_of_two<T>())
    for (const int order : orders) check(f, size_t{1} << order);
  for (const size_t n : lengths) check(functions<T>[any_length], n);
}

// The three formats hold the same spectrum, CCS zeros where it says so, which the inverse does not read.
template <class T>
void expect_same_spectrum(const Functions<T> &f, size_t n) {
  SCOPED_TRACE(testing::Message() << f.name << ' ' << n);
  const auto x = signal<T>(n, (unsigned)n);
  const Plan<T> plan(f, real, n);
  std::vector<T> of_ccs(spectrum_size(ccs, n), T(9)), back(n), back_of_ccs(n);
  f.real[true][ccs](x.data(), of_ccs.data(), plan, nullptr);
  EXPECT_TRUE(of_ccs[1] == 0 && (n % 2 || of_ccs[n + 1] == 0));
  const LongNumbers numbers(of_ccs.begin(), of_ccs.end());
  of_ccs[1] = T(5);
  if (n % 2 == 0) of_ccs[n + 1] = T(5);
  f.real[false][ccs](of_ccs.data(), back_of_ccs.data(), plan, nullptr);
  for (const Format format : {perm, pack}) {
    std::vector<T> y(n + 1, T(-7));
    f.real[true][format](x.data(), y.data(), plan, nullptr);
    EXPECT_EQ(y.back(), T(-7)) << "written beyond the spectrum";
    y.pop_back();
    EXPECT_EQ(y, in_format<T>(numbers, format, n)) << format;
    f.real[false][format](y.data(), back.data(), plan, nullptr);
    EXPECT_EQ(back, back_of_ccs) << format;
  }
}
TYPED_TEST(Transforms, FormatsHoldTheSameSpectrum) {
  for_lengths<TypeParam>({0, 1, 2, 3, 4, 7, 12}, {1, 2, 3, 4, 5, 6, 7, 15, 16, 30, 181, 302},
                         expect_same_spectrum<TypeParam>);
}

// A plan with a flag divides what one without gives by a power of the length.
template <class T>
void expect_normalised(const Functions<T> &f, size_t n) {
  const struct {
    int flag;
    double exponents[2];  // inverse, forward
  } rows[] = {{1, {0, 1}}, {2, {1, 0}}, {4, {0.5, 0.5}}};
  const double tolerance = sizeof(T) == 8 ? 0x1p-47 : 0x1p-18;
  auto x = signal<T>(2 * n + 2, (unsigned)n);
  for (const Form form : f.forms())
    for (const bool forward : {false, true}) {
      const auto transformed = [&](int flag) {
        std::vector<T> y(2 * n + 2);
        run(f, form, forward, {x.data(), x.data() + n}, {y.data(), y.data() + n},
            Plan<T>(f, form.kind, n, flag));
        return y;
      };
      const auto unscaled = transformed(8);
      for (const auto &[flag, exponents] : rows) {
        LongNumbers expected(unscaled.begin(), unscaled.end());
        for (auto &value : expected) value /= std::pow(n, exponents[forward]);
        EXPECT_LE(relative_error(transformed(flag), expected), tolerance)
            << told(f, n, form, forward) << ", flag " << flag;
      }
    }
}
TYPED_TEST(Transforms, NormalisationIsThatOfTheFlag) {
  for_lengths<TypeParam>({0, 1, 2, 3, 4, 5, 9, 10, 11, 12, 15, 17, 18},
                         {1, 2, 3, 4, 5, 8, 15, 30, 151, 181, 302, 5005}, expect_normalised<TypeParam>);
}

// Levels agree in which results are NaNs, and in all others, where the input has NaNs and infinities.
TYPED_TEST(Transforms, AgreeWhereNumbersEnd) {
  using T = TypeParam;
  using Limits = std::numeric_limits<T>;
  for_lengths<T>({1, 3, 4, 7, 10, 12, 15}, {}, [](const Functions<T> &f, size_t n) {
    const Plan<T> complex_plan(f, interleaved, n), real_plan(f, real, n);
    for (const T odd : {Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::infinity(), -Limits::max()}) {
      auto x = signal<T>(2 * n);
      for (size_t i = n / 3; i < n; i += n / 2 + 1) x[i] = odd;
      std::vector<T> first;
      for_each_level([&](const char *level) {
        std::vector<T> y(3 * n);
        f.complex[true](x.data(), y.data(), complex_plan, nullptr);
        f.real[true][perm](x.data(), y.data() + 2 * n, real_plan, nullptr);
        for (T &number : y)
          if (number != number) number = Limits::quiet_NaN();
        if (first.empty()) first = y;
        EXPECT_TRUE(same_bits(first, y)) << f.name << ' ' << n << ' ' << level;
      });
    }
  });
}

// Plan before kind before data, and nothing written.
TYPED_TEST(Transforms, ChecksComeFirst) {
  using T = TypeParam;
  for_lengths<T>({2, 5, 16}, {3, 15}, [](const Functions<T> &f, size_t n) {
    std::vector<T> a(66, T(1)), b(66, T(2));
    const Parts<T> x = {a.data(), a.data() + 33}, y = {b.data(), b.data() + 33}, none = {nullptr, nullptr};
    for (const Form form : f.forms())
      for (const bool forward : {false, true}) {
        SCOPED_TRACE(told(f, n, form, forward));
        const Plan<T> good(f, form.kind, n), of_other_kind(f, form.kind == real ? split : real, n);
        const auto status = [&](Parts<T> src, Parts<T> dst, const void *plan) {
          return run(f, form, forward, src, dst, plan);
        };
        EXPECT_EQ(status(none, y, nullptr), zprStsNullPtrErr);
        EXPECT_EQ(status(none, y, of_other_kind), zprStsContextMatchErr);
        EXPECT_EQ(status(none, y, good), zprStsNullPtrErr);
        EXPECT_EQ(status(x, none, good), zprStsNullPtrErr);
        EXPECT_EQ(status(none, none, good), zprStsNullPtrErr);
        if (form.kind == split) {
          EXPECT_EQ(status({x.re, nullptr}, y, good), zprStsNullPtrErr);
          EXPECT_EQ(status(x, {y.re, nullptr}, good), zprStsNullPtrErr);
        }
        for (const auto &other : sets_for_powers_of_two<T>()) {
          if (&other == &f || f.takes_any_length()) continue;
          const Plan<T> of_other_set(other, form.kind, n);
          EXPECT_EQ(status(x, y, of_other_set), zprStsContextMatchErr);
          EXPECT_EQ(status(x, x, of_other_set), zprStsContextMatchErr);
        }
      }
    EXPECT_TRUE(a == std::vector<T>(66, T(1)) && b == std::vector<T>(66, T(2)));
  });
}

TYPED_TEST(Transforms, ThreadsShareAPlan) {
  using T = TypeParam;
  for_lengths<T>({6, 13, 17}, {15, 149, 151, 5005}, [](const Functions<T> &f, size_t n) {
    for (const Kind kind : {interleaved, real}) {
      auto x = signal<T>(2 * n, (unsigned)n);
      const Plan<T> plan(f, kind, n);
      std::vector<T> results[4];
      const auto transform = [&](std::vector<T> &y) {
        y.resize(2 * n + 2);
        for (int round = 0; round < 5; ++round)
          run(f, {kind, ccs}, true, {x.data(), nullptr}, {y.data(), nullptr}, plan);
      };
      std::vector<std::thread> threads;
      for (auto &y : results) threads.emplace_back([&] { transform(y); });
      for (auto &thread : threads) thread.join();
      std::vector<T> expected;
      transform(expected);
      for (const auto &y : results) EXPECT_TRUE(same_bits(y, expected)) << f.name << ' ' << n;
    }
  });
}

// What the out-of-order plans promise: a cyclic convolution, and the way back.
TYPED_TEST(Transforms, OutOfOrderProductsAreConvolutions) {
  using T = TypeParam;
  const auto &f = functions<T>[any_length];
  for (const size_t n : {4, 15, 64, 151, 5000, 5002, 5005, 5184, 6000, 7429, 22500}) {
    const Plan<T> natural(f, interleaved, n, 2), plan(f, out_of_order, n, 2);
    const auto a = signal<T>(2 * n, 1), b = signal<T>(2 * n, 2);
    const auto convolution = [&](const auto &transform, const void *with, std::vector<T> &fa) {
      std::vector<T> fb(2 * n), products(2 * n);
      EXPECT_EQ(transform[true](a.data(), fa.data(), with, nullptr), zprStsNoErr);
      EXPECT_EQ(transform[true](b.data(), fb.data(), with, nullptr), zprStsNoErr);
      for (size_t k = 0; k < n; ++k) {
        products[2 * k] = fa[2 * k] * fb[2 * k] - fa[2 * k + 1] * fb[2 * k + 1];
        products[2 * k + 1] = fa[2 * k] * fb[2 * k + 1] + fa[2 * k + 1] * fb[2 * k];
      }
      EXPECT_EQ(transform[false](products.data(), products.data(), with, nullptr), zprStsNoErr);
      return products;
    };
    std::vector<T> y(2 * n), z(2 * n);
    const auto expected = convolution(f.complex, natural, z), products = convolution(f.out_of_order, plan, y);
    EXPECT_LE(relative_error(products, LongNumbers(expected.begin(), expected.end())),
              sizeof(T) == 8 ? 0x1p-49 : 0x1p-20)
        << n;
    EXPECT_EQ(y == z, n < 5001) << n;
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

}  // namespace
}  // namespace qkr::tests
