// The floating-point events that functions raise are those of their results.
#include <fenv.h>
#include <gtest/gtest.h>
#include <qkr/vecmath_control.h>
#include <string.h>
#include <string>

#include "tests/support/levels.h"
#include "tests/support/samples.h"
#include "tests/vecmath/fresh_thread.h"

namespace {

using namespace qkr::tests;

template <class T>
class Events : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(Events, Elements);

constexpr int length = 70, telling = FE_ALL_EXCEPT & ~FE_INEXACT;

template <class T>
struct Vectors {
  T a[length], b[length], r[length], q[length];

  explicit Vectors(const VectorFunction<T> &f) {
    Random random{3};
    for (int i = 0; i < length; ++i) a[i] = ordinary(f.a, random), b[i] = ordinary(f.b, random);
  }
  int events_of(const VectorFunction<T> &f, int n) {
    feclearexcept(FE_ALL_EXCEPT);
    f.entry(n, a, b, r, q);
    return fetestexcept(telling);
  }
};

template <class T>
bool is_signalling(T x) {
  const auto quiet_bit = Pattern<T>(1) << (std::numeric_limits<T>::digits - 2);
  return std::isnan(x) && !(pattern_of(x) & quiet_bit);
}

// What an element may raise: the event of its status, underflow where the numbers are that small, overflow
// where the result is infinite, and invalid for a signalling NaN.
template <class T>
int allowed_events(T a, T b, T r, T q, int32_t status) {
  constexpr int of_status[] = {0, FE_INVALID, FE_DIVBYZERO, FE_OVERFLOW, FE_UNDERFLOW};
  int allowed = of_status[status];
  const T tiny = either<T>(0x1p-480, 0x1p-60f);
  for (const T x : {a, b, r, q})
    if (std::fabs(x) < tiny && (x != 0 || status == VXM_STATUS_UNDERFLOW)) allowed |= FE_UNDERFLOW;
  const T ratio = std::fabs(a / b);  // the small one of two inputs may vanish beside the other
  if (ratio < tiny || ratio > 1 / tiny) allowed |= FE_UNDERFLOW;
  const bool from_finite = std::isfinite(a) && std::isfinite(b);
  if (from_finite && std::isinf(r) && a != 0 && b != 0) allowed |= FE_OVERFLOW;
  if (std::isnan(r) && !std::isnan(a) && !std::isnan(b)) allowed |= FE_INVALID;
  if (is_signalling(a) || is_signalling(b)) allowed |= FE_INVALID;
  return allowed;
}

template <class T>
std::vector<T> wild_values(int payload) {
  using Format = std::numeric_limits<T>;
  const T signalling = from_pattern<T>(pattern_of(Format::infinity()) + 1);
  const T quiet = from_pattern<T>(pattern_of(Format::quiet_NaN()) + payload);
  std::vector<T> values;
  for (const T x :
       {T(0), T(1), T(2), T(0.5), Format::denorm_min(), Format::min(), Format::max(), Format::infinity(),
        quiet, signalling, either<T>(1e300, 1e30f), either<T>(1e20, 1e12f), T(100), T(800)})
    values.insert(values.end(), {x, -x});
  return values;
}

// One wild element among ordinary ones, at every level and in several places. Of two quiet NaNs the first is
// the result.
TYPED_TEST(Events, WildInputRaisesThoseOfItsResult) {
  using T = TypeParam;
  in_fresh_thread([] {
    _vxmSetMode(VXM_MODE_IGNORE);
    const std::vector<T> wild = wild_values<T>(5), wild_second = wild_values<T>(9);
    for (const auto &f : vector_functions<T>()) {
      const Vectors<T> ordinary(f);
      for (const T a : wild)
        for (const T b : f.entry.inputs() == 2 ? wild_second : std::vector<T>{1})
          for_each_level([&](const char *level) {
            for (const int place : {0, 37, length - 1}) {
              Vectors<T> vectors = ordinary;
              vectors.a[place] = a, vectors.b[place] = b;
              _vxmClearErrStatus();
              const int events = vectors.events_of(f, length);
              const T q = f.entry.results() == 2 ? vectors.q[place] : T(1);
              const int allowed = allowed_events(a, b, vectors.r[place], q, _vxmGetErrStatus());
              if (std::isnan(a) && std::isnan(b) && !is_signalling(a) && !is_signalling(b)) {
                ASSERT_EQ(pattern_of(std::fabs(vectors.r[place])), pattern_of(std::fabs(a)))
                    << f.name << ' ' << level;
              }
              ASSERT_EQ(events & ~allowed, 0) << f.name << " of " << a << ", " << b << " gives "
                                              << vectors.r[place] << ", place " << place << ", " << level;
            }
          });
    }
  });
}

}  // namespace
