// The spectrum of three centuries of sunspots, by a transform of a real signal: the straight trend is taken
// away, the ends are faded by Hann's window, and zeros fill the record up to a power of two, so that the
// strongest line can be read between the frequencies that 309 years resolve.
//
// sunspot_spectrum CSV_FILE OUT_DIR
// CSV_FILE has rows "year,sunspots", a year each. Writes OUT_DIR/sunspots.csv and
// OUT_DIR/sunspot_spectrum.csv.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <qkr/qkr.h>
#include <string>
#include <vector>

[[noreturn]] static void fail(const std::string &message) {
  std::fprintf(stderr, "sunspot_spectrum: %s\n", message.c_str());
  std::exit(1);
}

struct Record {
  std::vector<double> year, sunspots;
};

static Record read(const std::string &path) {
  std::ifstream file(path);
  if (!file) fail("cannot read " + path);
  Record record;
  int line_number = 0;
  for (std::string line; std::getline(file, line);) {
    ++line_number;
    if (line.empty() || line[0] == '#' || line == "year,sunspots") continue;
    double year, sunspots;
    int length = -1;
    if (std::sscanf(line.c_str(), "%lf,%lf%n", &year, &sunspots, &length) != 2 ||
        static_cast<size_t>(length) != line.size() ||
        (!record.year.empty() && year != record.year.back() + 1))
      fail(path + ", line " + std::to_string(line_number) +
           ": not the row \"year,sunspots\" of the next year: " + line);
    record.year.push_back(year);
    record.sunspots.push_back(sunspots);
  }
  if (record.year.size() < 8) fail("too little data in " + path);
  return record;
}

// Less the least-squares line, times Hann's window; the window's angles by our own cosine.
static std::vector<double> prepared(const std::vector<double> &signal) {
  const int32_t n = static_cast<int32_t>(signal.size());
  const double middle = (n - 1) / 2.0;
  double mean = 0, slope = 0, squares = 0;
  for (int32_t i = 0; i < n; ++i) {
    mean += signal[i] / n;
    slope += (i - middle) * signal[i];
    squares += (i - middle) * (i - middle);
  }
  slope /= squares;

  std::vector<double> window(n), result(n);
  for (int32_t i = 0; i < n; ++i) window[i] = 2 * 3.14159265358979323846 * (i + 0.5) / n;
  _vxmdCos_HA(n, window.data(), window.data());
  for (int32_t i = 0; i < n; ++i) result[i] = (signal[i] - mean - slope * (i - middle)) * (1 - window[i]) / 2;
  return result;
}

// |X[k]|^2 for k from 0 to N/2, N = 2^order, of the signal followed by zeros.
static std::vector<double> power_spectrum(const std::vector<double> &signal, int32_t order) {
  const int32_t n = 1 << order;
  zprsFFTSpec_R_64f *plan = nullptr;
  constexpr int32_t no_division = 8;
  if (w6_zprsFFTInitAlloc_R_64f(&plan, order, no_division, 0) != zprStsNoErr) fail("no memory for the plan");
  std::vector<double> data(signal), power(n / 2 + 1);
  data.resize(n + 2);  // the CCS format has two numbers more than the signal
  const zprStatus status = w6_zprsFFTFwd_RToCCS_64f_I(data.data(), plan, nullptr);
  w6_zprsFFTFree_R_64f(plan);
  if (status != zprStsNoErr) fail("no memory for the transform");
  for (int32_t k = 0; k <= n / 2; ++k)
    power[k] = data[2 * k] * data[2 * k] + data[2 * k + 1] * data[2 * k + 1];
  return power;
}

int main(int argc, char **argv) {
  if (argc != 3) fail("usage: sunspot_spectrum CSV_FILE OUT_DIR");
  const Record record = read(argv[1]);
  int32_t order = 4;
  while ((size_t{1} << order) < 8 * record.year.size()) ++order;
  const std::vector<double> power = power_spectrum(prepared(record.sunspots), order);

  // The top of a parabola through the highest value and its neighbours.
  size_t top = 1;
  for (size_t k = 1; k + 1 < power.size(); ++k)
    if (power[k] > power[top]) top = k;
  const double before = power[top - 1], at = power[top], after = power[top + 1];
  const double offset = 0.5 * (before - after) / (before - 2 * at + after);
  const double years = std::ldexp(1.0, order) / (static_cast<double>(top) + offset);
  std::printf("%zu years from %.0f to %.0f, filled up to %d\n", record.year.size(), record.year.front(),
              record.year.back(), 1 << order);
  std::printf("strongest period: %.2f years\n", years);

  const std::string out_dir = argv[2];
  std::ofstream signal_file(out_dir + "/sunspots.csv"), spectrum_file(out_dir + "/sunspot_spectrum.csv");
  signal_file << std::setprecision(9) << "year,sunspots\n";
  for (size_t i = 0; i < record.year.size(); ++i)
    signal_file << record.year[i] << ',' << record.sunspots[i] << '\n';
  spectrum_file << std::setprecision(12) << "frequency,power\n";  // cycles a year
  for (size_t k = 0; k < power.size(); ++k)
    spectrum_file << std::ldexp(static_cast<double>(k), -order) << ',' << power[k] << '\n';
  signal_file.close(), spectrum_file.close();
  if (!signal_file || !spectrum_file) fail("cannot write to " + out_dir);
}
