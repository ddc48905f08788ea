// What holds for every vector function, real or complex: its results depend on the input alone, not on the
// vector width, the place in a vector, the entry, or the caller's control words; it keeps to its arrays; and
// ordinary input raises no event but inexact.
#include <algorithm>
#include <cmath>
#include <fenv.h>
#include <gtest/gtest.h>
#include <immintrin.h>
#include <qkr/vecmath.h>
#include <qkr/vecmath_control.h>
#include <string.h>
#include <utility>

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

// One function with its inputs.
template <class T>
struct Case {
  const char *name;
  Entry<T> entry, low;
  std::vector<T> a, b;
  bool follows_caller = false;  // rounds as the caller does

  int count() const { return static_cast<int>(a.size()); }
  std::vector<T> blank() const { return std::vector<T>(a.size() * entry.results(), T{}); }
  // By stretches of 1 to `longest` elements in turn; second results stand behind all the first ones.
  std::vector<T> in_pieces(int longest) const {
    std::vector<T> r = blank();
    for (int first = 0, n = 1; first < count(); first += n, n = n % longest + 1)
      entry(std::min(n, count() - first), &a[first], &b[first], &r[first], &r[first + r.size() - a.size()]);
    return r;
  }
  std::vector<T> at_once(const Entry<T> &by) const {
    std::vector<T> r = blank();
    by(count(), a.data(), b.data(), r.data(), &r[r.size() - a.size()]);
    return r;
  }
};

// All functions with inputs of every kind, or with ordinary ones.
template <class T>
std::vector<Case<T>> cases(int count, bool ordinary = false) {
  std::vector<Case<T>> all;
  if constexpr (is_complex<T>) {
    for (const auto &f : complex_functions<T>()) {
      Case<T> &c = all.emplace_back(Case<T>{f.name, f.entry, f.low, {}, {}});
      Random random{1};
      for (int i = 0; i < count; ++i) {
        Operands z = any_operands(random);
        const double tiny = std::ldexp(random.unit() - 0.5, -static_cast<int>(random.below(99)));
        if (ordinary) z = {random.unit() * 3 - 1.5, tiny, random.unit() * 3, random.unit()};
        c.a.push_back(rounded_element<T>(z.x, z.y));
        c.b.push_back(f.entry.with_number && i ? c.b[0] : rounded_element<T>(z.u, z.v));
      }
    }
  } else {
    for (const auto &f : vector_functions<T>()) {
      all.push_back({f.name, f.entry, f.low, mixed_inputs(f, f.a, count, 1), mixed_inputs(f, f.b, count, 2),
                     f.rounding == Rounding::callers});
      Random random{1};
      for (int i = 0; ordinary && i < count; ++i) {
        all.back().a[i] = qkr::tests::ordinary(f.a, random);
        all.back().b[i] = qkr::tests::ordinary(f.b, random);
      }
    }
  }
  return all;
}

template <class T>
testing::AssertionResult same(const Case<T> &c, const std::vector<T> &expected, const std::vector<T> &got) {
  for (size_t i = 0; i < expected.size(); ++i)
    if (const size_t k = i % c.a.size(); memcmp(&expected[i], &got[i], sizeof(T)) != 0)
      return testing::AssertionFailure()
             << c.name << " of element " << i << ", " << testing::PrintToString(c.a[k]) << ' '
             << testing::PrintToString(c.b[k]);
  return testing::AssertionSuccess();
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

TYPED_TEST(SameBits, AtAllLevelsLengthsAndPlaces) {
  for (auto c : cases<TypeParam>(is_complex<TypeParam> ? 2'011 : 20'011))
    for (const bool in_runs : {false, true}) {
      if constexpr (is_complex<TypeParam>) {
        if (in_runs) continue;
      } else if (in_runs) {
        come_in_runs(c);
      }
      const auto expected = c.in_pieces(1);
      for_each_level([&](const char *level) {
        SCOPED_TRACE(level);
        EXPECT_TRUE(same(c, expected, c.at_once(c.entry)));
        EXPECT_TRUE(same(c, expected, c.in_pieces(1))) << "one by one";
        EXPECT_TRUE(same(c, expected, c.in_pieces(150))) << "in pieces";
        EXPECT_TRUE(!c.low || same(c, expected, c.at_once(c.low))) << c.name << " by the lower-accuracy name";
      });
    }
}

TYPED_TEST(SameBits, WhenAResultReplacesAnInput) {
  for (const auto &c : cases<TypeParam>(2'001)) {
    const auto expected = c.at_once(c.entry);
    for_each_level([&](const char *level) {
      SCOPED_TRACE(level);
      for (int replaced = 0; replaced < (c.entry.binary || c.entry.two_results ? 2 : 1); ++replaced) {
        auto a = c.a, b = c.b, r = c.blank();
        TypeParam *const input = c.entry.binary && replaced == 1 ? b.data() : a.data();
        TypeParam *results[2] = {r.data(), &r[r.size() - a.size()]};
        TypeParam *&result = results[c.entry.two_results ? replaced : 0], *const place =
                                                                              std::exchange(result, input);
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
    const auto ordinary = c.at_once(c.entry);
    for (const unsigned controls : {0u, down, up, toward_zero, ftz, daz, up | ftz | daz})
      for (const uint16_t x87 : {0x300, 0x000, 0x200, 0x700, 0xF00})
        for_each_level([&](const char *level) {
          if (controls && x87 != 0x300 && !is_complex<TypeParam>) return;  // one of them at a time
          SCOPED_TRACE(testing::Message() << level << ", controls " << controls << " and " << x87);
          const unsigned word = (usual & ~0x3Fu) | controls;
          const auto word_x87 = static_cast<uint16_t>((usual_x87 & ~0xF00) | x87);
          _mm_setcsr(word);
          set_x87_control(word_x87);
          const auto got = c.at_once(c.entry);
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
        std::copy_n(c.a.data(), n, a.data());
        std::copy_n(c.b.data(), n, b.data());
        const T *const second = c.entry.with_number ? c.b.data() : b.data();
        for_each_level([&](const char *level) {
          feclearexcept(FE_ALL_EXCEPT);
          c.entry(n, a.data(), second, r.data(), q.data());
          ASSERT_EQ(fetestexcept(FE_ALL_EXCEPT & ~FE_INEXACT), 0) << c.name << ' ' << n << ' ' << level;
          for (const int32_t none : {-n, -1, INT32_MIN}) c.entry(none, a.data(), second, r.data(), q.data());
        });
      }
}

}  // namespace
