#include <qkr/qkr.hpp>
#include <vector>

// Parseval: the same energy as the signal's.
double energy_of_spectrum(const std::vector<double> &signal) {
  qkr::fft<double> f{signal.size(), qkr::divide::both};
  std::vector<std::complex<double>> X(f.spectrum_size());
  f.forward(signal, X);
  double energy = std::norm(X.front()) + std::norm(X.back());  // of an even length
  for (std::size_t k = 1; k + 1 < X.size(); ++k) energy += 2 * std::norm(X[k]);
  return energy;
}
