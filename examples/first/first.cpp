// The mean of a million lognormal numbers: near exp(1/2) = 1.65. Failures throw a qkr::error.
#include <cstdio>
#include <numeric>
#include <qkr/qkr.hpp>
#include <vector>

int main() {
  qkr::stream stream{qkr::mt2203(7), 777};  // member 7 of a family of generators
  std::vector<double> x(1000000);
  stream.normal(x, 0.0, 1.0);  // mean, deviation
  qkr::exp(x, x);              // in place
  std::printf("mean %.2f\n", std::accumulate(x.begin(), x.end(), 0.0) / 1000000);
}
