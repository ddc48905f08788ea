// What the suites of qkr.hpp compute with, and how they compare.
#pragma once

#include <cstring>
#include <qkr/qkr.hpp>
#include <random>
#include <vector>

namespace qkr::tests {

// Between -4 and 4, halves among them; of integers between -400 and 400.
template <class T>
std::vector<T> numbers(size_t n, unsigned seed = 1) {
  std::mt19937 engine(seed);
  std::uniform_real_distribution<double> uniform(-4, 4);
  const auto next = [&] { return engine() % 8 ? uniform(engine) : 0.5 * double(engine() % 9); };
  std::vector<T> x(n);
  for (T &element : x) {
    if constexpr (complex_number<T>) {
      using Part = typename T::value_type;
      element = T(Part(next()), Part(next()));
    } else element = T(std::is_integral_v<T> ? 100 * next() : next());
  }
  return x;
}

template <class T>
bool same(const std::vector<T> &a, const std::vector<T> &b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

}  // namespace qkr::tests
