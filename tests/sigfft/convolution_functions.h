// What the tests of convolution share: the functions by precision, numbers, comparison of bits.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <qkr/sigfft.h>
#include <random>
#include <vector>

namespace qkr::tests {

template <class T>
std::vector<T> random_vector(size_t count, unsigned seed) {
  std::mt19937 generator(seed);
  std::vector<T> x(count);
  if constexpr (std::is_integral_v<T>)
    for (auto &v : x) v = (T)(generator() >> 16);
  else
    for (auto &v : x) v = (T)std::uniform_real_distribution<double>(-1, 1)(generator);
  return x;
}

// The same bits, but for those of a NaN: which operand's payload goes on is the processor's business.
template <class T>
testing::AssertionResult same_bits(const std::vector<T> &actual, const std::vector<T> &expected) {
  if (actual.size() != expected.size()) return testing::AssertionFailure() << "sizes differ";
  for (size_t i = 0; i < actual.size(); ++i) {
    if (std::isnan(actual[i]) && std::isnan(expected[i])) continue;
    if (memcmp(&actual[i], &expected[i], sizeof(T)))
      return testing::AssertionFailure() << "number " << i << ": " << actual[i] << ", not " << expected[i];
  }
  return testing::AssertionSuccess();
}

}  // namespace qkr::tests
