// Heart beats in a minute of an electrocardiogram, found by correlation with one of them. The template is
// the highest beat of the first two seconds; its likeness at a place is the correlation there divided by the
// norms of both, their means taken off. Beats are the places most like it, no two nearer than 0.3 seconds.
//
// ecg_beats CSV_FILE OUT_DIR CSV_FILE has one number a row, millivolt. Writes OUT_DIR/ecg_beats.csv.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <numeric>
#include <qkr/qkr.h>
#include <string>
#include <vector>

constexpr double samples_per_second = 360;
constexpr int first_seconds = 2 * 360, half_of_template = 25, shortest_interval = 108;
constexpr double alike = 0.6;

using Signal = std::vector<double>;

[[noreturn]] static void fail(const std::string &message) {
  std::fprintf(stderr, "ecg_beats: %s\n", message.c_str());
  std::exit(1);
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
  if (signal.size() < first_seconds) fail("too little data in " + path);
  return signal;
}

// One task for all signals of a length: the sums of taps[i] signal[k + i] where all taps meet the signal.
class Correlation {
  ConvCorrTask *task_ = nullptr;
  int32_t results_;

  static void check(int32_t status) {
    if (status) fail("correlation answers " + std::to_string(status));
  }

 public:
  Correlation(size_t taps, size_t samples) : results_(static_cast<int32_t>(samples - taps + 1)) {
    const auto n = static_cast<int32_t>(taps), m = static_cast<int32_t>(samples);
    const int32_t start = 0;
    check(__vxsNewTask(&task_, VXS_CC_CORRELATION, 0, VXS_CC_DIRECT, 0, VXS_CC_DOUBLE, 1, &n, &m, &results_));
    check(__vxsEditTask(task_, VXS_CC_PARAM_START, &start));
  }
  Correlation(const Correlation &) = delete;
  ~Correlation() { __vxsDeleteTask(&task_); }

  Signal with(const Signal &taps, const Signal &signal) const { return sums(taps.data(), 1, signal); }
  // A stride of 0 makes one number all taps: the sum of the signal under the template.
  Signal window_sums(const Signal &signal) const {
    const double one = 1;
    return sums(&one, 0, signal);
  }

 private:
  Signal sums(const double *taps, int32_t stride, const Signal &signal) const {
    Signal result(static_cast<size_t>(results_));
    check(__vxsExec(task_, taps, &stride, signal.data(), nullptr, result.data(), nullptr));
    return result;
  }
};

int main(int argc, char **argv) {
  if (argc != 3) fail("usage: ecg_beats CSV_FILE OUT_DIR");
  const Signal signal = read(argv[1]);
  const auto earliest = signal.begin() + half_of_template,
             highest = std::max_element(earliest, signal.begin() + first_seconds - half_of_template);
  Signal beat(highest - half_of_template, highest + half_of_template + 1), squares;
  const double mean = std::accumulate(beat.begin(), beat.end(), 0.0) / static_cast<double>(beat.size());
  double norm = 0;
  for (double &v : beat) v -= mean, norm += v * v;
  for (double &v : beat) v /= std::sqrt(norm);
  for (const double v : signal) squares.push_back(v * v);

  const Correlation correlation(beat.size(), signal.size());
  Signal likeness = correlation.with(beat, signal);
  const Signal sums = correlation.window_sums(signal), sums_of_squares = correlation.window_sums(squares);
  for (size_t k = 0; k < likeness.size(); ++k) {
    const double deviation = sums_of_squares[k] - sums[k] * sums[k] / static_cast<double>(beat.size());
    likeness[k] /= std::sqrt(std::max(deviation, 1e-12));
  }

  std::vector<int> order(likeness.size()), beats;
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(),
            [&](int a, int b) { return likeness[a] != likeness[b] ? likeness[a] > likeness[b] : a < b; });
  for (const int k : order) {
    if (likeness[k] < alike) break;
    if (std::none_of(beats.begin(), beats.end(), [=](int b) { return std::abs(b - k) <= shortest_interval; }))
      beats.push_back(k);
  }
  std::sort(beats.begin(), beats.end());
  if (beats.empty()) fail("no beats");

  const double seconds = static_cast<double>(signal.size()) / samples_per_second;
  std::printf("template at %.3f s; %zu beats in %.0f s, %.0f a minute\n",
              static_cast<double>(highest - signal.begin()) / samples_per_second, beats.size(), seconds,
              static_cast<double>(beats.size()) * 60 / seconds);
  const std::string path = std::string(argv[2]) + "/ecg_beats.csv";
  std::ofstream file(path);
  file << std::setprecision(9) << "second,millivolt,likeness,beat\n";
  for (size_t i = 0; i < signal.size(); ++i) {
    const int k = static_cast<int>(i) - half_of_template;  // of the template that has its middle here
    const bool inside = k >= 0 && k < static_cast<int>(likeness.size());
    file << static_cast<double>(i) / samples_per_second << ',' << signal[i] << ','
         << (inside ? likeness[static_cast<size_t>(k)] : 0) << ','
         << std::binary_search(beats.begin(), beats.end(), k) << '\n';
  }
  file.close();
  if (!file) fail("cannot write " + path);
}
