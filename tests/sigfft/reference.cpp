#include "reference.h"

#include <cmath>
#include <fftw3.h>

namespace qkr::tests {
namespace {

#define QKR_FFTW(T, prefix)                                                                        \
  std::vector<T> run_fftw(std::vector<T> x, bool forward) {                                        \
    std::vector<T> result(x.size());                                                               \
    const auto plan = prefix##_plan_dft_1d((int)(x.size() / 2), (prefix##_complex *)x.data(),      \
                                           (prefix##_complex *)result.data(),                      \
                                           forward ? FFTW_FORWARD : FFTW_BACKWARD, FFTW_ESTIMATE); \
    prefix##_execute(plan);                                                                        \
    prefix##_destroy_plan(plan);                                                                   \
    return result;                                                                                 \
  }
QKR_FFTW(double, fftw)
QKR_FFTW(float, fftwf)
QKR_FFTW(long double, fftwl)

}  // namespace

LongNumbers exact_transform(const LongNumbers &x, bool forward) { return run_fftw(x, forward); }
std::vector<double> fftw_transform(const std::vector<double> &x, bool forward) {
  return run_fftw(x, forward);
}
std::vector<float> fftw_transform(const std::vector<float> &x, bool forward) { return run_fftw(x, forward); }

LongNumbers real_spectrum(const LongNumbers &exact) {
  const size_t n = exact.size() / 2;
  LongNumbers spectrum;
  for (size_t k = 0; k <= n / 2; ++k) {
    const size_t mirror = (n - k) % n;
    spectrum.push_back((exact[2 * k] + exact[2 * mirror]) / 2);
    spectrum.push_back((exact[2 * k + 1] - exact[2 * mirror + 1]) / 2);
  }
  return spectrum;
}

template <class T>
double relative_error(const std::vector<T> &x, const LongNumbers &exact) {
  long double error = 0, norm = 0;
  for (size_t i = 0; i < exact.size(); ++i) {
    error += (x[i] - exact[i]) * (x[i] - exact[i]);
    norm += exact[i] * exact[i];
  }
  return std::sqrt((double)(error / norm));
}
template double relative_error(const std::vector<double> &, const LongNumbers &);
template double relative_error(const std::vector<float> &, const LongNumbers &);

}  // namespace qkr::tests
