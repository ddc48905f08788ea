// Whether numbers that were drawn follow their law. Each finding is a statistic with the probability that a
// perfect library would give at least as strange a value.
#pragma once

#include "tests/support/distribution_cases.h"

namespace qkr::tests {

struct Finding {
  std::string statistic;
  double value;
  double probability;
};

// What share of n numbers goes to each of the outermost bins: 1000 numbers, enough for normal sums. The
// single-precision uniform numbers just below 1 are 2^-24 apart, so that a border can be off by a probability
// of 2^-25: at no bin may that come to more than a tenth of the deviation of its count.
double outermost_probability(double n);

// Draws n numbers and compares them with the case's law: the frequencies of about 280 bins by chi-square; the
// largest distance of the distribution function at the bins' borders by Kolmogorov and Smirnov; the mean and
// the second to fourth powers of what lies between the outermost borders, what lies beyond being moved to
// them; and the correlation of each number with the next. A range error gives probability 0, as does a failed
// draw.
//
// `distortion`, if not 0, takes the law's probabilities to the power 1 + distortion, to see that it is
// noticed.
template <class T>
std::vector<Finding> examine(const Case &a_case, StreamState *stream, int64_t n, double distortion = 0);

}  // namespace qkr::tests
