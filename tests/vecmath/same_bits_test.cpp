// What holds for every vector function, real or complex: its results depend on the input alone, not on the
// vector width, the place in a vector, the entry, or the caller's control words; it keeps to its arrays; and
// ordinary input raises no event but inexact.
#include <algorithm>
#include <cmath>
#include <fenv.h>
#include <functional>
#include <gtest/gtest.h>
#include <immintrin.h>
#include <qkr/vecmath.h>
#include <qkr/vecmath_control.h>
#include <string.h>
#include <string>

#include "tests/support/complex_functions.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"
#include "tests/vecmath/fresh_thread.h"

namespace {

using namespace qkr::tests;

template <class T>
class SameBits : public testing::Test {
 protected:
  void SetUp() override { _vxmSetMode(VXM_MODE_IGNORE); }
  void TearDown() override { _vxmSetMode(VXM_MODE_DEFAULT); }
};
using Elements = testing::Types<double, float, vxm64fc, vxm32fc>;
TYPED_TEST_SUITE(SameBits, Elements);

template <class T>
constexpr bool is_complex = !std::is_floating_point_v<T>;

// One function with its inputs: b and q are read and written only where it has two inputs, two results.
template <class T>
struct Case {
  using Call = std::function<void(int32_t n, const T *a, const T *b, T *r, T *q)>;
  const char *name;
  int inputs, results;
  Call entry, low;  // low: by the lower-accuracy name, where there is one
  std::vector<T> a, b;
  bool follows_caller = false;  // rounds as the caller does

  int count() const { return static_cast<int>(a.size()); }
  // Of `n` elements from `first` on; second results stand behind all the first ones.
  void run(const Call &call, int first, int n, std::vector<T> &r) const {
    call(n, &a[first], &b[first], &r[first], &r[first + (results - 1) * a.size()]);
  }
  std::vector<T> blank() const { return std::vector<T>(a.size() * results, T{}); }
  std::vector<T> in_pieces(int longest) const {
    std::vector<T> r = blank();
    for (int first = 0, n = 1; first < count(); first += n, n = n % longest + 1)
      run(entry, first, std::min(n, count() - first), r);
    return r;
  }
  std::vector<T> at_once() const {
    std::vector<T> r = blank();
    run(entry, 0, count(), r);
    return r;
  }
};

// All functions with inputs of every kind, or with ordinary ones.
template <class T>
std::vector<Case<T>> cases(int count, bool ordinary = false) {
  std::vector<Case<T>> all;
  if constexpr (is_complex<T>) {
    for (const auto &f : complex_functions<T>()) {
      const auto call = [](const Entry<T> &entry) {
        return [&entry](int32_t n, const T *a, const T *b, T *r, T *) { entry(n, a, b, r); };
      };
      all.push_back({f.name, f.entry.binary ? 2 : 1, 1, call(f.entry), call(f.low), {}, {}});
      Random random{1};
      for (int i = 0; i < count; ++i) {
        Operands z = any_operands(random);
        const double tiny = std::ldexp(random.unit() - 0.5, -static_cast<int>(random.below(99)));
        if (ordinary) z = {random.unit() * 3 - 1.5, tiny, random.unit() * 3, random.unit()};
        all.back().a.push_back(rounded_element<T>(z.x, z.y));
        all.back().b.push_back(f.entry.with_number && i ? all.back().b[0] : rounded_element<T>(z.u, z.v));
      }
    }
  } else {
    const auto inputs = [=](const VectorFunction<T> &f, Range<T> range, uint64_t seed) {
      if (!ordinary) return mixed_inputs(f, range, count, seed);
      Random random{seed};
      std::vector<T> x(count);
      for (T &number : x) number = qkr::tests::ordinary(range, random);
      return x;
    };
    for (const auto &f : vector_functions<T>()) {
      const bool has_low = f.low.unary || f.low.binary || f.low.two_results;
      all.push_back({f.name, f.entry.inputs(), f.entry.results(), f.entry,
                     has_low ? typename Case<T>::Call(f.low) : nullptr, inputs(f, f.a, 1), inputs(f, f.b, 2),
                     f.rounding == Rounding::callers});
    }
  }
  return all;
}

template <class T>
testing::AssertionResult same(const Case<T> &c, const std::vector<T> &expected, const std::vector<T> &got) {
  for (size_t i = 0; i < expected.size(); ++i)
    if (memcmp(&expected[i], &got[i], sizeof(T)) != 0) {
      const size_t k = i % c.a.size();
      return testing::AssertionFailure()
             << c.name << " of element " << i << ", " << testing::PrintToString(c.a[k]) << ' '
             << testing::PrintToString(c.b[k]);
    }
  return testing::AssertionSuccess();
}

TYPED_TEST(SameBits, AtAllLevelsLengthsAndPlaces) {
  for (const auto &c : cases<TypeParam>(is_complex<TypeParam> ? 2'011 : 20'011)) {
    const auto expected = c.in_pieces(1);
    for_each_level([&](const char *level) {
      SCOPED_TRACE(level);
      EXPECT_TRUE(same(c, expected, c.at_once()));
      EXPECT_TRUE(same(c, expected, c.in_pieces(1))) << "one by one";
      EXPECT_TRUE(same(c, expected, c.in_pieces(150))) << "in pieces";
      if (!c.low) return;
      auto low = c.blank();
      c.run(c.low, 0, c.count(), low);
      EXPECT_TRUE(same(c, expected, low)) << "by the lower-accuracy name";
    });
  }
}

// Inputs that a kernel serves otherwise than most, such as large angles, powers of negative numbers and
// zeros, come in runs, so that whole stretches of a vector are of them, with others between.
template <class T>
void come_in_runs(Case<T> &c) {
  Random random{5};
  const auto fill = [&](std::vector<T> &x) {
    int kind = 0;
    T of_run = 0;
    for (size_t i = 0, end = 0; i < x.size(); ++i) {
      if (i == end) {
        end += 1 + random.below(200), kind = static_cast<int>(random.below(6));
        of_run = static_cast<T>(std::exp2(40 * random.unit() - 5));
      }
      const T sign = random.below(2) ? T(1) : T(-1), whole = static_cast<T>(random.below(12));
      const T kinds[] = {x[i],         sign * of_run, sign * of_run * T(1 + random.unit()),
                         sign * whole, -whole,        sign * 0};
      x[i] = kinds[random.below(30) ? kind : 0];
    }
  };
  fill(c.a), fill(c.b);
}

TYPED_TEST(SameBits, OfRareInputsInRuns) {
  if constexpr (!is_complex<TypeParam>) {
    for (auto c : cases<TypeParam>(10'007)) {
      come_in_runs(c);
      const auto expected = c.in_pieces(1);
      for_each_level([&](const char *level) {
        SCOPED_TRACE(level);
        EXPECT_TRUE(same(c, expected, c.at_once()));
        EXPECT_TRUE(same(c, expected, c.in_pieces(150))) << "in pieces";
      });
    }
  }
}

template <class T>
void expect_mirrored_powers(void (*power)(int32_t, const T *, const T *, T *)) {
  constexpr int count = 2000;
  std::vector<T> x(count), minus_x(count), y(count), of_x(count), of_minus_x(count);
  Random random{9};
  for (int i = 0; i < count; ++i) {
    x[i] = static_cast<T>(std::exp2(60 * random.unit() - 30));
    minus_x[i] = -x[i];
    y[i] = static_cast<T>(static_cast<int>(random.below(61)) - 30);
  }
  for_each_level([&](const char *level) {
    power(count, x.data(), y.data(), of_x.data());
    power(count, minus_x.data(), y.data(), of_minus_x.data());
    for (int i = 0; i < count; ++i) {
      const bool odd = std::fmod(y[i], T(2)) != 0;
      EXPECT_EQ(of_minus_x[i], odd ? -of_x[i] : of_x[i]) << level << ' ' << x[i] << " to the " << y[i];
    }
  });
}

TEST(SameBitsOfPowers, OfANegativeBaseAndOfItsMagnitude) {
  expect_mirrored_powers<double>(_vxmdPow_HA);
  expect_mirrored_powers<float>(_vxmsPow_HA);
}

TYPED_TEST(SameBits, WhenAResultReplacesAnInput) {
  for (const auto &c : cases<TypeParam>(2'001)) {
    const auto expected = c.at_once();
    for_each_level([&](const char *level) {
      SCOPED_TRACE(level);
      for (int replaced = 0; replaced < std::max(c.inputs, c.results); ++replaced) {
        auto a = c.a, b = c.b, r = c.blank();
        auto *const input = c.inputs == 2 && replaced == 1 ? b.data() : a.data();
        const int result = c.results == 2 ? replaced : 0;
        TypeParam *results[2] = {r.data(), r.data() + (c.results - 1) * c.a.size()};
        TypeParam *const place = results[result];
        results[result] = input;
        c.entry(c.count(), a.data(), b.data(), results[0], results[1]);
        std::copy_n(input, c.count(), place);
        EXPECT_TRUE(same(c, expected, r));
      }
    });
  }
}

uint16_t x87_control() {
  uint16_t word;
  asm volatile("fnstcw %0" : "=m"(word));
  return word;
}
void set_x87_control(uint16_t word) { asm volatile("fldcw %0" : : "m"(word)); }

TYPED_TEST(SameBits, UnderTheCallersControlWords) {
  constexpr unsigned down = 0x2000, up = 0x4000, toward_zero = 0x6000, ftz = 0x8000, daz = 0x0040;
  const unsigned usual = _mm_getcsr();
  const uint16_t usual_x87 = x87_control();
  for (const auto &c : cases<TypeParam>(is_complex<TypeParam> ? 501 : 2'001)) {
    const auto ordinary = c.at_once();
    for (const unsigned controls : {0u, down, up, toward_zero, ftz, daz, up | ftz | daz})
      for (const uint16_t x87 : {0x300, 0x000, 0x200, 0x700, 0xF00})
        for_each_level([&](const char *level) {
          if (controls && x87 != 0x300 && !is_complex<TypeParam>) return;  // one of them at a time
          SCOPED_TRACE(testing::Message() << level << ", controls " << controls << " and " << x87);
          const unsigned word = (usual & ~0x3Fu) | controls;
          const auto word_x87 = static_cast<uint16_t>((usual_x87 & ~0xF00) | x87);
          _mm_setcsr(word);
          set_x87_control(word_x87);
          const auto got = c.at_once();
          const unsigned after = _mm_getcsr();
          const uint16_t after_x87 = x87_control();
          _mm_setcsr(word);
          const auto expected = c.follows_caller ? c.in_pieces(1) : ordinary;
          _mm_setcsr(usual);
          set_x87_control(usual_x87);
          EXPECT_TRUE(same(c, expected, got));
          EXPECT_EQ(after & ~_MM_EXCEPT_MASK, word & ~_MM_EXCEPT_MASK);
          EXPECT_EQ(after_x87, word_x87);
        });
  }
}

// Every length, between pages that must not be touched, and numbers of elements that stand for none.
TYPED_TEST(SameBits, KeepsToItsArraysWithoutEvents) {
  using T = TypeParam;
  constexpr int longest = 140;
  for (const auto &c : cases<T>(longest, true))
    for (const Edge edge : {Edge::end, Edge::start})
      for (int n = 0; n <= longest; n += n < 40 ? 1 : 11) {
        Guarded<T> a(n, edge), b(n, edge), r(n, edge), q(n, edge);
        const T number[1] = {c.b[0]};
        const bool with_number = is_complex<T> && c.inputs == 1;  // may read one element of b
        std::copy_n(c.a.data(), n, a.data());
        std::copy_n(c.b.data(), n, b.data());
        for_each_level([&](const char *level) {
          feclearexcept(FE_ALL_EXCEPT);
          c.entry(n, a.data(), with_number ? number : b.data(), r.data(), q.data());
          ASSERT_EQ(fetestexcept(FE_ALL_EXCEPT & ~FE_INEXACT), 0) << c.name << ' ' << n << ' ' << level;
          for (const int32_t none : {-n, -1, INT32_MIN})
            c.entry(none, a.data(), with_number ? number : b.data(), r.data(), q.data());
        });
      }
}

}  // namespace
