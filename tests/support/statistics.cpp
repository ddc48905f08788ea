#define BOOST_MATH_PROMOTE_DOUBLE_POLICY false
#include "tests/support/statistics.h"

#include <algorithm>
#include <bit>
#include <boost/math/distributions/chi_squared.hpp>
#include <cmath>
#include <limits>
#include <set>

namespace qkr::tests {
namespace {

constexpr int equal_bins = 256, fewest_in_a_bin = 25;
constexpr int32_t block = 8192;

double normal_probability(double deviation) {
  return std::isnan(deviation) ? 0 : std::erfc(std::abs(deviation) / std::sqrt(2.0));
}

double chi_squared_probability(double statistic, double degrees) {
  const boost::math::chi_squared law(degrees);
  return std::isfinite(statistic) ? boost::math::cdf(boost::math::complement(law, statistic)) : 0;
}

// Asymptotic: n is large.
double kolmogorov_probability(double distance, double n) {
  const double x = distance * (std::sqrt(n) + 0.12);
  double sum = 0;
  for (int k = 1; k <= 50; ++k) sum += (k % 2 ? 2 : -2) * std::exp(-2.0 * k * k * x * x);
  return x < 0.2 ? 1 : std::min(1.0, sum);
}

Law distorted(const Law &law, double distortion) {
  if (distortion == 0) return law;
  Law other = law;
  other.below = [=](double x) { return std::pow(law.below(x), 1 + distortion); };
  other.quantile = [=](double p, double) {
    const double undistorted = std::pow(p, 1 / (1 + distortion));
    return law.quantile(undistorted, 1 - undistorted);
  };
  return other;
}

// The real line in order of the leading 22 bits of a double: sign, exponent and 10 bits of fraction. Numbers
// are counted by cell, and cells joined to bins afterwards.
constexpr int cell_shift = 42;
constexpr uint64_t sign_bit = uint64_t(1) << 63;
inline uint32_t cell_of(double x) {
  const uint64_t bits = std::bit_cast<uint64_t>(x + 0.0);  // -0.0 becomes 0.0
  return static_cast<uint32_t>((bits & sign_bit ? ~bits : bits | sign_bit) >> cell_shift);
}
double start_of(uint32_t cell) {
  const uint64_t ordered = uint64_t(cell) << cell_shift;
  return std::bit_cast<double>(ordered & sign_bit ? ordered & ~sign_bit : ~ordered);
}

// The probability that a number of type T lies in a cell below that which begins at `start`: that, before
// rounding, it was nearer to the last T there. NaN where an error of one unit in the last place would be
// visible among n numbers: near subnormal numbers, and at the ends of Beta.
template <class T>
double probability_below(const Law &law, double start, double n) {
  if constexpr (std::is_same_v<T, int32_t>) return law.below(std::ceil(start));
  else {
    T first = static_cast<T>(start);
    if (first < start) first = std::nextafter(first, std::numeric_limits<T>::max());
    const double last = std::nextafter(first, std::numeric_limits<T>::lowest()), ulp = first - last;
    const double p = law.below((last + first) / 2), doubtful = law.below(first + ulp) - law.below(last - ulp);
    return doubtful < 0.3 * std::sqrt(p * (1 - p) / n) ? p : std::numeric_limits<double>::quiet_NaN();
  }
}

struct Node {
  double x, weight;
};

// Numbers that represent the law in sums. Whole numbers stand for themselves; else the integral over p runs,
// by Simpson's rule, over ln(p / q).
std::vector<Node> nodes_of(const Law &law, double outermost) {
  const double low = law.quantile(outermost, 1 - outermost), high = law.quantile(1 - outermost, outermost);
  std::vector<Node> nodes;
  if (law.whole && high - low < 1e6) {
    for (double k = low, below = 0, up_to; k <= high; ++k, below = up_to) {
      up_to = k < high ? law.below(k + 1) : 1;
      nodes.push_back({k, up_to - below});
    }
    return nodes;
  }
  constexpr int intervals = 400;
  const double end = std::log((1 - outermost) / outermost), step = 2 * end / intervals;
  for (int i = 0; i <= intervals; ++i) {
    const double z = -end + i * step, p = 1 / (1 + std::exp(-z)), q = 1 / (1 + std::exp(z));
    const double simpson = i == 0 || i == intervals ? 1 : i % 2 ? 4 : 2;
    nodes.push_back({law.quantile(p, q), simpson * step / 3 * p * q});
  }
  nodes.front().weight += outermost;
  nodes.back().weight += outermost;
  return nodes;
}

// What a law expects of numbers that are cut at `low` and `high`.
struct Expectation {
  double low, high;
  double mean = 0, deviation = 0;
  double powers[9] = {};   // of (x - mean) / deviation
  double middle, spread;   // of half of the numbers
  double bounded[5] = {};  // powers of bounded(x)

  Expectation(const Law &law, double outermost) {
    const std::vector<Node> nodes = nodes_of(law, outermost);
    low = nodes.front().x;
    high = nodes.back().x;
    for (const Node &node : nodes) mean += node.x * node.weight;
    for (const Node &node : nodes) deviation += (node.x - mean) * (node.x - mean) * node.weight;
    deviation = std::sqrt(deviation);
    middle = law.quantile(0.5, 0.5);
    spread = law.quantile(0.75, 0.25) - law.quantile(0.25, 0.75);
    if (spread == 0) spread = 1;
    for (const Node &node : nodes)
      for (int k = 0; k < 9; ++k) {
        powers[k] += std::pow((node.x - mean) / deviation, k) * node.weight;
        if (k < 5) bounded[k] += std::pow(bounded_of(node.x), k) * node.weight;
      }
  }
  double bounded_of(double x) const {
    const double t = (x - middle) / spread;
    return t / (1 + std::abs(t));
  }
};

// The counts and sums of numbers in the order in which they were drawn.
struct Tally {
  std::vector<uint32_t> counts = std::vector<uint32_t>(size_t(1) << (64 - cell_shift));
  double smallest = HUGE_VAL, largest = -HUGE_VAL;
  double powers[5] = {}, products = 0, last_bounded = 0;

  void add(const Expectation &e, double number) {
    ++counts[cell_of(number)];
    smallest = number < smallest ? number : smallest;
    largest = number > largest ? number : largest;
    const double cut = std::clamp(number, e.low, e.high), t = (cut - e.mean) / e.deviation, square = t * t;
    powers[1] += t;
    powers[2] += square;
    powers[3] += square * t;
    powers[4] += square * square;
    const double bounded = e.bounded_of(cut) - e.bounded[1];
    products += last_bounded * bounded;
    last_bounded = bounded;
  }
};

template <class T>
void compare_frequencies(const Law &law, const Tally &tally, double outermost, double n,
                         std::vector<Finding> &findings) {
  std::set<uint32_t> borders;
  for (int k = 1; k < equal_bins; ++k)
    borders.insert(cell_of(law.quantile(double(k) / equal_bins, 1 - double(k) / equal_bins)));
  for (double p = outermost; p < 1.0 / equal_bins; p *= 2) {
    borders.insert(cell_of(law.quantile(p, 1 - p)));
    borders.insert(cell_of(law.quantile(1 - p, p)));
  }
  // What lies in the cell of the highest quantile is a bin too, if it is a single number.
  if (law.whole) borders.insert(*borders.rbegin() + 1);

  double statistic = 0, distance = 0, reached = 0, counted = 0, total = 0;
  int bins = 0;
  uint32_t cell = 0;
  const auto close_bin = [&](double p) {
    const double expected = (p - reached) * n, difference = total - counted - expected;
    statistic += difference * difference / expected;
    distance = std::max(distance, std::abs(total / n - p));
    reached = p;
    counted = total;
    ++bins;
  };
  for (const uint32_t border : borders) {
    for (; cell < border; ++cell) total += tally.counts[cell];
    const double p = probability_below<T>(law, start_of(border), n);
    // Not so if p is NaN.
    if ((p - reached) * n >= fewest_in_a_bin && (1 - p) * n >= fewest_in_a_bin) close_bin(p);
  }
  total = n;
  if (bins == 0) return;
  close_bin(1);
  findings.push_back({"chi-square", statistic, chi_squared_probability(statistic, bins - 1)});
  findings.push_back({"Kolmogorov-Smirnov", distance, kolmogorov_probability(distance, n)});
}

}  // namespace

double outermost_probability(double n) { return std::max(1000 / n, 100 * n * 0x1p-50); }

template <class T>
std::vector<Finding> examine(const Case &a_case, StreamState *stream, int64_t n, double distortion) {
  const Law law = distorted(law_of<T>(a_case), distortion);
  const double count = static_cast<double>(n), outermost = outermost_probability(count);
  const Expectation e(law, outermost);
  Tally tally;
  std::vector<T> x(block);
  for (int64_t done = 0; done < n; done += block) {
    const int32_t m = static_cast<int32_t>(std::min<int64_t>(block, n - done));
    const int32_t status = draw(a_case, stream, m, x.data());
    if (status != VXS_STATUS_OK) return {{"status", double(status), 0}};
    for (int32_t i = 0; i < m; ++i) tally.add(e, static_cast<double>(x[i]));
  }

  const double slack = std::is_integral_v<T> ? 0 : 4 * std::numeric_limits<T>::epsilon();
  for (const double extreme : {tally.smallest, tally.largest})
    if (!(extreme >= law.lowest - slack * std::abs(law.lowest) && std::isfinite(extreme) &&
          extreme <= law.highest + slack * std::abs(law.highest)))
      return {{"range", extreme, 0}};

  std::vector<Finding> findings;
  compare_frequencies<T>(law, tally, outermost, count, findings);
  if (e.deviation == 0) return findings;
  const auto add_normal = [&](const char *statistic, double deviation) {
    findings.push_back({statistic, deviation, normal_probability(deviation)});
  };
  const char *const names[] = {"mean", "square", "cube", "fourth power"};
  for (int k = 1; k <= 4; ++k) {
    const double variance = e.powers[2 * k] - e.powers[k] * e.powers[k];
    // A number with two values has no square of its own.
    if (variance > 1e-9 * e.powers[2 * k])
      add_normal(names[k - 1], (tally.powers[k] / count - e.powers[k]) / std::sqrt(variance / count));
  }
  // The fourth moment of a product tells whether the sum of all is near to normal.
  const auto &[m0, m1, m2, m3, m4] = e.bounded;
  const double variance = m2 - m1 * m1, fourth = m4 - 4 * m3 * m1 + 6 * m2 * m1 * m1 - 3 * m1 * m1 * m1 * m1;
  if (std::pow(fourth / (variance * variance), 2) < 1e-4 * count)
    add_normal("correlation", tally.products / variance / std::sqrt(count));
  return findings;
}

#define INSTANTIATE(T) template std::vector<Finding> examine<T>(const Case &, StreamState *, int64_t, double);
INSTANTIATE(double)
INSTANTIATE(float)
INSTANTIATE(int32_t)

}  // namespace qkr::tests
