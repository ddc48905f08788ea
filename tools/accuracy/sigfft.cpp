// Measures the errors of transforms beside FFTW's in the same precision, both against FFTW in long double (up
// to 2^12 points against the defining sum), and prints them as Markdown tables; fails if one of ours exceeds
// 1.2 times FFTW's, 1.35 times for lengths that are no powers of two: 1.33 is that of 10 doubles, by way of
// the five-point transform, whose products with the half sum and half difference of two cosines are rounded
// once more than FFTW's. Lengths beyond have self-tests: an impulse, whose transform is known, and the way
// back from the transform of a random signal.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tests/sigfft/reference.h"

namespace {

using namespace qkr::tests;

constexpr const char usage[] =
    "accuracy sigfft [--quick] [--order N] [--markdown FILE]\n"
    "  --quick          up to 2^16 instead of 2^22 points\n"
    "  --order N        instead, the self-tests of 2^N points\n"
    "  --markdown FILE  also write the table to FILE\n";

constexpr const char introduction[] =
    "# Accuracy of the transforms\n\n"
    "Made by `./dev accuracy sigfft --markdown docs/accuracy_sigfft.md`: the root of the sum of squared errors "
    "of a\n"
    "forward transform, divided by that of the squared result, for random numbers from -1 to 1; averages over\n"
    "2^12 / N signals of N points. Ours are `w6_zprsFFTFwd_CToC`, `zprsFFTFwd_CToC` and "
    "`w6_zprsFFTFwd_RToCCS`;\n"
    "FFTW's is complex, with estimated plans. The last column is ours, complex, divided by the unit roundoff "
    "and\n"
    "sqrt(log2 N).\n\n";

constexpr const char any_length_introduction[] =
    "## Any length\n\n"
    "The same of `w6_zprsDFTFwd_CToC`, `w6_zprsDFTInv_CToC` and `w6_zprsDFTFwd_RToCCS`, averages over 4096 / N "
    "signals.\n\n";

template <class T>
constexpr double unit_roundoff = sizeof(T) == 8 ? 0x1p-53 : 0x1p-24;

struct Errors {
  double complex[2] = {}, real = 0, fftw = 0;
};

template <class T>
Errors errors(int order) {
  const size_t n = size_t{1} << order;
  const int signals = order < 12 ? 1 << (12 - order) : 1;
  Errors sum;
  for (int i = 0; i < signals; ++i) {
    const auto x = signal<T>(2 * n, i);
    const auto exact = exact_transform(LongNumbers(x.begin(), x.end()), true);
    sum.fftw += relative_error(fftw_transform(x, true), exact) / signals;
    std::vector<T> y(2 * n);
    for (int set = 0; set < 2; ++set) {
      const auto &f = functions<T>[set];
      f.complex[true](x.data(), y.data(), Plan<T>(f, interleaved, n), nullptr);
      sum.complex[set] += relative_error(y, exact) / signals;
    }
    // The real parts alone have the even half of the spectrum.
    std::vector<T> reals(n), spectrum(spectrum_size(ccs, n));
    for (size_t k = 0; k < n; ++k) reals[k] = x[2 * k];
    const auto &f = functions<T>[0];
    f.real[true][ccs](reals.data(), spectrum.data(), Plan<T>(f, real, n), nullptr);
    sum.real += relative_error(spectrum, real_spectrum(exact)) / signals;
  }
  return sum;
}

template <class T>
bool add_table(std::string &text, int last_order) {
  char line[200];
  text += sizeof(T) == 8 ? "Double precision, times 1e-16:\n\n" : "Single precision, times 1e-8:\n\n";
  text +=
      "| log2 N | w6 complex | plain complex | w6 real | FFTW complex | w6 / FFTW | plain / FFTW | growth |\n";
  text += "|---:|---:|---:|---:|---:|---:|---:|---:|\n";
  const double unit = sizeof(T) == 8 ? 1e-16 : 1e-8;
  bool good = true;
  for (int order = 1; order <= last_order; ++order) {
    const Errors e = errors<T>(order);
    snprintf(line, sizeof line, "| %d | %.3f | %.3f | %.3f | %.3f | %.3f | %.3f | %.3f |\n", order,
             e.complex[0] / unit, e.complex[1] / unit, e.real / unit, e.fftw / unit, e.complex[0] / e.fftw,
             e.complex[1] / e.fftw, e.complex[0] / unit_roundoff<T> / std::sqrt(order));
    text += line;
    good &= std::max(e.complex[0], e.complex[1]) <= 1.2 * e.fftw;
  }
  text += "\n";
  return good;
}

// Products of small primes, of larger ones, squares, direct sums, chirps.
constexpr int32_t lengths[] = {3,    5,     6,     7,     9,     10,     12,     15,     20,     24,
                               31,   60,    97,    100,   105,   149,    151,    243,    257,    300,
                               625,  1000,  1009,  1155,  1536,  2009,   3000,   4096,   5005,   7500,
                               9409, 10007, 22500, 65537, 65625, 100000, 100003, 196608, 1000000};

template <class T>
bool add_any_length_table(std::string &text, int32_t longest) {
  char line[200];
  text += sizeof(T) == 8 ? "Any length, double precision, times 1e-16:\n\n"
                         : "Any length, single precision, times 1e-8:\n\n";
  text += "| N | forward | inverse | real | FFTW complex | forward / FFTW | inverse / FFTW |\n";
  text += "|---:|---:|---:|---:|---:|---:|---:|\n";
  const double unit = sizeof(T) == 8 ? 1e-16 : 1e-8;
  const auto &f = functions<T>[any_length];
  bool good = true;
  for (const int32_t length : lengths) {
    if (length > longest) continue;
    const auto n = (size_t)length;
    const int signals = length < 4096 ? 4096 / length : 1;
    const Plan<T> plan(f, interleaved, n), real_plan(f, real, n);
    double errors[3] = {}, of_fftw = 0;
    for (int i = 0; i < signals; ++i) {
      const auto x = signal<T>(2 * n, i);
      const auto exact = exact_transform(LongNumbers(x.begin(), x.end()), true);
      of_fftw += relative_error(fftw_transform(x, true), exact) / signals;
      std::vector<T> y(2 * n), reals(n), spectrum(spectrum_size(ccs, n));
      f.complex[true](x.data(), y.data(), plan, nullptr);
      errors[0] += relative_error(y, exact) / signals;
      // The inverse is the forward transform read backward.
      LongNumbers backward(2 * n);
      for (size_t k = 0; k < n; ++k) {
        const size_t mirror = (n - k) % n;
        backward[2 * k] = exact[2 * mirror], backward[2 * k + 1] = exact[2 * mirror + 1];
        reals[k] = x[2 * k];
      }
      f.complex[false](x.data(), y.data(), plan, nullptr);
      errors[1] += relative_error(y, backward) / signals;
      f.real[true][ccs](reals.data(), spectrum.data(), real_plan, nullptr);
      errors[2] += relative_error(spectrum, real_spectrum(exact)) / signals;
    }
    snprintf(line, sizeof line, "| %d | %.3f | %.3f | %.3f | %.3f | %.3f | %.3f |\n", length,
             errors[0] / unit, errors[1] / unit, errors[2] / unit, of_fftw / unit, errors[0] / of_fftw,
             errors[1] / of_fftw);
    text += line;
    good &= std::max(errors[0], errors[1]) <= 1.35 * of_fftw;
  }
  text += "\n";
  return good;
}

// In place, since memory is what such lengths lack.
template <class T>
bool self_tests(int order) {
  bool good = true;
  const uint64_t n = uint64_t{1} << order, place = n / 2 + 3;
  for (const auto &f : sets_for_powers_of_two<T>()) {
    const Plan<T> plan(f, interleaved, n, 2);
    if (!(const void *)plan) return printf("%s: no plan of 2^%d points\n", f.name, order), false;
    std::vector<T> x(2 * n);
    x[2 * place] = 1;
    f.complex_in_place[true](x.data(), plan, nullptr);
    double impulse = 0;
    for (uint64_t k = 0; k < n; k += 509) {
      const long double turns = (long double)(place * k % n) / n;
      const long double angle = 2 * 3.14159265358979323846264338327950288L * turns;
      impulse = std::max(
          {impulse, (double)fabsl(x[2 * k] - cosl(angle)), (double)fabsl(x[2 * k + 1] + sinl(angle))});
    }
    const auto number = [](uint64_t i) { return T((i * 0x9E3779B97F4A7C15 >> 40) * 0x1p-23 - 1); };
    for (uint64_t i = 0; i < 2 * n; ++i) x[i] = number(i);
    f.complex_in_place[true](x.data(), plan, nullptr);
    f.complex_in_place[false](x.data(), plan, nullptr);
    double error = 0, norm = 0;
    for (uint64_t i = 0; i < 2 * n; ++i)
      error += std::pow(x[i] - number(i), 2.0), norm += std::pow(number(i), 2.0);
    const double back = std::sqrt(error / norm), bound = order * unit_roundoff<T>;
    printf(
        "%s, 2^%d points: largest error of an impulse's transform %.3g, there and back %.3g (bounds %.3g)\n",
        f.name, order, impulse, back, bound);
    good &= impulse <= bound && back <= bound;
  }
  return good;
}

}  // namespace

int main(int count, char **words) {
  int last_order = 22, long_order = 0;
  const char *markdown = nullptr;
  for (int i = 1; i < count; ++i) {
    if (!strcmp(words[i], "--quick")) last_order = 16;
    else if (!strcmp(words[i], "--order") && i + 1 < count) long_order = atoi(words[++i]);
    else if (!strcmp(words[i], "--markdown") && i + 1 < count) markdown = words[++i];
    else return fputs(usage, stderr), 2;
  }
  if (long_order) {
    if (long_order < 1 || long_order > 30) return fputs(usage, stderr), 2;
    const bool of_doubles = self_tests<double>(long_order), of_singles = self_tests<float>(long_order);
    return of_doubles && of_singles ? 0 : 1;
  }
  std::string text = introduction;
  const bool of_doubles = add_table<double>(text, last_order),
             of_singles = add_table<float>(text, last_order);
  const int32_t longest = last_order < 22 ? 10007 : 1000000;
  text += any_length_introduction;
  const bool any_doubles = add_any_length_table<double>(text, longest),
             any_singles = add_any_length_table<float>(text, longest);
  const bool good = of_doubles && of_singles && any_doubles && any_singles;
  fputs(text.c_str(), stdout);
  puts(good ? "All within the bounds."
            : "Beyond the bounds: 1.2 times the error of FFTW, 1.35 for any length.");
  if (markdown) {
    FILE *const file = fopen(markdown, "w");
    if (!file || fputs(text.c_str(), file) < 0 || fclose(file)) return perror(markdown), 2;
  }
  return good ? 0 : 1;
}
