// The year in the carbon dioxide of the air. A transform sees a line sharply if its length holds a whole
// number of the line's periods, and a year is neither 52 nor 53 weeks: so take 43 years as 52 and as 53 weeks
// each, as they are, and all weeks of the record. None of the lengths is a power of two.
//
// co2_year CSV_FILE OUT_DIR
// CSV_FILE has rows "yyyymmdd,ppm", the number left out where it was not measured. Writes OUT_DIR/co2_year.csv.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <qkr/qkr.h>
#include <string>
#include <vector>

using Signal = std::vector<double>;

[[noreturn]] static void fail(const std::string &message) {
  std::fprintf(stderr, "co2_year: %s\n", message.c_str());
  std::exit(1);
}

// Weeks that were not measured lie on the line between their neighbours.
static Signal read(const std::string &path) {
  std::ifstream file(path);
  if (!file) fail("cannot read " + path);
  Signal ppm;
  size_t missing = 0;
  int line_number = 0;
  for (std::string line; std::getline(file, line);) {
    ++line_number;
    if (line.empty() || line[0] == '#' || line == "date,ppm") continue;
    const size_t comma = line.find(',');
    char *end;
    const double value = comma == 8 ? std::strtod(line.c_str() + comma + 1, &end) : NAN;
    if (comma == 8 && line.size() == 9 && !ppm.empty()) {
      ++missing;
      continue;
    }
    if (comma != 8 || end == line.c_str() + comma + 1 || *end || !std::isfinite(value))
      fail(path + ", line " + std::to_string(line_number) + ": not a row \"yyyymmdd,ppm\": " + line);
    for (; missing; --missing)
      ppm.push_back(ppm.back() + (value - ppm.back()) / static_cast<double>(missing + 1));
    ppm.push_back(value);
  }
  if (ppm.size() < 43 * 53) fail("too little data in " + path);
  return ppm;
}

static double product(const Signal &a, const Signal &b) {
  double sum = 0;
  for (size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

// The last weeks without the trend: a polynomial of the third degree, by orthogonal polynomials.
static Signal without_trend(const Signal &ppm, size_t weeks) {
  Signal signal(ppm.end() - static_cast<ptrdiff_t>(weeks), ppm.end());
  std::vector<Signal> basis;
  for (int degree = 0; degree <= 3; ++degree) {
    Signal power(weeks);
    for (size_t i = 0; i < weeks; ++i)
      power[i] = std::pow(2 * static_cast<double>(i) / static_cast<double>(weeks - 1) - 1, degree);
    const auto remove = [weeks](Signal &from, const Signal &what) {
      const double share = product(from, what) / product(what, what);
      for (size_t i = 0; i < weeks; ++i) from[i] -= share * what[i];
    };
    for (const Signal &lower : basis) remove(power, lower);
    remove(signal, power);
    basis.push_back(power);
  }
  return signal;
}

// Amplitude of each frequency, by a transform of the signal's own length.
static Signal amplitudes(const Signal &signal) {
  const auto weeks = static_cast<int32_t>(signal.size());
  zprsDFTSpec_R_64f *plan = nullptr;
  constexpr int32_t no_division = 8;
  if (w6_zprsDFTInitAlloc_R_64f(&plan, weeks, no_division, 0) != zprStsNoErr) fail("no memory for the plan");
  Signal spectrum(2 * (signal.size() / 2 + 1)), result;
  const zprStatus status = w6_zprsDFTFwd_RToCCS_64f(signal.data(), spectrum.data(), plan, nullptr);
  w6_zprsDFTFree_R_64f(plan);
  if (status != zprStsNoErr) fail("no memory for the transform");
  for (size_t k = 0; k < spectrum.size(); k += 2)
    result.push_back(2 * std::hypot(spectrum[k], spectrum[k + 1]) / weeks);
  return result;
}

int main(int argc, char **argv) {
  if (argc != 3) fail("usage: co2_year CSV_FILE OUT_DIR");
  const Signal ppm = read(argv[1]);
  constexpr size_t years = 43;
  const struct {
    const char *name;
    size_t weeks;
  } lengths[] = {{"43 times 52 weeks", years * 52},
                 {"43 times 53 weeks", years * 53},
                 {"43 years", static_cast<size_t>(std::lround(years * 365.2425 / 7))},
                 {"the whole record", ppm.size()}};

  const std::string out_dir = argv[2];
  std::ofstream file(out_dir + "/co2_year.csv");
  file << std::setprecision(9) << "weeks,line,period,amplitude\n";
  for (const auto &[name, weeks] : lengths) {
    const Signal amplitude = amplitudes(without_trend(ppm, weeks));
    // The year's surroundings: periods from 44 to 65 weeks.
    const size_t first = weeks / 65 + 1, last = weeks / 44;
    size_t strongest = first;
    double power = 0;
    for (size_t k = first; k <= last; ++k) {
      if (amplitude[k] > amplitude[strongest]) strongest = k;
      power += amplitude[k] * amplitude[k];
      file << weeks << ',' << k << ',' << static_cast<double>(weeks) / static_cast<double>(k) << ','
           << amplitude[k] << '\n';
    }
    const double share = amplitude[strongest] * amplitude[strongest] / power;
    std::printf("%-17s (%zu): line %zu, %.2f weeks, %.2f ppm, %.1f %% of the power around it\n", name, weeks,
                strongest, static_cast<double>(weeks) / static_cast<double>(strongest), amplitude[strongest],
                100 * share);
  }
  file.close();
  if (!file) fail("cannot write to " + out_dir);
}
