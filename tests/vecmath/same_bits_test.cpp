// The bits of a result depend on the input alone: not on the vector width, the place in a vector, the entry,
// or the caller's control words.
#include <algorithm>
#include <gtest/gtest.h>
#include <immintrin.h>
#include <qkr/vecmath_control.h>
#include <string.h>
#include <string>

#include "tests/support/levels.h"
#include "tests/support/samples.h"
#include "tests/vecmath/fresh_thread.h"

namespace {

using namespace qkr::tests;

template <class T>
class SameBits : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(SameBits, Elements);

// Inputs and results of one function, the results one behind the other where there are two.
template <class T>
struct Case {
  const VectorFunction<T> &f;
  std::vector<T> a, b;
  int count() const { return static_cast<int>(a.size()); }

  Case(const VectorFunction<T> &function, int count)
      : f(function), a(mixed_inputs(f, f.a, count, 1)), b(mixed_inputs(f, f.b, count, 2)) {}

  std::vector<T> results() const { return std::vector<T>(a.size() * f.entry.results(), T(77)); }
  void run(int first, int n, std::vector<T> &r) const { run(f.entry, first, n, r); }
  void run(const Entry<T> &entry, int first, int n, std::vector<T> &r) const {
    entry(n, &a[first], &b[first], &r[first], entry.results() == 2 ? &r[first + a.size()] : nullptr);
  }
  std::vector<T> one_by_one() const {
    std::vector<T> r = results();
    for (int i = 0; i < count(); ++i) run(i, 1, r);
    return r;
  }
  std::vector<T> at_once() const {
    std::vector<T> r = results();
    run(0, count(), r);
    return r;
  }

  testing::AssertionResult same(const std::vector<T> &expected, const std::vector<T> &got) const {
    for (size_t i = 0; i < expected.size(); ++i)
      if (pattern_of(expected[i]) != pattern_of(got[i]))
        return testing::AssertionFailure()
               << f.name << " of " << std::hexfloat << a[i % a.size()] << ", " << b[i % a.size()] << " gives "
               << got[i] << " instead of " << expected[i];
    return testing::AssertionSuccess();
  }
};

TYPED_TEST(SameBits, AtAllLevelsLengthsAndPlaces) {
  using T = TypeParam;
  in_fresh_thread([] {
    _vxmSetMode(VXM_MODE_IGNORE);
    for (const auto &f : vector_functions<T>()) {
      const Case<T> inputs(f, 20'011);
      const std::vector<T> expected = inputs.one_by_one();
      for_each_level([&](const char *level) {
        SCOPED_TRACE(level);
        EXPECT_TRUE(inputs.same(expected, inputs.at_once()));
        EXPECT_TRUE(inputs.same(expected, inputs.one_by_one()));
        std::vector<T> pieces = inputs.results();
        for (int first = 0, n = 1; first < inputs.count(); first += n, n = n % 71 + 1)
          inputs.run(first, std::min(n, inputs.count() - first), pieces);
        EXPECT_TRUE(inputs.same(expected, pieces)) << "in pieces";
        if (f.low.unary || f.low.binary || f.low.two_results) {
          std::vector<T> low = inputs.results();
          inputs.run(f.low, 0, inputs.count(), low);
          EXPECT_TRUE(inputs.same(expected, low)) << "by the lower-accuracy name";
        }
      });
    }
  });
}

TYPED_TEST(SameBits, WhenAResultReplacesAnInput) {
  using T = TypeParam;
  in_fresh_thread([] {
    _vxmSetMode(VXM_MODE_IGNORE);
    for (const auto &f : vector_functions<T>()) {
      const Case<T> inputs(f, 4'001);
      const std::vector<T> expected = inputs.at_once();
      for_each_level([&](const char *level) {
        SCOPED_TRACE(level);
        for (int replaced = 0; replaced < std::max(f.entry.inputs(), f.entry.results()); ++replaced) {
          std::vector<T> a = inputs.a, b = inputs.b, r = inputs.results();
          T *first = &r[0], *second = f.entry.results() == 2 ? &r[inputs.count()] : nullptr;
          const bool by_second_result = f.entry.results() == 2 && replaced == 1;
          T *const input = f.entry.inputs() == 2 && replaced == 1 ? &b[0] : &a[0];
          (by_second_result ? second : first) = input;
          f.entry(inputs.count(), &a[0], &b[0], first, second);
          std::copy_n(input, inputs.count(), &r[by_second_result ? inputs.count() : 0]);
          EXPECT_TRUE(inputs.same(expected, r));
        }
      });
    }
  });
}

uint16_t x87_control() {
  uint16_t word;
  asm volatile("fnstcw %0" : "=m"(word));
  return word;
}
void set_x87_control(uint16_t word) { asm volatile("fldcw %0" : : "m"(word)); }

TYPED_TEST(SameBits, UnderTheCallersControlWords) {
  using T = TypeParam;
  static constexpr unsigned down = 0x2000, up = 0x4000, toward_zero = 0x6000, ftz = 0x8000, daz = 0x0040;
  in_fresh_thread([] {
    _vxmSetMode(VXM_MODE_IGNORE);
    const unsigned usual = _mm_getcsr();
    for (const auto &f : vector_functions<T>()) {
      const Case<T> inputs(f, 3'001);
      const std::vector<T> ordinary = inputs.at_once();
      for (const unsigned controls : {down, up, toward_zero, ftz, daz, up | ftz | daz})
        for_each_level([&](const char *level) {
          SCOPED_TRACE(std::string(f.name) + " at " + level + ", MXCSR controls " + std::to_string(controls));
          const unsigned word = (usual & ~0x3Fu) | controls;
          _mm_setcsr(word);
          const std::vector<T> got = inputs.at_once();
          const unsigned after = _mm_getcsr();
          _mm_setcsr(word);
          const std::vector<T> expected = f.rounding == Rounding::own ? ordinary : inputs.one_by_one();
          _mm_setcsr(usual);
          EXPECT_TRUE(inputs.same(expected, got));
          EXPECT_EQ(after & ~_MM_EXCEPT_MASK, word & ~_MM_EXCEPT_MASK);
        });
      for (const uint16_t controls : {0x000, 0x200, 0x300, 0x400, 0x800, 0xC00, 0xF00}) {
        SCOPED_TRACE(std::string(f.name) + ", x87 controls " + std::to_string(controls));
        const uint16_t before = x87_control(), word = static_cast<uint16_t>((before & ~0xF00) | controls);
        set_x87_control(word);
        const std::vector<T> got = inputs.at_once();
        const uint16_t after = x87_control();
        set_x87_control(before);
        EXPECT_TRUE(inputs.same(ordinary, got));
        EXPECT_EQ(after, word);
      }
    }
  });
}

}  // namespace
