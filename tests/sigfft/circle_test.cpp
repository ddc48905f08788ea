// Points of the circle: correctly rounded against MPFR, both precisions, and the same bits at every level.
#include "sigfft/plan/circle.h"

#include <gtest/gtest.h>
#include <mpfr.h>
#include <vector>

#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

// Cosine and sine of 2 pi k / n, rounded to doubles; exactly 0, 1 or -1 on an axis.
struct Exact {
  mpfr_t angle, cosine, sine;
  Exact() { mpfr_inits2(200, angle, cosine, sine, (mpfr_ptr)0); }
  ~Exact() { mpfr_clears(angle, cosine, sine, (mpfr_ptr)0); }
  void point(size_t k, size_t n, double &c, double &s) {
    mpfr_const_pi(angle, MPFR_RNDN);
    mpfr_mul_ui(angle, angle, 2 * k, MPFR_RNDN);
    mpfr_div_ui(angle, angle, n, MPFR_RNDN);
    mpfr_sin_cos(sine, cosine, angle, MPFR_RNDN);
    c = 4 * k == n || 4 * k == 3 * n ? 0 : mpfr_get_d(cosine, MPFR_RNDN);
    s = 2 * k % n == 0 ? 0 : mpfr_get_d(sine, MPFR_RNDN);
  }
};

// Every point of short circles, some of long ones; all kinds of divisibility by 8.
template <class Check>
void for_some_circles(Check check) {
  for (size_t n = 1; n <= 300; ++n) check(n, 1);
  for (size_t n : {1000, 1009, 1018, 2048, 4100, 10007, 100000}) check(n, 7);
  for (size_t n : {1 << 20, 3000017, 1 << 22}) check(n, 4999);
}

TEST(Circle, CorrectlyRounded) {
  Exact exact;
  for_some_circles([&](size_t n, size_t step) {
    std::vector<double> pairs, before;
    std::vector<float> singles(2 * n);
    for_each_level([&](const char *level) {
      pairs.assign(2 * n, -7);
      sigfft::fill_circle(n, pairs.data());
      sigfft::fill_circle(n, singles.data());
      if (before.empty()) before = pairs;
      ASSERT_EQ(pairs, before) << n << ' ' << level;
    });
    for (size_t k = 0; k < n; k += step) {
      double c, s;
      exact.point(k, n, c, s);
      ASSERT_EQ(pairs[2 * k], c) << k << " of " << n;
      ASSERT_EQ(pairs[2 * k + 1], -s) << k << " of " << n;
      ASSERT_EQ(singles[2 * k], (float)c) << k << " of " << n;
      ASSERT_EQ(singles[2 * k + 1], (float)-s) << k << " of " << n;
    }
  });
}

}  // namespace
}  // namespace qkr::tests
