// The C++ interface from two files of a program: an exception, a stream as a standard generator, a transform.
#include <cmath>
#include <cstdio>
#include <qkr/qkr.hpp>
#include <random>
#include <vector>

double energy_of_spectrum(const std::vector<double> &signal);  // second.cpp

int main() {
  qkr::stream s{qkr::mt2203(7), 777};
  std::vector<double> noise(1000);
  s.normal(noise, 0, 2);
  double energy = 0;
  for (const double x : noise) energy += x * x;
  const double spectral = energy_of_spectrum(noise);
  std::uniform_int_distribution<int> die(1, 6);
  const int face = die(s);
  bool caught = false;
  try {
    s.normal(noise, 0, -2);
  } catch (const qkr::error &error) {
    std::printf("%s\n", error.what());
    caught = error.code() == VXS_STATUS_BAD_ARGUMENT;
  }
  std::printf("%.17g %.17g, %d\n", energy, spectral, face);
  return !(caught && std::abs(energy / spectral - 1) < 1e-12 && face >= 1 && face <= 6);
}
