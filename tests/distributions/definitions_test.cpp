// Continuous distributions beside their definitions: one number at a time, from the same uniform numbers, in
// long double arithmetic. What is made by rejection, and whole numbers, draws_digest.txt records.
#include <cmath>
#include <limits>
#include <set>
#include <string_view>

#include "tests/distributions/recorded_stream.h"
#include "tests/support/distribution_cases.h"

namespace {

using namespace qkr::tests;
using Real = long double;

struct Number {
  Real value;
  Real magnitude;  // of what was rounded on the way
};

template <class T>
class Definition {
  size_t next_ = 0;
  bool has_waiting_ = false;
  Real waiting_ = 0;  // the second of two normal numbers

  T uniform(T a = 0, T b = 1) {
    return T(recording.numbers[next_++ % recording.numbers.size()]) * (b - a) + a;
  }
  static Real ln(Real x) {
    if (x != 0) return std::log(x);
    return sizeof(T) == 8 ? -744.4400719213812L : -103.2789306640625L;
  }
  Real normal(bool in_twos) {
    has_waiting_ = in_twos && !has_waiting_;
    if (in_twos && !has_waiting_) return waiting_;
    const Real radius = std::sqrt(-2 * ln(uniform())), angle = T(uniform() * T(6.283185307179586));
    waiting_ = radius * std::cos(angle);
    return radius * std::sin(angle);
  }

  // Without displacement and scale.
  Number standard(std::string_view family, int32_t method, const std::vector<double> &p) {
    if (family == "Lognormal") {
      const Real exponent = normal(true) * p[1], x = std::exp(exponent + p[0]);
      return {x, x * (2 + std::abs(exponent))};
    }
    if (family == "Gaussian") {
      const Real x = normal(method == 1);
      return {x, x};
    }
    if (family == "Cauchy") {
      const Real x = std::tan(Real(uniform(T(-1.5707963267948966), T(1.5707963267948966))));
      return {x, x};
    }
    const Real e = -ln(uniform());
    if (family == "Exponential") return {e, e};
    if (family == "Laplace") return {uniform() > T(0.5) ? -e : e, e};
    if (family == "Gumbel") return {ln(e), 1 + std::abs(ln(e))};
    const Real x = std::pow(e, 1 / Real(family == "Weibull" ? p[0] : 2));  // Rayleigh's is one of them
    return {x, x * 4};
  }

 public:
  Number next(const Case &a_case) {
    const std::vector<double> &p = a_case.parameters;
    if (std::string_view(a_case.family) == "Uniform") return {uniform(T(p[0]), T(p[1])), 0};
    const double displacement = p[p.size() - 2], scale = p.back();
    const Number x = standard(a_case.family, a_case.method, p);
    // Below the smallest normal number, numbers are as far apart as at it.
    const Real magnitude = (std::abs(x.magnitude) + std::numeric_limits<T>::min()) * scale;
    return {x.value * scale + displacement, magnitude + std::abs(displacement)};
  }
};

template <class T>
class ContinuousDistributions : public testing::Test {};
using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(ContinuousDistributions, Precisions);

TYPED_TEST(ContinuousDistributions, AgreeWithTheirDefinitions) {
  using T = TypeParam;
  // Of the magnitude that was rounded. Worst measured: Gaussian by method 0, 1.2 epsilon.
  constexpr double bound = 2 * std::numeric_limits<T>::epsilon();
  std::vector<T> numbers(5000);
  for (const Case &a_case : cases<T>()) {
    const bool by_rejection = std::set<std::string>{"Gamma", "Beta"}.contains(a_case.family);
    ASSERT_EQ(draw(a_case, recorded_stream().get(), 5000, numbers.data()), VXS_STATUS_OK);
    Definition<T> definition;
    for (const T number : numbers) {
      ASSERT_TRUE(std::isfinite(number)) << name_of<T>(a_case);
      if (by_rejection) continue;
      const Number expected = definition.next(a_case);
      ASSERT_LE(std::abs(number - expected.value), bound * expected.magnitude)
          << name_of<T>(a_case) << ": " << number << ", not " << expected.value;
    }
  }
}

}  // namespace
