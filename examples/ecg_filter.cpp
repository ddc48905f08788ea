// A minute of an electrocardiogram without the drift of the skin's voltage and without the hum of the power
// line, taken out in two ways that should agree:
// - through the spectrum: a minute at 360 samples a second has 21600, and at that very length 60 Hz is a
//   frequency of the transform, so that the hum stands in one place;
// - by convolution with a long filter, as it would be done while the record goes on.
//
// ecg_filter CSV_FILE OUT_DIR
// CSV_FILE has one number a row, millivolt. Writes OUT_DIR/ecg_cleaned.csv and OUT_DIR/ecg_spectrum.csv.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <qkr/qkr.h>
#include <string>
#include <vector>

constexpr double samples_per_second = 360, power_line = 60, pi = 3.14159265358979323846;
// Frequencies that go: up to `width` Hz on either side of 0 and of the power line, with a fall of `fall` Hz.
constexpr double width = 0.5, fall = 0.2;

using Signal = std::vector<double>;

[[noreturn]] static void fail(const std::string &message) {
  std::fprintf(stderr, "ecg_filter: %s\n", message.c_str());
  std::exit(1);
}

static void check(zprStatus status, const char *what) {
  if (status != zprStsNoErr) fail(std::string(what) + ": status " + std::to_string(status));
}

static Signal read(const std::string &path) {
  std::ifstream file(path);
  if (!file) fail("cannot read " + path);
  Signal signal;
  int line_number = 0;
  for (std::string line; std::getline(file, line);) {
    ++line_number;
    if (line.empty() || line[0] == '#' || line == "millivolt") continue;
    char *end;
    signal.push_back(std::strtod(line.c_str(), &end));
    if (end == line.c_str() || *end || !std::isfinite(signal.back()))
      fail(path + ", line " + std::to_string(line_number) + ": not a number: " + line);
  }
  if (signal.size() < samples_per_second) fail("too little data in " + path);
  return signal;
}

// A plan for real signals of one length, whatever it is.
class Transform {
  zprsDFTSpec_R_64f *plan_ = nullptr;
  size_t length_;

 public:
  explicit Transform(size_t length) : length_(length) {
    constexpr int32_t divide_inverse = 2;
    check(w6_zprsDFTInitAlloc_R_64f(&plan_, static_cast<int32_t>(length), divide_inverse, 0), "plan");
  }
  Transform(const Transform &) = delete;
  ~Transform() { w6_zprsDFTFree_R_64f(plan_); }

  // Real and imaginary part of frequency 0, 1, 2, ... up to half of the length.
  Signal forward(const Signal &signal) const {
    Signal spectrum(2 * (length_ / 2 + 1));
    check(w6_zprsDFTFwd_RToCCS_64f(signal.data(), spectrum.data(), plan_, nullptr), "transform");
    return spectrum;
  }
  Signal inverse(const Signal &spectrum) const {
    Signal signal(length_);
    check(w6_zprsDFTInv_CCSToR_64f(spectrum.data(), signal.data(), plan_, nullptr), "transform");
    return signal;
  }
};

// What is taken away of a frequency: all near 0 and near the power line, half at `width`, nothing beyond.
static double taken(double frequency) {
  const double distance = std::min(std::abs(frequency), std::abs(frequency - power_line));
  const double place = std::clamp((distance - width) / fall + 0.5, 0.0, 1.0);
  return (1 + std::cos(pi * place)) / 2;
}

static Signal clean_by_transform(const Signal &signal) {
  const Transform transform(signal.size());
  Signal spectrum = transform.forward(signal);
  for (size_t k = 0; k < spectrum.size(); ++k)
    spectrum[k] *=
        1 - taken(static_cast<double>(k / 2) * samples_per_second / static_cast<double>(signal.size()));
  return transform.inverse(spectrum);
}

// An impulse less a low pass, which is centred on 0 and, times a cosine of 60 Hz, on the power line as well:
// a sine over its angle under Blackman's window, 8 seconds long.
static Signal cleaning_filter() {
  constexpr int32_t half = static_cast<int32_t>(4 * samples_per_second), taps = 2 * half + 1;
  Signal angle(taps), window(taps), hum(taps), low_pass(taps), filter(taps);
  const auto angles_of = [&](double frequency) {
    for (int32_t i = 0; i < taps; ++i) angle[i] = 2 * pi * frequency * (i - half) / samples_per_second;
  };
  angles_of(samples_per_second / (taps + 1));
  _vxmdCos_HA(taps, angle.data(), window.data());
  for (double &w : window) w = 0.42 + 0.5 * w + 0.08 * (2 * w * w - 1);
  angles_of(power_line);
  _vxmdCos_HA(taps, angle.data(), hum.data());
  angles_of(width);
  _vxmdSin_HA(taps, angle.data(), low_pass.data());
  double sum = 0;
  for (int32_t i = 0; i < taps; ++i) {
    low_pass[i] = window[i] * (i == half ? 1 : low_pass[i] / angle[i]);
    sum += low_pass[i];
  }
  for (int32_t i = 0; i < taps; ++i) filter[i] = (i == half) - low_pass[i] / sum * (1 + 2 * hum[i]);
  return filter;
}

// The middle of the convolution: as many samples as the signal has, each where it was.
static Signal clean_by_filter(const Signal &signal, const Signal &filter) {
  Signal all(signal.size() + filter.size() - 1);
  check(zprsConv_64f(signal.data(), static_cast<int32_t>(signal.size()), filter.data(),
                     static_cast<int32_t>(filter.size()), all.data()),
        "convolution");
  const auto first = all.begin() + static_cast<ptrdiff_t>(filter.size() / 2);
  return {first, first + static_cast<ptrdiff_t>(signal.size())};
}

// Amplitudes of the frequencies from 0 on.
static Signal amplitudes(const Signal &signal) {
  const Signal spectrum = Transform(signal.size()).forward(signal);
  Signal result;
  for (size_t k = 0; k < spectrum.size(); k += 2)
    result.push_back(2 * std::hypot(spectrum[k], spectrum[k + 1]) / static_cast<double>(signal.size()));
  return result;
}

// Root mean square of what lies between two frequencies.
static double strength(const Signal &amplitude, double per_bin, double from, double to) {
  double squares = 0;
  for (size_t k = 1; k < amplitude.size(); ++k)
    if (static_cast<double>(k) * per_bin >= from && static_cast<double>(k) * per_bin <= to)
      squares += amplitude[k] * amplitude[k] / 2;
  return std::sqrt(squares);
}

int main(int argc, char **argv) {
  if (argc != 3) fail("usage: ecg_filter CSV_FILE OUT_DIR");
  const Signal raw = read(argv[1]), filter = cleaning_filter();
  const Signal by_transform = clean_by_transform(raw), by_filter = clean_by_filter(raw, filter);
  const Signal spectra[] = {amplitudes(raw), amplitudes(by_transform), amplitudes(by_filter)};
  const char *const names[] = {"as recorded", "through the spectrum", "by convolution"};
  const double per_bin = samples_per_second / static_cast<double>(raw.size());

  std::printf("%zu samples, %.0f s; filter of %zu samples\n", raw.size(),
              static_cast<double>(raw.size()) / samples_per_second, filter.size());
  for (int i = 0; i < 3; ++i)
    std::printf("%-21s drift below 0.3 Hz %.5f mV, hum at 60 Hz %.5f mV, heart 1 to 40 Hz %.4f mV\n",
                names[i], strength(spectra[i], per_bin, 0, 0.3),
                strength(spectra[i], per_bin, power_line - 0.1, power_line + 0.1),
                strength(spectra[i], per_bin, 1, 40));

  // The filter needs half its length at the ends, where the record has nothing to give.
  double squares = 0;
  const size_t end = filter.size() / 2;
  for (size_t i = end; i + end < raw.size(); ++i)
    squares += (by_transform[i] - by_filter[i]) * (by_transform[i] - by_filter[i]);
  std::printf("the two ways differ by %.4f mV (root mean square)\n",
              std::sqrt(squares / static_cast<double>(raw.size() - 2 * end)));

  const std::string out_dir = argv[2];
  std::ofstream signal_file(out_dir + "/ecg_cleaned.csv"), spectrum_file(out_dir + "/ecg_spectrum.csv");
  signal_file << std::setprecision(9) << "second,raw,by_transform,by_filter\n";
  for (size_t i = 0; i < raw.size(); ++i)
    signal_file << static_cast<double>(i) / samples_per_second << ',' << raw[i] << ',' << by_transform[i]
                << ',' << by_filter[i] << '\n';
  spectrum_file << std::setprecision(9) << "frequency,raw,by_transform,by_filter\n";
  for (size_t k = 0; k < spectra[0].size(); ++k)
    spectrum_file << static_cast<double>(k) * per_bin << ',' << spectra[0][k] << ',' << spectra[1][k] << ','
                  << spectra[2][k] << '\n';
  signal_file.close(), spectrum_file.close();
  if (!signal_file || !spectrum_file) fail("cannot write to " + out_dir);
}
